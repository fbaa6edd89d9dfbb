using System;
using System.Collections.Generic;

namespace UnityEngine
{
    public enum EventType
    {
        KeyDown = 4,
        KeyUp = 5,
    }

    [Flags]
    public enum EventModifiers
    {
        None = 0,
        Shift = 1,
        Control = 2,
        Alt = 4,
        Command = 8,
    }

    public enum KeyCode
    {
        None = 0,
        Backspace = 8,
        Return = 13,
        A = 97,
        KeypadEnter = 271,
        UpArrow = 273,
        DownArrow = 274,
        RightArrow = 275,
        LeftArrow = 276,
    }

    public sealed class Event
    {
        public static readonly Queue<Event> Queue = new Queue<Event>();

        public EventType rawType { get; set; }

        public KeyCode keyCode { get; set; }

        public char character { get; set; }

        public EventModifiers modifiers { get; set; }

        public static bool PopEvent(Event outEvent)
        {
            if (Queue.Count == 0)
            {
                return false;
            }
            Event next = Queue.Dequeue();
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
            Left,
            Right,
            Middle,
        }

        public InputButton button { get; set; }

        public Vector2 position { get; set; }

        public Vector2 scrollDelta { get; set; }

        public Camera enterEventCamera { get; set; }

        public Camera pressEventCamera { get; set; }
    }

    public sealed class EventSystem
    {
        public static EventSystem current { get; set; } = new EventSystem();

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
