const noColor = "rgba(0, 0, 0, 0)";

function hasBackground(element: Element): boolean {
    const style = getComputedStyle(element);
    return (
        style.backgroundImage !== "none" ||
        (!!style.background && style.background.indexOf(noColor + " none") !== 0) ||
        (!!style.backgroundColor &&
            style.backgroundColor.indexOf(noColor) !== 0 &&
            style.backgroundColor !== "transparent")
    );
}

/** Puts a white layer behind a page that has no background of its own, as browsers show such pages. */
export default function setDefaultBackground(): void {
    if (!document.body || !document.documentElement) {
        return;
    }
    if (hasBackground(document.body) || hasBackground(document.documentElement)) {
        return;
    }
    const background = document.createElement("zarvik-page-background");
    Object.assign(background.style, {
        position: "fixed",
        top: "0",
        right: "0",
        bottom: "0",
        left: "0",
        backgroundColor: "white",
        zIndex: "-2147483647",
    });
    document.body.appendChild(background);
}
