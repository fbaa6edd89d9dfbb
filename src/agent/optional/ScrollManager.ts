import IFramePostMessageDomain from "../IFramePostMessageDomain";
import type IPointAdjuster from "./IPointAdjuster";

export interface ScrollManagerOptions {
    pointAdjuster?: IPointAdjuster;
    window?: WindowWithTypes;
}

const scrollAtPointMessage = "zarvik.webview.scrollAtPoint";
const iframeUnscrollableMessage = "zarvik.webview.iframeUnscrollable";

/**
 * Scrolls what is under a point: the nearest element there that can still scroll that way, else the document. Frames
 * scroll through their own agents, which hand back what their documents cannot take.
 */
export default class ScrollManager {
    private _handleIFrameMessage = (event: MessageEvent): void => {
        if (!event.data) {
            return;
        }
        const message = event.data.message;
        switch (event.data.domain) {
            case IFramePostMessageDomain.IFrameBridgeDownstream:
                if (message.type === scrollAtPointMessage) {
                    this.scrollAtPoint(message.deltaX, message.deltaY, message.pointerX, message.pointerY);
                }
                break;
            case IFramePostMessageDomain.IFrameBridgeUpstream:
                if (message.type === iframeUnscrollableMessage) {
                    this._scrollFromIframe(event);
                }
                break;
        }
    };

    private _window: WindowWithTypes;
    private _pointAdjuster: IPointAdjuster | undefined;

    constructor(options: ScrollManagerOptions = {}) {
        this._window = options.window || window;
        this._pointAdjuster = options.pointAdjuster;
        this._window.addEventListener("message", this._handleIFrameMessage);
    }

    scrollAtPoint(deltaX: number, deltaY: number, pointerX: number, pointerY: number, ignoreIframes = false): void {
        if (deltaX === 0 && deltaY === 0) {
            return;
        }
        if (this._pointAdjuster) {
            deltaX = this._pointAdjuster.adjust(deltaX);
            deltaY = this._pointAdjuster.adjust(deltaY);
            pointerX = this._pointAdjuster.adjust(pointerX);
            pointerY = this._pointAdjuster.adjust(pointerY);
        }

        const scrollingElement = this._document.scrollingElement;
        let element: Element | null = null;
        let scrollable = false;
        do {
            element = element
                ? element.parentElement
                : this._document.elementFromPoint(pointerX, pointerY) || scrollingElement;
            if (!element) {
                break;
            }
            if (element.tagName === "ZARVIK-DROPDOWN-CONTAINER") {
                return;
            }
            scrollable = this._isScrollable(element, deltaX, deltaY);
        } while (element !== scrollingElement && !(this._isIframe(element) && !ignoreIframes) && !scrollable);

        if (!element) {
            this._window.scrollBy(deltaX, deltaY);
        } else if (this._isIframe(element) && element.contentWindow && !ignoreIframes) {
            const rect = element.getBoundingClientRect();
            element.contentWindow.postMessage(
                {
                    domain: IFramePostMessageDomain.IFrameBridgeDownstream,
                    message: {
                        type: scrollAtPointMessage,
                        deltaX,
                        deltaY,
                        pointerX: pointerX - rect.left,
                        pointerY: pointerY - rect.top,
                    },
                },
                "*",
            );
        } else if (parent !== window && !scrollable) {
            parent.postMessage(
                {
                    domain: IFramePostMessageDomain.IFrameBridgeUpstream,
                    message: { type: iframeUnscrollableMessage, deltaX, deltaY, pointerX, pointerY },
                },
                "*",
            );
        } else {
            this._scrollElement(element as HTMLElement, deltaX, deltaY);
        }
    }

    private get _document(): Document {
        return this._window.document;
    }

    private _isIframe(element: Element): element is HTMLIFrameElement {
        return element instanceof this._window.HTMLIFrameElement;
    }

    /** True if the element scrolls along the stronger of the two directions and has not reached its end there. */
    private _isScrollable(element: Element, deltaX: number, deltaY: number): boolean {
        const style = this._window.getComputedStyle(element);
        let overflow: string;
        let canScroll: boolean;
        if (Math.abs(deltaY) > Math.abs(deltaX)) {
            overflow = style.overflowY;
            canScroll =
                deltaY > 0
                    ? element.scrollHeight - (element.scrollTop + element.clientHeight) > 0
                    : element.scrollTop > 0;
        } else {
            overflow = style.overflowX;
            canScroll =
                deltaX > 0
                    ? element.scrollWidth - (element.scrollLeft + element.clientWidth) > 0
                    : element.scrollLeft > 0;
        }
        return canScroll && (overflow === "scroll" || overflow === "auto");
    }

    private _scrollElement(element: HTMLElement, deltaX: number, deltaY: number): void {
        // A smooth scroll would still be under way when the next delta comes, and swallow part of it.
        if (this._window.getComputedStyle(element).scrollBehavior === "smooth") {
            element.style.scrollBehavior = "auto";
        }
        element.scrollTop += deltaY;
        element.scrollLeft += deltaX;
        const scrollingElement = this._document.scrollingElement;
        if (element === this._document.body && scrollingElement && scrollingElement !== element) {
            scrollingElement.scrollTop += deltaY;
            scrollingElement.scrollLeft += deltaX;
        }
    }

    /** Goes on with a scroll that the document of one of our frames cannot take, from that frame upwards. */
    private _scrollFromIframe(event: MessageEvent): void {
        const message = event.data.message;
        const iframes = this._document.getElementsByTagName("iframe");
        for (let index = 0; index < iframes.length; index++) {
            if (iframes[index].contentWindow === event.source) {
                const rect = iframes[index].getBoundingClientRect();
                this.scrollAtPoint(
                    message.deltaX,
                    message.deltaY,
                    rect.left + message.pointerX,
                    rect.top + message.pointerY,
                    true,
                );
                return;
            }
        }
    }
}
