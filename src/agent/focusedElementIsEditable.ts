import isTextInputOrTextarea from "./isTextInputOrTextarea";
import getActiveElement from "./getActiveElement";

/** Truthy if the element with the focus takes text. */
export default function focusedElementIsEditable(window: WindowWithTypes): boolean | null {
    const element = getActiveElement(window);
    return element && (isTextInputOrTextarea(element, window) || (element as HTMLElement).isContentEditable);
}
