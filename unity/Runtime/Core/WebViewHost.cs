using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Diagnostics;
using System.Globalization;
using System.Text;
using System.Threading;

namespace Zarvik.Orvella
{
    /// <summary>
    /// The process's side of all browsers: receives the calls of native code on any thread and hands them out on the
    /// main thread. Inside Unity the package starts, pumps and ends it by itself.
    /// </summary>
    public static class WebViewHost
    {
        private static readonly ConcurrentQueue<HostMessage> Queue = new ConcurrentQueue<HostMessage>();
        private static readonly Dictionary<int, Browser> Browsers = new Dictionary<int, Browser>();
        private static readonly List<Browser> BrowserList = new List<Browser>();
        private static readonly TextureRetirement RetiredTextures =
            new TextureRetirement(texture => NativeMethods.WebView_destroyTexture(texture));

        private static long lastSequence;
        private static int mainThreadId;
        private static int lastBrowserId;
        private static bool isPumping;

        /// <summary>
        /// Begins the names of this session's browsers, so that what an earlier session asked for is told apart. Null:
        /// nothing is received. Written on the main thread, read on any.
        /// </summary>
        private static volatile byte[] targetPrefix;

        /// <summary>Raised on the main thread for each log line of the native library.</summary>
        public static event Action<LogSeverity, string> Logged;

        /// <summary>
        /// Raised on the main thread when a handler of an event has thrown; the other handlers and messages go on.
        /// </summary>
        public static event Action<Exception> HandlerFailed;

        /// <summary>What pumps and ends the host, told before each start. It throws where nothing can.</summary>
        internal static event Action Starting;

        /// <summary>Whether browsers can be made: between <see cref="Start"/> and <see cref="Shutdown"/>.</summary>
        public static bool IsStarted => targetPrefix != null;

        /// <summary>The number of browsers that are not disposed.</summary>
        public static int BrowserCount => BrowserList.Count;

        /// <summary>Milliseconds of a clock that only goes forward.</summary>
        internal static long Now => Stopwatch.GetTimestamp() / (Stopwatch.Frequency / 1000);

        internal static long LastSequence => Interlocked.Read(ref lastSequence);

        /// <summary>
        /// Registers with the native library. The calling thread becomes the main thread, on which browsers are used
        /// and events are raised. Does nothing when started already.
        /// </summary>
        /// <exception cref="PlatformNotSupportedException">There is no native library for this platform.</exception>
        public static void Start()
        {
            if (IsStarted)
            {
                VerifyThread();
                return;
            }
            Starting?.Invoke();
            try
            {
                NativeCallbacks.Register();
            }
            catch (Exception exception) when (exception is DllNotFoundException ||
                exception is EntryPointNotFoundException || exception is BadImageFormatException)
            {
                throw new PlatformNotSupportedException(
                    "The native library ZarvikOrvella cannot be loaded here. Web views work in players of the " +
                    "Universal Windows Platform (ARM64 and x64) and in the Linux editor (x86-64).",
                    exception);
            }
            mainThreadId = Environment.CurrentManagedThreadId;
            targetPrefix = Encoding.ASCII.GetBytes(
                "zarvik-" + Stopwatch.GetTimestamp().ToString("x", CultureInfo.InvariantCulture) + "-");
        }

        /// <summary>
        /// Raises the events for what has happened since the last call and completes tasks. Main thread, once a frame.
        /// What comes in meanwhile waits for the next call.
        /// </summary>
        public static void Pump()
        {
            if (!IsStarted || isPumping)
            {
                return;
            }
            VerifyThread();
            isPumping = true;
            try
            {
                for (int count = Queue.Count; count > 0 && Queue.TryDequeue(out HostMessage message); --count)
                {
                    Guard(message);
                }
                long now = Now;
                for (int i = BrowserList.Count - 1; i >= 0 && i < BrowserList.Count; --i)
                {
                    BrowserList[i].ExpireRequests(now);
                }
                RetiredTextures.Advance();
            }
            finally
            {
                isPumping = false;
            }
        }

