// Any characters are a field of any kind: a value or a fault that lies in the field.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fio/gnu/edit_in.h"

using namespace tarn::fio;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    EditModes modes;
    modes.blank = (data[0] & 1) != 0 ? Blank::zero : Blank::null;
    modes.decimal = (data[0] & 2) != 0 ? DecimalMark::comma : DecimalMark::point;
    modes.round = static_cast<Rounding>((data[0] >> 2) % 7);
    modes.scale = static_cast<std::int8_t>(data[1]);
    const std::int32_t d = data[2] & 31;
    const std::size_t width = size - 3;
    // The field lies alone, so that a sanitizer sees a look beyond it.
    const std::unique_ptr<char[]> field(new char[width != 0 ? width : 1]);
    if (width != 0) std::memcpy(field.get(), data + 3, width);

    const auto check = [&](const FieldResult& result, const unsigned char* item) {
        require(result.position <= width);
        if (result.fault.number == 0) return;
        require(result.fault.iostat >= iostat_read_value);
        for (int i = 0; i < 16; ++i) require(item[i] == 0xA5);
    };
    require(field_end(field.get(), width, modes) <= width);
    alignas(16) unsigned char item[16];
    for (const int kind : {1, 2, 4, 8, 16}) {
        std::memset(item, 0xA5, sizeof item);
        check(get_integer(field.get(), width, item, kind, modes), item);
        if (kind == 16) continue;
        std::memset(item, 0xA5, sizeof item);
        check(get_logical(field.get(), width, item, kind), item);
    }
    for (const int base : {2, 8, 16}) {
        std::memset(item, 0xA5, sizeof item);
        check(get_bits(field.get(), width, base, item, 8, modes), item);
    }
    for (const int kind : {4, 8, 10, 16}) {
        std::memset(item, 0xA5, sizeof item);
        check(get_real(field.get(), width, d, item, kind, modes), item);
    }
    return 0;
}
