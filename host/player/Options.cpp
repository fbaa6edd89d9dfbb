#include "Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

#include "zarvik/host/GLDevice.h"
#include "zarvik/host/Plugin.h"

namespace zarvik::player {

namespace {

constexpr int usageError = 2;
constexpr const char* defaultScreenshot = "zarvik-player.png";

std::optional<int> parseDimension(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool valid = error == std::errc() && end == text.data() + text.size() && value > 0 &&
                       value <= static_cast<int>(host::GLDevice::maxTextureSize);
    return valid ? std::optional(value) : std::nullopt;
}

host::Size parseSize(const std::string& text) {
    const auto separator = text.find('x');
    const auto width = parseDimension(std::string_view(text).substr(0, separator));
    const auto height = separator == std::string::npos
                            ? std::nullopt
                            : parseDimension(std::string_view(text).substr(separator + 1));
    if (!width || !height) {
        throw CLI::ValidationError("--size", "'" + text + "' is not WIDTHxHEIGHT, each from 1 to " +
                                                 std::to_string(host::GLDevice::maxTextureSize));
    }
    return {.width = *width, .height = *height};
}

bool hasScheme(const std::string& url) {
    const auto colon = url.find(':');
    return colon != std::string::npos && colon > 0 && std::isalpha(static_cast<unsigned char>(url.front())) &&
           std::all_of(
               url.begin(), url.begin() + static_cast<std::ptrdiff_t>(colon), [](unsigned char character) {
                   return std::isalnum(character) || character == '+' || character == '-' || character == '.';
               });
}

std::string fileUrl(const std::filesystem::path& path) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const unsigned char byte : std::filesystem::canonical(path).string()) {
        if (std::isalnum(byte) ||
            std::string_view("/-._~").find(static_cast<char>(byte)) != std::string_view::npos) {
            url += static_cast<char>(byte);
        } else {
            url += {'%', hexDigits[byte >> 4], hexDigits[byte & 15]};
        }
    }
    return url;
}

/// A file of the machine may be named by its path.
std::string toUrl(const std::string& argument) {
    if (std::filesystem::exists(argument)) {
        return fileUrl(argument);
    }
    if (!hasScheme(argument)) {
        throw CLI::ValidationError("'" + argument + "' is neither a URL nor a file");
    }
    return argument;
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options{.library = host::Plugin::defaultPath()};
    std::string size = "1280x720";

    CLI::App app(
        "Loads web pages through the Zarvik Orvella plug-in, draws their textures as an engine would, and "
        "writes the picture that it drew. Prints what the plug-in reports.",
        "zarvik-player");
    app.add_option(
           "URL", options.urls,
           "Pages to load, side by side: URLs or files (default: the page that comes with the program)")
        ->transform(toUrl);
    app.add_option("--size", size, "Size of each page in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->capture_default_str();
    auto* screenshot = app.add_option("--screenshot", options.screenshot,
                                      "Picture to write (default: " + std::string(defaultScreenshot) + ")")
                           ->type_name("FILE.png");
    app.add_option("--rate", options.rate, "Turns of the render thread per second")
        ->check(CLI::Range(1.0, 1000.0))
        ->type_name("HZ")
        ->capture_default_str();
    app.add_option("--timeout", options.timeoutSeconds, "Longest time to wait for the pages")
        ->check(CLI::PositiveNumber)
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--library", options.library, "The plug-in (default: the one beside this program)")
        ->type_name("FILE.so");
    app.add_flag("--window", options.window, "Show the pages in a window until it is closed")
        ->excludes(screenshot);
    app.add_flag("--verbose", options.verbose, "Print the plug-in's information lines too");
    app.set_version_flag("--version", "zarvik-player " ZARVIK_VERSION);

    try {
        app.parse(argc, argv);
        options.size = parseSize(size);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : usageError;
    }
    if (!options.window && options.screenshot.empty()) {
        options.screenshot = defaultScreenshot;
    }
    return options;
}

}  // namespace zarvik::player
