using System;
using System.Runtime.InteropServices;

namespace Zarvik.Orvella
{
    /// <summary>
    /// The functions of the native library. Texts are NUL-terminated UTF-8 (see <see cref="NativeText"/>), booleans
    /// are one byte. Everything returns at once, except the cookie functions, and may be called from any thread.
    /// </summary>
    internal static class NativeMethods
    {
        private const string Library = "ZarvikOrvella";
        private const CallingConvention Convention = CallingConvention.Cdecl;

        [UnmanagedFunctionPointer(Convention)]
        internal delegate void SendMessageFunction(IntPtr target, IntPtr method, IntPtr payload);

        [UnmanagedFunctionPointer(Convention)]
        internal delegate void DataResultCallback(IntPtr target, IntPtr resultCallbackId, IntPtr bytes, int length);

        [UnmanagedFunctionPointer(Convention)]
        internal delegate void LogFunction(IntPtr line);

        // Creation and destruction

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern IntPtr WebView_new(byte[] target, int width, int height, byte alwaysCapturePreview);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern IntPtr WebView_newInNative2DMode(byte[] target, int x, int y, int width, int height);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_destroy(IntPtr instance);

        // Navigation

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_loadUrl(IntPtr instance, byte[] url);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_loadUrlWithHeaders(IntPtr instance, byte[] url, byte[] headers);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_loadHtml(IntPtr instance, byte[] html);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_goBack(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_goForward(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_reload(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_stopLoad(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_canGoBack(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_canGoForward(IntPtr instance);

        // Scripts

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_executeJavaScript(IntPtr instance, byte[] script, byte[] resultCallbackId);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setConsoleMessageEventsEnabled(IntPtr instance, byte enabled);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setFocusedInputFieldEventsEnabled(IntPtr instance, byte enabled);

        // Input

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_click(IntPtr instance, int x, int y);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_pointerDown(IntPtr instance, int x, int y, int mouseButton, int clickCount);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_pointerUp(IntPtr instance, int x, int y, int mouseButton, int clickCount);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_movePointer(IntPtr instance, int x, int y, byte pointerLeave);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_scroll(IntPtr instance, int deltaX, int deltaY);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_scrollAtPoint(IntPtr instance, int deltaX, int deltaY, int x, int y);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_sendKey(IntPtr instance, byte[] key);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setFocused(IntPtr instance, byte focused);

        // Rendering, size and texture

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern int WebView_depositPointer(IntPtr pointer);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_removePointer(IntPtr pointer);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_resize(IntPtr instance, int width, int height);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setRect(IntPtr instance, int x, int y, int width, int height);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setRenderingEnabled(IntPtr instance, byte enabled);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setVisible(IntPtr instance, byte visible);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_zoomIn(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_zoomOut(IntPtr instance);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern IntPtr WebView_getRenderFunction();

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_destroyTexture(IntPtr texture);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_captureScreenshot(IntPtr instance, byte[] resultCallbackId);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_getRawTextureData(IntPtr instance, byte[] resultCallbackId);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setDefaultBackgroundEnabled(IntPtr instance, byte enabled);

        // Cookies, storage and user agent

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern IntPtr WebView_getCookies(byte[] url, byte[] cookieName);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern byte WebView_setCookie(byte[] cookieJson);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_deleteCookies(byte[] url, byte[] cookieName);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_clearAllData();

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setStorageEnabled(byte enabled);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_globallySetUserAgent(byte[] userAgent);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_globallySetUserAgentToMobile(byte mobile);

        // Callbacks, settings and diagnostics

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setSendMessageFunction(SendMessageFunction function);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setDataResultCallback(DataResultCallback callback);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setLogFunctions(LogFunction info, LogFunction warning, LogFunction error);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_logVersionInfo();

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setCameraAndMicrophoneEnabled(byte enabled);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_setGeolocationEnabled(byte enabled);

        [DllImport(Library, CallingConvention = Convention, ExactSpelling = true)]
        internal static extern void WebView_handleMixedRealityAppFocusChanged(byte focused);
    }
}
