// The parts of the agent in the order in which they stand in its text.

/** Scripts that run before the modules are registered: what the engine may lack, the module system, the helpers. */
export const prelude = ["prelude/objectAssign", "prelude/moduleSystem", "prelude/helpers"];

/** The modules, each with its dependencies in the order in which it imports them. */
export const modules = [
    ["utils/EventEmitter", []],
    ["IBridge", []],
    ["BaseBridge", ["utils/EventEmitter"]],
    ["uwp/UwpBridge", ["BaseBridge"]],
    ["IFrameBridge", ["BaseBridge"]],
    ["MessageType", []],
    ["utils/flattenPrototypes", []],
    ["UrlActionType", []],
    ["FocusedInputFieldType", []],
    ["isTextInputOrTextarea", []],
    ["getActiveElement", []],
    ["focusedElementIsEditable", ["isTextInputOrTextarea", "getActiveElement"]],
    [
        "BrowserAgent",
        [
            "utils/EventEmitter",
            "IFrameBridge",
            "MessageType",
            "utils/flattenPrototypes",
            "UrlActionType",
            "FocusedInputFieldType",
            "focusedElementIsEditable",
            "getActiveElement",
        ],
    ],
    ["initBrowserAgent", ["BrowserAgent"]],
    ["IFramePostMessageDomain", []],
    ["optional/IPointAdjuster", []],
    ["optional/ScrollManager", ["IFramePostMessageDomain"]],
    [
        "optional/KeyboardInputManager",
        ["isTextInputOrTextarea", "IFramePostMessageDomain", "focusedElementIsEditable"],
    ],
    ["optional/PointerInputManager", ["IFramePostMessageDomain", "utils/flattenPrototypes"]],
    ["optional/setDefaultBackground", []],
    ["utils/arrayFrom", []],
    ["optional/SelectElementManager", ["utils/arrayFrom"]],
    ["optional/FocusManager", []],
    ["uwp/UwpPointAdjuster", []],
    [
        "uwp/index",
        [
            "uwp/UwpBridge",
            "initBrowserAgent",
            "optional/ScrollManager",
            "optional/KeyboardInputManager",
            "optional/PointerInputManager",
            "optional/setDefaultBackground",
            "optional/SelectElementManager",
            "optional/FocusManager",
            "uwp/UwpPointAdjuster",
        ],
    ],
];

/** The module whose execution starts the agent. */
export const rootModule = "uwp/index";
