import { AnnotationEditorType, getDocument, VerbosityLevel } from "pdfjs-dist";
import { EventBus, PDFFindController, PDFLinkService, PDFViewer } from "pdfjs-dist/web/pdf_viewer.js";
import { byId, onClick } from "./dom.js";
import { EmbeddedCMaps } from "./EmbeddedCMaps.js";
import { FindBar } from "./FindBar.js";
import { PasswordDialog } from "./PasswordDialog.js";
import { canSave, save } from "./save.js";
import { listenToKeys } from "./keys.js";
import { Sidebar } from "./Sidebar.js";
import { Toolbar } from "./Toolbar.js";
import { prepareWorker } from "./worker.js";

const failures = {
    InvalidPDFException: "The file is damaged, or it is not a PDF document.",
    MissingPDFException: "The file was not found.",
    UnexpectedResponseException: "The file could not be read.",
    PasswordException: "The document is protected, and no password was given.",
};

/** The whole page: the pages of one document, and the controls around them. */
export class Viewer {
    constructor(fileName) {
        this.fileName = fileName;
        document.title = fileName || "PDF";
        const pages = byId("pages");
        const eventBus = new EventBus();
        this.linkService = new PDFLinkService({ eventBus });
        this.pdfViewer = new PDFViewer({
            container: pages,
            eventBus,
            linkService: this.linkService,
            findController: new PDFFindController({ eventBus, linkService: this.linkService }),
            downloadManager: { openOrDownloadData: (element, data, name) => save(data, name, "") },
            annotationEditorMode: AnnotationEditorType.DISABLE,
            removePageBorders: true,
        });
        this.linkService.setViewer(this.pdfViewer);
        this.toolbar = new Toolbar(this.pdfViewer, eventBus);
        this.findBar = new FindBar(eventBus);
        this.sidebar = new Sidebar(this.linkService);
        this.passwordDialog = new PasswordDialog();
        byId("download").hidden = !canSave;
        onClick({ download: () => this.download() });
        listenToKeys(this.pdfViewer, this.findBar);

        eventBus.on("pagesinit", () => (this.pdfViewer.currentScaleValue = "auto"));
        eventBus.on("pagechanging", ({ pageNumber }) => this.sidebar.selectPage(pageNumber));
        eventBus.on("rotationchanging", ({ pagesRotation }) => this.sidebar.rotate(pagesRotation));
        eventBus.on("pagerendered", ({ pageNumber, error }) => {
            if (error) console.error(`Page ${pageNumber} could not be shown completely: ${error.message}`);
        });
        self.addEventListener("resize", () => this.fitAgain());
        // The pages scroll inside the window, which itself never does. Who scrolls the window means them.
        self.scrollBy = (x, y) => {
            const { left = 0, top = 0 } = typeof x === "object" ? x : { left: x, top: y };
            pages.scrollLeft += left;
            pages.scrollTop += top;
        };
    }

    async open(url) {
        prepareWorker();
        const progress = byId("progress");
        progress.hidden = false;
        const task = getDocument({
            url,
            // The document is a local file: one request for the whole is the fastest, and works with every server.
            disableRange: true,
            disableStream: true,
            CMapReaderFactory: EmbeddedCMaps,
            useWorkerFetch: false,
            // Older engines cannot look up fonts of the system by name, but draw text without one all the same.
            useSystemFonts: Boolean(document.fonts),
            isEvalSupported: false,
            verbosity: VerbosityLevel.ERRORS,
        });
        task.onProgress = ({ loaded, total }) => {
            if (total > 0) progress.firstElementChild.style.width = `${Math.min(100, (100 * loaded) / total)}%`;
        };
        task.onPassword = (answer, reason) => {
            progress.hidden = true;
            this.passwordDialog.ask(answer, reason);
        };
        try {
            await this.show(await task.promise);
        } catch (error) {
            console.error(`The document could not be opened: ${error.message}`);
            this.showMessage("This document cannot be opened", failures[error.name] || error.message);
        } finally {
            progress.hidden = true;
        }
    }

    async show(pdfDocument) {
        this.pdfDocument = pdfDocument;
        const firstPage = await pdfDocument.getPage(1);
        this.linkService.setDocument(pdfDocument);
        this.pdfViewer.setDocument(pdfDocument);
        this.toolbar.activate(pdfDocument.numPages);
        byId("pages").focus();
        const { info } = await pdfDocument.getMetadata();
        const title = typeof info.Title === "string" ? info.Title.trim() : "";
        if (title) document.title = title;
        await this.sidebar.setDocument(pdfDocument, firstPage);
    }

    /** A page that fits the window fits it again when it changes. */
    fitAgain() {
        const { pdfViewer } = this;
        const { currentScaleValue } = pdfViewer;
        if (!this.pdfDocument) return;
        if (/^(auto|page-fit|page-width)$/.test(currentScaleValue)) pdfViewer.currentScaleValue = currentScaleValue;
        pdfViewer.update();
    }

    /** Saves the document, with what was filled into its fields. */
    async download() {
        const { pdfDocument } = this;
        const filledIn = pdfDocument.annotationStorage.size > 0;
        save(await (filledIn ? pdfDocument.saveDocument() : pdfDocument.getData()), this.fileName || "document.pdf");
    }

    showMessage(title, text) {
        byId("messageTitle").textContent = title;
        byId("messageText").textContent = text;
        byId("message").hidden = false;
    }
}
