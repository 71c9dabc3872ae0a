#include "fio/gnu/fault.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "failure/failure.h"
#include "fio/file/pipe_guard.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault fault_end{57, iostat_end};
constexpr Fault fault_eor{215, iostat_eor};

// The catalogue's sentence for a failure of the system, or 0 where it has none.
int sentence_of_errno(int errno_value) {
    switch (errno_value) {
        case ENOENT:
            return 128;
        case ENOTDIR:
            return 146;
        case EISDIR:
            return 140;
        case EEXIST:
            return 125;
        case EACCES:
        case EPERM:
        case EROFS:
            return 44;
        case EMFILE:
        case ENFILE:
            return 116;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return 117;
        case EBUSY:
        case ETXTBSY:
            return 134;
        case ENAMETOOLONG:
            return 414;
        default:
            return 0;
    }
}

std::string sentence(std::string_view text, std::string_view detail) {
    std::string line(text);
    while (!line.empty() && line.back() == ' ') line.pop_back();
    if (!detail.empty()) line.append(" (").append(detail).append(")");
    return line;
}

// The lines behind the sentence: the statement in the source, the unit and its file.
std::string place_of(const Caller& caller) {
    std::string lines;
    if (caller.source_file != nullptr && caller.line > 0) {
        lines.append("    in ").append(caller.source_file);
        lines.append(", line ").append(std::to_string(caller.line)).append("\n");
    }
    if (caller.has_unit) {
        lines.append("    on unit ").append(std::to_string(caller.unit));
        const Unit* unit = UnitList_getUnit(caller.unit);
        if (unit != nullptr && !unit->file.path.empty()) {
            lines.append(", file '").append(unit->file.path).append("'");
        }
        lines.append("\n");
    } else if (caller.internal) {
        lines.append("    on an internal file\n");
    }
    return lines;
}

std::string place_of_failure(const Caller& caller) {
    failure::set_statement(caller.source_file, caller.line);
    return place_of(caller);
}

// The text of a report on one line, without its number.
std::string one_line(const Caller& caller, std::string_view message) {
    std::string text(message);
    const std::string place = place_of(caller);
    for (std::size_t from = 0; from < place.size();) {
        const std::size_t begin = place.find_first_not_of(' ', from);
        const std::size_t end = place.find('\n', begin);
        text.append(", ").append(place, begin, end - begin);
        from = end + 1;
    }
    return text;
}

void store_message(const Caller& caller, std::string_view sentence) {
    if (caller.iomsg == nullptr) return;
    const std::string message = one_line(caller, sentence);
    const std::size_t count = std::min(message.size(), caller.iomsg_length);
    std::memcpy(caller.iomsg, message.data(), count);
    std::memset(caller.iomsg + count, ' ', caller.iomsg_length - count);
}

// Stores what the program asked to hear and tells whether it catches the fault. Without a message
// what IOMSG= holds stays.
bool deliver(Caller& caller, std::int32_t iostat, std::string_view message) {
    // The first fault of a statement is the one that counts.
    if (caller.outcome != Outcome::ok) return true;
    if (caller.iostat != nullptr) *caller.iostat = iostat;
    if (!message.empty()) store_message(caller, message);
    if (iostat == iostat_end) {
        caller.outcome = Outcome::end;
        return caller.catches_end;
    }
    if (iostat == iostat_eor) {
        caller.outcome = Outcome::eor;
        return caller.catches_eor;
    }
    caller.outcome = Outcome::error;
    return caller.catches_error;
}

// A reader that went away is no fault of the program: it ends as a program in a pipe does.
void end_by_closed_pipe() {
    flush_all_units();
    die_of_closed_pipe();
}

}  // namespace

void raise_fault(Caller& caller, Fault fault, std::string_view detail) {
    if (caller.outcome == Outcome::ok) caller.fault_number = fault.number;
    const std::string message = sentence(failure::plain_text(fault.number), detail);
    if (deliver(caller, fault.iostat, message)) return;
    failure::fail_sentence(fault.number, message, place_of_failure(caller));
}

void raise_system_fault(Caller& caller, int errno_value, std::string_view detail) {
    const int number = sentence_of_errno(errno_value);
    if (caller.outcome == Outcome::ok) caller.system_error = errno_value;
    const std::string message =
        sentence(number != 0 ? failure::plain_text(number) : std::strerror(errno_value), detail);
    if (deliver(caller, errno_value, message)) return;
    if (errno_value == EPIPE) end_by_closed_pipe();
    failure::fail_sentence(number != 0 ? number : 168, message, place_of_failure(caller));
}

void raise_procedure_fault(Caller& caller, std::int32_t iostat, std::string_view message) {
    // A record that was too short for a child has been padded. gfortran's programs go on when
    // nobody has asked to hear of it.
    if (iostat == iostat_eor && !caller.catches_eor) return;
    if (deliver(caller, iostat, {})) return;
    while (!message.empty() && (message.back() == ' ' || message.back() == '\0')) {
        message.remove_suffix(1);
    }
    int number = 381;
    if (iostat == iostat_end) number = fault_end.number;
    std::string text(failure::plain_text(number));
    if (!message.empty()) {
        text = message;
    } else if (number == 381) {
        text.append(" (a procedure of a derived type returned IOSTAT ");
        text.append(std::to_string(iostat)).append(")");
    }
    failure::fail_sentence(number, text, place_of_failure(caller));
}

void raise_end_of_file(Caller& caller) {
    raise_fault(caller, fault_end);
}

void raise_end_of_record(Caller& caller) {
    raise_fault(caller, fault_eor);
}

}  // namespace tarn::fio
