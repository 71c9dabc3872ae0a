// A program's file, its map section and its unwind table, as a damaged disk might hold them.
#include <cstdint>

#include "traceback/frame_rules.h"
#include "traceback/routine_map.h"

using namespace tarn::traceback;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes{reinterpret_cast<const char*>(data), size};
    RoutineMap map;
    if (map.open(bytes)) {
        for (std::uint64_t address : {0, 16, 4096, 0x7FFFFFFF}) {
            const MapLine line = map.line_at(address);
            map.file(line.file);
            const MapRoutine* routine = map.routine_at(address);
            if (routine == nullptr) continue;
            map.name(routine->name);
            const MapInline* found[4];
            const std::size_t count = map.inlines_at(*routine, address, found, 4);
            for (std::size_t i = 0; i < count; ++i) map.name(found[i]->name);
        }
    }
    find_section(bytes, map_section);
    Symbol symbol;
    find_symbol(bytes, 64, symbol);
    FrameRules rules;
    const auto start = reinterpret_cast<std::uintptr_t>(data);
    if (size > 0) find_frame_rules_in(data, data, data + size, start + size / 2, rules);
    return 0;
}
