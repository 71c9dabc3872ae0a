// `winio@` as gfortran calls it: the arguments by reference, in order, then by value the length of
// the format and of each CHARACTER argument.
#include <cstdarg>
#include <vector>

#include "frame/link_name.h"
#include "frame/state.h"
#include "pairing/gcc/call_record.h"
#include "winio/scanner.h"

namespace tarn::gcc {

namespace {

using winio::word;

// A word below this can't be an address: it is the length of the format, in a call that nobody has
// written down.
constexpr std::uintptr_t lowest_address = 65536;
constexpr std::size_t most_words = 4096;

struct Call {
    std::vector<word> words;
    std::vector<std::int32_t> lengths;
    std::size_t format_length = 0;
};

bool is_character(char token) {
    return token == 'C' || token == 'c';
}

void read_known(const CallRecord& record, std::va_list list, Call& call) {
    for (std::int32_t i = 0; i < record.count; ++i) call.words.push_back(va_arg(list, word));
    call.format_length = va_arg(list, std::size_t);
    for (std::int32_t i = 0; i < record.count; ++i)
        if (is_character(record.tokens[2 * i + 1]))
            call.lengths.push_back(static_cast<std::int32_t>(va_arg(list, word)));
}

// Built without the driver: no more CHARACTER arguments than arguments, so as many words may be
// lengths. What isn't one is never asked for.
void read_guessed(std::va_list list, Call& call) {
    while (call.words.size() < most_words) {
        const word next = va_arg(list, word);
        if (static_cast<std::uintptr_t>(next) < lowest_address && next != 0) {
            call.format_length = static_cast<std::size_t>(next);
            break;
        }
        call.words.push_back(next);
    }
    for (std::size_t i = 0; i < call.words.size(); ++i)
        call.lengths.push_back(static_cast<std::int32_t>(va_arg(list, word)));
}

std::int32_t run(const char* format, const void* return_address, std::va_list list) {
    frame::ensure_up();
    CallRecord record;
    const bool known = find_call_record(return_address, format, record);
    Call call;
    if (known)
        read_known(record, list, call);
    else
        read_guessed(list, call);
    return winio::winio_fortran(format, static_cast<std::int32_t>(call.format_length),
                                call.words.data(), static_cast<std::int32_t>(call.words.size()),
                                call.lengths.data(), static_cast<std::int32_t>(call.lengths.size()),
                                known ? record.tokens : nullptr,
                                known ? record.names.data() : nullptr);
}

}  // namespace

}  // namespace tarn::gcc

extern "C" {

// The spelling of `winio@` in gfortran's code.
TARN_EXPORT std::int32_t winio__(const char* format, ...);

std::int32_t winio__(const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    const std::int32_t result = tarn::gcc::run(format, __builtin_return_address(0), list);
    va_end(list);
    return result;
}

}  // extern "C"
