// The documents that the tests open.

import PDFDocument from "pdfkit";

const lines = [
    "The quick brown fox jumps over the lazy dog, and the dog does not mind.",
    "Sphinx of black quartz, judge my vow.",
];

/** A document of `pageCount` pages with an outline. `draw` adds to its first page. */
function makeDocument({ pageCount = 3, draw, ...options } = {}) {
    const pdf = new PDFDocument({ size: "A5", compress: false, ...options });
    for (let page = 1; page <= pageCount; page++) {
        if (page > 1) pdf.addPage();
        pdf.fontSize(24).text(`Chapter ${page}`);
        const entry = pdf.outline.addItem(`Chapter ${page}`);
        entry.addItem(`Section ${page}.1`);
        pdf.fontSize(12).moveDown();
        for (let i = 0; i < 12; i++) pdf.text(lines[i % 2]);
        if (page === 1 && draw) draw(pdf);
    }
    pdf.end();
    return new Promise((resolve) => {
        const chunks = [];
        pdf.on("data", (chunk) => chunks.push(chunk));
        pdf.on("end", () => resolve(Buffer.concat(chunks)));
    });
}

export const plain = await makeDocument({ info: { Title: "A Tale of Three Pages" } });
export const untitled = await makeDocument({ pageCount: 1 });
export const encrypted = await makeDocument({ pageCount: 1, userPassword: "sesame", pdfVersion: "1.7ext3" });
export const painted = await makeDocument({
    pageCount: 1,
    info: { Title: "Größe 大" },
    draw(pdf) {
        const gradient = pdf.linearGradient(60, 300, 200, 400).stop(0, "yellow").stop(1, "purple");
        pdf.rect(60, 300, 140, 100).fill(gradient);
        const stripes = pdf.pattern([0, 0, 12, 12], 12, 12, "6 12 m 12 12 l 12 6 l f 0 6 m 0 0 l 6 0 l f");
        pdf.save().rotate(15, { origin: [290, 350] });
        pdf.circle(290, 350, 60).fill([stripes, "teal"]);
        pdf.restore();
        const image = "BI /W 2 /H 2 /CS /RGB /BPC 8 /F /AHx ID ff0000 00ff00 0000ff 888888> EI";
        pdf.addContent(`q 80 20 -20 80 60 420 cm ${image} Q`);
    },
});
export const broken = plain.subarray(0, 700);
export const notPdf = Buffer.from("<!doctype html><title>Not found</title>");

/** A document of one page, from its page's content and its one font. PDF.js finds the objects without a table. */
const handmade = (font, content) =>
    Buffer.from(`%PDF-1.4
1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj
2 0 obj <</Type/Pages/Count 1/Kids[3 0 R]>> endobj
3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 300 200]/Contents 4 0 R/Resources<</Font<</F 5 0 R>>>>>> endobj
4 0 obj <</Length ${content.length}>> stream
${content}
endstream endobj
5 0 obj ${font} endobj
trailer <</Root 1 0 R>>
%%EOF`);

/** Text without an embedded font, in one of the predefined encodings. */
export const japanese = handmade(
    `<</Type/Font/Subtype/Type0/BaseFont/HeiseiKakuGo-W5/Encoding/90ms-RKSJ-H/DescendantFonts[<</Type/Font
    /Subtype/CIDFontType0/BaseFont/HeiseiKakuGo-W5/CIDSystemInfo<</Registry(Adobe)/Ordering(Japan1)/Supplement 2>>
    /FontDescriptor<</Type/FontDescriptor/FontName/HeiseiKakuGo-W5/Flags 4/FontBBox[0 0 1000 1000]/ItalicAngle 0
    /Ascent 800/Descent -200/CapHeight 700/StemV 80>>>>]>>`,
    "BT /F 40 Tf 40 100 Td <93FA967B8CEA> Tj ET",
);
