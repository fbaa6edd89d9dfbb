using System;
using System.Collections.Generic;
using System.Reflection;
using System.Text;
using System.Threading.Tasks;
using NUnit.Framework;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>Loads, scripts, events and lifetime of a browser, with real pages.</summary>
    public sealed class BrowserTests
    {
        private const string Page = "<!DOCTYPE html><title>First</title><body>page</body>";

        [Test]
        public void LoadsReportTheirWayOnTheMainThread()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            int main = Environment.CurrentManagedThreadId;
            var events = new List<string>();
            browser.LoadStarted += () => events.Add("started");
            browser.LoadProgressed += progress => events.Add(progress.ToString("0.00"));
            browser.LoadFinished += () => events.Add("finished on " + Environment.CurrentManagedThreadId);

            async Task<int> Load()
            {
                await browser.LoadHtml(Page);
                return Environment.CurrentManagedThreadId;
            }

            Assert.AreEqual(main, Engine.Await(Load()));
            Assert.AreEqual(new[] { "started", "0.33", "0.66", "1.00", "finished on " + main }, events);
            Engine.WaitUntil(() => browser.Title == "First", "no title");
            Assert.AreEqual("about:blank", browser.Url);
        }

        [Test]
        public void LoadsFailWithTheirStatus()
        {
            using var server = new PageServer();
            using Browser browser = Browser.CreateOffscreen(320, 240);
            WebViewLoadException reported = null;
            browser.LoadFailed += failure => reported = failure;

            var missing = Assert.Throws<WebViewLoadException>(
                () => Engine.Await(browser.LoadUrl(server.Url("missing"))));
            Assert.AreEqual(404, missing.Status);
            Assert.AreEqual(404, reported.Status);

            var unsupported = Assert.Throws<WebViewLoadException>(
                () => Engine.Await(browser.LoadUrl("ftp://127.0.0.1/document.pdf")));
            Assert.AreEqual(null, unsupported.Status);
        }

        [Test]
        public void ALaterLoadCancelsTheTaskOfTheEarlierOneOnlyAndAStoppedLoadFails()
        {
            using var server = new PageServer();
            using Browser browser = Browser.CreateOffscreen(320, 240);
            Task slow = browser.LoadUrl(server.Url("slow"));
            Engine.WaitUntil(() => server.HasRequested("/slow"), "the first load has not begun");
            Task second = browser.LoadUrl(server.Url("page"));

            Engine.Await(second);
            Assert.IsTrue(slow.IsCanceled);
            Assert.AreEqual(server.Url("page"), browser.Url);

            Task third = browser.LoadUrl(server.Url("slower"));
            Engine.WaitUntil(() => server.HasRequested("/slower"), "the load has not begun");
            browser.StopLoad();
            var stopped = Assert.Throws<WebViewLoadException>(() => Engine.Await(third));
            Assert.AreEqual(WebViewLoadException.CancelledStatus, stopped.Status);
        }

        [Test]
        public void HeadersGoWithTheRequest()
        {
            using var server = new PageServer();
            using Browser browser = Browser.CreateOffscreen(320, 240);
            var headers = new Dictionary<string, string> { ["X-First"] = "one", ["X-Second"] = "two" };
            Engine.Await(browser.LoadUrl(server.Url("page"), headers));
            Assert.AreEqual("one", server.LastHeaders["X-First"]);
            Assert.AreEqual("two", server.LastHeaders["X-Second"]);
            headers["X-Third"] = "a\nb";
            Assert.Throws<ArgumentException>(() => browser.LoadUrl(server.Url("page"), headers));
        }

        [Test]
        public void ScriptsAreAnsweredOneByOneAndTextsSurvive()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            Assert.Throws<WebViewScriptException>(() => Engine.Await(browser.ExecuteJavaScript("no page yet")));
            Engine.Await(browser.LoadHtml(Page));
            var answers = new List<Task<string>>();
            for (int i = 0; i < 200; ++i)
            {
                answers.Add(browser.ExecuteJavaScript("'" + i + ",\u00e9\u4e16\U0001F600'"));
            }
            for (int i = 0; i < answers.Count; ++i)
            {
                Assert.AreEqual(i + ",\u00e9\u4e16\U0001F600", Engine.Await(answers[i]));
            }
            Assert.AreEqual("", Engine.Await(browser.ExecuteJavaScript("''")));
            Assert.Throws<ArgumentException>(() => browser.ExecuteJavaScript("'a\0b'"));
        }

        [Test]
        public void AQuestionWithoutAnAnswerFailsAndLeavesLaterOnesAlone()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            Engine.Await(browser.LoadHtml(Page));
            // Without a receiver the answer is lost, as where native code cannot give one.
            NativeMethods.WebView_setSendMessageFunction(null);
            Task<bool> lost = browser.CanGoBack();
            Engine.Pass(TimeSpan.FromMilliseconds(300));
            NativeCallbacks.Register();
            browser.ExpireRequests(WebViewHost.Now + 60_000);
            Assert.Throws<TimeoutException>(() => Engine.Await(lost));
            Assert.IsFalse(Engine.Await(browser.CanGoBack()));
        }

        [Test]
        public void HistoryAnswersAndReportsItsUrls()
        {
            using var server = new PageServer();
            using Browser browser = Browser.CreateOffscreen(320, 240);
            var changes = new List<string>();
            browser.UrlChanged += change => changes.Add(change.Kind + " " + change.Url);
            Engine.Await(browser.LoadUrl(server.Url("page")));
            // The page's own report comes before its answers; without one it could come after the next load's start.
            Engine.Await(browser.ExecuteJavaScript("1"));
            Assert.IsFalse(Engine.Await(browser.CanGoBack()));
            Engine.Await(browser.LoadUrl(server.Url("other")));
            Engine.Await(browser.ExecuteJavaScript("1"));
            browser.PostJavaScript("history.pushState(null, '', '/pushed')");
            Engine.WaitUntil(() => browser.Url == server.Url("pushed"), "no pushed URL");
            Assert.IsTrue(Engine.Await(browser.CanGoBack()));
            Assert.IsFalse(Engine.Await(browser.CanGoForward()));
            Assert.AreEqual(
                new[] { "Load " + server.Url("page"), "Load " + server.Url("other"), "PushState " + server.Url("pushed") },
                changes);
        }

        [Test]
        public void PagesReportMessagesConsoleAndFocus()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            var reports = new List<string>();
            browser.MessageReceived += message => reports.Add(message);
            Action<ConsoleMessage> onConsole = message => reports.Add(message.Level + " " + message.Text);
            browser.ConsoleMessageLogged += onConsole;
            browser.FocusedInputFieldChanged += field => reports.Add("focus " + field);
            Engine.Await(browser.LoadHtml("<input id=field>"));

            browser.PostJavaScript("zarvik.postMessage('plain'); zarvik.postMessage({ a: '\"zarvik.webview.x' });" +
                "console.warn('careful');");
            Engine.WaitUntil(() => reports.Count == 3, "messages are missing");
            Assert.AreEqual(new[] { "plain", "{\"a\":\"\\\"zarvik.webview.x\"}", "Warning careful" }, reports);

            reports.Clear();
            browser.PostJavaScript("document.getElementById('field').focus()");
            Engine.WaitUntil(() => reports.Count == 1, "no focus");
            Assert.AreEqual("focus Text", reports[0]);

            browser.ConsoleMessageLogged -= onConsole;
            reports.Clear();
            browser.PostJavaScript("console.warn('unheard'); zarvik.postMessage('last')");
            Engine.WaitUntil(() => reports.Count == 1, "no message");
            Assert.AreEqual("last", reports[0]);
        }

        [Test]
        public void AHandlerThatThrowsHarmsNobodyElseAndAnotherMayDisposeItsBrowser()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            browser.LoadStarted += () => throw new InvalidOperationException("mine");
            browser.LoadFinished += () => throw new InvalidOperationException("mine too");
            Engine.Await(browser.LoadHtml(Page));
            Engine.Frame();
            Assert.AreEqual(2, Engine.HandlerExceptions.Count);
            browser.LoadProgressed += progress => browser.Dispose();
            Assert.Throws<TaskCanceledException>(() => Engine.Await(browser.LoadHtml(Page)));
            Assert.IsTrue(browser.IsDisposed);
        }

        [Test]
        public void DisposeCancelsWhatIsPendingAndRefusesTheRest()
        {
            Browser browser = Browser.CreateOffscreen(320, 240);
            Engine.Await(browser.LoadHtml(Page));
            bool wasCalled = false;
            browser.LoadStarted += () => wasCalled = true;
            Task load = browser.LoadHtml(Page);
            Task<string> script = browser.ExecuteJavaScript("1");
            Task<byte[]> picture = browser.CaptureScreenshot();
            Task<bool> question = browser.CanGoBack();
            browser.Dispose();
            browser.Dispose();

            Assert.IsTrue(load.IsCanceled && script.IsCanceled && picture.IsCanceled && question.IsCanceled);
            Assert.Throws<ObjectDisposedException>(() => browser.LoadUrl("about:blank"));
            Assert.Throws<ObjectDisposedException>(() => browser.Click(1, 1));
            Assert.Throws<ObjectDisposedException>(() => browser.Resize(10, 10));
            Assert.Throws<ObjectDisposedException>(() => browser.ConsoleMessageLogged += message => { });
            Engine.Pass(TimeSpan.FromMilliseconds(300));
            Assert.IsFalse(wasCalled);
            Assert.AreEqual(0, WebViewHost.BrowserCount);
        }

        [Test]
        public void WhatAnEarlierSessionAskedForFindsNobody()
        {
            using (Browser earlier = Browser.CreateOffscreen(320, 240))
            {
                Engine.Await(earlier.LoadHtml(Page));
            }
            byte[] earlierName = NameOf(1);
            WebViewHost.Shutdown();
            // As when scripts are loaded anew, the numbers begin again.
            HostField("lastBrowserId").SetValue(null, 0);

            using Browser browser = Browser.CreateOffscreen(320, 240);
            Assert.AreEqual(1, browser.Id);
            var received = new List<string>();
            browser.MessageReceived += received.Add;
            WebViewHost.Receive(earlierName, new HostMessage { Kind = HostMessageKind.PageMessage, Text = "not mine" });
            WebViewHost.Receive(NameOf(1), new HostMessage { Kind = HostMessageKind.PageMessage, Text = "mine" });
            Engine.Frame();
            Assert.AreEqual(new[] { "mine" }, received);
        }

        [Test]
        public void OtherThreadsAndBadArgumentsAreRefused()
        {
            using Browser browser = Browser.CreateOffscreen(320, 240);
            Assert.Throws<InvalidOperationException>(() => Task.Run(browser.Reload).GetAwaiter().GetResult());
            Assert.Throws<InvalidOperationException>(() => Task.Run(browser.Dispose).GetAwaiter().GetResult());
            Assert.Throws<ArgumentOutOfRangeException>(() => browser.Resize(0, 10));
            Assert.Throws<ArgumentOutOfRangeException>(() => Browser.CreateOffscreen(10, -1));
            Assert.Throws<ArgumentNullException>(() => browser.LoadUrl(null));
            Assert.IsFalse(browser.IsDisposed);
        }

        [Test]
        public void CookiesComeBackAsTheyWereSet()
        {
            const string Site = "http://127.0.0.1/";
            var cookie = new Cookie("taste", "sw\"eet", "127.0.0.1")
            {
                ExpirationDate = new DateTime(2100, 1, 2, 3, 4, 5, DateTimeKind.Utc),
            };
            Task<bool> setting = CookieStore.SetCookie(cookie);
            Assert.IsFalse(setting.IsCompleted, "the main thread waited");
            Assert.IsTrue(Engine.Await(setting));
            IReadOnlyList<Cookie> found = Engine.Await(CookieStore.GetCookies(Site, "taste"));
            Assert.AreEqual(1, found.Count);
            Assert.AreEqual((cookie.Value, cookie.ExpirationDate), (found[0].Value, found[0].ExpirationDate));
            Engine.Await(CookieStore.DeleteCookies(Site, "taste"));
            Assert.AreEqual(0, Engine.Await(CookieStore.GetCookies(Site, "taste")).Count);
        }

        /// <summary>How the library names a browser now.</summary>
        private static byte[] NameOf(int id)
        {
            var prefix = (byte[])HostField("targetPrefix").GetValue(null);
            return Encoding.ASCII.GetBytes(Encoding.ASCII.GetString(prefix) + id);
        }

        private static FieldInfo HostField(string name)
        {
            return typeof(WebViewHost).GetField(name, BindingFlags.Static | BindingFlags.NonPublic);
        }
    }
}
