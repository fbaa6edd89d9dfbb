#include <urlmon.h>
#include <webkit2/webkit2.h>

#include <mutex>
#include <string_view>

#include "glib_ptr.h"
#include "ui_thread.h"
#include "user_agent.h"

namespace runtime {

namespace {

/// The setting and who follows it.
struct user_agent_setting {
    std::mutex lock;
    std::string text;
    std::function<void(std::string const&)> listener;

    static user_agent_setting& instance() {
        static auto* const setting = new user_agent_setting();  // never destroyed: any thread may still ask
        return *setting;
    }
};

void set_user_agent(std::string text) {
    auto& setting = user_agent_setting::instance();
    // The listener is called under the lock, so that it hears of changes in their order.
    std::lock_guard guard(setting.lock);
    setting.text = std::move(text);
    if (setting.listener) {
        setting.listener(setting.text);
    }
}

/// What servers take as a header at most, and more than enough.
constexpr size_t longestUserAgent = 8192;

/// Whether the text has the form of a User-Agent header. The browser engine ignores what has not.
bool is_user_agent(std::string const& text) {
    static GRegex* const pattern = g_regex_new(R"((?x)
        (?(DEFINE)
            (?<token> [!\#$%&'*+.^_`|~0-9A-Za-z-]++ )
            (?<product> (?&token) (?: / (?&token) )?+ )
            (?<comment> \( (?: [\t\x20-\x27\x2A-\x5B\x5D-\x7E] | \\[\t\x20-\x7E] | (?&comment) )*+ \) )
        )
        \A (?&product) (?: [\t\x20]*+ (?: (?&product) | (?&comment) ) )*+ \z)",
                                               G_REGEX_RAW, static_cast<GRegexMatchFlags>(0), nullptr);
    return text.size() <= longestUserAgent &&
           g_regex_match_full(pattern, text.data(), static_cast<gssize>(text.size()), 0,
                              static_cast<GRegexMatchFlags>(0), nullptr, nullptr);
}

std::string default_user_agent() {
    return ui_thread::instance().invoke([] {
        auto const settings = gobject_ptr<WebKitSettings>::adopt(webkit_settings_new());
        return std::string(webkit_settings_get_user_agent(settings.get()));
    });
}

}  // namespace

std::string user_agent() {
    auto& setting = user_agent_setting::instance();
    std::lock_guard guard(setting.lock);
    return setting.text;
}

std::string effective_user_agent() {
    auto text = user_agent();
    return text.empty() ? default_user_agent() : text;
}

void set_user_agent_listener(std::function<void(std::string const&)> listener) {
    auto& setting = user_agent_setting::instance();
    std::lock_guard guard(setting.lock);
    setting.listener = std::move(listener);
}

}  // namespace runtime

HRESULT WINAPI UrlMkSetSessionOption(DWORD option, LPVOID buffer, DWORD length, DWORD reserved) {
    if (option != URLMON_OPTION_USERAGENT || !buffer || reserved != 0) {
        return E_INVALIDARG;
    }
    std::string_view const bytes(static_cast<char const*>(buffer), length);
    std::string text(bytes.substr(0, bytes.find('\0')));
    if (!text.empty() && !runtime::is_user_agent(text)) {
        return E_INVALIDARG;
    }
    runtime::set_user_agent(std::move(text));
    return S_OK;
}

HRESULT WINAPI UrlMkGetSessionOption(DWORD option, LPVOID buffer, DWORD length, DWORD* lengthOut,
                                     DWORD reserved) {
    if (option != URLMON_OPTION_USERAGENT || !buffer || !lengthOut || reserved != 0) {
        return E_INVALIDARG;
    }
    try {
        std::string const text = runtime::effective_user_agent();
        *lengthOut = static_cast<DWORD>(text.size() + 1);
        if (length < *lengthOut) {
            return E_OUTOFMEMORY;
        }
        text.copy(static_cast<char*>(buffer), text.size());
        static_cast<char*>(buffer)[text.size()] = '\0';
        return S_OK;
    } catch (winrt::hresult_error const& error) {
        return error.code();
    }
}
