import { byId } from "./dom.js";

const binary = 1; // PDF.js's name for its compact format

/** The predefined character maps, which the page holds as lines of "name=base64". */
export class EmbeddedCMaps {
    async fetch({ name }) {
        const text = byId("cMaps").textContent;
        const start = text.indexOf(`\n${name}=`);
        if (start < 0) throw new Error(`The character map ${name} is not there.`);
        const data = text.slice(start + name.length + 2, text.indexOf("\n", start + 1));
        const cMapData = Uint8Array.from(atob(data), (character) => character.charCodeAt(0));
        return { cMapData, compressionType: binary };
    }
}
