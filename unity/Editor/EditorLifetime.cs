using UnityEditor;

namespace Zarvik.Orvella.Editor
{
    /// <summary>
    /// The native library outlives the scripts that the editor loads anew. Before it does, no native thread may be left
    /// that would call into the old ones.
    /// </summary>
    [InitializeOnLoad]
    internal static class EditorLifetime
    {
        static EditorLifetime()
        {
            AssemblyReloadEvents.beforeAssemblyReload += WebViewRunner.End;
            EditorApplication.quitting += WebViewRunner.End;
        }
    }
}
