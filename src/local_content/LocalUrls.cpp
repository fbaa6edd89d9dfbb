#include "local_content/LocalUrls.h"

#include <algorithm>
#include <optional>

namespace local_urls {

namespace {

constexpr const wchar_t* contentIdentifier = L"ZarvikLocal";
constexpr std::string_view scheme = "ms-local-stream://";

bool isLetterOrDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
}

/// The 32 characters in front of the last ending's dot, if the URL has them.
std::optional<std::string_view> downloadedName(std::string_view url) {
    constexpr std::size_t nameSize = 32;
    constexpr std::string_view ending = ".pdf";
    if (url.size() < scheme.size() + nameSize + ending.size() || !url.ends_with(ending)) {
        return std::nullopt;
    }
    const auto name = url.substr(url.size() - ending.size() - nameSize, nameSize);
    return std::ranges::all_of(name, isLetterOrDigit) ? std::optional(name) : std::nullopt;
}

/// The escaped path of the local file that the viewer shows.
std::optional<std::string_view> viewedFile(std::string_view url) {
    constexpr std::string_view document = "pdf=ms-local-stream%3A%2F%2F";
    constexpr std::string_view folder = "%2Ffile%2F";
    const auto start = url.find(document);
    const auto end = url.rfind(folder);
    if (start == std::string_view::npos || end == std::string_view::npos || end < start + document.size()) {
        return std::nullopt;
    }
    return url.substr(end + folder.size());
}

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// The "file:" URL of a path that was escaped as one component, twice.
std::string fileUrl(std::string_view escapedTwice) {
    std::string path = winrt::to_string(foundation::Uri::UnescapeComponent(winrt::to_hstring(escapedTwice)));
    // One component escapes more than the path of a URL does.
    constexpr std::pair<std::string_view, std::string_view> plain[] = {
        {"%2F", "/"}, {"%3A", ":"}, {"%21", "!"}, {"%24", "$"}, {"%26", "&"}, {"%27", "'"}, {"%28", "("},
        {"%29", ")"}, {"%2A", "*"}, {"%2B", "+"}, {"%2C", ","}, {"%3B", ";"}, {"%3D", "="}, {"%40", "@"}};
    for (const auto& [escaped, character] : plain) {
        replaceAll(path, escaped, character);
    }
    return winrt::to_string(foundation::Uri(winrt::to_hstring("file:///" + path)).AbsoluteUri());
}

}  // namespace

std::string pdfFileName(const std::string& url) {
    using namespace winrt::Windows::Security::Cryptography;
    const auto bytes =
        CryptographicBuffer::ConvertStringToBinary(winrt::to_hstring(url), BinaryStringEncoding::Utf8);
    const auto md5 = Core::HashAlgorithmProvider::OpenAlgorithm(Core::HashAlgorithmNames::Md5());
    return winrt::to_string(CryptographicBuffer::EncodeToHexString(md5.HashData(bytes)));
}

foundation::Uri page(const controls::WebView& control, const foundation::Uri& fileUrl) {
    return control.BuildLocalStreamUri(contentIdentifier, L"file" + fileUrl.Path());
}

foundation::Uri pdfViewer(const controls::WebView& control, const winrt::hstring& path) {
    const auto document =
        control.BuildLocalStreamUri(contentIdentifier, L"file/" + foundation::Uri::EscapeComponent(path));
    return control.BuildLocalStreamUri(
        contentIdentifier, L"pdf?pdf=" + foundation::Uri::EscapeComponent(document.AbsoluteUri()));
}

std::string toReport(const std::string& url, const PdfSources& pdfSources) {
    if (!url.starts_with(scheme)) {
        return url;
    }
    if (const auto name = downloadedName(url)) {
        if (const auto source = pdfSources.find(*name); source != pdfSources.end()) {
            return source->second;
        }
    }
    if (const auto path = viewedFile(url)) {
        return fileUrl(*path);
    }
    constexpr std::string_view folder = "/file/";
    const auto start = url.find(folder, scheme.size());
    return start == std::string::npos ? url : "file:///" + url.substr(start + folder.size());
}

}  // namespace local_urls
