#include "frame/float_control.h"

#include <algorithm>

#include "frame/debug_info.h"
#include "platform/kernel/float_unit.h"
#include "platform/kernel/system.h"

namespace tarn::frame {
namespace {

template <typename Change>
void change_words(Change change) {
    ensure_up();  // what traps from now on is to be reported
    State& s = state();
    for (int i = 0; i < s.control_table_count; ++i) {
        for (int mode = 0; mode < 8; ++mode) change(s.control_tables[i][mode], mode);
    }
    for (int mode = 0; mode < 8; ++mode) change(s.control_words[mode], mode);
    platform::load_control_word(s.control_words[0]);
}

}  // namespace

void copy_words(const ControlWords& words) {
    change_words([&](std::uint16_t& word, int mode) { word = words[mode]; });
}

void or_words(std::uint16_t mask) {
    change_words([&](std::uint16_t& word, int) { word |= mask; });
}

void and_words(std::uint16_t mask) {
    change_words([&](std::uint16_t& word, int) { word &= mask; });
}

void unmask_all() {
    copy_words(default_words);
}

void undo_underflow_mask() {
    if (underflow_repair_missing()) return;
    if (state().control_words == underflow_masked_words) unmask_all();
}

void set_permit_underflow(std::int32_t value) {
    debug_info().permit_underflow = static_cast<std::uint8_t>(value);
    if (value == 0)
        and_words(static_cast<std::uint16_t>(~(platform::fp_underflow | platform::fp_denormal)));
}

bool register_control_words(std::uint16_t* table) {
    State& s = state();
    if (s.control_table_count >= max_control_tables) return false;
    s.control_tables[s.control_table_count++] = table;
    return true;
}

bool underflow_repair_missing() {
    return platform::system_version.build >= 26100;
}

}  // namespace tarn::frame
