using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Threading.Tasks;
using NUnit.Framework;
using UnityEngine;
using UnityEngine.EventSystems;
using UnityEngine.UI;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>The components, on objects of a scene that calls them as Unity does.</summary>
    public sealed class ComponentTests
    {
        private const string Green = "<body style='margin:0;background:#0f0'><textarea id=field></textarea>" +
            "<script>for (const type of ['mousedown', 'mouseup', 'mousemove'])" +
            "  addEventListener(type, e => zarvik.postMessage(type + ' ' + e.clientX + ',' + e.clientY));</script>";

        [Test]
        public void APageIsShownOnAnImageAndOnAMesh()
        {
            using var scene = new Scene();
            RawImage image = scene.Add("image").AddComponent<RawImage>();
            Renderer mesh = scene.Add("mesh").AddComponent<MeshRenderer>();
            WebView onImage = image.gameObject.AddComponent<WebView>();
            WebView onMesh = mesh.gameObject.AddComponent<WebView>();
            onMesh.Resolution = new Vector2Int(640, 320);
            scene.Await(onImage.LoadHtml(Green));
            scene.Await(onMesh.LoadHtml(Green));
            scene.WaitUntil(() => IsGreen(onImage.Texture) && IsGreen(onMesh.Texture), "no picture");

            Assert.IsTrue(ReferenceEquals(onImage.Texture, image.texture));
            Assert.AreEqual((1280, 720), (image.texture.width, image.texture.height));
            Assert.AreEqual(-1F, image.uvRect.height);
            Assert.AreEqual(onMesh.Texture, mesh.Properties.Values[Shader.PropertyToID("_MainTex")]);
            Assert.AreEqual(-1F, ((Vector4)mesh.Properties.Values[Shader.PropertyToID("_BaseMap_ST")]).y);

            Texture2D before = onMesh.Texture;
            onMesh.Resolution = new Vector2Int(720, 320);
            scene.WaitUntil(() => onMesh.Texture != before && IsGreen(onMesh.Texture), "no new picture");
            Assert.IsTrue(before.IsDestroyed);
            Assert.AreEqual(720, onMesh.Texture.width);

            Texture2D screenshot = scene.Await(onMesh.CaptureScreenshot());
            Assert.AreEqual((byte)'P', screenshot.LoadedImage[1]);
            UnityEngine.Object.Destroy(screenshot);
        }

        [TestCase("unload", "stop", "reload")]
        [TestCase("stop", "unload", "reload")]
        [TestCase("reload", "unload", "stop")]
        public void ScenesPlayModeAndScriptsEndInAnyOrder(string first, string second, string third)
        {
            var scene = new Scene();
            WebView view = scene.Add("mesh").AddComponent<MeshRenderer>().gameObject.AddComponent<WebView>();
            scene.Await(view.LoadHtml(Green));
            scene.WaitUntil(() => IsGreen(view.Texture), "no picture");
            Browser browser = view.Browser;
            Task<string> pending = view.ExecuteJavaScript("1");
            var ends = new Dictionary<string, Action>
            {
                ["unload"] = scene.Unload,
                ["stop"] = scene.StopPlaying,
                ["reload"] = UnityEditor.AssemblyReloadEvents.Raise,
            };
            ends[first]();
            Assert.IsTrue(browser.IsDisposed && pending.IsCanceled);
            Assert.Throws<ObjectDisposedException>(() => view.LoadUrl("about:blank"));
            Assert.AreEqual(first == "unload", WebViewHost.IsStarted, "only other scenes go on");
            Engine.WaitUntil(() => Direct3D.LiveViews == 0, "a texture stays");
            ends[second]();
            ends[third]();
            Assert.IsFalse(WebViewHost.IsStarted);
            Assert.AreEqual(0, UnityEngine.Object.Alive.OfType<Texture2D>().Count());

            using var again = new Scene();
            WebView next = again.Add("mesh").AddComponent<WebView>();
            again.Await(next.LoadHtml(Green));
            Assert.AreEqual("4", again.Await(next.ExecuteJavaScript("2 + 2")));
        }

        [Test]
        public void AHiddenViewStopsCapturing()
        {
            using var scene = new Scene();
            GameObject holder = scene.Add("image");
            WebView view = holder.AddComponent<RawImage>().gameObject.AddComponent<WebView>();
            scene.Await(view.LoadHtml(Green));
            scene.WaitUntil(() => IsGreen(view.Texture), "no picture");
            holder.SetActive(false);
            // A picture that is being taken still comes.
            Engine.Pass(TimeSpan.FromMilliseconds(300), view.Browser);
            scene.Await(view.ExecuteJavaScript("document.body.style.background = '#00f'"));
            Engine.Pass(TimeSpan.FromMilliseconds(500), view.Browser);
            Engine.FinishRendering();
            Assert.IsTrue(IsGreen(view.Texture), "a hidden page was captured");
            holder.SetActive(true);
            scene.WaitUntil(() => !IsGreen(view.Texture), "the page stands still");
        }

        [Test]
        public void WrongUseIsToldClearly()
        {
            using var scene = new Scene();
            GameObject hidden = scene.Add("hidden");
            hidden.SetActive(false);
            WebView view = hidden.AddComponent<WebView>();
            Assert.Throws<InvalidOperationException>(() => view.LoadUrl("about:blank"));
            Application.isPlaying = false;
            WebView edited = scene.Add("edited").AddComponent<WebView>();
            Assert.Throws<InvalidOperationException>(() => edited.LoadUrl("about:blank"));
            Application.isPlaying = true;
            Assert.AreEqual(0, WebViewHost.BrowserCount);
        }

        [Test]
        public void TheFirstPageIsLoadedAndItsFailureLogged()
        {
            using var scene = new Scene();
            WebView view = scene.Add("image").AddComponent<WebView>();
            typeof(WebView).GetField("initialUrl", BindingFlags.Instance | BindingFlags.NonPublic)
                .SetValue(view, "http://127.0.0.1:9/");
            scene.WaitUntil(() => Debug.Lines.Any(line => line.StartsWith("error: Cannot load http://127.0.0.1:9/")),
                "no error in the console");
        }

        [TestCase(true)]
        [TestCase(false)]
        public void EventsOfTheEventSystemReachThePage(bool isMesh)
        {
            using var scene = new Scene();
            GameObject holder = scene.Add("surface");
            if (isMesh)
            {
                holder.RemoveRectangle();
                holder.AddComponent<Collider>();
            }
            WebView view = holder.AddComponent<WebView>();
            view.Resolution = new Vector2Int(200, 100);
            var input = holder.AddComponent<WebViewInput>();
            scene.Await(view.LoadHtml(Green));
            var seen = new List<string>();
            view.Browser.MessageReceived += seen.Add;
            Camera camera = scene.Add("camera").AddComponent<Camera>();
            PointerEventData At(float x, float y) =>
                new PointerEventData { position = new Vector2(x, y), enterEventCamera = camera };

            ((IPointerMoveHandler)input).OnPointerMove(At(10, 90));
            ((IPointerMoveHandler)input).OnPointerMove(At(5, 95));
            ((IPointerDownHandler)input).OnPointerDown(At(5, 95));
            ((IPointerUpHandler)input).OnPointerUp(At(5, 95));
            scene.WaitUntil(() => seen.Count >= 3, "no events");
            Assert.AreEqual(new[] { "mousemove 10,5", "mousedown 10,5", "mouseup 10,5" }, seen);
            Assert.AreEqual(holder, EventSystem.current.Selected);

            scene.Await(view.ExecuteJavaScript("document.getElementById('field').focus()"));
            foreach ((KeyCode key, char character, EventModifiers modifiers) in new[]
            {
                (KeyCode.None, 'h', EventModifiers.None), (KeyCode.A, 'i', EventModifiers.Control),
                (KeyCode.Return, '\0', EventModifiers.None), (KeyCode.None, '\n', EventModifiers.None),
                (KeyCode.None, 'o', EventModifiers.None), (KeyCode.LeftArrow, '\0', EventModifiers.None),
                (KeyCode.None, 'n', EventModifiers.None),
            })
            {
                UnityEngine.Event.Queue.Enqueue(new UnityEngine.Event
                {
                    rawType = EventType.KeyDown, keyCode = key, character = character, modifiers = modifiers,
                });
            }
            var update = new BaseEventData();
            ((IUpdateSelectedHandler)input).OnUpdateSelected(update);
            Assert.AreEqual("h\nno", scene.Await(view.ExecuteJavaScript("document.getElementById('field').value")));
            Assert.IsTrue(update.used);
            ((IDeselectHandler)input).OnDeselect(update);
            Assert.AreEqual("BODY", scene.Await(view.ExecuteJavaScript("document.activeElement.tagName")));
        }

        [Test]
        public void ThePointerIsFoundWithTheCameraOfTheCanvas()
        {
            using var scene = new Scene();
            GameObject holder = scene.Add("image");
            Canvas canvas = holder.AddComponent<Canvas>();
            WebView view = holder.AddComponent<WebView>();
            var input = holder.AddComponent<WebViewInput>();
            scene.Await(view.LoadHtml(Green));
            Camera others = scene.Add("camera").AddComponent<Camera>();
            var move = new PointerEventData { enterEventCamera = others };

            ((IPointerMoveHandler)input).OnPointerMove(move);
            Assert.AreEqual(null, RectTransformUtility.UsedCamera);
            canvas.renderMode = RenderMode.ScreenSpaceCamera;
            ((IPointerMoveHandler)input).OnPointerMove(move);
            Assert.AreEqual(others, RectTransformUtility.UsedCamera);
            canvas.worldCamera = scene.Add("own").AddComponent<Camera>();
            ((IPointerMoveHandler)input).OnPointerMove(move);
            Assert.AreEqual(canvas.worldCamera, RectTransformUtility.UsedCamera);
        }

        [Test]
        public void AWindowViewFollowsItsRectangle()
        {
            using var scene = new Scene();
            GameObject holder = scene.Add("window");
            ((RectTransform)holder.transform).rect = new Rect(10, 20, 300, 200);
            var view = holder.AddComponent<WindowWebView>();
            scene.Await(view.Browser.LoadHtml(Green));
            Assert.AreEqual("300x200", scene.Await(view.Browser.ExecuteJavaScript("innerWidth + 'x' + innerHeight")));
            ((RectTransform)holder.transform).rect = new Rect(10, 20, 400, 250);
            scene.WaitUntil(() => scene.Await(view.Browser.ExecuteJavaScript("innerWidth + 'x' + innerHeight")) == "400x250",
                "the size is the old one");
        }

        private static bool IsGreen(Texture2D texture)
        {
            Engine.FinishRendering();
            return texture != null && Direct3D.Pixel(texture.NativePointer, texture.width - 2, texture.height - 2) == 0xFF00FF00;
        }
    }
}
