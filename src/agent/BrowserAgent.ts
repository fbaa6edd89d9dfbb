import EventEmitter from "./utils/EventEmitter";
import IFrameBridge from "./IFrameBridge";
import MessageType from "./MessageType";
import flattenPrototypes from "./utils/flattenPrototypes";
import UrlActionType from "./UrlActionType";
import FocusedInputFieldType from "./FocusedInputFieldType";
import focusedElementIsEditable from "./focusedElementIsEditable";
import getActiveElement from "./getActiveElement";
import type IBridge from "./IBridge";

export interface BrowserAgentOptions {
    enableConsoleMessageEvents?: boolean;
    enableFocusedInputFieldEvents?: boolean;
    /** The window to watch instead of the global one. */
    window?: WindowWithTypes;
}

const pollingPeriod = 200;
const consoleMessageType = "zarvik.webview.consoleMessageLogged";
const consoleLevels: [method: "log" | "info" | "debug" | "error" | "warn", level: string][] = [
    ["log", "LOG"],
    ["info", "LOG"],
    ["debug", "DEBUG"],
    ["error", "ERROR"],
    ["warn", "WARNING"],
];

/**
 * Watches the page and reports to the plug-in: URL, title, transparency, console output, focused input field. One per
 * window, for the life of the document; nothing that it installs is ever taken away.
 *
 * Inside a frame it watches the same things, but its bridge drops every report.
 */
export default class BrowserAgent extends EventEmitter {
    private _consoleApiPatched = false;
    private _consoleMessageEventsEnabled = false;
    private _focusedInputField: Element | null = null;
    private _focusedInputFieldIntervalToken = 0;
    private _isInIframe = parent !== window;
    private _title = "";

    private _checkFocusedInputField = (): void => {
        const editable = focusedElementIsEditable(this._window);
        const element = editable ? getActiveElement(this._window) : null;
        if (element === this._focusedInputField) {
            return;
        }
        if (this._focusedInputField) {
            this._focusedInputField.removeEventListener("click", this._handleFocusedInputFieldClicked);
        }
        if (element) {
            element.addEventListener("click", this._handleFocusedInputFieldClicked);
        }
        this._focusedInputField = element;
        this._reportFocusedInputField(editable ? FocusedInputFieldType.Text : FocusedInputFieldType.None);
    };

    // A click on the field that already has the focus asks for a keyboard again.
    private _handleFocusedInputFieldClicked = (): void => {
        this._reportFocusedInputField(FocusedInputFieldType.Text);
    };

    private _windowReference: WindowWithTypes | undefined;
    private _bridge: IBridge;

    constructor(bridge: IBridge, options: BrowserAgentOptions) {
        super();
        this._consoleMessageEventsEnabled = !!options.enableConsoleMessageEvents;
        this._windowReference = options.window;
        this._patchConsoleApiIfNeeded();
        flattenPrototypes(this, BrowserAgent.prototype);
        this._bridge = this._isInIframe ? new IFrameBridge() : bridge;

        if (this._document.readyState === "loading" || !this._document.head) {
            this._document.addEventListener("DOMContentLoaded", () => {
                this._performPostDomLoadInitialization(options.enableFocusedInputFieldEvents);
            });
        } else {
            this._performPostDomLoadInitialization(options.enableFocusedInputFieldEvents);
        }

        if (this._isInMainFrame) {
            this._emitUrlChange(UrlActionType.Load);
            this._watchForUrlChanges();
        }
    }

    setConsoleMessageEventsEnabled(enabled: boolean): void {
        this._consoleMessageEventsEnabled = enabled;
        this._patchConsoleApiIfNeeded();
    }

    /** Once started, the polling cannot be stopped. */
    setFocusedInputFieldEventsEnabled(enabled: boolean): void {
        if (enabled && !this._focusedInputFieldIntervalToken) {
            this._focusedInputFieldIntervalToken = this._window.setInterval(
                this._checkFocusedInputField,
                pollingPeriod,
            );
        }
    }

