#include "exceptions/signals.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>

#include "frame/console_lines.h"
#include "frame/end.h"
#include "platform/kernel/control_events.h"
#include "platform/kernel/float_unit.h"
#include "platform/kernel/message_box.h"

namespace tarn::exceptions {
namespace {

constexpr int unknown_signal = -1008;  // in errno
constexpr int first_trapped = 100;
constexpr int trapped_count = 8;
constexpr int first_plain = 200;
constexpr int plain_count = 6;
constexpr int control_break = 0;
constexpr int low_memory = 5;

// How a signal reaches its routine. `index` goes by the classes of traps, but for those that a
// break key or nothing at all stands behind.
enum class Source : std::uint8_t { break_key, trap, missing };
struct Signal {
    Source source;
    int index;
    const char* text;
};
constexpr Signal trapped[trapped_count] = {
    {Source::break_key, 0, "Control-break raised"},
    {Source::trap, trap_class::arithmetic, "Floating point fault raised"},
    {Source::missing, 2, "Key press or release raised"},
    {Source::missing, 3, "Alarm clock interrupt raised"},
    {Source::missing, 4, "Mouse event raised"},
    {Source::trap, trap_class::low_memory, "Down to pages reserve raised"},
    {Source::trap, trap_class::access_violation, "Invalid access to storage fault raised"},
    {Source::trap, trap_class::privileged, "Illegal instruction fault raised"},
};
constexpr const char* plain_texts[plain_count] = {
    "Abnormal termination",  "Termination request sent to program",
    "User-defined signal 1", "User-defined signal 2",
    "User-defined signal 3", "User-defined signal 4",
};

struct Signals {
    SignalRoutine trapped[trapped_count] = {};
    SignalRoutine plain[plain_count] = {};
    Trap break_handler = nullptr;
};
constinit Signals signals;

bool is_ignore(SignalRoutine routine) {
    return reinterpret_cast<std::intptr_t>(routine) == -1;
}

SignalRoutine* entry_of(int number) {
    if (number >= first_trapped && number < first_trapped + trapped_count)
        return &signals.trapped[number - first_trapped];
    if (number >= first_plain && number < first_plain + plain_count)
        return &signals.plain[number - first_plain];
    return nullptr;
}

const char* text_of(int number) {
    return number >= first_plain ? plain_texts[number - first_plain]
                                 : trapped[number - first_trapped].text;
}

void call(SignalRoutine routine, int number) {
    constexpr int float_signal = 101;
    constexpr int detail_offset = 128;
    routine(number, number == float_signal ? state().caught + detail_offset : 0);
}

// A routine is called once: when it runs, the signal is back at its default.
template <int place>
int interlude() {
    const SignalRoutine routine = signals.trapped[place];
    if (!is_ignore(routine)) {
        set_signal(first_trapped + place, nullptr);
        if (routine != nullptr) call(routine, first_trapped + place);
    }
    return place == control_break ? 1 : 0;
}
constexpr Trap interludes[trapped_count] = {interlude<0>, interlude<1>, interlude<2>, interlude<3>,
                                            interlude<4>, interlude<5>, interlude<6>, interlude<7>};

int ignore() {
    if (state().context != nullptr) state().context->floating.status &= 0x7F00;
    platform::clear_exceptions();
    return 0;
}

int ask_for_memory() {
    const int answer = platform::message_box(
        "Tarnick run-time library",
        "Running low on memory\nRelease some memory by\nClosing unused Applications\n",
        platform::mb_ok_cancel | platform::mb_icon_hand | platform::mb_set_foreground);
    if (answer != platform::id_ok) frame::abort_program();
    return 0;
}

Trap handler_for(int place, SignalRoutine routine) {
    if (is_ignore(routine)) {
        if (place == low_memory) return reinterpret_cast<Trap>(std::intptr_t{-1});
        return place == control_break ? interludes[place] : ignore;
    }
    if (routine != nullptr) return interludes[place];
    return place == low_memory ? ask_for_memory : nullptr;
}

int on_break_key(int event) {
    if (signals.break_handler != nullptr) return signals.break_handler();
    return frame::on_control_event(event);
}

[[noreturn]] void end_by_default(int number) {
    frame::console_line(text_of(number));
    frame::exit_program(1);
}

}  // namespace

Trap set_trap_by_index(Trap routine, int index) {
    switch (index) {
        case 0: {
            const Trap before = signals.break_handler;
            signals.break_handler = routine;
            if (routine != nullptr) platform::set_control_handler(on_break_key);
            return before;
        }
        case 2:
            frame::console_line("key_press even not yet supported");
            return nullptr;
        case 3:
            frame::console_line("alarm clock not yet supported");
            return nullptr;
        case 4:
            frame::console_line("Mouse even not yet supported");
            return nullptr;
        default:
            return set_trap(index, routine);
    }
}

SignalRoutine set_signal(int number, SignalRoutine routine) {
    SignalRoutine* entry = entry_of(number);
    if (entry == nullptr || number >= first_plain) {
        errno = unknown_signal;
        return reinterpret_cast<SignalRoutine>(std::intptr_t{-2});
    }
    const SignalRoutine before = *entry;
    const int place = number - first_trapped;
    const Signal& signal = trapped[place];
    const Trap handler = handler_for(place, routine);
    if (signal.source == Source::trap) {
        set_trap(signal.index, handler);
    } else {
        set_trap_by_index(handler, signal.index);
        if (signal.source == Source::missing) return before;
    }
    *entry = routine;
    return before;
}

int raise_signal(int number) {
    SignalRoutine* entry = entry_of(number);
    if (entry == nullptr) {
        errno = unknown_signal;
        return 1;
    }
    const SignalRoutine routine = *entry;
    if (is_ignore(routine)) return 0;
    if (routine == nullptr) {
        if (number != first_trapped) end_by_default(number);
        // To this process alone: its group may hold the user's shell or build.
        ::raise(SIGINT);
        return 0;
    }
    if (number >= first_plain) {
        *entry = nullptr;
    } else {
        set_signal(number, nullptr);
    }
    call(routine, number);
    return 0;
}

}  // namespace tarn::exceptions
