using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;
using NUnit.Framework;

namespace Zarvik.Orvella.Tests
{
    /// <summary>The parts of the core that need no native library.</summary>
    public sealed class CoreTests
    {
        [TestCase(0.0, 100, 0)]
        [TestCase(0.5, 100, 50)]
        [TestCase(0.999, 100, 99)]
        [TestCase(1.0, 100, 99)]
        [TestCase(-0.2, 100, 0)]
        [TestCase(7.0, 1, 0)]
        public void PixelsStayOnTheSurface(double fraction, int size, int expected)
        {
            Assert.AreEqual(expected, PointerInput.PixelAt(fraction, size));
        }

        [Test]
        public void WindowPlacementsTurnAndScaleTheScreen()
        {
            WindowPlacement whole = WindowPlacement.FromScreen(0, 0, 1920, 1080, 1080, 1.5F);
            Assert.AreEqual((0, 0, 1280, 720), (whole.X, whole.Y, whole.Width, whole.Height));

            // Two neighbours share an edge, whatever is rounded.
            WindowPlacement upper = WindowPlacement.FromScreen(0, 501, 100, 1000, 1000, 1.5F);
            WindowPlacement lower = WindowPlacement.FromScreen(0, 0, 100, 501, 1000, 1.5F);
            Assert.AreEqual(upper.Y + upper.Height, lower.Y);
            Assert.AreEqual(1, WindowPlacement.FromScreen(5, 5, 5, 5, 100, 1).Width);
        }

        [Test]
        public void TexturesAreReleasedOnceAndNotBeforeTheirFramesAreDone()
        {
            var released = new List<IntPtr>();
            var retirement = new TextureRetirement(released.Add);
            retirement.Add((IntPtr)1);
            for (int i = 0; i < TextureRetirement.FramesInFlight; ++i)
            {
                retirement.Advance();
                Assert.AreEqual(0, released.Count);
            }
            retirement.Add((IntPtr)2);
            retirement.Advance();
            Assert.AreEqual(new[] { (IntPtr)1 }, released);
            retirement.ReleaseAll();
            retirement.Advance();
            Assert.AreEqual(new[] { (IntPtr)1, (IntPtr)2 }, released);
        }

        [Test]
        public void PromisesAreKeptOnceExpireAndAreCancelled()
        {
            var table = new PromiseTable<string>();
            Task<string> kept = table.Add(long.MaxValue, out int keptId);
            Task<string> late = table.Add(100, out int lateId);
            Task<string> pending = table.Add(200, out int pendingId);
            table.Take(keptId).TrySetResult("yes");
            Assert.AreEqual(null, table.Take(keptId), "an answer that comes twice");
            table.Expire(99);
            Assert.IsFalse(late.IsCompleted);
            table.Expire(100);
            Assert.IsTrue(late.IsFaulted && late.Exception.InnerException is TimeoutException);
            Assert.AreEqual(null, table.Take(lateId));
            Assert.AreEqual("yes", kept.Result);
            table.CancelAll();
            Assert.IsTrue(pending.IsCanceled);
            Assert.AreEqual(0, table.Count);
        }

        [Test]
        public void ReportsAreReadAsTheyStandAndEverythingElseIsThePagesOwn()
        {
            var reports = new ReportRecorder();
            const string Title = "{\"type\":\"zarvik.webview.titleChanged\",\"value\":\"2026-01-31T12:00:00Z\"}";
            Assert.IsTrue(PageReportReader.TryDispatch(Title, reports));
            Assert.AreEqual("2026-01-31T12:00:00Z", reports.Title);

            Assert.IsFalse(PageReportReader.TryDispatch(Title + "1", reports));
            Assert.IsFalse(PageReportReader.TryDispatch(Title.Replace("\"2026-01-31T12:00:00Z\"", "1"), reports));
            Assert.IsFalse(PageReportReader.TryDispatch("[" + Title + "]", reports));
            string deep = string.Concat(Enumerable.Repeat("{\"zarvik.webview.x\":", 100_000));
            Assert.IsFalse(PageReportReader.TryDispatch(deep, reports));
        }

        [Test]
        public void OtherCulturesChangeNoCookie()
        {
            CultureInfo before = Thread.CurrentThread.CurrentCulture;
            var german = (CultureInfo)CultureInfo.InvariantCulture.Clone();
            german.NumberFormat.NumberDecimalSeparator = ",";
            german.NumberFormat.NegativeSign = "~";
            Thread.CurrentThread.CurrentCulture = german;
            try
            {
                var cookie = new Cookie("n", "v\"", "d")
                {
                    ExpirationDate = new DateTime(1969, 12, 31, 23, 59, 0, DateTimeKind.Utc),
                };
                Assert.AreEqual(
                    "{\"Name\":\"n\",\"Value\":\"v\\\"\",\"Domain\":\"d\",\"Path\":\"/\",\"HttpOnly\":false," +
                    "\"Secure\":false,\"ExpirationDate\":-60}",
                    cookie.ToJson());
                Assert.AreEqual(
                    cookie.ExpirationDate, Cookie.ReadAll("{\"Items\": [" + cookie.ToJson() + "]}")[0].ExpirationDate);
            }
            finally
            {
                Thread.CurrentThread.CurrentCulture = before;
            }
        }

        private sealed class ReportRecorder : IPageReports
        {
            internal string Title { get; private set; }

            public void OnTitle(string title) => Title = title;

            public void OnUrl(UrlChange change) => Assert.Fail("a URL");

            public void OnFocusedInputField(FocusedInputField field) => Assert.Fail("a field");

            public void OnConsoleMessage(ConsoleMessage message) => Assert.Fail("a console message");
        }
    }
}
