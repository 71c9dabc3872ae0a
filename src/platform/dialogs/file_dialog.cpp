// Choosing files: a folder, what lies in it, a field for the name, and which files are shown.
//
// Everything can be done by keys: the name field has the focus first and takes paths, patterns and
// "~"; in the list Return goes into a folder, Backspace and Alt+Up out of it, F5 reads it anew and
// Ctrl+H shows the files whose names begin with a dot.
#include "platform/dialogs/file_dialog.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/base/text.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/dialogs/file_list.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"

namespace tarn::platform {

namespace {

enum : std::int32_t {
    folder_label = 0x6100,
    folder_box,
    up_button,
    list_header,
    file_list,
    name_label,
    name_field,
    type_label,
    type_box,
    read_only_box,
};

struct Filter {
    std::string name, patterns;
};

struct FileDialog {
    OPENFILENAME& request;
    bool saving;
    std::vector<Filter> filters;
    std::vector<std::string> places;  // behind the lines of the folder box
    FileList list;
    std::string typed_patterns;  // typed into the name field; instead of the filter's
    // What was put into the name field for the selected rows: while it stands there the names are
    // these, whether or not they could be told as text.
    std::string shown_names;
    std::vector<std::string> selected_names;
    WNDPROC list_procedure = nullptr;
    bool hidden = false;

