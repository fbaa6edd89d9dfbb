// Some engines lack Object.assign. This statement opens the agent's text.
if (typeof Object.assign != "function") {
    Object.defineProperty(Object, "assign", {
        value: function assign(target: unknown, ...sources: unknown[]): object {
            if (target === null || target === undefined) {
                throw new TypeError("Cannot convert undefined or null to object");
            }
            const result: Record<string, unknown> = Object(target);
            for (const source of sources) {
                if (source === null || source === undefined) {
                    continue;
                }
                for (const key in source as Record<string, unknown>) {
                    if (Object.prototype.hasOwnProperty.call(source, key)) {
                        result[key] = (source as Record<string, unknown>)[key];
                    }
                }
            }
            return result;
        },
        writable: true,
        configurable: true,
    });
}
