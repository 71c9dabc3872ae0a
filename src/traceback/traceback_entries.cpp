#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <string>

#include "frame/console_lines.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/debug_output.h"
#include "tarn/traceback.h"
#include "traceback/loaded_files.h"
#include "traceback/location.h"
#include "traceback/native_traceback.h"
#include "traceback/run_trace.h"
#include "traceback/walk.h"

namespace tarn::traceback {
namespace {

static_assert(sizeof(::traceback_routine) == sizeof(RoutineRecord));

struct RegisteredModule {
    std::uintptr_t instance = 0;
    const void* map = nullptr;
};
// The modules in the order in which they registered; the library itself comes first.
struct Modules {
    static constexpr int most = 50;
    RegisteredModule all[most];
    int count = 0;
};
constinit Modules modules;

void tell_debugger(const RegisteredModule& module) {
    Dl_info info;
    const char* path = "";
    if (dladdr(reinterpret_cast<void*>(module.instance), &info) != 0) path = info.dli_fname;
    char room[600];
    TextBuffer text(room, sizeof room - 1);
    text.add("Tarnmap: ").add(path).add(" 0x").hexadecimal(module.instance, 16);
    text.add(" 0x").hexadecimal(reinterpret_cast<std::uintptr_t>(module.map), 16).add("\n");
    room[text.text().size()] = 0;
    platform::debug_output(room);
}

void enter(std::uintptr_t instance, const void* map) {
    if (modules.count == Modules::most) return;
    modules.all[modules.count++] = {instance, map};
    tell_debugger(modules.all[modules.count - 1]);
}

// A text of the caller's, to be appended to.
class CallersText {
  public:
    explicit CallersText(tarn_text& text)
        : text_(text),
          buffer_(text.data + text.length, static_cast<std::size_t>(std::max<std::intptr_t>(
                                               text.size - text.length - 1, 0))) {}
    ~CallersText() {
        text_.length += static_cast<std::intptr_t>(buffer_.text().size());
        if (text_.length < text_.size) text_.data[text_.length] = 0;
    }
    CallersText(const CallersText&) = delete;
    CallersText& operator=(const CallersText&) = delete;
    TextBuffer& buffer() { return buffer_; }

  private:
    tarn_text& text_;
    TextBuffer buffer_;
};

bool usable(const tarn_text* text) {
    return text != nullptr && text->data != nullptr && text->length >= 0 &&
           text->size > text->length;
}

Walk walk_from(const void* address, void* frame) {
    return Walk::from_frame(reinterpret_cast<std::uintptr_t>(address),
                            reinterpret_cast<std::uintptr_t>(frame));
}

void information(std::uintptr_t address, char* name, std::intptr_t* offset) {
    RoutineRecord record;
    find_routine(address, record);
    std::strcpy(name, record.name);
    *offset = static_cast<std::intptr_t>(record.offset);
}

void console_event(std::string_view text) {
    frame::console_line(std::string("*** TRACE - ").append(text));
}

const LoadedFile* file_of_instance(std::uintptr_t instance) {
    const LoadedFile* file = file_at(instance);
    return file != nullptr && file->has_map && file->module.start == instance ? file : nullptr;
}

void register_map(void* instance, const void* map) {
    Add_map_address_to_list(instance, map);
}
void install_map_list() {
    frame::hooks().register_map = register_map;
}
TARN_PREAMBLE(install_map_list)

}  // namespace
}  // namespace tarn::traceback

using namespace tarn;
using namespace tarn::traceback;

