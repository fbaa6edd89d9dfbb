using UnityEngine;
using UnityEngine.EventSystems;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Gives a web view the input of Unity's event system: pointer, touch, wheel, keys and focus. It needs an EventSystem
    /// in the scene, and a GraphicRaycaster (RawImage) or a PhysicsRaycaster and a MeshCollider (mesh). Works with the
    /// old and the new input system.
    /// </summary>
    [AddComponentMenu("Zarvik/Web View Input")]
    [RequireComponent(typeof(WebView))]
    public sealed class WebViewInput : MonoBehaviour, IPointerDownHandler, IPointerUpHandler, IPointerMoveHandler,
        IPointerExitHandler, IDragHandler, IScrollHandler, IUpdateSelectedHandler, ISelectHandler, IDeselectHandler
    {
        [SerializeField]
        [Tooltip("Pixels by which one step of the wheel scrolls.")]
        private float scrollSpeed = 100;

        private readonly Event guiEvent = new Event();
        private WebView view;
        private PointerInput pointer;
        private KeyboardInput keyboard;

        void IPointerDownHandler.OnPointerDown(PointerEventData eventData)
        {
            if (TryLocate(eventData, out Vector2 point))
            {
                EventSystem.current.SetSelectedGameObject(gameObject, eventData);
                pointer.Press(point.x, point.y, ButtonOf(eventData), Time.unscaledTimeAsDouble);
            }
        }

        void IPointerUpHandler.OnPointerUp(PointerEventData eventData)
        {
            if (TryLocate(eventData, out Vector2 point))
            {
                pointer.Release(point.x, point.y, ButtonOf(eventData));
            }
            else if (IsReady())
            {
                // Released beside the surface: a page must not keep a button pressed for ever.
                pointer.Release(ButtonOf(eventData));
            }
        }

        void IPointerMoveHandler.OnPointerMove(PointerEventData eventData)
        {
            Move(eventData);
        }

        void IDragHandler.OnDrag(PointerEventData eventData)
        {
            Move(eventData);
        }

        void IPointerExitHandler.OnPointerExit(PointerEventData eventData)
        {
            if (IsReady())
            {
                pointer.Leave();
            }
        }

        void IScrollHandler.OnScroll(PointerEventData eventData)
        {
            if (TryLocate(eventData, out Vector2 point))
            {
                pointer.ScrollSpeed = scrollSpeed;
                pointer.Scroll(point.x, point.y, eventData.scrollDelta.x, eventData.scrollDelta.y);
            }
        }

        void ISelectHandler.OnSelect(BaseEventData eventData)
        {
            if (IsReady())
            {
                view.Browser.SetFocused(true);
            }
        }

        void IDeselectHandler.OnDeselect(BaseEventData eventData)
        {
            if (IsReady())
            {
                view.Browser.SetFocused(false);
            }
        }

        void IUpdateSelectedHandler.OnUpdateSelected(BaseEventData eventData)
        {
            if (!IsReady())
            {
                return;
            }
            while (Event.PopEvent(guiEvent))
            {
                if (guiEvent.rawType == EventType.KeyDown)
                {
                    Type(guiEvent);
                }
            }
            // Otherwise arrow keys would also move the selection to another control.
            eventData.Use();
        }

        private static MouseButton ButtonOf(PointerEventData eventData)
        {
            switch (eventData.button)
            {
                case PointerEventData.InputButton.Right:
                    return MouseButton.Right;
                case PointerEventData.InputButton.Middle:
                    return MouseButton.Middle;
                default:
                    return MouseButton.Left;
            }
        }

        private void LateUpdate()
        {
            if (pointer != null && !view.Browser.IsDisposed)
            {
                pointer.Flush();
            }
        }

        /// <summary>False while there is no web view, as on a platform without the library.</summary>
        private bool IsReady()
        {
            if (pointer == null && WebViewHost.IsStarted && isActiveAndEnabled)
            {
                view = GetComponent<WebView>();
                pointer = new PointerInput(view.Browser);
                keyboard = new KeyboardInput(view.Browser);
            }
            return pointer != null && !view.Browser.IsDisposed;
        }

        private void Move(PointerEventData eventData)
        {
            if (TryLocate(eventData, out Vector2 point))
            {
                pointer.Move(point.x, point.y);
            }
        }

        /// <summary>Where on the surface a pointer is, as a fraction from the lower left.</summary>
        private bool TryLocate(PointerEventData eventData, out Vector2 point)
        {
            point = default;
            return IsReady() && (transform is RectTransform rectangle
                ? TryLocateOnRectangle(rectangle, eventData, out point)
                : TryLocateOnMesh(eventData, out point));
        }

        private static bool TryLocateOnRectangle(RectTransform rectangle, PointerEventData eventData, out Vector2 point)
        {
            point = default;
            if (!RectTransformUtility.ScreenPointToLocalPointInRectangle(
                    rectangle, eventData.position, CameraOf(rectangle, eventData), out Vector2 local))
            {
                return false;
            }
            Rect area = rectangle.rect;
            point = new Vector2((local.x - area.x) / area.width, (local.y - area.y) / area.height);
            return true;
        }

        /// <summary>
        /// That of the canvas, since the event's may be another raycaster's. A canvas on top of the screen has none.
        /// </summary>
        private static Camera CameraOf(RectTransform rectangle, PointerEventData eventData)
        {
            Canvas canvas = rectangle.GetComponentInParent<Canvas>();
            if (canvas == null || canvas.rootCanvas.renderMode == RenderMode.ScreenSpaceOverlay)
            {
                return null;
            }
            Camera own = canvas.rootCanvas.worldCamera;
            return own != null ? own : eventData.enterEventCamera;
        }

        private bool TryLocateOnMesh(PointerEventData eventData, out Vector2 point)
        {
            point = default;
            Camera camera = eventData.enterEventCamera != null ? eventData.enterEventCamera : eventData.pressEventCamera;
            if (camera == null || !TryGetComponent(out Collider surface) ||
                !surface.Raycast(camera.ScreenPointToRay(eventData.position), out RaycastHit hit, float.PositiveInfinity))
            {
                return false;
            }
            point = hit.textureCoord;
            return true;
        }

        private void Type(Event keyEvent)
        {
            switch (keyEvent.keyCode)
            {
                case KeyCode.LeftArrow:
                    view.Browser.SendKey("ArrowLeft");
                    break;
                case KeyCode.RightArrow:
                    view.Browser.SendKey("ArrowRight");
                    break;
                case KeyCode.UpArrow:
                    view.Browser.SendKey("ArrowUp");
                    break;
                case KeyCode.DownArrow:
                    view.Browser.SendKey("ArrowDown");
                    break;
                case KeyCode.Backspace:
                    keyboard.Type('\b');
                    break;
                case KeyCode.Return:
                case KeyCode.KeypadEnter:
                    keyboard.Type('\n');
                    break;
                default:
                    TypeCharacter(keyEvent);
                    break;
            }
        }

        /// <summary>
        /// Unity reports a key and its character as one event or as two. Keys that were recognised by their code must
        /// not be typed a second time, and a shortcut is no text.
        /// </summary>
        private void TypeCharacter(Event keyEvent)
        {
            bool isShortcut = (keyEvent.modifiers & (EventModifiers.Control | EventModifiers.Command)) != 0 &&
                (keyEvent.modifiers & EventModifiers.Alt) == 0;
            if (!isShortcut && !char.IsControl(keyEvent.character))
            {
                keyboard.Type(keyEvent.character);
            }
        }
    }
}
