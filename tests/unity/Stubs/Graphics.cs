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
        RGBA32 = 4,
        BGRA32 = 14,
    }

    public enum TextureWrapMode
    {
        Clamp = 1,
    }

    public enum FilterMode
    {
        Bilinear = 1,
    }

    public class Texture : Object
    {
        public TextureWrapMode wrapMode;
        public FilterMode filterMode;

        public int width { get; protected set; }

        public int height { get; protected set; }
    }

    public sealed class Texture2D : Texture
    {
        public IntPtr NativePointer;
        public byte[] LoadedImage;

        public Texture2D(int width, int height, TextureFormat format, bool mipChain)
        {
            this.width = width;
            this.height = height;
        }

        public static Texture2D CreateExternalTexture(
            int width, int height, TextureFormat format, bool mipChain, bool linear, IntPtr nativeTex)
        {
            return new Texture2D(width, height, format, mipChain) { NativePointer = nativeTex };
        }

        public bool LoadImage(byte[] data)
        {
            LoadedImage = data;
            return true;
        }
    }

    public sealed class Material : Object
    {
        public Material(Shader shader)
        {
        }
    }

    public sealed class Shader : Object
    {
        private static readonly List<string> Names = new List<string>();

        private Shader()
        {
        }

        public static Shader Find(string name) => new Shader { name = name };

        public static int PropertyToID(string name)
        {
            int index = Names.IndexOf(name);
            if (index < 0)
            {
                index = Names.Count;
                Names.Add(name);
            }
            return index;
        }
    }

    public sealed class MaterialPropertyBlock
    {
        public readonly Dictionary<int, object> Values = new Dictionary<int, object>();

        public void SetTexture(int nameID, Texture value) => Values[nameID] = value;

        public void SetVector(int nameID, Vector4 value) => Values[nameID] = value;
    }

    public class Renderer : Component
    {
        public Material material { get; set; }

        public MaterialPropertyBlock Properties = new MaterialPropertyBlock();

        public void GetPropertyBlock(MaterialPropertyBlock properties)
        {
            foreach (KeyValuePair<int, object> pair in Properties.Values)
            {
                properties.Values[pair.Key] = pair.Value;
            }
        }

        public void SetPropertyBlock(MaterialPropertyBlock properties) => Properties = properties;
    }

    public sealed class MeshRenderer : Renderer
    {
    }

    public struct Ray
    {
        public Vector3 Origin;
    }

    public sealed class Camera : Component
    {
        public static Camera main { get; set; }

        public Ray ScreenPointToRay(Vector3 position) => new Ray { Origin = position };
    }

    public struct RaycastHit
    {
        public Vector2 textureCoord { get; set; }
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
        ScreenSpaceOverlay = 0,
        ScreenSpaceCamera = 1,
    }

    public sealed class Canvas : Component
    {
        public RenderMode renderMode { get; set; }

        public Camera worldCamera { get; set; }

        public Canvas rootCanvas => this;
    }

    public enum PrimitiveType
    {
        Quad = 5,
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
        public RectTransform rectTransform => (RectTransform)transform;

        public Texture texture;
        public Rect uvRect = new Rect(0, 0, 1, 1);
    }
}

namespace UnityEngine.Rendering
{
    public enum GraphicsDeviceType
    {
        Direct3D11 = 2,
        Direct3D12 = 18,
    }
}
