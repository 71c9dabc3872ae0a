#include "frame/start.h"

#include <cstdlib>
#include <new>

#include "frame/debug_info.h"
#include "frame/end.h"
#include "frame/file_numbers.h"
#include "frame/float_control.h"
#include "frame/fortran_data.h"
#include "frame/fortran_start.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "frame/tarnenvar.h"
#include "platform/kernel/float_unit.h"
#include "platform/kernel/system.h"

// The library's own preamble section, as the linker bounds it.
extern "C" {
extern __attribute__((visibility("hidden"))) void (*__start_tarn_crt[])();
extern __attribute__((visibility("hidden"))) void (*__stop_tarn_crt[])();
}

namespace tarn::frame {
namespace {

constinit DebugInfo the_debug_info;
constinit void* exception_machine = nullptr;
constexpr std::size_t throw_temporary_size = 100;

void publish_debug_info() {
    __ptr_to_debuginfo = &the_debug_info;
}
TARN_PREAMBLE(publish_debug_info)

void reset_float_unit() {
    State& s = state();
    the_debug_info.permit_underflow = 1;
    the_debug_info.sqrt_recovery = 0;
    // Under the system's rules the unit stays as the system, or a program that is running already,
    // has it; the live words say so too, and only a mask call loads them.
    if (s.float_rules == FloatRules::system) return;
    platform::reset_unit();
    unmask_all();
}

void make_streams() {
    constexpr std::size_t buffer_size = 256;
    StreamRecord* next = nullptr;
    for (int i = 2; i >= 0; --i) {
        auto* stream = new (std::nothrow) StreamRecord{};
        if (!stream) return;
        stream->tag = stream_tag;
        stream->flags = i == 0 ? 0x2802 : 0x2804;
        stream->next = next;
        stream->buffer = static_cast<char*>(std::malloc(buffer_size));
        stream->buffer_size = stream->buffer ? buffer_size : 0;
        stream->file_number = i;
        state().streams[i] = stream;
        next = stream;
    }
}

void call(void (*hook)()) {
    if (hook) hook();
}

}  // namespace

DebugInfo& debug_info() {
    return the_debug_info;
}

void run_preamble(void (*const* first)(), void (*const* last)()) {
    // The section may move no routine, but a routine may load an image with a section of its own.
    for (; first <= last; ++first) {
        if (void (*routine)() = *first) routine();
    }
}

void attach() {
    static constinit std::atomic<bool> attached{false};
    if (attached.load(std::memory_order_acquire)) return;
    // The routines only store the same values again, should two threads come here at once.
    for (auto* routine = __start_tarn_crt; routine < __stop_tarn_crt; ++routine) (*routine)();
    attached.store(true, std::memory_order_release);
}

void set_image_type(int type) {
    State& s = state();
    if (s.init_count > 1) return;
    s.windows_mode = type & image_type_mask;
    if ((type & image_native_float) != 0) s.float_rules = FloatRules::native;
}

void mark_streams_for_window() {
    for (StreamRecord* stream : state().streams) {
        if (!stream) continue;
        stream->flags |= stream_through_window;
        stream->file_number = 0;
    }
}

// The order matters: each step may use what the ones before it made. Nothing allocates before the
// storage does. The C locale, which a program starts in anyway, isn't set: a library that comes up
// late would undo what the program chose.
void initialise_library() {
    State& s = state();
    std::lock_guard lock(s.start_lock);
    if (s.init_count != 0) {
        if (!s.registered && (s.windows_mode != 0 || s.window_output)) mark_streams_for_window();
        return;
    }
    s.init_count = 1;
    attach();
    join_system_exit();
    __sai = 0;
    s.format_check = -1;
    call(hooks().initialise_storage);
    initialise_file_numbers();
    call(hooks().watch_faults);
    call(hooks().set_window_defaults);
    reset_float_unit();
    s.general_shared = {1, &__throw_temporary_ptr, &exception_machine};
    s.traceback = {};
    s.is_nt = platform::system_version.platform == 2;
    make_streams();
    call(hooks().start_clock);
    __throw_temporary_ptr = std::calloc(1, throw_temporary_size);
    if (s.windows_mode != 0 || s.window_output) mark_streams_for_window();
    call(hooks().initialise_console);
    start_fortran(false, nullptr);
    s.ready.store(true, std::memory_order_release);
}

void bring_up() {
    State& s = state();
    std::lock_guard lock(s.start_lock);
    if (s.init_count != 0) return;  // a step of the start came back to us
    initialise_library();
    platform::Arguments arguments = platform::process_arguments();
    set_arguments(arguments.count, arguments.values);
    // Nobody registers an executable here, so the user's options are read now.
    read_option_variable();
}

}  // namespace tarn::frame

using namespace tarn::frame;

namespace {

// The C library hands a constructor what it hands main. 101 is the first priority that is ours to
// use: constructors of other parts, should there ever be any, find the hooks in place.
[[gnu::constructor(101)]] void on_load(int count, char** arguments, char**) {
    tarn::platform::set_process_arguments(count, arguments);
    attach();
}

constexpr int process_attach = 1;
constexpr int process_detach = 0;

}  // namespace

extern "C" {

TARN_EXPORT int LibMain(void* module, int reason, void*) {
    if (reason == process_attach) {
        state().own_module = module;
        tarn::platform::clear_exceptions();
        attach();
    } else if (reason == process_detach && hooks().free_console) {
        hooks().free_console();
    }
    return 1;
}

TARN_EXPORT void __init_WindowsType(int type) {
    set_image_type(type);
}
TARN_EXPORT void __initialise_cpplib() {
    initialise_library();
}
TARN_EXPORT void __execute_preamble(void (*const* first)(), void (*const* last)()) {
    run_preamble(first, last);
}

TARN_EXPORT void __set_windows_mode() {
    state().windows_mode = 1;
    call(hooks().console_to_window);
}
TARN_EXPORT int GetNtWindowsMode() {
    return state().windows_mode;
}
TARN_EXPORT void __switch_to_quillpan() {
    if (state().windows_mode != 0) return;
    mark_streams_for_window();
    state().windows_mode = 6;
    call(hooks().console_to_window);
}
TARN_EXPORT void QUILLPAN_MODE_h() LINK_NAME("QUILLPAN_MODE#") TARN_ALIAS(__switch_to_quillpan);
TARN_EXPORT void __cpp_reinitialised_stuff() {
    State& s = state();
    if (!s.registered && (s.windows_mode != 0 || s.window_output)) mark_streams_for_window();
}

TARN_EXPORT void cinit_(int windowed) {
    int type = windowed != 0 ? 2 : 0;
    if ((tarn::platform::version_word() & 0x80000000U) != 0) type = 1;
    set_image_type(type);
    initialise_library();
    state().windows_type = type;
}
TARN_EXPORT void CINIT_(int) TARN_ALIAS(cinit_);

TARN_EXPORT void __com_plus_initialise(void* instance) {
    state().managed = true;
    initialise_library();
    copy_words(managed_words);
    state().instance = instance;
}

TARN_EXPORT void __setup_libraryflag(int flag) {
    if (flag == 1) state().setup_flag = 1;
}
}