    bool multiple() const { return (request.Flags & OFN_ALLOWMULTISELECT) != 0 && !saving; }
};

struct FileDialogState {
    std::string last_folder;
    DWORD error = 0;
};
FileDialogState& state() {
    static FileDialogState* const all = new FileDialogState;  // not taken apart before the end
    return *all;
}

FileDialog* dialog_of(HWND dialog) {
    return reinterpret_cast<FileDialog*>(GetWindowLong(dialog, GWL_USERDATA));
}

HWND item(HWND dialog, std::int32_t id) {
    return GetDlgItem(dialog, id);
}

LRESULT ask(HWND dialog, std::int32_t id, UINT message, std::intptr_t wparam = 0,
            LPARAM lparam = 0) {
    return send_message(item(dialog, id), message, static_cast<WPARAM>(wparam), lparam);
}

void add_line(HWND dialog, std::int32_t id, const std::string& text) {
    ask(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void tell(HWND dialog, const std::string& text) {
    message_box(dialog, text, window_text(dialog), MB_OK | MB_ICONEXCLAMATION);
}

std::string trimmed(std::string text) {
    text.erase(0, text.find_first_not_of(' '));
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

std::vector<Filter> split_filters(const std::string& pairs) {
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < pairs.size();) {
        const std::size_t end = std::min(pairs.find('\0', at), pairs.size());
        texts.push_back(pairs.substr(at, end - at));
        at = end + 1;
    }
    std::vector<Filter> filters;
    for (std::size_t i = 0; i + 1 < texts.size(); i += 2) {
        // A name that doesn't tell its patterns gets them.
        const bool told = texts[i].find('(') != std::string::npos;
        filters.push_back({told ? texts[i] : texts[i] + " (" + texts[i + 1] + ")", texts[i + 1]});
    }
    if (filters.empty()) filters.push_back({"All files (*)", "*"});
    return filters;
}

// ---- The folder --------------------------------------------------------------------------------
const std::string& patterns_now(HWND dialog, const FileDialog& d) {
    if (!d.typed_patterns.empty()) return d.typed_patterns;
    const auto which =
        static_cast<std::size_t>(std::max<LRESULT>(ask(dialog, type_box, CB_GETCURSEL), 0));
    return d.filters[std::min(which, d.filters.size() - 1)].patterns;
}

// The folder itself, those around it, and where people keep their files.
void fill_folder_box(HWND dialog, FileDialog& d) {
    d.places.clear();
    for (std::string at = d.list.folder;; at = folder_of(at)) {
        d.places.push_back(at);
        if (at == "/") break;
    }
    const std::string home = home_folder();
    for (const char* inside : {"", "/Desktop", "/Documents", "/Downloads"}) {
        const std::string place = home + inside;
        if (std::find(d.places.begin(), d.places.end(), place) == d.places.end() &&
            is_folder(place))
            d.places.push_back(place);
    }
    ask(dialog, folder_box, CB_RESETCONTENT);
    for (const std::string& place : d.places) add_line(dialog, folder_box, shown_name(place));
    ask(dialog, folder_box, CB_SETCURSEL, 0);
    EnableWindow(item(dialog, up_button), d.list.folder != "/");
}

void fill_list(HWND dialog, const FileDialog& d) {
    ask(dialog, file_list, LB_RESETCONTENT);
    for (const FolderEntry& entry : d.list.entries)
        ask(dialog, file_list, LB_ADDSTRING, 0,
            reinterpret_cast<LPARAM>(shown_name(entry.name).c_str()));
    InvalidateRect(item(dialog, file_list), nullptr, true);
}

bool show_folder(HWND dialog, FileDialog& d, const std::string& path) {
    std::vector<FolderEntry> found;
    if (!read_folder(path, patterns_now(dialog, d), d.hidden, found)) {
        tell(dialog,
             shown_name(path) + "\nThis folder can't be read: " + std::strerror(errno) + ".");
        return false;
    }
    d.list.set(path, std::move(found));
    d.selected_names.clear();
    fill_folder_box(dialog, d);
    fill_list(dialog, d);
    return true;
}

void put_caret_on(HWND dialog, const FileDialog& d, std::string_view name) {
    const auto& entries = d.list.entries;
    if (entries.empty()) return;
    std::size_t at = 0;
    while (at < entries.size() && entries[at].name != name) ++at;
    if (at == entries.size()) at = 0;
    const auto row = static_cast<std::intptr_t>(at);
    ask(dialog, file_list, d.multiple() ? LB_SETCARETINDEX : LB_SETCURSEL, row);
}

void go_up(HWND dialog, FileDialog& d) {
    const std::string before = d.list.folder;
    if (before == "/" || !show_folder(dialog, d, folder_of(before))) return;
    put_caret_on(dialog, d, name_of(before));
}

void read_again(HWND dialog, FileDialog& d) {
    show_folder(dialog, d, d.list.folder);
}

// ---- The selection -----------------------------------------------------------------------------
std::vector<std::size_t> selected_rows(HWND dialog, const FileDialog& d) {
    std::vector<std::size_t> rows;
    const LRESULT count = ask(dialog, file_list, LB_GETCOUNT);
    for (LRESULT i = 0; i < count && static_cast<std::size_t>(i) < d.list.entries.size(); ++i)
        if (ask(dialog, file_list, LB_GETSEL, i) > 0) rows.push_back(static_cast<std::size_t>(i));
    return rows;
}

void selection_changed(HWND dialog, FileDialog& d) {
    d.selected_names.clear();
    std::string shown;
    for (const std::size_t row : selected_rows(dialog, d)) {
        const FolderEntry& entry = d.list.entries[row];
        if (entry.folder) continue;
        if (!d.selected_names.empty()) shown += ' ';
        shown.append("\"").append(shown_name(entry.name)).append("\"");
        d.selected_names.push_back(entry.name);
    }
    if (d.selected_names.empty()) return;
    if (d.selected_names.size() == 1) shown = shown_name(d.selected_names[0]);
    d.shown_names = shown;
    set_window_text(item(dialog, name_field), shown);
}

// The folder that is the one selected row; null for none.
const FolderEntry* selected_folder(HWND dialog, const FileDialog& d) {
    const std::vector<std::size_t> rows = selected_rows(dialog, d);
    if (rows.size() != 1 || !d.list.entries[rows[0]].folder) return nullptr;
    return &d.list.entries[rows[0]];
}

bool enter_selected(HWND dialog, FileDialog& d) {
    const FolderEntry* entry = selected_folder(dialog, d);
    if (!entry) return false;
    if (show_folder(dialog, d, absolute_path(d.list.folder, entry->name)))
        put_caret_on(dialog, d, "");
    return true;
}

// ---- The answer --------------------------------------------------------------------------------
enum class Verdict : std::uint8_t { good, refused };

Verdict judge_saving(HWND dialog, const FileDialog& d, const std::string& path, bool exists) {
    if (!is_folder(folder_of(path))) {
        tell(dialog, shown_name(folder_of(path)) + "\nThere is no such folder.");
        return Verdict::refused;
    }
    if (!exists || (d.request.Flags & OFN_OVERWRITEPROMPT) == 0) return Verdict::good;
    const std::string question =
        shown_name(name_of(path)) + " exists already.\nDo you want to replace it?";
    const bool yes = message_box(dialog, question, window_text(dialog),
                                 MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
    return yes ? Verdict::good : Verdict::refused;
}

Verdict judge_opening(HWND dialog, const FileDialog& d, const std::string& path, bool exists) {
    const DWORD flags = d.request.Flags;
    if (exists) return Verdict::good;
    if ((flags & OFN_CREATEPROMPT) != 0) {
        const std::string question =
            shown_name(name_of(path)) + " doesn't exist.\nDo you want to make it?";
        const bool yes =
            message_box(dialog, question, window_text(dialog), MB_YESNO | MB_ICONQUESTION) == IDYES;
        return yes ? Verdict::good : Verdict::refused;
    }
    if ((flags & (OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST)) != 0 && !is_folder(folder_of(path))) {
        tell(dialog, shown_name(folder_of(path)) + "\nThere is no such folder.");
        return Verdict::refused;
    }
    if ((flags & OFN_FILEMUSTEXIST) == 0) return Verdict::good;
    tell(dialog, shown_name(path) + "\nThere is no such file. Look at its name again.");
    return Verdict::refused;
}

Verdict judge(HWND dialog, const FileDialog& d, const std::string& path) {
    const bool exists = access(path.c_str(), F_OK) == 0;
    return d.saving ? judge_saving(dialog, d, path, exists)
                    : judge_opening(dialog, d, path, exists);
}

void finish(HWND dialog, FileDialog& d, std::vector<std::string> paths) {
    OPENFILENAME& request = d.request;
    request.files = std::move(paths);
    request.nFilterIndex =
        static_cast<std::uint32_t>(std::max<LRESULT>(ask(dialog, type_box, CB_GETCURSEL), 0)) + 1;
    request.Flags &= ~OFN_READONLY;
    if (item(dialog, read_only_box) != 0 && ask(dialog, read_only_box, BM_GETCHECK) == BST_CHECKED)
        request.Flags |= OFN_READONLY;
    state().last_folder = folder_of(request.files[0]);
    EndDialog(dialog, IDOK);
}

// A pattern shows other files, a folder's name goes there. True: the field meant one of the two.
bool moves_view(HWND dialog, FileDialog& d, const std::string& name) {
    const std::string path = absolute_path(d.list.folder, name);
    const HWND field = item(dialog, name_field);
    if (has_wildcard(name_of(name)) && access(path.c_str(), F_OK) != 0) {
        const std::string before = std::exchange(d.typed_patterns, name_of(name));
        const bool elsewhere = name.find('/') != std::string::npos;
        if (!show_folder(dialog, d, elsewhere ? folder_of(path) : d.list.folder))
            d.typed_patterns = before;
    } else if (is_folder(path)) {
        if (show_folder(dialog, d, path)) set_window_text(field, "");
    } else {
        return false;
    }
    send_message(field, EM_SETSEL, 0, -1);
    return true;
}

void accept(HWND dialog, FileDialog& d) {
    if (GetFocus() == item(dialog, file_list) && enter_selected(dialog, d)) return;
    const std::string typed = trimmed(window_text(item(dialog, name_field)));
    std::vector<std::string> names = split_names(typed);
    if (!d.selected_names.empty() && typed == d.shown_names) names = d.selected_names;
    if (names.empty()) {
        SetFocus(item(dialog, name_field));
        return;
    }
    if (names.size() == 1 && moves_view(dialog, d, names[0])) return;
    if (names.size() > 1 && !d.multiple()) names.resize(1);
    std::vector<std::string> paths;
    for (const std::string& name : names) {
        std::string path = absolute_path(d.list.folder, name);
        if (is_folder(path)) continue;
        if (judge(dialog, d, path) == Verdict::refused) {
            if (!IsWindow(dialog)) return;
            SetFocus(item(dialog, name_field));
            ask(dialog, name_field, EM_SETSEL, 0, -1);
            return;
        }
        paths.push_back(std::move(path));
    }
    if (!paths.empty()) finish(dialog, d, std::move(paths));
}

// ---- Places ------------------------------------------------------------------------------------
constexpr std::int32_t margin = 12, gap = 8, field_height = 26, label_width = 92, button_width = 96,
                       button_height = 28, header_height = 20, combo_edge = 2;
constexpr std::int32_t least_width = 460, least_height = 320;

void place(HWND dialog, std::int32_t id, std::int32_t x, std::int32_t y, std::int32_t width,
           std::int32_t height) {
    if (const HWND control = item(dialog, id)) MoveWindow(control, x, y, width, height, true);
}

void lay_out(HWND dialog) {
    constexpr std::int32_t drop_height = 240, label_drop = 5;
    RECT client;
    GetClientRect(dialog, client);
    const std::int32_t right = client.right - margin;
    std::int32_t y = margin;
    place(dialog, folder_label, margin, y + label_drop, label_width - gap, 18);
    place(dialog, folder_box, margin + label_width, y,
          right - margin - label_width - button_width - gap, drop_height);
    place(dialog, up_button, right - button_width, y - 1, button_width, button_height);
    y += field_height + gap;
    place(dialog, list_header, margin + 8, y + 1, label_width, header_height - 2);
    y += header_height;
    const bool box = item(dialog, read_only_box) != 0;
    const std::int32_t below = 2 * (button_height + gap) + (box ? field_height : 0) + margin;
    place(dialog, file_list, margin, y, right - margin, client.bottom - below - y);
    y = client.bottom - below + gap;
    const std::int32_t field_width = right - margin - label_width - button_width - gap;
    place(dialog, name_label, margin, y + label_drop, label_width - gap, 18);
    place(dialog, name_field, margin + label_width, y, field_width, field_height);
    place(dialog, IDOK, right - button_width, y - 1, button_width, button_height);
    y += button_height + gap;
    place(dialog, type_label, margin, y + label_drop, label_width - gap, 18);
    place(dialog, type_box, margin + label_width, y, field_width, drop_height);
    place(dialog, IDCANCEL, right - button_width, y - 1, button_width, button_height);
    InvalidateRect(dialog, nullptr, true);
    y += button_height + 2;
    place(dialog, read_only_box, margin + label_width, y, field_width, field_height - 4);
}

// The names of the columns stand above them, on the dialog itself.
void paint_ground(HWND dialog, HDC dc) {
    RECT client, list;
    GetClientRect(dialog, client);
    FillRect(dc, client, GetSysColorBrush(COLOR_BTNFACE));
    if (!GetWindowRect(item(dialog, file_list), list)) return;
    POINT corner{list.left, list.top};
    ScreenToClient(dialog, corner);
    draw_column_names(dc, {corner.x, corner.y - header_height, corner.x + list.width(), corner.y});
}

DialogTemplate pattern_of(const FileDialog& d, const std::string& title) {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    constexpr DWORD stop = shown | WS_TABSTOP;
    constexpr DWORD drop = stop | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_HASSTRINGS;
    constexpr DWORD list = stop | WS_VSCROLL | WS_BORDER | LBS_NOTIFY | LBS_OWNERDRAWFIXED |
                           LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT;
    DialogTemplate pattern{
        title.c_str(),
        300,
        210,
        WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME,
        0,
        {{"static", d.saving ? "Save &in:" : "Look &in:", folder_label, 0, 0, 40, 9, shown, 0},
         {"combobox", "", folder_box, 0, 0, 40, 100, drop, 0},
         {"button", "&Up", up_button, 0, 0, 40, 14, stop, 0},
         {"static", "Files", list_header, 0, 0, 40, 10, shown, 0},
         {"listbox", "", file_list, 0, 0, 40, 40, list | (d.multiple() ? LBS_EXTENDEDSEL : 0), 0},
         {"static", "File &name:", name_label, 0, 0, 40, 9, shown, 0},
         {"edit", "", name_field, 0, 0, 40, 13, stop | WS_BORDER | ES_AUTOHSCROLL, 0},
         {"button", d.saving ? "&Save" : "&Open", IDOK, 0, 0, 40, 14, stop | BS_DEFPUSHBUTTON, 0},
         {"static", "Files of &type:", type_label, 0, 0, 40, 9, shown, 0},
         {"combobox", "", type_box, 0, 0, 40, 100, drop, 0},
         {"button", "Cancel", IDCANCEL, 0, 0, 40, 14, stop, 0}}};
    if ((d.request.Flags & OFN_HIDEREADONLY) == 0 && !d.saving)
        pattern.items.push_back({"button", "Open as &read-only", read_only_box, 0, 0, 40, 10,
                                 stop | BS_AUTOCHECKBOX, 0});
    return pattern;
}

// ---- Messages ----------------------------------------------------------------------------------
LRESULT list_keys(HWND list, UINT message, WPARAM wparam, LPARAM lparam) {
    const HWND dialog = GetParent(list);
    FileDialog* d = dialog_of(dialog);
    if (!d) return DefWindowProcA(list, message, wparam, lparam);
    if (message == WM_SYSKEYDOWN && wparam == VK_UP) {
        go_up(dialog, *d);
        return 0;
    }
    if (message == WM_KEYDOWN) {
        const bool control = GetKeyState(VK_CONTROL) < 0;
        if (wparam == VK_BACK) go_up(dialog, *d);
        if (wparam == VK_F5) read_again(dialog, *d);
        if (wparam == 'H' && control) {
            d->hidden = !d->hidden;
            read_again(dialog, *d);
        }
        if (wparam == VK_BACK || wparam == VK_F5 || (wparam == 'H' && control)) return 0;
    }
    if (message == WM_CHAR && wparam < ' ') return 0;  // of the keys above
    return CallWindowProcA(d->list_procedure, list, message, wparam, lparam);
}

std::string first_folder(const OPENFILENAME& request) {
    char current[4096];
    const std::string here = getcwd(current, sizeof current) ? current : "/";
    const std::string given = folder_of(request.lpstrFile);
    for (const std::string& wanted : {given, request.lpstrInitialDir, state().last_folder}) {
        if (wanted.empty()) continue;
        std::string path = absolute_path(here, wanted);
        if (is_folder(path) && access(path.c_str(), R_OK | X_OK) == 0) return path;
    }
    return access(here.c_str(), R_OK | X_OK) == 0 ? here : "/";
}

void start(HWND dialog, FileDialog& d) {
    SetWindowLong(dialog, GWL_USERDATA, reinterpret_cast<LPARAM>(&d));
    d.list_procedure = reinterpret_cast<WNDPROC>(
        SetWindowLong(item(dialog, file_list), GWL_WNDPROC, reinterpret_cast<LPARAM>(&list_keys)));
    ask(dialog, file_list, LB_SETITEMHEIGHT, 0, file_row_height);
    for (const std::int32_t id : {folder_box, type_box})
        ask(dialog, id, CB_SETITEMHEIGHT, -1, field_height - 2 * combo_edge);
    ask(dialog, name_field, EM_LIMITTEXT, 0x10000);
    for (const Filter& filter : d.filters) add_line(dialog, type_box, filter.name);
    const std::uint32_t last = static_cast<std::uint32_t>(d.filters.size());
    const std::uint32_t first = std::clamp<std::uint32_t>(d.request.nFilterIndex, 1, last);
    ask(dialog, type_box, CB_SETCURSEL, static_cast<std::intptr_t>(first) - 1);
    if ((d.request.Flags & OFN_READONLY) != 0 && item(dialog, read_only_box) != 0)
        ask(dialog, read_only_box, BM_SETCHECK, BST_CHECKED);
    const std::string name = name_of(d.request.lpstrFile);
    if (has_wildcard(name)) d.typed_patterns = name;
    lay_out(dialog);
    show_folder(dialog, d, first_folder(d.request));
    const std::string shown = shown_name(name);
    set_window_text(item(dialog, name_field), shown);
    if (!name.empty() && !has_wildcard(name)) {
        d.shown_names = shown;
        d.selected_names = {name};
    }
    SetFocus(item(dialog, name_field));
    ask(dialog, name_field, EM_SETSEL, 0, -1);
}

void type_chosen(HWND dialog, FileDialog& d) {
    d.typed_patterns.clear();
    const HWND field = item(dialog, name_field);
    if (has_wildcard(window_text(field))) set_window_text(field, "");
    read_again(dialog, d);
}

void folder_chosen(HWND dialog, FileDialog& d) {
    const LRESULT which = ask(dialog, folder_box, CB_GETCURSEL);
    if (which <= 0 || static_cast<std::size_t>(which) >= d.places.size()) return;
    const std::string path = d.places[static_cast<std::size_t>(which)];
    if (!show_folder(dialog, d, path)) fill_folder_box(dialog, d);
}

void command(HWND dialog, FileDialog& d, std::int32_t id, std::int32_t what) {
    if (id == IDCANCEL) EndDialog(dialog, IDCANCEL);
    if (id == IDOK) accept(dialog, d);
    if (id == up_button && what == BN_CLICKED) go_up(dialog, d);
    if (id == type_box && what == CBN_SELCHANGE) type_chosen(dialog, d);
    if (id == folder_box && what == CBN_SELCHANGE) folder_chosen(dialog, d);
    if (id != file_list) return;
    if (what == LBN_SELCHANGE) selection_changed(dialog, d);
    if (what == LBN_DBLCLK && !enter_selected(dialog, d)) accept(dialog, d);
    if (what == LBN_SETFOCUS || what == LBN_KILLFOCUS)
        InvalidateRect(item(dialog, file_list), nullptr, false);
}

std::intptr_t file_dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        start(dialog, *reinterpret_cast<FileDialog*>(lparam));
        return 0;
    }
    FileDialog* d = dialog_of(dialog);
    if (!d) return 0;
    switch (message) {
        case WM_COMMAND:
            command(dialog, *d, LOWORD(wparam), HIWORD(wparam));
            return 1;
        case WM_SIZE:
            lay_out(dialog);
            return 1;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {least_width, least_height};
            return 1;
        case WM_ERASEBKGND:
            paint_ground(dialog, HDC{static_cast<std::int32_t>(wparam)});
            return 1;
        case WM_DRAWITEM:
            d->list.draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam),
                         GetFocus() == item(dialog, file_list));
            return 1;
        default:
            return 0;
    }
}

bool choose(OPENFILENAME& request, bool saving) {
    request.files.clear();
    state().error = 0;
    std::string title = request.lpstrTitle;
    if (title.empty()) title = saving ? "Save as" : "Open";
    if (!can_ask()) {
        std::fprintf(stderr, "%s: nobody can choose a file on this display.\n", title.c_str());
        state().error = CDERR_DIALOGFAILURE;
        return false;
    }
    FileDialog d{request, saving, split_filters(request.lpstrFilter), {}, {}, {}, {}, {}};
    const std::intptr_t answer =
        DialogBoxParamA(pattern_of(d, title), request.hwndOwner, file_dialog_procedure,
                        reinterpret_cast<LPARAM>(&d));
    return answer == IDOK && !request.files.empty();
}

}  // namespace

bool GetOpenFileNameA(OPENFILENAME& request) {
    return choose(request, false);
}

bool GetSaveFileNameA(OPENFILENAME& request) {
    return choose(request, true);
}

DWORD CommDlgExtendedError() {
    return state().error;
}

void set_extended_error(DWORD error) {
    state().error = error;
}

}  // namespace tarn::platform
