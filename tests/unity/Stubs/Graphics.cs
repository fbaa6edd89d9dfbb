using System;
using System.Collections.Generic;

namespace UnityEngine
{
    public static class GL
    {
        /// <summary>The render thread of the test.</summary>
        public static Action<IntPtr, int> PluginEvents;

        public static void IssuePluginEvent(IntPtr callback, int eventID) => PluginEvents(callback, eventID);
    }

    public enum TextureFormat
    {
        RGBA32, BGRA32,
    }

    public enum TextureWrapMode
    {
        Clamp,
    }

    public enum FilterMode
    {
        Bilinear,
    }

    public class Texture : Object
    {
        public TextureWrapMode wrapMode;
        public FilterMode filterMode;
        public int width, height;
    }

    public sealed class Texture2D : Texture
    {
        public IntPtr NativePointer;
        public byte[] LoadedImage;

        public Texture2D(int width, int height, TextureFormat format, bool mipChain) =>
            (this.width, this.height) = (width, height);

        public static Texture2D CreateExternalTexture(
            int width, int height, TextureFormat format, bool mipChain, bool linear, IntPtr nativeTex) =>
            new Texture2D(width, height, format, mipChain) { NativePointer = nativeTex };

        public void LoadImage(byte[] data) => LoadedImage = data;
    }

    public sealed class Material : Object
    {
        public Material(Shader shader)
        {
        }
    }

    public sealed class Shader : Object
    {
        public static Shader Find(string name) => new Shader { name = name };

        public static int PropertyToID(string name) => name.GetHashCode();
    }

    public sealed class MaterialPropertyBlock
    {
        public Dictionary<int, object> Values = new Dictionary<int, object>();

        public void SetTexture(int nameID, Texture value) => Values[nameID] = value;

        public void SetVector(int nameID, Vector4 value) => Values[nameID] = value;
    }

    public class Renderer : Component
    {
        public Material material;
        public MaterialPropertyBlock Properties = new MaterialPropertyBlock();

        public void GetPropertyBlock(MaterialPropertyBlock properties) =>
            properties.Values = new Dictionary<int, object>(Properties.Values);

        public void SetPropertyBlock(MaterialPropertyBlock properties) => Properties = properties;
    }

    public sealed class MeshRenderer : Renderer
    {
    }

    public struct Ray
    {
        public Vector2 Origin;
    }

    public sealed class Camera : Component
    {
        public static Camera main;

        public Ray ScreenPointToRay(Vector2 position) => new Ray { Origin = position };
    }

    public struct RaycastHit
    {
        public Vector2 textureCoord;
    }

    public class Collider : Component
    {
        /// <summary>Stands for a mesh of one unit that fills a screen of 100 pixels.</summary>
        public bool Raycast(Ray ray, out RaycastHit hitInfo, float maxDistance)
        {
            hitInfo = new RaycastHit { textureCoord = new Vector2(ray.Origin.x / 100, ray.Origin.y / 100) };
            return ray.Origin.x >= 0 && ray.Origin.x <= 100 && ray.Origin.y >= 0 && ray.Origin.y <= 100;
        }
    }

    public enum RenderMode
    {
        ScreenSpaceOverlay, ScreenSpaceCamera,
    }

    public sealed class Canvas : Component
    {
        public RenderMode renderMode;
        public Camera worldCamera;

        public Canvas rootCanvas => this;
    }

    public enum PrimitiveType
    {
        Quad,
    }

    public static class RectTransformUtility
    {
        public static Camera UsedCamera { get; private set; }

        public static bool ScreenPointToLocalPointInRectangle(
            RectTransform rect, Vector2 screenPoint, Camera cam, out Vector2 localPoint)
        {
            localPoint = screenPoint;
            UsedCamera = cam;
            return true;
        }
    }
}

namespace UnityEngine.EventSystems
{
    public sealed class PhysicsRaycaster : Component
    {
    }
}

namespace UnityEngine.UI
{
    public sealed class GraphicRaycaster : Component
    {
    }

    public sealed class RawImage : Component
    {
        public Texture texture;
        public Rect uvRect = new Rect(0, 0, 1, 1);

        public RectTransform rectTransform => (RectTransform)transform;
    }
}

namespace UnityEngine.Rendering
{
    public enum GraphicsDeviceType
    {
        Direct3D11, Direct3D12,
    }
}
