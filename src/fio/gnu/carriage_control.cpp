#include "fio/gnu/carriage_control.h"

#include <cstring>
#include <string_view>

#include "fio/gnu/records.h"

namespace tarn::fio {
namespace {

struct Control {
    std::string_view moves;
    bool returns;
};

Control control_of(char first) {
    switch (first) {
        case '0':
            return {"\n\n", true};
        case '1':
            return {"\f", true};
        case '+':
            return {"", true};
        case '$':
            return {"\n", false};
        case '\0':
            return {"", false};
        default:
            return {"\n", true};
    }
}

}  // namespace

bool control_carriage(Statement& s) {
    constexpr std::size_t most_added = 3;  // by two moves and a return
    if (!make_room_behind(s, most_added)) return false;
    const auto length = static_cast<std::size_t>(s.high - s.begin);
    const std::size_t replaced = length > 0 ? 1 : 0;
    const Control control = control_of(length > 0 ? *s.begin : ' ');
    std::memmove(s.begin + control.moves.size(), s.begin + replaced, length - replaced);
    control.moves.copy(s.begin, control.moves.size());
    s.high += control.moves.size();
    s.high -= replaced;
    s.unit->gnu.returns_carriage = control.returns;
    return true;
}

}  // namespace tarn::fio
