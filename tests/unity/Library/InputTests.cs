using System;
using System.Collections.Generic;
using NUnit.Framework;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>What pages see of an engine's input.</summary>
    public sealed class InputTests
    {
        private const string Recorder =
            "<!DOCTYPE html><body style='margin:0;height:5000px'><script>" +
            "for (const type of ['mousedown', 'mouseup', 'mousemove', 'dblclick'])" +
            "  addEventListener(type, e => zarvik.postMessage(type + ' ' + e.clientX + ',' + e.clientY + ' ' + e.button));" +
            "addEventListener('scroll', () => zarvik.postMessage('scroll ' + scrollX + ',' + scrollY));" +
            "</script>";

        [Test]
        public void APointerPressesReleasesAndDoubleClicksWhereItIs()
        {
            using Browser browser = Browser.CreateOffscreen(400, 200);
            List<string> seen = Record(browser);
            var pointer = new PointerInput(browser);
            pointer.Press(0.25F, 0.75F, MouseButton.Left, 1.0);
            pointer.Release(0.25F, 0.75F, MouseButton.Left);
            pointer.Press(0.25F, 0.75F, MouseButton.Left, 1.2);
            pointer.Release(0.25F, 0.75F, MouseButton.Left);
            Engine.WaitUntil(() => seen.Contains("dblclick 100,50 0"), "no double click");
            Assert.IsTrue(seen.Contains("mousedown 100,50 0") && seen.Contains("mouseup 100,50 0"));
            Assert.IsTrue(seen.IndexOf("mousemove 100,50 0") < seen.IndexOf("mousedown 100,50 0"));

            seen.Clear();
            pointer.Press(0.25F, 0.75F, MouseButton.Left, 2.0);
            pointer.Release(0.25F, 0.75F, MouseButton.Left);
            pointer.Press(0.5F, 0.75F, MouseButton.Left, 2.1);
            pointer.Release(0.5F, 0.75F, MouseButton.Left);
            pointer.Press(0.5F, 0.75F, MouseButton.Right, 2.2);
            pointer.Release(0.5F, 0.75F, MouseButton.Right);
            Engine.WaitUntil(() => seen.Contains("mousedown 200,50 2"), "no right button");
            Assert.IsFalse(seen.Contains("dblclick 200,50 0"), "far from the first press, it is no double click");
        }

        [Test]
        public void MovesAreSentOncePerFrameAndOnlyWhenThePixelChanges()
        {
            using Browser browser = Browser.CreateOffscreen(400, 200);
            List<string> seen = Record(browser);
            var pointer = new PointerInput(browser);
            for (int i = 0; i <= 10; ++i)
            {
                pointer.Move(i / 20F, 0.5F);
            }
            pointer.Flush();
            pointer.Move(0.5001F, 0.5F);
            pointer.Flush();
            pointer.Move(2, -1);
            pointer.Flush();
            Engine.WaitUntil(() => seen.Contains("mousemove 399,199 0"), "no move");
            Assert.AreEqual(new[] { "mousemove 200,100 0", "mousemove 399,199 0" }, seen);
        }

        [Test]
        public void ADragGoesOnBesideTheSurfaceAndThePointerLeavesAfterIt()
        {
            using Browser browser = Browser.CreateOffscreen(400, 200);
            List<string> seen = Record(browser);
            var pointer = new PointerInput(browser);
            pointer.Press(0.5F, 0.5F, MouseButton.Left, 1);
            pointer.Leave();
            pointer.Move(1.5F, 0.5F);
            pointer.Release(MouseButton.Left);
            pointer.Move(0.999F, 0.5F);
            pointer.Flush();
            Engine.WaitUntil(() => seen.Count >= 6, "events are missing");
            Assert.AreEqual(
                new[]
                {
                    "mousemove 200,100 0", "mousedown 200,100 0", "mousemove 399,100 0", "mouseup 399,100 0",
                    "mousemove 0,0 0", "mousemove 399,100 0",
                },
                seen);
        }

        [Test]
        public void WheelStepsScrollDownAndFractionsAddUp()
        {
            using Browser browser = Browser.CreateOffscreen(400, 200);
            List<string> seen = Record(browser);
            var pointer = new PointerInput(browser) { ScrollSpeed = 100 };
            for (int i = 0; i < 8; ++i)
            {
                pointer.Scroll(0.5F, 0.5F, 0, -0.3125F);
                pointer.Flush();
            }
            Engine.WaitUntil(() => seen.Contains("scroll 0,250"), "not scrolled by 250 pixels");
            pointer.Scroll(0.5F, 0.5F, 0, 1);
            pointer.Flush();
            Engine.WaitUntil(() => seen.Contains("scroll 0,150"), "not scrolled back");
        }

        [Test]
        public void TextKeysAndFocusReachAField()
        {
            using Browser browser = Browser.CreateOffscreen(400, 200);
            Engine.Await(browser.LoadHtml("<textarea id=field></textarea>"));
            browser.PostJavaScript("document.getElementById('field').focus()");
            var keyboard = new KeyboardInput(browser);
            keyboard.Type("it's \\ \u00fc\u4e16x\bZ\r\tend");
            Assert.AreEqual("it's \\ \u00fc\u4e16Z\nend", Value(browser));
            browser.SendKey("ArrowLeft");
            keyboard.Type("-\U0001F600");
            Assert.AreEqual("it's \\ \u00fc\u4e16Z\nen-\U0001F600d", Value(browser));

            browser.SetFocused(false);
            Assert.AreEqual("BODY", Engine.Await(browser.ExecuteJavaScript("document.activeElement.tagName")));
        }

        private static string Value(Browser browser)
        {
            return Engine.Await(browser.ExecuteJavaScript("document.getElementById('field').value"));
        }

        private static List<string> Record(Browser browser)
        {
            var seen = new List<string>();
            Engine.Await(browser.LoadHtml(Recorder));
            browser.MessageReceived += seen.Add;
            return seen;
        }
    }
}
