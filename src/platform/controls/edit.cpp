// "edit": a field of one or many lines. The messages.
#include "platform/controls/edit.h"

#include <algorithm>

#include "platform/base/text.h"

namespace tarn::platform {

void Edit::create(const CREATESTRUCT& made) {
    const std::uint32_t bits = style();
    multi_line = (bits & ES_MULTILINE) != 0;
    read_only = (bits & ES_READONLY) != 0;
    password = (bits & ES_PASSWORD) != 0 && !multi_line ? U'\u2022' : 0;
    line_height = Measure{*this}.line_height();
    text.assign(made.lpszName == nullptr ? "" : made.lpszName);
    rebuild_lines();
}

void Edit::make_caret() {
    CreateCaret(hwnd, 1, line_height);
    if (password != 0) KeepInputMethodsOut();
}

void Edit::gain_focus() {
    focused = true;
    make_caret();
    has_caret = true;
    show_caret(false);
    ShowCaret(hwnd);
    if (anchor != caret) repaint_range(low(), high());
    if (text.size() == 0 && !cue.empty()) repaint();
    draw_window_border(*this, {true, hovered, true});
    notify(*this, EN_SETFOCUS);
}

void Edit::lose_focus() {
    focused = has_caret = false;
    undo.close_run();
    DestroyCaret();
    end_drag();
    if (anchor != caret) repaint_range(low(), high());
    if (text.size() == 0 && !cue.empty()) repaint();
    draw_window_border(*this, {enabled(), hovered, false});
    notify(*this, EN_KILLFOCUS);
}

LRESULT Edit::get_selection(WPARAM start, LPARAM end) const {
    const auto from = static_cast<std::uint32_t>(low());
    const auto to = static_cast<std::uint32_t>(high());
    if (start != 0) *reinterpret_cast<std::uint32_t*>(start) = from;
    if (end != 0) *reinterpret_cast<std::uint32_t*>(end) = to;
    if (from > 0xFFFF || to > 0xFFFF) return -1;
    return static_cast<LRESULT>(from | to << 16);
}

// A start of -1 takes the selection away; an end of -1 is the end of the text. Everything selected,
// as a box is when it gets the focus, leaves the view where it is: on the beginning, mostly.
void Edit::select_by_message(WPARAM start, LPARAM end) {
    const auto from = static_cast<std::int32_t>(start);
    const auto to = static_cast<std::int32_t>(end);
    undo.close_run();
    goal_x = -1;
    if (from < 0) {
        select(caret, caret);
    } else {
        const auto place = [this](std::int32_t at) {
            return at < 0 ? text.size() : boundary(static_cast<std::size_t>(at));
        };
        select(place(from), place(to));
    }
    show_caret(!multi_line && (from != 0 || to >= 0));
}

LRESULT Edit::dialog_code(LPARAM lparam) const {
    LRESULT code = DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS;
    const auto* message = reinterpret_cast<const MSG*>(lparam);
    if (message == nullptr || (message->message != WM_KEYDOWN && message->message != WM_CHAR)) {
        return code;
    }
    const WPARAM key = message->wParam;
    const bool control = key_down(VK_CONTROL);
    if (multi_line && key == VK_RETURN && (has(ES_WANTRETURN) || control)) code |= DLGC_WANTALLKEYS;
    if (multi_line && key == VK_TAB && control) code |= DLGC_WANTALLKEYS;
    if (in_combo && (key == VK_RETURN || key == VK_ESCAPE) &&
        send_message(GetParent(hwnd), CB_GETDROPPEDSTATE, 0, 0) != 0) {
        code |= DLGC_WANTALLKEYS;
    }
    return code;
}

LRESULT Edit::handle_text(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SETTEXT:
            set_text(text_argument(lparam));
            return 1;
        case WM_GETTEXT:
            return copy_text(text.part(0, std::max<std::size_t>(wparam, 4)), wparam, lparam);
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(text.size());
        case WM_CUT:
            cut();
            return 0;
        case WM_COPY:
            return copy() ? 1 : 0;
        case WM_PASTE:
            paste();
            return 0;
        case WM_CLEAR:
            undo.close_run();
            if (!read_only) replace_selection({}, Run::none);
            return 0;
        case WM_UNDO:
        case EM_UNDO:
        case EM_REDO: {
            const bool forward = message == EM_REDO;
            if (!(forward ? undo.can_redo() : undo.can_undo())) return 0;
            step_undo(forward);
            return 1;
        }
        case EM_REPLACESEL: {
            undo.close_run();
            // What a program puts in is bound by the limit, not by the field's width.
            std::string with = as_accepted(text_argument(lparam));
            const std::size_t kept = text.size() - (high() - low());
            const bool too_long = kept + with.size() > limit;
            if (too_long) {
                std::size_t room = limit > kept ? limit - kept : 0;
                while (room > 0 && (static_cast<unsigned char>(with[room]) & 0xC0) == 0x80) --room;
                with.resize(room);
            }
            replace_selection(with, Run::none, wparam != 0);
            if (too_long && !dead) notify(*this, EN_MAXTEXT);
            return 0;
        }
        default:
            return 0;
    }
}

