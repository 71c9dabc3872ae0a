#include "traceback/frame_rules.h"

#include <cstddef>
#include <dlfcn.h>

#include "traceback/byte_cursor.h"
#include "traceback/module.h"

namespace tarn::traceback {
namespace {

// How the tables write addresses.
enum : std::uint8_t {
    pointer_absolute = 0x00,
    pointer_unsigned_leb = 0x01,
    pointer_unsigned_2 = 0x02,
    pointer_unsigned_4 = 0x03,
    pointer_unsigned_8 = 0x04,
    pointer_signed_leb = 0x09,
    pointer_signed_2 = 0x0A,
    pointer_signed_4 = 0x0B,
    pointer_signed_8 = 0x0C,
    pointer_form = 0x0F,
    relative_to_here = 0x10,
    relative_to_data = 0x30,
    relative_mask = 0x70,
    pointer_indirect = 0x80,
    pointer_omitted = 0xFF
};

std::uintptr_t encoded_number(ByteCursor& cursor, std::uint8_t form) {
    switch (form & pointer_form) {
        case pointer_absolute:
        case pointer_unsigned_8:
        case pointer_signed_8:
            return cursor.number<std::uint64_t>();
        case pointer_unsigned_leb:
            return cursor.unsigned_leb();
        case pointer_signed_leb:
            return static_cast<std::uintptr_t>(cursor.signed_leb());
        case pointer_unsigned_2:
            return cursor.number<std::uint16_t>();
        case pointer_signed_2:
            return static_cast<std::uintptr_t>(std::intptr_t{cursor.number<std::int16_t>()});
        case pointer_unsigned_4:
            return cursor.number<std::uint32_t>();
        case pointer_signed_4:
            return static_cast<std::uintptr_t>(std::intptr_t{cursor.number<std::int32_t>()});
        default:
            cursor.fail();
            return 0;
    }
}

std::uintptr_t encoded_pointer(ByteCursor& cursor, std::uint8_t form, const void* data) {
    if (form == pointer_omitted) return 0;
    const auto here = reinterpret_cast<std::uintptr_t>(cursor.at);
    const std::uintptr_t value = encoded_number(cursor, form);
    switch (form & relative_mask) {
        case 0:
            return value;
        case relative_to_here:
            return value + here;
        case relative_to_data:
            return value + reinterpret_cast<std::uintptr_t>(data);
        default:
            cursor.fail();
            return 0;
    }
}

struct CommonInformation {
    std::uint64_t code_factor = 1;
    std::int64_t data_factor = 1;
    std::uint64_t return_column = 0;
    std::uint8_t pointer_encoding = pointer_absolute;
    bool has_augmentation = false;
    bool signal_frame = false;
    ByteCursor program{nullptr, nullptr};
};

// Sets the cursor to the content of a table entry and to its end; false at the table's end.
bool open_entry(ByteCursor& cursor) {
    std::uint64_t length = cursor.number<std::uint32_t>();
    if (length == 0xFFFFFFFF) length = cursor.number<std::uint64_t>();
    if (cursor.bad || length == 0 || length > cursor.left()) return false;
    cursor.end = cursor.at + length;
    return true;
}

bool read_common(ByteCursor cursor, CommonInformation& common) {
    if (!open_entry(cursor)) return false;
    if (cursor.number<std::uint32_t>() != 0) return false;
    const std::uint8_t version = cursor.byte();
    if (version != 1 && version != 3 && version != 4) return false;
    const char* augmentation = cursor.text();
    if (version == 4) cursor.skip(2);  // sizes of an address and of a segment selector
    common.code_factor = cursor.unsigned_leb();
    common.data_factor = cursor.signed_leb();
    common.return_column = version == 1 ? cursor.byte() : cursor.unsigned_leb();
    const unsigned char* program = cursor.at;
    if (*augmentation == 'z') {
        common.has_augmentation = true;
        const std::uint64_t size = cursor.unsigned_leb();
        program = cursor.at + (size <= cursor.left() ? size : 0);
        for (++augmentation; *augmentation != 0; ++augmentation) {
            if (*augmentation == 'R') {
                common.pointer_encoding = cursor.byte();
            } else if (*augmentation == 'P') {
                const std::uint8_t form = cursor.byte();
                encoded_number(cursor, form);
            } else if (*augmentation == 'L') {
                cursor.byte();
            } else if (*augmentation == 'S') {
                common.signal_frame = true;
            } else if (*augmentation != 'B') {
                break;  // its data can't be told, but its size is known
            }
        }
    } else if (*augmentation != 0) {
        return false;
    }
    common.program = ByteCursor(program, cursor.end);
    return !cursor.bad && common.return_column < register_count;
}

// The rules as a table's program builds them up, instruction by instruction.
class Builder {
  public:
    Builder(const CommonInformation& common, FrameRules& rules, std::uintptr_t start)
        : common_(common), rules_(rules), location_(start) {}

