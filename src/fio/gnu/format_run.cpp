#include "fio/gnu/format_run.h"

#include <algorithm>
#include <cstring>

#include "fio/gnu/options.h"
#include "fio/gnu/records.h"

namespace tarn::fio {
namespace {

constexpr Fault no_repeatable_edit{59, iostat_format};
constexpr Fault text_on_input{71, iostat_format};

void put_literal(Statement& s, const FormatNode& node) {
    if (s.reading) return fail(s, text_on_input);
    if (node.length == 0) return write_nothing(s);
    char* at = room(s, node.length);
    if (at == nullptr) return;
    std::memcpy(at, s.format->literals.data() + node.text, node.length);
    filled(s, at + node.length);
}

void next_records(Statement& s, std::int32_t count) {
    for (std::int32_t i = 0; i < count && !s.failed; ++i) {
        if (!s.reading) {
            next_output_record(s);
        } else if (!try_next_input_record(s) && !s.failed && !is_internal_scalar(s)) {
            fail_end_of_file(s);
        }
    }
}

// A move to the right on input passes characters, as far as the record has them.
void skip_input(Statement& s, std::int64_t count) {
    meet_carriage_return(s, static_cast<std::size_t>(count));
    const std::int64_t left = std::max<std::ptrdiff_t>(input_end(s) - s.cursor, 0);
    const std::int64_t passed = count < left ? count : left;
    s.cursor += passed;
    s.size_count += passed;
    if (count > left && s.non_advancing && s.record_at_hand) s.end_of_record = true;
}

void position(Statement& s, Edit edit, std::int64_t n) {
    if (!s.reading) {
        if (edit == Edit::TR) {
            move_right(s, n);
            // A statement that doesn't advance writes its blanks at the end of each record, too;
            // nor does the child of another, whatever it says.
            if (s.non_advancing || s.parent != nullptr) write_nothing(s);
            return;
        }
        if (edit == Edit::TL) return move_left(s, n);
        return move_to_column(s, n - 1);
    }
    const std::int64_t here = s.cursor - s.tab_limit;
    std::int64_t target = n - 1;
    if (edit == Edit::TR) target = here + n;
    if (edit == Edit::TL) target = here - n;
    if (target > here) return skip_input(s, target - here);
    s.cursor = s.tab_limit + (target > 0 ? target : 0);
    if (!s.non_advancing) s.end_of_record = false;
}

void set_mode(Statement& s, const FormatNode& node) {
    EditModes& modes = s.modes;
    switch (node.edit) {
        case Edit::P:
            modes.scale = node.w;
            break;
        case Edit::S:
            modes.sign = processor_sign();
            break;
        case Edit::SP:
            modes.sign = SignMode::plus;
            break;
        case Edit::SS:
            modes.sign = SignMode::suppress;
            break;
        case Edit::BN:
            modes.blank = Blank::null;
            break;
        case Edit::BZ:
            modes.blank = Blank::zero;
            break;
        case Edit::RU:
            modes.round = Rounding::up;
            break;
        case Edit::RD:
            modes.round = Rounding::down;
            break;
        case Edit::RZ:
            modes.round = Rounding::zero;
            break;
        case Edit::RN:
            modes.round = Rounding::nearest;
            break;
        case Edit::RC:
            modes.round = Rounding::compatible;
            break;
        case Edit::RP:
            modes.round = Rounding::processor;
            break;
        case Edit::DC:
            modes.decimal = DecimalMark::comma;
            break;
        case Edit::DP:
            modes.decimal = DecimalMark::point;
            break;
        default:
            break;
    }
}

// At the end of the format with an item in hand: a new record, and the format goes on from its
// reversion point. False: nothing in it could ever take the item.
bool revert(Statement& s, const FormatNode& end) {
    if (!s.data_used) {
        fail(s, no_repeatable_edit);
        return false;
    }
    s.data_used = false;
    next_records(s, 1);
    s.next = &s.format->nodes[end.link];
    return !s.failed;
}

void close_group(Statement& s, const FormatNode& node) {
    std::int32_t& counter = s.counters[node.level];
    if (counter == unlimited) {
        s.next = &s.format->nodes[node.link + 1];
    } else if (counter > 1) {
        --counter;
        s.next = &s.format->nodes[node.link + 1];
    } else {
        ++s.next;
    }
}

}  // namespace

const FormatNode* run_format(Statement& s, bool pending) {
    if (s.repeat_left > 0) return nullptr;  // only without an item in hand
    // A group that repeats without limit must meet an item on each round. Behind the last item it
    // goes on to its next data descriptor as any other repeat does: '(*("<",a,">"))' ends with a
    // `<`.
    bool round_without_data = false;
    while (!s.failed) {
        if (s.reading && s.end_of_record && s.non_advancing) return nullptr;
        const FormatNode& node = *s.next;
        if (is_data_edit(node.edit)) return pending ? data_edit_at_hand(s) : nullptr;
        switch (node.edit) {
            case Edit::open:
                s.counters[node.level] = node.repeat;
                ++s.next;
                break;
            case Edit::close:
                // It doesn't end the statement: what stands ahead of its next data edit descriptor
                // is still carried out.
                if (s.counters[node.level] == unlimited) {
                    if (round_without_data) {
                        if (pending) fail(s, no_repeatable_edit);
                        return nullptr;
                    }
                    round_without_data = true;
                }
                close_group(s, node);
                break;
            case Edit::end:
                if (!pending || !revert(s, node)) return nullptr;
                break;
            case Edit::colon:
                if (!pending) return nullptr;
                ++s.next;
                break;
            case Edit::literal:
                put_literal(s, node);
                ++s.next;
                break;
            case Edit::slash:
                next_records(s, node.w);
                ++s.next;
                break;
            case Edit::dollar:
                s.no_line_end = true;
                ++s.next;
                break;
            case Edit::T:
            case Edit::TL:
            case Edit::TR:
                position(s, node.edit, node.w);
                ++s.next;
                break;
            default:
                set_mode(s, node);
                ++s.next;
                break;
        }
    }
    return nullptr;
}

}  // namespace tarn::fio
