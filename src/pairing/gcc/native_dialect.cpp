#include "pairing/gcc/native_dialect.h"

#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "fio/native/statement.h"
#include "fio/unit.h"
#include "frame/link_name.h"
#include "pairing/gcc/data_transfer.h"
#include "pairing/gcc/namelist.h"
#include "pairing/gcc/native_namelist.h"
#include "pairing/gcc/unit_blocks.h"

namespace tarn::gcc {
namespace {

using namespace fio::native;
using fio::ItemType;

// Statements of a program's threads come one after the other: the dialect knows one stream of
// statements. Held from a statement's opening to its end; a statement inside one nests.
void enter() {
    state().critical_section.lock();
    IO_initialise();
}
void leave() {
    state().critical_section.unlock();
}

void* writable(const char* text) {
    return const_cast<char*>(text);
}

void set_text(IOCode code, const char* text, std::size_t length) {
    setOption(code, TypeCode::character, writable(text), static_cast<std::ptrdiff_t>(length));
}

void set_word(IOCode code, std::int32_t* value) {
    setOption(code, TypeCode::integer4, value, -1);
}

void set_long(IOCode code, std::int64_t* value) {
    setOption(code, TypeCode::integer8, value, -1);
}

// The common part: where the outcome goes. That a label is there is all that counts here; the
// compiled program takes it by the outcome bits.
void set_outcome_words(CommonBlock& block) {
    const std::uint32_t flags = block.flags;
    block.flags &= ~outcome_mask;
    current().source_file = block.source_file;
    current().source_line = block.line;
    if ((flags & has_iostat) != 0) set_word(IOCode::iostat, block.iostat);
    if ((flags & has_iomsg) != 0) set_text(IOCode::iomsg, block.iomsg, block.iomsg_length);
    if ((flags & has_err) != 0) setOption(IOCode::err, TypeCode::none, nullptr, -1);
    if ((flags & has_end) != 0) setOption(IOCode::end, TypeCode::none, nullptr, -1);
    if ((flags & has_eor) != 0) setOption(IOCode::eor, TypeCode::none, nullptr, -1);
}

// ---- Data transfers ----

CommonBlock& common_part(DataBlock& block) {
    return reinterpret_cast<CommonBlock&>(block);
}

ActionCode action_of(const DataBlock& block, bool reading) {
    const std::uint32_t flags = block.flags;
    const bool formatted = (flags & (has_format | list_directed)) != 0;
    if ((flags & has_namelist) != 0)
        return reading ? ActionCode::read_namelist : ActionCode::write_namelist;
    if ((flags & has_rec) != 0) {
        if (formatted)
            return reading ? ActionCode::read_direct_formatted : ActionCode::write_direct_formatted;
        return reading ? ActionCode::read_direct_unformatted : ActionCode::write_direct_unformatted;
    }
    if (formatted) return reading ? ActionCode::read_formatted : ActionCode::write_formatted;
    return reading ? ActionCode::read_unformatted : ActionCode::write_unformatted;
}

// Elements of an internal file that lie one behind the other; -1 when they don't.
std::int64_t contiguous_records(const ArrayDescriptor& array) {
    std::int64_t count = 1;
    for (int i = 0; i < array.rank; ++i) {
        const Dimension& dimension = array.dimension[i];
        if (dimension.extent() > 1 && dimension.stride != count) return -1;
        count *= dimension.extent();
    }
    return array.span == static_cast<std::int64_t>(array.element_length) ? count : -1;
}

// What the statement asks for and the dialect doesn't have; empty: nothing.
std::string_view missing_feature(const DataBlock& block) {
    const std::uint32_t flags = block.flags;
    if ((flags & has_namelist) != 0 && (flags & has_internal_unit) != 0)
        return "NAMELIST on an internal file is not available in the native dialect";
    const struct {
        std::uint32_t flag;
        const char* text;
        std::size_t length;
        std::string_view usual;
        std::string_view sentence;
    } modes[] = {
        {has_decimal, block.decimal, block.decimal_length, "POINT ",
         "DECIMAL='COMMA' is not available in the native dialect"},
        {has_round, block.round, block.round_length, "PROCESSOR_DEFINED ",
         "ROUND= is not available in the native dialect"},
        {has_sign, block.sign, block.sign_length, "PROCESSOR_DEFINED ",
         "SIGN= of a READ or WRITE is not available in the native dialect"},
        {has_blank, block.blank, block.blank_length, "NULL ",
         "BLANK= of a READ is not available in the native dialect"},
        {has_delim, block.delim, block.delim_length, "NONE ",
         "DELIM= of a WRITE is not available in the native dialect"},
        {has_pad, block.pad, block.pad_length, "YES ",
         "PAD= of a READ is not available in the native dialect"},
    };
    for (const auto& mode : modes)
        if ((flags & mode.flag) != 0 &&
            IO_find_list_entry({mode.text, mode.length}, mode.usual) != 1)
            return mode.sentence;
    if ((flags & has_internal_unit) == 0) return {};
    if (block.unit == -2) return "CHARACTER(KIND=4) is not available in the native dialect";
    if (block.internal_descriptor != nullptr && contiguous_records(*block.internal_descriptor) < 0)
        return "An internal file must be contiguous in the native dialect";
    return {};
}

void set_transfer_words(DataBlock& block) {
    const std::uint32_t flags = block.flags;
    if ((flags & has_internal_unit) != 0) {
        set_text(IOCode::internal_file, block.internal_unit, block.internal_unit_length);
        if (block.internal_descriptor != nullptr) {
            std::int64_t records = contiguous_records(*block.internal_descriptor);
            set_long(IOCode::internal_records, &records);
        }
    } else {
        set_word(IOCode::unit, &block.unit);
    }
    if ((flags & has_format) != 0) set_text(IOCode::format_text, block.format, block.format_length);
    if ((flags & has_rec) != 0) set_long(IOCode::rec, &block.rec);
    if ((flags & has_pos) != 0) set_long(IOCode::rec, &block.pos);
    if ((flags & has_size) != 0) set_long(IOCode::size, block.size);
    if ((flags & has_advance) != 0) set_text(IOCode::advance, block.advance, block.advance_length);
    if ((flags & has_id) != 0) *block.id = 0;  // transfers are over when they return
}

// The whole of it: a namelist statement has no items, and its end finds nothing left to do.
void run_namelist(DataBlock& block) {
    const fio::NamelistGroup& group = group_of(block);
    NamelistTableBuilder builder(upper_name(group.name));
    std::string missing(missing_feature(block));
    if (missing.empty()) missing = describe_group(group, builder);
    setOption(IOCode::namelist, TypeCode::none, const_cast<void*>(builder.table()), -1);
    fio::Outcome& outcome = block.part().caller.outcome;
    outcome = fio::Outcome::ok;
    if (missing.empty() ? doIO() : IO_not_available(missing)) return;
    outcome = static_cast<fio::Outcome>(current().taken_road);
    leave_statement();
}

void begin_native_transfer(DataBlock& block, bool reading) {
    enter();
    native_road() = {native_transfer, native_row, native_refuse_derived, native_done};
    block.part().owner = Owner::native;
    beginIO(action_of(block, reading));
    set_outcome_words(common_part(block));
    set_transfer_words(block);
    if ((block.flags & has_namelist) != 0) return run_namelist(block);
    const std::string_view missing = missing_feature(block);
    conclude(missing.empty() ? doIO() : IO_not_available(missing));
}

// The item engine of a type, and the size it works on; size 0: it has none for this kind.
struct ItemRoad {
    int size = 0;
    bool (*read)(void* item, std::int64_t count) = nullptr;
    bool (*write)(const void* item, std::int64_t count) = nullptr;
};

ItemRoad road_of(ItemType type, int kind) {
    const bool small = kind == 1 || kind == 2 || kind == 4;
    const bool real = kind == 4 || kind == 8 || kind == 10;
    switch (type) {
        case ItemType::integer:
            return {small || kind == 8 ? kind : 0, I_RSF_main, I_WSF_main};
        case ItemType::logical:
            return {small ? kind : 0, L_RSF_main, L_WSF_main};
        case ItemType::real:
            return {real ? kind : 0, R_RSF_main, R_WSF_main};
        case ItemType::complex:
            return {real ? kind : 0, C_RSF_main, C_WSF_main};
        default:
            return {};
    }
}

bool refuse_kind(ItemType type, int kind) {
    constexpr const char* names[] = {"INTEGER", "LOGICAL", "REAL", "COMPLEX", "CHARACTER"};
    std::string sentence = names[static_cast<int>(type)];
    sentence += "(KIND=" + std::to_string(kind) + ") is not available in the native dialect";
    return IO_not_available(sentence);
}

bool transfer_formatted(IO_type& io, ItemType type, void* item, int kind, std::size_t length) {
    const bool reading = is_read(io.action);
    if (type == ItemType::character) {
        if (kind != 1) return refuse_kind(type, kind);
        auto* const text = static_cast<char*>(item);
        const auto size = static_cast<std::ptrdiff_t>(length);
        return reading ? CH__RSF(text, 1, size) : CH__WSF(text, 1, size);
    }
    const ItemRoad road = road_of(type, kind);
    if (road.size == 0) return refuse_kind(type, kind);
    io.item_size = road.size;
    return reading ? road.read(item, 1) : road.write(item, 1);
}

// The parts of `count` items that are a number, or a character, each.
bool transfer_bytes(ItemType type, void* items, int kind, std::size_t size, std::int64_t count) {
    auto element = static_cast<std::int32_t>(size);
    if (type == ItemType::character) {
        element = kind;
        count *= static_cast<std::int64_t>(size);
    } else if (type == ItemType::complex) {
        element /= 2;
        count *= 2;
    }
    transfer_unformatted(items, count, -element, 0);
    return !items_are_ignored();
}

bool is_formatted(ActionCode action) {
    return is_sequential_formatted(action) || is_direct_formatted(action);
}

Road end_native_transfer(ActionCode action) {
    if (is_formatted(action)) return end_formatted_statement();
    if (is_read(action)) return end_unformatted_read();
    return end_unformatted_write(is_direct(action));
}

// ---- Connection statements ----

// Runs one: `fill` gives it its specifiers, or tells a feature that the dialect doesn't have.
template <typename Fill>
Road run_control(CommonBlock& block, ActionCode action, Fill fill) {
    enter();
    beginIO(action);
    set_outcome_words(block);
    const std::string_view missing = fill();
    Road road = Road::none;
    if (!(missing.empty() ? doIO() : IO_not_available(missing))) {
        road = static_cast<Road>(current().taken_road);
        leave_statement();
    }
    leave();
    block.flags |= static_cast<std::uint32_t>(road);
    return road;
}

void set_unit(CommonBlock& block) {
    set_word(IOCode::unit, &block.unit);
}

void position(CommonBlock* block, ActionCode action) {
    run_control(*block, action, [block]() -> std::string_view {
        set_unit(*block);
        return {};
    });
}

// One text specifier of a block, by the flag that tells whether it was given.
struct TextField {
    std::uint32_t flag;
    IOCode code;
    const char* text;
    std::size_t length;
};

void set_texts(std::uint32_t flags, std::initializer_list<TextField> fields) {
    for (const TextField& field : fields)
        if ((flags & field.flag) != 0) set_text(field.code, field.text, field.length);
}

// A specifier whose only value here is the one that changes nothing.
struct FixedField {
    std::uint32_t flag;
    const char* text;
    std::size_t length;
    std::string_view values;
    std::string_view sentence;
};

std::string_view first_refused(std::uint32_t flags, std::initializer_list<FixedField> fields) {
    for (const FixedField& field : fields)
        if ((flags & field.flag) != 0 &&
            IO_find_list_entry({field.text, field.length}, field.values) < 1)
            return field.sentence;
    return {};
}

std::string_view refused_in_open(const OpenBlock& b) {
    return first_refused(
        b.common.flags,
        {
            {open_flag::convert, b.convert.text, b.convert.length, "NATIVE LITTLE_ENDIAN ",
             "CONVERT= is not available in the native dialect"},
            {open_flag::decimal, b.decimal.text, b.decimal.length, "POINT ",
             "DECIMAL='COMMA' is not available in the native dialect"},
            {open_flag::encoding, b.encoding.text, b.encoding.length, "DEFAULT ",
             "ENCODING='UTF-8' is not available in the native dialect"},
            {open_flag::round, b.round.text, b.round.length, "PROCESSOR_DEFINED ",
             "ROUND= is not available in the native dialect"},
            {open_flag::sign, b.sign.text, b.sign.length, "PROCESSOR_DEFINED ",
             "SIGN= of an OPEN is not available in the native dialect"},
            {open_flag::carriage_control, b.carriage_control.text, b.carriage_control.length,
             "LIST ",
             "CARRIAGECONTROL= is not available in the native dialect: use FORM='PRINTER'"},
        });
}

// Units of NEWUNIT=: the dialect knows no negative numbers, so they come from the far end.
std::int32_t free_unit() {
    constexpr std::int32_t first = 2147480000;
    for (std::int32_t number = first;; --number)
        if (fio::UnitList_getUnit(number) == nullptr) return number;
}

void open(OpenBlock& b) {
    const std::uint32_t flags = b.common.flags;
    const bool chooses = (flags & open_flag::new_unit) != 0;
    std::int32_t number = b.common.unit;
    const Road road = run_control(b.common, ActionCode::open, [&]() -> std::string_view {
        if (chooses) number = free_unit();
        set_word(IOCode::unit, &number);
        set_texts(flags,
                  {
                      {open_flag::file, IOCode::file, b.file.text, b.file.length},
                      {open_flag::status, IOCode::status, b.status.text, b.status.length},
                      {open_flag::access, IOCode::access, b.access.text, b.access.length},
                      {open_flag::form, IOCode::form, b.form.text, b.form.length},
                      {open_flag::blank, IOCode::blank, b.blank.text, b.blank.length},
                      {open_flag::position, IOCode::position, b.position.text, b.position.length},
                      {open_flag::action, IOCode::action, b.action.text, b.action.length},
                      {open_flag::delim, IOCode::delim, b.delim.text, b.delim.length},
                      {open_flag::pad, IOCode::pad, b.pad.text, b.pad.length},
                      {open_flag::share, IOCode::share, b.share.text, b.share.length},
                  });
        if ((flags & open_flag::recl) != 0) set_long(IOCode::recl, &b.recl);
        return refused_in_open(b);
    });
    if (chooses && road == Road::none) *b.new_unit = number;
}

void put_word(char* target, std::size_t length, std::string_view word) {
    const std::size_t count = word.size() < length ? word.size() : length;
    std::memcpy(target, word.data(), count);
    std::memset(target + count, ' ', length - count);
}

// Answers that are the same for every native connection.
void answer_constants(const InquireBlock& b, bool opened) {
    const auto say = [opened](bool asked, char* target, std::size_t length, std::string_view word) {
        if (asked) put_word(target, length, opened ? word : "UNDEFINED");
    };
    const std::uint32_t flags = b.common.flags;
    say((flags & inquire_flag::convert) != 0, b.convert.text, b.convert.length, "NATIVE");
    const std::uint32_t more = (flags & inquire_flag::more_flags) != 0 ? b.more_flags : 0;
    say((more & inquire_more_flag::asynchronous) != 0, b.asynchronous.text, b.asynchronous.length,
        "NO");
    say((more & inquire_more_flag::decimal) != 0, b.decimal.text, b.decimal.length, "POINT");
    say((more & inquire_more_flag::encoding) != 0, b.encoding.text, b.encoding.length, "UNKNOWN");
    say((more & inquire_more_flag::round) != 0, b.round.text, b.round.length, "PROCESSOR_DEFINED");
    say((more & inquire_more_flag::sign) != 0, b.sign.text, b.sign.length, "PROCESSOR_DEFINED");
    say((more & inquire_more_flag::carriage_control) != 0, b.carriage_control.text,
        b.carriage_control.length, "LIST");
    if ((more & inquire_more_flag::pending) != 0) *b.pending = 0;
}

void inquire(InquireBlock& b) {
    const std::uint32_t flags = b.common.flags;
    const std::uint32_t more = (flags & inquire_flag::more_flags) != 0 ? b.more_flags : 0;
    std::int32_t opened = 0;
    run_control(b.common, ActionCode::inquire, [&]() -> std::string_view {
        if ((flags & inquire_flag::file) != 0)
            set_text(IOCode::file, b.file.text, b.file.length);
        else
            set_unit(b.common);
        set_texts(
            flags,
            {
                {inquire_flag::access, IOCode::access, b.access.text, b.access.length},
                {inquire_flag::form, IOCode::form, b.form.text, b.form.length},
                {inquire_flag::blank, IOCode::blank, b.blank.text, b.blank.length},
                {inquire_flag::position, IOCode::position, b.position.text, b.position.length},
                {inquire_flag::action, IOCode::action, b.action.text, b.action.length},
                {inquire_flag::delim, IOCode::delim, b.delim.text, b.delim.length},
                {inquire_flag::pad, IOCode::pad, b.pad.text, b.pad.length},
                {inquire_flag::name, IOCode::name, b.name.text, b.name.length},
                {inquire_flag::sequential, IOCode::sequential, b.sequential.text,
                 b.sequential.length},
                {inquire_flag::direct, IOCode::direct, b.direct.text, b.direct.length},
                {inquire_flag::formatted, IOCode::formatted, b.formatted.text, b.formatted.length},
                {inquire_flag::unformatted, IOCode::unformatted, b.unformatted.text,
                 b.unformatted.length},
                {inquire_flag::read, IOCode::read, b.read.text, b.read.length},
                {inquire_flag::write, IOCode::write, b.write.text, b.write.length},
                {inquire_flag::readwrite, IOCode::readwrite, b.readwrite.text, b.readwrite.length},
            });
        set_texts(more,
                  {
                      {inquire_more_flag::stream, IOCode::stream, b.stream.text, b.stream.length},
                      {inquire_more_flag::share, IOCode::share, b.share.text, b.share.length},
                  });
        if ((flags & inquire_flag::exist) != 0) set_word(IOCode::exist, b.exist);
        if ((flags & inquire_flag::named) != 0) set_word(IOCode::named, b.named);
        if ((flags & inquire_flag::number) != 0) set_word(IOCode::number, b.number);
        if ((flags & inquire_flag::nextrec) != 0) set_long(IOCode::nextrec, b.nextrec);
        if ((flags & inquire_flag::recl) != 0) set_long(IOCode::recl, b.recl);
        if ((flags & inquire_flag::pos) != 0) set_long(IOCode::pos, b.pos);
        if ((more & inquire_more_flag::size) != 0) set_long(IOCode::size, b.size);
        set_word(IOCode::opened, &opened);
        return {};
    });
    if ((flags & inquire_flag::opened) != 0) *b.opened = opened;
    answer_constants(b, opened != 0);
}

void close(CloseBlock& b) {
    run_control(b.common, ActionCode::close, [&]() -> std::string_view {
        set_unit(b.common);
        if ((b.common.flags & close_flag::status) != 0)
            set_text(IOCode::status, b.status.text, b.status.length);
        return {};
    });
}

}  // namespace

bool native_transfer(void* block, ItemType type, void* item, int kind, std::size_t length) {
    (void)block;
    if (items_are_ignored()) return false;
    IO_type& io = current();
    if (!is_formatted(io.action)) return transfer_bytes(type, item, kind, length, 1);
    const bool go_on = transfer_formatted(io, type, item, kind, length);
    conclude(go_on);
    return go_on;
}

void native_row(void* block, ItemType type, void* items, int kind, std::size_t size,
                std::int64_t stride, std::int64_t count) {
    const std::size_t bytes =
        type == ItemType::character ? size * static_cast<std::size_t>(kind) : size;
    const bool dense = stride == static_cast<std::int64_t>(bytes);
    if (dense && !items_are_ignored() && !is_formatted(current().action)) {
        transfer_bytes(type, items, kind, size, count);
        return;
    }
    auto* item = static_cast<char*>(items);
    for (; count > 0; --count, item += stride) {
        if (!native_transfer(block, type, item, kind, size)) return;
    }
}

void native_refuse_derived(void*) {
    if (items_are_ignored()) return;
    conclude(IO_not_available("Input and output by procedures of derived types is not available"));
}

void native_done(void* block) {
    auto& data = *static_cast<DataBlock*>(block);
    const bool over = (data.flags & has_namelist) != 0;
    const auto road = over ? static_cast<std::uint32_t>(data.part().caller.outcome)
                           : static_cast<std::uint32_t>(end_native_transfer(current().action));
    data.part().owner = Owner::none;
    data.flags |= road;
    leave();
}

}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT void tarn_native_st_open(OpenBlock* block) {
    tarn::gcc::open(*block);
}
TARN_EXPORT void tarn_native_st_close(CloseBlock* block) {
    tarn::gcc::close(*block);
}
TARN_EXPORT void tarn_native_st_inquire(InquireBlock* block) {
    inquire(*block);
}
TARN_EXPORT void tarn_native_st_read(DataBlock* block) {
    begin_native_transfer(*block, true);
}
TARN_EXPORT void tarn_native_st_write(DataBlock* block) {
    begin_native_transfer(*block, false);
}
TARN_EXPORT void tarn_native_st_rewind(CommonBlock* block) {
    position(block, ActionCode::rewind);
}
TARN_EXPORT void tarn_native_st_backspace(CommonBlock* block) {
    position(block, ActionCode::backspace);
}
TARN_EXPORT void tarn_native_st_endfile(CommonBlock* block) {
    position(block, ActionCode::endfile);
}
TARN_EXPORT void tarn_native_st_flush(CommonBlock* block) {
    position(block, ActionCode::flush);
}

}  // extern "C"
