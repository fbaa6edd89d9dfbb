// Reads the headers of a 64-bit Windows image (PE32+), and patches those that the tests damage.

const directories = { exports: 0, imports: 1, relocations: 5, debug: 6, delayImports: 13 };
const codeViewEntry = 2;
const relocation64 = 10;

export const machines = { x64: 0x8664, arm64: 0xaa64 };

// Bits of DllCharacteristics.
export const highEntropyAddress = 0x20; // may be loaded above 4 GB
export const dynamicBase = 0x40; // may be loaded anywhere
export const noExecuteCompatible = 0x100; // needs no executable data
export const appContainer = 0x1000; // may run in an app container

// Bits of a section's characteristics.
export const shared = 0x10000000;
export const executable = 0x20000000;
export const writable = 0x80000000;

export class PortableExecutable {
    #bytes;
    #optionalHeader;

    /** `bytes` is a Buffer with the whole file; the setters below change it in place. */
    constructor(bytes) {
        this.#bytes = bytes;
        const header = bytes.readUInt32LE(0x3c);
        if (bytes.toString("latin1", 0, 2) !== "MZ" || bytes.toString("latin1", header, header + 4) !== "PE\0\0")
            throw new Error("not a Windows image");
        this.machine = bytes.readUInt16LE(header + 4);
        this.#optionalHeader = header + 24;
        if (bytes.readUInt16LE(this.#optionalHeader) !== 0x20b)
            throw new Error("not a 64-bit image");

        const sectionTable = this.#optionalHeader + bytes.readUInt16LE(header + 20);
        this.sections = Array.from({ length: bytes.readUInt16LE(header + 6) }, (_, index) => {
            const section = sectionTable + 40 * index;
            return {
                name: bytes.toString("latin1", section, section + 8).replace(/\0+$/, ""),
                address: bytes.readUInt32LE(section + 12),
                size: bytes.readUInt32LE(section + 16),
                fileOffset: bytes.readUInt32LE(section + 20),
                characteristics: bytes.readUInt32LE(section + 36),
                characteristicsOffset: section + 36,
            };
        });
    }

    get dllCharacteristics() {
        return this.#bytes.readUInt16LE(this.#optionalHeader + 70);
    }

    set dllCharacteristics(value) {
        this.#bytes.writeUInt16LE(value, this.#optionalHeader + 70);
    }

    get checksum() {
        return this.#bytes.readUInt32LE(this.#optionalHeader + 64);
    }

    set checksum(value) {
        this.#bytes.writeUInt32LE(value, this.#optionalHeader + 64);
    }

    /** What the checksum must be: the folded sum of all 16-bit words outside that field, plus the file's length. */
    computeChecksum() {
        const field = this.#optionalHeader + 64;
        const bytes = this.#bytes;
        let sum = 0;
        for (let offset = 0; offset < bytes.length; offset += 2) {
            if (offset === field || offset === field + 2)
                continue;
            sum += offset + 1 < bytes.length ? bytes.readUInt16LE(offset) : bytes[offset];
            sum = (sum & 0xffff) + (sum >>> 16);
        }
        return sum + bytes.length;
    }

    /** The exported names, sorted. An export without a name is an error: nobody could ask for it. */
    exportedNames() {
        const table = this.#directory(directories.exports)?.offset;
        if (table === undefined)
            return [];
        const functionCount = this.#bytes.readUInt32LE(table + 20);
        const nameCount = this.#bytes.readUInt32LE(table + 24);
        if (functionCount !== nameCount)
            throw new Error(`${functionCount} exports, but ${nameCount} names`);
        const names = this.#fileOffset(this.#bytes.readUInt32LE(table + 32));
        return Array.from({ length: nameCount }, (_, index) =>
            this.#text(this.#bytes.readUInt32LE(names + 4 * index)),
        ).sort();
    }

    /** The names of the libraries it loads, at once or on first use. */
    importedLibraries() {
        return [
            ...this.#libraryNames(directories.imports, 20, 12),
            ...this.#libraryNames(directories.delayImports, 32, 4),
        ];
    }

    /** Where the pointers are that the loader corrects when the image is not at its preferred address. */
    relocatedPointers() {
        const { offset = 0, size = 0 } = this.#directory(directories.relocations) ?? {};
        const pointers = [];
        for (let block = offset; block < offset + size; block += this.#bytes.readUInt32LE(block + 4)) {
            const page = this.#bytes.readUInt32LE(block);
            const end = block + this.#bytes.readUInt32LE(block + 4);
            for (let entry = block + 8; entry < end; entry += 2) {
                const value = this.#bytes.readUInt16LE(entry);
                if (value >>> 12 === relocation64)
                    pointers.push(page + (value & 0xfff));
            }
        }
        return pointers;
    }

    /** The file with the debug information, as the image names it, and the bytes that both share; or undefined. */
    debugFile() {
        const { offset = 0, size = 0 } = this.#directory(directories.debug) ?? {};
        for (let entry = offset; entry < offset + size; entry += 28) {
            if (this.#bytes.readUInt32LE(entry + 12) !== codeViewEntry)
                continue;
            const data = this.#bytes.readUInt32LE(entry + 24);
            const name = this.#bytes.toString("latin1", data + 24, this.#bytes.indexOf(0, data + 24));
            return { name, identifier: this.#bytes.subarray(data + 4, data + 20) };
        }
        return undefined;
    }

    /** The number of the file's version resource, as "1.2.3.4", or undefined. */
    version() {
        const start = this.#bytes.indexOf(Buffer.from("bd04effe", "hex"));
        if (start === -1)
            return undefined;
        return [10, 8, 14, 12].map((offset) => this.#bytes.readUInt16LE(start + offset)).join(".");
    }

    /** Descriptors of `size` bytes up to one without a name; the name's address is at `nameField`. */
    *#libraryNames(directory, size, nameField) {
        let descriptor = this.#directory(directory)?.offset;
        if (descriptor === undefined)
            return;
        for (let name; (name = this.#bytes.readUInt32LE(descriptor + nameField)) !== 0; descriptor += size)
            yield this.#text(name);
    }

    #directory(index) {
        if (index >= this.#bytes.readUInt32LE(this.#optionalHeader + 108))
            return undefined;
        const entry = this.#optionalHeader + 112 + 8 * index;
        const address = this.#bytes.readUInt32LE(entry);
        return address === 0
            ? undefined
            : { offset: this.#fileOffset(address), size: this.#bytes.readUInt32LE(entry + 4) };
    }

    #fileOffset(address) {
        const section = this.sections.find((each) => address >= each.address && address < each.address + each.size);
        if (section === undefined)
            throw new Error(`address 0x${address.toString(16)} lies in no section`);
        return address - section.address + section.fileOffset;
    }

    #text(address) {
        const start = this.#fileOffset(address);
        return this.#bytes.toString("latin1", start, this.#bytes.indexOf(0, start));
    }
}
