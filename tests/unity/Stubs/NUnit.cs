// What the package's tests use of Unity's test framework.
using System;
using System.Collections;
using System.Linq;

namespace NUnit.Framework
{
    [AttributeUsage(AttributeTargets.Method)]
    public sealed class TestAttribute : Attribute
    {
    }

    [AttributeUsage(AttributeTargets.Method, AllowMultiple = true)]
    public sealed class TestCaseAttribute : Attribute
    {
        public TestCaseAttribute(params object[] arguments)
        {
            Arguments = arguments;
        }

        public object[] Arguments { get; }
    }

    public sealed class AssertionException : Exception
    {
        public AssertionException(string message)
            : base(message)
        {
        }
    }

    public static class Assert
    {
        public static void AreEqual(object expected, object actual, string message = null)
        {
            if (!AreSame(expected, actual))
            {
                Fail(message + " expected: " + Show(expected) + ", but was: " + Show(actual));
            }
        }

        public static void IsTrue(bool condition, string message = null)
        {
            if (!condition)
            {
                Fail(message ?? "expected: true");
            }
        }

        public static void IsFalse(bool condition, string message = null) => IsTrue(!condition, message ?? "expected: false");

        public static T Throws<T>(Action action) where T : Exception
        {
            try
            {
                action();
            }
            catch (Exception exception) when (exception.GetType() == typeof(T))
            {
                return (T)exception;
            }
            throw new AssertionException(typeof(T).Name + " was not thrown");
        }

        public static void Fail(string message) => throw new AssertionException(message);

        private static bool AreSame(object expected, object actual)
        {
            if (expected is IEnumerable first && actual is IEnumerable second && !(expected is string))
            {
                return first.Cast<object>().SequenceEqual(second.Cast<object>());
            }
            return Equals(expected, actual);
        }

        private static string Show(object value)
        {
            return value is IEnumerable items && !(value is string)
                ? "[" + string.Join(", ", items.Cast<object>()) + "]"
                : value?.ToString() ?? "null";
        }
    }
}
