import type { Listener } from "./utils/EventEmitter";

/** What connects the page with the plug-in; page script sees it as `window.zarvik`. */
export default interface IBridge {
    addEventListener(eventName: string, listener: Listener): void;
    removeEventListener(eventName: string, listener: Listener): void;
    postMessage(message: unknown): void;
    /** Resolves with the answer's value, and fails when none comes within a second. */
    postMessageWithResponse(message: object): Promise<unknown>;
}
