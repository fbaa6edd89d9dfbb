// What must hold for a DLL that a Universal Windows app can load and a store accepts.

import {
    PortableExecutable, appContainer, dynamicBase, executable, highEntropyAddress, noExecuteCompatible, shared,
    writable,
} from "./PortableExecutable.mjs";

// Libraries that an app container offers to every app. Anything else would be desktop code.
const allowedLibraries = [/^api-ms-win-[a-z0-9-]+\.dll$/, /^d3d11\.dll$/, /^urlmon\.dll$/, /^oleaut32\.dll$/];

const requiredBits = [
    [appContainer, "app-container"],
    [dynamicBase, "dynamic-base"],
    [highEntropyAddress, "high-entropy"],
    [noExecuteCompatible, "no-execute"],
];

/** The names in the plug-in's export table, sorted. */
export function exportTableNames(text) {
    const code = text.replaceAll(/\/\/.*|^\s*#.*/gm, "");
    return [...code.matchAll(/\bZARVIK_EXPORT\(\s*[^,]+,\s*(\w+)\s*,/g)].map((match) => match[1]).sort();
}

/** All that is wrong with the image in `bytes`, as sentences; empty when it is right. */
export function imageProblems(bytes, { machine, exports, version, greatestSize, foreignText }) {
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

    for (const [bit, name] of requiredBits)
        if ((image.dllCharacteristics & bit) === 0)
            problems.push(`lacks the ${name} bit`);
    if (image.checksum !== image.computeChecksum())
        problems.push("has a wrong checksum");

    for (const { name, characteristics } of image.sections) {
        if (characteristics & writable && characteristics & executable)
            problems.push(`has the section ${name}, which is both writable and executable`);
        if (characteristics & shared)
            problems.push(`has the section ${name}, which processes share`);
    }
    // The functions of every virtual table are such pointers.
    if (image.relocatedPointers().length === 0)
        problems.push("has no base relocations");

    if (image.version() !== version)
        problems.push(`has the version ${image.version()}, not ${version}`);
    if (bytes.length > greatestSize)
        problems.push(`is ${bytes.length} bytes long, above its budget of ${greatestSize}`);
    if (bytes.includes(foreignText, 0, "latin1") || bytes.includes(foreignText, 0, "utf16le"))
        problems.push(`holds the text ${foreignText}`);
    return problems;
}
