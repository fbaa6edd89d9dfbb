#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PageReports.h"
#include "Step.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

namespace zarvik::player {

/// The bar with the address and the buttons: one more web view, with a page of the player's own, which says
/// what the user wants in messages. A page that hangs cannot stop it, since it is a page of its own. Main
/// thread.
class Toolbar {
  public:
    static constexpr const char* target = "Toolbar";

    Toolbar(host::Engine& engine, host::Size size);

    const host::View& view() const { return webView; }
    host::Size size() const { return currentSize; }
    void resize(host::Size size);

    /// Whether its page has begun to work; before that, input is lost.
    bool isReady() const { return ready; }

    /// What the user asks for in a message of the bar's page.
    std::optional<Action> actionFor(const std::string& message);

    /// Shows the state of the current page, the `number`th of `count`.
    void show(const PageState& state, std::size_t number, std::size_t count);

    /// Puts the caret into the address.
    void editAddress();
    /// Gives up what was typed.
    void leaveAddress();

  private:
    void run(const std::string& script) const;

    host::Engine& engine;
    host::View webView;
    host::Size currentSize;
    bool ready = false;
    std::string shown;
};

}  // namespace zarvik::player
