#include "local_content/PdfViewerPage.h"

#include <functional>
#include <numeric>

#include "resources/PdfViewer.h"

namespace {

constexpr std::string_view placeholder = "$PDF_URL_PLACEHOLDER";

constexpr std::string_view allowed =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=%";

std::string encoded(std::string_view url) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char character : url) {
        if (allowed.find(character) != std::string_view::npos) {
            result += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            result += {'%', digits[byte >> 4], digits[byte & 0xF]};
        }
    }
    return result;
}

std::string joinedPieces() {
    std::string page;
    page.reserve(std::transform_reduce(pdfViewerPieces.begin(), pdfViewerPieces.end(), std::size_t{0},
                                       std::plus{}, [](std::string_view piece) { return piece.size(); }));
    for (const std::string_view piece : pdfViewerPieces) {
        page += piece;
    }
    return page;
}

}  // namespace

std::string pdfViewerPage(std::string_view pdfUrl) {
    const std::string url = encoded(pdfUrl);
    std::string page = joinedPieces();
    for (auto at = page.find(placeholder); at != std::string::npos;
         at = page.find(placeholder, at + url.size())) {
        page.replace(at, placeholder.size(), url);
    }
    return page;
}
