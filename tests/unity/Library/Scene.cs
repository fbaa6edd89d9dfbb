using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading.Tasks;
using UnityEngine;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>Objects whose scripts get Unity's messages, in its order, once a frame. Its end stops play mode.</summary>
    internal sealed class Scene : IDisposable
    {
        private readonly List<GameObject> objects = new List<GameObject>();
        private readonly HashSet<MonoBehaviour> started = new HashSet<MonoBehaviour>();

        internal Scene()
        {
            System.Runtime.CompilerServices.RuntimeHelpers.RunClassConstructor(
                typeof(Zarvik.Orvella.Editor.EditorLifetime).TypeHandle);
            WebViewRunner.Prepare();
            Debug.Lines.Clear();
        }

        public void Dispose()
        {
            Unload();
            StopPlaying();
        }

        internal GameObject Add(string name)
        {
            var made = new GameObject(name);
            objects.Add(made);
            return made;
        }

        internal void Frame()
        {
            List<MonoBehaviour> scripts = UnityEngine.Object.Alive.OfType<MonoBehaviour>()
                .Where(script => script.isActiveAndEnabled)
                .OrderByDescending(script => script is WebViewRunner).ToList();
            foreach (MonoBehaviour script in scripts.Where(started.Add))
            {
                script.Send("Start");
            }
            scripts.ForEach(script => script.Send("Update"));
            scripts.ForEach(script => script.Send("LateUpdate"));
            Engine.RunPosted();
        }

        internal T Await<T>(Task<T> task)
        {
            Await((Task)task);
            return task.Result;
        }

        internal void Await(Task task)
        {
            WaitUntil(() => task.IsCompleted, "the task is not done");
            task.GetAwaiter().GetResult();
        }

        internal void WaitUntil(Func<bool> condition, string complaint) =>
            Engine.WaitUntil(condition, complaint, Frame);

        /// <summary>What belongs to no scene goes too.</summary>
        internal void StopPlaying()
        {
            foreach (WebViewRunner runner in UnityEngine.Object.Alive.OfType<WebViewRunner>().ToList())
            {
                UnityEngine.Object.Destroy(runner.gameObject);
            }
        }

        internal void Unload()
        {
            objects.ForEach(UnityEngine.Object.Destroy);
            objects.Clear();
        }
    }
}
