// Completes a linked DLL for app containers: the linker can set neither the bit nor, after it, the checksum.
//   node finishImage.mjs FILE

import { readFileSync, writeFileSync } from "node:fs";
import { PortableExecutable, appContainer } from "./PortableExecutable.mjs";

const file = process.argv[2];
const bytes = readFileSync(file);
const image = new PortableExecutable(bytes);
image.dllCharacteristics |= appContainer;
image.checksum = image.computeChecksum();
writeFileSync(file, bytes);
