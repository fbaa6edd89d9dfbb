using System;

namespace Zarvik.Orvella
{
    /// <summary>
    /// One web view, from its creation to <see cref="Dispose"/>. All members belong to the main thread, where all events
    /// are raised too; every call returns at once. Coordinates and sizes are pixels of the view, from the upper left.
    /// </summary>
    /// <remarks>
    /// Members throw <see cref="ObjectDisposedException"/> after <see cref="Dispose"/> and
    /// <see cref="InvalidOperationException"/> on another thread. Tasks complete inside <see cref="WebViewHost.Pump"/>,
    /// so waiting for one with Wait() or Result on the main thread blocks for ever: use await.
    /// </remarks>
    public sealed partial class Browser : IDisposable
    {
        /// <summary>How long native code may take for what it answers at once, in milliseconds.</summary>
        private const long AnswerTime = 10_000;

        private IntPtr instance;

        private Browser(bool isOffscreen, int width, int height)
        {
            IsOffscreen = isOffscreen;
            Width = width;
            Height = height;
        }

        /// <summary>Whether the page is drawn into a texture. Otherwise it stands in the app's window.</summary>
        public bool IsOffscreen { get; }

        /// <summary>Whether <see cref="Dispose"/> was called.</summary>
        public bool IsDisposed { get; private set; }

        /// <summary>The width that the view was given.</summary>
        public int Width { get; private set; }

        /// <summary>The height that the view was given.</summary>
        public int Height { get; private set; }

        internal int Id { get; private set; }

        /// <summary>Makes a web view that is drawn into a texture.</summary>
        /// <param name="width">Width in pixels, at least 1.</param>
        /// <param name="height">Height in pixels, at least 1.</param>
        /// <param name="alwaysCapturePreview">
        /// Chooses the way of capturing that also serves views larger than the app's window, for smaller ones too.
        /// </param>
        /// <exception cref="ArgumentOutOfRangeException">The size is not positive.</exception>
        /// <exception cref="PlatformNotSupportedException">There is no native library for this platform.</exception>
        /// <exception cref="InvalidOperationException">The web view could not be made; the reason is logged.</exception>
        public static Browser CreateOffscreen(int width, int height, bool alwaysCapturePreview = false)
        {
            RequireSize(width, height);
            WebViewHost.Start();
            var browser = new Browser(isOffscreen: true, width, height);
            browser.Open(target =>
                NativeMethods.WebView_new(target, width, height, NativeBoolean.From(alwaysCapturePreview)));
            browser.RenderEventId = NativeMethods.WebView_depositPointer(browser.instance);
            return browser;
        }

        /// <summary>Makes a web view that stands in the app's window, above what the engine draws.</summary>
        /// <exception cref="ArgumentOutOfRangeException">The size is not positive.</exception>
        /// <exception cref="PlatformNotSupportedException">There is no native library for this platform.</exception>
        /// <exception cref="InvalidOperationException">The web view could not be made; the reason is logged.</exception>
        public static Browser CreateInWindow(int x, int y, int width, int height)
        {
            RequireSize(width, height);
            WebViewHost.Start();
            var browser = new Browser(isOffscreen: false, width, height);
            browser.Open(target => NativeMethods.WebView_newInNative2DMode(target, x, y, width, height));
            return browser;
        }

        /// <summary>
        /// Ends the web view. Tasks that are not done are cancelled, and no event is raised any more. The texture stays
        /// valid for the frames that are being drawn. Does nothing when called again.
        /// </summary>
        public void Dispose()
        {
            if (IsDisposed)
            {
                return;
            }
            WebViewHost.VerifyThread();
            IsDisposed = true;
            WebViewHost.Detach(this);
            if (IsOffscreen)
            {
                NativeMethods.WebView_removePointer(instance);
            }
            NativeMethods.WebView_destroy(instance);
            instance = IntPtr.Zero;
            RetireTexture();
            ForgetHandlers();
            CancelRequests();
        }

        /// <summary>Carries out a message of native code. Main thread.</summary>
        internal void Dispatch(in HostMessage message)
        {
            switch (message.Kind)
            {
                case HostMessageKind.PageMessage:
                    DispatchPageMessage(message.Text);
                    break;
                case HostMessageKind.TextureChanged:
                    ChangeTexture(message.Texture);
                    break;
                case HostMessageKind.ScriptResult:
                    CompleteScript(message.ResultId, message.Text);
                    break;
                case HostMessageKind.Data:
                    dataRequests.Take(message.ResultId)?.TrySetResult(message.Bytes);
                    break;
                case HostMessageKind.CanGoBack:
                    canGoBackQuestions.TakeOldest()?.TrySetResult(message.Text == "true");
                    break;
                case HostMessageKind.CanGoForward:
                    canGoForwardQuestions.TakeOldest()?.TrySetResult(message.Text == "true");
                    break;
                default:
                    DispatchLoad(message);
                    break;
            }
        }

        /// <summary>Once a frame.</summary>
        internal void ExpireRequests(long now)
        {
            dataRequests.Expire(now);
            canGoBackQuestions.Expire(now);
            canGoForwardQuestions.Expire(now);
            loads.Expire(now);
        }

        private static void RequireSize(int width, int height)
        {
            if (width < 1)
            {
                throw new ArgumentOutOfRangeException(nameof(width), width, "A web view is at least one pixel wide.");
            }
            if (height < 1)
            {
                throw new ArgumentOutOfRangeException(nameof(height), height, "A web view is at least one pixel high.");
            }
        }

        private void Open(Func<byte[], IntPtr> create)
        {
            string target = WebViewHost.Attach(this, out int id);
            Id = id;
            using (var text = new NativeText(target, nameof(target)))
            {
                instance = create(text.Bytes);
            }
            if (instance == IntPtr.Zero)
            {
                IsDisposed = true;
                WebViewHost.Detach(this);
                throw new InvalidOperationException("The web view could not be made. The log has the reason.");
            }
        }

        /// <summary>The native handle, for a call that is allowed now.</summary>
        private IntPtr Handle()
        {
            if (IsDisposed)
            {
                throw new ObjectDisposedException(nameof(Browser), "This web view is disposed.");
            }
            WebViewHost.VerifyThread();
            return instance;
        }

        private void CancelRequests()
        {
            loads.Cancel();
            scripts.CancelAll();
            dataRequests.CancelAll();
            canGoBackQuestions.CancelAll();
            canGoForwardQuestions.CancelAll();
        }
    }
}
