// Videos, of the web and on disk.

#include "support/EngineTest.h"
#include "support/TemporaryFolder.h"

namespace {

class MediaTest : public EngineTest {
  protected:
    static std::string page(const std::string& video) {
        return "<!doctype html><meta charset=utf-8><video muted src='" + video + R"('></video><script>
            const video = document.querySelector('video');
            const canvas = document.createElement('canvas').getContext('2d');
            function color() {
                canvas.drawImage(video, 0, 0);
                const [red, green, blue] = canvas.getImageData(20, 10, 1, 1).data;
                return red > 150 ? 'red' : green > 100 ? 'green' : blue > 150 ? 'blue' : 'none';
            }
            const state = () => video.error ? 'error ' + video.error.code : video.readyState > 1 ? 'ready' : 'loading';
        </script>)";
    }

    void expectToPlay() {
        ASSERT_TRUE(waitForResult(view, "state()", "ready")) << evaluate("state()");
        EXPECT_EQ(evaluate("[video.duration, video.videoWidth, color()].join()"), "6,64,red");
        for (const auto& [place, color] :
             {std::pair{"5.5", "blue"}, std::pair{"2.5", "green"}, std::pair{"0.5", "red"}}) {
            evaluate(std::string("video.currentTime = ") + place);
            EXPECT_TRUE(waitForResult(view, "!video.seeking && color()", color)) << evaluate("color()");
        }
        evaluate("video.play(); ''");
        EXPECT_TRUE(waitForResult(view, "video.currentTime > 1", "true"));
    }

    std::string evaluate(const std::string& script) { return view.evaluate(script).value_or("no answer"); }

    // Two seconds each of red, green and blue, and noise below, so that it does not come in one piece.
    const std::string content = readFile(DOCUMENT_FOLDER "/colors.webm");
    TemporaryFolder folder;
    View view{engine, {320, 240}};
};

}  // namespace

TEST_F(MediaTest, AVideoOfTheWebPlaysAndGoesToAnyPlace) {
    server.on("/video.webm", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(content, "video/webm");  // ranges are the server's business
    });
    server.page("/page", page("video.webm"));
    load(view, server.url("/page"));
    expectToPlay();
}

TEST_F(MediaTest, AVideoOnDiskPlaysAndGoesToAnyPlace) {
    folder.write("a b%20/video ü.webm", content);
    load(view, fileUrl(folder.write("page.html", page("a b%2520/video ü.webm"))));
    expectToPlay();
    // What is not there or no video fails as on the web.
    evaluate("video.src = 'missing.webm'");
    EXPECT_TRUE(waitForResult(view, "state()", "error 4")) << evaluate("state()");
    evaluate("video.src = 'page.html'");
    EXPECT_TRUE(waitForResult(view, "state()", "error 4")) << evaluate("state()");
}

TEST_F(MediaTest, PagesOfTheWebPlayNothingFromDisk) {
    folder.write("video.webm", content);
    server.on("/redirect", [&](const httplib::Request& request, httplib::Response& response) {
        response.set_redirect(request.get_param_value("to"));
    });
    server.page("/page", page("none.webm"));
    const auto local =
        folder.write("page.html", page("video.webm") + "<iframe src='" + server.url("/page") + "'>");
    load(view, fileUrl(local));
    ASSERT_TRUE(waitForResult(view, "state()", "ready"));
    const auto address = evaluate("video.src");
    // From a frame inside the local page, where the page's own rights are nearest.
    server.page("/page", page("none.webm") + R"(<script>
        const local = ')" + address +
                             R"(';
        const encoded = encodeURIComponent(local);
        const names = [local, '/redirect?to=' + encoded];
        Promise.all(names.map((name) => new Promise((resolve) => {
            const video = document.body.appendChild(document.createElement('video'));
            video.onloadeddata = () => resolve('PLAYS ' + name);
            video.onerror = () => resolve('refused');
            setTimeout(resolve, 3000, 'nothing');
            video.src = name;
        }))).then((results) => parent.postMessage(results.join(), '*'));
    </script>)");
    evaluate(
        "addEventListener('message', (event) => { window.results = event.data });"
        "document.querySelector('iframe').src += '?again'; ''");
    ASSERT_TRUE(waitForResult(view, "typeof results", "string"));
    EXPECT_EQ(evaluate("results").find("PLAYS"), std::string::npos) << evaluate("results");
}
