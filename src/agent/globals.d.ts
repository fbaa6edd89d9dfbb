// The globals that the modules share with the plug-in, with the page and with each other.

/** A window with its own constructors: an element of a frame is no instance of the top window's classes. */
type WindowWithTypes = Window & typeof globalThis;

interface Window {
    /** The plug-in's object, present in the top document only. */
    _zarvikBridge: { postMessage(text: string): void };
    /** Starts the agent. The plug-in calls it after it has run the agent's text. */
    __initZarvik(options: import("./uwp/index").UwpAgentOptions): void;
    /** What page script talks to. */
    zarvik?: import("./IBridge").default;
    /** What the plug-in talks to. */
    _zarvikInternal?: { browserAgent: import("./BrowserAgent").default };
}
