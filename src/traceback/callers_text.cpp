#include "traceback/callers_text.h"

namespace tarn::traceback {
namespace {

std::string_view file_name(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

// The name of a symbol, where no map has the one that the source uses: as gfortran makes symbols of
// names.
void add_symbol(TextBuffer& text, std::string_view name) {
    if (name == "MAIN__") {
        text.add("the main program");
        return;
    }
    const std::size_t middle = name.find("_MOD_");
    if (name.substr(0, 2) == "__" && middle != std::string_view::npos) {
        text.add(name.substr(2, middle - 2)).add("::").add(name.substr(middle + 5));
        return;
    }
    text.add(name);
}

void add_repeats(TextBuffer& text, const CallerLine& line) {
    if (line.pattern == 0) return;
    if (line.pattern == 1) {
        text.add("        (this call ");
    } else {
        text.add("        (these ").decimal(line.pattern).add(" calls ");
    }
    text.decimal(line.times).add(line.times == 1 ? " more time)\n" : " more times)\n");
}

}  // namespace

void add_routine(TextBuffer& text, const Location& location) {
    if (location.has_map) {
        text.add(location.routine);
    } else {
        add_symbol(text, location.routine);
    }
}

void add_location(TextBuffer& text, const Location& location) {
    if (location.routine.empty()) {
        text.add("code at 0x").hexadecimal(location.address, 1);
    } else {
        add_routine(text, location);
    }
    if (location.line != 0) {
        text.add(", ").add(location.file).add(":").decimal(location.line);
    } else if (!location.module.empty()) {
        text.add(" (").add(file_name(location.module)).add(")");
    }
}

void add_callers(TextBuffer& text, const Callers& callers) {
    for (std::size_t i = 0; i < callers.count(); ++i) {
        if (i == callers.left_out_before() && callers.left_out() != 0)
            text.add("    ... ").decimal(callers.left_out()).add(" more calls ...\n");
        const CallerLine& line = callers.line(i);
        text.add(i == 0 ? "    in " : "    called by ");
        add_location(text, line.location);
        text.add("\n");
        add_repeats(text, line);
    }
    if (callers.lacks_lines())
        text.add(
            "    (for files and lines, compile with -g1 and link with tarnfc, tarncc or "
            "tarnc++)\n");
}

}  // namespace tarn::traceback
