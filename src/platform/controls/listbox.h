// The record of a list box: on its own, and as the list of a combo box, whose items are the combo
// box's and which then takes its keys and its pointer from there.
#pragma once

#include <memory>

#include "platform/controls/list_items.h"
#include "platform/controls/look.h"

namespace tarn::platform {

// The height of an item in a font of that height.
std::int32_t list_item_height(std::int32_t line_height);
// A list that its owner draws holds a number for each item, not a text, unless it is told to.
bool holds_numbers(const Control& control, std::uint32_t owner_drawn, std::uint32_t strings);

struct ListBox : Control {
    ListItems own_items;
    HWND combo{};  // the box whose list this is

    std::int32_t item_height = 16;
    bool height_set = false;  // by a message or the owner
    std::int32_t column_width = 0, extent = 0;
    std::int32_t top = 0, scroll_x = 0;
    std::int32_t caret = -1, anchor = -1;  // where the keyboard is, where a range began
    std::int32_t hot = -1;                 // below the pointer, in the list of a combo box
    bool vertical_bar = false, horizontal_bar = false;  // by the style it was made with
    bool bars_due = true;  // the scroll bars don't tell of the items yet
    bool dragging = false, twice = false, drag_selects = true;
    std::int32_t press_item = -1;
    POINT last_mouse;
    TypeAhead letters;

    static constexpr std::uintptr_t scroll_timer = 1;

    ListItems& items();
    bool multiple() const { return combo == 0 && (has(LBS_MULTIPLESEL) || has(LBS_EXTENDEDSEL)); }
    bool extended() const { return combo == 0 && has(LBS_EXTENDEDSEL); }
    bool columns() const { return combo == 0 && has(LBS_MULTICOLUMN); }
    bool owner_drawn() const;
    bool is_selected(std::int32_t index);

    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_items(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_selection(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_view(UINT message, WPARAM wparam, LPARAM lparam);
    void create(const CREATESTRUCT& made);
    void measure_items();
    void fit_height();

    // listbox_view.cpp
    std::int32_t rows() const;     // whole ones in view
    std::int32_t in_view() const;  // items wholly in view
    RECT item_rect(std::int32_t index) const;
    std::int32_t item_at(POINT at, bool& outside);
    void items_changed();
    void update_bars();
    void scroll_to(std::int32_t to);
    void scroll_across(std::int32_t to);
    void reveal(std::int32_t index);
    void repaint_item(std::int32_t index) const;
    void scroll(bool vertical, std::int32_t code);
    void wheel(std::int32_t delta);
    void paint();
    void paint_item(HDC dc, std::int32_t index, const RECT& rect, const Colours& colours);
    void draw_by_owner(HDC dc, std::int32_t index, const RECT& rect, bool selected);

    // listbox_input.cpp
    void set_current(std::int32_t index);
    void select_range(std::int32_t from, std::int32_t to);
    void key(WPARAM code);
    void go(std::int32_t index);
    void type_ahead(char32_t code);
    void press(POINT at, WPARAM keys, bool again);
    void drag(POINT at);
    void release(POINT at);
    void end_drag();
    bool tell(std::int32_t code);
};

}  // namespace tarn::platform
