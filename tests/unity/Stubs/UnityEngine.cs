// The part of Unity's API that the package uses, with as much behaviour as its tests need.
using System;
using System.Collections.Generic;
using System.Linq;

namespace UnityEngine
{
    public class Object
    {
        public static readonly List<Object> Alive = new List<Object>();

        public string name;
        public HideFlags hideFlags;

        public Object() => Alive.Add(this);

        public bool IsDestroyed { get; private set; }

        public static void Destroy(Object target)
        {
            (target as GameObject)?.DestroyComponents();
            target.MarkDestroyed();
        }

        public static void DontDestroyOnLoad(Object target)
        {
        }

        public static bool operator ==(Object left, Object right) => ReferenceEquals(Live(left), Live(right));

        public static bool operator !=(Object left, Object right) => !(left == right);

        internal void MarkDestroyed()
        {
            IsDestroyed = true;
            Alive.Remove(this);
        }

        /// <summary>A destroyed object equals null.</summary>
        private static Object Live(Object target) => target is null || target.IsDestroyed ? null : target;
    }

    public class Component : Object
    {
        public GameObject gameObject { get; internal set; }

        public Transform transform => gameObject.transform;

        public T GetComponent<T>() where T : class => gameObject.GetComponent<T>();

        public T GetComponentInParent<T>() where T : class => gameObject.GetComponent<T>();

        public bool TryGetComponent<T>(out T component) where T : class => (component = GetComponent<T>()) != null;
    }

    public class MonoBehaviour : Component
    {
        public bool isActiveAndEnabled => !IsDestroyed && gameObject.activeInHierarchy;

        /// <summary>Calls one of Unity's messages, if the script has it.</summary>
        public void Send(string message)
        {
            System.Reflection.MethodInfo method = GetType().GetMethod(
                message, System.Reflection.BindingFlags.Instance | System.Reflection.BindingFlags.NonPublic);
            ((Action)method?.CreateDelegate(typeof(Action), this))?.Invoke();
        }
    }

    public class Transform : Component
    {
        public Vector3 localScale, position;

        public void SetParent(Transform parent, bool worldPositionStays)
        {
        }
    }

    public class RectTransform : Transform
    {
        public Rect rect = new Rect(0, 0, 100, 100);
        public Vector2 sizeDelta;

        public void GetWorldCorners(Vector3[] corners)
        {
            corners[0] = new Vector3(rect.x, rect.y, 0);
            corners[1] = new Vector3(rect.x, rect.y + rect.height, 0);
            corners[2] = new Vector3(rect.x + rect.width, rect.y + rect.height, 0);
            corners[3] = new Vector3(rect.x + rect.width, rect.y, 0);
        }
    }

    public sealed class GameObject : Object
    {
        private readonly List<Component> components = new List<Component>();

        public GameObject(string name)
        {
            this.name = name;
            AddComponent<RectTransform>();
        }

        public bool activeInHierarchy { get; private set; } = true;

        public Transform transform => GetComponent<Transform>();

        public static GameObject CreatePrimitive(PrimitiveType type)
        {
            var made = new GameObject(type.ToString());
            made.RemoveRectangle();
            made.AddComponent<MeshRenderer>();
            made.AddComponent<Collider>();
            return made;
        }

        public T AddComponent<T>() where T : Component, new()
        {
            var component = new T { gameObject = this };
            components.Add(component);
            if (component is MonoBehaviour script && activeInHierarchy)
            {
                script.Send("Awake");
                script.Send("OnEnable");
            }
            return component;
        }

        public T GetComponent<T>() where T : class => components.OfType<T>().FirstOrDefault();

        public void SetActive(bool isActive)
        {
            activeInHierarchy = isActive;
            foreach (MonoBehaviour script in components.OfType<MonoBehaviour>())
            {
                script.Send(isActive ? "OnEnable" : "OnDisable");
            }
        }

        /// <summary>Makes it an object of the scene instead of one of a canvas.</summary>
        public void RemoveRectangle()
        {
            components.RemoveAll(component => component is RectTransform);
            AddComponent<Transform>();
        }

        internal void DestroyComponents()
        {
            foreach (Component component in components)
            {
                if (component is MonoBehaviour script && activeInHierarchy)
                {
                    script.Send("OnDisable");
                    script.Send("OnDestroy");
                }
                component.MarkDestroyed();
            }
        }
    }

    public enum HideFlags
    {
        HideInHierarchy, DontSave,
    }

    public struct Vector2
    {
        public float x, y;

        public Vector2(float x, float y) => (this.x, this.y) = (x, y);
    }

    public struct Vector3
    {
        public float x, y, z;

        public Vector3(float x, float y, float z) => (this.x, this.y, this.z) = (x, y, z);
    }

    public struct Vector4
    {
        public float x, y, z, w;

        public Vector4(float x, float y, float z, float w) => (this.x, this.y, this.z, this.w) = (x, y, z, w);
    }

    public struct Vector2Int
    {
        public int x, y;

        public Vector2Int(int x, int y) => (this.x, this.y) = (x, y);
    }

    public struct Rect
    {
        public float x, y, width, height;

        public Rect(float x, float y, float width, float height) =>
            (this.x, this.y, this.width, this.height) = (x, y, width, height);
    }

    public static class Application
    {
        public static bool isPlaying = true;
    }

    public static class Debug
    {
        public static readonly List<string> Lines = new List<string>();

        public static void Log(object message) => Lines.Add("log: " + message);

        public static void LogWarning(object message) => Lines.Add("warning: " + message);

        public static void LogError(object message, Object context = null) => Lines.Add("error: " + message);

        public static void LogException(Exception exception) => Lines.Add("exception: " + exception);
    }

    public static class Time
    {
        public static double unscaledTimeAsDouble;
    }

    public static class Screen
    {
        public static float dpi = 96;
        public static int height = 1080;
    }

    public sealed class AddComponentMenu : Attribute
    {
        public AddComponentMenu(string menuName)
        {
        }
    }

    public sealed class DefaultExecutionOrder : Attribute
    {
        public DefaultExecutionOrder(int order)
        {
        }
    }

    public sealed class DisallowMultipleComponent : Attribute
    {
    }

    public sealed class RequireComponent : Attribute
    {
        public RequireComponent(Type type)
        {
        }
    }

    public sealed class SerializeField : Attribute
    {
    }

    public sealed class TooltipAttribute : Attribute
    {
        public TooltipAttribute(string tooltip)
        {
        }
    }

    public enum RuntimeInitializeLoadType
    {
        SubsystemRegistration,
    }

    public sealed class RuntimeInitializeOnLoadMethodAttribute : Attribute
    {
        public RuntimeInitializeOnLoadMethodAttribute(RuntimeInitializeLoadType loadType)
        {
        }
    }
}

namespace UnityEngine.Events
{
    public class UnityEvent<T>
    {
        public void Invoke(T argument)
        {
        }
    }
}
