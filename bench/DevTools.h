#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <thread>

namespace zarvik::bench {

/// A Chromium of our own without a window, with a profile of its own, that is driven over a pair of pipes
/// with its debugging protocol. It ends with this object.
class DevTools {
  public:
    using Json = nlohmann::json;

    /// Called with each event, in order, on the thread that reads.
    using Listener =
        std::function<void(const std::string& session, const std::string& method, Json& parameters)>;
    /// Called with the reply on the same thread.
    using Reply = std::function<void(Json& reply)>;

    /// Throws std::runtime_error if it cannot be started.
    explicit DevTools(Listener listener);
    ~DevTools();
    DevTools(const DevTools&) = delete;
    DevTools& operator=(const DevTools&) = delete;

    /// Sends a command to a page's session, or with an empty one to the browser, and waits for the result.
    /// Not on the thread that reads. Throws std::runtime_error with the protocol's message if it fails.
    Json call(const std::string& session, const std::string& method, Json parameters = Json::object());

    /// The same without waiting. Any thread. Goes nowhere once the browser has ended.
    void send(const std::string& session, const std::string& method, Json parameters, Reply reply = {});

  private:
    void start();
    void read();
    void receive(std::string_view text);
    void end();

    const Listener listener;
    std::filesystem::path profile;
    pid_t process = 0;
    int toBrowser = -1;
    int fromBrowser = -1;

    std::mutex mutex;  // guards the three below
    std::uint64_t lastId = 0;
    std::map<std::uint64_t, Reply> awaited;
    bool closed = false;

    std::thread reader;
};

}  // namespace zarvik::bench
