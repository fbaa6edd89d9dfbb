import { FindState } from "pdfjs-dist/web/pdf_viewer.js";
import { byId, onClick, onSubmit, setPressed } from "./dom.js";

/** Searches the document while the user types, and shows how many matches there are. */
export class FindBar {
    constructor(eventBus) {
        this.eventBus = eventBus;
        this.bar = byId("findBar");
        this.input = byId("findText");
        this.count = byId("findCount");
        this.caseSensitive = false;

        this.input.addEventListener("input", () => this.find(""));
        onSubmit(this.bar, () => this.find("again"));
        onClick({
            findToggle: () => (this.bar.hidden ? this.open() : this.close()),
            findClose: () => this.close(),
            findNext: () => this.find("again"),
            findPrevious: () => this.find("again", true),
            matchCase: () => {
                this.caseSensitive = !this.caseSensitive;
                setPressed(byId("matchCase"), this.caseSensitive);
                this.find("casesensitivitychange");
            },
        });
        this.bar.addEventListener("keydown", (event) => {
            if (event.key === "Escape") this.close();
        });
        eventBus.on("updatefindmatchescount", ({ matchesCount }) => this.showCount(matchesCount));
        eventBus.on("updatefindcontrolstate", ({ state, matchesCount }) => this.showCount(matchesCount, state));
    }

    open() {
        this.bar.hidden = false;
        setPressed(byId("findToggle"), true);
        this.input.focus();
        this.input.select();
        if (this.input.value) this.find("");
    }

    close() {
        if (this.bar.hidden) return;
        this.bar.hidden = true;
        setPressed(byId("findToggle"), false);
        this.eventBus.dispatch("findbarclose", { source: this });
        byId("pages").focus();
    }

    find(type, findPrevious = false) {
        this.eventBus.dispatch("find", {
            source: this,
            type,
            query: this.input.value,
            phraseSearch: true,
            caseSensitive: this.caseSensitive,
            entireWord: false,
            highlightAll: true,
            findPrevious,
            matchDiacritics: false,
        });
    }

    showCount({ current, total }, state = FindState.FOUND) {
        const missing = state === FindState.NOT_FOUND;
        this.bar.classList.toggle("notFound", missing);
        if (missing) this.count.textContent = "No matches";
        else this.count.textContent = total > 0 && this.input.value ? `${current} of ${total}` : "";
    }
}
