import type IPointAdjuster from "../optional/IPointAdjuster";

/** Makes up for a page that is laid out with another pixel ratio than the display's. */
export default class UwpPointAdjuster implements IPointAdjuster {
    private _expectedDevicePixelRatio: number;

    constructor(expectedDevicePixelRatio: number) {
        this._expectedDevicePixelRatio = expectedDevicePixelRatio;
    }

    adjust(value: number): number {
        // Read at each call: zooming the page changes it.
        const ratio = window.devicePixelRatio;
        return ratio === this._expectedDevicePixelRatio ? value : value * (this._expectedDevicePixelRatio / ratio);
    }
}
