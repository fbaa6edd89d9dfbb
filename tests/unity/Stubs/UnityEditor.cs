using System;
using System.Collections.Generic;
using UnityEngine.Rendering;

namespace UnityEditor
{
    [AttributeUsage(AttributeTargets.Class)]
    public sealed class InitializeOnLoadAttribute : Attribute
    {
    }

    public static class AssemblyReloadEvents
    {
        public delegate void AssemblyReloadCallback();

        public static event AssemblyReloadCallback beforeAssemblyReload;

        public static void Raise() => beforeAssemblyReload?.Invoke();
    }

    public static class EditorApplication
    {
        public static event Action quitting;

        public static void Quit() => quitting?.Invoke();
    }

    public enum BuildTarget
    {
        StandaloneLinux64 = 24,
        WSAPlayer = 21,
    }

    public enum WSAUWPBuildType
    {
        XAML = 0,
        D3D = 1,
    }

    public static class EditorUserBuildSettings
    {
        public static WSAUWPBuildType wsaUWPBuildType { get; set; }
    }

    public static class PlayerSettings
    {
        public enum WSACapability
        {
            InternetClient = 1,
        }

        public static GraphicsDeviceType[] Apis { get; set; } = { GraphicsDeviceType.Direct3D11 };

        public static GraphicsDeviceType[] GetGraphicsAPIs(BuildTarget platform) => Apis;

        public static class WSA
        {
            public static readonly HashSet<WSACapability> Capabilities = new HashSet<WSACapability>();

            public static bool GetCapability(WSACapability capability) => Capabilities.Contains(capability);
        }
    }
}

namespace UnityEditor.Build
{
    public interface IPreprocessBuildWithReport
    {
        int callbackOrder { get; }

        void OnPreprocessBuild(Reporting.BuildReport report);
    }
}

namespace UnityEditor.Build.Reporting
{
    public struct BuildSummary
    {
        public BuildTarget platform { get; set; }
    }

    public sealed class BuildReport
    {
        public BuildSummary summary { get; set; }
    }
}
