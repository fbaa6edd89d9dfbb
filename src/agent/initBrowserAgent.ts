import BrowserAgent from "./BrowserAgent";
import type { BrowserAgentOptions } from "./BrowserAgent";
import type IBridge from "./IBridge";

export interface InitializationOptions {
    browserAgentOptions: BrowserAgentOptions;
    /** What else the plug-in reaches under `_zarvikInternal`. */
    optionalComponents?: object;
}

/** Installs the agent on a window, unless it is there already: then the new bridge and components are dropped. */
export default function initBrowserAgent(bridge: IBridge, options: InitializationOptions): void {
    const target = options.browserAgentOptions.window || window;
    if (target.zarvik && target._zarvikInternal) {
        return;
    }
    target.zarvik = bridge;
    target._zarvikInternal = { browserAgent: new BrowserAgent(bridge, options.browserAgentOptions) };
    if (options.optionalComponents) {
        Object.assign(target._zarvikInternal, options.optionalComponents);
    }
    target.dispatchEvent(new Event("zarvikready"));
}
