using System;

namespace Zarvik.Orvella
{
    /// <summary>A rectangle of the app's window, in the window's units from its upper left.</summary>
    public readonly struct WindowPlacement : IEquatable<WindowPlacement>
    {
        private WindowPlacement(int x, int y, int width, int height)
        {
            X = x;
            Y = y;
            Width = width;
            Height = height;
        }

        /// <summary>Distance from the left.</summary>
        public int X { get; }

        /// <summary>Distance from the top.</summary>
        public int Y { get; }

        /// <summary>Width, at least 1.</summary>
        public int Width { get; }

        /// <summary>Height, at least 1.</summary>
        public int Height { get; }

        /// <summary>Makes a placement from screen pixels, which engines count from the lower left.</summary>
        /// <param name="left">Left edge in pixels.</param>
        /// <param name="bottom">Bottom edge in pixels.</param>
        /// <param name="right">Right edge in pixels.</param>
        /// <param name="top">Top edge in pixels.</param>
        /// <param name="screenHeight">Height of the screen in pixels.</param>
        /// <param name="pixelsPerUnit">Pixels of one unit of the window: 1.5 for a display scaled to 150 %.</param>
        public static WindowPlacement FromScreen(
            float left, float bottom, float right, float top, float screenHeight, float pixelsPerUnit)
        {
            // Edges are rounded, not sizes, so that neighbours stay neighbours.
            int x = Round(left / pixelsPerUnit);
            int y = Round((screenHeight - top) / pixelsPerUnit);
            int width = Math.Max(Round(right / pixelsPerUnit) - x, 1);
            int height = Math.Max(Round((screenHeight - bottom) / pixelsPerUnit) - y, 1);
            return new WindowPlacement(x, y, width, height);
        }

        /// <inheritdoc/>
        public bool Equals(WindowPlacement other)
        {
            return X == other.X && Y == other.Y && Width == other.Width && Height == other.Height;
        }

        /// <inheritdoc/>
        public override bool Equals(object obj)
        {
            return obj is WindowPlacement other && Equals(other);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return (X, Y, Width, Height).GetHashCode();
        }

        private static int Round(float value)
        {
            return (int)Math.Floor(value + 0.5);
        }
    }
}