        /// <summary>
        /// Disposes all browsers, gives all textures back, unregisters from the native library, and waits up to a second
        /// per function for calls of its threads that are under way. Nothing may draw a browser's texture any more. Main
        /// thread; does nothing when not started. <see cref="Start"/> may follow.
        /// </summary>
        public static void Shutdown()
        {
            if (!IsStarted)
            {
                return;
            }
            VerifyThread();
            while (BrowserList.Count > 0)
            {
                BrowserList[BrowserList.Count - 1].Dispose();
            }
            targetPrefix = null;
            NativeCallbacks.Unregister();
            while (Queue.TryDequeue(out HostMessage message))
            {
                if (message.Kind == HostMessageKind.Action)
                {
                    Guard(message);
                }
                else
                {
                    Discard(message);
                }
            }
            RetiredTextures.ReleaseAll();
        }

        /// <summary>
        /// Tells the library that the app's mixed-reality view has gained or lost the focus. Main thread.
        /// </summary>
        public static void SetMixedRealityAppFocus(bool isFocused)
        {
            Start();
            NativeMethods.WebView_handleMixedRealityAppFocusChanged(NativeBoolean.From(isFocused));
        }

        /// <summary>Writes the library's version as an information line. Main thread.</summary>
        public static void LogVersion()
        {
            Start();
            NativeMethods.WebView_logVersionInfo();
        }

        /// <exception cref="InvalidOperationException">This is not the main thread.</exception>
        internal static void VerifyThread()
        {
            if (Environment.CurrentManagedThreadId != mainThreadId)
            {
                throw new InvalidOperationException(
                    "Web views can be used only on the main thread, the one on which WebViewHost was started.");
            }
        }

        /// <summary>A new browser gets its id and the name under which native code sends it messages.</summary>
        internal static string Attach(Browser browser, out int id)
        {
            id = ++lastBrowserId;
            Browsers.Add(id, browser);
            BrowserList.Add(browser);
            return Encoding.ASCII.GetString(targetPrefix) + id.ToString(CultureInfo.InvariantCulture);
        }

        internal static void Detach(Browser browser)
        {
            Browsers.Remove(browser.Id);
            BrowserList.Remove(browser);
        }

        /// <summary>Gives a texture back when the frames that still draw it are done.</summary>
        internal static void Retire(IntPtr texture)
        {
            RetiredTextures.Add(texture);
        }

        /// <summary>Takes a message for a browser. Any thread; here is decided whether it is for this session.</summary>
        internal static void Receive(ReadOnlySpan<byte> target, HostMessage message)
        {
            byte[] prefix = targetPrefix;
            if (prefix != null && target.StartsWith(prefix) &&
                Utf8.TryParse(target.Slice(prefix.Length), out ulong id))
            {
                message.BrowserId = checked((int)id);
                Enqueue(message);
            }
            else
            {
                Discard(message);
            }
        }

        /// <summary>Any thread.</summary>
        internal static void Enqueue(HostMessage message)
        {
            message.Sequence = Interlocked.Increment(ref lastSequence);
            Queue.Enqueue(message);
        }

        /// <summary>Runs an action in the next <see cref="Pump"/>. Any thread.</summary>
        internal static void Post(Action action)
        {
            Enqueue(new HostMessage { Kind = HostMessageKind.Action, Action = action });
        }

        internal static void ReportFromAnyThread(Exception exception)
        {
            Post(() => Report(exception));
        }

        internal static void Report(Exception exception)
        {
            HandlerFailed?.Invoke(exception);
        }

        private static void Guard(in HostMessage message)
        {
            try
            {
                Dispatch(message);
            }
            catch (Exception exception)
            {
                Report(exception);
            }
        }

        private static void Dispatch(in HostMessage message)
        {
            switch (message.Kind)
            {
                case HostMessageKind.Log:
                    Logged?.Invoke(message.Severity, message.Text);
                    break;
                case HostMessageKind.Action:
                    message.Action();
                    break;
                default:
                    if (Browsers.TryGetValue(message.BrowserId, out Browser browser))
                    {
                        browser.Dispatch(message);
                    }
                    else
                    {
                        Discard(message);
                    }
                    break;
            }
        }

        /// <summary>A texture that comes too late is still ours to give back; nobody has drawn it. Any thread.</summary>
        private static void Discard(in HostMessage message)
        {
            if (message.Texture != IntPtr.Zero)
            {
                NativeMethods.WebView_destroyTexture(message.Texture);
            }
        }
    }
}
