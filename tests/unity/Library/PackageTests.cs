using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;
using Newtonsoft.Json.Linq;
using NUnit.Framework;
using UnityEditor;
using UnityEngine.Rendering;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>What Unity's package manager and importers need of the package's files.</summary>
    public sealed class PackageTests
    {
        private static readonly string Package = Path.GetFullPath(Path.Combine(SourceFolder(), "../../../unity"));

        [Test]
        public void EachFileAndFolderHasOneIdentity()
        {
            List<string> assets = Directory.EnumerateFileSystemEntries(Package, "*", SearchOption.AllDirectories)
                .Select(path => Path.GetRelativePath(Package, path))
                .Where(path => !path.Split('/').Any(part => part.EndsWith("~") || part.StartsWith("."))).ToList();
            List<string> metas = assets.Where(path => path.EndsWith(".meta")).ToList();
            foreach (string asset in assets.Except(metas))
            {
                Assert.IsTrue(metas.Contains(asset + ".meta"), asset + " has no .meta");
            }
            foreach (string meta in metas)
            {
                // The libraries are put beside theirs when the package is assembled.
                string asset = meta.Substring(0, meta.Length - ".meta".Length);
                Assert.IsTrue(assets.Contains(asset) || asset.StartsWith("Plugins/"), meta + " has no asset");
            }
            List<string> ids = metas.Select(meta =>
                Regex.Match(File.ReadAllText(Path.Combine(Package, meta)), "^guid: ([0-9a-f]{32})$", RegexOptions.Multiline)
                    .Groups[1].Value).ToList();
            Assert.IsFalse(ids.Contains(""), "a .meta has no identity");
            Assert.AreEqual(ids.Count, ids.Distinct().Count());
        }

        [TestCase("WSA/ARM64/ZarvikOrvella.dll", "WindowsStoreApps", "ARM64")]
        [TestCase("WSA/x64/ZarvikOrvella.dll", "WindowsStoreApps", "X64")]
        [TestCase("WSA/ARM64/ZarvikWebViewRuntimeComponent.winmd", "WindowsStoreApps", "ARM64")]
        [TestCase("WSA/x64/ZarvikWebViewRuntimeComponent.dll", "WindowsStoreApps", "X64")]
        [TestCase("Linux/x86_64/libZarvikOrvella.so", "Editor", "x86_64")]
        public void LibrariesGoToTheirPlatformOnly(string library, string platform, string processor)
        {
            string meta = File.ReadAllText(Path.Combine(Package, "Plugins", library + ".meta"));
            Match enabled = Regex.Matches(
                meta, @"first:\s+[^:]*: (\w*)\s+second:\s+enabled: 1\s+settings:((\s+\w+.*:.*)*?)\s*(?=-|userData)").Single();
            Assert.AreEqual(1, Regex.Matches(meta, "enabled: 1").Count);
            Assert.AreEqual(platform, enabled.Groups[1].Value);
            Assert.IsTrue(enabled.Groups[2].Value.Contains("CPU: " + processor), "not for this processor");
            // Unity calls UnityPluginLoad when it loads the library, which must be before the first use.
            Assert.AreEqual(library.EndsWith("ZarvikOrvella.dll"), meta.Contains("isPreloaded: 1"));
        }

        [Test]
        public void TheManifestIsThatOfTheLibrary()
        {
            JObject manifest = JObject.Parse(File.ReadAllText(Path.Combine(Package, "package.json")));
            string cmake = File.ReadAllText(Path.Combine(Package, "../CMakeLists.txt"));
            Assert.IsTrue(cmake.Contains("VERSION " + manifest["version"] + " "), "the versions differ");
            Assert.IsTrue(File.ReadAllText(Path.Combine(Package, "CHANGELOG.md")).Contains("## [" + manifest["version"] + "]"));
            Assert.IsTrue(Directory.Exists(Path.Combine(Package, (string)manifest["samples"][0]["path"])));
        }

        [Test]
        public void EveryExportIsDeclaredAndExists()
        {
            string table = File.ReadAllText(Path.Combine(Package, "../src/exports/ExportTable.inc"));
            string[] exports = Regex.Matches(table, @"^ZARVIK_EXPORT\([^,]+, (WebView_\w+),", RegexOptions.Multiline)
                .Select(match => match.Groups[1].Value).ToArray();
            List<MethodInfo> declared = typeof(NativeMethods).GetMethods(BindingFlags.Static | BindingFlags.NonPublic)
                .Where(method => method.GetCustomAttribute<DllImportAttribute>() != null).ToList();
            CollectionAssert.IsNotEmpty(declared);
            CollectionAssert.AreEquivalent(exports, declared.Select(method => method.Name));
            declared.ForEach(Marshal.Prelink);
        }

        [Test]
        public void SettingsWithWhichNoPageShowsAreNamed()
        {
            EditorUserBuildSettings.wsaUWPBuildType = WSAUWPBuildType.D3D;
            PlayerSettings.Apis = new[] { GraphicsDeviceType.Direct3D12, GraphicsDeviceType.Direct3D11 };
            Assert.AreEqual(3, Editor.BuildCheck.FindProblems().Count());
            EditorUserBuildSettings.wsaUWPBuildType = WSAUWPBuildType.XAML;
            PlayerSettings.Apis = new[] { GraphicsDeviceType.Direct3D11 };
            PlayerSettings.WSA.Capabilities.Add(PlayerSettings.WSACapability.InternetClient);
            Assert.AreEqual(0, Editor.BuildCheck.FindProblems().Count());
        }

        private static string SourceFolder([CallerFilePath] string file = "") => Path.GetDirectoryName(file);
    }
}
