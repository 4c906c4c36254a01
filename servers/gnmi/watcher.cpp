#include "servers/gnmi/watcher.hpp"

#include <algorithm>
#include <utility>

namespace ocpsm::gnmi {

Watcher::Watcher(Source source) : source_(std::move(source)), thread_([this] { run(); }) {}

void Watcher::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
    end_all({grpc::StatusCode::UNAVAILABLE, "the server stops"});
}

void Watcher::add(std::shared_ptr<Watching> watching) {
    const std::lock_guard lock(mutex_);
    if (stopping_) {
        throw Refusal(grpc::StatusCode::UNAVAILABLE, "the server stops");
    }
    if (watching_.size() == max_watching) {
        throw Refusal(grpc::StatusCode::RESOURCE_EXHAUSTED,
                      "there are " + std::to_string(max_watching) + " subscribers already");
    }
    watching_.push_back(std::move(watching));
    woken_ = true;
    changed_.notify_all();
}

void Watcher::remove(const Watching *watching) {
    std::vector<std::shared_ptr<Watching>> removed; // ends without the lock
    const std::lock_guard lock(mutex_);
    const auto found =
        std::find_if(watching_.begin(), watching_.end(), [watching](const auto &one) { return one.get() == watching; });
    if (found != watching_.end()) {
        removed.push_back(std::move(*found));
        watching_.erase(found);
    }
}

void Watcher::wake() {
    const std::lock_guard lock(mutex_);
    woken_ = true;
    changed_.notify_all();
}

void Watcher::end_all(const Refusal &reason) {
    std::vector<std::shared_ptr<Watching>> all;
    {
        const std::lock_guard lock(mutex_);
        all.swap(watching_);
    }
    for (const auto &one : all) {
        one->end(reason);
    }
}

// False when the watcher stops. Looks for news without the lock: that may read a disk.
bool Watcher::wait_for_reason(std::unique_lock<std::mutex> &lock) {
    while (!stopping_) {
        if (watching_.empty()) {
            changed_.wait(lock, [this] { return stopping_ || !watching_.empty(); });
            continue;
        }
        if (std::exchange(woken_, false)) {
            return true;
        }
        const std::vector<std::shared_ptr<Watching>> all = watching_;
        lock.unlock();
        const Time now = source_.now();
        Time wait = source_.every;
        for (const auto &one : all) {
            if (const auto due = one->due()) {
                wait = std::min(wait, *due - now);
            }
        }
        const bool reason = wait <= Time(0) || source_.is_news();
        lock.lock();
        if (reason) {
            return !stopping_;
        }
        changed_.wait_for(lock, wait, [this] { return stopping_ || woken_; });
    }
    return false;
}

// A device that cannot be read cannot be watched: its clients begin anew.
void Watcher::tell_all(const std::vector<std::shared_ptr<Watching>> &all) {
    try {
        const Time now = source_.now(); // before: what is sent for a moment must not be older
        last_ = source_.read(last_);
        for (const auto &one : all) {
            one->tell(now, last_);
        }
    } catch (const Error &error) {
        end_all(refusal_of(error));
    } catch (const std::exception &error) {
        end_all({grpc::StatusCode::INTERNAL, error.what()});
    }
}

void Watcher::run() {
    std::unique_lock lock(mutex_);
    while (wait_for_reason(lock)) {
        const std::vector<std::shared_ptr<Watching>> all = watching_;
        lock.unlock();
        tell_all(all);
        lock.lock();
    }
}

} // namespace ocpsm::gnmi