    // Runs a program up to the place that the rules are for.
    bool run(ByteCursor program) {
        while (!program.done() && location_ <= rules_.place) {
            if (!step(program)) return false;
        }
        return !program.bad;
    }
    void keep_initial() { initial_ = rules_; }

  private:
    static constexpr std::size_t deepest = 8;

    bool step(ByteCursor& program) {
        const std::uint8_t code = program.byte();
        const unsigned low = code & 0x3F;
        switch (code >> 6) {
            case 1:
                advance(low);
                return true;
            case 2:
                return set(low, RegisterRule::Kind::saved, scaled(program.unsigned_leb()));
            case 3:
                return restore(low);
            default:
                return extended_step(code, program);
        }
    }

    bool extended_step(std::uint8_t code, ByteCursor& program) {
        switch (code) {
            case 0x00:  // nothing
                return true;
            case 0x01:
                location_ = encoded_pointer(program, common_.pointer_encoding, nullptr);
                return !program.bad;
            case 0x02:
                advance(program.byte());
                return true;
            case 0x03:
                advance(program.number<std::uint16_t>());
                return true;
            case 0x04:
                advance(program.number<std::uint32_t>());
                return true;
            case 0x05:
                return set_next(program, RegisterRule::Kind::saved, true);
            case 0x06:
                return restore(program.unsigned_leb());
            case 0x07:
                return set(program.unsigned_leb(), RegisterRule::Kind::undefined, 0);
            case 0x08:
                return set(program.unsigned_leb(), RegisterRule::Kind::same, 0);
            case 0x09: {
                const std::uint64_t which = program.unsigned_leb();
                const std::uint64_t from = program.unsigned_leb();
                return from < register_count &&
                       set(which, RegisterRule::Kind::in_register, static_cast<std::int64_t>(from));
            }
            case 0x0A:
                if (depth_ == deepest) return false;
                kept_[depth_++] = rules_;
                return true;
            case 0x0B:
                if (depth_ == 0) return false;
                rules_ = kept_[--depth_];
                return true;
            case 0x0C: {
                const std::uint64_t which = program.unsigned_leb();
                return frame_from(which, static_cast<std::int64_t>(program.unsigned_leb()));
            }
            case 0x0D:
                return frame_from(program.unsigned_leb(), rules_.frame.offset);
            case 0x0E:
                rules_.frame.offset = static_cast<std::int64_t>(program.unsigned_leb());
                return true;
            case 0x0F:
                return read_expression(program, rules_.frame, RegisterRule::Kind::computed);
            case 0x10:
                return set_expression(program, RegisterRule::Kind::saved_at);
            case 0x11:
                return set_next(program, RegisterRule::Kind::saved, false);
            case 0x12: {
                const std::uint64_t which = program.unsigned_leb();
                return frame_from(which, program.signed_leb() * common_.data_factor);
            }
            case 0x13:
                rules_.frame.offset = program.signed_leb() * common_.data_factor;
                return true;
            case 0x14:
                return set_next(program, RegisterRule::Kind::frame_plus, true);
            case 0x15:
                return set_next(program, RegisterRule::Kind::frame_plus, false);
            case 0x16:
                return set_expression(program, RegisterRule::Kind::computed);
            case 0x2E:  // the size of pushed arguments, which only clean-up needs
                program.unsigned_leb();
                return true;
            default:
                return false;
        }
    }

