// Where the document is, and what to call it.

const scheme = "ms-local-stream:";

export const documentUrl = () => document.getElementById("documentUrl").textContent.trim();

/** Only documents that the app itself serves are opened. */
export const isAllowed = (url) => url.startsWith(scheme);

/** The last part of the decoded path, which may be a path of the file system with either separator. */
export function fileNameOf(url) {
    const path = url.replace(/[?#].*$/, "");
    try {
        return decodeURIComponent(path).split(/[/\\]/).pop();
    } catch {
        return path.split("/").pop(); // not a URL's escapes
    }
}
