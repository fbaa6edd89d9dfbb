// Reads and patches the headers of a 64-bit Windows image (PE32+).

const directories = { exports: 0, imports: 1, delayImports: 13 };

export const machines = { x64: 0x8664, arm64: 0xaa64 };
export const appContainer = 0x1000; // A bit of DllCharacteristics: the image may run in an app container only.

export class PortableExecutable {
    #bytes;
    #optionalHeader;
    #sections;

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
        this.#sections = Array.from({ length: bytes.readUInt16LE(header + 6) }, (_, index) => {
            const section = sectionTable + 40 * index;
            return {
                address: bytes.readUInt32LE(section + 12),
                size: bytes.readUInt32LE(section + 16),
                fileOffset: bytes.readUInt32LE(section + 20),
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
        const table = this.#directory(directories.exports);
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

    /** Descriptors of `size` bytes up to one without a name; the name's address is at `nameField`. */
    *#libraryNames(directory, size, nameField) {
        let descriptor = this.#directory(directory);
        if (descriptor === undefined)
            return;
        for (let name; (name = this.#bytes.readUInt32LE(descriptor + nameField)) !== 0; descriptor += size)
            yield this.#text(name);
    }

    #directory(index) {
        if (index >= this.#bytes.readUInt32LE(this.#optionalHeader + 108))
            return undefined;
        const address = this.#bytes.readUInt32LE(this.#optionalHeader + 112 + 8 * index);
        return address === 0 ? undefined : this.#fileOffset(address);
    }

    #fileOffset(address) {
        const section = this.#sections.find((each) => address >= each.address && address < each.address + each.size);
        if (section === undefined)
            throw new Error(`address 0x${address.toString(16)} lies in no section`);
        return address - section.address + section.fileOffset;
    }

    #text(address) {
        const start = this.#fileOffset(address);
        return this.#bytes.toString("latin1", start, this.#bytes.indexOf(0, start));
    }
}
