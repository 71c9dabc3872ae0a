// The events that a backend has made and nobody has taken: moves and configures coalesce, so that
// a slow program isn't shown where the pointer was long ago.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/display/display.h"

namespace tarn::platform {

class EventQueue {
  public:
    bool empty() const { return taken_ == entries_.size(); }
    // Events put in by inject_event that wait.
    std::size_t injected() const { return injected_; }

    void push(Event event, bool injected = false) {
        if (!injected && event.kind == Event::Kind::configure) {
            push_configure(std::move(event));
            return;
        }
        if (!injected && merge(event)) return;
        compact();
        if (injected) ++injected_;
        entries_.push_back({std::move(event), injected});
    }

    bool take(Event& event) {
        if (empty()) return false;
        Entry& entry = entries_[taken_++];
        if (entry.injected) --injected_;
        event = std::move(entry.event);
        if (empty()) {
            entries_.clear();
            taken_ = 0;
        }
        return true;
    }

    // Forgets what waits for a window that is gone.
    void drop(TopLevel window) {
        erase([&](const Entry& entry) { return entry.event.window == window; });
    }

  private:
    struct Entry {
        Event event;
        bool injected = false;
    };

    template <class Condition>
    void erase(Condition condition) {
        auto first = entries_.begin() + static_cast<std::ptrdiff_t>(taken_);
        auto gone = std::remove_if(first, entries_.end(), [&](const Entry& entry) {
            bool found = condition(entry);
            if (found && entry.injected) --injected_;
            return found;
        });
        entries_.erase(gone, entries_.end());
    }

    // Only the last place counts, and what is to be shown is painted for it at once.
    void push_configure(Event event) {
        TopLevel window = event.window;
        Event expose;
        for (std::size_t i = taken_; i < entries_.size(); ++i) {
            if (is_waiting(entries_[i], Event::Kind::expose, window))
                expose = std::move(entries_[i].event);
        }
        erase([&](const Entry& entry) {
            return is_waiting(entry, Event::Kind::configure, window) ||
                   is_waiting(entry, Event::Kind::expose, window);
        });
        compact();
        entries_.push_back({std::move(event), false});
        if (expose.kind == Event::Kind::expose) entries_.push_back({std::move(expose), false});
    }

    static bool is_waiting(const Entry& entry, Event::Kind kind, TopLevel window) {
        return !entry.injected && entry.event.kind == kind && entry.event.window == window;
    }

    // Puts the event into one that waits already. A pointer move replaces only the last event,
    // since a click between two of them belongs to its place.
    bool merge(Event& event) {
        if (empty()) return false;
        if (event.kind == Event::Kind::pointer_move) {
            Entry& last = entries_.back();
            if (!is_waiting(last, event.kind, event.window)) return false;
            last.event = std::move(event);
            return true;
        }
        if (event.kind != Event::Kind::expose) return false;
        for (std::size_t i = taken_; i < entries_.size(); ++i) {
            if (!is_waiting(entries_[i], Event::Kind::expose, event.window)) continue;
            RECT& rect = entries_[i].event.rect;
            rect = {std::min(rect.left, event.rect.left), std::min(rect.top, event.rect.top),
                    std::max(rect.right, event.rect.right),
                    std::max(rect.bottom, event.rect.bottom)};
            return true;
        }
        return false;
    }

    void compact() {
        if (taken_ <= 64 || taken_ <= entries_.size() / 2) return;
        entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(taken_));
        taken_ = 0;
    }

    std::vector<Entry> entries_;  // those from `taken_` on wait
    std::size_t taken_ = 0;
    std::size_t injected_ = 0;
};

}  // namespace tarn::platform
