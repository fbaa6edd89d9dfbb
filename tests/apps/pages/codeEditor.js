import CodeMirror from "codemirror";
import "codemirror/lib/codemirror.css";
import "codemirror/mode/javascript/javascript.js";

const lines = ["function answer() {", "    return 41;", "}"];
for (let number = lines.length + 1; number <= 500; number++) {
    lines.push(`// line ${number}`);
}
const editor = CodeMirror(document.getElementById("page"), {
    value: lines.join("\n"),
    mode: "javascript",
    lineNumbers: true,
});
editor.setSize(640, 300);

window.app = {
    line: (number) => editor.getLine(number),
    lineCount: () => editor.lineCount(),
    selection: () => editor.getSelection(),
    scrollTop: () => editor.getScrollInfo().top,
    lineAt: (y) => editor.getLine(editor.lineAtHeight(y, "window")),
    /** The point at the left edge of a character, in its vertical middle. */
    pointOf(line, column) {
        const { left, top, bottom } = editor.charCoords({ line, ch: column }, "window");
        return `${Math.round(left)} ${Math.round((top + bottom) / 2)}`;
    },
    /** The texts that the highlighting marks as being of a kind. */
    highlighted: (kind) => Array.from(document.querySelectorAll(`.cm-${kind}`), ({ innerText }) => innerText).join(),
};
