#include <webkit2/webkit2.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "Arrivals.h"
#include "Subject.h"

namespace zarvik::bench {

namespace {

using Clock = Subject::Clock;

struct Release {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(JSCValue* value) const { g_object_unref(value); }
    void operator()(char* text) const { g_free(text); }
    void operator()(GError* error) const { g_error_free(error); }
};

template <typename T>
using Owned = std::unique_ptr<T, Release>;

Owned<char> textOf(JSCValue* value) {
    return Owned<char>(jsc_value_to_string(value));
}

GtkWidget* makeWindow() {
    auto* const window = gtk_offscreen_window_new();
    gtk_widget_set_visual(window, gdk_screen_get_rgba_visual(gtk_widget_get_screen(window)));
    gtk_widget_set_app_paintable(window, TRUE);
    return window;
}

WebKitWebView* makeView(Size size) {
    auto* const context = webkit_web_context_new_ephemeral();
    auto* const view = WEBKIT_WEB_VIEW(webkit_web_view_new_with_context(context));
    g_object_unref(context);
    webkit_settings_set_hardware_acceleration_policy(webkit_web_view_get_settings(view),
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    gtk_widget_set_size_request(GTK_WIDGET(view), size.width, size.height);
    return view;
}

/// A view in a window of its own, and the memory that its pictures come into.
class BareView {
  public:
    explicit BareView(Size size);
    ~BareView() { gtk_widget_destroy(window); }
    BareView(const BareView&) = delete;
    BareView& operator=(const BareView&) = delete;

    WebKitWebView* webView() const { return view; }
    std::uint64_t pictures() const { return count; }
    Clock::time_point lastPicture() const { return last; }
    Pixel pixel(Point point) const {
        const auto* const first =
            &pixels.at(std::size_t{4} * size.width * point.y + std::size_t{4} * point.x);
        return {first[0], first[1], first[2], first[3]};
    }

  private:
    static gboolean onDamage(GtkWidget*, GdkEventExpose* event, gpointer self);

    const Size size;
    GtkWidget* const window;
    WebKitWebView* const view;
    std::vector<std::uint8_t> pixels;
    const Owned<cairo_surface_t> target;
    std::uint64_t count = 0;
    Clock::time_point last;
};

BareView::BareView(Size size)
    : size(size),
      window(makeWindow()),
      view(makeView(size)),
      pixels(std::size_t{4} * size.width * size.height),
      target(cairo_image_surface_create_for_data(pixels.data(), CAIRO_FORMAT_ARGB32, size.width, size.height,
                                                 size.width * 4)) {
    g_signal_connect(window, "damage-event", G_CALLBACK(onDamage), this);
    gtk_container_add(GTK_CONTAINER(window), GTK_WIDGET(view));
    gtk_widget_show_all(window);
}

gboolean BareView::onDamage(GtkWidget*, GdkEventExpose* event, gpointer data) {
    auto& self = *static_cast<BareView*>(data);
    const Owned<cairo_t> context(cairo_create(self.target.get()));
    gdk_cairo_region(context.get(), event->region);
    cairo_clip(context.get());
    gtk_widget_draw(GTK_WIDGET(self.view), context.get());
    cairo_surface_flush(self.target.get());
    ++self.count;
    self.last = Clock::now();
    return GDK_EVENT_PROPAGATE;
}

class BareSubject final : public Subject {
  public:
    explicit BareSubject(const Setup& setup);

    void open(int count) override;

    void load(const std::string& html) override {
        latest = html;
        for (const auto& view : views) {
            webkit_web_view_load_html(view->webView(), html.c_str(), nullptr);
        }
    }
    void show(const std::string& html) override {
        load(html);
        for (const auto& view : views) {
            runUntil([&] { return !webkit_web_view_is_loading(view->webView()); });
        }
        run(warmUp);
    }
    void run(std::chrono::duration<double> time) override;

    void loadUrl(const std::string& url) override { webkit_web_view_load_uri(first(), url.c_str()); }

    Reading read() override;
    bool drawsOnDisplay() const override { return true; }
    Pixel pixel(Point point) override { return views.front()->pixel(point); }

    void evaluate(std::uint64_t number, const std::string& script) override;
    void waitForResults(std::uint64_t count) override {
        runUntil([&] { return results.reached(count); });
    }

    void runPosting(const std::string& script) override {
        runScript("{ const post = (text) => webkit.messageHandlers.bench.postMessage(text); " + script +
                  " }");
    }
    void waitForMessages(std::uint64_t count) override {
        runUntil([&] { return messages.reached(count); });
    }

    void watch(Point point) override { watched = point; }
    void pressPointer(Point point) override { dispatch("pointerdown", point); }
    void releasePointer(Point point) override { dispatch("pointerup", point); }
    Clock::time_point waitForColour(const Pixel& colour) override {
        runUntil([&] { return alike(pixel(watched), colour); });
        return views.front()->lastPicture();
    }

    void killPage() override {
        g_signal_connect(first(), "web-process-terminated", G_CALLBACK(onTermination), this);
        killPageProcesses();
    }

  private:
    static void onTermination(WebKitWebView* view, WebKitWebProcessTerminationReason, gpointer self) {
        webkit_web_view_load_html(view, static_cast<BareSubject*>(self)->latest.c_str(), nullptr);
    }
    static void onResult(GObject* view, GAsyncResult* result, gpointer self);
    static void onMessage(WebKitUserContentManager*, WebKitJavascriptResult* message, gpointer self);

    template <typename Predicate>
    void runUntil(const Predicate& satisfied) {
        while (!satisfied()) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }
    WebKitWebView* first() const { return views.front()->webView(); }
    void runScript(const std::string& script) {
        webkit_web_view_evaluate_javascript(first(), script.c_str(), -1, nullptr, nullptr, nullptr, nullptr,
                                            nullptr);
    }
    void dispatch(const std::string& type, Point point);

    const Size size;
    std::vector<std::unique_ptr<BareView>> views;
    std::string latest;  // page
    Arrivals results;
    Arrivals messages;
    Point watched;
};

BareSubject::BareSubject(const Setup& setup) : Subject(startOfThisProcess()), size(setup.size) {
    gtk_disable_setlocale();  // numbers are written as C++ writes them
    if (!gtk_init_check(nullptr, nullptr)) {
        throw std::runtime_error("GTK cannot open a display. Is DISPLAY set?");
    }
}

void BareSubject::open(int count) {
    while (views.size() < static_cast<std::size_t>(count)) {
        views.push_back(std::make_unique<BareView>(size));
        if (views.size() == 1) {
            auto* const content = webkit_web_view_get_user_content_manager(first());
            g_signal_connect(content, "script-message-received::bench", G_CALLBACK(onMessage), this);
            webkit_user_content_manager_register_script_message_handler(content, "bench");
        }
    }
}

Reading BareSubject::read() {
    std::uint64_t pictures = 0;
    for (const auto& view : views) {
        pictures += view->pictures();
    }
    return Reading::now(pictures);
}

void BareSubject::run(std::chrono::duration<double> time) {
    bool over = false;
    g_timeout_add_once(
        static_cast<guint>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()),
        [](gpointer flag) { *static_cast<bool*>(flag) = true; }, &over);
    runUntil([&] { return over; });
}

// A function call with the script as its argument, since that is what the library owes its caller.
void BareSubject::evaluate(std::uint64_t, const std::string& script) {
    GVariantDict arguments;
    g_variant_dict_init(&arguments, nullptr);
    g_variant_dict_insert_value(&arguments, "text", g_variant_new_string(script.c_str()));
    webkit_web_view_call_async_javascript_function(first(), "return evaluate(text)", -1,
                                                   g_variant_dict_end(&arguments), nullptr, nullptr, nullptr,
                                                   onResult, this);
}

void BareSubject::onResult(GObject* view, GAsyncResult* result, gpointer self) {
    GError* error = nullptr;
    const Owned<JSCValue> value(
        webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), result, &error));
    const Owned<GError> failure(error);
    static_cast<BareSubject*>(self)->results.add(value ? textOf(value.get()).get() : failure->message);
}

void BareSubject::onMessage(WebKitUserContentManager*, WebKitJavascriptResult* message, gpointer self) {
    static_cast<BareSubject*>(self)->messages.add(
        textOf(webkit_javascript_result_get_js_value(message)).get());
}

void BareSubject::dispatch(const std::string& type, Point point) {
    const auto x = std::to_string(point.x);
    const auto y = std::to_string(point.y);
    runScript("document.elementFromPoint(" + x + ", " + y + ").dispatchEvent(new PointerEvent('" + type +
              "', {bubbles: true, cancelable: true, clientX: " + x + ", clientY: " + y +
              ", pointerId: 1, pointerType: 'mouse', isPrimary: true}))");
}

}  // namespace

std::unique_ptr<Subject> makeBareSubject(const Setup& setup) {
    return std::make_unique<BareSubject>(setup);
}

}  // namespace zarvik::bench
