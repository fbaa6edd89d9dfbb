using System;
using System.Collections.Generic;
using System.Text;
using System.Threading.Tasks;

namespace Zarvik.Orvella
{
    public sealed partial class Browser
    {
        /// <summary>What the library answers instead of a result when a script cannot be run.</summary>
        private const string ScriptFailurePrefix =
            "Error: An unexpected error occurred while executing the script with ExecuteJavaScript().";

        private readonly LoadTracker loads = new LoadTracker();
        private readonly PromiseTable<string> scripts = new PromiseTable<string>();
        private readonly PromiseTable<bool> canGoBackQuestions = new PromiseTable<bool>();
        private readonly PromiseTable<bool> canGoForwardQuestions = new PromiseTable<bool>();

        /// <summary>Loads a web page, a local file ("file:") or a PDF document.</summary>
        /// <returns>
        /// Completes when the page is loaded. Fails with <see cref="WebViewLoadException"/>; is cancelled by a later
        /// load or by <see cref="Dispose"/>. Redirects of the server are followed; a page whose script goes elsewhere counts as
        /// loaded before it does.
        /// </returns>
        public Task LoadUrl(string url)
        {
            IntPtr handle = Handle();
            using (var text = new NativeText(url, nameof(url)))
            {
                Task task = loads.Begin(WebViewHost.LastSequence);
                NativeMethods.WebView_loadUrl(handle, text.Bytes);
                return task;
            }
        }

        /// <summary>Loads a URL with request headers besides the usual ones.</summary>
        /// <returns>As <see cref="LoadUrl(string)"/>.</returns>
        /// <exception cref="ArgumentException">A header contains a line break, or a name a colon.</exception>
        public Task LoadUrl(string url, IEnumerable<KeyValuePair<string, string>> headers)
        {
            IntPtr handle = Handle();
            using (var text = new NativeText(url, nameof(url)))
            using (var lines = new NativeText(HeaderLines(headers), nameof(headers)))
            {
                Task task = loads.Begin(WebViewHost.LastSequence);
                NativeMethods.WebView_loadUrlWithHeaders(handle, text.Bytes, lines.Bytes);
                return task;
            }
        }

        /// <summary>Shows a page given as text; its URL is "about:blank".</summary>
        /// <returns>As <see cref="LoadUrl(string)"/>.</returns>
        public Task LoadHtml(string html)
        {
            IntPtr handle = Handle();
            using (var text = new NativeText(html, nameof(html)))
            {
                Task task = loads.Begin(WebViewHost.LastSequence);
                NativeMethods.WebView_loadHtml(handle, text.Bytes);
                return task;
            }
        }

        /// <summary>Goes back in the history, if that is possible.</summary>
        public void GoBack()
        {
            NativeMethods.WebView_goBack(Handle());
        }

        /// <summary>Goes forward in the history, if that is possible.</summary>
        public void GoForward()
        {
            NativeMethods.WebView_goForward(Handle());
        }

        /// <summary>Loads the page again.</summary>
        public void Reload()
        {
            NativeMethods.WebView_reload(Handle());
        }

        /// <summary>Stops loading. A load that is under way fails as cancelled, shortly after.</summary>
        public void StopLoad()
        {
            NativeMethods.WebView_stopLoad(Handle());
        }

        /// <summary>Whether <see cref="GoBack"/> leads somewhere.</summary>
        /// <returns>Fails with <see cref="TimeoutException"/> when the web view does not answer.</returns>
        public Task<bool> CanGoBack()
        {
            NativeMethods.WebView_canGoBack(Handle());
            return canGoBackQuestions.Add(WebViewHost.Now + AnswerTime, out _);
        }

        /// <summary>Whether <see cref="GoForward"/> leads somewhere.</summary>
        /// <returns>Fails with <see cref="TimeoutException"/> when the web view does not answer.</returns>
        public Task<bool> CanGoForward()
        {
            NativeMethods.WebView_canGoForward(Handle());
            return canGoForwardQuestions.Add(WebViewHost.Now + AnswerTime, out _);
        }

        /// <summary>Runs a script in the page. Scripts run and are answered in the order of the calls.</summary>
        /// <returns>
        /// The value of its last statement as text, or the text of what it threw. Fails with
        /// <see cref="WebViewScriptException"/> when there is no page to run it in, or another page comes in between.
        /// </returns>
        public Task<string> ExecuteJavaScript(string script)
        {
            IntPtr handle = Handle();
            using (var text = new NativeText(script, nameof(script)))
            {
                Task<string> task = scripts.Add(long.MaxValue, out int id);
                using (var idText = new NativeText(id))
                {
                    NativeMethods.WebView_executeJavaScript(handle, text.Bytes, idText.Bytes);
                }
                return task;
            }
        }

        /// <summary>Runs a script whose result nobody wants.</summary>
        public void PostJavaScript(string script)
        {
            IntPtr handle = Handle();
            using (var text = new NativeText(script, nameof(script)))
            {
                NativeMethods.WebView_executeJavaScript(handle, text.Bytes, null);
            }
        }

        private static string HeaderLines(IEnumerable<KeyValuePair<string, string>> headers)
        {
            if (headers == null)
            {
                throw new ArgumentNullException(nameof(headers));
            }
            var lines = new StringBuilder();
            foreach (KeyValuePair<string, string> header in headers)
            {
                if (header.Key.IndexOfAny(new[] { ':', '\r', '\n' }) >= 0 ||
                    header.Value.IndexOfAny(new[] { '\r', '\n' }) >= 0)
                {
                    throw new ArgumentException("'" + header.Key + "' is no valid header.", nameof(headers));
                }
                lines.Append(lines.Length > 0 ? "\n" : "").Append(header.Key).Append(": ").Append(header.Value);
            }
            return lines.ToString();
        }

        private void CompleteScript(int id, string result)
        {
            TaskCompletionSource<string> script = scripts.Take(id);
            if (result.StartsWith(ScriptFailurePrefix, StringComparison.Ordinal))
            {
                script?.TrySetException(new WebViewScriptException(
                    "The script could not be run: there is no page yet, or another page came in between."));
            }
            else
            {
                script?.TrySetResult(result);
            }
        }
    }
}
