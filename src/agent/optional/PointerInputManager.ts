import IFramePostMessageDomain from "../IFramePostMessageDomain";
import flattenPrototypes from "../utils/flattenPrototypes";
import type IPointAdjuster from "./IPointAdjuster";

export interface PointerInputManagerOptions {
    isIOS?: boolean;
    pointAdjuster?: IPointAdjuster;
    window?: WindowWithTypes;
}

/** Buttons as the plug-in numbers them, which is not how DOM events do. */
enum MouseButton {
    Left,
    Right,
    Middle,
    None,
}

const movePointerMessage = "zarvik.webview.movePointer";
const pointerDownMessage = "zarvik.webview.pointerDown";
const pointerUpMessage = "zarvik.webview.pointerUp";
const clickMessage = "zarvik.webview.click";

function eventButton(button: MouseButton): number {
    switch (button) {
        case MouseButton.Right:
            return 2;
        case MouseButton.Middle:
            return 1;
        default:
            return 0;
    }
}

function eventButtons(button: MouseButton): number {
    switch (button) {
        case MouseButton.Left:
            return 1;
        case MouseButton.Right:
            return 2;
        case MouseButton.Middle:
            return 4;
        default:
            return 0;
    }
}

/**
 * Turns the plug-in's pointer input into DOM events on the element under the point, or hands it to the agent of the
 * frame there. Presses and releases are adjusted to the page's pixels, moves are used as they come.
 */
export default class PointerInputManager {
    private _buttonDown = MouseButton.None;

    private _handleIframeMessage = (event: MessageEvent): void => {
        if (!event.data || event.data.domain !== IFramePostMessageDomain.IFrameBridgeDownstream) {
            return;
        }
        const message = event.data.message;
        switch (message.type) {
            case movePointerMessage:
                this.movePointer(message.x, message.y);
                break;
            case pointerDownMessage:
                this.pointerDown(message.x, message.y, message.mouseButton, message.clickCount);
                break;
            case pointerUpMessage:
                this.pointerUp(message.x, message.y, message.mouseButton, message.clickCount);
                break;
            case clickMessage:
                this.click(message.x, message.y);
                break;
        }
    };

    private _windowReference: WindowWithTypes | undefined;
    private _isIOS: boolean;
    private _pointAdjuster: IPointAdjuster | undefined;
    private _lastMouseOverElement: Element | undefined;

    constructor(options: PointerInputManagerOptions = {}) {
        this._windowReference = options.window;
        this._isIOS = !!options.isIOS;
        this._pointAdjuster = options.pointAdjuster;
        this._window.addEventListener("message", this._handleIframeMessage);
        flattenPrototypes(this, PointerInputManager.prototype);
    }

    click(x: number, y: number): void {
        this.pointerDown(x, y, MouseButton.Left, 1);
        this.pointerUp(x, y, MouseButton.Left, 1);
    }

    movePointer(x: number, y: number, pointerLeave = false): void {
        if (pointerLeave) {
            x = 0;
            y = 0;
        }
        const element = this._document.elementFromPoint(x, y);
        if (!element || this._forwardToIframe(element, x, y, { type: movePointerMessage })) {
            return;
        }
        this._dispatchPointerEvent(element, "pointermove", x, y, this._buttonDown, 0);
        this._dispatchPointerEvent(element, "mousemove", x, y, this._buttonDown, 0);
        if (element !== this._lastMouseOverElement) {
            this._lastMouseOverElement = element;
            this._dispatchPointerEvent(element, "pointerover", x, y, this._buttonDown, 0);
            this._dispatchPointerEvent(element, "mouseover", x, y, this._buttonDown, 0);
        }
    }

