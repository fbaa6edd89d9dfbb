#include "fuzz/exports/Texts.h"

#include <map>

namespace {

using Texts = std::vector<std::string>;

constexpr std::size_t many = 1 << 16;

const std::map<std::string_view, Texts> texts{
    {"url",
     {"$SERVER/plain",
      "$SERVER/moving",
      "$SERVER/frames",
      "$SERVER/slow",
      "$SERVER/document.pdf",
      "file://$FOLDER/page.html",
      "file://$FOLDER/document.pdf",
      "about:blank",
      "data:text/html,<p>data",
      "$SERVER/missing",
      "$SERVER/redirected",
      "$SERVER/in-circles",
      "$SERVER/slow.pdf",
      "$SERVER/missing.pdf",
      "$SERVER/plain#fragment",
      "file:///missing.html",
      "file:///missing.pdf",
      "http://127.0.0.1:1/",
      "javascript:document.title = 1",
      "ms-local-stream://x/file/etc/passwd",
      "http://",
      "",
      "pdf",
      "bad \xff\xfe",
      "$SERVER/plain?" + std::string(many, 'x')}},
    {"html",
     {"<p>text", "<style>@keyframes a { to { opacity: 0 } } p { animation: a 1s infinite }</style><p>text",
      "<meta name=transparent content=true><p>text", "<input autofocus><select><option>a</select>",
      "<script>_zarvikBridge.postMessage('early')</script>", "<iframe src='$SERVER/plain'></iframe>",
      "<script>onload = () => location = '$SERVER/plain'</script>",
      "<script>setInterval(() => zarvik.postMessage('tick'), 5)</script>", "", "\xff",
      std::string(many, '<')}},
    {"script",
     {"1 + 1",
      "document.title = 'title'",
      "throw new Error('thrown')",
      "location = '$SERVER/plain'",
      "location.reload()",
      "history.back()",
      "history.pushState(null, '', '#x')",
      "open('$SERVER/plain')",
      "alert(1)",
      "document.open(); document.write('<p>x'); document.close()",
      "zarvik.postMessage('sent')",
      "_zarvikBridge.postMessage('a\\0b')",
      "new Promise(() => {})",
      "location = '$SERVER/document.pdf'",
      "navigator.geolocation.getCurrentPosition(() => {})",
      "'x'.repeat(100000)",
      "String.fromCharCode(0xd800)",
      "document.documentElement.remove()",
      "for (const end = Date.now() + 50; Date.now() < end;);",
      "(function f() { f() })()",
      "syntax(",
      "",
      "_zarvikBridge.postMessage('zarvik.webview.pageTransparencyDetermined true')",
      "_zarvikBridge.postMessage('zarvik.webview.uwp.iframesNeedBrowserAgent')",
      "\xff",
      std::string(many, ' ')}},
    {"headers", {"X-Test: a", "X-Test: a\nX-Other: b", "none", "X: a\r\nZ: 1", "", "X: \xff"}},
    {"cookieJson",
     {R"({"Name":"n","Value":"v","Domain":"127.0.0.1"})",
      R"({"Name":"n","Value":"v","Domain":"127.0.0.1","ExpirationDate":4102444800,"HttpOnly":true})",
      R"({"Name":"n"})", "{", "", "\xff"}},
    {"cookieName", {"", "n", "\xff"}},
    {"key", {"a", "Enter", "Backspace", "ArrowLeft", "\\", "'", "\n", "ü", "", "\xff"}},
    {"userAgent", {"agent", "", "a\r\nb", "\xff", std::string(many, 'u')}},
};

}  // namespace

const std::vector<std::string>& textsFor(std::string_view parameter) {
    static const Texts none;
    const auto found = texts.find(parameter);
    return found == texts.end() ? none : found->second;
}
