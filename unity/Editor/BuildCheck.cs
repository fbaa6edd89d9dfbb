using System.Collections.Generic;
using UnityEditor;
using UnityEditor.Build;
using UnityEditor.Build.Reporting;
using UnityEngine;
using UnityEngine.Rendering;

namespace Zarvik.Orvella.Editor
{
    /// <summary>
    /// Warns, when a player for the Universal Windows Platform is built, of settings without which no page shows.
    /// </summary>
    internal sealed class BuildCheck : IPreprocessBuildWithReport
    {
        public int callbackOrder => 0;

        public void OnPreprocessBuild(BuildReport report)
        {
            if (report.summary.platform == BuildTarget.WSAPlayer)
            {
                foreach (string problem in FindProblems())
                {
                    Debug.LogWarning("Zarvik Orvella: " + problem);
                }
            }
        }

        internal static IEnumerable<string> FindProblems()
        {
            if (EditorUserBuildSettings.wsaUWPBuildType != WSAUWPBuildType.XAML)
            {
                yield return "Set Build Settings > Build Type to XAML: pages are controls of the app's XAML window.";
            }
            GraphicsDeviceType[] devices = PlayerSettings.GetGraphicsAPIs(BuildTarget.WSAPlayer);
            if (devices.Length == 0 || devices[0] != GraphicsDeviceType.Direct3D11)
            {
                yield return "Put Direct3D11 first in Player Settings > Graphics APIs: pages are drawn with it.";
            }
            if (!PlayerSettings.WSA.GetCapability(PlayerSettings.WSACapability.InternetClient))
            {
                yield return "Switch on Player Settings > Capabilities > InternetClient: pages come from the network.";
            }
        }
    }
}
