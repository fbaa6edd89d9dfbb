using System;
using Newtonsoft.Json.Linq;

namespace Zarvik.Orvella
{
    /// <summary>How a document got its URL.</summary>
    public enum UrlChangeKind
    {
        /// <summary>A page is loaded.</summary>
        Load,

        /// <summary>A script of the page added an entry to the history.</summary>
        PushState,

        /// <summary>A script of the page replaced the history's entry.</summary>
        ReplaceState,

        /// <summary>The part after # changed.</summary>
        HashChange,
    }

    /// <summary>Whether text can be typed.</summary>
    public enum FocusedInputField
    {
        /// <summary>No text field has the focus.</summary>
        None,

        /// <summary>A text field has the focus.</summary>
        Text,
    }

    /// <summary>The kind of a console message.</summary>
    public enum ConsoleMessageLevel
    {
        /// <summary>console.log and console.info.</summary>
        Log,

        /// <summary>console.debug.</summary>
        Debug,

        /// <summary>console.warn.</summary>
        Warning,

        /// <summary>console.error.</summary>
        Error,
    }

    /// <summary>A change of a document's URL.</summary>
    public readonly struct UrlChange
    {
        internal UrlChange(string url, UrlChangeKind kind)
        {
            Url = url;
            Kind = kind;
        }

        /// <summary>The new URL.</summary>
        public string Url { get; }

        /// <summary>How it changed.</summary>
        public UrlChangeKind Kind { get; }
    }

    /// <summary>What a page wrote to its console.</summary>
    public readonly struct ConsoleMessage
    {
        internal ConsoleMessage(ConsoleMessageLevel level, string text)
        {
            Level = level;
            Text = text;
        }

        /// <summary>The kind of message.</summary>
        public ConsoleMessageLevel Level { get; }

        /// <summary>The text.</summary>
        public string Text { get; }
    }

    /// <summary>Receives what the script inside every page reports.</summary>
    internal interface IPageReports
    {
        void OnUrl(UrlChange change);

        void OnTitle(string title);

        void OnFocusedInputField(FocusedInputField field);

        void OnConsoleMessage(ConsoleMessage message);
    }

    /// <summary>Tells reports of the script inside every page from messages of the page itself.</summary>
    internal static class PageReportReader
    {
        private const string TypePrefix = "\"zarvik.webview.";

        /// <summary>False if the message is the page's own.</summary>
        internal static bool TryDispatch(string message, IPageReports reports)
        {
            // Most messages are the page's own: they are not taken apart.
            if (message.IndexOf(TypePrefix, StringComparison.Ordinal) < 0 ||
                !Json.TryParse(message, out JObject report))
            {
                return false;
            }
            switch (report.Text("type"))
            {
                case "zarvik.webview.urlChanged":
                    return DispatchUrl(report, reports);
                case "zarvik.webview.titleChanged" when report.Text("value") is string title:
                    reports.OnTitle(title);
                    return true;
                case "zarvik.webview.focusedInputFieldChanged" when report.Text("value") is string field:
                    reports.OnFocusedInputField(field == "TEXT" ? FocusedInputField.Text : FocusedInputField.None);
                    return true;
                case "zarvik.webview.consoleMessageLogged" when report.Text("message") is string text:
                    reports.OnConsoleMessage(new ConsoleMessage(LevelOf(report.Text("level")), text));
                    return true;
                default:
                    return false;
            }
        }

        private static bool DispatchUrl(JObject report, IPageReports reports)
        {
            if (!(report["urlAction"] is JObject action) || !(action.Text("Url") is string url))
            {
                return false;
            }
            reports.OnUrl(new UrlChange(url, KindOf(action.Text("Type"))));
            return true;
        }

        private static UrlChangeKind KindOf(string name)
        {
            switch (name)
            {
                case "PUSH_STATE":
                    return UrlChangeKind.PushState;
                case "REPLACE_STATE":
                    return UrlChangeKind.ReplaceState;
                case "HASH_CHANGE":
                    return UrlChangeKind.HashChange;
                default:
                    return UrlChangeKind.Load;
            }
        }

        private static ConsoleMessageLevel LevelOf(string name)
        {
            switch (name)
            {
                case "DEBUG":
                    return ConsoleMessageLevel.Debug;
                case "WARNING":
                    return ConsoleMessageLevel.Warning;
                case "ERROR":
                    return ConsoleMessageLevel.Error;
                default:
                    return ConsoleMessageLevel.Log;
            }
        }
    }
}
