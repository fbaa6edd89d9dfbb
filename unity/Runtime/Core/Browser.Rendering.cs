using System;
using System.Threading.Tasks;

namespace Zarvik.Orvella
{
    public sealed partial class Browser
    {
        private const float ZoomStep = 0.1F;
        private const float LowestZoomFactor = 0.1F;

        private readonly PromiseTable<byte[]> dataRequests = new PromiseTable<byte[]>();
        private float zoomFactor = 1;

        /// <summary>
        /// There is a new texture: <see cref="Texture"/>. The one before may be drawn for a few more calls of
        /// <see cref="WebViewHost.Pump"/> only.
        /// </summary>
        public event Action TextureChanged;

        /// <summary>
        /// The function for the engine's render thread, to be called once a frame with <see cref="RenderEventId"/>.
        /// </summary>
        public static IntPtr RenderFunction
        {
            get
            {
                WebViewHost.Start();
                return NativeMethods.WebView_getRenderFunction();
            }
        }

        /// <summary>What the render function is called with for this offscreen view.</summary>
        public int RenderEventId { get; private set; }

        /// <summary>
        /// The ID3D11ShaderResourceView of the page, BGRA with premultiplied alpha, first row at the top. Zero before the
        /// first picture and after <see cref="Dispose"/>.
        /// </summary>
        public IntPtr Texture { get; private set; }

        /// <summary>Width of the texture: the view's, scaled by the zoom.</summary>
        public int TextureWidth => Scale(Width);

        /// <summary>Height of the texture: the view's, scaled by the zoom.</summary>
        public int TextureHeight => Scale(Height);

        /// <summary>Sets the size. An offscreen view gets a new texture with the next picture.</summary>
        /// <exception cref="ArgumentOutOfRangeException">The size is not positive.</exception>
        public void Resize(int width, int height)
        {
            IntPtr handle = Handle();
            RequireSize(width, height);
            Width = width;
            Height = height;
            NativeMethods.WebView_resize(handle, width, height);
        }

        /// <summary>Places a view in the app's window. No effect on an offscreen view.</summary>
        /// <exception cref="ArgumentOutOfRangeException">The size is not positive.</exception>
        public void SetRect(int x, int y, int width, int height)
        {
            IntPtr handle = Handle();
            RequireSize(width, height);
            if (!IsOffscreen)
            {
                Width = width;
                Height = height;
                NativeMethods.WebView_setRect(handle, x, y, width, height);
            }
        }

        /// <summary>Shows or hides a view in the app's window. No effect on an offscreen view.</summary>
        public void SetVisible(bool isVisible)
        {
            NativeMethods.WebView_setVisible(Handle(), NativeBoolean.From(isVisible));
        }

        /// <summary>Starts or stops the capturing of an offscreen view: a stopped view costs next to nothing.</summary>
        public void SetRenderingEnabled(bool isEnabled)
        {
            NativeMethods.WebView_setRenderingEnabled(Handle(), NativeBoolean.From(isEnabled));
        }

        /// <summary>
        /// Whether pages loaded from now on get a white background if they have none. They do at first.
        /// </summary>
        public void SetDefaultBackgroundEnabled(bool isEnabled)
        {
            NativeMethods.WebView_setDefaultBackgroundEnabled(Handle(), NativeBoolean.From(isEnabled));
        }

        /// <summary>Makes the content of an offscreen view larger, by a tenth of the view's size.</summary>
        public void ZoomIn()
        {
            NativeMethods.WebView_zoomIn(Handle());
            if (IsOffscreen)
            {
                zoomFactor = Math.Max(zoomFactor - ZoomStep, LowestZoomFactor);
            }
        }

        /// <summary>Makes the content of an offscreen view smaller, by a tenth of the view's size.</summary>
        public void ZoomOut()
        {
            NativeMethods.WebView_zoomOut(Handle());
            if (IsOffscreen)
            {
                zoomFactor += ZoomStep;
            }
        }

        /// <summary>Takes a picture of the page.</summary>
        /// <returns>A PNG file. Fails with <see cref="TimeoutException"/> when none comes within ten seconds.</returns>
        public Task<byte[]> CaptureScreenshot()
        {
            return RequestData(NativeMethods.WebView_captureScreenshot);
        }

        /// <summary>Takes the page's pixels.</summary>
        /// <returns>
        /// <see cref="TextureWidth"/> times <see cref="TextureHeight"/> pixels of four bytes, BGRA with premultiplied
        /// alpha, bottom row first. Fails with <see cref="TimeoutException"/> when none come within ten seconds.
        /// </returns>
        public Task<byte[]> GetRawTextureData()
        {
            return RequestData(NativeMethods.WebView_getRawTextureData);
        }

        private Task<byte[]> RequestData(Action<IntPtr, byte[]> request)
        {
            IntPtr handle = Handle();
            Task<byte[]> task = dataRequests.Add(WebViewHost.Now + AnswerTime, out int id);
            using (var idText = new NativeText(id))
            {
                request(handle, idText.Bytes);
            }
            return task;
        }

        private int Scale(int size)
        {
            return (int)(zoomFactor * size);
        }

        private void ChangeTexture(IntPtr texture)
        {
            RetireTexture();
            Texture = texture;
            TextureChanged?.Invoke();
        }

        private void RetireTexture()
        {
            if (Texture != IntPtr.Zero)
            {
                WebViewHost.Retire(Texture);
                Texture = IntPtr.Zero;
            }
        }
    }
}
