/**
 * Takes the focus from the page's element when the view loses it, and gives it back. It remembers one element: after
 * two losses in a row that is the body, which has the focus after the first.
 */
export default class FocusManager {
    private _activeElementDuringLastBlur: Element | null = null;
    private _window: WindowWithTypes;

    constructor(targetWindow?: WindowWithTypes) {
        this._window = targetWindow || window;
    }

    setFocused(focused: boolean): void {
        if (focused) {
            const element = this._activeElementDuringLastBlur || this._document.activeElement;
            if (element instanceof this._window.HTMLElement) {
                if (!this._hasFocusInside(element)) {
                    element.focus();
                }
                this._activeElementDuringLastBlur = null;
            }
            return;
        }
        const element = this._document.activeElement;
        this._activeElementDuringLastBlur = element;
        if (element instanceof this._window.HTMLElement) {
            element.blur();
        }
    }

    /** Focusing an active iframe once more would take the focus from the element inside it that has it. */
    private _hasFocusInside(element: Element): boolean {
        return element instanceof this._window.HTMLIFrameElement && element === this._document.activeElement;
    }

    private get _document(): Document {
        return this._window.document;
    }
}
