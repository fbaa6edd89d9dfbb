import EditorJS from "@editorjs/editorjs";
import Header from "@editorjs/header";

let blocks = "";
const editor = new EditorJS({
    holder: "page",
    tools: { header: Header },
    data: {
        blocks: [
            { type: "header", data: { text: "Title", level: 2 } },
            { type: "paragraph", data: { text: "one" } },
        ],
    },
    async onChange() {
        const saved = await editor.save();
        blocks = saved.blocks.map((block) => `${block.type}: ${block.data.text}`).join("; ");
    },
});
await editor.isReady;

window.app = {
    /** What the editor would store, as of the last change that it noticed. */
    blocks: () => blocks,
};
