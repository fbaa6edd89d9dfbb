#include "zarvik/host/Recorder.h"

#include <utility>

namespace zarvik::host {

void Recorder::add(Record record) {
    std::unique_lock lock(mutex);
    const auto notify = observer;
    lock.unlock();
    if (notify) {
        notify(record);
    }
    lock.lock();
    records.push_back(std::move(record));
    lock.unlock();
    added.notify_all();
}

std::size_t Recorder::position() const {
    const std::scoped_lock lock(mutex);
    return records.size();
}

std::vector<Record> Recorder::since(std::size_t position) const {
    const std::scoped_lock lock(mutex);
    if (position >= records.size()) {
        return {};
    }
    return {records.begin() + static_cast<std::ptrdiff_t>(position), records.end()};
}

std::optional<Record> Recorder::waitFor(const Predicate& matches, std::size_t from,
                                        std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex);
    std::optional<Record> found;
    added.wait_for(lock, timeout, [&] {
        for (; from < records.size(); ++from) {
            if (matches(records[from])) {
                found = records[from];
                return true;
            }
        }
        return false;
    });
    return found;
}

bool Recorder::waitUntil(const std::function<bool(const std::deque<Record>&)>& satisfied,
                         std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex);
    return added.wait_for(lock, timeout, [&] { return satisfied(records); });
}

void Recorder::setObserver(std::function<void(const Record&)> newObserver) {
    const std::scoped_lock lock(mutex);
    observer = std::move(newObserver);
}

}  // namespace zarvik::host