    private get _document(): Document {
        return this._window.document;
    }

    private get _isInMainFrame(): boolean {
        return parent === window;
    }

    private get _window(): WindowWithTypes {
        return this._windowReference || window;
    }

    // A title that became empty is not reported, and not either one that comes back after that.
    private _checkForTitleChanges(): void {
        const title = this._document.title;
        if (title && title !== this._title) {
            this._title = title;
            this._bridge.postMessage({ type: MessageType.TitleChanged, value: title });
        }
    }

    private _determinePageTransparency(): void {
        const metaElements = this._document.head.getElementsByTagName("meta");
        let transparent = false;
        for (let index = 0; index < metaElements.length; index++) {
            if (metaElements[index].getAttribute("name") === "transparent") {
                transparent = metaElements[index].getAttribute("content") === "true";
                break;
            }
        }
        this._bridge.postMessage({ type: MessageType.PageTransparencyDetermined, value: transparent });
    }

    private _emitUrlChange(type: UrlActionType): void {
        try {
            const url = this._document.URL;
            // The plug-in reports these pages by itself.
            if (
                url.indexOf("chrome-error://") === 0 ||
                url.indexOf("about:") === 0 ||
                url.indexOf("ms-local-stream://") === 0 ||
                url.indexOf(".pdf?file=") !== -1
            ) {
                return;
            }
            this._bridge.postMessage({
                type: MessageType.UrlChanged,
                urlAction: { Url: url, Title: this._document.title, Type: type },
            });
        } catch (error) {
            console.error("An error occurred while handling the URL change.", error);
        }
    }

    private _patchConsoleApiIfNeeded(): void {
        if (this._consoleApiPatched || !this._consoleMessageEventsEnabled) {
            return;
        }
        this._consoleApiPatched = true;
        const console = this._window.console;
        consoleLevels.forEach(([method, level]) => {
            const previousMethod = console[method].bind(console);
            console[method] = (...args: unknown[]) => {
                if (this._consoleMessageEventsEnabled) {
                    this._reportConsoleMessage(level, args);
                }
                previousMethod(...args);
            };
        });
    }

    private _performPostDomLoadInitialization(enableFocusedInputFieldEvents: boolean | undefined): void {
        if (this._isInMainFrame) {
            this._window.setInterval(() => this._checkForTitleChanges(), pollingPeriod);
            this._determinePageTransparency();
        }
        if (enableFocusedInputFieldEvents) {
            this.setFocusedInputFieldEventsEnabled(true);
        }
    }

    private _reportConsoleMessage(level: string, args: unknown[]): void {
        try {
            const texts = args.map((argument) =>
                typeof argument === "object" && !(argument instanceof this._window.Error)
                    ? JSON.stringify(argument)
                    : argument,
            );
            this._bridge.postMessage({ type: consoleMessageType, level, message: texts.join(", ") });
        } catch {
            // What cannot be told as text, such as a cyclic object, is only logged.
        }
    }

    private _reportFocusedInputField(type: FocusedInputFieldType): void {
        this._bridge.postMessage({ type: MessageType.FocusedInputFieldChanged, value: type });
    }

    private _watchForUrlChanges(): void {
        const history = this._window.history;
        const report = (type: UrlActionType) => this._emitUrlChange(type);

        const pushState = history.pushState;
        history.pushState = function (...args) {
            const result = pushState.apply(history, args);
            report(UrlActionType.PushState);
            return result;
        };
        const replaceState = history.replaceState;
        history.replaceState = function (...args) {
            const result = replaceState.apply(history, args);
            report(UrlActionType.ReplaceState);
            return result;
        };

        this._window.addEventListener("hashchange", () => report(UrlActionType.HashChange));
        // A large video site announces its own kind of navigation.
        this._window.addEventListener("yt-navigate-finish", () => report(UrlActionType.PushState));
    }
}
