// The contracts of the in-page agent, tested in a real browser. One program, so that all cases share one browser.

import "./cases/modules.mjs";
import "./cases/bridge.mjs";
import "./cases/browserAgent.mjs";
import "./cases/pointer.mjs";
import "./cases/scroll.mjs";
import "./cases/keyboard.mjs";
import "./cases/components.mjs";
import "./cases/frames.mjs";
