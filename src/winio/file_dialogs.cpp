// Files that the user chooses: the actions FILE_OPENR and FILE_OPENW, and the dialog of %cd.
#include <algorithm>
#include <cstring>

#include "platform/base/text.h"
#include "platform/dialogs/file_dialog.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/actions.h"
#include "winio/common_dialog.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {
namespace {

// A text of the program's, for the dialog.
std::string shown(const std::string& text) {
    return utf8_now() ? text : platform::utf8_from_page(text);
}

// A CHARACTER variable has its length, a C one ends with a zero within it.
std::string text_of(const char* variable, std::int32_t length, bool fortran) {
    if (!variable || length <= 0) return {};
    std::string text(variable, strnlen(variable, static_cast<std::size_t>(length)));
    while (fortran && !text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

// A name that was cut would be another file's.
bool fits(const char* variable, std::int32_t length, bool fortran, const std::string& text) {
    const auto room = static_cast<std::size_t>(std::max(length, 0));
    return !variable || text.size() + (fortran ? 0 : 1) <= room;
}

void store(char* variable, std::int32_t length, bool fortran, const std::string& text) {
    if (!variable) return;
    std::memcpy(variable, text.data(), text.size());
    if (fortran)
        std::memset(variable + text.size(), ' ', static_cast<std::size_t>(length) - text.size());
    else
        variable[text.size()] = 0;
}

void refuse_length(const char* whose) {
    platform::set_extended_error(platform::FNERR_BUFFERTOOSMALL);
    quillpan_error("?The character variable of %s is too short for the name of the file", whose);
}

bool ask(platform::OPENFILENAME& request, bool saving) {
    bool& prompt = options().overwrite_prompt;
    if (saving && prompt) request.Flags |= platform::OFN_OVERWRITEPROMPT;
    if (saving) prompt = false;
    const bool chosen =
        saving ? platform::GetSaveFileNameA(request) : platform::GetOpenFileNameA(request);
    if (!chosen) return false;
    callbacks().context.filter_item_selected = static_cast<std::int32_t>(request.nFilterIndex);
    return true;
}

// Several names: the folder, then the names in it, with a zero behind each.
std::string all_names(const std::vector<std::string>& files) {
    if (files.size() == 1) return files[0];
    const std::string folder = files[0].substr(0, std::max<std::size_t>(files[0].rfind('/'), 1));
    std::string all = folder;
    for (const std::string& file : files) {
        all.push_back('\0');
        all += file.substr(file.rfind('/') + 1);
    }
    all.push_back('\0');
    return all;
}

bool take_answer(const common_dialog& dialog, const platform::OPENFILENAME& request) {
    const std::string& first = request.files[0];
    const std::size_t slash = first.rfind('/');
    const struct {
        char* variable;
        std::int32_t length;
        std::string text;
    } answers[] = {
        {dialog.file, dialog.file_length, all_names(request.files)},
        {dialog.short_file, dialog.short_file_length, first.substr(slash + 1)},
        {dialog.root_folder, dialog.root_length, first.substr(0, std::max<std::size_t>(slash, 1))}};
    for (const auto& each : answers) {
        if (fits(each.variable, each.length, dialog.fortran, each.text)) continue;
        refuse_length("%cd");
        return false;
    }
    for (const auto& each : answers) store(each.variable, each.length, dialog.fortran, each.text);
    if (dialog.item_selected)
        *dialog.item_selected = static_cast<std::int32_t>(request.nFilterIndex);
    return true;
}

}  // namespace

std::int32_t CallCommonDialog(common_dialog* described) {
    const common_dialog dialog = *described;
    delete described;
    if (records().check_mode) return 0;
    textwin::yield_program_control(1);  // the first one brings up the display, and a script
    platform::OPENFILENAME request;
    request.hwndOwner = dialog.owner != HWND{} ? dialog.owner : platform::GetActiveWindow();
    request.lpstrFilter = shown(dialog.filter);
    if (dialog.item_selected && *dialog.item_selected > 0)
        request.nFilterIndex = static_cast<std::uint32_t>(*dialog.item_selected);
    request.lpstrFile = text_of(dialog.file, dialog.file_length, dialog.fortran);
    request.lpstrInitialDir = dialog.initial_folder;
    request.lpstrTitle = shown(dialog.title);
    request.Flags = dialog.flags;
    return ask(request, dialog.saving) && take_answer(dialog, request) ? 1 : 0;
}

// What the program gave is copied before: the window may end while the dialog is open.
std::int32_t action_choose_file() {
    if (!callbacks().current_thunk) return 1;
    const thunk given = *callbacks().current_thunk;
    const bool saving = given.selector != 0;
    const HWND handle = callbacks().call_handle;
    const fancy_window* const window = current_window();
    const std::int32_t number = window ? window->second_number : 0;
    auto* variable = reinterpret_cast<char*>(given.a);
    platform::OPENFILENAME request;
    request.hwndOwner = window ? window->hwnd : HWND{};
    if (given.options) request.lpstrTitle = shown(given.options);
    if (given.filters)
        request.lpstrFilter =
            shown(std::string(given.filters, static_cast<std::size_t>(given.filter_bytes)));
    request.lpstrFile =
        given.file_spec ? given.file_spec : text_of(variable, given.length, given.fortran);
    request.Flags = platform::OFN_HIDEREADONLY | platform::OFN_PATHMUSTEXIST;
    if (!saving) request.Flags |= platform::OFN_FILEMUSTEXIST;
    if (!ask(request, saving)) return 1;
    if (!fancy_window_exists(window) || window->second_number != number) return 1;
    if (!fits(variable, given.length, given.fortran, request.files[0])) {
        refuse_length(saving ? "FILE_OPENW" : "FILE_OPENR");
        return 1;
    }
    store(variable, given.length, given.fortran, request.files[0]);
    if (given.fortran)
        window_update_f(variable);
    else
        window_update(variable);
    if (!fancy_window_exists(window) || window->second_number != number) return 1;
    return call_function(given.further, "FILE_OPEN", handle, false, false);
}

}  // namespace tarn::winio
