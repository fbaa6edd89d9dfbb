using System;
using System.Collections.Generic;

namespace UnityEngine
{
    public enum EventType
    {
        KeyDown = 4,
    }

    [Flags]
    public enum EventModifiers
    {
        None = 0, Control = 2, Alt = 4, Command = 8,
    }

    public enum KeyCode
    {
        None, A, Backspace, Return, KeypadEnter, UpArrow, DownArrow, RightArrow, LeftArrow,
    }

    public sealed class Event
    {
        public static readonly Queue<Event> Queue = new Queue<Event>();

        public EventType rawType;
        public KeyCode keyCode;
        public char character;
        public EventModifiers modifiers;

        public static bool PopEvent(Event outEvent)
        {
            if (!Queue.TryDequeue(out Event next))
            {
                return false;
            }
            outEvent.rawType = next.rawType;
            outEvent.keyCode = next.keyCode;
            outEvent.character = next.character;
            outEvent.modifiers = next.modifiers;
            return true;
        }
    }
}

namespace UnityEngine.EventSystems
{
    public class BaseEventData
    {
        public bool used { get; private set; }

        public void Use() => used = true;
    }

    public class PointerEventData : BaseEventData
    {
        public enum InputButton
        {
            Left, Right, Middle,
        }

        public InputButton button;
        public Vector2 position, scrollDelta;
        public Camera enterEventCamera, pressEventCamera;
    }

    public sealed class EventSystem
    {
        public static readonly EventSystem current = new EventSystem();

        public GameObject Selected { get; private set; }

        public void SetSelectedGameObject(GameObject selected, BaseEventData pointer) => Selected = selected;
    }

    public interface IPointerDownHandler
    {
        void OnPointerDown(PointerEventData eventData);
    }

    public interface IPointerUpHandler
    {
        void OnPointerUp(PointerEventData eventData);
    }

    public interface IPointerMoveHandler
    {
        void OnPointerMove(PointerEventData eventData);
    }

    public interface IPointerExitHandler
    {
        void OnPointerExit(PointerEventData eventData);
    }

    public interface IDragHandler
    {
        void OnDrag(PointerEventData eventData);
    }

    public interface IScrollHandler
    {
        void OnScroll(PointerEventData eventData);
    }

    public interface IUpdateSelectedHandler
    {
        void OnUpdateSelected(BaseEventData eventData);
    }

    public interface ISelectHandler
    {
        void OnSelect(BaseEventData eventData);
    }

    public interface IDeselectHandler
    {
        void OnDeselect(BaseEventData eventData);
    }
}
