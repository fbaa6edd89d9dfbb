// The part of Unity's API that the package uses, with as much behaviour as its tests need.
using System;
using System.Collections.Generic;
using System.Linq;

namespace UnityEngine
{
    public class Object
    {
        public string name;
        public HideFlags hideFlags;

        public static readonly List<Object> Alive = new List<Object>();

        public bool IsDestroyed { get; private set; }

        public Object()
        {
            Alive.Add(this);
        }

        public static void Destroy(Object target)
        {
            if (target is GameObject gameObject)
            {
                gameObject.DestroyComponents();
            }
            target.MarkDestroyed();
        }

        internal void MarkDestroyed()
        {
            IsDestroyed = true;
            Alive.Remove(this);
        }

        public static void DontDestroyOnLoad(Object target)
        {
        }

        public static bool operator ==(Object left, Object right)
        {
            return ReferenceEquals(Live(left), Live(right));
        }

        public static bool operator !=(Object left, Object right)
        {
            return !(left == right);
        }

        public override bool Equals(object other) => this == other as Object;

        public override int GetHashCode() => System.Runtime.CompilerServices.RuntimeHelpers.GetHashCode(this);

        /// <summary>A destroyed object equals null.</summary>
        private static Object Live(Object target)
        {
            return target is null || target.IsDestroyed ? null : target;
        }
    }

    public class Component : Object
    {
        public GameObject gameObject { get; internal set; }

        public Transform transform => gameObject.transform;

        public T GetComponent<T>() where T : class => gameObject.GetComponent<T>();

        public T GetComponentInParent<T>() where T : class => gameObject.GetComponent<T>();

        public bool TryGetComponent<T>(out T component) where T : class
        {
            component = GetComponent<T>();
            return component != null;
        }
    }

    public class Behaviour : Component
    {
        public bool isActiveAndEnabled => !IsDestroyed && gameObject.activeInHierarchy;
    }

    public class MonoBehaviour : Behaviour
    {
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
        public Vector3 localScale { get; set; }

        public Vector3 position { get; set; }

        public void SetParent(Transform parent, bool worldPositionStays)
        {
        }
    }

    public class RectTransform : Transform
    {
        public Rect rect = new Rect(0, 0, 100, 100);

        public Vector2 sizeDelta { get; set; }

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

    [Flags]
    public enum HideFlags
    {
        None = 0,
        HideInHierarchy = 1,
        DontSave = 52,
    }

    public struct Vector2
    {
        public float x;
        public float y;

        public Vector2(float x, float y)
        {
            this.x = x;
            this.y = y;
        }

        public static implicit operator Vector3(Vector2 value) => new Vector3(value.x, value.y, 0);
    }

    public struct Vector3
    {
        public float x;
        public float y;
        public float z;

        public Vector3(float x, float y, float z)
        {
            this.x = x;
            this.y = y;
            this.z = z;
        }
    }

    public struct Vector4
    {
        public float x;
        public float y;
        public float z;
        public float w;

        public Vector4(float x, float y, float z, float w)
        {
            this.x = x;
            this.y = y;
            this.z = z;
            this.w = w;
        }
    }

    public struct Vector2Int
    {
        public Vector2Int(int x, int y)
        {
            this.x = x;
            this.y = y;
        }

        public int x { get; set; }

        public int y { get; set; }
    }

    public struct Rect
    {
        public Rect(float x, float y, float width, float height)
        {
            this.x = x;
            this.y = y;
            this.width = width;
            this.height = height;
        }

        public float x { get; set; }

        public float y { get; set; }

        public float width { get; set; }

        public float height { get; set; }
    }

    public static class Application
    {
        public static bool isPlaying = true;
    }

    public static class Debug
    {
        public static readonly List<string> Lines = new List<string>();

        public static void Log(object message) => Add("log", message);

        public static void LogWarning(object message) => Add("warning", message);

        public static void LogError(object message) => Add("error", message);

        public static void LogError(object message, Object context) => Add("error", message);

        public static void LogException(Exception exception) => Add("exception", exception);

        private static void Add(string kind, object message)
        {
            Lines.Add(kind + ": " + message);
        }
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

    [AttributeUsage(AttributeTargets.Class)]
    public sealed class AddComponentMenu : Attribute
    {
        public AddComponentMenu(string menuName)
        {
        }
    }

    [AttributeUsage(AttributeTargets.Class)]
    public sealed class DefaultExecutionOrder : Attribute
    {
        public DefaultExecutionOrder(int order)
        {
        }
    }

    [AttributeUsage(AttributeTargets.Class)]
    public sealed class DisallowMultipleComponent : Attribute
    {
    }

    [AttributeUsage(AttributeTargets.Class)]
    public sealed class RequireComponent : Attribute
    {
        public RequireComponent(Type type)
        {
        }
    }

    [AttributeUsage(AttributeTargets.Field)]
    public sealed class SerializeField : Attribute
    {
    }

    [AttributeUsage(AttributeTargets.Field)]
    public sealed class TooltipAttribute : Attribute
    {
        public TooltipAttribute(string tooltip)
        {
        }
    }

    public enum RuntimeInitializeLoadType
    {
        SubsystemRegistration = 4,
    }

    [AttributeUsage(AttributeTargets.Method)]
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
        public event Action<T> Listeners;

        public void Invoke(T argument) => Listeners?.Invoke(argument);
    }
}
