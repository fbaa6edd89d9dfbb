#include "fuzz/exports/Sequence.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <regex>

#include "fuzz/exports/Call.h"
#include "fuzz/exports/Texts.h"
#include "fuzz/support/InputReader.h"
#include "fuzz/support/Require.h"

namespace {

constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();

constexpr std::array<std::int64_t, 16> lengths{64, 48, 100,  320,  200,   641,   1,    2,
                                               0,  -1, 1080, 4097, 16385, 40000, most, least};
constexpr std::array<std::int64_t, 8> coordinates{5, 20, 40, 0, -1, 100'000, most, least};
constexpr std::array<std::int64_t, 8> smallNumbers{0, 1, 2, 3, 0, 1, -1, most};

constexpr std::size_t longestShown = 200;

/// The names of the parameters in "(UwpWebView* instance, int32_t x)".
std::vector<std::string> parameterNames(const std::string& parameters) {
    static const std::regex name("(\\w+)\\s*[,)]");
    std::vector<std::string> names;
    for (std::sregex_iterator found(parameters.begin(), parameters.end(), name), end; found != end; ++found) {
        if ((*found)[1] != "void") {
            names.push_back((*found)[1]);
        }
    }
    return names;
}

Argument number(std::int64_t value) {
    return {.kind = Argument::Kind::number, .number = value, .shown = std::to_string(value)};
}

Argument null() {
    return {.kind = Argument::Kind::null, .shown = "NULL"};
}

Argument text(std::string value) {
    const bool isLong = value.size() > longestShown;
    std::string shown = "\"" + readable(std::string_view(value).substr(0, longestShown)) + "\"";
    if (isLong) {
        shown += " /* ... " + std::to_string(value.size()) + " bytes */";
    }
    return {.kind = Argument::Kind::text, .text = std::move(value), .shown = std::move(shown)};
}

/// Turns an input into steps.
class Decoder {
  public:
    explicit Decoder(std::span<const std::uint8_t> input) : input(input) {}

    std::vector<Step> steps() {
        while (!input.isAtEnd() && decoded.size() < mostSteps) {
            takeStep();
        }
        return std::move(decoded);
    }

  private:
    static constexpr std::size_t mostSteps = 64;
    static constexpr int longestWait = 32;  // milliseconds

    /// Bytes from here on stand for what makes a sequence one, the others for any export.
    static constexpr int firstFrequent = 208;

    void takeStep() {
        const int byte = input.takeByte();
        if (byte < firstFrequent) {
            return call(exportTable()[static_cast<std::size_t>(byte) % exportTable().size()]);
        }
        static constexpr std::pair<int, std::string_view> frequent[] = {
            {215, "WebView_new"},      {217, "WebView_newInNative2DMode"}, {221, "WebView_loadUrl"},
            {224, "WebView_loadHtml"}, {228, "WebView_executeJavaScript"}, {231, "WebView_destroy"},
            {233, "WebView_resize"}};
        for (const auto& [last, name] : frequent) {
            if (byte <= last) {
                return call(named(name));
            }
        }
        switch (byte) {
            case 234 ... 237:
                return step(Step::Action::turn, {});
            case 238 ... 239:
                return step(Step::Action::render, {number(takeOneOf(smallNumbers))});
            case 240 ... 243:
                return step(Step::Action::wait, {number(input.takeByte() % longestWait)});
            case 244 ... 246:
                return waitForLoad();
            case 247:
                return step(Step::Action::killPage, {number(input.takeByte() % mostViews)});
            case 248:
                return step(Step::Action::failDevice, {number(input.takeByte() % 3)});
            case 249:
                return step(Step::Action::mendDevice, {});
            case 250 ... 252:
                where = Step::Where::inCallback;
                left = 1 + input.takeByte() % 3;
                return;
            default:
                where = Step::Where::onOtherThread;
                left = 1 + input.takeByte() % 6;
                return;
        }
    }

    static const Export& named(std::string_view name) {
        return *std::ranges::find(exportTable(), name, &Export::name);
    }

    void step(Step::Action action, std::vector<Argument> arguments) {
        decoded.push_back({.action = action, .arguments = std::move(arguments)});
    }

    void waitForLoad() {
        const Argument view = takeView();
        constexpr int mostWaits = 6;
        if (view.kind == Argument::Kind::view && ++waits <= mostWaits) {
            step(Step::Action::waitForLoad, {view});
        }
    }

    void call(const Export& function) {
        const bool makesView = function.name.starts_with("WebView_new");
        if (makesView && views == mostViews) {
            return;
        }
        Step step{.function = &function, .view = makesView ? views : -1};
        if (left > 0) {
            --left;
            step.where = where;
        }
        for (const std::string& parameter : function.parameters) {
            step.arguments.push_back(takeArgument(parameter));
        }
        views += makesView ? 1 : 0;
        decoded.push_back(std::move(step));
    }

    Argument takeArgument(const std::string& parameter) {
        if (parameter == "instance") {
            return takeView();
        }
        if (parameter == "pointer") {
            return input.takeByte() < 240 ? takeView()
                                          : Argument{.kind = Argument::Kind::address, .shown = "&something"};
        }
        if (parameter == "texturePointer") {
            const int index = input.takeByte();
            return {.kind = Argument::Kind::texture,
                    .number = index,
                    .shown = "/* announced texture " + std::to_string(index) + " or NULL */"};
        }
        if (parameter == "messageTargetName") {
            return takeTargetName();
        }
        if (parameter == "resultCallbackId") {
            return takeCallbackId();
        }
        if (parameter == "width" || parameter == "height") {
            return takeLength();
        }
        if (parameter == "mouseButton" || parameter == "clickCount") {
            return number(takeOneOf(smallNumbers));
        }
        if (parameter == "x" || parameter == "y" || parameter.starts_with("delta")) {
            return number(takeOneOf(coordinates));
        }
        if (!textsFor(parameter).empty()) {
            return takeText(textsFor(parameter));
        }
        if (const bool isFunction = parameter == "sendMessage" || parameter == "callback" ||
                                    parameter == "info" || parameter == "warning" || parameter == "error" ||
                                    parameter == "interfaces";
            isFunction) {
            return input.takeByte() < 224 ? Argument{.kind = Argument::Kind::own, .shown = parameter}
                                          : null();
        }
        constexpr std::array<std::int64_t, 4> flags{1, 0, 1, 255};
        return number(takeOneOf(flags));
    }

    template <std::size_t count>
    std::int64_t takeOneOf(const std::array<std::int64_t, count>& values) {
        return values[input.takeByte() % count];
    }

    /// Mostly one that was made before; else one not made yet, none at all, or none of ours.
    Argument takeView() {
        const int byte = input.takeByte();
        if (byte >= 250) {
            return {.kind = Argument::Kind::address, .shown = "(UwpWebView*)&something"};
        }
        if (byte >= 244) {
            return null();
        }
        const int index = byte < 224 && views > 0 ? byte % views : byte % mostViews;
        return {
            .kind = Argument::Kind::view, .number = index, .shown = "view[" + std::to_string(index) + "]"};
    }

    Argument takeTargetName() {
        const int byte = input.takeByte();
        if (byte >= 250) {
            return byte == 250 ? null() : text(byte % 2 == 0 ? "" : "\xff");
        }
        return {.kind = Argument::Kind::targetName,
                .number = views,
                .shown = "\"view" + std::to_string(views) + "\""};
    }

    Argument takeCallbackId() {
        if (const int byte = input.takeByte(); byte >= 240) {
            return byte % 2 == 0 ? null() : text("");
        }
        const auto id = static_cast<std::int64_t>(decoded.size());
        return {.kind = Argument::Kind::callbackId, .number = id, .shown = "\"" + std::to_string(id) + "\""};
    }

    /// Of two sides, not both so long that the picture would just take its time.
    Argument takeLength() {
        auto length = takeOneOf(lengths);
        constexpr std::int64_t longest = 1080;
        if (length > longest && length != most && std::exchange(isLong, true)) {
            length = longest / 10;
        }
        return number(length);
    }

    Argument takeText(const std::vector<std::string>& texts) {
        const std::size_t byte = input.takeByte();
        constexpr std::size_t firstOther = 248;
        if (byte < firstOther) {
            return text(texts[byte % texts.size()]);
        }
        if (byte % 2 == 0) {
            return null();
        }
        std::string raw(input.takeByte() % 32, ' ');
        for (char& character : raw) {
            character = static_cast<char>(std::max<int>(input.takeByte(), 1));
        }
        return text(std::move(raw));
    }

    InputReader input;
    std::vector<Step> decoded;
    int views = 0;
    Step::Where where = Step::Where::here;
    int left = 0;  // calls that are made there
    int waits = 0;
    bool isLong = false;
};

}  // namespace

const std::vector<Export>& exportTable() {
    static const std::vector<Export> table{
#define ZARVIK_EXPORT(result, name, parameters) \
    {#name, parameterNames(#parameters), callExport<&zarvik::host::PluginExports::name>},
#include "exports/ExportTable.inc"
#undef ZARVIK_EXPORT
    };
    return table;
}

std::vector<Step> decode(std::span<const std::uint8_t> input) {
    return Decoder(input).steps();
}

std::string Step::text() const {
    std::string joined;
    for (const Argument& argument : arguments) {
        joined += (joined.empty() ? "" : ", ") + argument.shown;
    }
    if (action != Action::call) {
        static const std::map<Action, std::string> names{
            {Action::turn, "takeTurn"},         {Action::render, "render"},
            {Action::wait, "sleep_ms"},         {Action::waitForLoad, "waitForLoad"},
            {Action::failDevice, "failDevice"}, {Action::mendDevice, "mendDevice"},
            {Action::killPage, "killPage"}};
        return names.at(action) + "(" + joined + ");";
    }
    const char* const prefix = where == Where::here         ? ""
                               : where == Where::inCallback ? "/* in the next callback */ "
                                                            : "/* on another thread */ ";
    const std::string result = view < 0 ? "" : "view[" + std::to_string(view) + "] = ";
    return prefix + result + function->name + "(" + joined + ");";
}
