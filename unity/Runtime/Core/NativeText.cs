using System;
using System.Buffers;
using System.Globalization;
using System.Text;

namespace Zarvik.Orvella
{
    /// <summary>
    /// A text on its way to native code: NUL-terminated UTF-8 in a pooled buffer, which Dispose returns.
    /// </summary>
    internal readonly struct NativeText : IDisposable
    {
        /// <summary>A text without zero characters, at which native code would cut it.</summary>
        /// <exception cref="ArgumentNullException">The text is null.</exception>
        /// <exception cref="ArgumentException">The text contains a zero character.</exception>
        internal NativeText(string text, string parameterName)
        {
            if (text == null)
            {
                throw new ArgumentNullException(parameterName);
            }
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("The text must not contain the character U+0000.", parameterName);
            }
            Bytes = ArrayPool<byte>.Shared.Rent(Encoding.UTF8.GetMaxByteCount(text.Length) + 1);
            int length = Encoding.UTF8.GetBytes(text, 0, text.Length, Bytes, 0);
            Bytes[length] = 0;
        }

        /// <summary>The id of a request, under which its answer comes back.</summary>
        internal NativeText(int id)
            : this(id.ToString(CultureInfo.InvariantCulture), nameof(id))
        {
        }

        internal byte[] Bytes { get; }

        /// <summary>Null stays null, for arguments that may be missing.</summary>
        internal static NativeText OrNull(string text, string parameterName)
        {
            return text == null ? default : new NativeText(text, parameterName);
        }

        public void Dispose()
        {
            if (Bytes != null)
            {
                ArrayPool<byte>.Shared.Return(Bytes);
            }
        }
    }

    /// <summary>Reads NUL-terminated UTF-8 that native code passes to a callback.</summary>
    internal static class Utf8
    {
        /// <summary>The bytes of a text. Valid as long as the pointer is.</summary>
        internal static unsafe ReadOnlySpan<byte> Bytes(IntPtr text)
        {
            var start = (byte*)text;
            if (start == null)
            {
                return default;
            }
            byte* end = start;
            while (*end != 0)
            {
                ++end;
            }
            return new ReadOnlySpan<byte>(start, checked((int)(end - start)));
        }

        internal static string Decode(ReadOnlySpan<byte> bytes)
        {
            return bytes.IsEmpty ? string.Empty : Encoding.UTF8.GetString(bytes);
        }

        /// <summary>A decimal number that is the whole text.</summary>
        internal static bool TryParse(ReadOnlySpan<byte> bytes, out ulong value)
        {
            return System.Buffers.Text.Utf8Parser.TryParse(bytes, out value, out int consumed) &&
                consumed == bytes.Length;
        }
    }
}
