using System;
using System.Collections.Generic;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Threading;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>
    /// The engine's interface registry and a Direct3D 11 device whose textures are plain memory: what the library uses of
    /// them, as tables of functions in their binary order. Any thread.
    /// </summary>
    internal static unsafe class Direct3D
    {
        private const int Ok = 0;
        private const int NotImplemented = unchecked((int)0x80004001);
        private const uint RowAlignment = 256;

        private static readonly ComObject* Device = Create(DeviceTable(), null, 0, 0);
        private static readonly ComObject* Context = Create(ContextTable(), null, 0, 0);
        private static readonly IntPtr Graphics = (IntPtr)Table((0, (IntPtr)(delegate* unmanaged<ComObject*>)&GetDevice));

        private static int liveTextures;
        private static int liveViews;

        /// <summary>One COM object. The rows of a texture follow each other at <see cref="Pitch"/>.</summary>
        private struct ComObject
        {
            internal void** Table;
            internal int References;
            internal ComObject* Resource;
            internal uint Width;
            internal uint Height;
            internal byte* Pixels;

            internal uint Pitch => (Width * 4 + RowAlignment - 1) / RowAlignment * RowAlignment;
        }

        /// <summary>Textures that somebody still refers to.</summary>
        internal static int LiveTextures => Volatile.Read(ref liveTextures);

        /// <summary>Views of textures that somebody still refers to.</summary>
        internal static int LiveViews => Volatile.Read(ref liveViews);

        /// <summary>What UnityPluginLoad gets.</summary>
        internal static IntPtr Interfaces()
        {
            var get = (IntPtr)(delegate* unmanaged<ulong, ulong, IntPtr>)&GetInterface;
            return (IntPtr)Table((0, get), (2, get));
        }

        /// <summary>A pixel of a view's texture as 0xAARRGGBB, from the upper left.</summary>
        internal static uint Pixel(IntPtr view, int x, int y)
        {
            ComObject* texture = ((ComObject*)view)->Resource;
            return *(uint*)(texture->Pixels + y * texture->Pitch + x * 4);
        }

        internal static (uint Width, uint Height) SizeOf(IntPtr view)
        {
            ComObject* texture = ((ComObject*)view)->Resource;
            return (texture->Width, texture->Height);
        }

        /// <summary>A table with some functions at their places; whatever else is called refuses.</summary>
        private static void** Table(params (int Place, IntPtr Function)[] functions)
        {
            const int Length = 120; // more than any interface here has
            var table = (void**)NativeMemory.AllocZeroed(Length, (nuint)sizeof(void*));
            for (int i = 0; i < Length; ++i)
            {
                table[i] = (delegate* unmanaged<IntPtr, int>)&Refuse;
            }
            foreach ((int place, IntPtr function) in functions)
            {
                table[place] = (void*)function;
            }
            return table;
        }

        private static void** ComTable(params (int Place, IntPtr Function)[] functions)
        {
            void** table = Table(functions);
            table[0] = (delegate* unmanaged<ComObject*, IntPtr, ComObject**, int>)&QueryInterface;
            table[1] = (delegate* unmanaged<ComObject*, uint>)&AddRef;
            table[2] = (delegate* unmanaged<ComObject*, uint>)&Release;
            return table;
        }

        private static void** DeviceTable() => ComTable(
            (5, (IntPtr)(delegate* unmanaged<IntPtr, uint*, IntPtr, ComObject**, int>)&CreateTexture),
            (7, (IntPtr)(delegate* unmanaged<IntPtr, ComObject*, IntPtr, ComObject**, int>)&CreateView),
            (40, (IntPtr)(delegate* unmanaged<IntPtr, ComObject**, void>)&GetImmediateContext));

        private static void** ContextTable() => ComTable(
            (14, (IntPtr)(delegate* unmanaged<IntPtr, ComObject*, uint, int, uint, Mapped*, int>)&Map),
            (15, (IntPtr)(delegate* unmanaged<IntPtr, ComObject*, uint, void>)&Unmap));

        private static void** TextureTable() =>
            ComTable((10, (IntPtr)(delegate* unmanaged<ComObject*, uint*, void>)&GetTextureDescription));

        private static void** ViewTable() =>
            ComTable((7, (IntPtr)(delegate* unmanaged<ComObject*, ComObject**, void>)&GetResource));

        private static ComObject* Create(void** table, ComObject* resource, uint width, uint height)
        {
            var made = (ComObject*)NativeMemory.AllocZeroed((nuint)sizeof(ComObject));
            made->Table = table;
            made->References = 1;
            made->Resource = resource;
            made->Width = width;
            made->Height = height;
            if (width > 0)
            {
                made->Pixels = (byte*)NativeMemory.AllocZeroed(made->Pitch * height);
                Interlocked.Increment(ref liveTextures);
            }
            else if (resource != null)
            {
                Interlocked.Increment(ref resource->References);
                Interlocked.Increment(ref liveViews);
            }
            return made;
        }

        private static uint ReleaseObject(ComObject* released)
        {
            int left = Interlocked.Decrement(ref released->References);
            if (left == 0)
            {
                if (released->Pixels != null)
                {
                    NativeMemory.Free(released->Pixels);
                    Interlocked.Decrement(ref liveTextures);
                }
                if (released->Resource != null)
                {
                    ReleaseObject(released->Resource);
                    Interlocked.Decrement(ref liveViews);
                }
                // The table is one's own, which makes a use after this one fail at once.
                NativeMemory.Free(released->Table);
                NativeMemory.Free(released);
            }
            return (uint)left;
        }

        [UnmanagedCallersOnly]
        private static IntPtr GetInterface(ulong high, ulong low)
        {
            return high == 0xAAB37EF87A87D748 && low == 0xBF76967F07EFB177 ? Graphics : IntPtr.Zero;
        }

        [UnmanagedCallersOnly]
        private static ComObject* GetDevice() => Device;

        [UnmanagedCallersOnly]
        private static int Refuse(IntPtr self) => NotImplemented;

        [UnmanagedCallersOnly]
        private static int QueryInterface(ComObject* self, IntPtr id, ComObject** result)
        {
            Interlocked.Increment(ref self->References);
            *result = self;
            return Ok;
        }

        [UnmanagedCallersOnly]
        private static uint AddRef(ComObject* self) => (uint)Interlocked.Increment(ref self->References);

        [UnmanagedCallersOnly]
        private static uint Release(ComObject* self) => ReleaseObject(self);

        [UnmanagedCallersOnly]
        private static int CreateTexture(IntPtr self, uint* description, IntPtr data, ComObject** result)
        {
            *result = Create(TextureTable(), null, description[0], description[1]);
            return Ok;
        }

        [UnmanagedCallersOnly]
        private static int CreateView(IntPtr self, ComObject* resource, IntPtr description, ComObject** result)
        {
            *result = Create(ViewTable(), resource, 0, 0);
            return Ok;
        }

        [UnmanagedCallersOnly]
        private static void GetImmediateContext(IntPtr self, ComObject** result)
        {
            Interlocked.Increment(ref Context->References);
            *result = Context;
        }

        [UnmanagedCallersOnly]
        private static int Map(IntPtr self, ComObject* texture, uint subresource, int type, uint flags, Mapped* mapped)
        {
            mapped->Data = texture->Pixels;
            mapped->RowPitch = texture->Pitch;
            mapped->DepthPitch = texture->Pitch * texture->Height;
            return Ok;
        }

        [UnmanagedCallersOnly]
        private static void Unmap(IntPtr self, ComObject* texture, uint subresource)
        {
        }

        [UnmanagedCallersOnly]
        private static void GetTextureDescription(ComObject* self, uint* description)
        {
            // Width, height, mip levels, array size, format, sample count and quality, usage, binding, access, other.
            uint[] values = { self->Width, self->Height, 1, 1, 87, 1, 0, 2, 8, 0x10000, 0 };
            values.CopyTo(new Span<uint>(description, values.Length));
        }

        [UnmanagedCallersOnly]
        private static void GetResource(ComObject* self, ComObject** result)
        {
            Interlocked.Increment(ref self->Resource->References);
            *result = self->Resource;
        }

        private struct Mapped
        {
            internal byte* Data;
            internal uint RowPitch;
            internal uint DepthPitch;
        }
    }
}
