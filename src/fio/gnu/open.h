// OPEN in the gnu dialect.
#pragma once

#include <cstdint>
#include <string_view>

#include "fio/gnu/fault.h"

namespace tarn::fio {

// What the compiled program asks. A text without an address wasn't given.
struct OpenSpecifiers {
    std::int32_t unit = 0;
    std::int32_t* new_unit = nullptr;  // NEWUNIT=
    bool has_recl = false;
    std::int64_t recl = 0;
    bool read_only = false;  // READONLY, an ACTION='READ' that protects the file
    std::string_view file, status, access, form, blank, position, action, delim, pad, convert;
    std::string_view decimal, encoding, round, sign, asynchronous, share, carriage_control;
};

void open_unit(Caller& caller, const OpenSpecifiers& specifiers);

}  // namespace tarn::fio
