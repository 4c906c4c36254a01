// The one thread that watches the device for all subscribers.
#ifndef OCPSM_SERVERS_GNMI_WATCHER_HPP
#define OCPSM_SERVERS_GNMI_WATCHER_HPP

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "servers/gnmi/leaf.hpp"
#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/subscription.hpp"

namespace ocpsm::gnmi {

// Its functions are called on the watcher's thread, and must not wait.
class Watching {
public:
    Watching() = default;
    Watching(const Watching &) = delete;
    Watching &operator=(const Watching &) = delete;
    virtual ~Watching() = default;

    // When it wants to be told whatever happens; none: never.
    virtual std::optional<Time> due() = 0;

    // What there is: at first, when it is due, and when something is new.
    virtual void tell(Time now, const std::shared_ptr<const Snapshot> &snapshot) = 0;

    // It is not told any more.
    virtual void end(const Refusal &reason) = 0;
};

// Reads once for all of them, when one of them is due or something is new, and not at all while there are none.
class Watcher {
public:
    struct Source {
        // Reads everything; places are taken over from an earlier one. Throws Error.
        std::function<std::shared_ptr<const Snapshot>(const std::shared_ptr<const Snapshot> &earlier)> read;
        std::function<bool()> is_news; // since the last call; asked every `every`
        std::function<Time()> now;
        Time every = std::chrono::milliseconds(100);
    };

    static constexpr std::size_t max_watching = 256;

    explicit Watcher(Source source);
    Watcher(const Watcher &) = delete;
    Watcher &operator=(const Watcher &) = delete;

    ~Watcher() { stop(); }

    // Ends them all, and whoever comes later.
    void stop();

    // Throws Refusal when there are too many. It is told soon.
    void add(std::shared_ptr<Watching> watching);
    void remove(const Watching *watching);

    // Somebody wants to be told now.
    void wake();

private:
    void run();
    bool wait_for_reason(std::unique_lock<std::mutex> &lock);
    void tell_all(const std::vector<std::shared_ptr<Watching>> &all);
    void end_all(const Refusal &reason);

    Source source_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::shared_ptr<Watching>> watching_;
    bool woken_ = false;
    bool stopping_ = false;
    std::shared_ptr<const Snapshot> last_; // of the thread
    std::thread thread_;
};

} // namespace ocpsm::gnmi

#endif
