// What the formatted engine keeps in the record of a statement: the format in force, the edit
// descriptor that an item meets, and the list-directed reader's state. New at the start of every
// statement.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio::native {

struct Format;

inline constexpr int max_levels = 21;

// What the list-directed reader found for an item.
enum class ValueKind : std::uint8_t {
    null,      // the item stays as it is
    field,     // `field_width` characters at the cursor
    constant,  // the same, digits of a B, O or Z constant; `edit_code` tells the base
    string,    // a quoted string, `field_width` characters; for a CHARACTER item, where it begins
    complex,   // a complex value, kept for repeats
};

struct EngineState {
    // The format, and the step that comes next. Null until the first step is asked for.
    const Format* format = nullptr;
    std::uint32_t step = 0;
    std::int32_t repeat_counters[max_levels] = {};  // one per bracket level
    std::int32_t field_width = 0;                   // w
    std::int32_t d = -1;                            // -1: absent
    std::int32_t m = -1;
    std::int32_t e = -1;
    std::int32_t scale_factor = 0;
    std::int32_t sign_mode = 0;  // -1 SS, 1 SP, 0 S
    std::int32_t edit_code = 0;
    std::int32_t repeat_left = 0;
    bool saw_repeatable = false;
    std::int64_t pending_skip = 0;  // a move to the right that isn't applied yet
    // Characters of this line that earlier non-advancing statements have put out.
    std::int64_t columns_before = 0;
    // A non-advancing READ ran out of its record: the item at hand is still given its value.
    bool end_of_record = false;

    // List-directed input and complex items.
    bool complex_part = false;       // a part of a complex item is in transfer
    std::int32_t complex_state = 0;  // 0 outside, 1 behind the (, 2 behind the comma
    ValueKind value_kind = ValueKind::null;
    bool separator_pending = false;  // a value was taken, its separator not yet seen
    bool slash_seen = false;
    bool character_item = false;
    bool no_repeat = false;  // r* is not looked for
    // The last value, for repeating it.
    ValueKind last_kind = ValueKind::null;
    char* saved_string = nullptr;     // where its text begins
    std::ptrdiff_t saved_offset = 0;  // of its field, from there
    std::int32_t saved_width = 0;
    std::int32_t saved_edit = 0;
    long double saved_complex[2] = {};
};

}  // namespace tarn::fio::native
