// Gives files to the user, where the platform takes them.

import { create } from "./dom.js";

const saveBlob = navigator.msSaveBlob && ((blob, name) => navigator.msSaveBlob(blob, name));
export const canSave = Boolean(saveBlob) || "download" in HTMLAnchorElement.prototype;

export function save(data, name, type = "application/pdf") {
    const blob = new Blob([data], { type });
    if (saveBlob) {
        saveBlob(blob, name);
        return;
    }
    const link = create("a", { href: URL.createObjectURL(blob), download: name });
    document.body.appendChild(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
