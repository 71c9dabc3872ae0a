// The second window of a report, for who knows the machine: registers, instructions, memory, the
// floating-point units.
#include "diagnostics/stretch.h"
#include "diagnostics/windows.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/module.h"
#include "platform/user/menus.h"
#include "platform/user/user.h"

namespace tarn::diagnostics {

using namespace platform;

namespace {

enum Item : std::int32_t {
    exit_button = 2,
    copy_button = 110,
    back_button = 141,
    old_button = 142,
    memory_button = 143,
    floating_button = 145,
    icon_item = 401,
    callers_item = 402,
    detail_item = 404,
    headline_item = 405,
    registers_item = 406,
    instructions_item = 407,
    callers_label = 408,
    registers_group = 409,
    instructions_group = 410,
};

struct State {
    const Report* shown = nullptr;
    Stretch stretch;
    std::uint64_t first_instruction = 0;
    WNDPROC edit = nullptr;  // of the edit boxes
};
State& window_state() {
    static State state;
    return state;
}

// Letters mean the buttons in the edit boxes too, which take no text.
LRESULT edit_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_CHAR) {
        const WPARAM letter = wparam | 0x20;
        if (letter == 'c' || letter == 'x') {
            SendMessageA(GetParent(edit), WM_COMMAND, letter == 'c' ? copy_button : exit_button, 0);
            return 0;
        }
    }
    return CallWindowProcA(window_state().edit, edit, message, wparam, lparam);
}

void watch_letters(HWND edit) {
    const LPARAM before =
        SetWindowLong(edit, GWL_WNDPROC, reinterpret_cast<LPARAM>(edit_procedure));
    window_state().edit = reinterpret_cast<WNDPROC>(before);
}

void fill(HWND window, const Report& report) {
    show_headline(window, icon_item, headline_item, report.headline);
    show_text(window, detail_item, report.detail);
    show_text(window, callers_item, report.callers);
    show_columns(window, registers_item, report.registers);
    show_columns(window, instructions_item, report.instructions);
    for (Item each : {callers_item, instructions_item}) watch_letters(GetDlgItem(window, each));
    const HMENU menu = GetSystemMenu(window, false);
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu, MF_STRING, copy_button, "Copy to Cli&pboard");
    // What is more of the height goes to the callers.
    window_state().stretch.begin(window, {{headline_item, false, false, true, false},
                                          {detail_item, false, false, true, false},
                                          {callers_item, false, false, true, true},
                                          {registers_group, false, true, true, false},
                                          {registers_item, false, true, true, false},
                                          {instructions_group, false, true, true, false},
                                          {instructions_item, false, true, true, false},
                                          {copy_button, false, true, false, false},
                                          {back_button, false, true, false, false},
                                          {floating_button, false, true, false, false},
                                          {memory_button, false, true, false, false},
                                          {old_button, false, true, false, false},
                                          {exit_button, true, true, false, false}});
    SetFocus(GetDlgItem(window, exit_button));
}

// One byte lower: what stands before the fault reads differently from each start, until the right
// one is found.
void move_back(HWND window, const Report& report) {
    std::uint64_t& first = window_state().first_instruction;
    if (first > 0) --first;
    show_columns(window, instructions_item, instructions_from(report, first));
}

std::intptr_t command(HWND window, std::int32_t id, const Report& report) {
    switch (id) {
        case exit_button:
            EndDialog(window, exit_button);
            return 1;
        case copy_button:
            set_clipboard_text(copied_text(report));
            return 1;
        case old_button:
            message_box(window, whole_text(report), "Old Style Information [Temporary]", MB_OK);
            return 1;
        case floating_button:
            run_floating_window(window, report);
            return 1;
        case memory_button:
            run_memory_window(window, report.memory);
            return 1;
        case back_button:
            move_back(window, report);
            return 1;
        default:
            return 0;
    }
}

// Registers are eight lines.
DialogTemplate exception_template(const Report& report, const char* title) {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    constexpr DWORD button = shown | WS_TABSTOP;
    constexpr DWORD plain = shown | ES_MULTILINE | ES_READONLY;
    const std::int32_t detail = 8 * label_lines(report.detail, 102);
    const std::int32_t callers = 34 + detail;
    const std::int32_t registers = callers + 68;
    const std::int32_t instructions = registers + 84;
    const std::int32_t buttons = instructions + 84;
    const DWORD listing = box_style({}, 0, 0) | WS_VSCROLL;
    const DWORD callers_box = box_style(report.callers, 6, 106);
    return {
        title,
        361,
        buttons + 27,
        WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME,
        WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
        {{"static", "", icon_item, 10, 9, 20, 20, shown | SS_ICON, 0},
         {"static", "", headline_item, 36, 9, 314, 15, shown | SS_NOPREFIX, 0},
         {"static", "", detail_item, 36, 26, 314, detail, shown | SS_NOPREFIX, 0},
         {"static", "Function Traceback:", callers_label, 10, callers, 200, 9, shown, 0},
         {"edit", "", callers_item, 10, callers + 10, 340, 50, callers_box, 0},
         {"edit", "", registers_item, 18, registers + 11, 324, 64, plain, 0},
         {"edit", "", instructions_item, 18, instructions + 11, 324, 58, listing, 0},
         {"button", "&Copy", copy_button, 10, buttons, 50, 16, button, 0},
         {"button", "&Back", back_button, 66, buttons, 50, 16, button, 0},
         {"button", "&Floating Point...", floating_button, 122, buttons, 74, 16, button, 0},
         {"button", "&Memory...", memory_button, 202, buttons, 52, 16, button, 0},
         {"button", "&Old", old_button, 260, buttons, 36, 16, button, 0},
         {"button", "E&xit", exit_button, 302, buttons, 48, 16, button | BS_DEFPUSHBUTTON, 0},
         // Below what they hold.
         {"button", "Registers", registers_group, 10, registers, 340, 78, shown | BS_GROUPBOX, 0},
         {"button", "Instructions", instructions_group, 10, instructions, 340, 76,
          shown | BS_GROUPBOX, 0}}};
}

std::string in_capitals(std::string text) {
    for (char& each : text) {
        if (each >= 'a' && each <= 'z') each = static_cast<char>(each - 'a' + 'A');
    }
    return text;
}

}  // namespace

std::intptr_t exception_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const Report* const report = window_state().shown;
    if (report == nullptr) return 0;
    if (window_state().stretch.take(window, message, lparam)) return 1;
    switch (message) {
        case WM_INITDIALOG:
            fill(window, *report);
            return 0;
        case WM_COMMAND:
            return command(window, LOWORD(wparam), *report);
        case WM_SYSCOMMAND:
            return wparam == copy_button ? command(window, copy_button, *report) : 0;
        case WM_CTLCOLORSTATIC:
            return box_colours(window, wparam, lparam);
        default:
            return 0;
    }
}

bool run_exception_window(const Report& report) {
    State& state = window_state();
    state.shown = &report;
    state.stretch = {};
    state.first_instruction = report.context.instruction;
    const std::string title = "Exception: " + in_capitals(program_path());
    const std::intptr_t result =
        DialogBoxParamA(exception_template(report, title.c_str()), HWND{}, exception_procedure, 0);
    state.shown = nullptr;
    return result >= 0;
}

}  // namespace tarn::diagnostics
