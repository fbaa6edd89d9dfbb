/** The element with the focus, also inside open shadow roots. */
export default function getActiveElement(window: Window): Element | null {
    let element = window.document.activeElement;
    while (element && element.shadowRoot) {
        element = element.shadowRoot.activeElement;
    }
    return element;
}
