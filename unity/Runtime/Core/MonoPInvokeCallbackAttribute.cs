using System;

namespace AOT
{
    /// <summary>
    /// Tells the ahead-of-time compiler that native code calls a method. It finds the attribute by its name, so that
    /// this assembly need not reference the engine.
    /// </summary>
    [AttributeUsage(AttributeTargets.Method)]
    internal sealed class MonoPInvokeCallbackAttribute : Attribute
    {
        internal MonoPInvokeCallbackAttribute(Type type)
        {
            Type = type;
        }

        internal Type Type { get; }
    }
}
