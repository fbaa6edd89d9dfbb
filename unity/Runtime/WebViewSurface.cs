using System;
using UnityEngine;
using UnityEngine.UI;
using Object = UnityEngine.Object;

namespace Zarvik.Orvella
{
    /// <summary>Shows a browser's texture on a RawImage or a mesh. Main thread.</summary>
    internal sealed class WebViewSurface : IDisposable
    {
        // Textures of the library have the page's first row where Unity expects the last one.
        private static readonly Rect Flipped = new Rect(0, 1, 1, -1);
        private static readonly Vector4 FlippedScaleOffset = new Vector4(1, -1, 0, 1);

        private static readonly int MainTexture = Shader.PropertyToID("_MainTex");
        private static readonly int MainTextureScaleOffset = Shader.PropertyToID("_MainTex_ST");
        private static readonly int BaseMap = Shader.PropertyToID("_BaseMap");
        private static readonly int BaseMapScaleOffset = Shader.PropertyToID("_BaseMap_ST");

        private readonly Browser browser;
        private readonly RawImage image;
        private readonly Renderer renderer;

        internal WebViewSurface(Browser browser, RawImage image, Renderer renderer)
        {
            this.browser = browser;
            this.image = image;
            this.renderer = renderer;
            browser.TextureChanged += Show;
        }

        /// <summary>What is shown; null before the first picture.</summary>
        internal Texture2D Texture { get; private set; }

        /// <summary>Before the browser is disposed, while its texture still is there.</summary>
        public void Dispose()
        {
            browser.TextureChanged -= Show;
            Apply(null);
            Release();
        }

        private void Show()
        {
            Texture2D made = Texture2D.CreateExternalTexture(browser.TextureWidth, browser.TextureHeight,
                TextureFormat.BGRA32, mipChain: false, linear: false, browser.Texture);
            made.hideFlags = HideFlags.DontSave;
            made.wrapMode = TextureWrapMode.Clamp;
            made.filterMode = FilterMode.Bilinear;
            Apply(made);
            Release();
            Texture = made;
        }

        private void Release()
        {
            if (Texture != null)
            {
                Object.Destroy(Texture);
                Texture = null;
            }
        }

        private void Apply(Texture2D texture)
        {
            if (image != null)
            {
                image.texture = texture;
                image.uvRect = Flipped;
            }
            if (renderer == null)
            {
                return;
            }
            // A property block leaves materials, which other objects may share, as they are.
            var properties = new MaterialPropertyBlock();
            if (texture != null)
            {
                renderer.GetPropertyBlock(properties);
                properties.SetTexture(MainTexture, texture);
                properties.SetVector(MainTextureScaleOffset, FlippedScaleOffset);
                properties.SetTexture(BaseMap, texture);
                properties.SetVector(BaseMapScaleOffset, FlippedScaleOffset);
            }
            renderer.SetPropertyBlock(properties);
        }
    }
}