LRESULT Edit::handle_lines(UINT message, WPARAM wparam, LPARAM lparam) {
    const auto index = static_cast<std::int32_t>(wparam);
    switch (message) {
        case EM_GETLINECOUNT:
            return static_cast<LRESULT>(lines.count());
        case EM_LINEINDEX:
            if (index < 0) return static_cast<LRESULT>(lines.start(caret_line()));
            if (static_cast<std::size_t>(index) >= lines.count()) return -1;
            return static_cast<LRESULT>(lines.start(static_cast<std::size_t>(index)));
        case EM_LINEFROMCHAR:
            return static_cast<LRESULT>(
                lines.line_of(index < 0 ? low() : std::min<std::size_t>(wparam, text.size())));
        case EM_LINELENGTH: {
            if (index < 0) {
                // What is not selected of the lines that the selection touches.
                const std::size_t first = lines.line_of(low());
                const std::size_t last = lines.line_of(high());
                return static_cast<LRESULT>(low() - lines.start(first) + line_end(last) -
                                            std::min(high(), line_end(last)));
            }
            const std::size_t line = lines.line_of(std::min<std::size_t>(wparam, text.size()));
            return static_cast<LRESULT>(line_end(line) - lines.start(line));
        }
        case EM_GETLINE: {
            // The buffer's first word is its size; no terminator is put in.
            if (lparam == 0 || index < 0 || static_cast<std::size_t>(index) >= lines.count())
                return 0;
            auto* buffer = reinterpret_cast<unsigned char*>(lparam);
            const std::size_t room = buffer[0] | buffer[1] << 8;
            const auto line = static_cast<std::size_t>(index);
            const std::size_t end = boundary(std::min(line_end(line), lines.start(line) + room));
            const std::string part = text.part(lines.start(line), end);
            std::copy(part.begin(), part.end(), buffer);
            return static_cast<LRESULT>(part.size());
        }
        case EM_GETFIRSTVISIBLELINE:
            return multi_line ? static_cast<LRESULT>(top) : 0;
        case EM_LINESCROLL: {
            if (!multi_line) return 0;
            const std::int64_t to =
                static_cast<std::int64_t>(top) + static_cast<std::int32_t>(lparam);
            const std::int32_t step = Measure{*this}.extent("x").cx;
            scroll_to(static_cast<std::size_t>(std::max<std::int64_t>(0, to)),
                      wrap_width < 0 ? scroll_x + index * step : 0);
            return 1;
        }
        case EM_SCROLL:
        case WM_VSCROLL: {
            if (!multi_line) return 0;
            const std::size_t before = top;
            ScrollValues lines_of_text;
            lines_of_text.high =
                static_cast<std::int32_t>(std::min<std::size_t>(lines.count(), INT32_MAX)) - 1;
            lines_of_text.position =
                static_cast<std::int32_t>(std::min<std::size_t>(top, INT32_MAX));
            lines_of_text.page = static_cast<UINT>(std::max<std::size_t>(1, visible_lines() - 1));
            const auto to = static_cast<std::size_t>(
                scrolled_to(hwnd, SB_VERT, LOWORD(wparam), lines_of_text, 1));
            scroll_to(to, scroll_x);
            if (dead || message == WM_VSCROLL) return 0;
            const auto moved = static_cast<std::int32_t>(top) - static_cast<std::int32_t>(before);
            return MAKELPARAM(moved, 1);
        }
        case WM_HSCROLL: {
            if (wrap_width >= 0) return 0;
            ScrollValues pixels;
            pixels.high = static_cast<std::int32_t>(widest) + 1;
            pixels.position = scroll_x;
            pixels.page = static_cast<UINT>(std::max(0, area().width()));
            scroll_to(top, scrolled_to(hwnd, SB_HORZ, LOWORD(wparam), pixels, scroll_step));
            return 0;
        }
        default:
            return 0;
    }
}

