using System;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Turns an engine's pointer events on a surface into input of a browser. Positions are fractions of the surface
    /// from its lower left, as texture coordinates are. Moves and scrolls are gathered and sent once a frame with
    /// <see cref="Flush"/>, because each costs a script call in the page. Main thread.
    /// </summary>
    public sealed class PointerInput
    {
        /// <summary>Two presses within this time make a double click.</summary>
        public const double DoubleClickTime = 0.5;

        /// <summary>Two presses within this many pixels of each other make a double click.</summary>
        public const int DoubleClickDistance = 4;

        private readonly Browser browser;
        private int x;
        private int y;
        private bool hasMoved;
        private bool isPressed;
        private bool leavesAfterRelease;
        private double scrollX;
        private double scrollY;

        private MouseButton lastButton;
        private double lastPressTime = double.NegativeInfinity;
        private int lastPressX;
        private int lastPressY;
        private int clickCount;

        /// <summary>Makes the input of a browser.</summary>
        public PointerInput(Browser browser)
        {
            this.browser = browser ?? throw new ArgumentNullException(nameof(browser));
        }

        /// <summary>Pixels by which one unit of scrolling moves the page.</summary>
        public float ScrollSpeed { get; set; } = 100;

        /// <summary>The pixel at a fraction of a size; the nearest one for a point beside the surface.</summary>
        public static int PixelAt(double fraction, int size)
        {
            return (int)Math.Min(Math.Max(Math.Floor(fraction * size), 0), size - 1);
        }

        /// <summary>The pointer is at a point now.</summary>
        public void Move(float u, float v)
        {
            int newX = PixelAt(u, browser.Width);
            int newY = PixelAt(1 - (double)v, browser.Height);
            if (newX != x || newY != y)
            {
                x = newX;
                y = newY;
                hasMoved = true;
            }
        }

        /// <summary>A button goes down.</summary>
        /// <param name="u">Fraction of the surface's width.</param>
        /// <param name="v">Fraction of the surface's height, from the bottom.</param>
        /// <param name="button">The button.</param>
        /// <param name="time">Seconds of any clock, by which double clicks are told.</param>
        public void Press(float u, float v, MouseButton button, double time)
        {
            Move(u, v);
            FlushScroll();
            hasMoved = false; // A press moves the pointer to its point by itself.
            isPressed = true;
            bool continues = button == lastButton && time - lastPressTime <= DoubleClickTime &&
                Math.Abs(x - lastPressX) <= DoubleClickDistance && Math.Abs(y - lastPressY) <= DoubleClickDistance;
            clickCount = continues ? clickCount + 1 : 1;
            lastButton = button;
            lastPressTime = time;
            lastPressX = x;
            lastPressY = y;
            browser.PointerDown(x, y, button, clickCount);
        }

        /// <summary>A button goes up.</summary>
        public void Release(float u, float v, MouseButton button)
        {
            Move(u, v);
            Release(button);
        }

        /// <summary>A button goes up where the pointer was last.</summary>
        public void Release(MouseButton button)
        {
            Flush();
            browser.PointerUp(x, y, button, Math.Max(clickCount, 1));
            isPressed = false;
            if (leavesAfterRelease)
            {
                Leave();
            }
        }

        /// <summary>The wheel turns over a point. Positive units go to the right and up, as engines count them.</summary>
        public void Scroll(float u, float v, float unitsX, float unitsY)
        {
            Move(u, v);
            scrollX += unitsX * (double)ScrollSpeed;
            scrollY -= unitsY * (double)ScrollSpeed;
        }

        /// <summary>
        /// The pointer leaves the surface. What is dragged goes on until its button is released, as in any browser.
        /// </summary>
        public void Leave()
        {
            leavesAfterRelease = isPressed;
            if (isPressed)
            {
                return;
            }
            FlushScroll();
            hasMoved = false;
            x = -1; // So that its return to the same pixel is a move.
            y = -1;
            browser.LeavePointer();
        }

        /// <summary>Sends what was gathered. Once a frame.</summary>
        public void Flush()
        {
            if (hasMoved)
            {
                hasMoved = false;
                browser.MovePointer(x, y);
            }
            FlushScroll();
        }

        private void FlushScroll()
        {
            var deltaX = (int)scrollX;
            var deltaY = (int)scrollY;
            if (deltaX != 0 || deltaY != 0)
            {
                // Fractions of pixels are kept for later, so that slow scrolling gets somewhere.
                scrollX -= deltaX;
                scrollY -= deltaY;
                browser.Scroll(deltaX, deltaY, x, y);
            }
        }
    }
}
