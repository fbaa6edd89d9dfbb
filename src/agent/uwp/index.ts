import UwpBridge from "./UwpBridge";
import initBrowserAgent from "../initBrowserAgent";
import ScrollManager from "../optional/ScrollManager";
import KeyboardInputManager from "../optional/KeyboardInputManager";
import PointerInputManager from "../optional/PointerInputManager";
import setDefaultBackground from "../optional/setDefaultBackground";
import SelectElementManager from "../optional/SelectElementManager";
import FocusManager from "../optional/FocusManager";
import UwpPointAdjuster from "./UwpPointAdjuster";
import type { BrowserAgentOptions } from "../BrowserAgent";

export interface UwpAgentOptions extends BrowserAgentOptions {
    /** The display's raw pixels per view pixel. */
    expectedDevicePixelRatio: number;
}

// A repeated call still makes a new set of components, whose listeners and timers stay; only the installation is
// refused. A call without options fails in the first line, before anything is installed.
window.__initZarvik = (options) => {
    const pointAdjuster = new UwpPointAdjuster(options.expectedDevicePixelRatio);
    initBrowserAgent(new UwpBridge(), {
        browserAgentOptions: options,
        optionalComponents: {
            focusManager: new FocusManager(),
            keyboardInputManager: new KeyboardInputManager({ enableTextInputEvents: true }),
            pointerInputManager: new PointerInputManager({ pointAdjuster }),
            // Without an adjuster, unlike the pointer: scroll positions are used as they come.
            scrollManager: new ScrollManager(),
            selectElementManager: new SelectElementManager(),
            setDefaultBackground,
        },
    });
};
