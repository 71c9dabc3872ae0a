#include "traceback/traceback.h"

#include "traceback/callers_text.h"

namespace tarn::traceback {
namespace {

// A report comes when storage may be used up or broken, and on a small stack: its room is here.
struct Room {
    Callers callers;
    char text[64 * 1024] = {};
    std::string_view statement_file;
    std::uint32_t statement_line = 0;
};
constinit Room room;

}  // namespace

Callers& callers() {
    return room.callers;
}

void set_statement(std::string_view file, std::uint32_t line) {
    room.statement_file = file;
    room.statement_line = line;
}

std::string_view console_text(const Registers& registers, Place place) {
    collect(registers, place, room.callers);
    if (place == Place::call) room.callers.correct_first(room.statement_file, room.statement_line);
    TextBuffer text(room.text, sizeof room.text);
    add_callers(text, room.callers);
    return text.text();
}

}  // namespace tarn::traceback
