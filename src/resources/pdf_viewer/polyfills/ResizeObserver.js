// Enough of ResizeObserver for the viewer, whose parts change their size with the window only; who changes one
// otherwise dispatches the window's "resize".

class Observer {
    constructor(callback) {
        const sizes = new Map();
        const report = () => {
            const entries = [];
            sizes.forEach((size, target) => {
                const { width, height } = target.getBoundingClientRect();
                if (size === `${width} ${height}`) return;
                sizes.set(target, `${width} ${height}`);
                const borderBoxSize = [{ inlineSize: width, blockSize: height }];
                entries.push({ target, borderBoxSize, contentRect: target.getBoundingClientRect() });
            });
            if (entries.length > 0) callback(entries, this);
        };
        this.observe = (element) => {
            sizes.set(element, "");
            requestAnimationFrame(report);
        };
        this.unobserve = (element) => sizes.delete(element);
        this.disconnect = () => {
            sizes.clear();
            removeEventListener("resize", report);
        };
        addEventListener("resize", report);
    }
}

if (!self.ResizeObserver) self.ResizeObserver = Observer;
