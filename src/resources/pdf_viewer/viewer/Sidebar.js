import { byId, onClick, setPressed } from "./dom.js";
import { showOutline } from "./outline.js";
import { Thumbnails } from "./Thumbnails.js";

const tabs = { pagesTab: "thumbnails", outlineTab: "outline" };

/** The pages' pictures and the document's outline beside the pages, or above them where there is little room. */
export class Sidebar {
    constructor(linkService) {
        this.linkService = linkService;
        onClick({
            sidebarToggle: () => this.toggle(),
            pagesTab: () => this.show("pagesTab"),
            outlineTab: () => this.show("outlineTab"),
        });
    }

    setDocument(pdfDocument, firstPage) {
        const goToPage = (pageNumber) => this.linkService.goToPage(pageNumber);
        this.thumbnails = new Thumbnails(byId("thumbnails"), pdfDocument, firstPage, goToPage);
        this.thumbnails.select(1);
        return showOutline(byId("outline"), pdfDocument, this.linkService);
    }

    toggle() {
        const sidebar = byId("sidebar");
        sidebar.hidden = !sidebar.hidden;
        setPressed(byId("sidebarToggle"), !sidebar.hidden);
        self.dispatchEvent(new Event("resize")); // the pages have another width now
    }

    show(shownTab) {
        for (const [tab, panel] of Object.entries(tabs)) {
            byId(tab).setAttribute("aria-selected", String(tab === shownTab));
            byId(panel).hidden = tab !== shownTab;
        }
    }

    selectPage(pageNumber) {
        if (this.thumbnails) this.thumbnails.select(pageNumber);
    }

    rotate(rotation) {
        this.thumbnails.rotate(rotation);
    }
}
