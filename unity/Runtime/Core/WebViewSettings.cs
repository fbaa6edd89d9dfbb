namespace Zarvik.Orvella
{
    /// <summary>What is set for all web views of the process. Main thread.</summary>
    public static class WebViewSettings
    {
        /// <summary>Whether pages may use camera and microphone when they ask. Not at first.</summary>
        public static void SetCameraAndMicrophoneEnabled(bool isEnabled)
        {
            WebViewHost.Start();
            NativeMethods.WebView_setCameraAndMicrophoneEnabled(NativeBoolean.From(isEnabled));
        }

        /// <summary>Whether pages may learn the device's position when they ask. Not at first.</summary>
        public static void SetGeolocationEnabled(bool isEnabled)
        {
            WebViewHost.Start();
            NativeMethods.WebView_setGeolocationEnabled(NativeBoolean.From(isEnabled));
        }

        /// <summary>Whether web views that are made from now on have databases. They do at first.</summary>
        public static void SetStorageEnabled(bool isEnabled)
        {
            WebViewHost.Start();
            NativeMethods.WebView_setStorageEnabled(NativeBoolean.From(isEnabled));
        }

        /// <summary>Sets the user agent.</summary>
        public static void SetUserAgent(string userAgent)
        {
            WebViewHost.Start();
            using (var text = new NativeText(userAgent, nameof(userAgent)))
            {
                NativeMethods.WebView_globallySetUserAgent(text.Bytes);
            }
        }

        /// <summary>Sets a mobile browser's user agent, or the default one again.</summary>
        public static void SetUserAgentToMobile(bool isMobile)
        {
            WebViewHost.Start();
            NativeMethods.WebView_globallySetUserAgentToMobile(NativeBoolean.From(isMobile));
        }

        /// <summary>Deletes what web views have stored: cache, cookies, databases.</summary>
        public static void ClearAllData()
        {
            WebViewHost.Start();
            NativeMethods.WebView_clearAllData();
        }
    }
}