    void advance(std::uint64_t count) { location_ += count * common_.code_factor; }
    std::int64_t scaled(std::uint64_t count) const {
        return static_cast<std::int64_t>(count) * common_.data_factor;
    }
    // A register that no routine saves (a vector's, say) is read over.
    bool set(std::uint64_t which, RegisterRule::Kind kind, std::int64_t offset) {
        if (which < register_count) rules_.registers[which] = {kind, offset, nullptr, 0};
        return true;
    }
    bool set_next(ByteCursor& program, RegisterRule::Kind kind, bool is_unsigned) {
        const std::uint64_t which = program.unsigned_leb();
        const std::int64_t count =
            is_unsigned ? static_cast<std::int64_t>(program.unsigned_leb()) : program.signed_leb();
        return set(which, kind, count * common_.data_factor);
    }
    bool restore(std::uint64_t which) {
        if (which < register_count) rules_.registers[which] = initial_.registers[which];
        return true;
    }
    bool frame_from(std::uint64_t which, std::int64_t offset) {
        if (which >= register_count) return false;
        rules_.frame = {RegisterRule::Kind::frame_plus, offset, nullptr, 0};
        rules_.frame_register = static_cast<unsigned>(which);
        return true;
    }
    static bool read_expression(ByteCursor& program, RegisterRule& rule, RegisterRule::Kind kind) {
        const std::uint64_t size = program.unsigned_leb();
        rule = {kind, 0, program.at, static_cast<std::uint32_t>(size)};
        program.skip(size);
        return !program.bad;
    }
    bool set_expression(ByteCursor& program, RegisterRule::Kind kind) {
        const std::uint64_t which = program.unsigned_leb();
        RegisterRule rule;
        if (!read_expression(program, rule, kind)) return false;
        if (which < register_count) rules_.registers[which] = rule;
        return true;
    }

    const CommonInformation& common_;
    FrameRules& rules_;
    FrameRules initial_;
    FrameRules kept_[deepest];
    std::size_t depth_ = 0;
    std::uintptr_t location_;
};

bool read_entry(ByteCursor cursor, const void* start, std::uintptr_t place, FrameRules& rules) {
    const void* end = cursor.end;
    if (!open_entry(cursor)) return false;
    const unsigned char* pointer_at = cursor.at;
    const std::uint32_t back = cursor.number<std::uint32_t>();
    if (back == 0 ||
        back > static_cast<std::size_t>(pointer_at - static_cast<const unsigned char*>(start)))
        return false;
    CommonInformation common;
    if (!read_common(ByteCursor(pointer_at - back, end), common)) return false;
    const std::uintptr_t first = encoded_pointer(cursor, common.pointer_encoding, nullptr);
    const std::uintptr_t size = encoded_number(cursor, common.pointer_encoding);
    if (cursor.bad || place < first || place - first >= size) return false;
    if (common.has_augmentation) cursor.skip(cursor.unsigned_leb());
    rules = {};
    rules.place = place;
    rules.signal_frame = common.signal_frame;
    Builder builder(common, rules, first);
    if (!builder.run(common.program)) return false;
    builder.keep_initial();
    return builder.run(cursor);
}

struct SearchRow {
    std::int32_t place;
    std::int32_t entry;
};

}  // namespace

bool find_frame_rules_in(const void* header, const void* start, const void* end,
                         std::uintptr_t place, FrameRules& rules) {
    ByteCursor cursor(header, end);
    constexpr std::uint8_t usual_table = relative_to_data | pointer_signed_4;
    const std::uint8_t version = cursor.byte(), frame_form = cursor.byte();
    const std::uint8_t count_form = cursor.byte(), table_form = cursor.byte();
    if (version != 1 || table_form != usual_table || count_form == pointer_omitted) return false;
    encoded_pointer(cursor, frame_form, header);
    std::uint64_t count = encoded_pointer(cursor, count_form, header);
    if (cursor.bad || count > cursor.left() / sizeof(SearchRow)) return false;
    const auto base = reinterpret_cast<std::uintptr_t>(header);
    const unsigned char* table = cursor.at;
    auto row = [&](std::uint64_t index) {
        SearchRow found;
        std::memcpy(&found, table + index * sizeof found, sizeof found);
        return found;
    };
    const auto wanted = static_cast<std::intptr_t>(place - base);
    std::uint64_t low = 0;
    while (count > 0) {  // the last row that doesn't lie behind the place
        const std::uint64_t half = count / 2;
        if (row(low + half).place <= wanted) {
            low += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    if (low == 0) return false;
    const std::uintptr_t entry =
        base + static_cast<std::uintptr_t>(std::intptr_t{row(low - 1).entry});
    if (entry < reinterpret_cast<std::uintptr_t>(start) ||
        entry >= reinterpret_cast<std::uintptr_t>(end))
        return false;
    return read_entry(ByteCursor(reinterpret_cast<const void*>(entry), end), start, place, rules);
}

bool find_frame_rules(std::uintptr_t place, FrameRules& rules) {
    Module module;
    if (!find_module(place, module) || module.frame_table == nullptr) return false;
    return find_frame_rules_in(module.frame_table, reinterpret_cast<const void*>(module.start),
                               reinterpret_cast<const void*>(module.end), place, rules);
}

}  // namespace tarn::traceback
