// The part of ReadableStream in which PDF.js passes data between threads: one reader, a queue, back pressure. Older
// engines have streams that no script can make.

class Stream {
    constructor(source, strategy = {}) {
        const { highWaterMark = 1, size = () => 1 } = strategy;
        Object.assign(this, { source, highWaterMark, size, queue: [], queued: 0, waiting: [], state: "readable" });
        this.closed = new Promise((resolve, reject) => {
            Object.assign(this, { resolveClosed: resolve, rejectClosed: reject });
        });
        this.closed.catch(() => {}); // nobody has to ask for it
        const stream = this;
        this.controller = {
            get desiredSize() {
                if (stream.state === "errored") return null;
                return stream.state === "closed" ? 0 : stream.highWaterMark - stream.queued;
            },
            enqueue: (chunk) => this.enqueue(chunk),
            close: () => this.close(),
            error: (reason) => this.fail(reason),
        };
        const started = source.start ? source.start(this.controller) : undefined;
        Promise.resolve(started).then(
            () => {
                this.started = true;
                this.pull();
            },
            (reason) => this.fail(reason),
        );
    }

    getReader() {
        if (this.locked) throw new TypeError("The stream has a reader already.");
        this.locked = true;
        return {
            closed: this.closed,
            read: () => this.read(),
            cancel: (reason) => this.cancel(reason),
            releaseLock: () => (this.locked = false),
        };
    }

    enqueue(chunk) {
        if (this.state !== "readable" || this.closing) throw new TypeError("The stream takes no more data.");
        if (this.waiting.length > 0) this.waiting.shift().resolve({ value: chunk, done: false });
        else {
            const size = this.size(chunk);
            this.queue.push({ chunk, size });
            this.queued += size;
        }
        this.pull();
    }

    close() {
        this.closing = true;
        if (this.queue.length === 0) this.finish();
    }

    fail(reason) {
        if (this.state !== "readable") return;
        Object.assign(this, { state: "errored", reason, queue: [], queued: 0 });
        for (const { reject } of this.waiting.splice(0)) reject(reason);
        this.rejectClosed(reason);
    }

    finish() {
        if (this.state !== "readable") return;
        this.state = "closed";
        for (const { resolve } of this.waiting.splice(0)) resolve({ value: undefined, done: true });
        this.resolveClosed();
    }

    read() {
        if (this.state === "errored") return Promise.reject(this.reason);
        if (this.state === "closed") return Promise.resolve({ value: undefined, done: true });
        if (this.queue.length > 0) {
            const { chunk, size } = this.queue.shift();
            this.queued -= size;
            if (this.closing && this.queue.length === 0) this.finish();
            else this.pull();
            return Promise.resolve({ value: chunk, done: false });
        }
        const chunk = new Promise((resolve, reject) => this.waiting.push({ resolve, reject }));
        this.pull();
        return chunk;
    }

    cancel(reason) {
        if (this.state === "errored") return Promise.reject(this.reason);
        if (this.state === "closed") return Promise.resolve();
        Object.assign(this, { queue: [], queued: 0 });
        this.finish();
        return Promise.resolve(this.source.cancel ? this.source.cancel(reason) : undefined).then(() => {});
    }

    /** Asks the source for more, one question at a time. */
    pull() {
        const wanted = this.waiting.length > 0 || this.controller.desiredSize > 0;
        if (!this.started || !this.source.pull || this.state !== "readable" || this.closing || !wanted) return;
        if (this.pulling) {
            this.pullAgain = true;
            return;
        }
        this.pulling = true;
        Promise.resolve(this.source.pull(this.controller)).then(
            () => {
                this.pulling = false;
                if (!this.pullAgain) return;
                this.pullAgain = false;
                this.pull();
            },
            (reason) => this.fail(reason),
        );
    }
}

try {
    new ReadableStream({});
} catch {
    self.ReadableStream = Stream;
}
