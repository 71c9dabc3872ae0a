// INQUIRE in the gnu dialect, by unit and by file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fio/gnu/fault.h"

namespace tarn::fio {

// A CHARACTER variable that hears an answer. Without an address it wasn't asked for.
struct TextAnswer {
    char* text = nullptr;
    std::size_t length = 0;
};

struct InquiryTexts {
    TextAnswer name, access, sequential, direct, form, formatted, unformatted, blank, position;
    TextAnswer action, read, write, readwrite, delim, pad, convert, asynchronous, decimal;
    TextAnswer encoding, round, sign, stream, share, carriage_control;
};

// What is asked, each answer by the address of its variable, null when it isn't wanted.
struct Inquiry {
    bool by_file = false;
    std::string_view file;
    std::int32_t* exist = nullptr;
    std::int32_t* opened = nullptr;
    std::int32_t* number = nullptr;
    std::int32_t* named = nullptr;
    std::int32_t* pending = nullptr;
    const std::int32_t* id = nullptr;
    std::int64_t* nextrec = nullptr;
    std::int64_t* recl = nullptr;
    std::int64_t* pos = nullptr;
    std::int64_t* size = nullptr;
    const InquiryTexts* texts = nullptr;  // most ask for none of them
};

void inquire(Caller& caller, const Inquiry& inquiry);

}  // namespace tarn::fio
