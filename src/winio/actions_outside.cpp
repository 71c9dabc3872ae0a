// Standard actions that reach outside the program, and those whose room isn't there yet.
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/dialogs/program_resources.h"
#include "platform/display/display.h"
#include "platform/kernel/desktop.h"
#include "platform/user/user.h"
#include "winio/actions.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

void show_missing_file(const char* file) {
    const word arguments[1] = {reinterpret_cast<word>(file)};
    internal_winio("%ca[MISSING FILE]%SI#Unable to open help file %ws\n\n%cn%`bt[OK]", "*C",
                   arguments, 1);
}

bool can_be_read(const char* file) {
    const int handle = open(file, O_RDONLY | O_CLOEXEC);
    if (handle < 0) return false;
    close(handle);
    return true;
}

std::string text_at(word pointer) {
    const auto* text = reinterpret_cast<const char*>(pointer);
    return text ? text : "";
}

}  // namespace

std::int32_t action_hyperlink() {
    const std::string link = text_at(callbacks().current_thunk ? callbacks().current_thunk->a : 0);
    if (!platform::open_on_desktop(link.c_str()))
        quillpan_error("?%s can't be opened: xdg-open failed", link.c_str());
    return 2;
}

// Without a player, or without somebody to listen, the beep has to do.
std::int32_t action_sound() {
    const std::string name = text_at(callbacks().current_thunk ? callbacks().current_thunk->a : 0);
    std::string file = platform::resource_file(platform::resource_kind::sound, name);
    if (file.empty()) {
        quillpan_error("Sound resource %s not found", name.c_str());
        return 2;
    }
    if (file[0] == '-') file = "./" + file;
    if (platform::display().headless() ||
        !platform::start_apart({"pw-play", "paplay", "aplay"}, file.c_str()))
        platform::MessageBeep(0);
    return 2;
}

// Topics within a help file are the viewer's matter: the file is opened at its start.
std::int32_t action_help() {
    const std::string file = text_at(callbacks().current_thunk ? callbacks().current_thunk->a : 0);
    if (!can_be_read(file.c_str())) {
        show_missing_file(file.c_str());
        return 1;
    }
    if (!platform::open_on_desktop(file.c_str()))
        quillpan_error("?%s can't be opened: xdg-open failed", file.c_str());
    return 1;
}

// Hypertext isn't built yet, so that there is none to control.
std::int32_t action_previous_text() {
    quillpan_error("The PREVIOUS_TEXT callback cannot find any hypertext to control");
    return 2;
}
std::int32_t action_text_history() {
    quillpan_error("The TEXT_HISTORY callback cannot find any hypertext to control");
    return 2;
}
std::int32_t action_copy_text() {
    return 2;
}

// Nothing is printing.
std::int32_t action_print_abort() {
    return 0;
}

std::int32_t action_absent() {
    const thunk* current = callbacks().current_thunk;
    quillpan_error("?The standard action %s is not available yet", current ? current->name : "");
    return 1;
}

}  // namespace tarn::winio
