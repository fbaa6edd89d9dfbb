using System;

namespace Zarvik.Orvella
{
    /// <summary>A page could not be loaded.</summary>
    public sealed class WebViewLoadException : Exception
    {
        /// <summary>The <see cref="Status"/> of a load that was stopped or replaced.</summary>
        public const int CancelledStatus = 16;

        /// <summary>Makes the exception.</summary>
        /// <param name="message">The reason that the browser gave.</param>
        /// <param name="status">See <see cref="Status"/>.</param>
        public WebViewLoadException(string message, int? status)
            : base(message)
        {
            Status = status;
        }

        /// <summary>
        /// The number of the platform's WebErrorStatus; an HTTP status of 400 or more stands for itself. Null: the load
        /// could not be started.
        /// </summary>
        public int? Status { get; }
    }

    /// <summary>A script could not be run in the page.</summary>
    public sealed class WebViewScriptException : Exception
    {
        /// <summary>Makes the exception.</summary>
        /// <param name="message">What the browser said.</param>
        public WebViewScriptException(string message)
            : base(message)
        {
        }
    }
}
