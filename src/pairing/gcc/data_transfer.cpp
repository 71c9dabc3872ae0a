#include "pairing/gcc/data_transfer.h"

#include "fio/gnu/items.h"
#include "fio/gnu/unformatted.h"
#include "pairing/gcc/namelist.h"

namespace tarn::gcc {

using fio::ItemType;
using fio::Statement;

namespace {

void fill_caller(const DataBlock& block, fio::Caller& caller) {
    const std::uint32_t flags = block.flags;
    const bool tells = (flags & has_iostat) != 0;
    const std::uint32_t caught = tells ? has_err | has_end | has_eor : flags;
    caller.source_file = block.source_file;
    caller.line = block.line;
    caller.iostat = tells ? block.iostat : nullptr;
    caller.iomsg = (flags & has_iomsg) != 0 ? block.iomsg : nullptr;
    caller.iomsg_length = block.iomsg_length;
    caller.catches_error = (caught & has_err) != 0;
    caller.catches_end = (caught & has_end) != 0;
    caller.catches_eor = (caught & has_eor) != 0;
    caller.unit = block.unit;
    caller.has_unit = caller.internal = false;
    caller.outcome = fio::Outcome::ok;
}

void fill_modes(const DataBlock& block, fio::ModeSpecifiers& specs) {
    const std::uint32_t flags = block.flags;
    if ((flags & has_advance) != 0) specs.advance = {block.advance, block.advance_length};
    if ((flags & has_asynchronous) != 0) {
        specs.asynchronous = {block.asynchronous, block.asynchronous_length};
    }
    if ((flags & has_blank) != 0) specs.blank = {block.blank, block.blank_length};
    if ((flags & has_decimal) != 0) specs.decimal = {block.decimal, block.decimal_length};
    if ((flags & has_delim) != 0) specs.delim = {block.delim, block.delim_length};
    if ((flags & has_pad) != 0) specs.pad = {block.pad, block.pad_length};
    if ((flags & has_round) != 0) specs.round = {block.round, block.round_length};
    if ((flags & has_sign) != 0) specs.sign = {block.sign, block.sign_length};
}

// The unit number tells the kind of an internal file's characters: -1 for 1 byte, -2 for 4.
constexpr std::int32_t wide_internal_unit = -2;

void fill_internal(const DataBlock& block, fio::InternalFile& file) {
    file.base = block.internal_unit;
    file.length = block.internal_unit_length;
    file.char_kind = block.unit == wide_internal_unit ? 4 : 1;
    file.count = 1;
    file.rank = 0;
    const ArrayDescriptor* array = block.internal_descriptor;
    if (array == nullptr) return;
    file.rank = array->rank;
    for (int i = 0; i < file.rank; ++i) {
        const Dimension& dimension = array->dimension[i];
        file.dimension[i] = {dimension.extent(), dimension.stride * array->element_step(), 0};
        file.count *= dimension.extent();
    }
}

// The block's record needs more than a quick one can do.
[[gnu::noinline]] void leave_quick_road(DataBlock& block) {
    PrivatePart& part = block.part();
    fill_caller(block, part.caller);
    part.statement = fio::leave_quick_record(part.record, part.caller);
    part.owner = Owner::gnu;
}

using ItemRow = void (*)(DataBlock& block, ItemType type, char* items, int kind, std::size_t size,
                         std::int64_t stride, std::int64_t count);

void gnu_row(DataBlock& block, ItemType type, char* items, int kind, std::size_t size,
             std::int64_t stride, std::int64_t count) {
    transfer_items(statement_of(block), type, items, kind, size, stride,
                   static_cast<std::size_t>(count));
}

void quick_row(DataBlock& block, ItemType type, char* items, int kind, std::size_t size,
               std::int64_t stride, std::int64_t count) {
    PrivatePart& part = block.part();
    if (part.owner == Owner::quick) {
        const std::size_t bytes = fio::raw_size(type, kind, size);
        const std::size_t unit = fio::turned_size(type, kind, size);
        if (pass_row_quickly(part.record, items, bytes, unit, stride,
                             static_cast<std::size_t>(count))) {
            return;
        }
        leave_quick_road(block);
    }
    gnu_row(block, type, items, kind, size, stride, count);
}

void native_row(DataBlock& block, ItemType type, char* items, int kind, std::size_t size,
                std::int64_t stride, std::int64_t count) {
    native_road().row(&block, type, items, kind, size, stride, count);
}

// Steps through the array, one innermost row at a time; rows that follow each other in memory go
// as one.
void walk(DataBlock& block, const ArrayDescriptor& array, ItemType type, int kind, std::size_t size,
          ItemRow row) {
    if (array.rank == 1) {
        const Dimension& only = array.dimension[0];
        const std::int64_t count = only.extent();
        if (count > 0)
            row(block, type, array.base, kind, size, only.stride * array.element_step(), count);
        return;
    }
    std::int64_t extent[15];
    std::int64_t stride[15];
    int rank = 0;
    for (int i = 0; i < array.rank; ++i) {
        const std::int64_t count = array.dimension[i].extent();
        if (count == 0) return;
        const std::int64_t step = array.dimension[i].stride * array.element_step();
        if (rank > 0 && step == stride[rank - 1] * extent[rank - 1]) {
            extent[rank - 1] *= count;
        } else {
            extent[rank] = count;
            stride[rank] = step;
            ++rank;
        }
    }
    if (rank == 0) return row(block, type, array.base, kind, size, 0, 1);
    std::int64_t index[15] = {};
    char* at = array.base;
    for (;;) {
        row(block, type, at, kind, size, stride[0], extent[0]);
        int i = 1;
        for (; i < rank; ++i) {
            at += stride[i];
            if (++index[i] < extent[i]) break;
            at -= stride[i] * extent[i];
            index[i] = 0;
        }
        if (i >= rank) return;
    }
}

ItemRow row_of(Owner owner) {
    switch (owner) {
        case Owner::native:
            return native_row;
        case Owner::quick:
            return quick_row;
        default:
            return gnu_row;
    }
}

const char* format_of(const DataBlock& block) {
    return (block.flags & has_format) != 0 ? block.format : nullptr;
}

[[gnu::noinline]] Statement* begin_any(DataBlock& block, bool reading) {
    fio::Caller& caller = block.part().caller;
    const std::uint32_t flags = block.flags;
    // A unit number outside 32 bits has been reported before the statement.
    if ((flags & outcome_mask) != 0) return fio::refuse_transfer(caller);
    fio::TransferSpecifiers specs;
    specs.reading = reading;
    specs.list_directed = (flags & list_directed) != 0;
    specs.format = format_of(block);
    specs.format_length = specs.format != nullptr ? block.format_length : 0;
    if ((flags & has_namelist) != 0) specs.namelist = &group_of(block);
    specs.has_rec = (flags & has_rec) != 0;
    specs.rec = specs.has_rec ? block.rec : 0;
    specs.has_pos = (flags & has_pos) != 0;
    specs.pos = specs.has_pos ? block.pos : 0;
    specs.has_end = (flags & has_end) != 0;
    specs.has_eor = (flags & has_eor) != 0;
    specs.dec_extensions = (flags & has_dec_extensions) != 0;
    specs.size = (flags & has_size) != 0 ? block.size : nullptr;
    specs.id = (flags & has_id) != 0 ? block.id : nullptr;
    fio::ModeSpecifiers modes;
    if ((flags & has_some_mode) != 0) {
        fill_modes(block, modes);
        specs.modes = &modes;
    }
    if ((flags & has_internal_unit) == 0) return begin_transfer(caller, specs);
    fio::InternalFile internal;
    fill_internal(block, internal);
    specs.internal = &internal;
    return begin_transfer(caller, specs);
}

// False, and nothing has happened: the statement has to be begun in full.
bool begin_usual_records(DataBlock& block, bool reading) {
    PrivatePart& part = block.part();
    const bool direct = (block.flags & has_rec) != 0;
    fio::Unit* unit = fio::hold_for_records(block.unit, reading, direct);
    if (unit == nullptr) return false;
    const std::int64_t number = direct ? block.rec : 0;
    if (begin_quick_record(part.record, *unit, reading, number)) {
        part.owner = Owner::quick;
        return true;
    }
    part.owner = Owner::gnu;
    fill_caller(block, part.caller);
    part.statement = begin_records(*unit, part.caller, reading, number);
    return true;
}

}  // namespace

ItemType item_type(std::int8_t type) {
    switch (type) {
        case 1:
            return ItemType::integer;
        case 2:
            return ItemType::logical;
        case 3:
            return ItemType::real;
        case 4:
            return ItemType::complex;
        default:
            return ItemType::character;
    }
}

Statement& statement_of(DataBlock& block) {
    if (block.part().owner == Owner::quick) leave_quick_road(block);
    return *static_cast<Statement*>(block.part().statement);
}

NativeRoad& native_road() {
    static NativeRoad road;
    return road;
}

void begin_data_transfer(DataBlock& block, bool reading) {
    PrivatePart& part = block.part();
    const std::uint32_t flags = block.flags;
    const std::uint32_t unusual = flags & (reading ? unusual_in_read : unusual_in_write);
    const bool unformatted = (flags & (has_format | list_directed)) == 0;
    if ((unusual & ~has_rec) == 0 && unformatted && begin_usual_records(block, reading)) return;
    part.owner = Owner::gnu;
    fill_caller(block, part.caller);
    part.statement = nullptr;
    if (unusual == 0 && !unformatted) {
        part.statement =
            fio::begin_usual_transfer(part.caller, reading, format_of(block), block.format_length);
    }
    if (part.statement == nullptr) part.statement = begin_any(block, reading);
}

void begin_measuring(DataBlock& block) {
    PrivatePart& part = block.part();
    block.flags &= ~outcome_mask;
    fill_caller(block, part.caller);
    part.owner = Owner::gnu;
    part.statement =
        begin_iolength(part.caller, (block.flags & has_iolength) != 0 ? block.iolength : nullptr);
}

void end_data_transfer(DataBlock& block) {
    PrivatePart& part = block.part();
    if (part.owner == Owner::native) {
        native_road().done(&block);
        return release_group(block);
    }
    if (part.owner == Owner::quick) {
        if (end_quick_record(part.record)) {
            part.owner = Owner::none;
            return;
        }
        leave_quick_road(block);
    }
    end_transfer(static_cast<Statement*>(part.statement));
    part.owner = Owner::none;
    release_group(block);
    block.flags |= static_cast<std::uint32_t>(part.caller.outcome);
}

void transfer_item(DataBlock& block, ItemType type, void* item, int kind, std::size_t size) {
    PrivatePart& part = block.part();
    if (part.owner == Owner::native) {
        native_road().transfer(&block, type, item, kind, size);
        return;
    }
    if (part.owner == Owner::quick &&
        pass_quickly(part.record, static_cast<char*>(item), fio::raw_size(type, kind, size),
                     fio::turned_size(type, kind, size))) {
        return;
    }
    Statement& statement = statement_of(block);
    statement.transfer_item(statement, type, item, kind, size);
}

void transfer_complex(DataBlock& block, void* item, int kind) {
    const std::size_t size = 2 * fio::real_size(kind);
    PrivatePart& part = block.part();
    if (part.owner == Owner::native) {
        native_road().transfer(&block, ItemType::complex, item, kind, size);
        return;
    }
    if (part.owner == Owner::quick &&
        pass_quickly(part.record, static_cast<char*>(item), size, size / 2)) {
        return;
    }
    fio::transfer_items(statement_of(block), ItemType::complex, item, kind, size, 0, 1);
}

void transfer_array(DataBlock& block, const ArrayDescriptor& array, int kind,
                    std::size_t character_length) {
    const ItemType type = item_type(array.type);
    const std::size_t size = type == ItemType::character ? character_length : array.element_length;
    const Owner owner = block.part().owner;
    if (owner == Owner::quick && array.rank == 1) {
        const Dimension& only = array.dimension[0];
        return quick_row(block, type, array.base, kind, size, only.stride * array.element_step(),
                         only.extent());
    }
    walk(block, array, type, kind, size, row_of(owner));
}

}  // namespace tarn::gcc
