using System;
using System.Collections.Generic;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Textures that were replaced. The render thread may still draw frames that use them, so each is given back only
    /// some frames later. Main thread.
    /// </summary>
    internal sealed class TextureRetirement
    {
        /// <summary>More frames than an engine queues for its render thread.</summary>
        internal const int FramesInFlight = 4;

        private readonly Queue<(IntPtr Texture, long LastFrame)> textures = new Queue<(IntPtr, long)>();
        private readonly Action<IntPtr> release;
        private long frame;

        internal TextureRetirement(Action<IntPtr> release)
        {
            this.release = release;
        }

        internal void Add(IntPtr texture)
        {
            textures.Enqueue((texture, frame + FramesInFlight));
        }

        /// <summary>A frame has begun.</summary>
        internal void Advance()
        {
            ++frame;
            while (textures.Count > 0 && textures.Peek().LastFrame < frame)
            {
                release(textures.Dequeue().Texture);
            }
        }

        internal void ReleaseAll()
        {
            while (textures.Count > 0)
            {
                release(textures.Dequeue().Texture);
            }
        }
    }
}
