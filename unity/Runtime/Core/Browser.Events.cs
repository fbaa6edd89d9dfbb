using System;
using System.Globalization;

namespace Zarvik.Orvella
{
    public sealed partial class Browser : IPageReports
    {
        private Action<ConsoleMessage> consoleMessageLogged;
        private Action<FocusedInputField> focusedInputFieldChanged;

        /// <summary>A page has begun to load.</summary>
        public event Action LoadStarted;

        /// <summary>A page's load has come so far: from 0 to 1.</summary>
        public event Action<float> LoadProgressed;

        /// <summary>A page is loaded.</summary>
        public event Action LoadFinished;

        /// <summary>
        /// A page's load has failed, or was replaced (see <see cref="WebViewLoadException.CancelledStatus"/>).
        /// </summary>
        public event Action<WebViewLoadException> LoadFailed;

        /// <summary>The document's URL has changed.</summary>
        public event Action<UrlChange> UrlChanged;

        /// <summary>The document's title has changed.</summary>
        public event Action<string> TitleChanged;

        /// <summary>
        /// The page has posted a message with zarvik.postMessage(message): a text as it is, anything else as JSON.
        /// </summary>
        public event Action<string> MessageReceived;

        /// <summary>The page has written to its console. Pages forward their console while there is a handler.</summary>
        public event Action<ConsoleMessage> ConsoleMessageLogged
        {
            add
            {
                IntPtr handle = Handle();
                bool isFirst = consoleMessageLogged == null;
                consoleMessageLogged += value;
                if (isFirst)
                {
                    NativeMethods.WebView_setConsoleMessageEventsEnabled(handle, NativeBoolean.From(true));
                }
            }

            remove
            {
                consoleMessageLogged -= value;
                if (consoleMessageLogged == null && !IsDisposed)
                {
                    NativeMethods.WebView_setConsoleMessageEventsEnabled(Handle(), NativeBoolean.From(false));
                }
            }
        }

        /// <summary>
        /// The focus has entered or left a text field: the time to show or hide a keyboard. A click on the focused field
        /// reports it again.
        /// </summary>
        public event Action<FocusedInputField> FocusedInputFieldChanged
        {
            add
            {
                IntPtr handle = Handle();
                bool isFirst = focusedInputFieldChanged == null;
                focusedInputFieldChanged += value;
                if (isFirst)
                {
                    NativeMethods.WebView_setFocusedInputFieldEventsEnabled(handle, NativeBoolean.From(true));
                }
            }

            remove
            {
                focusedInputFieldChanged -= value;
                if (focusedInputFieldChanged == null && !IsDisposed)
                {
                    NativeMethods.WebView_setFocusedInputFieldEventsEnabled(Handle(), NativeBoolean.From(false));
                }
            }
        }

        /// <summary>
        /// The document's URL, as the page itself reports it: a hostile page can report another. Empty before the first
        /// page.
        /// </summary>
        public string Url { get; private set; } = string.Empty;

        /// <summary>The document's title; empty before the first one.</summary>
        public string Title { get; private set; } = string.Empty;

        /// <summary>How far the page's load has come: from 0 to 1.</summary>
        public float LoadProgress { get; private set; }

        void IPageReports.OnUrl(UrlChange change)
        {
            // A load is reported at its start, and again by the page itself once that runs.
            if (change.Kind == UrlChangeKind.Load && change.Url == Url)
            {
                return;
            }
            Url = change.Url;
            UrlChanged?.Invoke(change);
        }

        void IPageReports.OnTitle(string title)
        {
            Title = title;
            TitleChanged?.Invoke(title);
        }

        void IPageReports.OnFocusedInputField(FocusedInputField field)
        {
            focusedInputFieldChanged?.Invoke(field);
        }

        void IPageReports.OnConsoleMessage(ConsoleMessage message)
        {
            consoleMessageLogged?.Invoke(message);
        }

        private void DispatchPageMessage(string message)
        {
            if (!PageReportReader.TryDispatch(message, this))
            {
                MessageReceived?.Invoke(message);
            }
        }

        private void DispatchLoad(in HostMessage message)
        {
            switch (message.Kind)
            {
                case HostMessageKind.LoadStarted:
                    loads.OnStarted(message.Sequence);
                    LoadProgress = 0;
                    LoadStarted?.Invoke();
                    break;
                case HostMessageKind.LoadProgressed:
                    LoadProgress = float.Parse(message.Text, CultureInfo.InvariantCulture);
                    LoadProgressed?.Invoke(LoadProgress);
                    break;
                case HostMessageKind.LoadFinished:
                    LoadProgress = 1;
                    // The task first: a handler may start another load.
                    loads.OnFinished(message.Sequence);
                    LoadProgressed?.Invoke(1);
                    LoadFinished?.Invoke();
                    break;
                case HostMessageKind.LoadFailed:
                    WebViewLoadException failure = LoadTracker.ReadFailure(message.Text);
                    loads.OnFailed(message.Sequence, failure, WebViewHost.Now);
                    LoadFailed?.Invoke(failure);
                    break;
            }
        }

        private void ForgetHandlers()
        {
            LoadStarted = null;
            LoadProgressed = null;
            LoadFinished = null;
            LoadFailed = null;
            UrlChanged = null;
            TitleChanged = null;
            MessageReceived = null;
            TextureChanged = null;
            consoleMessageLogged = null;
            focusedInputFieldChanged = null;
        }
    }
}
