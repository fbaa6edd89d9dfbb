using System;
using System.Globalization;
using System.Threading.Tasks;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Follows the load that was asked for last, from the reports of the browser's navigations, which do not say whose
    /// they are. Main thread.
    /// </summary>
    internal sealed class LoadTracker
    {
        /// <summary>
        /// A navigation that another one replaces is reported as cancelled just before the other one starts: so long a
        /// load that was cancelled waits for another to go on with. What was cancelled may have been the load before.
        /// </summary>
        internal const long ReplacementTime = 500;

        private const string StartedFailurePrefix = "Page load failed with WebErrorStatus: ";

        private TaskCompletionSource<bool> pending;
        private long askedAt;
        private bool isStarted;
        private long replacementDeadline = long.MaxValue;
        private string cancelReason;

        /// <summary>A new load, which cancels the task of the one before.</summary>
        /// <param name="sequence">The last message that may still be of an earlier load.</param>
        internal Task Begin(long sequence)
        {
            TaskCompletionSource<bool> replaced = pending;
            pending = new TaskCompletionSource<bool>();
            Task task = pending.Task;
            askedAt = sequence;
            isStarted = false;
            replacementDeadline = long.MaxValue;
            replaced?.TrySetCanceled();
            return task;
        }

        internal void OnStarted(long sequence)
        {
            if (pending != null && sequence > askedAt)
            {
                isStarted = true;
                replacementDeadline = long.MaxValue;
            }
        }

        internal void OnFinished(long sequence)
        {
            if (pending != null && isStarted && sequence > askedAt)
            {
                Take().TrySetResult(true);
            }
        }

        internal void OnFailed(long sequence, WebViewLoadException failure, long now)
        {
            if (pending == null || sequence <= askedAt)
            {
                return;
            }
            if (failure.Status == WebViewLoadException.CancelledStatus)
            {
                if (isStarted)
                {
                    isStarted = false;
                    cancelReason = failure.Message;
                    replacementDeadline = now + ReplacementTime;
                }
            }
            else if (isStarted || failure.Status == null)
            {
                // What cannot be loaded at all fails without having started, and without a status.
                Take().TrySetException(failure);
            }
        }

        /// <summary>Fails a load that was cancelled and that no other has followed.</summary>
        internal void Expire(long now)
        {
            if (pending != null && now >= replacementDeadline)
            {
                Take().TrySetException(
                    new WebViewLoadException(cancelReason, WebViewLoadException.CancelledStatus));
            }
        }

        internal void Cancel()
        {
            if (pending != null)
            {
                Take().TrySetCanceled();
            }
        }

        /// <summary>The failure that a report tells of.</summary>
        internal static WebViewLoadException ReadFailure(string reason)
        {
            bool hasStatus = reason.StartsWith(StartedFailurePrefix, StringComparison.Ordinal);
            int? status = null;
            if (hasStatus && int.TryParse(reason.Substring(StartedFailurePrefix.Length), NumberStyles.None,
                    CultureInfo.InvariantCulture, out int number))
            {
                status = number;
            }
            return new WebViewLoadException(reason, status);
        }

        private TaskCompletionSource<bool> Take()
        {
            TaskCompletionSource<bool> taken = pending;
            pending = null;
            isStarted = false;
            replacementDeadline = long.MaxValue;
            return taken;
        }
    }
}
