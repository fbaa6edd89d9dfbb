// Drives the plug-in as an app and its engine do: app PLUGIN.dll SCENARIO
// Prints a line for everything that is wrong; ends with 1 if there is any.

#include <array>
#include <exception>

#include "Engine.h"
#include "Scenario.h"
#include "Session.h"

#include <urlmon.h>

namespace {

using winrt::Windows::Web::WebErrorStatus;

std::wstring userAgent() {
    constexpr DWORD option = 0x10000001;
    std::array<char, 400> text{};
    DWORD length = 0;
    // The result says nothing here: see what the plug-in does.
    UrlMkGetSessionOption(option, text.data(), static_cast<DWORD>(text.size()), &length, 0);
    return std::wstring(winrt::to_hstring(text.data()));
}

/// What the pages of the scenario do, and what the network and the disk have.
void prepareScenario() {
    const auto world = app::world();
    world->unreachable[L"http://127.0.0.1:2/"] = static_cast<WebErrorStatus>(14);
    world->files[L"C:\\pages\\page.html"] = "<title>page</title><p>page";
    world->files[L"http://127.0.0.1:3/paper.pdf"] = "%PDF";
    world->scripts = {
        {L"0", {L"0"}},
        {L"1 + 1", {L"2"}},
        {L"undefined", {L"undefined"}},
        {L"'\\u4e16'", {L"\u4e16"}},
        {L"throw new Error('wrong')", {L"Error: wrong", static_cast<HRESULT>(0x80020101)}},
        {L"_zarvikBridge.postMessage('from the page')", {L"", S_OK, L"from the page"}},
        {L"navigator.userAgent", {L"", S_OK, L"", userAgent}},
    };
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 3) {
        return 2;
    }
    winrt::init_apartment();
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* crash) -> LONG {
        app::finding("crash with code " + std::to_string(crash->ExceptionRecord->ExceptionCode));
        app::endProgram();
    });
    std::set_terminate([] {
        app::finding("terminate was called");
        app::endProgram();
    });
    app::beginStep("start");
    Engine engine(arguments[1]);
    const std::wstring scenario = arguments[2];
    prepareScenario();
    if (scenario == L"rendering") {
        playRendering(engine);
    } else if (scenario == L"faults") {
        playFaults(engine);
    } else {
        playScenario(engine.plugin(), engine.recorder(), "file:///C:/pages/", "http://127.0.0.1:3/");
    }
    app::endProgram();
}
