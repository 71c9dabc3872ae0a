#include "platform/controls/list_items.h"

#include <algorithm>

#include "platform/base/text.h"
#include "platform/controls/letters.h"

namespace tarn::platform {

std::int32_t ListItems::insert(std::int32_t index, std::string_view text) {
    if (index < 0 || index > count()) index = count();
    std::uint32_t place = 0;
    if (unused_.empty()) {
        place = static_cast<std::uint32_t>(items_.size());
        items_.push_back({std::string{text}});
    } else {
        place = unused_.back();
        unused_.pop_back();
        items_[place] = {std::string{text}};
    }
    order_.insert(order_.begin() + index, place);
    if (current >= index) ++current;
    return index;
}

std::int32_t ListItems::insert_sorted(std::string_view text) {
    const auto at = std::upper_bound(order_.begin(), order_.end(), text,
                                     [this](std::string_view value, std::uint32_t place) {
                                         return compare_folded(value, items_[place].text) < 0;
                                     });
    return insert(static_cast<std::int32_t>(at - order_.begin()), text);
}

void ListItems::remove(std::int32_t index) {
    const std::uint32_t place = order_[static_cast<std::size_t>(index)];
    if (items_[place].selected) --selected_;
    items_[place] = {};
    unused_.push_back(place);
    order_.erase(order_.begin() + index);
    if (current == index) {
        current = -1;
    } else if (current > index) {
        --current;
    }
}

void ListItems::clear() {
    order_.clear();
    items_.clear();
    unused_.clear();
    current = -1;
    selected_ = 0;
}

std::int32_t ListItems::find(std::int32_t after, std::string_view text, bool whole) const {
    const std::int32_t size = count();
    if (size == 0) return -1;
    if (after < -1 || after >= size) after = -1;
    for (std::int32_t step = 1; step <= size; ++step) {
        const std::int32_t index = (after + step) % size;
        const std::string& candidate = (*this)[index].text;
        if (whole ? compare_folded(candidate, text) == 0 : starts_folded(candidate, text)) {
            return index;
        }
    }
    return -1;
}

std::int32_t ListItems::find_data(std::int32_t after, std::uintptr_t data) const {
    const std::int32_t size = count();
    if (after < -1 || after >= size) after = -1;
    for (std::int32_t step = 1; step <= size; ++step) {
        const std::int32_t index = (after + step) % size;
        if ((*this)[index].data == data) return index;
    }
    return -1;
}

void ListItems::select(std::int32_t index, bool on) {
    bool& selected = (*this)[index].selected;
    if (selected == on) return;
    selected = on;
    selected_ += on ? 1 : -1;
}

void ListItems::select_all(bool on) {
    for (const std::uint32_t place : order_) items_[place].selected = on;
    selected_ = on ? count() : 0;
}

std::int32_t TypeAhead::find(const ListItems& items, std::int32_t from, char32_t code,
                             std::uint32_t now) {
    constexpr std::uint32_t pause = 1000;
    if (now - time_ > pause) typed_.clear();
    time_ = now;
    append_utf8(typed_, code);
    std::size_t first_end = 0;
    next_code_point(typed_, first_end);
    const std::string first = typed_.substr(0, first_end);
    bool repeated = true;
    for (std::size_t i = first_end; i < typed_.size(); i += first.size()) {
        repeated = repeated && typed_.compare(i, first.size(), first) == 0;
    }
    // From the item itself while the word grows, so that it stays where it still fits.
    std::int32_t found = -1;
    if (typed_.size() > first_end) found = items.find(from - 1, typed_, false);
    if (found < 0 && repeated) found = items.find(from, first, false);
    return found;
}

}  // namespace tarn::platform
