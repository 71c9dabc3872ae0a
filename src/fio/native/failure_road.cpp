// The one road that every failure of a native statement takes, and the way out of a statement.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <setjmp.h>
#include <string>

#include "failure/failure.h"
#include "fio/file/pipe_guard.h"
#include "fio/native/state.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t first_message = 1;
constexpr std::int32_t last_message = 452;
constexpr std::int32_t end_of_file_message = 57;
constexpr std::int32_t end_of_record_message = 215;
constexpr std::int32_t mismatch_message = 51;
constexpr std::int32_t not_available_message = 129;

enum Road { err_road = 1, end_road = 2, eor_road = 3 };

// What went wrong, as the road sees it.
struct Failure {
    std::int32_t code;
    const char* where;          // of a system error
    bool system;                // `code` is a platform error number
    std::string_view own_text;  // instead of the catalogue's
};

std::string_view text_of(const Failure& failure) {
    if (!failure.own_text.empty()) return failure.own_text;
    if (failure.system) return platform::platform_error_text(failure.code);
    return failure::plain_text(failure.code);
}

void copy_message(IO_type& io, std::string_view text) {
    if (io.iomsg_length <= 0) return;
    const auto room = static_cast<std::size_t>(io.iomsg_length);
    std::memset(io.iomsg, ' ', room);
    std::memcpy(io.iomsg, text.data(), text.size() < room ? text.size() : room);
}

// Stores an IOSTAT value; one that its variable is too narrow for becomes the largest it holds.
void store_iostat(const ResultWord& word, std::int32_t value) {
    if (store_integer(word, value)) return;
    store_integer(word, word.type == TypeCode::integer1 ? INT8_MAX : INT16_MAX);
}

// The statement in the source, the unit and its file: for callers that tell where they are.
std::string place_of(const IO_type& io) {
    std::string lines;
    if (io.source_file == nullptr) return lines;
    lines.append("    in ").append(io.source_file);
    lines.append(", line ").append(std::to_string(io.source_line)).append("\n");
    if (io.internal_file) return lines.append("    on an internal file\n");
    if (io.unit_number < 0) return lines;
    lines.append("    on unit ").append(std::to_string(io.unit_number));
    if (io.unit != nullptr && !io.unit->file.path.empty())
        lines.append(", file '").append(io.unit->file.path).append("'");
    return lines.append("\n");
}

// A reader that went away is no fault of the program: it ends as a program in a pipe does.
void end_by_closed_pipe() {
    flush_all_units();
    die_of_closed_pipe();
}

[[noreturn]] void displayError(const Failure& failure) {
    const bool closed_pipe = failure.system && errno == EPIPE;
    if (closed_pipe) end_by_closed_pipe();
    const std::string place = place_of(current());
    failure::set_statement(current().source_file, current().source_line);
    if (failure.system) {
        std::string report = "Win32 error detected in ";
        report.append(failure.where).append(" : ").append(text_of(failure));
        if (!place.empty()) report.append("\n").append(place);
        failure::fail_text(report);
    }
    failure::fail_sentence(failure.code, text_of(failure), place);
}

// Marks the statement as over, to be left through `label`.
void abort_statement(IO_type& io, void* label, int road) {
    io.statement_aborted = true;
    io.taken_label = label;
    io.taken_road = road;
}

void errorHandler(Failure failure) {
    State& s = state();
    IO_type& io = *s.current_io;
    if (failure.code < 0) {
        failure.code = -failure.code;
        displayError(failure);
    }
    char mismatch[sizeof s.mismatch_text];
    if (!failure.system && failure.code == mismatch_message && s.mismatch_text[0] != '\0') {
        std::memcpy(mismatch, s.mismatch_text, sizeof mismatch);
        s.mismatch_text[0] = '\0';
        failure.own_text = mismatch;
    }
    if (io.iostat.address != nullptr) {
        s.last_io_error = failure.code;
        store_iostat(io.iostat, failure.system ? 10000 + failure.code : failure.code);
    }
    if (io.iomsg != nullptr) {
        s.last_io_error = failure.code;
        copy_message(io, text_of(failure));
    }
    if (io.status_word != nullptr) *io.status_word = 3;
    if (io.err_label == nullptr && !io.iostat_given) displayError(failure);
    abort_statement(io, io.err_label, err_road);
}

bool is_inhibited(std::int32_t message) {
    const unsigned char* const table = state().inhibit_table;
    return table != nullptr && message >= first_message && message <= last_message &&
           table[message] != 0;
}

