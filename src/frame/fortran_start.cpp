#include "frame/fortran_start.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "frame/end.h"
#include "frame/fortran_data.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/messages.h"
#include "frame/preconnection.h"
#include "frame/state.h"
#include "platform/kernel/debug_output.h"
#include "platform/kernel/system.h"

namespace tarn::frame {
namespace {

void tell_debugger() {
    if (platform::system_version.platform == 3) return;
    char line[128];
    auto address = [](const void* cell) { return reinterpret_cast<unsigned long>(cell); };
    std::snprintf(line, sizeof line, "ADDRESSES 0x%016lx 0x%016lx 0x%016lx 0x%016lx\n",
                  address(&tarn_libcom), address(tarn_lib), address(tarn_iof77),
                  address(&state().debugger_flag));
    platform::debug_output(line);
}

void open_preconnections() {
    const char* value = std::getenv("ORVALPRECON");
    if (!value) return;
    std::string_view rest = value;
    while (!preconnections_done(rest)) {
        Preconnection entry;
        int failure = next_preconnection(rest, entry);
        if (failure != 0) {
            if (hooks().fortran_fail) hooks().fortran_fail(failure);
            return;
        }
        if (hooks().preconnect) {
            hooks().preconnect(entry.unit, entry.name, entry.read_only, entry.formatted);
        }
    }
}

void start_once() {
    State& s = state();
    if (s.fortran_started) return;
    s.fortran_started = true;
    tarn_libcom.state = lib_running;
    const char* tests = std::getenv("RUNNING_TARNICK_TESTS");
    if (tests && std::string_view(tests).find_first_not_of(' ') != std::string_view::npos) {
        s.stack_faults = true;
    }
}

}  // namespace

void set_arguments(int count, char** values) {
    State& s = state();
    s.argument_count = count;
    s.next_argument = 1;
    if (count > 0) s.arguments = values;
}

void start_fortran(bool full, const FortranArguments* arguments) {
    if (full) {
        if (hooks().initialise_fortran_io) hooks().initialise_fortran_io();
        tell_debugger();
    } else {
        state().debugger_flag = 0;
    }
    if (arguments) {
        set_arguments(static_cast<int>(arguments->count), arguments->values);
        state().third_word = arguments->third;
    }
    if (hooks().reset_fortran_data) hooks().reset_fortran_data();
    if (full) open_preconnections();
    start_once();
}

void require_fortran_interface(std::int32_t version) {
    if (version <= fortran_interface) return;
    constexpr const char* window =
        "%CA[ORVEX]%4SI!This program is accessing%nlan obsolete version of "
        "TARNLIBC.DLL.%nlThis may be because you may have multiple%nlcopies of this library on "
        "your path.%nl%nl%cn%`bt[OK]";
    if (!hooks().show_window || !hooks().show_window(window)) {
        show_message(
            "This program is accessing\nan obsolete version of TARNLIBC.DLL.\n"
            "This may be because you may have multiple\ncopies of this library on your path.\n");
    }
    exit_fortran(0);
}

}  // namespace tarn::frame

using namespace tarn::frame;

extern "C" {

TARN_EXPORT void __ORVEXINIT_(const FortranArguments* arguments) {
    ensure_up();
    start_fortran(true, arguments);
}
TARN_EXPORT void __ORVEXINIT__(const FortranArguments*) TARN_ALIAS(__ORVEXINIT_);
TARN_EXPORT void F77INIT_h(const FortranArguments*) LINK_NAME("F77INIT#") TARN_ALIAS(__ORVEXINIT_);

TARN_EXPORT void __ORVEXINIT1_(const FortranArguments* arguments, const std::int32_t* version) {
    ensure_up();
    require_fortran_interface(*version);
    start_fortran(true, arguments);
}
TARN_EXPORT void __ORVEXINIT1__(const FortranArguments*, const std::int32_t*)
    TARN_ALIAS(__ORVEXINIT1_);

TARN_EXPORT void __ORVEXINIT2_() {
    ensure_up();
    start_fortran(true, nullptr);
}
TARN_EXPORT void __ORVEXINIT2__() TARN_ALIAS(__ORVEXINIT2_);

TARN_EXPORT void ORVALINIT_() {
    start_fortran(false, nullptr);
}
TARN_EXPORT void ORVALINIT__() TARN_ALIAS(ORVALINIT_);

TARN_EXPORT void __GET_ORVEX_LIBRARY_VERSION_(std::int32_t* version) {
    *version = fortran_interface;
}

TARN_EXPORT void detect_stack_faults() {
    state().stack_faults = true;
}
}
