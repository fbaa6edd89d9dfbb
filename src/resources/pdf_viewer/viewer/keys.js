/** The keys that work everywhere in the page. Scrolling is the browser's own. */
export function listenToKeys(pdfViewer, findBar) {
    const withControl = {
        f: () => findBar.open(),
        "+": () => pdfViewer.increaseScale(),
        "=": () => pdfViewer.increaseScale(),
        "-": () => pdfViewer.decreaseScale(),
        0: () => (pdfViewer.currentScaleValue = "auto"),
    };
    const alone = {
        Home: () => (pdfViewer.currentPageNumber = 1),
        End: () => (pdfViewer.currentPageNumber = pdfViewer.pagesCount),
        Escape: () => findBar.close(),
    };
    document.addEventListener("keydown", (event) => {
        const inField = /^(INPUT|TEXTAREA|SELECT)$/.test(event.target.tagName);
        if (event.altKey || !pdfViewer.pdfDocument) return;
        const actions = event.ctrlKey || event.metaKey ? withControl : inField ? {} : alone;
        const action = actions[event.key];
        if (!action) return;
        event.preventDefault();
        action();
    });
}
