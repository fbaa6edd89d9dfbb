import { byId, onClick, onSubmit } from "./dom.js";

/** Page number, zoom, fit and rotation. Works on the pages and follows what they do. */
export class Toolbar {
    constructor(pdfViewer, eventBus) {
        this.pdfViewer = pdfViewer;
        this.pageNumber = byId("pageNumber");
        onClick({
            previousPage: () => pdfViewer.previousPage(),
            nextPage: () => pdfViewer.nextPage(),
            zoomOut: () => pdfViewer.decreaseScale(),
            zoomIn: () => pdfViewer.increaseScale(),
            actualSize: () => (pdfViewer.currentScaleValue = "page-actual"),
            fit: () => (pdfViewer.currentScaleValue = this.nextFit()),
            rotate: () => (pdfViewer.pagesRotation = (pdfViewer.pagesRotation + 90) % 360),
        });
        onSubmit(byId("pageForm"), () => this.goToPage());
        this.pageNumber.addEventListener("change", () => this.goToPage());
        this.pageNumber.addEventListener("focus", () => this.pageNumber.select());
        eventBus.on("pagechanging", ({ pageNumber }) => this.showPage(pageNumber));
        eventBus.on("scalechanging", ({ scale }) => this.showScale(scale));
    }

    activate(pageCount) {
        byId("toolbar").classList.remove("inactive");
        byId("pageCount").textContent = `/ ${pageCount}`;
        this.pageCount = pageCount;
        this.showPage(1);
    }

    /** Goes where the field says; what is not a page's number leaves the page as it is. */
    goToPage() {
        const wanted = Number(this.pageNumber.value);
        if (wanted >= 1 && wanted <= this.pageCount) this.pdfViewer.currentPageNumber = Math.floor(wanted);
        this.pageNumber.value = this.pdfViewer.currentPageNumber;
    }

    showPage(pageNumber) {
        this.pageNumber.value = pageNumber;
        byId("previousPage").disabled = pageNumber <= 1;
        byId("nextPage").disabled = pageNumber >= this.pageCount;
    }

    nextFit() {
        return this.pdfViewer.currentScaleValue === "page-fit" ? "page-width" : "page-fit";
    }

    showScale(scale) {
        byId("actualSize").textContent = `${Math.round(scale * 100)}%`;
        const next = this.nextFit();
        byId("fit").title = next === "page-fit" ? "Fit page" : "Fit width";
        byId("fit").className = next;
    }
}
