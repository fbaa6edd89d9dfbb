using System;
using UnityEngine;

namespace Zarvik.Orvella
{
    /// <summary>
    /// A web page in the app's window, over the place of this RectTransform in a canvas of the kind Screen Space -
    /// Overlay. It stands above everything that Unity draws and gets the window's own input. Main thread.
    /// </summary>
    [AddComponentMenu("Zarvik/Window Web View")]
    [RequireComponent(typeof(RectTransform))]
    [DisallowMultipleComponent]
    public sealed class WindowWebView : MonoBehaviour
    {
        private const float UnscaledDotsPerInch = 96;

        [SerializeField]
        [Tooltip("The page to load at the start. May be empty.")]
        private string initialUrl = "";

        private readonly Vector3[] corners = new Vector3[4];
        private Browser browser;
        private WindowPlacement placement;
        private bool isDestroyed;

        /// <summary>The web view itself. It belongs to this component, which disposes it.</summary>
        /// <exception cref="ObjectDisposedException">The component is destroyed.</exception>
        /// <exception cref="InvalidOperationException">The object is not active, and was not used before.</exception>
        /// <exception cref="PlatformNotSupportedException">There is no native library for this platform.</exception>
        public Browser Browser
        {
            get
            {
                EnsureBrowser();
                return browser;
            }
        }

        private void Start()
        {
            EnsureBrowser();
        }

        private void OnEnable()
        {
            if (browser != null && !browser.IsDisposed)
            {
                browser.SetVisible(true);
            }
        }

        private void OnDisable()
        {
            if (browser != null && !browser.IsDisposed)
            {
                browser.SetVisible(false);
            }
        }

        private void LateUpdate()
        {
            if (browser == null || browser.IsDisposed)
            {
                return;
            }
            WindowPlacement current = Place();
            if (!current.Equals(placement))
            {
                placement = current;
                browser.SetRect(current.X, current.Y, current.Width, current.Height);
            }
        }

        private void OnDestroy()
        {
            isDestroyed = true;
            browser?.Dispose();
        }

        private void EnsureBrowser()
        {
            if (isDestroyed)
            {
                throw new ObjectDisposedException(nameof(WindowWebView), "This web view is destroyed.");
            }
            if (browser != null)
            {
                return;
            }
            if (!gameObject.activeInHierarchy)
            {
                throw new InvalidOperationException("Activate the object of a web view before it is used.");
            }
            placement = Place();
            browser = Browser.CreateInWindow(placement.X, placement.Y, placement.Width, placement.Height);
            if (!string.IsNullOrEmpty(initialUrl))
            {
                WebViewRunner.Observe(browser.LoadUrl(initialUrl), initialUrl, this);
            }
        }

        private WindowPlacement Place()
        {
            ((RectTransform)transform).GetWorldCorners(corners);
            float pixelsPerUnit = Screen.dpi > 0 ? Screen.dpi / UnscaledDotsPerInch : 1;
            return WindowPlacement.FromScreen(
                corners[0].x, corners[0].y, corners[2].x, corners[2].y, Screen.height, pixelsPerUnit);
        }
    }
}
