#include "support/Pdf.h"

#include <iomanip>
#include <sstream>
#include <vector>

std::string makePdf(int pages, std::size_t ballast) {
    // Numbered from 1: the catalogue, the list of pages, the font, and of each page its content and itself.
    std::vector<std::string> objects{"<</Type/Catalog/Pages 2 0 R>>", "",
                                     "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"};
    std::string references;
    for (int page = 1; page <= pages; ++page) {
        const auto content = "1 0 0 rg 0 0 595 600 re f 0 g BT /F 24 Tf 72 720 Td (Page " +
                             std::to_string(page) + " of the test) Tj ET";
        objects.push_back("<</Length " + std::to_string(content.size()) + ">>\nstream\n" + content +
                          "\nendstream");
        objects.push_back(
            "<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Resources<</Font<</F 3 0 R>>>>/Contents " +
            std::to_string(objects.size()) + " 0 R>>");
        references += std::to_string(objects.size()) + " 0 R ";
    }
    objects.push_back("<</Length " + std::to_string(ballast) + ">>\nstream\n" + std::string(ballast, 'x') +
                      "\nendstream");
    objects[1] = "<</Type/Pages/Count " + std::to_string(pages) + "/Kids[" + references + "]>>";

    std::ostringstream document;
    std::ostringstream table;
    document << "%PDF-1.7\n";
    table << "0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        table << std::setw(10) << std::setfill('0') << document.tellp() << " 00000 n \n";
        document << i + 1 << " 0 obj\n" << objects[i] << "\nendobj\n";
    }
    const auto tableStart = document.tellp();
    document << "xref\n0 " << objects.size() + 1 << "\n"
             << table.str() << "trailer\n<</Size " << objects.size() + 1 << "/Root 1 0 R>>\nstartxref\n"
             << tableStart << "\n%%EOF\n";
    return std::move(document).str();
}
