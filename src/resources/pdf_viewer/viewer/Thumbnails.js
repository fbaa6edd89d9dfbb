import { create } from "./dom.js";

const width = 124;

/** Small pictures of the pages. Those that come into sight are drawn, one after the other. */
export class Thumbnails {
    constructor(panel, pdfDocument, firstPage, goToPage) {
        this.panel = panel;
        this.pdfDocument = pdfDocument;
        this.rotation = 0;
        this.waiting = new Set();
        const { width: pageWidth, height } = firstPage.getViewport({ scale: 1 });
        this.items = Array.from({ length: pdfDocument.numPages }, (_, i) => {
            const canvas = create("canvas", { width: 1, height: 1 });
            this.setSize(canvas, height / pageWidth);
            const label = create("span", { textContent: String(i + 1) });
            const item = create("button", { className: "thumbnail", title: `Page ${i + 1}` }, [canvas, label]);
            item.addEventListener("click", () => goToPage(i + 1));
            return item;
        });
        panel.textContent = "";
        for (const item of this.items) panel.appendChild(item);

        const observer = new IntersectionObserver((entries) => this.onSeen(entries), { root: panel });
        for (const item of this.items) observer.observe(item);
    }

    /** Marks the current page, and shows its picture when it is out of sight. */
    select(pageNumber) {
        const item = this.items[pageNumber - 1];
        const { selected, panel } = this;
        if (!item || item === selected) return;
        if (selected) selected.classList.remove("selected");
        item.classList.add("selected");
        this.selected = item;
        const top = item.offsetTop;
        if (top < panel.scrollTop || top + item.offsetHeight > panel.scrollTop + panel.clientHeight)
            panel.scrollTop = top - (panel.clientHeight - item.offsetHeight) / 2;
    }

    rotate(rotation) {
        this.rotation = rotation;
        for (const item of this.items) {
            if (!item.drawn) continue;
            item.drawn = false;
            if (item.seen) this.request(item);
        }
    }

    onSeen(entries) {
        for (const { target, isIntersecting } of entries) {
            target.seen = isIntersecting;
            if (isIntersecting) this.request(target);
            else this.waiting.delete(target);
        }
    }

    request(item) {
        if (item.drawn) return;
        this.waiting.add(item);
        if (!this.drawing) this.drawing = this.drawAll().then(() => (this.drawing = null));
    }

    async drawAll() {
        for (const item of this.waiting) {
            this.waiting.delete(item);
            item.drawn = true;
            try {
                await this.draw(item);
            } catch (error) {
                console.warn(`The picture of page ${this.items.indexOf(item) + 1} failed: ${error.message}`);
            }
        }
    }

    async draw(item) {
        const page = await this.pdfDocument.getPage(this.items.indexOf(item) + 1);
        const rotation = (page.rotate + this.rotation) % 360;
        const whole = page.getViewport({ scale: 1, rotation });
        const viewport = page.getViewport({ scale: (width * (self.devicePixelRatio || 1)) / whole.width, rotation });
        // Drawn aside, so that the old picture stays until the new one is complete.
        const canvas = create("canvas", { width: Math.ceil(viewport.width), height: Math.ceil(viewport.height) });
        this.setSize(canvas, whole.height / whole.width);
        await page.render({ canvasContext: canvas.getContext("2d", { alpha: false }), viewport }).promise;
        item.replaceChild(canvas, item.firstChild);
    }

    setSize(canvas, ratio) {
        canvas.style.width = `${width}px`;
        canvas.style.height = `${Math.round(width * ratio)}px`;
    }
}
