import isTextInputOrTextarea from "../isTextInputOrTextarea";
import IFramePostMessageDomain from "../IFramePostMessageDomain";
import focusedElementIsEditable from "../focusedElementIsEditable";

export interface KeyboardInputManagerOptions {
    enableTextInputEvents?: boolean;
    window?: WindowWithTypes;
}

interface TextEventWithLocale extends Event {
    initTextEvent(
        type: string,
        bubbles: boolean,
        cancelable: boolean,
        view: Window,
        data: string,
        inputMethod: number,
        locale: string,
    ): void;
}

interface Selection {
    start: number;
    end: number;
}

const sendKeyMessage = "zarvik.webview.sendKey";
// Made from their codes, since the agent's text must not need escape sequences.
const backspace = String.fromCharCode(8);
const lineFeed = String.fromCharCode(10);
const carriageReturn = String.fromCharCode(13);

function cancelEvent(event: Event): void {
    event.preventDefault();
}

function splice(text: string, start: number, count: number, inserted: string): string {
    return text.slice(0, start) + inserted + text.slice(start + Math.abs(count));
}

/**
 * Types into the element with the focus: dispatches the events of a key and then changes text and caret itself, whether
 * or not the page cancelled an event. With a frame in focus, the agent inside it gets the key.
 */
export default class KeyboardInputManager {
    private _textInputEventsEnabled: boolean;

    private _handleIFrameMessage = (event: MessageEvent): void => {
        if (!event.data || event.data.domain !== IFramePostMessageDomain.IFrameBridgeDownstream) {
            return;
        }
        if (event.data.message.type === sendKeyMessage) {
            this.sendKey(event.data.message.input);
        }
    };

    private _window: WindowWithTypes;

    constructor(options: KeyboardInputManagerOptions = {}) {
        this._textInputEventsEnabled = !!options.enableTextInputEvents;
        this._window = options.window || window;
        this._window.addEventListener("message", this._handleIFrameMessage);
    }

    /** The key is a character, or the name of a key such as "ArrowLeft". */
    sendKey(key: string): void {
        const activeElement = this._document.activeElement;
        if (activeElement instanceof this._window.HTMLIFrameElement) {
            activeElement.contentWindow!.postMessage(
                {
                    domain: IFramePostMessageDomain.IFrameBridgeDownstream,
                    message: { type: sendKeyMessage, input: key },
                },
                "*",
            );
            return;
        }

        if (key === "Backspace") {
            key = backspace;
        } else if (key === "Enter") {
            key = lineFeed;
        }
        const isCharacter = Array.from(key).length === 1;
        const movesCaret = key === "ArrowLeft" || key === "ArrowRight";
        if (isCharacter || (movesCaret && focusedElementIsEditable(this._window))) {
            this._dispatchCharacter(key);
            return;
        }
        switch (key) {
            case "ArrowUp":
                this._window.scrollBy(0, -50);
                break;
            case "ArrowDown":
                this._window.scrollBy(0, 50);
                break;
            case "ArrowLeft":
                this._window.scrollBy(-50, 0);
                break;
            case "ArrowRight":
                this._window.scrollBy(50, 0);
                break;
        }
    }

    private get _document(): Document {
        return this._window.document;
    }

    private _dispatchCharacter(character: string): void {
        const activeElement = this._document.activeElement;
        if (character === lineFeed && activeElement instanceof this._window.HTMLInputElement) {
            this._pressEnterInInput(activeElement);
            return;
        }
        if (activeElement) {
            this._dispatchKeyEvents(activeElement, character);
        }
        if (focusedElementIsEditable(this._window)) {
            // Asked again: a key handler may have moved the focus, and the character then goes there.
            this._edit(this._document.activeElement as HTMLElement, character);
        }
    }

    private _pressEnterInInput(input: HTMLInputElement): void {
        let ancestor: Element | null = input;
        while (ancestor && !(ancestor instanceof this._window.HTMLFormElement)) {
            ancestor = ancestor.parentElement;
        }
        if (!ancestor) {
            this._dispatchKeyEvents(input, carriageReturn);
        } else if (ancestor.dispatchEvent(new Event("submit", { cancelable: true }))) {
            ancestor.submit();
        }
    }

