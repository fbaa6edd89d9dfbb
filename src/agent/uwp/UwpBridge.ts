import BaseBridge from "../BaseBridge";

/** The bridge of the top document. Its messages travel as text through the object that the plug-in adds to the page. */
export default class UwpBridge extends BaseBridge {
    override postMessage(message: unknown): void {
        window._zarvikBridge.postMessage(typeof message === "string" ? message : JSON.stringify(message));
    }
}
