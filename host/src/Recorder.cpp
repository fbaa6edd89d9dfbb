#include "zarvik/host/Recorder.h"

#include <algorithm>
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
    if (most && records.size() > *most) {
        records.pop_front();
        ++forgotten;
    }
    lock.unlock();
    added.notify_all();
}

void Recorder::keepNewest(std::size_t count) {
    const std::scoped_lock lock(mutex);
    most = count;
    for (; records.size() > count; ++forgotten) {
        records.pop_front();
    }
}

std::size_t Recorder::position() const {
    const std::scoped_lock lock(mutex);
    return forgotten + records.size();
}

std::vector<Record> Recorder::since(std::size_t position) const {
    const std::scoped_lock lock(mutex);
    const auto first = std::clamp(position, forgotten, forgotten + records.size()) - forgotten;
    return {records.begin() + static_cast<std::ptrdiff_t>(first), records.end()};
}

std::optional<Record> Recorder::waitFor(const Predicate& matches, std::size_t from,
                                        std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex);
    std::optional<Record> found;
    added.wait_for(lock, timeout, [&] {
        for (from = std::max(from, forgotten); from < forgotten + records.size(); ++from) {
            if (const Record& record = records[from - forgotten]; matches(record)) {
                found = record;
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
