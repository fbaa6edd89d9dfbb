import arrayFrom from "../utils/arrayFrom";

const attributeNamespace = "zarvik";
const maximumListHeight = 300;
const listStyle = [
    "zarvik-dropdown {",
    "position: absolute;",
    "background-color: white;",
    "display: block;",
    "box-shadow: 0 4px 10px rgba(0, 0, 0, .2);",
    "border: 1px solid #bcbcbc;",
    "z-index: 2147483648; /* the maximum value */",
    "max-height: " + maximumListHeight + "px;",
    "overflow: scroll;",
    "text-align: left;",
    "}",
    "zarvik-dropdown-option {",
    "display: block;",
    "padding: 6px 10px;",
    "color: #1e1e1e;",
    "cursor: default;",
    "}",
    "zarvik-dropdown-option:hover, zarvik-dropdown-option[selected] {",
    "background-color: #1275ff;",
    "color: white;",
    "}",
].join(" ");

function wait(milliseconds: number): Promise<void> {
    return new Promise((resolve) => {
        setTimeout(resolve, milliseconds);
    });
}

function stopPropagation(event: Event): void {
    event.stopPropagation();
}

/** An overlay over the whole window: a click outside the list closes it. */
function createOverlay(): HTMLElement {
    const overlay = document.createElement("zarvik-dropdown-container");
    Object.assign(overlay.style, {
        position: "fixed",
        top: "0",
        right: "0",
        bottom: "0",
        left: "0",
        zIndex: "2147483648",
    });
    document.body.appendChild(overlay);
    const style = document.createElement("style");
    style.innerText = listStyle;
    overlay.appendChild(style);
    return overlay;
}

function createList(selectElement: HTMLSelectElement): HTMLElement {
    const list = document.createElement("zarvik-dropdown");
    const rect = selectElement.getBoundingClientRect();
    const offset = navigator.userAgent.indexOf("Firefox") === -1 ? 0 : 1;
    list.style.left = rect.left - offset + "px";
    list.style.width = rect.width + "px";
    list.style.top = rect.top + rect.height + "px";
    return list;
}

/** Fills the list and returns the entry of the current option. */
function addEntries(list: HTMLElement, selectElement: HTMLSelectElement): HTMLElement | undefined {
    const computedStyle = getComputedStyle(selectElement);
    const fontStyle = {
        font: computedStyle.font,
        fontSize: computedStyle.fontSize,
        fontWeight: computedStyle.fontWeight,
    };
    const options = arrayFrom(selectElement.querySelectorAll("option"));
    const currentOption = options.filter((option) => option.value === selectElement.value)[0];
    let currentEntry: HTMLElement | undefined;

    options.forEach((option) => {
        const entry = document.createElement("zarvik-dropdown-option");
        entry.innerText = option.innerText;
        Object.assign(entry.style, fontStyle);
        entry.onclick = () => {
            selectElement.value = option.value;
            selectElement.dispatchEvent(new Event("input", { bubbles: true }));
            selectElement.dispatchEvent(new Event("change", { bubbles: true }));
        };
        if (option === currentOption) {
            currentEntry = entry;
            entry.setAttribute("selected", "true");
            // From then on the entry under the pointer is the marked one.
            const unmark = () => {
                entry.removeAttribute("selected");
                list.removeEventListener("mousemove", unmark);
            };
            list.addEventListener("mousemove", unmark);
        }
        list.appendChild(entry);
    });
    return currentEntry;
}

/** The "click" handler of a managed element. */
async function openList(event: Event): Promise<void> {
    const selectElement = event.target as HTMLSelectElement;
    // Hidden for a moment, the element loses the list that the engine would open.
    const display = selectElement.style.display;
    selectElement.style.display = "none";
    await wait(10);
    selectElement.style.display = display;

    const overlay = createOverlay();
    const close = () => {
        if (document.body.contains(overlay)) {
            overlay.parentNode!.removeChild(overlay);
        }
        selectElement.removeEventListener("change", close);
        selectElement.blur();
    };
    overlay.onclick = close;
    selectElement.addEventListener("change", close);
    overlay.onmousedown = stopPropagation;
    overlay.onmouseup = stopPropagation;

    const list = createList(selectElement);
    overlay.appendChild(list);
    const currentEntry = addEntries(list, selectElement);

    // The page behind does not scroll.
    overlay.addEventListener("wheel", (wheelEvent) => {
        if (!list.contains(wheelEvent.target as Node)) {
            wheelEvent.preventDefault();
        }
    });

    // With no current entry a long list fails here, where it is ready for use already.
    if (list.scrollHeight > maximumListHeight && currentEntry!.offsetTop > maximumListHeight) {
        list.scrollLeft = 0;
        list.scrollTop = currentEntry!.offsetTop;
    }
}

/**
 * Replaces the engine's own list of single-choice `select` elements, which is no part of the page's picture, by one
 * drawn inside the page. New elements are found by polling; an element once taken over keeps its handler.
 */
export default class SelectElementManager {
    constructor() {
        setInterval(() => this._manageSelectElements(), 250);
    }

    private _manageSelectElements(): void {
        const selectElements = document.querySelectorAll("select:not([multiple]):not([disabled])");
        arrayFrom(selectElements).forEach((selectElement) => {
            if (!selectElement.getAttributeNS(attributeNamespace, "managed")) {
                selectElement.setAttributeNS(attributeNamespace, "managed", "true");
                selectElement.addEventListener("click", openList);
            }
        });
    }
}
