// The items of a list box or a combo box: texts with a word of the program's each, their order and
// the selection.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

struct ListItem {
    std::string text;
    std::uintptr_t data = 0;
    bool selected = false;
};

class ListItems {
  public:
    std::int32_t count() const { return static_cast<std::int32_t>(order_.size()); }
    bool has(std::int64_t index) const {
        return index >= 0 && index < static_cast<std::int64_t>(order_.size());
    }
    ListItem& operator[](std::int32_t index) {
        return items_[order_[static_cast<std::size_t>(index)]];
    }
    const ListItem& operator[](std::int32_t index) const {
        return items_[order_[static_cast<std::size_t>(index)]];
    }
    // Where it came to stand: before `index`, at the end for -1, or by its text.
    std::int32_t insert(std::int32_t index, std::string_view text);
    std::int32_t insert_sorted(std::string_view text);
    void remove(std::int32_t index);
    void clear();

    // The first item behind `after` (round the end) that begins with `text`, or is it; -1 for none.
    std::int32_t find(std::int32_t after, std::string_view text, bool whole) const;
    std::int32_t find_data(std::int32_t after, std::uintptr_t data) const;

    std::int32_t current = -1;  // of a single selection
    void select(std::int32_t index, bool on);
    void select_all(bool on);
    std::int32_t selected_count() const { return selected_; }

  private:
    // Places in `items_`: inserting moves four bytes for each item behind, not the items.
    std::vector<std::uint32_t> order_;
    std::vector<ListItem> items_;
    std::vector<std::uint32_t> unused_;
    std::int32_t selected_ = 0;
};

// Letters typed at a list: the next item that begins with them. One letter again and again goes
// from one item to the next.
class TypeAhead {
  public:
    // The item to go to from `from`, -1 for none. `now` in milliseconds.
    std::int32_t find(const ListItems& items, std::int32_t from, char32_t code, std::uint32_t now);

  private:
    std::string typed_;
    std::uint32_t time_ = 0;
};

}  // namespace tarn::platform
