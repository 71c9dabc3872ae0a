// What the formatted engine keeps in the record of a statement: the format in force, the edit
// descriptor that an item meets, and the list-directed reader's state. Zero at the start of a
// record's life; the engine sets what it needs when a statement begins.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio::native {

inline constexpr int max_levels = 21;

struct EngineState {
    // The format.
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
    std::ptrdiff_t pending_skip = 0;  // a move to the right that isn't applied yet
    void* business_edit = nullptr;

    // List-directed input and complex items.
    bool complex_part = false;  // a part of a complex item is in transfer
    bool imaginary_part = false;
    std::int32_t complex_state = 0;  // 0 outside, 1 behind the (, 2 behind the comma
    std::int32_t value_kind = 0;
    std::int32_t last_kind = 0;
    bool separator_pending = false;
    bool slash_seen = false;
    bool character_item = false;
    bool no_repeat = false;
    char* saved_string = nullptr;  // start of a string, for repeats
    std::int64_t saved_integer = 0;
    float saved_real4[2] = {};
    double saved_real8[2] = {};
    long double saved_real10[2] = {};
    std::int32_t saved_logical = 0;
};

}  // namespace tarn::fio::native
