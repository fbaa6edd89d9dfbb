#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace zarvik::host {

/// One call of the plug-in into the engine.
struct Record {
    enum class Kind { message, data, info, warning, error };
    /// `library`: one of the plug-in's own threads.
    enum class ThreadRole { scripting, render, library };

    Kind kind = Kind::message;
    std::chrono::steady_clock::time_point time{};
    std::thread::id thread{};
    ThreadRole role = ThreadRole::library;
    std::string threadName{};
    std::string target{};               // of messages and data
    std::string method{};               // of messages; of data: the result callback id
    std::string payload{};              // of messages; of log lines: the line
    std::vector<std::uint8_t> bytes{};  // of data
};

/// Keeps every call of the plug-in in order of arrival, and lets tests and programs wait for one. Any thread.
class Recorder {
  public:
    using Predicate = std::function<bool(const Record&)>;

    static constexpr std::chrono::milliseconds defaultTimeout{30'000};

    void add(Record record);

    /// From now on only the newest ones are kept; otherwise all are.
    void keepNewest(std::size_t count);

    /// How many records there have been: the place from which to look for what comes next.
    std::size_t position() const;
    std::vector<Record> since(std::size_t position) const;
    std::vector<Record> all() const { return since(0); }

    /// The first record at or after `from` that matches, waiting for it if need be. Nothing after the
    /// timeout.
    std::optional<Record> waitFor(const Predicate& matches, std::size_t from = 0,
                                  std::chrono::milliseconds timeout = defaultTimeout) const;

    /// Waits until the kept records as a whole satisfy the predicate. False after the timeout.
    bool waitUntil(const std::function<bool(const std::deque<Record>&)>& satisfied,
                   std::chrono::milliseconds timeout = defaultTimeout) const;

    /// Is called for each new record, on the thread of the call and before anyone can wait for the record.
    /// Null: nobody is called.
    void setObserver(std::function<void(const Record&)> observer);

  private:
    mutable std::mutex mutex;
    mutable std::condition_variable added;
    std::deque<Record> records;
    std::size_t forgotten = 0;  // records that are no longer kept
    std::optional<std::size_t> most;
    std::function<void(const Record&)> observer;
};

}  // namespace zarvik::host
