import { create } from "./dom.js";

function entry(item, linkService) {
    const label = create(item.url ? "a" : "button", { className: "entry", textContent: item.title });
    if (item.url) linkService.addLinkAttributes(label, item.url, item.newWindow);
    else label.addEventListener("click", () => item.dest && linkService.goToDestination(item.dest));
    if (item.bold) label.style.fontWeight = "bold";
    if (item.italic) label.style.fontStyle = "italic";

    const children = list(item.items, linkService);
    const fold = create("button", { className: "fold", title: "Show or hide what is below" });
    fold.hidden = item.items.length === 0;
    const showBelow = (shown) => {
        children.hidden = !shown;
        fold.setAttribute("aria-expanded", String(shown));
    };
    showBelow(!(item.count < 0)); // how a document says that an entry is closed
    fold.addEventListener("click", () => showBelow(children.hidden));
    return create("li", {}, [fold, label, children]);
}

function list(items, linkService) {
    return create(
        "ul",
        {},
        items.map((item) => entry(item, linkService)),
    );
}

/** Fills the panel with the document's outline; says so if there is none. */
export async function showOutline(panel, pdfDocument, linkService) {
    const items = await pdfDocument.getOutline();
    panel.textContent = "";
    panel.appendChild(
        items && items.length > 0
            ? list(items, linkService)
            : create("p", { className: "empty", textContent: "This document has no outline." }),
    );
}
