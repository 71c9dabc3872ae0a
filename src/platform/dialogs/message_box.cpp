// Message boxes.
//
// With nobody to ask (a display that nobody watches, and no script) the text goes to standard error
// and the answer is the one that changes nothing: Cancel where it is offered, otherwise No, Ignore
// or OK.
#include <algorithm>
#include <cstdio>
#include <string>

#include "platform/base/text.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"

namespace tarn::platform {

namespace {

struct Button {
    std::int32_t id;
    const char* text;
};
struct Buttons {
    Button all[3];
    std::int32_t count;
    std::int32_t quiet;  // the answer that changes nothing; also what closing the box means
};

const Buttons& buttons_of(UINT kind) {
    static constexpr Buttons sets[] = {
        {{{IDOK, "OK"}}, 1, IDOK},
        {{{IDOK, "OK"}, {IDCANCEL, "Cancel"}}, 2, IDCANCEL},
        {{{IDABORT, "&Abort"}, {IDRETRY, "&Retry"}, {IDIGNORE, "&Ignore"}}, 3, IDIGNORE},
        {{{IDYES, "&Yes"}, {IDNO, "&No"}, {IDCANCEL, "Cancel"}}, 3, IDCANCEL},
        {{{IDYES, "&Yes"}, {IDNO, "&No"}}, 2, IDNO},
        {{{IDRETRY, "&Retry"}, {IDCANCEL, "Cancel"}}, 2, IDCANCEL},
    };
    const UINT which = kind & 0xF;
    return sets[which < std::size(sets) ? which : 0];
}

std::int32_t icon_of(UINT kind) {
    switch (kind & 0xF0) {
        case MB_ICONHAND:
            return IDI_HAND;
        case MB_ICONQUESTION:
            return IDI_QUESTION;
        case MB_ICONEXCLAMATION:
            return IDI_EXCLAMATION;
        case MB_ICONASTERISK:
            return IDI_ASTERISK;
        default:
            return 0;
    }
}

struct Box {
    std::string text;
    const Buttons* buttons;
    bool closable;
};
struct BoxState {
    Box* open = nullptr;
};
BoxState& boxes() {
    static BoxState all;
    return all;
}

constexpr std::int32_t text_id = 0x6000, icon_id = 0x6001;
constexpr std::int32_t margin = 8, icon_size = 16, button_height = 14, gap = 4;
constexpr std::int32_t widest_text = 420;  // pixels; longer lines wrap

void copy_text(const Box& box, HWND dialog) {
    if (!OpenClipboard(dialog)) return;
    EmptyClipboard();
    set_clipboard_text(window_text(dialog) + "\n\n" + box.text + "\n");
    CloseClipboard();
}

std::intptr_t box_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    const Box* box = boxes().open;
    if (box == nullptr) return 0;
    switch (message) {
        case WM_COMMAND: {
            const std::int32_t id = LOWORD(wparam);
            if (id == IDCANCEL && box->closable) EndDialog(dialog, box->buttons->quiet);
            for (std::int32_t i = 0; i < box->buttons->count; ++i)
                if (box->buttons->all[i].id == id) EndDialog(dialog, id);
            return 1;
        }
        case WM_COPY:
            copy_text(*box, dialog);
            return 1;
        default:
            return 0;
    }
}

SIZE measure(std::string_view text) {
    const HDC dc = GetDC(HWND{});
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    RECT rect{0, 0, widest_text, 0};
    draw_text(dc, text, rect, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
    ReleaseDC(HWND{}, dc);
    return {rect.width(), rect.height()};
}

std::int32_t units(std::int32_t pixels) {
    return (pixels + 1) / 2;
}

// Icon and text above, buttons at the right below.
DialogTemplate lay_out(const Box& box, const std::string& caption, UINT kind, UINT default_button) {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    const SIZE text = measure(box.text);
    const std::int32_t icon = icon_of(kind);
    const std::int32_t text_x = margin + (icon != 0 ? icon_size + margin : 0);
    std::int32_t widths[3], row = 0;
    for (std::int32_t i = 0; i < box.buttons->count; ++i) {
        widths[i] = std::max(44, units(measure(box.buttons->all[i].text).cx) + 16);
        row += widths[i] + (i > 0 ? gap : 0);
    }
    const std::int32_t width =
        std::max({text_x + units(text.cx) + 2 + margin, row + 2 * margin, 100});
    const std::int32_t body = std::max(units(text.cy), icon != 0 ? icon_size : 0);
    DialogTemplate pattern{caption.c_str(),
                           width,
                           margin + body + margin + button_height + margin,
                           WS_POPUP | WS_CAPTION | WS_SYSMENU,
                           WS_EX_DLGMODALFRAME,
                           {}};
    if (icon != 0)
        pattern.items.push_back(
            {"static", "", icon_id, margin, margin, icon_size, icon_size, shown | SS_ICON, 0});
    const std::int32_t text_y = margin + std::max(0, (body - units(text.cy)) / 2);
    pattern.items.push_back({"static", box.text.c_str(), text_id, text_x, text_y,
                             units(text.cx) + 2, units(text.cy) + 1, shown | SS_NOPREFIX, 0});
    std::int32_t x = width - margin - row;
    for (std::int32_t i = 0; i < box.buttons->count; ++i) {
        DWORD style = shown | WS_TABSTOP;
        if (static_cast<UINT>(i) == default_button) style |= BS_DEFPUSHBUTTON;
        pattern.items.push_back({"button", box.buttons->all[i].text, box.buttons->all[i].id, x,
                                 margin + body + margin, widths[i], button_height, style, 0});
        x += widths[i] + gap;
    }
    return pattern;
}

struct Start {
    std::int32_t icon;
    std::int32_t focus;
};

std::intptr_t start_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message != WM_INITDIALOG) return box_procedure(dialog, message, wparam, lparam);
    const Start& start = *reinterpret_cast<const Start*>(lparam);
    if (start.icon != 0)
        send_message(GetDlgItem(dialog, icon_id), STM_SETICON,
                     static_cast<WPARAM>(LoadSystemIcon(start.icon)), 0);
    SetFocus(GetDlgItem(dialog, start.focus));
    return 0;
}

}  // namespace

std::int32_t message_box(HWND owner, std::string_view utf8, std::string_view caption, UINT kind) {
    const Buttons& buttons = buttons_of(kind);
    Box box{std::string(utf8), &buttons, buttons.count == 1 || (kind & 0xF) != MB_YESNO};
    const std::string title(caption);
    if (!can_ask()) {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), box.text.c_str());
        return buttons.quiet;
    }
    const UINT wanted = (kind >> 8) & 0xF;
    const UINT default_button = wanted < static_cast<UINT>(buttons.count) ? wanted : 0;
    Start start{icon_of(kind), buttons.all[default_button].id};
    Box* outer = boxes().open;
    boxes().open = &box;
    MessageBeep(kind & 0xF0);
    const std::intptr_t answer = DialogBoxParamA(lay_out(box, title, kind, default_button), owner,
                                                 start_procedure, reinterpret_cast<LPARAM>(&start));
    boxes().open = outer;
    return answer > 0 ? static_cast<std::int32_t>(answer) : buttons.quiet;
}

std::int32_t MessageBoxA(HWND owner, const char* text, const char* caption, UINT kind) {
    return message_box(owner, utf8_from_page(text != nullptr ? text : ""),
                       utf8_from_page(caption != nullptr ? caption : "Error"), kind);
}

}  // namespace tarn::platform
