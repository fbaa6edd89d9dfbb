#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <vector>

#include "fuzz/exports/Sequence.h"
#include "support/TemporaryFolder.h"
#include "support/TestServer.h"
#include "zarvik/host/GLDevice.h"
#include "zarvik/host/InterfaceRegistry.h"
#include "zarvik/host/Plugin.h"
#include "zarvik/host/RenderThread.h"
#include "zarvik/host/SurfacelessContext.h"

/// An engine that plays sequences against the library, and knows what it is promised: what it asked for is
/// answered once, and in order; a texture is announced once, on the render thread, and nothing of it stays; a
/// view that was destroyed is silent. What does not hold ends the program as a finding.
///
/// One for the whole process, since the library's callbacks carry no context. Its views are gone after each
/// sequence.
class Session {
  public:
    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void play(const std::vector<Step>& steps);

    /// Ends the render thread. For the end of the process.
    void stop();

    // For the calls.
    const zarvik::host::PluginExports& plugin() const { return library.exports; }
    /// The step's arguments with what only the session knows, noted as what the engine expects from now on.
    std::vector<Argument> prepared(const Step& step);
    /// What an argument is in C.
    template <typename T>
    T value(const Argument& argument) {
        if constexpr (std::is_same_v<T, const char*>) {
            return argument.kind == Argument::Kind::null ? nullptr : argument.text.c_str();
        } else if constexpr (std::is_integral_v<T>) {
            return static_cast<T>(argument.number);
        } else if constexpr (std::is_same_v<T, void*> || std::is_same_v<T, UwpWebView*>) {
            return static_cast<T>(pointer(argument));
        } else if constexpr (std::is_same_v<T, IUnityInterfaces*>) {
            return argument.kind == Argument::Kind::own ? zarvik::host::InterfaceRegistry::interfaces()
                                                        : nullptr;
        } else {
            const T receiver = receive;
            return argument.kind == Argument::Kind::own ? receiver : nullptr;
        }
    }
    void keep(const Step& step, UwpWebView* made);
    void keep(const Step& step, char* cookies);
    void keep(const Step& step, std::int32_t key);
    void keep(const Step& step, ZarvikBool succeeded);
    void keep(const Step& step, ZarvikRenderFunction function);

  private:
    /// Which of the engine's threads asks: of those beside the scripting thread, each has a number of its
    /// own. Answers are in order only for each of them.
    using Lane = std::size_t;
    static constexpr Lane scriptingLane = 0;
    static constexpr Lane callbackLane = std::numeric_limits<Lane>::max();

    struct View {
        UwpWebView* handle = nullptr;
        std::string target;
        bool destroyed = false;  // or just about to be
        bool isGone = false;     // the call that destroys it has returned
        int lateAnswers = 0;
        int navigationQuestions = 0;  // whether it can go back or forward
        int navigationAnswers = 0;
        int loadsEnded = 0;  // that no one waited for yet
    };
    struct Question {
        int view = -1;  // that was there when it was asked; -1: none
        Lane lane = scriptingLane;
        bool mustBeAnswered = false;
        int answers = 0;
    };

    void run(const Step& step, Lane lane);
    void call(const Step& step, Lane lane);
    void callInCallback();
    void waitForLoad(int view);
    void failDevice(int what);
    void killPage(std::size_t index);
    void renderTurn();
    void end();
    void registerCallbacks();
    void destroyViews();
    void checkAnswers();

    // What the library calls.
    static void receive(const char* target, const char* method, const char* payload);
    static void receive(const char* target, const char* id, const std::uint8_t* bytes, std::int32_t length);
    static void receive(const char* line);
    void onMessage(const char* target, const char* method, const char* payload);
    void onScriptResult(std::string_view target, std::string_view payload);
    void onTexture(const char* payload);
    void onData(const char* target, const char* id, std::span<const std::uint8_t> bytes);
    void onLine(const char* line);
    View* viewOf(std::string_view target);
    int liveView(const void* handle) const;
    std::string expanded(std::string text) const;
    void* pointer(const Argument& argument);
    void* takeTexture(std::size_t index);
    bool comesTrue(const std::function<bool()>& condition);

    static bool isUtf8(std::string_view text);

    static Session* current;
    static int something;  // stands for what a pointer of nobody's leads to
    // Of the thread's call.
    static thread_local Lane ownLane;
    static thread_local int ownView;

    const zarvik::host::Plugin library;
    const ZarvikRenderFunction renderFunction;
    TestServer server;
    TemporaryFolder folder;
    zarvik::host::GLDevice device;
    zarvik::host::SurfacelessContext context;
    std::unique_ptr<zarvik::host::RenderThread> renderThread;

    // What follows is of the sequence being played.
    mutable std::mutex mutex;
    std::uint64_t sequence = 0;
    std::vector<View> views;
    std::vector<std::int32_t> keys;
    std::map<std::string, Question, std::less<>> questions;
    /// Of each view's target and each lane the last answer's number.
    std::map<std::pair<std::string, Lane>, std::int64_t> lastAnswers;
    std::vector<void*> textures;
    std::deque<Step> forCallbacks;
    bool wasDeaf = false;             // no receiver of messages or data for a while
    bool hasOddText = false;          // that is no UTF-8
    bool hasNoControl = false;        // some view says so
    std::atomic<bool> isOver = true;  // views are destroyed
};
