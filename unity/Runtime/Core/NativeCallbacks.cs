using System;
using System.Text;
using AOT;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Where native code calls in, on any thread. Turns each call into a <see cref="HostMessage"/> for the main thread
    /// and never lets an exception out.
    /// </summary>
    internal static class NativeCallbacks
    {
        // Native code keeps the function pointers, so the delegates must never be collected.
        private static readonly NativeMethods.SendMessageFunction MessageFunction = OnMessage;
        private static readonly NativeMethods.DataResultCallback DataCallback = OnData;
        private static readonly NativeMethods.LogFunction InfoFunction = OnInfo;
        private static readonly NativeMethods.LogFunction WarningFunction = OnWarning;
        private static readonly NativeMethods.LogFunction ErrorFunction = OnError;

        private static readonly (byte[] Name, HostMessageKind Kind)[] Methods =
        {
            Method("HandleMessageEmitted", HostMessageKind.PageMessage),
            Method("HandleJavaScriptResult", HostMessageKind.ScriptResult),
            Method("HandleLoadStarted", HostMessageKind.LoadStarted),
            Method("HandleLoadProgressUpdate", HostMessageKind.LoadProgressed),
            Method("HandleLoadFinished", HostMessageKind.LoadFinished),
            Method("HandleLoadFailed", HostMessageKind.LoadFailed),
            Method("HandleTextureChanged", HostMessageKind.TextureChanged),
            Method("HandleCanGoBackResult", HostMessageKind.CanGoBack),
            Method("HandleCanGoForwardResult", HostMessageKind.CanGoForward),
        };

        /// <summary>Before the first web view.</summary>
        internal static void Register()
        {
            NativeMethods.WebView_setSendMessageFunction(MessageFunction);
            NativeMethods.WebView_setDataResultCallback(DataCallback);
            NativeMethods.WebView_setLogFunctions(InfoFunction, WarningFunction, ErrorFunction);
        }

        /// <summary>
        /// Before this assembly is unloaded: the library waits for its threads that are inside it, up to a second for
        /// each function. Logging goes first: without it, a message that finds no receiver is dropped silently.
        /// </summary>
        internal static void Unregister()
        {
            NativeMethods.WebView_setLogFunctions(null, null, null);
            NativeMethods.WebView_setSendMessageFunction(null);
            NativeMethods.WebView_setDataResultCallback(null);
        }

        private static (byte[] Name, HostMessageKind Kind) Method(string name, HostMessageKind kind)
        {
            return (Encoding.UTF8.GetBytes(name), kind);
        }

        [MonoPInvokeCallback(typeof(NativeMethods.SendMessageFunction))]
        private static void OnMessage(IntPtr target, IntPtr method, IntPtr payload)
        {
            try
            {
                WebViewHost.Receive(Utf8.Bytes(target), Read(KindOf(Utf8.Bytes(method)), Utf8.Bytes(payload)));
            }
            catch (Exception exception)
            {
                WebViewHost.ReportFromAnyThread(exception);
            }
        }

        [MonoPInvokeCallback(typeof(NativeMethods.DataResultCallback))]
        private static unsafe void OnData(IntPtr target, IntPtr resultCallbackId, IntPtr bytes, int length)
        {
            try
            {
                if (Utf8.TryParse(Utf8.Bytes(resultCallbackId), out ulong id))
                {
                    WebViewHost.Receive(Utf8.Bytes(target), new HostMessage
                    {
                        Kind = HostMessageKind.Data,
                        ResultId = checked((int)id),
                        Bytes = new ReadOnlySpan<byte>((void*)bytes, length).ToArray(),
                    });
                }
            }
            catch (Exception exception)
            {
                WebViewHost.ReportFromAnyThread(exception);
            }
        }

        [MonoPInvokeCallback(typeof(NativeMethods.LogFunction))]
        private static void OnInfo(IntPtr line)
        {
            OnLog(LogSeverity.Info, line);
        }

        [MonoPInvokeCallback(typeof(NativeMethods.LogFunction))]
        private static void OnWarning(IntPtr line)
        {
            OnLog(LogSeverity.Warning, line);
        }

        [MonoPInvokeCallback(typeof(NativeMethods.LogFunction))]
        private static void OnError(IntPtr line)
        {
            OnLog(LogSeverity.Error, line);
        }

        private static void OnLog(LogSeverity severity, IntPtr line)
        {
            try
            {
                WebViewHost.Enqueue(new HostMessage
                {
                    Kind = HostMessageKind.Log,
                    Severity = severity,
                    Text = Utf8.Decode(Utf8.Bytes(line)),
                });
            }
            catch (Exception exception)
            {
                WebViewHost.ReportFromAnyThread(exception);
            }
        }

        private static HostMessageKind KindOf(ReadOnlySpan<byte> method)
        {
            foreach ((byte[] name, HostMessageKind kind) in Methods)
            {
                if (method.SequenceEqual(name))
                {
                    return kind;
                }
            }
            return HostMessageKind.Unknown;
        }

        private static HostMessage Read(HostMessageKind kind, ReadOnlySpan<byte> payload)
        {
            var message = new HostMessage { Kind = kind };
            switch (kind)
            {
                case HostMessageKind.ScriptResult:
                    int comma = payload.IndexOf((byte)',');
                    if (comma > 0 && Utf8.TryParse(payload.Slice(0, comma), out ulong id))
                    {
                        message.ResultId = checked((int)id);
                    }
                    message.Text = Utf8.Decode(payload.Slice(comma + 1));
                    break;
                case HostMessageKind.TextureChanged:
                    if (Utf8.TryParse(payload, out ulong address))
                    {
                        message.Texture = unchecked((IntPtr)(long)address);
                    }
                    break;
                default:
                    message.Text = Utf8.Decode(payload);
                    break;
            }
            return message;
        }
    }
}
