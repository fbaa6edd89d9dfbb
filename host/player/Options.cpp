#include "Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdlib>
#include <optional>

#include "Address.h"
#include "zarvik/host/GLDevice.h"
#include "zarvik/host/Plugin.h"

namespace zarvik::player {

namespace {

constexpr int usageError = 2;
constexpr const char* defaultScreenshot = "zarvik-player.png";

constexpr const char* footer = R"(
In the window:
  left button, wheel, keys  go to the page under the pointer, or to the toolbar
  right drag, Alt + drag    turn the scene; so does a drag beside the pages
  Ctrl + wheel              zoom; so does the wheel beside the pages
  Ctrl+L, Escape            to the address, back to the page
  Ctrl+V                    types what the clipboard holds
  Alt+Left, Alt+Right, F5   back, forward, reload
  Ctrl+Home                 the whole scene again

Steps of a script, one a line, after # a comment:
  open URL, load URL, back, forward, reload, stop, view N, resize WIDTH HEIGHT
  click PLACE, double-click PLACE, right-click PLACE, middle-click PLACE,
  move PLACE, press PLACE, release PLACE, drag PLACE to PLACE,
  scroll DX DY [at PLACE], type TEXT, key NAME
  camera YAW PITCH DISTANCE, camera reset, window WIDTH HEIGHT
  wait SECONDS, wait load, wait failure, wait painted, wait text TEXT,
  wait element SELECTOR, wait true EXPRESSION, timeout SECONDS
  screenshot FILE, print EXPRESSION
A PLACE is X Y in the window, page X Y in the page, or a CSS selector in the page.

Exit codes: 0 done, 1 something failed, 2 wrong usage or a script that cannot be read, 130 interrupted.)";

/// CLI11's own check lets through what is no number.
auto within(double least, double most) {
    return [least, most](const std::string& text) {
        double value = 0;
        const bool valid = CLI::detail::lexical_cast(text, value) && value >= least && value <= most;
        return valid ? std::string()
                     : "Value " + text + " not in " + CLI::detail::to_string(least) + " to " +
                           CLI::detail::to_string(most);
    };
}

std::optional<int> parseDimension(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool valid = error == std::errc() && end == text.data() + text.size() && value > 0 &&
                       value <= static_cast<int>(host::GLDevice::maxTextureSize);
    return valid ? std::optional(value) : std::nullopt;
}

/// Writes as "WIDTHxHEIGHT", and reads that.
class SizeOption {
  public:
    SizeOption(CLI::App& app, const char* name, const char* description, host::Size& size)
        : name(name), size(size), text(std::to_string(size.width) + "x" + std::to_string(size.height)) {
        app.add_option(name, text, description)->type_name("WIDTHxHEIGHT")->capture_default_str();
    }

    void parse() const {
        const auto separator = text.find('x');
        const auto width = parseDimension(std::string_view(text).substr(0, separator));
        const auto height = separator == std::string::npos
                                ? std::nullopt
                                : parseDimension(std::string_view(text).substr(separator + 1));
        if (!width || !height) {
            throw CLI::ValidationError(name, "'" + text + "' is not WIDTHxHEIGHT, each from 1 to " +
                                                 std::to_string(host::GLDevice::maxTextureSize));
        }
        size = {.width = *width, .height = *height};
    }

  private:
    const char* const name;
    host::Size& size;
    std::string text;
};

/// A file of the machine may be named by its path.
std::string checkedPage(const std::string& argument) {
    try {
        return toUrl(argument);
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError(error.what());
    }
}

bool hasDisplay() {
    const char* display = std::getenv("DISPLAY");  // NOLINT(concurrency-mt-unsafe): no other thread yet
    return display && *display != '\0';
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options{.library = host::Plugin::defaultPath()};
    bool headless = false;

    CLI::App app(
        "Shows web pages in a small 3D scene, through the Zarvik Orvella plug-in, as an engine would: in a "
        "window where there is a display, and otherwise in a picture. Prints what the plug-in reports.",
        "zarvik-player");
    app.add_option("URL", options.pages,
                   "Pages to show, each on a surface of its own: URLs, files, or the bundled pages 'welcome' "
                   "and 'guide' (default: these two; the guide is also what stands beside a single page)")
        ->transform(checkedPage);
    auto* script =
        app.add_option("--script", options.script, "Play the steps in this file")->type_name("FILE");
    app.add_option("--record", options.record, "Write what is done as such a file")->type_name("FILE");
    auto* screenshot = app.add_option("--screenshot", options.screenshot,
                                      "Picture to write (default: " + std::string(defaultScreenshot) + ")")
                           ->type_name("FILE.png");
    auto* window = app.add_flag("--window", options.window, "Show a window, also while a script plays");
    app.add_flag("--headless", headless, "Show no window")->excludes(window);
    screenshot->excludes(script)->excludes(window);
    app.add_flag("--stats", options.statistics,
                 "Print frames, pictures, processor time and latencies, in a window each second");
    const SizeOption pageSize(app, "--size", "Size of each page in pixels", options.pageSize);
    const SizeOption windowSize(app, "--window-size", "Size of the window or the picture",
                                options.windowSize);
    app.add_option("--rate", options.rate, "Turns of the render thread per second")
        ->check(within(1, 1000))
        ->type_name("HZ")
        ->capture_default_str();
    app.add_option("--timeout", options.timeoutSeconds, "Longest time that a step waits")
        ->check(within(0.001, 1e6))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--library", options.library, "The plug-in (default: the one beside this program)")
        ->type_name("FILE.so");
    app.add_flag("--verbose", options.verbose, "Print the plug-in's information lines too");
    app.set_version_flag("--version", "zarvik-player " ZARVIK_VERSION);
    app.footer(footer);

    try {
        app.parse(argc, argv);
        pageSize.parse();
        windowSize.parse();
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : usageError;
    }
    if (!headless && options.script.empty() && options.screenshot.empty()) {
        options.window = options.window || hasDisplay();
    }
    if (!options.window && options.script.empty() && options.screenshot.empty()) {
        options.screenshot = defaultScreenshot;
    }
    if (options.script.empty()) {
        if (options.pages.empty()) {
            options.pages = {"welcome"};
        }
        if (options.pages.size() == 1) {
            options.pages.emplace_back("guide");
        }
    }
    return options;
}

}  // namespace zarvik::player
