#include "frame/modules.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "frame/end.h"
#include "frame/float_control.h"
#include "frame/hooks.h"
#include "frame/messages.h"
#include "frame/state.h"
#include "frame/tarnenvar.h"
#include "platform/kernel/control_events.h"
#include "platform/kernel/debug_output.h"
#include "platform/kernel/module.h"
#include "platform/kernel/system.h"

namespace tarn::frame {
namespace {

[[noreturn]] void refuse(const char* format, const char* name, int version, const char* advice) {
    char text[1024];
    std::snprintf(text, sizeof text, format, name ? name : "", version / 100.0,
                  library_version / 100.0);
    show_message("%s%s", text, advice);
    exit_program(0);
}

// What executables and libraries register alike: control words and stdcall functions.
void register_tables(int version, std::uint16_t* words, const StdcallRecord* stdcalls) {
    State& s = state();
    if (s.control_table_count >= max_control_tables) {
        show_message(
            "More than 100 DLLs' loaded\n.Default trapping of uderflow is used for some dll's.");
    }
    if (version >= control_words_since && words) register_control_words(words);
    if (version >= stdcalls_since && stdcalls && stdcalls->count != 0) {
        auto* copy = static_cast<StdcallRecord*>(std::malloc(sizeof(StdcallRecord)));
        if (!copy) return;
        *copy = *stdcalls;
        copy->next = s.stdcalls;
        s.stdcalls = copy;
    }
}

bool old_kind(const LoadedModule& module) {
    return (module.flags & 1) != 0;
}

// An old dynamic library may need the older Fortran library beside it.
void start_older_fortran(const char* path) {
    static bool known = false;
    std::string_view file = path ? path : "";
    std::size_t cut = file.find_last_of("\\:/");
    if (cut != std::string_view::npos) file.remove_prefix(cut + 1);
    if (known || file != "orval.dll") return;
    void* module = platform::module_handle("ORVAL");
    if (!module) module = platform::load_library("ORVAL");
    if (!module) {
        debug_message("Couldn't find orval.dll module\n");
        return;
    }
    void* start = platform::procedure_address(module, "ORVALINIT_");
    if (!start) {
        debug_message("Fail to find ORVALINIT_() in ORVAL.DLL\n");
        return;
    }
    known = true;
    reinterpret_cast<void (*)()>(start)();
}

bool less_by_key(const StdcallPair& a, const StdcallPair& b) {
    return a.key < b.key;
}

}  // namespace

void save_loaded_module(const char* name, std::int32_t version, bool is_dll) {
    State& s = state();
    std::uint8_t flags = version <= old_kind_line ? 1 : 0;
    auto shown = [](const char* n) { return n ? n : ""; };
    bool known = false;
    for (LoadedModule* node = s.modules; node; node = node->next) {
        if (name && node->name && std::strcmp(node->name, name) == 0) known = true;
        if ((node->flags & 1) == flags) continue;
        const char* older = old_kind(*node) ? shown(node->name) : shown(name);
        debug_message(
            "The module %s ver[%d] is incompatible with\n%s ver[%d] and may cause problems.\n"
            "Please obtain a new copy of %s\n",
            shown(name), version, shown(node->name), node->version, older);
        break;
    }
    if (known) return;
    auto* node = static_cast<LoadedModule*>(std::malloc(sizeof(LoadedModule)));
    if (!node) return;
    *node = {s.modules, name ? strdup(name) : nullptr, version, is_dll, flags};
    s.modules = node;
}

void register_program(const ProgramInfo& info) {
    State& s = state();
    int version = info.version();
    if (version < oldest_accepted) {
        refuse(
            "This version of : %s[%4.2f] is incompatible with this version of "
            "Tarnlibc.dll[%4.2f]\n",
            info.name, version, "Please rebuild your executable or contact your distributor\n");
    }
    if (s.init_count > 1) return;
    ++s.init_count;
    s.instance = info.instance;
    s.program = info;
    if (hooks().expanding_region_version) hooks().expanding_region_version(version);
    save_loaded_module(info.name, version, false);
    s.registered = true;
    __debugged = 0;
    char line[96];
    std::snprintf(line, sizeof line, "DEBUGGED_ADDRESSES %lX %lX %lX\n",
                  reinterpret_cast<unsigned long>(&__debugged),
                  reinterpret_cast<unsigned long>(&__sai),
                  reinterpret_cast<unsigned long>(&std::abort));
    platform::debug_output(line);
    // A debugger that knew the line has written the words by now.
    if (*const_cast<volatile std::int32_t*>(&__debugged) == 0) {
        platform::set_control_handler(on_control_event);
    }
    register_tables(version, info.control_words, info.stdcalls);
    traceback_flags() &= ~tb_no_control_break;
    read_option_variable();
    if (underflow_repair_missing()) or_words(0x12);
}

void register_program_old(void* instance, const char*) {
    State& s = state();
    if (s.init_count >= 2) return;
    ++s.init_count;
    s.instance = instance;
}

void register_module(const ModuleInfo& info) {
    int version = info.version();
    if (version < oldest_accepted) {
        refuse(
            "This version of DLL : %s[%4.2f] is incompatible with this version of "
            "Tarnlibc.dll[%4.2f]\n",
            info.path, version, "Please rebuild your DLL or contact your distributor\n");
    }
    if (version <= old_kind_line) start_older_fortran(info.path);
    save_loaded_module(info.path, version, true);
    if (hooks().expanding_region_version) hooks().expanding_region_version(version);
    register_tables(version, info.control_words, info.stdcalls);
}

void obtain_stdcall_function(std::uintptr_t& cell) {
    // Joined on first use, as the caller caches what it gets; a later registration makes it again.
    static std::vector<StdcallPair>* table = nullptr;
    static StdcallRecord* joined_from = nullptr;
    State& s = state();
    if (!table || joined_from != s.stdcalls) {
        if (!table) table = new std::vector<StdcallPair>;
        table->clear();
        for (const StdcallRecord* record = s.stdcalls; record; record = record->next) {
            if (record->count < 0 || !record->pairs) continue;
            table->insert(table->end(), record->pairs, record->pairs + record->count);
        }
        joined_from = s.stdcalls;
        std::stable_sort(table->begin(), table->end(), less_by_key);
    }
    auto hit =
        std::lower_bound(table->begin(), table->end(), StdcallPair{cell, nullptr}, less_by_key);
    if (hit != table->end() && hit->key == cell) {
        cell = reinterpret_cast<std::uintptr_t>(hit->function);
    }
}

}  // namespace tarn::frame
