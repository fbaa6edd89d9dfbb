using System;
using System.Threading.Tasks;
using UnityEngine;
using UnityEngine.Events;
using UnityEngine.UI;

namespace Zarvik.Orvella
{
    /// <summary>
    /// A web page on this object's RawImage or mesh. The web view is made when the object starts or when a script first
    /// asks for it, and ends with the object. Main thread.
    /// </summary>
    [AddComponentMenu("Zarvik/Web View")]
    [DisallowMultipleComponent]
    public sealed class WebView : MonoBehaviour
    {
        [SerializeField]
        [Tooltip("The page to load at the start. May be empty.")]
        private string initialUrl = "";

        [SerializeField]
        [Tooltip("Size of the page in pixels.")]
        private Vector2Int resolution = new Vector2Int(1280, 720);

        [SerializeField]
        [Tooltip("Pages without a background of their own are transparent instead of white.")]
        private bool isTransparent = false;

        [SerializeField]
        [Tooltip("Uses for every size the way of capturing that pages larger than the app's window need.")]
        private bool alwaysCapturePreview = false;

        [SerializeField]
        private UnityEvent<string> onUrlChanged = new UnityEvent<string>();

        [SerializeField]
        private UnityEvent<string> onTitleChanged = new UnityEvent<string>();

        [SerializeField]
        private UnityEvent<float> onLoadProgressed = new UnityEvent<float>();

        [SerializeField]
        private UnityEvent<string> onMessageReceived = new UnityEvent<string>();

        private Browser browser;
        private WebViewSurface surface;
        private IntPtr renderFunction;
        private bool isAwake;
        private bool isDestroyed;

        /// <summary>The web view itself: all events and calls. It belongs to this component, which disposes it.</summary>
        /// <exception cref="ObjectDisposedException">The component is destroyed.</exception>
        /// <exception cref="InvalidOperationException">The object has never been active.</exception>
        /// <exception cref="PlatformNotSupportedException">There is no native library for this platform.</exception>
        public Browser Browser
        {
            get
            {
                EnsureBrowser();
                return browser;
            }
        }

        /// <summary>The picture of the page; null before the first one. A change of size replaces it.</summary>
        public Texture2D Texture => surface?.Texture;

        /// <summary>Size of the page in pixels.</summary>
        public Vector2Int Resolution
        {
            get => resolution;
            set
            {
                if (browser != null && !browser.IsDisposed)
                {
                    browser.Resize(value.x, value.y);
                }
                resolution = value;
            }
        }

        /// <summary>See <see cref="Zarvik.Orvella.Browser.LoadUrl(string)"/>.</summary>
        public Task LoadUrl(string url)
        {
            return Browser.LoadUrl(url);
        }

        /// <summary>See <see cref="Zarvik.Orvella.Browser.LoadHtml"/>.</summary>
        public Task LoadHtml(string html)
        {
            return Browser.LoadHtml(html);
        }

        /// <summary>See <see cref="Zarvik.Orvella.Browser.ExecuteJavaScript"/>.</summary>
        public Task<string> ExecuteJavaScript(string script)
        {
            return Browser.ExecuteJavaScript(script);
        }

        /// <summary>Takes a picture of the page.</summary>
        /// <returns>A texture of its own, which the caller destroys.</returns>
        public async Task<Texture2D> CaptureScreenshot()
        {
            byte[] png = await Browser.CaptureScreenshot();
            var picture = new Texture2D(2, 2, TextureFormat.RGBA32, mipChain: false);
            picture.LoadImage(png);
            return picture;
        }

        private void Awake()
        {
            isAwake = true;
        }

        private void OnEnable()
        {
            if (browser != null && !browser.IsDisposed)
            {
                browser.SetRenderingEnabled(true);
            }
        }

        private void OnDisable()
        {
            if (browser != null && !browser.IsDisposed)
            {
                browser.SetRenderingEnabled(false);
            }
        }

        private void Start()
        {
            EnsureBrowser();
        }

        private void Update()
        {
            if (browser != null && !browser.IsDisposed)
            {
                // The render thread uploads the newest picture before it draws this frame.
                GL.IssuePluginEvent(renderFunction, browser.RenderEventId);
            }
        }

        private void OnDestroy()
        {
            isDestroyed = true;
            surface?.Dispose();
            browser?.Dispose();
        }

        private void EnsureBrowser()
        {
            if (isDestroyed)
            {
                throw new ObjectDisposedException(nameof(WebView), "This web view is destroyed.");
            }
            if (browser != null)
            {
                return;
            }
            if (!isAwake && !gameObject.activeInHierarchy)
            {
                // Unity never tells such an object that it is destroyed, so nobody would end the web view.
                throw new InvalidOperationException("Activate the object of a web view before it is used.");
            }
            browser = Browser.CreateOffscreen(resolution.x, resolution.y, alwaysCapturePreview);
            renderFunction = Browser.RenderFunction;
            surface = new WebViewSurface(browser, GetComponent<RawImage>(), GetComponent<Renderer>());
            browser.UrlChanged += change => onUrlChanged.Invoke(change.Url);
            browser.TitleChanged += onTitleChanged.Invoke;
            browser.LoadProgressed += onLoadProgressed.Invoke;
            browser.MessageReceived += onMessageReceived.Invoke;
            browser.SetDefaultBackgroundEnabled(!isTransparent);
            if (!string.IsNullOrEmpty(initialUrl))
            {
                WebViewRunner.Observe(browser.LoadUrl(initialUrl), initialUrl, this);
            }
        }
    }
}
