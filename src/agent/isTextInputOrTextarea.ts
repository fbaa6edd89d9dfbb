const inputTypesWithoutText = [
    "button",
    "checkbox",
    "color",
    "file",
    "hidden",
    "image",
    "radio",
    "range",
    "reset",
    "submit",
];

/** True for text areas and for the inputs that take text, unknown and future types among them. */
export default function isTextInputOrTextarea(
    element: Element,
    window: WindowWithTypes,
): element is HTMLInputElement | HTMLTextAreaElement {
    if (element instanceof window.HTMLInputElement) {
        return inputTypesWithoutText.indexOf(element.type.toLowerCase()) === -1;
    }
    return element instanceof window.HTMLTextAreaElement;
}
