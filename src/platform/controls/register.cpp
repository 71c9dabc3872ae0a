// The classes' registration, and what each control is to somebody who can't see it.
#include <strings.h>

#include "platform/controls/control.h"
#include "platform/controls/look.h"

namespace tarn::platform {
namespace {

void add(const char* name, WNDPROC procedure, UINT style, std::int32_t cursor) {
    WNDCLASS description;
    description.style = style;
    description.lpfnWndProc = procedure;
    description.cbWndExtra = sizeof(LPARAM);
    description.hCursor = LoadSystemCursor(cursor);
    description.lpszClassName = name;
    description.utf8 = true;
    RegisterClassA(description);
}

bool is_class(HWND hwnd, const char* name) {
    char actual[32];
    return GetClassNameA(hwnd, actual, sizeof actual) > 0 && strcasecmp(actual, name) == 0;
}

// The label of a field: the text that stands before it.
std::string label_before(HWND hwnd) {
    const HWND before = GetWindow(hwnd, GW_HWNDPREV);
    if (before == 0 || !is_class(before, "static")) return {};
    std::string text = without_mnemonics(window_text(before));
    while (!text.empty() && (text.back() == ' ' || text.back() == ':')) text.pop_back();
    return text;
}

std::string list_selection(HWND hwnd) {
    const LRESULT count = send_message(hwnd, LB_GETCOUNT, 0, 0);
    std::string value;
    std::string item;
    constexpr std::size_t enough = 1000;
    for (LRESULT i = 0; i < count && value.size() < enough; ++i) {
        if (send_message(hwnd, LB_GETSEL, static_cast<WPARAM>(i), 0) <= 0) continue;
        item.resize(
            static_cast<std::size_t>(send_message(hwnd, LB_GETTEXTLEN, static_cast<WPARAM>(i), 0)));
        send_message(hwnd, LB_GETTEXT, static_cast<WPARAM>(i),
                     reinterpret_cast<LPARAM>(item.data()));
        if (!value.empty()) value += ", ";
        value += item;
    }
    return value;
}

void button_facts(HWND hwnd, ControlFacts& facts) {
    const auto style = static_cast<std::uint32_t>(GetWindowLong(hwnd, GWL_STYLE));
    facts.name = without_mnemonics(window_text(hwnd));
    switch (style & 0x0F) {
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
        case BS_3STATE:
        case BS_AUTO3STATE:
            facts.role = "check box";
            break;
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
            facts.role = "radio button";
            break;
        case BS_GROUPBOX:
            facts.role = "group";
            break;
        case BS_OWNERDRAW: {
            // What its parent draws and the keyboard never reaches is a picture.
            const bool reached = (GetWindowLong(hwnd, GWL_STYLE) & WS_TABSTOP) != 0;
            facts.role = reached ? "button" : "image";
            break;
        }
        default:
            facts.role = "button";
            break;
    }
    facts.checked = send_message(hwnd, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void edit_facts(HWND hwnd, ControlFacts& facts) {
    const bool secret = send_message(hwnd, EM_GETPASSWORDCHAR, 0, 0) != 0;
    facts.role = secret ? "password field" : "text field";
    facts.name = label_before(hwnd);
    facts.value = window_text(hwnd);
    if (secret) facts.value.assign(facts.value.size(), '*');
}

}  // namespace

void register_standard_controls() {
    WNDCLASS known;
    if (GetClassInfoA("button", known)) return;
    add("button", button_procedure, CS_DBLCLKS, IDC_ARROW);
    add("static", static_procedure, CS_DBLCLKS, IDC_ARROW);
    add("edit", edit_procedure, CS_DBLCLKS, IDC_IBEAM);
    add("listbox", listbox_procedure, CS_DBLCLKS, IDC_ARROW);
    add("combolbox", listbox_procedure, CS_DBLCLKS | CS_DROPSHADOW, IDC_ARROW);
    add("combobox", combobox_procedure, CS_DBLCLKS, IDC_ARROW);
    add("scrollbar", scrollbar_procedure, CS_DBLCLKS, IDC_ARROW);
}

ControlFacts control_facts(HWND hwnd) {
    ControlFacts facts;
    facts.enabled = IsWindowEnabled(hwnd);
    facts.visible = IsWindowVisible(hwnd);
    const HWND focus = GetFocus();
    facts.focused = focus != 0 && focus == hwnd;
    if (is_class(hwnd, "button")) {
        button_facts(hwnd, facts);
    } else if (is_class(hwnd, "static")) {
        const auto type = static_cast<std::uint32_t>(GetWindowLong(hwnd, GWL_STYLE)) & 0x1F;
        const bool picture = type == SS_ICON || type == SS_BITMAP;
        const bool words = type <= SS_RIGHT || type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP;
        facts.role = picture ? "image" : words ? "label" : "separator";
        facts.name = without_mnemonics(window_text(hwnd));
    } else if (is_class(hwnd, "edit")) {
        edit_facts(hwnd, facts);
    } else if (is_class(hwnd, "listbox") || is_class(hwnd, "combolbox")) {
        facts.role = "list";
        facts.name = label_before(hwnd);
        facts.value = list_selection(hwnd);
    } else if (is_class(hwnd, "combobox")) {
        facts.role = "combo box";
        facts.name = label_before(hwnd);
        facts.value = window_text(hwnd);
        facts.focused = focus != 0 && (focus == hwnd || IsChild(hwnd, focus));
    } else if (is_class(hwnd, "scrollbar")) {
        facts.role = "scroll bar";
        facts.value = std::to_string(GetScrollPos(hwnd, SB_CTL));
    } else {
        facts.name = window_text(hwnd);
        facts.role = GetWindowLong(hwnd, GWL_STYLE) & WS_CHILD ? "pane" : "window";
    }
    return facts;
}

}  // namespace tarn::platform
