// Keys and the mouse in an edit field.
#include <algorithm>
#include <cstdlib>

#include "platform/base/text.h"
#include "platform/controls/edit.h"
#include "platform/controls/letters.h"
#include "platform/user/menus.h"

namespace tarn::platform {
namespace {

constexpr DWORD triple_click_time = 500;
constexpr std::size_t primary_at_once = 1 << 20;
enum Command : std::int32_t {
    cmd_undo = 1,
    cmd_redo,
    cmd_cut,
    cmd_copy,
    cmd_paste,
    cmd_delete,
    cmd_all
};

}  // namespace

// ---- Keys --------------------------------------------------------------------------------------

void Edit::move(std::size_t to, bool extend, bool at_line_end) {
    undo.close_run();
    select(extend ? anchor : to, to, at_line_end);
    show_caret(true);
    if (extend) primary_pending = true;
}

void Edit::move_lines(std::ptrdiff_t by, bool extend) {
    const std::size_t line = caret_line();
    if (goal_x < 0) goal_x = static_cast<float>(point_of(caret, line).x + scroll_x);
    const std::ptrdiff_t to = static_cast<std::ptrdiff_t>(line) + by;
    const float goal = goal_x;
    if (to < 0 || to >= static_cast<std::ptrdiff_t>(lines.count())) {
        const std::size_t target = by < 0 ? 0 : lines.count() - 1;
        if (target == line) return move(by < 0 ? 0 : text.size(), extend);
        const std::size_t at = offset_at_x(target, goal - static_cast<float>(scroll_x));
        move(at, extend);
    } else {
        const auto target = static_cast<std::size_t>(to);
        const std::size_t at = offset_at_x(target, goal - static_cast<float>(scroll_x));
        move(at, extend, target + 1 < lines.count() && at == lines.start(target + 1));
    }
    goal_x = goal;
}

// Keys with Control; true when it was one of the field's.
bool Edit::control_key(WPARAM code, bool shift) {
    switch (code) {
        case 'A':
            select(0, text.size());
            show_caret(false);
            primary_pending = true;
            return true;
        case 'C':
        case VK_INSERT:
            copy();
            return true;
        case 'X':
            cut();
            return true;
        case 'V':
            paste();
            return true;
        case 'Z':
            if (!read_only) step_undo(shift);
            return true;
        case 'Y':
            if (!read_only) step_undo(true);
            return true;
        case VK_LEFT:
            move(password != 0 ? 0 : previous_word(caret), shift);
            return true;
        case VK_RIGHT:
            move(password != 0 ? text.size() : next_word(caret), shift);
            return true;
        case VK_HOME:
            move(0, shift);
            return true;
        case VK_END:
            move(text.size(), shift);
            return true;
        case VK_UP:
        case VK_DOWN:
            if (multi_line) {
                scroll_to(code == VK_UP ? (top > 0 ? top - 1 : 0) : top + 1, scroll_x);
            }
            return true;
        case VK_DELETE:
            if (read_only) return true;
            if (anchor != caret) {
                replace_selection({}, Run::none);
            } else {
                erase(caret, password != 0 ? text.size() : next_word(caret), Run::none);
            }
            return true;
        default:
            return false;
    }
}

// Keys that belong to the combo box around the field.
bool Edit::combo_key(WPARAM code, LPARAM lparam) {
    switch (code) {
        case VK_UP:
        case VK_DOWN:
        case VK_PRIOR:
        case VK_NEXT:
        case VK_F4:
        case VK_RETURN:
        case VK_ESCAPE:
            send_message(GetParent(hwnd), WM_KEYDOWN, code, lparam);
            return true;
        default:
            return false;
    }
}

void Edit::key(WPARAM code, LPARAM lparam) {
    if (in_combo && combo_key(code, lparam)) return;
    const bool shift = key_down(VK_SHIFT);
    if (key_down(VK_CONTROL) && !key_down(VK_MENU)) {
        control_key(code, shift);
        return;
    }
    const std::size_t line = caret_line();
    const auto page = static_cast<std::ptrdiff_t>(std::max<std::size_t>(1, visible_lines()));
    // In one line the keys for up and down go left and right.
    if (!multi_line && code == VK_UP) code = VK_LEFT;
    if (!multi_line && code == VK_DOWN) code = VK_RIGHT;
    if (code != VK_UP && code != VK_DOWN && code != VK_PRIOR && code != VK_NEXT) goal_x = -1;
    switch (code) {
        case VK_LEFT:
            return move(anchor != caret && !shift ? low() : previous(caret), shift);
        case VK_RIGHT:
            return move(anchor != caret && !shift ? high() : next(caret), shift);
        case VK_UP:
            return move_lines(-1, shift);
        case VK_DOWN:
            return move_lines(1, shift);
        case VK_PRIOR:
        case VK_NEXT:
            if (!multi_line) return;
            scroll_to(code == VK_NEXT ? top + static_cast<std::size_t>(page)
                                      : top - std::min(top, static_cast<std::size_t>(page)),
                      scroll_x);
            if (dead) return;
            return move_lines(code == VK_NEXT ? page : -page, shift);
        case VK_HOME:
            return move(multi_line ? lines.start(line) : 0, shift);
        case VK_END: {
            const std::size_t end = multi_line ? line_end(line) : text.size();
            const bool soft =
                multi_line && line + 1 < lines.count() && end == lines.start(line + 1);
            return move(end, shift, soft);
        }
        case VK_INSERT:
            if (shift) paste();
            return;
        case VK_DELETE:
            if (read_only) return;
            if (anchor != caret) {
                if (shift) return cut();
                undo.close_run();
                return replace_selection({}, Run::none);
            }
            if (shift) return erase(previous(caret), caret, Run::backspace);
            return erase(caret, next(caret), Run::erase);
        default:
            break;
    }
}

void Edit::character(char32_t code) {
    const bool control = key_down(VK_CONTROL) && !key_down(VK_MENU);
    if (code == VK_BACK || code == 0x7F) {
        if (read_only) return;
        if (anchor != caret) {
            undo.close_run();
            return replace_selection({}, Run::none);
        }
        const bool word = control || code == 0x7F;
        if (word) return erase(password != 0 ? 0 : previous_word(caret), caret, Run::none);
        return erase(previous(caret), caret, Run::backspace);
    }
    if (read_only) {
        if (code >= 0x20) MessageBeep(0);
        return;
    }
    if (code == '\r' || code == '\n') {
        // Control+Return is a new line too, where Return alone is the dialog's.
        if (multi_line) type("\n");
        return;
    }
    if (code == '\t' && multi_line && !control) return type("\t");
    if (code < 0x20 || code == 0xFFFD) return;
    std::string utf8;
    append_utf8(utf8, code);
    type(utf8);
}

// ---- The mouse ---------------------------------------------------------------------------------

void Edit::press(POINT at, bool extend, bool twice) {
    if (GetFocus() != hwnd) {
        SetFocus(hwnd);
        if (dead) return;
    }
    undo.close_run();
    goal_x = -1;
    std::size_t line = 0;
    const std::size_t offset = offset_at(at, &line);
    const DWORD now = GetTickCount();
    const bool thrice = !twice && double_click_time != 0 &&
                        now - double_click_time <= triple_click_time &&
                        std::abs(at.x - last_mouse.x) <= 4 && std::abs(at.y - last_mouse.y) <= 4;
    double_click_time = twice ? std::max<DWORD>(now, 1) : 0;
    last_mouse = at;
    dragging = true;
    SetCapture(hwnd);
    drag_from = drag_to = offset;
    if (thrice) {
        unit = Select::lines;
        drag_from = multi_line ? lines.start(line) : 0;
        drag_to = multi_line && line + 1 < lines.count() ? lines.start(line + 1) : text.size();
        select(drag_from, drag_to);
    } else if (twice) {
        unit = Select::words;
        word_around(offset, drag_from, drag_to);
        select(drag_from, drag_to);
    } else {
        unit = Select::characters;
        const bool end = multi_line && line + 1 < lines.count() && offset == lines.start(line + 1);
        select(extend ? anchor : offset, offset, end);
    }
    show_caret(true);
}

void Edit::drag(POINT at) {
    last_mouse = at;
    std::size_t line = 0;
    const std::size_t offset = offset_at(at, &line);
    std::size_t from = offset;
    std::size_t to = offset;
    if (unit == Select::words) word_around(offset, from, to);
    if (unit == Select::lines) {
        from = multi_line ? lines.start(line) : 0;
        to = multi_line && line + 1 < lines.count() ? lines.start(line + 1) : text.size();
    }
    if (unit == Select::characters) {
        select(anchor, offset);
    } else if (offset < drag_from) {
        select(drag_to, from);
    } else {
        select(drag_from, std::max(to, drag_to));
    }
    show_caret(true);
    if (dead || !dragging) return;
    if (client().contains(at)) {
        KillTimer(hwnd, scroll_timer);
    } else {
        SetTimer(hwnd, scroll_timer, 50, nullptr);
    }
}

void Edit::end_drag() {
    if (!dragging) return;
    dragging = false;
    KillTimer(hwnd, scroll_timer);
    if (GetCapture() == hwnd) ReleaseCapture();
    primary_pending = true;
    offer_primary();
}

// What the user selected can be pasted elsewhere with the middle button.
void Edit::offer_primary() {
    if (!primary_pending) return;
    primary_pending = false;
    if (anchor == caret || password != 0) return;
    if (high() - low() > primary_at_once && dragging) return;
    set_primary_text(text.part(low(), high()));
}

void Edit::middle_press(POINT at) {
    if (GetFocus() != hwnd) {
        SetFocus(hwnd);
        if (dead) return;
    }
    const std::size_t offset = offset_at(at);
    std::string from;
    if (read_only || !primary_text(from)) return;
    select(offset, offset);
    paste_text(from);
}

void Edit::context_menu(LPARAM lparam) {
    POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    if (lparam == -1) {
        at = point_of(caret, caret_line());
        at.y += line_height;
        ClientToScreen(hwnd, at);
    }
    if (GetFocus() != hwnd) SetFocus(hwnd);
    if (dead) return;
    const HMENU menu = CreatePopupMenu();
    const bool selected = anchor != caret;
    const auto item = [menu](std::int32_t id, const char* label, bool on) {
        AppendMenuA(menu, MF_STRING | (on ? MF_ENABLED : MF_GRAYED), static_cast<UINT>(id), label);
    };
    const auto rule = [menu] { AppendMenuA(menu, MF_SEPARATOR, 0, nullptr); };
    item(cmd_undo, "&Undo\tCtrl+Z", !read_only && undo.can_undo());
    item(cmd_redo, "&Redo\tCtrl+Y", !read_only && undo.can_redo());
    rule();
    item(cmd_cut, "Cu&t\tCtrl+X", !read_only && selected && password == 0);
    item(cmd_copy, "&Copy\tCtrl+C", selected && password == 0);
    item(cmd_paste, "&Paste\tCtrl+V", !read_only && IsClipboardFormatAvailable(CF_TEXT));
    item(cmd_delete, "&Delete\tDel", !read_only && selected);
    rule();
    item(cmd_all, "Select &All\tCtrl+A", low() != 0 || high() != text.size());
    const std::int32_t chosen =
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, at.x, at.y, hwnd);
    DestroyMenu(menu);
    if (dead) return;
    switch (chosen) {
        case cmd_undo:
            return step_undo(false);
        case cmd_redo:
            return step_undo(true);
        case cmd_cut:
            return cut();
        case cmd_copy:
            copy();
            return;
        case cmd_paste:
            return paste();
        case cmd_delete:
            undo.close_run();
            return replace_selection({}, Run::none);
        case cmd_all:
            select(0, text.size());
            show_caret(false);
            return;
        default:
            return;
    }
}

}  // namespace tarn::platform
