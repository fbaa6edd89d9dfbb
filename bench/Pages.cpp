#include "Pages.h"

namespace zarvik::bench {

namespace {

std::string document(const std::string& head, const std::string& body) {
    return "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><style>"
           "html,body{margin:0;width:100%;height:100%;overflow:hidden;background:#204870}"
           "body{color:#fff;font:24px sans-serif}" +
           head + "</style></head><body>" + body + "</body></html>";
}

constexpr const char* evaluator = "<script>function evaluate(text) { return String(eval(text)); }</script>";

}  // namespace

std::string elementsPage() {
    return document(R"css(
div{position:absolute;width:90px;height:90px;border-radius:16px;background:#e0a030;text-align:center}
.slide{animation:slide 1.6s linear infinite alternate}
.turn{animation:turn 1.2s linear infinite}
@keyframes slide{to{transform:translate(40px,-50px);opacity:.4}}
@keyframes turn{to{transform:rotate(360deg);background:#c03060}}
)css",
                    R"html(<script>
for (var i = 0; i < 8; ++i) {
    var element = document.body.appendChild(document.createElement('div'));
    element.className = i % 2 ? 'turn' : 'slide';
    element.style.left = 60 + 150 * i + 'px';
    element.style.top = 60 + 70 * i + 'px';
    element.style.animationDelay = -i / 10 + 's';
    element.textContent = i;
}
</script>)html");
}

std::string canvasPage() {
    return document("canvas{display:block}", R"html(<canvas></canvas><script>
var canvas = document.querySelector('canvas'), context = canvas.getContext('2d');
canvas.width = innerWidth;
canvas.height = innerHeight;
var count = 0;
function frame() {
    ++count;
    context.fillStyle = 'hsl(' + count % 360 + ',60%,40%)';
    context.fillRect(0, 0, canvas.width, canvas.height);
    context.fillStyle = '#fff';
    for (var i = 0; i < 40; ++i) {
        context.fillRect((i * 97 + count * 3) % canvas.width, (i * 53 + count) % canvas.height, 60, 24);
    }
    context.fillStyle = '#204870';
    context.fillRect(0, 0, 32, 32);
    requestAnimationFrame(frame);
}
frame();
</script>)html");
}

std::string stillPage() {
    std::string body = "<h1 style=\"margin:60px\">Nothing moves here</h1>";
    for (int i = 0; i < 12; ++i) {
        body += "<p style=\"margin:12px 60px\">A line of text that was painted once.</p>";
    }
    return document("", body);
}

std::string scriptPage() {
    return document("", evaluator);
}

std::string blockPage() {
    return document(
        "#block{position:absolute;left:160px;top:160px;width:400px;height:400px;background:#c03060}",
        std::string(evaluator) + R"html(<div id="block"></div><script>
var block = document.getElementById('block'), colours = ['#c03060', '#30a060'], changes = 0;
function change() {
    block.style.background = colours[++changes % colours.length];
}
block.addEventListener('pointerdown', change);
</script>)html");
}

}  // namespace zarvik::bench
