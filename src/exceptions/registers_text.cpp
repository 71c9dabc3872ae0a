#include "exceptions/registers_text.h"

#include <bit>
#include <cstdio>
#include <cstring>

#include "exceptions/attempt.h"

namespace tarn::exceptions {
namespace {

struct Flag {
    std::uint64_t bit;
    const char* set;
    const char* clear;
};
constexpr Flag machine_flags[] = {
    {0x001, "[CA", "[NC"}, {0x004, " EP", " OP"}, {0x040, " ZR", " NZ"},
    {0x080, " NS", " SN"}, {0x400, " DN", " UP"}, {0x800, " OV]\n", " NV]\n"},
};
constexpr Flag float_flags[] = {
    {0x40, " SF", ""}, {0x10, " UF", ""}, {0x08, " OV", ""},
    {0x04, " ZD", ""}, {0x02, " DN", ""}, {0x01, " IO", ""},
};

enum class Tag : std::uint8_t { value, zero, invalid };

Tag tag_of(const tarn_float_area& area, unsigned from_top) {
    const unsigned number = ((area.status >> 11 & 7U) + from_top) & 7U;
    if ((area.tags >> number & 1) == 0) return Tag::invalid;
    const auto& st = area.st[from_top];
    const unsigned exponent = st.sign_and_exponent & 0x7FFFU;
    if (exponent == 0 && st.significand == 0) return Tag::zero;
    const bool normal = exponent != 0 && exponent != 0x7FFF && st.significand >> 63 != 0;
    return normal ? Tag::value : Tag::invalid;
}

void add_value(FileWriter& file, const tarn_float_area& area, unsigned from_top) {
    constexpr unsigned patience = 2;
    char text[64];
    // The system's conversion may use the heap.
    const bool done = attempt(patience, [&] {
        long double value = 0;
        std::memcpy(&value, &area.st[from_top], 10);
        std::snprintf(text, sizeof text, "%+.17Le", value);
    });
    file.add(done ? text : "Invalid ***");
}

}  // namespace

void add_integer_registers(FileWriter& file, const Context& context) {
    if ((context.flags & TARN_CONTEXT_INTEGER) == 0) {
        file.add("Integer registers are not available.\n");
        return;
    }
    // Three to a line, in the order that the eye is used to.
    constexpr int order[16] = {0, 3, 1, 2, 6, 7, 5, 4, 8, 9, 10, 11, 12, 13, 14, 15};
    for (int i = 0; i < 16; ++i) {
        file.add(integer_register_names[order[i]]).add(order[i] == 8 || order[i] == 9 ? " =" : "=");
        file.hexadecimal(context.integer[order[i]], 16).add(i % 3 == 2 ? "\n" : "   ");
    }
    file.add("rip=").hexadecimal(context.instruction, 16).add("\n");
    file.add("fs=").hexadecimal(context.fs, 4).add("   gs=").hexadecimal(context.gs, 4);
    file.add("   cs=").hexadecimal(context.cs, 4).add("   ss=").hexadecimal(context.ss, 4);
    file.add("   IOPL=").decimal(static_cast<std::int64_t>(context.eflags >> 12 & 3));
    file.add("\nflgs=").hexadecimal(context.eflags, 8).add(" ");
    for (const Flag& flag : machine_flags)
        file.add((context.eflags & flag.bit) != 0 ? flag.set : flag.clear);
}

void add_float_registers(FileWriter& file, const Context& context) {
    if ((context.flags & TARN_CONTEXT_FLOAT) == 0) {
        file.add("Floating point registers are out of context\n");
        return;
    }
    const tarn_float_area& area = context.floating;
    file.hexadecimal(area.control, 4).add("/").hexadecimal(area.status, 4);
    file.add(" TSTK=").decimal(area.status >> 11 & 7).add(" [");
    for (const Flag& flag : float_flags)
        file.add((area.status & flag.bit) != 0 ? flag.set : flag.clear);
    file.add(" ]\n");
    for (unsigned i = 0; i < 8; ++i) {
        file.add("st(").decimal(i).add(")=");
        switch (tag_of(area, i)) {
            case Tag::value:
                add_value(file, area, i);
                break;
            case Tag::zero:
                file.add("0");
                break;
            case Tag::invalid:
                file.add("Invalid");
                break;
        }
        file.add("\n");
    }
    file.add("mxcsr=").hexadecimal(area.sse_control, 8).add(" [");
    for (const Flag& flag : float_flags)
        file.add(flag.bit < 0x40 && (area.sse_control & flag.bit) != 0 ? flag.set : "");
    file.add(" ]\n");
    for (int i = 0; i < 16; ++i) {
        char value[40];
        std::snprintf(value, sizeof value, "%.17g", std::bit_cast<double>(area.xmm[i][0]));
        file.add("xmm").decimal(i).add(i < 10 ? " =" : "=");
        file.hexadecimal(area.xmm[i][1], 16).add(" ").hexadecimal(area.xmm[i][0], 16);
        file.add("   ").add(value).add("\n");
    }
}

}  // namespace tarn::exceptions
