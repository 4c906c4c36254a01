// What a subscriber has still to be sent.
#ifndef OCPSM_SERVERS_GNMI_OUTBOX_HPP
#define OCPSM_SERVERS_GNMI_OUTBOX_HPP

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <unordered_map>

#include "gnmi.pb.h"
#include "servers/gnmi/leaf.hpp"

namespace ocpsm::gnmi {

/*
 * A queue of leaves' values and deletions, in which a leaf stands once: what comes later of it takes the place of what
 * was not sent yet, and a value that is overtaken is counted. Not safe for threads.
 */
class Outbox {
public:
    static constexpr std::size_t max_leaves = 65'536;
    static constexpr int max_updates = 512; // of one message

    // Values go out in `encoding`; each message begins with `prefix`, which takes `taken_off` steps off its paths.
    Outbox(messages::Encoding encoding, messages::Path prefix, std::size_t taken_off)
        : encoding_(encoding), prefix_(std::move(prefix)), taken_off_(taken_off) {}

    // A value that a leaf has or had at a time; a second one of the same time is the same.
    void update(const LeafPlace &place, const std::string &value, std::int64_t time);
    void remove(const LeafPlace &place, std::int64_t time);

    // All there was to be sent at first is in.
    void sync() { items_.push_back({}); }

    // More leaves were added than are kept: the subscriber cannot be told everything any more.
    bool overflowed() const { return overflowed_; }

    bool empty() const { return items_.empty(); }

    // The next message: what was of one time, or the end of what is sent at first. None when nothing is left.
    std::optional<messages::SubscribeResponse> take();

private:
    struct Item {
        std::optional<LeafPlace> place = {}; // none: the end of what is sent at first
        std::optional<std::string> value = {};
        std::int64_t time = 0;
        std::uint32_t duplicates = 0;
    };

    Item *item_for(const LeafPlace &place);
    void move_into(Item &&item, messages::Notification &notification) const;

    messages::Encoding encoding_;
    messages::Path prefix_;
    std::size_t taken_off_;
    std::list<Item> items_;
    std::unordered_map<std::string, std::list<Item>::iterator> by_path_;
    bool overflowed_ = false;
};

} // namespace ocpsm::gnmi

#endif
