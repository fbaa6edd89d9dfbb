using System;
using System.Collections.Generic;
using System.Threading.Tasks;

namespace Zarvik.Orvella
{
    /// <summary>
    /// The requests of a browser that await an answer, by their ids. An id is used once, so a late or doubled answer
    /// finds nothing. Main thread.
    /// </summary>
    internal sealed class PromiseTable<T>
    {
        private readonly Dictionary<int, Promise> promises = new Dictionary<int, Promise>();
        private int lastId;
        private int oldestId = 1; // no request before it waits
        private long earliestDeadline = long.MaxValue;

        internal int Count => promises.Count;

        /// <summary>A new request.</summary>
        /// <param name="deadline">When it fails if no answer has come, in the clock of <see cref="Expire"/>.</param>
        /// <param name="id">Its id, greater than 0.</param>
        internal Task<T> Add(long deadline, out int id)
        {
            id = ++lastId;
            var source = new TaskCompletionSource<T>();
            promises.Add(id, new Promise { Source = source, Deadline = deadline });
            earliestDeadline = Math.Min(earliestDeadline, deadline);
            return source.Task;
        }

        /// <summary>Takes a request out, for its answer. Null: no such request waits.</summary>
        internal TaskCompletionSource<T> Take(int id)
        {
            return promises.Remove(id, out Promise promise) ? promise.Source : null;
        }

        /// <summary>Takes the oldest request out, for an answer that names none. Null: none waits.</summary>
        internal TaskCompletionSource<T> TakeOldest()
        {
            while (oldestId < lastId && !promises.ContainsKey(oldestId))
            {
                ++oldestId;
            }
            return Take(oldestId);
        }

        /// <summary>Fails requests whose deadline has passed.</summary>
        internal void Expire(long now)
        {
            if (now < earliestDeadline)
            {
                return;
            }
            earliestDeadline = long.MaxValue;
            List<int> expired = null;
            foreach (KeyValuePair<int, Promise> pair in promises)
            {
                if (pair.Value.Deadline <= now)
                {
                    expired = expired ?? new List<int>();
                    expired.Add(pair.Key);
                }
                else
                {
                    earliestDeadline = Math.Min(earliestDeadline, pair.Value.Deadline);
                }
            }
            if (expired == null)
            {
                return;
            }
            foreach (int id in expired)
            {
                Take(id)?.TrySetException(new TimeoutException("The web view did not answer in time."));
            }
        }

        /// <summary>Cancels all requests; what their continuations ask for anew is left alone.</summary>
        internal void CancelAll()
        {
            var cancelled = new List<Promise>(promises.Values);
            promises.Clear();
            foreach (Promise promise in cancelled)
            {
                promise.Source.TrySetCanceled();
            }
        }

        private struct Promise
        {
            internal TaskCompletionSource<T> Source;
            internal long Deadline;
        }
    }
}
