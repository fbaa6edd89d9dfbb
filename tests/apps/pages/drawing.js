import SignaturePad from "signature_pad";

const canvas = document.createElement("canvas");
canvas.id = "canvas";
canvas.width = 300;
canvas.height = 150;
document.getElementById("page").append(canvas);
const pad = new SignaturePad(canvas, { minWidth: 5, maxWidth: 5, throttle: 0 });

window.app = {
    strokes: () => pad.toData().length,
    /** Where a stroke began and ended. */
    stroke(index) {
        const { points } = pad.toData()[index];
        return [points[0], points.at(-1)].map(({ x, y }) => `${x} ${y}`).join(" to ");
    },
};
