using System.Threading.Tasks;
using NUnit.Framework;

namespace Zarvik.Orvella.Tests
{
    /// <summary>Which reports of navigations end the task of a load.</summary>
    public sealed class LoadTrackerTests
    {
        [Test]
        public void ReportsOfAnEarlierLoadDoNotEndALaterOne()
        {
            var tracker = new LoadTracker();
            Task first = tracker.Begin(10);
            Task second = tracker.Begin(20);
            Assert.IsTrue(first.IsCanceled);

            // Sent before the second call, handed out after it.
            tracker.OnStarted(15);
            tracker.OnFinished(16);
            tracker.OnFinished(21);
            Assert.IsFalse(second.IsCompleted);

            // The first one started late, and is replaced.
            tracker.OnStarted(22);
            tracker.OnFailed(23, Failure("16"), 1000);
            tracker.Expire(1000);
            Assert.IsFalse(second.IsCompleted);
            tracker.OnStarted(24);
            tracker.Expire(1000 + LoadTracker.ReplacementTime);
            Assert.IsFalse(second.IsCompleted);
            tracker.OnFinished(25);
            Assert.AreEqual(TaskStatus.RanToCompletion, second.Status);
        }

        [Test]
        public void ACancelledLoadFailsWhenNoOtherFollows()
        {
            var tracker = new LoadTracker();
            Task load = tracker.Begin(0);
            tracker.OnStarted(1);
            tracker.OnFailed(2, Failure("16"), 1000);
            tracker.Expire(1000 + LoadTracker.ReplacementTime - 1);
            Assert.IsFalse(load.IsCompleted);
            tracker.Expire(1000 + LoadTracker.ReplacementTime);
            Assert.AreEqual(16, Fault(load).Status);
        }

        [Test]
        public void FailuresOfOtherNavigationsAreNotTheLoads()
        {
            var tracker = new LoadTracker();
            Task load = tracker.Begin(0);
            tracker.OnFailed(1, Failure("404"), 0);
            Assert.IsFalse(load.IsCompleted);
            tracker.OnStarted(2);
            tracker.OnFailed(3, Failure("500"), 0);
            Assert.AreEqual(500, Fault(load).Status);
            Assert.AreEqual("Page load failed with WebErrorStatus: 500", Fault(load).Message);
        }

        [Test]
        public void WhatCannotStartFailsAtOnce()
        {
            var tracker = new LoadTracker();
            Task load = tracker.Begin(0);
            tracker.OnFailed(1, LoadTracker.ReadFailure("Cannot load the URL x."), 0);
            Assert.AreEqual(null, Fault(load).Status);
            Task next = tracker.Begin(2);
            tracker.OnStarted(3);
            tracker.OnFinished(4);
            Assert.AreEqual(TaskStatus.RanToCompletion, next.Status);
        }

        private static WebViewLoadException Failure(string status)
        {
            return LoadTracker.ReadFailure("Page load failed with WebErrorStatus: " + status);
        }

        private static WebViewLoadException Fault(Task task)
        {
            Assert.IsTrue(task.IsFaulted, "the load has not failed");
            return (WebViewLoadException)task.Exception.InnerException;
        }
    }
}
