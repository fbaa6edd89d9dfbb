using System;

namespace Zarvik.Orvella
{
    internal enum HostMessageKind
    {
        Unknown,
        LoadStarted,
        LoadProgressed,
        LoadFinished,
        LoadFailed,
        CanGoBack,
        CanGoForward,
        ScriptResult,
        PageMessage,
        TextureChanged,
        Data,
        Log,
        Action,
    }

    /// <summary>One call of native code, or of a task, on its way to the main thread.</summary>
    internal struct HostMessage
    {
        internal HostMessageKind Kind;

        /// <summary>Position among all messages: what was sent before a call is told apart by it.</summary>
        internal long Sequence;

        /// <summary>The browser that it is for.</summary>
        internal int BrowserId;

        /// <summary>The request that it answers.</summary>
        internal int ResultId;
        internal string Text;
        internal byte[] Bytes;
        internal IntPtr Texture;
        internal LogSeverity Severity;
        internal Action Action;
    }

    /// <summary>How serious a log line of the native library is.</summary>
    public enum LogSeverity
    {
        /// <summary>Something worth knowing.</summary>
        Info,

        /// <summary>A call that was ignored.</summary>
        Warning,

        /// <summary>Something failed.</summary>
        Error,
    }
}
