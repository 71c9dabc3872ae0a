#include "pairing/gcc/call_record.h"

#include <cstring>

namespace tarn::gcc {

namespace {

constexpr unsigned char no_op[3] = {0x0F, 0x1F,
                                    0x82};  // nopl disp32(%rdx): no compiler pads with it
constexpr char magic[8] = {'T', 'A', 'R', 'N', 'C', 'A', 'L', 'L'};
constexpr std::int32_t most_arguments = 4096, most_variants = 64;

std::int32_t take_number(const char*& at) {
    std::int32_t number;
    std::memcpy(&number, at, sizeof number);
    at += sizeof number;
    return number;
}

const char* take_text(const char*& at) {
    const char* text = at;
    at += std::strlen(at) + 1;
    return text;
}

// One call of the record; its format comes back, empty when it is no constant.
const char* take_variant(const char*& at, CallRecord& record) {
    record.names.clear();
    record.count = take_number(at);
    if (record.count < 0 || record.count > most_arguments) record.count = 0;
    const char* format = take_text(at);
    record.tokens = take_text(at);
    for (std::int32_t i = 0; i < record.count; ++i) record.names.push_back(take_text(at));
    return format;
}

// Byte by byte: nothing behind the first difference is looked at.
bool begins_with(const char* text, const char* start) {
    while (*start != 0 && *text == *start) ++text, ++start;
    return *start == 0;
}

}  // namespace

bool find_call_record(const void* return_address, const char* format, CallRecord& record) {
    const auto* code = static_cast<const char*>(return_address);
    if (std::memcmp(code, no_op, sizeof no_op) != 0) return false;
    const char* at = code + sizeof no_op;
    const std::int32_t way = take_number(at);
    at += way;
    if (std::memcmp(at, magic, sizeof magic) != 0) return false;
    at += sizeof magic;
    const std::int32_t variants = take_number(at);
    if (variants < 1 || variants > most_variants) return false;
    bool have_any = false;
    for (std::int32_t i = 0; i < variants; ++i) {
        CallRecord found;
        const char* constant = take_variant(at, found);
        const bool the_one = variants == 1 || (*constant != 0 && begins_with(format, constant));
        if (the_one || (*constant == 0 && !have_any)) {
            record = found;
            have_any = true;
        }
        if (the_one) return true;
    }
    return have_any;
}

}  // namespace tarn::gcc
