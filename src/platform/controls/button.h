// The record of a button. button.cpp holds what it does, button_paint.cpp how it looks.
#pragma once

#include "platform/controls/look.h"

namespace tarn::platform {

enum class Shape : std::uint8_t { push, check, radio, group, owner, split, link };

struct Button : Control {
    std::string text, note;
    std::uint32_t type = BS_PUSHBUTTON;
    std::uint32_t check = 0;
    bool pushed = false;    // drawn pressed
    bool tracking = false;  // the mouse went down here and is held
    bool space_held = false;
    bool on_arrow = false;  // the mouse is over a split button's arrow
    std::int32_t icon = 0, bitmap = 0;

    Shape shape() const;
    bool three_states() const { return type == BS_3STATE || type == BS_AUTO3STATE; }
    bool is_default() const {
        return type == BS_DEFPUSHBUTTON || type == BS_DEFSPLITBUTTON || type == BS_DEFCOMMANDLINK;
    }
    bool looks_pushed() const { return pushed || (has(BS_PUSHLIKE) && check != 0); }
    RECT arrow_rect() const;

    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_mouse(UINT message, LPARAM lparam);
    LRESULT handle_own(UINT message, WPARAM wparam, LPARAM lparam);
    void key(UINT message, WPARAM key, LPARAM lparam);
    void set_pushed(bool on);
    void set_check(std::uint32_t to);
    void release(bool inside);
    void click();
    void check_radio();
    void drop_down();
    bool focus_ring() const { return focused && keyboard_focus_visible(); }

    void paint();
    void paint_push(HDC dc, const RECT& rect);
    void paint_link(HDC dc, const RECT& rect);
    void paint_mark(HDC dc, const RECT& rect, const Colours& colours);
    void paint_group(HDC dc, const RECT& rect, const Colours& colours);
    void paint_by_owner(HDC dc, const RECT& rect);
    void draw_label(HDC dc, RECT rect, COLORREF colour, std::uint32_t align);
};

}  // namespace tarn::platform
