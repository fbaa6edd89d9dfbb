import BaseBridge from "./BaseBridge";

/** The bridge of an agent inside a frame: its reports are dropped, the top document's agent speaks for the page. */
export default class IFrameBridge extends BaseBridge {
    override postMessage(): void {}
}
