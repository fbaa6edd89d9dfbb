#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/TestServer.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

/// Asks again and again until it is true; false after a while.
bool waitUntil(const std::function<bool()>& satisfied);

/// A test against the library in an engine: what the engine sees is what is checked.
class EngineTest : public testing::Test {
  protected:
    using Engine = zarvik::host::Engine;
    using Image = zarvik::host::Image;
    using LoadResult = zarvik::host::LoadResult;
    using Record = zarvik::host::Record;
    using View = zarvik::host::View;

    const zarvik::host::PluginExports& plugin() { return engine.plugin(); }
    zarvik::host::Recorder& recorder() { return engine.recorder(); }

    /// The host messages that a view sent since a position, each as its method, a blank and its payload,
    /// without those about textures and without what the agent in the page reports.
    std::vector<std::string> messagesSince(std::size_t position, const View& view);

    /// The error lines since a position, without their times.
    std::vector<std::string> errorsSince(std::size_t position);
    bool waitForError(const std::string& text, std::size_t position = 0);

    /// Loads and expects success.
    void load(View& view, const std::string& url);
    void loadHtml(View& view, const std::string& html);

    /// Waits until a script's result is the one expected.
    bool waitForResult(const View& view, const std::string& script, const std::string& expected);

    /// Waits until the engine's texture shows what is expected.
    bool waitForPixels(const View& view, const std::function<bool(const Image&)>& expected);
    /// Waits until it shows the pattern page in this size, or nothing but one colour.
    bool showsPattern(const View& view, int width, int height);
    bool showsColour(const View& view, int red, int green, int blue);

    TestServer server;
    Engine engine{{}};
};

/// A test of one view.
class ViewTest : public EngineTest {
  protected:
    explicit ViewTest(zarvik::host::Size size = {320, 240}) : view(engine, size) {}

    std::string evaluate(const std::string& script) { return view.evaluate(script).value_or("no answer"); }

    View view;
};

/// The message that tells of a navigation to a URL.
std::string urlChanged(const std::string& url);
