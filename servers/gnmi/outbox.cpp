#include "servers/gnmi/outbox.hpp"

#include <utility>

#include "servers/gnmi/value.hpp"

namespace ocpsm::gnmi {

// Null when there is no room for it.
Outbox::Item *Outbox::item_for(const LeafPlace &place) {
    if (const auto found = by_path_.find(place.path); found != by_path_.end()) {
        return &*found->second;
    }
    if (by_path_.size() == max_leaves) {
        overflowed_ = true;
        return nullptr;
    }
    items_.push_back({place});
    by_path_.emplace(place.path, std::prev(items_.end()));
    return &items_.back();
}

void Outbox::update(const LeafPlace &place, const std::string &value, std::int64_t time) {
    if (Item *item = item_for(place)) {
        item->duplicates += item->value && item->time != time ? 1U : 0U;
        item->value = value;
        item->time = time;
    }
}

void Outbox::remove(const LeafPlace &place, std::int64_t time) {
    if (Item *item = item_for(place)) {
        item->value.reset();
        item->duplicates = 0;
        item->time = time;
    }
}

void Outbox::move_into(Item &&item, messages::Notification &notification) const {
    if (!item.value) {
        write_path(item.place->steps, taken_off_, *notification.add_delete_());
        return;
    }
    messages::Update &update = *notification.add_update();
    write_path(item.place->steps, taken_off_, *update.mutable_path());
    write_value(*item.place->node, *item.value, encoding_, *update.mutable_val());
    update.set_duplicates(item.duplicates);
}

std::optional<messages::SubscribeResponse> Outbox::take() {
    if (items_.empty()) {
        return std::nullopt;
    }
    messages::SubscribeResponse response;
    if (!items_.front().place) {
        items_.pop_front();
        response.set_sync_response(true);
        return response;
    }
    messages::Notification &notification = *response.mutable_update();
    notification.set_timestamp(items_.front().time);
    if (prefix_.ByteSizeLong() != 0) {
        *notification.mutable_prefix() = prefix_;
    }
    while (!items_.empty() && items_.front().place && items_.front().time == notification.timestamp() &&
           notification.update_size() + notification.delete__size() < max_updates) {
        by_path_.erase(items_.front().place->path);
        move_into(std::move(items_.front()), notification);
        items_.pop_front();
    }
    return response;
}

} // namespace ocpsm::gnmi
