export type Listener = (...args: any[]) => void;

/** Calls listeners by event name. One listener's failure does not keep the next from its call. */
export default class EventEmitter {
    private _listeners: Record<string, Listener[]> = Object.create(null);

    addListener(eventName: string, listener: Listener): void {
        const listeners = this._listeners[eventName] || (this._listeners[eventName] = []);
        if (listeners.indexOf(listener) === -1) {
            listeners.push(listener);
        }
    }

    emit(eventName: string, ...args: unknown[]): void {
        const listeners = this._listeners[eventName];
        if (!listeners) {
            return;
        }
        // A copy: a listener may remove itself.
        listeners.slice().forEach((listener) => {
            try {
                listener(...args);
            } catch (error) {
                console.error("An error occurred while invoking the '" + eventName + "' event handler.", error);
            }
        });
    }

    removeListener(eventName: string, listener: Listener): void {
        const listeners = this._listeners[eventName] || [];
        const index = listeners.indexOf(listener);
        if (index !== -1) {
            listeners.splice(index, 1);
        }
    }
}