    private _dispatchKeyEvents(element: Element, key: string): void {
        this._dispatchKeyboardEvent(element, "keydown", key);
        this._dispatchKeyboardEvent(element, "keypress", key);
        if (this._textInputEventsEnabled) {
            this._dispatchTextInputEvent(element, key);
        }
        this._dispatchKeyboardEvent(element, "keyup", key);
    }

    private _dispatchKeyboardEvent(element: Element, type: string, key: string): void {
        // The code of a name such as "ArrowLeft" is that of its first letter.
        const keyCode = key.charCodeAt(0);
        const event = new KeyboardEvent(type, { key, keyCode, bubbles: true, cancelable: true });
        // The constructor ignores it.
        Object.defineProperty(event, "keyCode", { value: keyCode });
        element.dispatchEvent(event);
    }

    private _dispatchTextInputEvent(element: Element, text: string): void {
        const event = this._document.createEvent("TextEvent") as Event as TextEventWithLocale;
        event.initTextEvent("textInput", true, true, this._window, text, 0, "en-US");
        // Some engines insert the text of such an event by themselves, and it would be there twice. The page has seen
        // the event uncancelled when it gets here.
        this._window.addEventListener("textInput", cancelEvent);
        element.dispatchEvent(event);
        this._window.removeEventListener("textInput", cancelEvent);
    }

    private _edit(element: HTMLElement, character: string): void {
        const { start, end } = this._getSelection(element);
        const text = this._getText(element);
        const isCollapsed = start === end;
        switch (character) {
            case backspace:
                if (!isCollapsed) {
                    this._setText(element, splice(text, start, end - start, ""));
                    this._setSelection(element, start, start);
                } else if (start > 0) {
                    this._setText(element, splice(text, start - 1, 1, ""));
                    this._setSelection(element, start - 1, start - 1);
                }
                break;
            case "ArrowLeft": {
                const caret = isCollapsed ? Math.max(start - 1, 0) : start;
                this._setSelection(element, caret, caret);
                break;
            }
            case "ArrowRight": {
                const caret = isCollapsed ? Math.min(end + 1, text.length) : end;
                this._setSelection(element, caret, caret);
                break;
            }
            default:
                this._setText(element, splice(text, start, end - start, character));
                // One unit, also after a character that takes two.
                this._setSelection(element, start + 1, start + 1);
        }
    }

    private _getSelection(element: HTMLElement): Selection {
        if (isTextInputOrTextarea(element, this._window)) {
            return { start: element.selectionStart || 0, end: element.selectionEnd || 0 };
        }
        const selection = this._window.getSelection();
        if (selection && selection.rangeCount > 0) {
            const range = selection.getRangeAt(0);
            if (range.commonAncestorContainer.parentNode == element) {
                return { start: range.startOffset, end: range.endOffset };
            }
        }
        return { start: 0, end: 0 };
    }

    private _setSelection(element: HTMLElement, start: number, end: number): void {
        if (isTextInputOrTextarea(element, this._window)) {
            element.setSelectionRange(start, end);
            return;
        }
        const selection = this._window.getSelection();
        // An element that has become empty has no place for a caret but the one it has.
        if (!selection || !element.firstChild) {
            return;
        }
        const range = this._document.createRange();
        range.setStart(element.firstChild, start);
        // The start again: the range ends up collapsed at the end.
        range.setStart(element.firstChild, end);
        selection.removeAllRanges();
        selection.addRange(range);
    }

    private _getText(element: HTMLElement): string {
        return isTextInputOrTextarea(element, this._window) ? element.value : element.innerText || "";
    }

    private _setText(element: HTMLElement, text: string): void {
        // Page frameworks put a `value` of their own on the element to see what script writes, and would take this for
        // such a change. The class's setter bypasses it.
        if (element instanceof this._window.HTMLInputElement) {
            this._setValue(this._window.HTMLInputElement.prototype, element, text);
        } else if (element instanceof this._window.HTMLTextAreaElement) {
            this._setValue(this._window.HTMLTextAreaElement.prototype, element, text);
        } else {
            element.innerText = text;
        }
        element.dispatchEvent(new Event("input", { bubbles: true }));
    }

    private _setValue(prototype: object, element: HTMLElement, text: string): void {
        Object.getOwnPropertyDescriptor(prototype, "value")!.set!.call(element, text);
    }
}
