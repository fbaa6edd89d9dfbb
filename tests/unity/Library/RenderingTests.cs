using System;
using System.Collections.Generic;
using System.Threading;
using System.Threading.Tasks;
using NUnit.Framework;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>Textures, pictures and the end of everything, with the engine's device and render thread.</summary>
    public sealed class RenderingTests
    {
        private const uint Red = 0xFFFF0000;
        private const uint Blue = 0xFF0000FF;
        private const string RedOverBlue = "<body style='margin:0;background:#00f'><div style='background:#f00;height:50vh'></div>";

        [Test]
        public void AReplacedTextureIsGivenBackSomeFramesLater()
        {
            using Browser browser = Browser.CreateOffscreen(300, 200);
            Show(browser);
            Assert.AreEqual(1, Direct3D.LiveViews);
            Assert.AreEqual((300u, 200u), Direct3D.SizeOf(browser.Texture));
            IntPtr first = browser.Texture;
            browser.Resize(200, 300);
            bool wasAliveAtChange = false;
            browser.TextureChanged += () => wasAliveAtChange = Direct3D.LiveViews == 2 && Direct3D.SizeOf(first) == (300u, 200u);
            Engine.WaitUntil(() => browser.Texture != first, "no new texture", browser);

            Assert.IsTrue(wasAliveAtChange, "the old texture was gone before its last frame was drawn");
            Assert.AreEqual(2, Direct3D.LiveViews);
            Assert.AreEqual((200u, 300u), Direct3D.SizeOf(browser.Texture));
            Assert.AreEqual((200, 300), (browser.TextureWidth, browser.TextureHeight));
            for (int i = 0; i < TextureRetirement.FramesInFlight; ++i)
            {
                Engine.Frame(browser);
            }
            Engine.FinishRendering();
            Engine.Frame(browser);
            Assert.AreEqual(1, Direct3D.LiveViews);
            Engine.WaitUntil(() => Pixel(browser, 195, 295) == Blue, "the new texture stays empty", browser);
        }

        [Test]
        public void ZoomScalesTheTextureAsTheLibraryDoes()
        {
            using Browser browser = Browser.CreateOffscreen(300, 201);
            Show(browser);
            IntPtr before = browser.Texture;
            browser.ZoomIn();
            browser.ZoomIn();
            browser.ZoomIn();
            Engine.WaitUntil(() => browser.Texture != before &&
                Direct3D.SizeOf(browser.Texture) == ((uint)browser.TextureWidth, (uint)browser.TextureHeight),
                "the sizes differ", browser);
            Assert.IsTrue(browser.TextureWidth < 250);
        }

        [Test]
        public void PicturesAndPixelsCome()
        {
            using Browser browser = Browser.CreateOffscreen(300, 200);
            Show(browser);
            Task<byte[]> screenshot = browser.CaptureScreenshot();
            Task<byte[]> pixels = browser.GetRawTextureData();
            byte[] png = Engine.Await(screenshot, browser);
            Assert.AreEqual((byte)'P', png[1]);
            byte[] bytes = Engine.Await(pixels, browser);
            Assert.AreEqual(300 * 200 * 4, bytes.Length);
            // The bottom row is the first one.
            Assert.AreEqual(Blue, BitConverter.ToUInt32(bytes, 0));
            Assert.AreEqual(Red, BitConverter.ToUInt32(bytes, bytes.Length - 4));
        }

        [Test]
        public void ShutdownLeavesNothingBehindAndStartWorksAgain()
        {
            Browser first = Browser.CreateOffscreen(300, 200);
            Browser second = Browser.CreateOffscreen(200, 100);
            Show(first);
            Show(second);
            Task<byte[]> unanswered = first.CaptureScreenshot();
            WebViewHost.Shutdown();
            Engine.FinishRendering();

            Assert.IsTrue(first.IsDisposed && second.IsDisposed && unanswered.IsCanceled);
            Assert.AreEqual(0, Direct3D.LiveViews);
            WaitForTheEndOfTextures();
            NativeMethods.WebView_logVersionInfo();
            var lines = new List<string>();
            WebViewHost.Logged += (severity, line) => lines.Add(line);
            WebViewHost.Start();
            WebViewHost.Pump();
            Assert.AreEqual(0, lines.Count, "the library still calls in");
            WebViewHost.LogVersion();
            WebViewHost.Pump();
            Assert.AreEqual(1, lines.Count);

            using Browser later = Browser.CreateOffscreen(300, 200);
            Show(later);
            Assert.AreEqual("7", Engine.Await(later.ExecuteJavaScript("3 + 4")));
        }

        [TestCase(false)]
        [TestCase(true)]
        public void ATextureThatNobodyTakesIsGivenBack(bool shutsDown)
        {
            Browser browser = Browser.CreateOffscreen(300, 200);
            Engine.Await(browser.LoadHtml(RedOverBlue));
            for (int i = 0; i < 400 && Direct3D.LiveViews == 0; ++i)
            {
                // Announced with the first picture, by the render thread: into the queue, which nobody reads now.
                Engine.IssuePluginEvent(Browser.RenderFunction, browser.RenderEventId);
                Engine.FinishRendering();
                Thread.Sleep(5);
            }
            Thread.Sleep(300);
            Engine.IssuePluginEvent(Browser.RenderFunction, browser.RenderEventId);
            Engine.FinishRendering();
            Assert.AreEqual(IntPtr.Zero, browser.Texture);
            browser.Dispose();
            if (shutsDown)
            {
                WebViewHost.Shutdown();
            }
            else
            {
                Engine.Frame();
            }
            WaitForTheEndOfTextures();
        }

        [Test]
        public void FramesMovesAndKeysMakeNoGarbage()
        {
            using Browser browser = Browser.CreateOffscreen(300, 200);
            Show(browser);
            var pointer = new PointerInput(browser);
            var keyboard = new KeyboardInput(browser);
            void Use(int count)
            {
                for (int i = 0; i < count; ++i)
                {
                    pointer.Move((float)(i % 100) / 100, 0.5F);
                    pointer.Flush();
                    keyboard.Type('a');
                    WebViewHost.Pump();
                }
            }

            Use(50);
            long before = GC.GetAllocatedBytesForCurrentThread();
            Use(100);
            long allocated = GC.GetAllocatedBytesForCurrentThread() - before;
            Assert.AreEqual(0L, allocated);
        }

        private static void Show(Browser browser)
        {
            Engine.Await(browser.LoadHtml(RedOverBlue), browser);
            Engine.WaitUntil(() => browser.Texture != IntPtr.Zero && Pixel(browser, 5, 5) == Red, "no picture", browser);
        }

        private static uint Pixel(Browser browser, int x, int y)
        {
            Engine.FinishRendering();
            return Direct3D.Pixel(browser.Texture, x, y);
        }

        /// <summary>The library gives up its own reference when the view has closed on its UI thread.</summary>
        private static void WaitForTheEndOfTextures()
        {
            SpinWait.SpinUntil(() => Direct3D.LiveViews + Direct3D.LiveTextures == 0, TimeSpan.FromSeconds(10));
            Assert.AreEqual((0, 0), (Direct3D.LiveViews, Direct3D.LiveTextures));
        }
    }
}
