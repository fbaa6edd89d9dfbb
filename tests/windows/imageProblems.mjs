// What must hold for a DLL that a Universal Windows app can load, and for the plug-in's in particular.

import { PortableExecutable, appContainer } from "../../cmake/windows/PortableExecutable.mjs";

// Libraries that an app container offers to every app. Anything else would be desktop code.
const allowedLibraries = [/^api-ms-win-[a-z0-9-]+\.dll$/, /^d3d11\.dll$/, /^urlmon\.dll$/, /^oleaut32\.dll$/];

/** The names in the plug-in's export table, sorted. */
export function exportTableNames(text) {
    const code = text.replaceAll(/\/\/.*|^\s*#.*/gm, "");
    return [...code.matchAll(/\bZARVIK_EXPORT\(\s*[^,]+,\s*(\w+)\s*,/g)].map((match) => match[1]).sort();
}

/** All that is wrong with the image in `bytes`, as sentences; empty when it is right. */
export function imageProblems(bytes, { machine, exports }) {
    const image = new PortableExecutable(bytes);
    const problems = [];

    if (image.machine !== machine)
        problems.push(`built for machine 0x${image.machine.toString(16)}, not 0x${machine.toString(16)}`);

    const exported = image.exportedNames();
    for (const name of exports.filter((each) => !exported.includes(each)))
        problems.push(`does not export ${name}`);
    for (const name of exported.filter((each) => !exports.includes(each)))
        problems.push(`exports ${name}, which it should not`);

    for (const library of image.importedLibraries())
        if (!allowedLibraries.some((pattern) => pattern.test(library.toLowerCase())))
            problems.push(`imports ${library}, which apps may not use`);

    if ((image.dllCharacteristics & appContainer) === 0)
        problems.push("lacks the app-container bit");
    if (image.checksum !== image.computeChecksum())
        problems.push("has a wrong checksum");
    return problems;
}
