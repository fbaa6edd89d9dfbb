#include <unistd.h>

#include <QtWebEngineQuick/qtwebenginequickglobal.h>
#include <QCoreApplication>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Arrivals.h"
#include "QtReceiver.h"
#include "Side.h"

namespace zarvik::bench {

namespace {

using Clock = Subject::Clock;

// The functions are here since the item's own are not public in C++.
constexpr const char* viewText = R"qml(
import QtQuick
import QtWebEngine

WebEngineView {
    signal evaluated(string result)
    function showHtml(html) { loadHtml(html); }
    function evaluate(script) { runJavaScript(script, result => evaluated(String(result))); }
}
)qml";

/// Qt's settings have to be made before its application.
std::unique_ptr<QGuiApplication> makeApplication() {
    static int count = 1;
    static std::array<char, 16> name{"zarvik-bench-qt"};
    static std::array<char*, 2> arguments{name.data(), nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "*.info=false;*.warning=false");
    if (geteuid() == 0) {
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");  // it refuses to start as root with it
    }
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QtWebEngineQuick::initialize();
    return std::make_unique<QGuiApplication>(count, arguments.data());
}

QQuickItem* makeItem(QQmlComponent& component) {
    auto* const item = qobject_cast<QQuickItem*>(component.create());
    if (!item) {
        throw std::runtime_error("Qt WebEngine cannot be used. " + component.errorString().toStdString());
    }
    return item;
}

/// A scene with nothing but a web view, drawn into a picture whenever something in it has changed.
class QtView : public QObject {
  public:
    QtView(QQmlComponent& component, Size size);

    void call(const char* function, const std::string& text) {
        QMetaObject::invokeMethod(item, function, Q_ARG(QVariant, QString::fromStdString(text)));
    }
    QQuickItem& webView() const { return *item; }
    std::uint64_t pictures() const { return count; }
    Clock::time_point lastPicture() const { return last; }
    Pixel pixel(Point point) const {
        const auto* const first = picture.constScanLine(point.y) + std::size_t{4} * point.x;
        return {first[0], first[1], first[2], first[3]};
    }
    void sendMouse(QEvent::Type type, Point point) {
        const QPointF place(point.x, point.y);
        QMouseEvent event(type, place, place, Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
    }

  private:
    void draw();

    QImage picture;
    QQuickRenderControl control;
    QQuickWindow window;
    QQuickItem* const item;
    QTimer due;
    std::uint64_t count = 0;
    Clock::time_point last;
};

QtView::QtView(QQmlComponent& component, Size size)
    : picture(size.width, size.height, QImage::Format_ARGB32_Premultiplied),
      window(&control),
      item(makeItem(component)) {
    window.setGeometry(0, 0, size.width, size.height);
    window.contentItem()->setSize(QSizeF(size.width, size.height));
    window.setRenderTarget(QQuickRenderTarget::fromPaintDevice(&picture));
    item->setParentItem(window.contentItem());
    item->setSize(QSizeF(size.width, size.height));
    // Several changes make one drawing.
    due.setSingleShot(true);
    connect(&due, &QTimer::timeout, this, [this] { draw(); });
    connect(&control, &QQuickRenderControl::sceneChanged, this, [this] { due.start(0); });
    connect(&control, &QQuickRenderControl::renderRequested, this, [this] { due.start(0); });
}

void QtView::draw() {
    control.polishItems();
    control.beginFrame();
    control.sync();
    control.render();
    control.endFrame();
    ++count;
    last = Clock::now();
}

/// What the process ends with, without cleaning up: Qt WebEngine 6.4 damages its heap when a view that was
/// drawn like this goes away.
struct Scenes {
    std::unique_ptr<QGuiApplication> application = makeApplication();
    QQmlEngine engine;
    QQmlComponent component{&engine};
    std::vector<std::unique_ptr<QtView>> views;

    Scenes() { component.setData(viewText, QUrl()); }
};

class QtSubject final : public Subject {
  public:
    explicit QtSubject(const Setup& setup)
        : Subject(Clock::now()), size(setup.size), scenes(*new Scenes), receiver(results) {}

    void open(int count) override {
        while (views.size() < static_cast<std::size_t>(count)) {
            views.push_back(std::make_unique<QtView>(scenes.component, size));
            QObject::connect(&views.back()->webView(), SIGNAL(evaluated(QString)), &receiver,
                             SLOT(add(QString)));
        }
    }

    void load(const std::string& html) override {
        for (const auto& view : views) {
            view->call("showHtml", html);
        }
    }
    void show(const std::string& html) override {
        load(html);
        for (const auto& view : views) {
            runUntil([&] { return !view->webView().property("loading").toBool(); });
        }
        run(warmUp);
    }
    void run(std::chrono::duration<double> time) override {
        QEventLoop loop;
        QTimer::singleShot(std::chrono::duration_cast<std::chrono::milliseconds>(time), Qt::PreciseTimer,
                           &loop, [&] { loop.quit(); });
        loop.exec();
    }

    void loadUrl(const std::string&) override { throw NotServed("Debian builds it without a PDF viewer."); }

    Reading read() override {
        std::uint64_t pictures = 0;
        for (const auto& view : views) {
            pictures += view->pictures();
        }
        return Reading::now(pictures);
    }
    bool drawsOnDisplay() const override { return false; }
    Pixel pixel(Point point) override { return views.front()->pixel(point); }

    void evaluate(std::uint64_t, const std::string& script) override {
        views.front()->call("evaluate", script);
    }
    void waitForResults(std::uint64_t count) override {
        runUntil([&] { return results.reached(count); });
    }

    void runPosting(const std::string&) override {
        throw NotServed("Its channel for messages needs a script of its own in the page.");
    }
    void waitForMessages(std::uint64_t) override { throw NotServed("There are no messages."); }

    void watch(Point point) override { watched = point; }
    void pressPointer(Point point) override { views.front()->sendMouse(QEvent::MouseButtonPress, point); }
    void releasePointer(Point point) override { views.front()->sendMouse(QEvent::MouseButtonRelease, point); }
    Clock::time_point waitForColour(const Pixel& colour) override {
        runUntil([&] { return alike(pixel(watched), colour); });
        return views.front()->lastPicture();
    }

  private:
    template <typename Predicate>
    void runUntil(const Predicate& satisfied) {
        while (!satisfied()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    const Size size;
    Scenes& scenes;  // for ever
    std::vector<std::unique_ptr<QtView>>& views = scenes.views;
    Arrivals results;
    QtReceiver receiver;
    Point watched;
};

}  // namespace

std::unique_ptr<Subject> makeQtSubject(const Setup& setup) {
    return std::make_unique<QtSubject>(setup);
}

std::unique_ptr<Subject> makeSubject(Side side, const Setup& setup) {
    if (side != Side::qt) {
        throw std::runtime_error("This program measures the side qt only.");
    }
    return makeQtSubject(setup);
}

}  // namespace zarvik::bench