const char* letter_of(std::int32_t edit_code) {
    switch (edit_code) {
        case 1:
            return "A";
        case 4:
            return "D";
        case 5:
            return "E";
        case 6:
            return "F";
        case 7:
            return "G";
        case 9:
            return "I";
        case 12:
            return "L";
        case 14:
            return "B";
        case 15:
            return "O";
        case 26:
        case 29:
            return "Z";
        case 33:
            return "EN";
        case 34:
            return "ES";
        default:
            return nullptr;
    }
}

// A special end of the statement: the IOSTAT value and the label that stand for it.
bool take_special_road(std::int32_t iostat, void* label, std::int32_t status, int road,
                       std::int32_t message) {
    IO_type& io = current();
    if (io.iostat.address != nullptr) {
        store_iostat(io.iostat, iostat);
        io.iostat.address = nullptr;  // message 57 or 215 won't overwrite it
    }
    if (label == nullptr) return IO_error(message);
    if (io.status_word != nullptr) *io.status_word = status;
    abort_statement(io, label, road);
    return false;
}

[[noreturn]] void IO_jump_to_label(void* label, int road) {
    longjmp(*static_cast<jmp_buf*>(label), road);
}

}  // namespace

void inhibit_message(std::int32_t message) {
    if (message < first_message || message > last_message) return;
    State& s = state();
    if (s.inhibit_table == nullptr) {
        s.inhibit_table = static_cast<unsigned char*>(std::calloc(last_message + 1, 1));
        if (s.inhibit_table == nullptr) return;
    }
    s.inhibit_table[message] = 1;
}

bool IO_error(std::int32_t message) {
    if (is_inhibited(message)) return true;
    errorHandler({message, nullptr, false, {}});
    return false;
}

bool IO_system_error(int platform_error, const char* where) {
    errorHandler({platform_error, where, true, {}});
    return false;
}

bool IO_not_available(std::string_view feature) {
    errorHandler({not_available_message, nullptr, false, feature});
    return false;
}

bool IO_end_of_file() {
    IO_type& io = current();
    if (io.unit != nullptr && io.unit->number >= 0 && io.unit->kind != UnitKind::console)
        io.unit->status.end_of_file = true;
    IO_discard_buffer();
    // With message 57 ignored there is still nothing to go on with: the statement ends here, and
    // the items that are left keep their values.
    if (take_special_road(-1, io.end_label, 1, end_road, end_of_file_message))
        abort_statement(io, nullptr, end_road);
    return false;
}

bool IO_end_of_record() {
    IO_type& io = current();
    IO_discard_buffer();
    io.input_length = 0;
    IO_set_size();
    return take_special_road(-2, io.eor_label, 2, eor_road, end_of_record_message);
}

bool Data_Mismatch_Error(std::int32_t edit_code, const char* item) {
    if (is_inhibited(mismatch_message)) return true;
    State& s = state();
    const char* const letter = letter_of(edit_code);
    if (letter != nullptr) {
        if (s.format_position >= 1)
            std::snprintf(s.mismatch_text, sizeof s.mismatch_text,
                          "FORMAT mismatch: %s-Format with %s item (at data position %d).", letter,
                          item, s.format_position);
        else
            std::snprintf(s.mismatch_text, sizeof s.mismatch_text,
                          "FORMAT mismatch: %s-Format with %s item.", letter, item);
        // With nobody to catch it the detailed text is the report.
        const IO_type& io = *s.current_io;
        if (io.err_label == nullptr && !io.iostat_given && io.iomsg == nullptr)
            failure::fail_text(s.mismatch_text);
    }
    return IO_error(mismatch_message);
}

void leave_statement() {
    State& s = state();
    IO_type& io = *s.current_io;
    void* const label = io.per_item ? nullptr : io.taken_label;
    const int road = io.taken_road;
    io.busy = false;
    let_unit_go(io);
    if (&io == s.temp_io) {
        restoreSavedIO();
        s.in_io = s.current_io->busy;
    } else if (label != nullptr || io.action == ActionCode::read_namelist ||
               io.action == ActionCode::write_namelist) {
        s.in_io = false;
        if (io.previous != nullptr) deleteIO();
    } else {
        // The caller goes on behind the call that failed: the record stays, and its items and end
        // call find it aborted.
        s.in_io = false;
        return;
    }
    if (label != nullptr) IO_jump_to_label(label, road);
}

}  // namespace tarn::fio::native
