#include "traceback/traceback.h"

#include "traceback/callers_text.h"

namespace tarn::traceback {
namespace {

// A report comes when storage may be used up or broken, and on a small stack: its room is here.
struct Room {
    Callers callers;
    char text[64 * 1024] = {};
};
constinit Room room;

}  // namespace

Callers& callers() {
    return room.callers;
}

std::string_view console_text(const Registers& registers, Place place) {
    collect(registers, place, room.callers);
    TextBuffer text(room.text, sizeof room.text);
    add_callers(text, room.callers);
    return text.text();
}

}  // namespace tarn::traceback
