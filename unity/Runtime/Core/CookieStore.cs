using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Threading.Tasks;

namespace Zarvik.Orvella
{
    /// <summary>
    /// The cookies of all web views. Called on the main thread, on which the tasks complete too; the work is done on
    /// another thread, since the library waits for it.
    /// </summary>
    public static class CookieStore
    {
        /// <summary>The cookies that a URL gets, all of them or those with a name.</summary>
        public static Task<IReadOnlyList<Cookie>> GetCookies(string url, string name = null)
        {
            Require(url, nameof(url));
            return Run(() =>
            {
                using (var urlText = new NativeText(url, nameof(url)))
                using (NativeText nameText = NativeText.OrNull(name, nameof(name)))
                {
                    IntPtr answer = NativeMethods.WebView_getCookies(urlText.Bytes, nameText.Bytes);
                    try
                    {
                        return Cookie.ReadAll(Utf8.Decode(Utf8.Bytes(answer)));
                    }
                    finally
                    {
                        LibraryMemory.Free(answer);
                    }
                }
            });
        }

        /// <summary>Sets a cookie.</summary>
        /// <returns>Whether that succeeded; if not, the reason is logged.</returns>
        public static Task<bool> SetCookie(Cookie cookie)
        {
            if (cookie == null)
            {
                throw new ArgumentNullException(nameof(cookie));
            }
            string json = cookie.ToJson();
            return Run(() =>
            {
                using (var text = new NativeText(json, nameof(cookie)))
                {
                    return NativeMethods.WebView_setCookie(text.Bytes) != 0;
                }
            });
        }

        /// <summary>Deletes the cookies that a URL gets, all of them or those with a name.</summary>
        public static Task DeleteCookies(string url, string name = null)
        {
            Require(url, nameof(url));
            return Run(() =>
            {
                using (var urlText = new NativeText(url, nameof(url)))
                using (NativeText nameText = NativeText.OrNull(name, nameof(name)))
                {
                    NativeMethods.WebView_deleteCookies(urlText.Bytes, nameText.Bytes);
                    return true;
                }
            });
        }

        private static void Require(string url, string parameterName)
        {
            if (url == null)
            {
                throw new ArgumentNullException(parameterName);
            }
        }

        private static Task<T> Run<T>(Func<T> work)
        {
            WebViewHost.Start();
            var source = new TaskCompletionSource<T>();
            Task.Run(() =>
            {
                try
                {
                    T result = work();
                    WebViewHost.Post(() => source.TrySetResult(result));
                }
                catch (Exception exception)
                {
                    WebViewHost.Post(() => source.TrySetException(exception));
                }
            });
            return source.Task;
        }
    }

    /// <summary>Frees what the library has allocated for its caller, with the C library that it uses itself.</summary>
    internal static class LibraryMemory
    {
        internal static void Free(IntPtr memory)
        {
            if (RuntimeInformation.IsOSPlatform(OSPlatform.Windows))
            {
                FreeOnWindows(memory);
            }
            else
            {
                FreeOnLinux(memory);
            }
        }

        [DllImport("api-ms-win-crt-heap-l1-1-0.dll", CallingConvention = CallingConvention.Cdecl, EntryPoint = "free")]
        private static extern void FreeOnWindows(IntPtr memory);

        [DllImport("libc.so.6", CallingConvention = CallingConvention.Cdecl, EntryPoint = "free")]
        private static extern void FreeOnLinux(IntPtr memory);
    }
}
