using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Threading;
using System.Threading.Tasks;
using NUnit.Framework;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>
    /// A small engine: the main thread with its frames, a render thread, and the graphics device. It loads the library
    /// that the environment names.
    /// </summary>
    internal static unsafe class Engine
    {
        private static readonly TimeSpan Patience = TimeSpan.FromSeconds(30);
        private static readonly BlockingCollection<Action> RenderTasks = new BlockingCollection<Action>();
        private static readonly FrameContext Context = new FrameContext();

        internal static readonly List<string> Errors = new List<string>();
        internal static readonly List<Exception> HandlerExceptions = new List<Exception>();

        private static bool isStarted;

        /// <summary>Makes this thread the engine's main thread.</summary>
        internal static void Use()
        {
            SynchronizationContext.SetSynchronizationContext(Context);
            if (isStarted)
            {
                return;
            }
            string path = Environment.GetEnvironmentVariable("ZARVIK_LIBRARY") ??
                throw new InvalidOperationException("ZARVIK_LIBRARY must be the path of libZarvikOrvella.so.");
            IntPtr library = NativeLibrary.Load(Path.GetFullPath(path));
            NativeLibrary.SetDllImportResolver(typeof(Browser).Assembly,
                (name, assembly, search) => name == "ZarvikOrvella" ? library : IntPtr.Zero);
            var load = (delegate* unmanaged<IntPtr, void>)NativeLibrary.GetExport(library, "UnityPluginLoad");
            load(Direct3D.Interfaces());

            new Thread(RunRenderThread) { IsBackground = true, Name = "render" }.Start();
            UnityEngine.GL.PluginEvents = IssuePluginEvent;
            WebViewHost.Logged += (severity, line) =>
            {
                if (severity == LogSeverity.Error)
                {
                    Errors.Add(line);
                }
            };
            WebViewHost.HandlerFailed += HandlerExceptions.Add;
            isStarted = true;
        }

        /// <summary>Queues a call of the library's render function.</summary>
        internal static void IssuePluginEvent(IntPtr function, int id) =>
            RenderTasks.Add(() => ((delegate* unmanaged<int, void>)function)(id));

        /// <summary>Waits until the render thread has done what was queued.</summary>
        internal static void FinishRendering()
        {
            using var done = new ManualResetEventSlim();
            RenderTasks.Add(done.Set);
            Assert.IsTrue(done.Wait(Patience), "the render thread stands still");
        }

        /// <summary>One frame with the given offscreen browsers.</summary>
        internal static void Frame(params Browser[] browsers)
        {
            WebViewHost.Pump();
            RunPosted();
            foreach (Browser browser in browsers.Where(browser => !browser.IsDisposed))
            {
                IssuePluginEvent(Browser.RenderFunction, browser.RenderEventId);
            }
        }

        /// <summary>The end of a frame: runs what was posted to the main thread, and waits for the next frame's time.</summary>
        internal static void RunPosted()
        {
            Context.Run();
            Thread.Sleep(5);
        }

        internal static T Await<T>(Task<T> task, params Browser[] browsers)
        {
            Await((Task)task, browsers);
            return task.Result;
        }

        internal static void Await(Task task, params Browser[] browsers)
        {
            WaitUntil(() => task.IsCompleted, "the task is not done", browsers);
            task.GetAwaiter().GetResult();
        }

        internal static void WaitUntil(Func<bool> condition, string complaint, params Browser[] browsers) =>
            WaitUntil(condition, complaint, () => Frame(browsers));

        internal static void WaitUntil(Func<bool> condition, string complaint, Action frame)
        {
            DateTime end = DateTime.UtcNow + Patience;
            while (!condition())
            {
                Assert.IsTrue(DateTime.UtcNow < end, complaint);
                frame();
            }
        }

        /// <summary>Frames without a condition, for what must not happen.</summary>
        internal static void Pass(TimeSpan time, params Browser[] browsers)
        {
            DateTime end = DateTime.UtcNow + time;
            while (DateTime.UtcNow < end)
            {
                Frame(browsers);
            }
        }

        private static void RunRenderThread()
        {
            foreach (Action task in RenderTasks.GetConsumingEnumerable())
            {
                task();
            }
        }

        /// <summary>As Unity's: what is posted to the main thread runs in one of its frames.</summary>
        private sealed class FrameContext : SynchronizationContext
        {
            private readonly ConcurrentQueue<(SendOrPostCallback, object)> posted =
                new ConcurrentQueue<(SendOrPostCallback, object)>();

            public override void Post(SendOrPostCallback callback, object state) => posted.Enqueue((callback, state));

            internal void Run()
            {
                while (posted.TryDequeue(out (SendOrPostCallback Callback, object State) work))
                {
                    work.Callback(work.State);
                }
            }
        }
    }
}