    pointerDown(x: number, y: number, mouseButton: MouseButton, clickCount: number): void {
        x = this._adjust(x);
        y = this._adjust(y);
        const element = this._document.elementFromPoint(x, y);
        if (!element || this._forwardToIframe(element, x, y, { type: pointerDownMessage, mouseButton, clickCount })) {
            return;
        }
        const target = this._getParent(element, ["a", "button"]) || element;
        this.movePointer(x, y);
        this._buttonDown = mouseButton;
        this._dispatchPointerEvent(target, "pointerdown", x, y, mouseButton, clickCount);
        // There a "mousedown" would open the browser's own list.
        if (!(this._isIOS && element instanceof this._window.HTMLSelectElement)) {
            this._dispatchPointerEvent(target, "mousedown", x, y, mouseButton, clickCount);
        }
    }

    pointerUp(x: number, y: number, mouseButton: MouseButton, clickCount: number): void {
        x = this._adjust(x);
        y = this._adjust(y);
        const element = this._document.elementFromPoint(x, y);
        if (!element || this._forwardToIframe(element, x, y, { type: pointerUpMessage, mouseButton, clickCount })) {
            return;
        }
        const target = this._getParent(element, ["a", "button"]) || element;
        if (this._isIOS && target instanceof this._window.HTMLSelectElement) {
            target.dispatchEvent(new FocusEvent("focus"));
        } else if (target instanceof this._window.HTMLElement) {
            target.focus();
        }
        this._dispatchPointerEvent(target, "pointerup", x, y, mouseButton, clickCount);
        this._dispatchPointerEvent(target, "mouseup", x, y, mouseButton, clickCount);
        // Only the element's own click() follows links, submits forms and toggles boxes.
        if (
            target instanceof this._window.HTMLAnchorElement ||
            target instanceof this._window.HTMLButtonElement ||
            target instanceof this._window.HTMLInputElement
        ) {
            target.click();
        } else {
            this._dispatchPointerEvent(target, "click", x, y, mouseButton, clickCount);
        }
        if (clickCount === 2) {
            this._dispatchPointerEvent(target, "dblclick", x, y, mouseButton, clickCount);
        }
        this._buttonDown = MouseButton.None;
    }

    private get _document(): Document {
        return this._window.document;
    }

    private get _window(): WindowWithTypes {
        return this._windowReference || window;
    }

    private _adjust(value: number): number {
        return this._pointAdjuster ? this._pointAdjuster.adjust(value) : value;
    }

    private _dispatchPointerEvent(
        element: Element,
        type: string,
        x: number,
        y: number,
        button: MouseButton,
        detail: number,
    ): void {
        const released = type.indexOf("up") !== -1 || type.indexOf("click") !== -1;
        const EventClass: typeof PointerEvent = this._window.PointerEvent || this._window.MouseEvent;
        element.dispatchEvent(
            new EventClass(type, {
                bubbles: true,
                cancelable: true,
                screenX: x,
                screenY: y,
                clientX: x,
                clientY: y,
                button: released ? 0 : eventButton(button),
                buttons: released ? 0 : eventButtons(button),
                pointerId: 1,
                pointerType: "mouse",
                detail,
                isPrimary: true,
            }),
        );
    }

    /** Hands the message to the agent of the frame, with the point as the frame sees it. False if it is no frame. */
    private _forwardToIframe(element: Element, x: number, y: number, message: object): boolean {
        if (!(element instanceof this._window.HTMLIFrameElement) || !element.contentWindow) {
            return false;
        }
        const rect = element.getBoundingClientRect();
        Object.assign(message, { x: x - rect.left, y: y - rect.top });
        element.contentWindow.postMessage({ domain: IFramePostMessageDomain.IFrameBridgeDownstream, message }, "*");
        return true;
    }

    /** The nearest HTML element with one of the names, the element itself included. */
    private _getParent(element: Element, names: string[]): HTMLElement | null {
        const tagNames = names.map((name) => name.toUpperCase());
        let current: Element | null = element;
        while (current && current !== this._document.documentElement) {
            if (tagNames.indexOf(current.tagName) !== -1 && current instanceof this._window.HTMLElement) {
                return current;
            }
            current = current.parentElement;
        }
        return null;
    }
}
