using System;
using UnityEngine;
using UnityEngine.UI;

namespace Zarvik.Orvella.Samples
{
    /// <summary>
    /// Shows a page on a canvas and, clickable too, on a quad in the scene. Put it on an empty object of a new scene with
    /// an EventSystem. The page talks to Unity and Unity to the page.
    /// </summary>
    public sealed class BasicSample : MonoBehaviour
    {
        private const string Greeting =
            "<body style='font:40px sans-serif;text-align:center'><h1>Hello, Unity</h1>" +
            "<button style='font:inherit' onclick='zarvik.postMessage(\"pressed\")'>Press</button><p id=answer></p>";

        [SerializeField]
        private string url = "https://example.org";

        private int presses;

        private async void Start()
        {
            WebView onCanvas = MakeOnCanvas();
            WebView onMesh = MakeOnMesh();
            onMesh.Browser.MessageReceived += message =>
                onMesh.Browser.PostJavaScript("document.getElementById('answer').textContent = 'Pressed " + ++presses + "'");
            onCanvas.Browser.TitleChanged += title => Debug.Log("Title: " + title);
            try
            {
                await onMesh.LoadHtml(Greeting);
                await onCanvas.LoadUrl(url);
                Debug.Log(await onCanvas.ExecuteJavaScript("navigator.userAgent"));
            }
            catch (WebViewLoadException failure)
            {
                Debug.LogError(failure.Message, this);
            }
            catch (OperationCanceledException)
            {
                // Play mode has stopped.
            }
        }

        private static WebView MakeOnCanvas()
        {
            var canvas = new GameObject("Canvas");
            canvas.AddComponent<Canvas>().renderMode = RenderMode.ScreenSpaceOverlay;
            canvas.AddComponent<GraphicRaycaster>();
            var image = new GameObject("Page");
            image.transform.SetParent(canvas.transform, false);
            image.AddComponent<RawImage>().rectTransform.sizeDelta = new Vector2(640, 360);
            WebView view = image.AddComponent<WebView>();
            image.AddComponent<WebViewInput>();
            return view;
        }

        private static WebView MakeOnMesh()
        {
            GameObject quad = GameObject.CreatePrimitive(PrimitiveType.Quad);
            quad.transform.localScale = new Vector3(3.2F, 1.8F, 1);
            quad.transform.position = new Vector3(6, 0, 0); // beside the canvas's image
            quad.GetComponent<Renderer>().material = new Material(Shader.Find("Zarvik/Web View"));
            WebView view = quad.AddComponent<WebView>();
            quad.AddComponent<WebViewInput>();
            Camera.main.gameObject.AddComponent<UnityEngine.EventSystems.PhysicsRaycaster>();
            return view;
        }
    }
}
