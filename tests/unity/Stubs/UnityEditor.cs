using System;
using System.Collections.Generic;
using UnityEngine.Rendering;

namespace UnityEditor
{
    public sealed class InitializeOnLoadAttribute : Attribute
    {
    }

    public static class AssemblyReloadEvents
    {
        public static event Action beforeAssemblyReload;

        public static void Raise() => beforeAssemblyReload?.Invoke();
    }

    public static class EditorApplication
    {
        public static Action quitting;
    }

    public enum BuildTarget
    {
        WSAPlayer,
    }

    public enum WSAUWPBuildType
    {
        XAML, D3D,
    }

    public static class EditorUserBuildSettings
    {
        public static WSAUWPBuildType wsaUWPBuildType;
    }

    public static class PlayerSettings
    {
        public enum WSACapability
        {
            InternetClient,
        }

        public static GraphicsDeviceType[] Apis { get; set; }

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
        public BuildTarget platform;
    }

    public sealed class BuildReport
    {
        public BuildSummary summary;
    }
}