extern "C" {

// An image without a map of its own links against the name. Nobody reads it.
TARN_EXPORT extern const std::uint32_t __TARNICK_MAP;
const std::uint32_t __TARNICK_MAP = 0;

TARN_EXPORT void Add_map_address_to_list(void* instance, const void* map) {
    if (modules.count == 0) {
        Module own;
        if (find_module(reinterpret_cast<std::uintptr_t>(&modules), own)) enter(own.start, nullptr);
    }
    enter(reinterpret_cast<std::uintptr_t>(instance), map);
}
TARN_EXPORT const void* __Tarnick_map_address(std::int32_t index) {
    return index >= 0 && index < modules.count ? modules.all[index].map : nullptr;
}

TARN_EXPORT const tarn_map_entry* search_map_file_header(const void* address) {
    static RoutineRecord record;
    static tarn_map_entry entry;
    find_routine(reinterpret_cast<std::uintptr_t>(address), record);
    if (record.name[0] == ' ') return nullptr;
    entry = {record.start, record.name};
    return &entry;
}
TARN_EXPORT std::int32_t get_module_map_header(const char* path, tarn_module_map* header) {
    if (path == nullptr || header == nullptr) return 0;
    for (int i = 0; i < modules.count; ++i) {
        Dl_info info;
        const std::uintptr_t instance = modules.all[i].instance;
        if (dladdr(reinterpret_cast<void*>(instance), &info) == 0 ||
            std::strcmp(info.dli_fname, path) != 0)
            continue;
        const LoadedFile* file = file_of_instance(instance);
        if (file == nullptr) return 0;
        *header = {instance, file->module.start, file->module.end - 1, file->map.routine_count(),
                   reinterpret_cast<std::uintptr_t>(file->map.routine(0))};
        return 1;
    }
    return 0;
}
TARN_EXPORT std::int32_t get_function_map_record(const void* instance, std::uint32_t index,
                                                 tarn_function_record* record) {
    if (instance == nullptr || record == nullptr) return 0;
    const LoadedFile* file = file_of_instance(reinterpret_cast<std::uintptr_t>(instance));
    if (file == nullptr || index >= file->map.routine_count()) return 0;
    const MapRoutine& routine = *file->map.routine(index);
    record->address = file->module.bias + file->map.start_of(routine);
    const std::string_view name = file->map.name(routine.name).substr(0, sizeof record->name - 1);
    std::memcpy(record->name, name.data(), name.size());
    record->name[name.size()] = 0;
    return 1;
}

TARN_EXPORT const char* Find_routine_name(const void* address, ::traceback_routine* record) {
    auto& found = *reinterpret_cast<RoutineRecord*>(record);
    find_routine(reinterpret_cast<std::uintptr_t>(address), found);
    return record->name;
}
TARN_EXPORT void __find_function_information(const void* address, char* name,
                                             std::intptr_t* offset) {
    information(reinterpret_cast<std::uintptr_t>(address), name, offset);
}
TARN_EXPORT void __find_caller_routine(char* name, std::intptr_t* offset) {
    Walk walk(registers_here(), false);
    // This routine, its caller, and the one that is asked for.
    if (walk.next() && walk.next())
        information(walk.place() + 1, name, offset);
    else
        information(0, name, offset);
}

TARN_EXPORT std::int32_t where_is_location(const void* address, char* file, std::int32_t* line) {
    constexpr std::size_t longest = 512;
    Location found[most_inlined + 1];
    locate(reinterpret_cast<std::uintptr_t>(address), found);
    if (!found[0].has_map) return 0;
    if (found[0].line == 0) return 1;
    const std::string_view name = found[0].file.substr(0, longest - 1);
    std::memcpy(file, name.data(), name.size());
    file[name.size()] = 0;
    *line = static_cast<std::int32_t>(found[0].line);
    return -1;
}
TARN_EXPORT std::int32_t get_lineno_from_address(const void* address, tarn_text* text) {
    if (!usable(text)) return 0;
    CallersText out(*text);
    return add_source_line(out.buffer(), reinterpret_cast<std::uintptr_t>(address)) ? 1 : 0;
}
TARN_EXPORT void close_module_file() {
    close_files();
}

TARN_EXPORT void* __check_stack_at(void* frame) {
    CarefulMemory memory;
    std::uintptr_t pair[2];
    if (!memory.read(reinterpret_cast<std::uintptr_t>(frame), pair, sizeof pair))
        return reinterpret_cast<void*>(std::intptr_t{-1});
    return reinterpret_cast<void*>(pair[0]);
}
TARN_EXPORT void Add_Traceback_routine(tarn_text* text, const void* address, void* frame) {
    if (!usable(text)) return;
    CallersText out(*text);
    Walk walk = walk_from(address, frame);
    add_native_traceback(out.buffer(), walk, false);
}
TARN_EXPORT void Add_routine_name(tarn_text* text, const ::traceback_routine* record) {
    if (!usable(text)) return;
    CallersText out(*text);
    add_routine_line(out.buffer(), *reinterpret_cast<const RoutineRecord*>(record));
}
TARN_EXPORT void __get_traceback_information(tarn_text* text) {
    if (text == nullptr || text->data == nullptr || text->size < 1) return;
    text->length = 0;
    CallersText out(*text);
    Walk walk(registers_here(), false);
    if (walk.next()) add_plain_traceback(out.buffer(), walk);
}
TARN_EXPORT void __Add_Traceback_information(const void* address, void* frame, tarn_text* text) {
    if (!usable(text)) return;
    CallersText out(*text);
    Walk walk = walk_from(address, frame);
    add_plain_traceback(out.buffer(), walk);
}

TARN_EXPORT std::int32_t __runtrace(std::int32_t line, const char* routine, const char* file) {
    RunTrace& trace = run_trace();
    if (trace.begins()) return 0;
    if (trace.size() >= 1) trace.reached(line + 1, routine, file);
    return trace.size();
}
TARN_EXPORT void RUN_TRACE_h(const std::int32_t* line, const char* routine, const char* file,
                             std::ptrdiff_t routine_length, std::ptrdiff_t file_length) {
    const std::string name(frame::trimmed(frame::character(routine, routine_length)));
    const std::string source(frame::trimmed(frame::character(file, file_length)));
    if (__runtrace(*line, name.c_str(), source.c_str()) >= 0) return;
    console_event(name + ", line " + std::to_string(*line) + ", file " + source);
}
TARN_EXPORT void CREATECALLSTACK_h(const std::int32_t* size) {
    run_trace().create(*size);
}
TARN_EXPORT void EXPORTCALLSTACK_h(const char* file, std::ptrdiff_t length) {
    if (file != nullptr) run_trace().write_to(frame::trimmed(frame::character(file, length)));
}
TARN_EXPORT void DEBUG_SOURCE_h(const std::int32_t* line) {
    console_event(std::to_string(*line));
}
TARN_EXPORT void ROUTINE_TRACE_h(const char* routine, std::ptrdiff_t length) {
    console_event(frame::trimmed(frame::character(routine, length)));
}
}
