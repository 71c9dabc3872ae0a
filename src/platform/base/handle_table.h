// Handles: small positive numbers that name records and are known for stale once their record is
// gone. The low 16 bits are the place in the table, above them the generation of that place.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::platform {

template <typename Record, typename Handle>
class HandleTable {
  public:
    // 0 when the table is full.
    Handle add(std::unique_ptr<Record> record) {
        // Freed places rest as long as they can, so that a stale handle is recognised for long.
        std::uint32_t place = 0;
        if (free_first_ != 0 && (free_count_ >= resting || slots_.size() >= limit)) {
            place = free_first_;
            free_first_ = slots_[place - 1].next_free;
            if (free_first_ == 0) free_last_ = 0;
            --free_count_;
        } else if (slots_.size() < limit) {
            slots_.emplace_back();
            place = static_cast<std::uint32_t>(slots_.size());
        } else {
            return Handle{};
        }
        Slot& slot = slots_[place - 1];
        slot.record = std::move(record);
        return static_cast<Handle>(slot.generation << 16 | place);
    }

    bool full() const { return free_first_ == 0 && slots_.size() >= limit; }

    Record* find(Handle handle) const {
        const Slot* slot = slot_of(handle);
        return slot == nullptr ? nullptr : slot->record.get();
    }

    // The record, which its handle names no longer; null for a stale handle.
    std::unique_ptr<Record> remove(Handle handle) {
        auto* slot = const_cast<Slot*>(slot_of(handle));
        if (slot == nullptr || slot->record == nullptr) return nullptr;
        slot->generation = slot->generation % 0x7FFF + 1;
        slot->next_free = 0;
        const std::uint32_t place = static_cast<std::uint32_t>(handle) & 0xFFFF;
        (free_last_ == 0 ? free_first_ : slots_[free_last_ - 1].next_free) = place;
        free_last_ = place;
        ++free_count_;
        return std::move(slot->record);
    }

    template <typename Visit>
    void each(Visit visit) {
        for (std::size_t i = 0; i < slots_.size(); ++i) {
            if (slots_[i].record != nullptr) visit(*slots_[i].record);
        }
    }

  private:
    static constexpr std::size_t limit = 0xFFFF;
    static constexpr std::uint32_t resting = 64;
    struct Slot {
        std::unique_ptr<Record> record;
        // From 1: small numbers are no handles, but system colours where a brush can stand.
        std::uint32_t generation = 1;
        std::uint32_t next_free = 0;
    };

    const Slot* slot_of(Handle handle) const {
        const auto value = static_cast<std::uint32_t>(handle);
        const std::uint32_t place = value & 0xFFFF;
        if (place == 0 || place > slots_.size()) return nullptr;
        const Slot& slot = slots_[place - 1];
        return slot.generation == value >> 16 ? &slot : nullptr;
    }

    std::vector<Slot> slots_;
    std::uint32_t free_first_ = 0, free_last_ = 0, free_count_ = 0;
};

}  // namespace tarn::platform
