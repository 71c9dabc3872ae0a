#include "fio/native/io_codes.h"

#include <array>

namespace tarn::fio::native {
namespace {

// What a statement is, as bits of one table row for each action code.
enum Trait : unsigned char {
    reads = 1,
    writes = 2,
    sequential = 4,
    formatted = 8,
    direct = 16,
};

constexpr std::array<unsigned char, 18> traits = {
    0,
    reads | sequential | formatted,   // READ formatted
    writes | sequential | formatted,  // WRITE formatted
    0,                                // ENDFILE
    0,                                // REWIND
    0,                                // BACKSPACE
    0,                                // OPEN
    0,                                // CLOSE
    0,                                // INQUIRE
    reads | sequential,               // READ unformatted
    writes | sequential,              // WRITE unformatted
    reads | direct | formatted,       // READ direct formatted
    writes | direct | formatted,      // WRITE direct formatted
    reads | direct,                   // READ direct unformatted
    writes | direct,                  // WRITE direct unformatted
    reads | sequential | formatted,   // READ namelist
    writes | sequential | formatted,  // WRITE namelist
    0,                                // FLUSH
};

bool has(ActionCode action, unsigned char wanted) {
    const auto index = static_cast<std::size_t>(action);
    return index < traits.size() && (traits[index] & wanted) == wanted;
}

constexpr std::array<std::int32_t, 16> sizes = {0, 2, 4, 4, 8, 8, 16, 2, 4, 0, 1, 1, 10, 20, 14, 8};

}  // namespace

std::int32_t type_size(TypeCode type) {
    const auto index = static_cast<std::size_t>(type);
    return index < sizes.size() ? sizes[index] : 0;
}

bool is_read(ActionCode action) {
    return has(action, reads);
}
bool is_write(ActionCode action) {
    return has(action, writes);
}
bool is_sequential_formatted(ActionCode action) {
    return has(action, sequential | formatted);
}
bool is_direct_formatted(ActionCode action) {
    return has(action, direct | formatted);
}
bool is_direct(ActionCode action) {
    return has(action, direct);
}
bool is_sequential(ActionCode action) {
    return has(action, sequential);
}
bool is_control(ActionCode action) {
    return !is_sequential(action) && !is_direct(action);
}

}  // namespace tarn::fio::native