LRESULT Edit::handle_own(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case EM_GETSEL:
            return get_selection(wparam, lparam);
        case EM_SETSEL:
            select_by_message(wparam, lparam);
            return 1;
        case EM_SCROLLCARET:
            show_caret(true);
            return 1;
        case EM_GETMODIFY:
            return modified ? 1 : 0;
        case EM_SETMODIFY:
            modified = wparam != 0;
            return 0;
        case EM_LIMITTEXT: {
            const auto wanted = static_cast<std::int32_t>(wparam);
            limit = wanted <= 0 ? unlimited : static_cast<std::size_t>(wanted);
            return 0;
        }
        case EM_GETLIMITTEXT:
            return static_cast<LRESULT>(limit);
        case EM_CANUNDO:
            return undo.can_undo() ? 1 : 0;
        case EM_CANREDO:
            return undo.can_redo() ? 1 : 0;
        case EM_EMPTYUNDOBUFFER:
            undo.clear();
            return 0;
        case EM_SETPASSWORDCHAR:
            if (multi_line) return 0;
            password = static_cast<char32_t>(wparam);
            layout.start = SIZE_MAX;
            repaint();
            show_caret(true);
            return 0;
        case EM_GETPASSWORDCHAR:
            return static_cast<LRESULT>(password);
        case EM_SETREADONLY: {
            read_only = wparam != 0;
            const std::uint32_t bits = style();
            SetWindowLong(
                hwnd, GWL_STYLE,
                static_cast<LPARAM>(read_only ? bits | ES_READONLY : bits & ~ES_READONLY));
            if (!dead) repaint();
            return 1;
        }
        case EM_SETCUEBANNER:
            if (multi_line) return 0;
            cue = text_argument(lparam);
            cue_with_focus = wparam != 0;
            repaint();
            return 1;
        case EM_GETRECT:
            if (lparam != 0) *reinterpret_cast<RECT*>(lparam) = area();
            return 0;
        case EM_POSFROMCHAR: {
            if (wparam > text.size()) return -1;
            const std::size_t at = boundary(wparam);
            const POINT point = point_of(at, multi_line ? lines.line_of(at) : 0);
            return MAKELPARAM(point.x, point.y);
        }
        case EM_CHARFROMPOS: {
            std::size_t line = 0;
            const std::size_t at = offset_at({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}, &line);
            return MAKELPARAM(static_cast<std::int32_t>(at), static_cast<std::int32_t>(line));
        }
        default:
            return 0;
    }
}

