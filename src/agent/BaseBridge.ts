import EventEmitter from "./utils/EventEmitter";
import type { Listener } from "./utils/EventEmitter";
import type IBridge from "./IBridge";

const responseTimeout = 1000;

/**
 * What all bridges share: events and answers. Both come only from script that the host application runs in the page,
 * through `_emit` and `_respondToEvent`; the plug-in itself calls neither.
 */
export default abstract class BaseBridge implements IBridge {
    private _eventEmitter = new EventEmitter();
    private _eventResponseResolveFunctions: Record<string, (value: unknown) => void> = Object.create(null);

    addEventListener(eventName: string, listener: Listener): void {
        this._eventEmitter.addListener(eventName, listener);
    }

    removeEventListener(eventName: string, listener: Listener): void {
        this._eventEmitter.removeListener(eventName, listener);
    }

    abstract postMessage(message: unknown): void;

    async postMessageWithResponse(message: object): Promise<unknown> {
        let responseId: string;
        do {
            responseId = Math.random().toString();
        } while (this._eventResponseResolveFunctions[responseId]);

        let giveUp!: () => void;
        const response = new window.Promise<unknown>((resolve, reject) => {
            this._eventResponseResolveFunctions[responseId] = resolve;
            giveUp = reject;
        });
        const request = Object.assign({ responseId }, message);
        // Never cancelled: after an answer it has no effect.
        setTimeout(giveUp, responseTimeout);
        this.postMessage(request);
        try {
            return await response;
        } catch {
            throw new Error("The native module didn't respond to the event in time.");
        } finally {
            delete this._eventResponseResolveFunctions[responseId];
        }
    }

    _emit(eventName: string, value: unknown): void {
        this._eventEmitter.emit(eventName, value);
    }

    _respondToEvent(answer: { responseId: string; value: unknown }): void {
        const resolve = this._eventResponseResolveFunctions[answer.responseId];
        if (resolve) {
            resolve(answer.value);
        }
    }
}
