// Any text is list-directed input for any items: the statement ends, and what it stores lies in
// the items.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fio/gnu/statement.h"

using namespace tarn::fio;

namespace {

struct Type {
    ItemType type;
    int kind;
    std::size_t size;
};

constexpr Type types[] = {
    {ItemType::integer, 4, 4},    {ItemType::integer, 16, 16}, {ItemType::logical, 1, 1},
    {ItemType::real, 4, 4},       {ItemType::real, 8, 8},      {ItemType::real, 16, 16},
    {ItemType::complex, 8, 16},   {ItemType::character, 1, 7}, {ItemType::character, 4, 3},
    {ItemType::character, 1, 40}, {ItemType::integer, 1, 1},   {ItemType::logical, 8, 8},
};

}  // namespace

// The first bytes tell the items, the decimal mark and the length of the records; the rest is an
// internal file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t head = 7;
    if (size < head + 1) return 0;
    const std::size_t length = size - head < 255 ? 1 + data[0] % (size - head) : size - head;
    const std::size_t count = (size - head) / length;
    const std::unique_ptr<char[]> text(new char[length * count]);
    std::memcpy(text.get(), data + head, length * count);

    std::int32_t iostat = 0;
    char message[200];
    Caller caller;
    caller.iostat = &iostat;
    caller.iomsg = message;
    caller.iomsg_length = sizeof message;
    caller.catches_error = caller.catches_end = true;
    caller.internal = true;
    TransferSpecifiers specifiers;
    specifiers.reading = true;
    specifiers.list_directed = true;
    ModeSpecifiers modes;
    modes.decimal = "COMMA";
    if ((data[1] & 1) != 0) specifiers.modes = &modes;
    InternalFile file;
    file.base = text.get();
    file.length = length;
    file.count = static_cast<std::int64_t>(count);
    file.rank = 1;
    file.dimension[0] = {file.count, static_cast<std::int64_t>(length), 0};
    specifiers.internal = &file;
    Statement* const statement = begin_transfer(caller, specifiers);
    for (std::size_t i = 2; i < head; ++i) {
        const Type& type = types[data[i] % std::size(types)];
        const std::size_t bytes = type.type == ItemType::character
                                      ? type.size * static_cast<std::size_t>(type.kind)
                                      : type.size;
        const std::size_t items = 1 + data[i] / 64;
        const std::unique_ptr<char[]> room(new char[bytes * items]);
        transfer_items(*statement, type.type, room.get(), type.kind, type.size,
                       static_cast<std::ptrdiff_t>(bytes), items);
    }
    end_transfer(statement);
    return 0;
}
