using System;

namespace Zarvik.Orvella
{
    /// <summary>A button of a mouse.</summary>
    public enum MouseButton
    {
        /// <summary>The left button, and a touch.</summary>
        Left = 0,

        /// <summary>The right button.</summary>
        Right = 1,

        /// <summary>The middle button.</summary>
        Middle = 2,
    }

    public sealed partial class Browser
    {
        private static readonly string[] KeyNames =
        {
            "Enter", "Backspace", "ArrowLeft", "ArrowRight", "ArrowUp", "ArrowDown",
        };

        /// <summary>Presses and releases the left button.</summary>
        public void Click(int x, int y)
        {
            NativeMethods.WebView_click(Handle(), x, y);
        }

        /// <summary>Presses a button. The page gets the keyboard focus.</summary>
        /// <param name="x">Pixels from the left.</param>
        /// <param name="y">Pixels from the top.</param>
        /// <param name="button">The button.</param>
        /// <param name="clickCount">2 for the second press of a double click.</param>
        public void PointerDown(int x, int y, MouseButton button = MouseButton.Left, int clickCount = 1)
        {
            NativeMethods.WebView_pointerDown(Handle(), x, y, (int)button, clickCount);
        }

        /// <summary>Releases a button.</summary>
        /// <param name="x">Pixels from the left.</param>
        /// <param name="y">Pixels from the top.</param>
        /// <param name="button">The button.</param>
        /// <param name="clickCount">That of the press.</param>
        public void PointerUp(int x, int y, MouseButton button = MouseButton.Left, int clickCount = 1)
        {
            NativeMethods.WebView_pointerUp(Handle(), x, y, (int)button, clickCount);
        }

        /// <summary>Moves the pointer.</summary>
        public void MovePointer(int x, int y)
        {
            NativeMethods.WebView_movePointer(Handle(), x, y, NativeBoolean.From(false));
        }

        /// <summary>Tells the page that the pointer has left it.</summary>
        public void LeavePointer()
        {
            NativeMethods.WebView_movePointer(Handle(), 0, 0, NativeBoolean.From(true));
        }

        /// <summary>Scrolls the page. Positive distances go to the right and down.</summary>
        public void Scroll(int deltaX, int deltaY)
        {
            NativeMethods.WebView_scroll(Handle(), deltaX, deltaY);
        }

        /// <summary>
        /// Scrolls what is under a point and can be scrolled. Positive distances go to the right and down.
        /// </summary>
        public void Scroll(int deltaX, int deltaY, int x, int y)
        {
            NativeMethods.WebView_scrollAtPoint(Handle(), deltaX, deltaY, x, y);
        }

        /// <summary>
        /// Types one character, or one of the keys "Enter", "Backspace", "ArrowLeft", "ArrowRight", "ArrowUp" and
        /// "ArrowDown". For texts see <see cref="KeyboardInput"/>.
        /// </summary>
        /// <exception cref="ArgumentException">It is neither.</exception>
        public void SendKey(string key)
        {
            IntPtr handle = Handle();
            if (key != null && !IsCharacter(key) && Array.IndexOf(KeyNames, key) < 0)
            {
                // The library would run it in the page.
                throw new ArgumentException("A key is one character, or a name of one of six keys.", nameof(key));
            }
            using (var text = new NativeText(key, nameof(key)))
            {
                NativeMethods.WebView_sendKey(handle, text.Bytes);
            }
        }

        /// <summary>Gives the page the keyboard focus, or takes it away.</summary>
        public void SetFocused(bool isFocused)
        {
            NativeMethods.WebView_setFocused(Handle(), NativeBoolean.From(isFocused));
        }

        private static bool IsCharacter(string key)
        {
            return key.Length == 1 || (key.Length == 2 && char.IsSurrogatePair(key[0], key[1]));
        }
    }
}
