/** Turns a coordinate from the plug-in into one of the page. */
export default interface IPointAdjuster {
    adjust(value: number): number;
}
