#include "traceback/location.h"

#include "traceback/loaded_files.h"

namespace tarn::traceback {
namespace {

constexpr char anchor = 0;

bool is_start_up(std::string_view symbol) {
    return symbol == "_start" || symbol == "__libc_start_main" || symbol == "__libc_csu_init";
}

void from_symbol(const LoadedFile& file, std::uintptr_t address, Location& location) {
    Symbol symbol;
    if (!find_symbol(file.content, address - file.module.bias, symbol)) return;
    location.routine = symbol.name;
    location.start = symbol.start + file.module.bias;
    location.is_main = symbol.name == "main" || symbol.name == "MAIN__";
    location.hidden = is_start_up(symbol.name);
}

std::size_t from_map(const LoadedFile& file, std::uintptr_t address,
                     Location (&found)[most_inlined + 1]) {
    const std::uint64_t linked = address - file.module.bias;
    const MapRoutine* routine = file.map.routine_at(linked);
    if (routine == nullptr) return 0;
    const MapInline* calls[most_inlined];
    const std::size_t count = file.map.inlines_at(*routine, linked, calls, most_inlined);
    const MapLine line = file.map.line_at(linked);
    std::string_view source = line.line != 0 ? file.map.file(line.file) : std::string_view{};
    std::uint32_t number = line.line;
    for (std::size_t i = 0; i < count; ++i) {
        const MapInline& call = *calls[count - 1 - i];  // the innermost first
        found[i].routine = file.map.name(call.name);
        found[i].file = source;
        found[i].line = number;
        found[i].inlined = true;
        found[i].start =
            file.module.bias + file.map.start_of(*routine) - routine->start + call.start;
        source = file.map.file(call.call_file);
        number = call.call_line;
    }
    found[count].routine = file.map.name(routine->name);
    found[count].file = source;
    found[count].line = number;
    found[count].start = file.module.bias + file.map.start_of(*routine);
    found[count].is_main = (routine->flags & routine_is_main) != 0;
    found[count].is_rest = (routine->flags & routine_is_rest) != 0;
    found[count].hidden = (routine->flags & routine_hidden) != 0;
    return count + 1;
}

}  // namespace

bool is_own_code(std::uintptr_t address) {
    static const Module own = [] {
        Module module;
        find_module(reinterpret_cast<std::uintptr_t>(&anchor), module);
        return module;
    }();
    return address >= own.start && address < own.end;
}

std::size_t locate(std::uintptr_t address, Location (&found)[most_inlined + 1]) {
    for (Location& each : found) each = {};
    const LoadedFile* file = file_at(address);
    std::size_t count = 0;
    if (file != nullptr && file->has_map) count = from_map(*file, address, found);
    if (count == 0) {
        count = 1;
        if (file != nullptr && file->content.data != nullptr) from_symbol(*file, address, found[0]);
    }
    for (std::size_t i = 0; i < count; ++i) {
        found[i].address = address;
        if (found[i].start == 0) found[i].start = address;
        if (file != nullptr) {
            found[i].is_code = true;
            found[i].module = file->module.path;
            found[i].has_map = file->has_map;
        }
    }
    return count;
}

}  // namespace tarn::traceback
