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

    // Puts the event into one that waits already. A pointer move replaces only the last event,
    // since a click between two of them belongs to its place; of configures only the last counts.
    bool merge(Event& event) {
        if (empty()) return false;
        if (event.kind == Event::Kind::pointer_move) {
            Entry& last = entries_.back();
            if (last.injected || last.event.kind != event.kind || last.event.window != event.window)
                return false;
            last.event = std::move(event);
            return true;
        }
        if (event.kind == Event::Kind::configure) {
            erase([&](const Entry& entry) {
                return !entry.injected && entry.event.kind == Event::Kind::configure &&
                       entry.event.window == event.window;
            });
            return false;
        }
        if (event.kind != Event::Kind::expose) return false;
        for (std::size_t i = taken_; i < entries_.size(); ++i) {
            Event& waiting = entries_[i].event;
            if (waiting.kind != Event::Kind::expose || waiting.window != event.window) continue;
            RECT& rect = waiting.rect;
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