LRESULT Edit::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CREATE:
            create(*reinterpret_cast<const CREATESTRUCT*>(lparam));
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case WM_NCPAINT: {
            const LRESULT result = DefWindowProcA(hwnd, message, wparam, lparam);
            draw_window_border(*this, {enabled(), hovered, focused});
            return result;
        }
        case WM_SETFONT:
            font = HFONT{static_cast<std::int32_t>(wparam)};
            font_changed();
            if (LOWORD(static_cast<std::uintptr_t>(lparam)) != 0) repaint();
            return 0;
        case WM_GETFONT:
            return font;
        case WM_SIZE:
            if (multi_line && wraps() && std::max(1, area().width()) != wrap_width) {
                const std::size_t at = lines.start(std::min(top, lines.count() - 1));
                rebuild_lines();
                top = lines.line_of(at);
            }
            update_scroll_bars();
            if (!dead) scroll_to(top, scroll_x);
            if (!dead) show_caret(false);
            if (!dead) repaint();
            return 0;
        case WM_ENABLE:
        case WM_SYSCOLORCHANGE:
            repaint();
            draw_window_border(*this, {enabled(), hovered, focused});
            return 0;
        case WM_STYLECHANGED:
            read_only = has(ES_READONLY);
            repaint();
            return 0;
        case WM_SETFOCUS:
            gain_focus();
            return 0;
        case WM_KILLFOCUS:
            lose_focus();
            return 0;
        case WM_GETDLGCODE:
            return dialog_code(lparam);
        case WM_KEYDOWN:
            key(wparam, lparam);
            return 0;
        case WM_SYSKEYDOWN:
            if (wparam == VK_BACK && !read_only) {
                step_undo(key_down(VK_SHIFT));
                return 0;
            }
            if (in_combo && (wparam == VK_UP || wparam == VK_DOWN)) {
                return send_message(GetParent(hwnd), message, wparam, lparam);
            }
            break;
        case WM_KEYUP:
            offer_primary();
            break;
        case WM_CHAR:
        case WM_UNICHAR:
            character(typed_character(message, wparam));
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            press({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}, (wparam & MK_SHIFT) != 0,
                  message == WM_LBUTTONDBLCLK);
            return 0;
        case WM_MOUSEMOVE:
            if (!hovered) {
                hovered = true;
                draw_window_border(*this, {enabled(), true, focused});
            }
            if (dragging) drag({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
            return 0;
        case WM_MOUSELEAVE:
            hovered = false;
            draw_window_border(*this, {enabled(), false, focused});
            return 0;
        case WM_LBUTTONUP:
            end_drag();
            return 0;
        case WM_CAPTURECHANGED:
            if (dragging) {
                dragging = false;
                KillTimer(hwnd, scroll_timer);
            }
            return 0;
        case WM_TIMER:
            if (wparam == scroll_timer && dragging) {
                const RECT rect = client();
                if (multi_line && last_mouse.y < rect.top && top > 0) scroll_to(top - 1, scroll_x);
                if (multi_line && last_mouse.y >= rect.bottom) scroll_to(top + 1, scroll_x);
                if (!dead) drag(last_mouse);
                return 0;
            }
            break;
        case WM_MBUTTONDOWN:
            middle_press({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
            return 0;
        case WM_CONTEXTMENU:
            context_menu(lparam);
            return 0;
        case WM_MOUSEWHEEL: {
            if (in_combo) return send_message(GetParent(hwnd), message, wparam, lparam);
            if (!multi_line || lines.count() <= visible_lines()) break;
            const std::int32_t notches = static_cast<std::int16_t>(HIWORD(wparam));
            const std::int64_t to = static_cast<std::int64_t>(top) -
                                    std::int64_t{notches} * wheel_scroll_lines() / WHEEL_DELTA;
            scroll_to(static_cast<std::size_t>(std::max<std::int64_t>(0, to)), scroll_x);
            return 0;
        }
        case WM_DESTROY:
            KillTimer(hwnd, scroll_timer);
            break;
        case edit_in_combo:
            in_combo = true;
            return 0;
        case WM_SETTEXT:
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case WM_CUT:
        case WM_COPY:
        case WM_PASTE:
        case WM_CLEAR:
        case WM_UNDO:
        case EM_UNDO:
        case EM_REDO:
        case EM_REPLACESEL:
            return handle_text(message, wparam, lparam);
        case EM_GETLINECOUNT:
        case EM_LINEINDEX:
        case EM_LINEFROMCHAR:
        case EM_LINELENGTH:
        case EM_GETLINE:
        case EM_GETFIRSTVISIBLELINE:
        case EM_LINESCROLL:
        case EM_SCROLL:
        case WM_VSCROLL:
        case WM_HSCROLL:
            return handle_lines(message, wparam, lparam);
        case EM_GETSEL:
        case EM_SETSEL:
        case EM_SCROLLCARET:
        case EM_GETMODIFY:
        case EM_SETMODIFY:
        case EM_LIMITTEXT:
        case EM_GETLIMITTEXT:
        case EM_CANUNDO:
        case EM_CANREDO:
        case EM_EMPTYUNDOBUFFER:
        case EM_SETPASSWORDCHAR:
        case EM_GETPASSWORDCHAR:
        case EM_SETREADONLY:
        case EM_SETCUEBANNER:
        case EM_GETRECT:
        case EM_POSFROMCHAR:
        case EM_CHARFROMPOS:
            return handle_own(message, wparam, lparam);
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

LRESULT edit_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<Edit>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
