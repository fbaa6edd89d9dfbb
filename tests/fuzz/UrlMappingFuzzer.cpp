// URLs on their way to the control and back: what the platform makes of a text, local files as local content,
// and what of that the engine hears of.

#include <algorithm>
#include <array>
#include <filesystem>

#include "exports/HostChannel.h"
#include "fuzz/support/Require.h"
#include "local_content.h"
#include "local_content/FileUriToStreamResolver.h"
#include "local_content/LocalUrls.h"
#include "platform/await.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr const wchar_t* contentIdentifier = L"ZarvikLocal";

std::string textOf(const foundation::Uri& uri) {
    return winrt::to_string(uri.AbsoluteUri());
}

void checkUri(const std::string& text, const foundation::Uri& uri) {
    const std::string absolute = textOf(uri);
    require(textOf(foundation::Uri(uri.AbsoluteUri())) == absolute, "a URL is the URL of itself",
            readable(text) + " is " + readable(absolute));
    require(std::ranges::all_of(absolute, [](char character) { return character > ' ' && character < 0x7F; }),
            "a URL is of printable ASCII", readable(absolute));
    require(absolute.starts_with(winrt::to_string(uri.SchemeName()) + ":"), "a URL begins with its scheme",
            readable(absolute));
    const std::string path = winrt::to_string(uri.Path());
    const std::string query = winrt::to_string(uri.Query());
    require(absolute.find(path + query) != std::string::npos, "path and query are parts of a URL",
            readable(absolute));
    require(path.find_first_of("?#") == std::string::npos, "a path ends where the query begins",
            readable(absolute));
}

/// The engine hears of a local page by the URL that it gave.
void checkReport(const foundation::Uri& uri) {
    const std::string absolute = textOf(uri);
    if (uri.SchemeName() != L"file") {
        const std::string reported = local_urls::toReport(absolute, {});
        require(uri.SchemeName() == L"ms-local-stream" || reported == absolute,
                "only local content is reported by another URL", readable(absolute));
        return;
    }
    if (uri.Path().empty()) {
        return;  // a share, which is no page
    }
    const auto page = runtime::local_uri(contentIdentifier, L"file" + uri.Path());
    const std::string reported = local_urls::toReport(textOf(page), {});
    require(foundation::Uri(winrt::to_hstring(reported)).Path() == uri.Path(),
            "a local page is reported by its file's path", readable(absolute) + " as " + readable(reported));
}

/// A file of any name can be opened through its URL.
void checkFile(const std::string& name) {
    static const TemporaryFolder folder;
    constexpr std::size_t longest = 255;
    const bool isName = !name.empty() && name.size() <= longest && name != "." && name != ".." &&
                        name.find_first_of(std::string_view("/\\\0", 3)) == std::string::npos &&
                        winrt::to_string(winrt::to_hstring(name)) == name;
    if (!isName) {
        return;
    }
    const std::string path = folder.write(name, "content");
    const foundation::Uri uri(winrt::to_hstring(fileUrl(path)));
    const auto page = runtime::local_uri(contentIdentifier, L"file" + uri.Path());
    try {
        const auto stream = await(sharedResolver().UriToStreamAsync(page));
        const streams::DataReader reader(stream);
        std::array<std::uint8_t, 7> content{};
        await(reader.LoadAsync(content.size()));
        reader.ReadBytes(content);
        require(std::ranges::equal(content, std::string_view("content")), "a file is served as it is",
                readable(name));
    } catch (const winrt::hresult_error& error) {
        require(false, "a file can be opened through its URL",
                readable(name) + ": " + winrt::to_string(error.message()));
    }
    std::filesystem::remove(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    setLogFunctions(nullptr, nullptr, nullptr);
    checkFile(text);
    local_urls::toReport(text, {});
    try {
        const foundation::Uri uri(winrt::to_hstring(text));
        checkUri(text, uri);
        checkReport(uri);
        // The resolver is asked for whatever the page wants, and answers or refuses.
        try {
            await(sharedResolver().UriToStreamAsync(uri));
        } catch (const winrt::hresult_error& error) {
            require(error.code() != E_FAIL, "a refusal has a reason", readable(text));
        }
    } catch (const winrt::hresult_error& error) {
        require(!error.message().empty(), "a URL that is none is refused with the reason", readable(text));
    }
    return 0;
}
