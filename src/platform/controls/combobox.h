// The record of a combo box, and what a list knows of the one that it belongs to. The list of a box
// that drops down is a top-level window that takes no focus; while it is down it holds the capture,
// so that it hears of presses anywhere.
#pragma once

#include <string>

#include "platform/controls/listbox.h"

namespace tarn::platform {

constexpr std::int32_t field_inset = 2;  // of the field in the box
constexpr std::int32_t default_combo_rows = 10;  // of a list whose height nobody told

struct ComboBox : Control {
    ListItems items;
    HWND field{}, list{};
    std::uint32_t type = CBS_DROPDOWN;
    std::int32_t field_height = 0, drop_height = 0, dropped_width = 0;
    std::int32_t item_height = 0;  // told by a message or the owner
    bool field_height_set = false;
    bool dropped = false, closing = false;
    bool quiet = false;        // what the field tells is our own doing
    std::int32_t before = -1;  // chosen when the list dropped
    std::string text_before;
    TypeAhead letters;

    bool has_field() const { return type != CBS_DROPDOWNLIST; }
    bool drops() const { return type != CBS_SIMPLE; }
    RECT arrow_rect() const;
    RECT text_rect() const;

    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_items(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_box(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_text(UINT message, WPARAM wparam, LPARAM lparam);
    void create(const CREATESTRUCT& made);
    void place_children();
    void set_font(HFONT to);
    void measure_by_owner();
    std::int32_t natural_height() const;
    void fit_height();

    void set_current(std::int32_t index, bool at_field);
    void set_field_text(std::string_view to);
    std::string current_text() const;
    void items_changed();
    void drop();
    RECT list_place() const;
    void close(bool accept);
    void pick(std::int32_t index);
    void choose(std::int32_t index);
    bool key(WPARAM code, bool alt);
    void field_told(std::int32_t code);
    void focus_came();
    void focus_went();
    void paint();
    void paint_chosen(HDC dc, const Colours& colours);
};

// The items of a combo box; null when it has gone.
ListItems* combobox_items(HWND combo);

// The pointer, in the list's client coordinates. True: it was seen to; false: the list treats it
// as any list does (that of a simple combo box).
bool combobox_list_pressed(ListBox& list, POINT at);
bool combobox_list_moved(ListBox& list, POINT at, bool button_down);
bool combobox_list_released(ListBox& list, POINT at);
bool combobox_list_lost_capture(ListBox& list, LPARAM to);
bool combobox_list_timer(ListBox& list);

}  // namespace tarn::platform
