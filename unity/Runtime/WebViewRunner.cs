using System;
using System.Threading.Tasks;
using UnityEngine;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Drives all web views from one hidden object that outlives scenes: hands out what has happened at the beginning of
    /// each frame, before other scripts run, and ends everything when play mode stops or the app quits. Unity destroys it
    /// then, after the last frame was drawn.
    /// </summary>
    [AddComponentMenu("")]
    [DefaultExecutionOrder(-10000)]
    internal sealed class WebViewRunner : MonoBehaviour
    {
        private static WebViewRunner instance;

        /// <summary>Makes the object whose frames the host needs.</summary>
        /// <exception cref="InvalidOperationException">The editor is not in play mode.</exception>
        private static void Run()
        {
            if (!Application.isPlaying)
            {
                throw new InvalidOperationException("Web views run in play mode only.");
            }
            if (instance == null)
            {
                var runner = new GameObject("Zarvik Orvella") { hideFlags = HideFlags.HideInHierarchy };
                DontDestroyOnLoad(runner);
                instance = runner.AddComponent<WebViewRunner>();
                WebViewHost.Logged += Log;
                WebViewHost.HandlerFailed += Debug.LogException;
            }
        }

        /// <summary>For a page that nobody awaits: its failure goes to the console.</summary>
        internal static async void Observe(Task load, string url, UnityEngine.Object context)
        {
            try
            {
                await load;
            }
            catch (OperationCanceledException)
            {
                // Another page was asked for meanwhile.
            }
            catch (WebViewLoadException failure)
            {
                Debug.LogError("Cannot load " + url + ": " + failure.Message, context);
            }
        }

        /// <summary>
        /// Before the first scene. Where the editor enters play mode without loading the scripts anew, statics keep what
        /// the last time left.
        /// </summary>
        [RuntimeInitializeOnLoadMethod(RuntimeInitializeLoadType.SubsystemRegistration)]
        internal static void Prepare()
        {
            End();
            WebViewHost.Starting -= Run;
            WebViewHost.Starting += Run;
        }

        internal static void End()
        {
            WebViewHost.Logged -= Log;
            WebViewHost.HandlerFailed -= Debug.LogException;
            WebViewHost.Shutdown();
            instance = null;
        }

        private static void Log(LogSeverity severity, string line)
        {
            switch (severity)
            {
                case LogSeverity.Error:
                    Debug.LogError(line);
                    break;
                case LogSeverity.Warning:
                    Debug.LogWarning(line);
                    break;
                default:
                    Debug.Log(line);
                    break;
            }
        }

        private void Update()
        {
            WebViewHost.Pump();
        }

        private void OnDestroy()
        {
            if (instance == this)
            {
                End();
            }
        }
    }
}
