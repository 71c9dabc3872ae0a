// %cd: the options of a file dialog.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/dialogs/file_dialog.h"
#include "platform/user/user.h"
#include "winio/codes.h"
#include "winio/common_dialog.h"
#include "winio/options.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::uint32_t start_flags = 0x81004;

common_dialog* block_of_call() {
    builder_state& state = building();
    if (state.preloaded_block && state.preloaded_type == control_type::line_end) {
        return static_cast<common_dialog*>(state.preloaded_block);
    }
    auto* fresh = new common_dialog{};
    fresh->flags = start_flags;
    set_preloaded_block(fresh, control_type::line_end);
    return fresh;
}

// In C a variable has room for one path of the longest kind, or as many as are asked for.
constexpr std::int32_t path_room = 260, most_paths = 10000;

char* character_variable(code_call& call, const char* what, std::int32_t paths,
                         std::int32_t& length) {
    char* variable = user_char_pointer(call.arguments);
    length = building().fortran_call ? building().last_length : path_room * paths;
    if (!variable && !records().check_mode) quillpan_error("?Error reading %%cd[%s].", what);
    return variable;
}

// "name|pattern", or "name (pattern)".
void add_filter(common_dialog& dialog) {
    const std::string& value = option_value();
    const std::size_t bar = value.find('|');
    const std::size_t open = value.find('('), close = value.find(')');
    std::string name = value, pattern;
    if (bar != std::string::npos) {
        name = value.substr(0, bar);
        pattern = value.substr(bar + 1);
    } else if (open != std::string::npos && close != std::string::npos && close > open) {
        pattern = value.substr(open + 1, close - open - 1);
    } else {
        quillpan_error("?Missing '(*.' in %%cd[filter].");
        return;
    }
    dialog.filter.append(name).push_back('\0');
    dialog.filter.append(pattern).push_back('\0');
}

void apply_word(code_call& call, const option_reader& words, common_dialog& dialog) {
    dialog.fortran = building().fortran_call;
    if (words.is("hwndowner")) {
        const auto owner = static_cast<HWND>(user_thing(call.arguments, true));
        if (!records().check_mode && platform::IsWindow(owner)) dialog.owner = owner;
    }
    if (words.is("title=")) dialog.title = option_value();
    if (words.is("filter=")) add_filter(dialog);
    if (words.is("file")) {
        dialog.file = character_variable(call, "file", std::clamp(dialog.most_files, 1, most_paths),
                                         dialog.file_length);
        dialog.file_read = true;
    }
    if (words.is("shortfile")) {
        dialog.short_file = character_variable(call, "fileTitle", 1, dialog.short_file_length);
    }
    if (words.is("rootdir")) {
        dialog.root_folder = character_variable(call, "rootDir", 1, dialog.root_length);
    }
    if (words.is("initialdir")) {
        const char* folder = user_string(call.arguments);
        dialog.initial_folder = folder ? folder : "";
    }
    if (words.is("flags")) {
        dialog.flags = static_cast<std::uint32_t>(user_integer(call.arguments));
    }
    if (words.is("saving")) {
        dialog.saving = true;
        dialog.flags =
            (dialog.flags & ~platform::OFN_FILEMUSTEXIST) | platform::OFN_OVERWRITEPROMPT;
    }
    if (words.is("maxfiles")) {
        dialog.most_files = user_integer(call.arguments);
        if (dialog.file_read) quillpan_error("?[maxFiles] must precede [file] for %%cd");
        if (dialog.most_files > 1) dialog.flags |= platform::OFN_ALLOWMULTISELECT;
    }
    if (words.is("showreadonly")) dialog.flags &= ~platform::OFN_HIDEREADONLY;
    if (words.is("no_overwrite_prompt")) dialog.flags &= ~platform::OFN_OVERWRITEPROMPT;
    if (words.is("filter_item_selected")) {
        dialog.item_selected = user_int_pointer(call.arguments);
    }
}

}  // namespace

void handle_cd(code_call& call) {
    common_dialog& dialog = *block_of_call();
    option_reader words(call, code_of('C', 'D'), "%CD");
    while (words.next()) apply_word(call, words, dialog);
}

std::int32_t continued_dialog(std::int32_t otherwise) {
    const builder_state& state = building();
    if (!state.preloaded_block || state.preloaded_type != control_type::line_end) return otherwise;
    return static_cast<std::int32_t>(
        static_cast<const common_dialog*>(state.preloaded_block)->flags);
}

}  // namespace tarn::winio
