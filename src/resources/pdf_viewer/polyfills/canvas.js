// What PDF.js needs of a canvas beyond the oldest engine's: the current transformation, and patterns with one.

const identity = [1, 0, 0, 1, 0, 0];
const multiply = (m, n) => [
    m[0] * n[0] + m[2] * n[1],
    m[1] * n[0] + m[3] * n[1],
    m[0] * n[2] + m[2] * n[3],
    m[1] * n[2] + m[3] * n[3],
    m[0] * n[4] + m[2] * n[5] + m[4],
    m[1] * n[4] + m[3] * n[5] + m[5],
];

class Matrix {
    constructor(values = identity) {
        [this.a, this.b, this.c, this.d, this.e, this.f] = values;
    }

    get values() {
        return [this.a, this.b, this.c, this.d, this.e, this.f];
    }

    translate(x, y) {
        return new Matrix(multiply(this.values, [1, 0, 0, 1, x, y]));
    }

    scale(x, y = x) {
        return new Matrix(multiply(this.values, [x, 0, 0, y, 0, 0]));
    }

    invertSelf() {
        const { a, b, c, d, e, f } = this;
        const determinant = a * d - b * c;
        const inverse = [d, -b, -c, a, c * f - d * e, b * e - a * f].map((value) => value / determinant);
        [this.a, this.b, this.c, this.d, this.e, this.f] = inverse;
        return this;
    }
}

/** Keeps each canvas's transformation beside it, since its context does not tell. */
function trackTransformations(prototype) {
    const states = new WeakMap();
    const stateOf = ({ canvas }) => {
        if (!states.has(canvas)) states.set(canvas, { current: identity, saved: [] });
        return states.get(canvas);
    };
    const follow = (name, change) => {
        const original = prototype[name];
        prototype[name] = function (...values) {
            change(stateOf(this), values);
            return original.apply(this, values);
        };
    };
    const append = (matrixOf) => (state, values) => (state.current = multiply(state.current, matrixOf(...values)));

    prototype.resetTransform = function () {
        this.setTransform(...identity);
    };
    follow("save", (state) => state.saved.push(state.current));
    follow("restore", (state) => (state.current = state.saved.pop() || state.current));
    follow("setTransform", (state, values) => (state.current = values));
    follow("transform", append((...values) => values));
    follow("translate", append((x, y) => [1, 0, 0, 1, x, y]));
    follow("scale", append((x, y) => [x, 0, 0, y, 0, 0]));
    follow("rotate", append((angle) => [Math.cos(angle), Math.sin(angle), -Math.sin(angle), Math.cos(angle), 0, 0]));
    prototype.getTransform = function () {
        return new Matrix(stateOf(this).current);
    };

    // A canvas that gets a size is as new.
    for (const name of ["width", "height"]) {
        const { get, set, ...rest } = Object.getOwnPropertyDescriptor(HTMLCanvasElement.prototype, name);
        const setAndForget = function (value) {
            set.call(this, value);
            states.delete(this);
        };
        Object.defineProperty(HTMLCanvasElement.prototype, name, { get, set: setAndForget, ...rest });
    }
}

/** Fills paths with a pattern in the pattern's own transformation; a path keeps the one that it was made in. */
function transformPatterns(prototype) {
    const matrices = new WeakMap();
    CanvasPattern.prototype.setTransform = function ({ a, b, c, d, e, f }) {
        matrices.set(this, [a, b, c, d, e, f]);
    };
    const { fill } = prototype;
    prototype.fill = function (...values) {
        const matrix = matrices.get(this.fillStyle);
        if (!matrix || typeof values[0] === "object") return fill.apply(this, values);
        this.save();
        this.transform(...matrix);
        fill.apply(this, values);
        this.restore();
    };
}

if (self.CanvasRenderingContext2D && !self.DOMMatrix) {
    self.DOMMatrix = Matrix;
    const { prototype } = CanvasRenderingContext2D;
    if (!prototype.getTransform) trackTransformations(prototype);
    if (!CanvasPattern.prototype.setTransform) transformPatterns(prototype);
}
