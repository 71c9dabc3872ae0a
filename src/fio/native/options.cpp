// What a specifier stores. Character specifiers come as an address and a length, all others as the
// address of a value or of a result, with the type of what lies there.
#include "fio/native/options.h"

#include <climits>
#include <cstring>

#include "fio/native/state.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t invalid_unit = -2;  // for a number that no unit can have

template <typename T>
T read_as(const void* address) {
    T value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

template <typename T>
bool write_as(void* address, std::int64_t value) {
    const T narrow = static_cast<T>(value);
    if (narrow != value) return false;
    std::memcpy(address, &narrow, sizeof narrow);
    return true;
}

TextWord text_word(void* value, std::ptrdiff_t length) {
    return {static_cast<char*>(value), length < 0 ? 0 : length, true};
}

void blank_fill(void* address, std::ptrdiff_t length) {
    if (length > 0) std::memset(address, ' ', static_cast<std::size_t>(length));
}

// The keyword, text and result words of the specifiers that do nothing but store their text.
TextWord* text_slot(SpecBlock& spec, IOCode code) {
    switch (code) {
        case IOCode::access:
            return &spec.access;
        case IOCode::blank:
            return &spec.blank;
        case IOCode::direct:
            return &spec.direct;
        case IOCode::file:
            return &spec.file;
        case IOCode::form:
            return &spec.form;
        case IOCode::formatted:
            return &spec.formatted;
        case IOCode::name:
            return &spec.name;
        case IOCode::sequential:
            return &spec.sequential;
        case IOCode::status:
            return &spec.status;
        case IOCode::unformatted:
            return &spec.unformatted;
        case IOCode::filetype:
            return &spec.filetype;
        case IOCode::new_name:
            return &spec.new_name;
        case IOCode::transparent:
            return &spec.transparent;
        case IOCode::share:
            return &spec.share;
        case IOCode::position:
            return &spec.position;
        case IOCode::action:
            return &spec.action;
        case IOCode::delim:
            return &spec.delim;
        case IOCode::pad:
            return &spec.pad;
        case IOCode::advance:
            return &spec.advance;
        case IOCode::readwrite:
            return &spec.readwrite;
        case IOCode::read:
            return &spec.read;
        case IOCode::write:
            return &spec.write;
        case IOCode::stream:
            return &spec.stream;
        default:
            return nullptr;
    }
}

ResultWord* result_slot(SpecBlock& spec, IOCode code) {
    switch (code) {
        case IOCode::exist:
            return &spec.exist;
        case IOCode::named:
            return &spec.named;
        case IOCode::nextrec:
            return &spec.nextrec;
        case IOCode::number:
            return &spec.number;
        case IOCode::opened:
            return &spec.opened;
        case IOCode::pos:
            return &spec.pos;
        default:
            return nullptr;
    }
}

// The code stream behind the jump around a FORMAT statement. The jump takes 5 bytes; where a short
// one of 2 bytes stands with it, the stream begins 7 bytes on.
const std::uint16_t* behind_jump(const void* label) {
    constexpr unsigned char short_jump = 0xEB;
    const auto* code = static_cast<const unsigned char*>(label);
    const bool two_jumps = code[5] == short_jump || (code[0] == short_jump && code[5] != 0xD9);
    return reinterpret_cast<const std::uint16_t*>(code + (two_jumps ? 7 : 5));
}

void set_format(IO_type& io, const std::uint16_t* stream, const std::uint16_t* end) {
    io.format_ptr = stream;
    io.format_end = end;
}

void set_format_text(IO_type& io, void* text, std::ptrdiff_t length) {
    io.format_text = static_cast<const char*>(text);
    io.format_text_length = length < 0 ? length : length * io.format_elements;
    io.run_time_format = true;
}

void set_internal_file(IO_type& io, void* start, std::ptrdiff_t length) {
    if (!io.count_given) io.internal_record_length = length < 0 ? 0 : length;
    io.internal_file = true;
    io.internal_start = static_cast<char*>(start);
    io.internal_cursor = io.internal_start;
    io.internal_end = io.internal_start + io.internal_records_left * io.internal_record_length;
}

// The unit itself is looked up when the statement starts, and held until it ends.
void set_unit(IO_type& io, TypeCode type, const void* value) {
    const std::int64_t number = load_integer(type, value);
    io.spec_block.unit_given = true;
    io.unit_number =
        number < INT_MIN || number > INT_MAX ? invalid_unit : static_cast<std::int32_t>(number);
}

// The range is checked when the statement starts, with all labels known.
void set_count(IO_type& io, TypeCode type, const void* value) {
    io.count_given = true;
    io.internal_count = load_integer(type, value);
    io.internal_record_length = io.internal_count;
    if (io.internal_start != nullptr) io.internal_end = io.internal_start + io.internal_count;
}

void set_record_count(IO_type& io, TypeCode type, const void* value) {
    const std::int64_t records = load_integer(type, value);
    io.internal_records_left = records < 0 ? 0 : records;
    if (io.internal_start != nullptr)
        io.internal_end = io.internal_start + io.internal_records_left * io.internal_record_length;
}

void set_element_count(IO_type& io, const void* value) {
    const auto elements = read_as<std::int16_t>(value);
    io.format_elements = elements < 0 ? 0 : elements;
    if (io.format_text != nullptr && io.format_text_length > 0)
        io.format_text_length *= io.format_elements;
}

void set_status_word(IO_type& io, void* value) {
    io.status_word = static_cast<std::int32_t*>(value);
    *io.status_word = 0;
}

bool is_label(IOCode code) {
    return code == IOCode::end || code == IOCode::err || code == IOCode::eor ||
           code == IOCode::err_of_iostat;
}

// A label of the per-item form is whatever comes after the call that fails, so that its value
// counts only as "given".
void set_label(IO_type& io, void*& label, void* value) {
    label = io.per_item ? static_cast<void*>(&io) : value;
}

}  // namespace

std::int64_t load_integer(TypeCode type, const void* value) {
    switch (type) {
        case TypeCode::integer1:
        case TypeCode::logical1:
            return read_as<std::int8_t>(value);
        case TypeCode::integer2:
        case TypeCode::logical2:
            return read_as<std::int16_t>(value);
        case TypeCode::integer8:
            return read_as<std::int64_t>(value);
        default:
            return read_as<std::int32_t>(value);
    }
}

bool store_integer(const ResultWord& word, std::int64_t value) {
    if (word.address == nullptr) return true;
    switch (word.type) {
        case TypeCode::integer1:
        case TypeCode::logical1:
            return write_as<std::int8_t>(word.address, value);
        case TypeCode::integer2:
        case TypeCode::logical2:
            return write_as<std::int16_t>(word.address, value);
        case TypeCode::integer8:
            return write_as<std::int64_t>(word.address, value);
        default:
            return write_as<std::int32_t>(word.address, value);
    }
}

void setOption(IOCode code, TypeCode type, void* value, std::ptrdiff_t length) {
    State& s = state();
    IO_type& io = *s.current_io;
    SpecBlock& spec = io.spec_block;
    // A null address is a specifier that isn't there, but for the labels of the per-item form.
    if (value == nullptr && !is_label(code) && code != IOCode::strict) return;
    if (TextWord* const text = text_slot(spec, code)) {
        *text = text_word(value, length);
        if (code == IOCode::stream) blank_fill(value, length);
        return;
    }
    if (ResultWord* const result = result_slot(spec, code)) {
        *result = {value, type};
        if (code == IOCode::pos) spec.recl = 1;
        return;
    }
    switch (code) {
        case IOCode::end:
            set_label(io, io.end_label, value);
            return;
        case IOCode::eor:
            set_label(io, io.eor_label, value);
            return;
        case IOCode::err:
        case IOCode::err_of_iostat:
            set_label(io, io.err_label, value);
            return;
        case IOCode::fmt:
            set_format(io, behind_jump(value), nullptr);
            return;
        case IOCode::assigned_fmt:
            set_format(io, behind_jump(read_as<const void*>(value)), nullptr);
            return;
        case IOCode::fmt_table: {
            const auto words = read_as<std::uint16_t>(value);
            const auto* stream = static_cast<const std::uint16_t*>(value) + 1;
            set_format(io, stream, stream + words);
            return;
        }
        case IOCode::format_text:
            set_format_text(io, value, length);
            return;
        case IOCode::format_variable:
            set_format_text(io, value, type_size(type));
            return;
        case IOCode::format_elements:
            set_element_count(io, value);
            return;
        case IOCode::iostat:
            io.iostat = {value, type};
            io.iostat_given = true;
            store_integer(io.iostat, 0);
            if (s.status_mode && io.per_item) set_label(io, io.err_label, value);
            return;
        case IOCode::iomsg:
            io.iomsg = static_cast<char*>(value);
            io.iomsg_length = length < 0 ? 0 : length;
            blank_fill(value, length);
            return;
        case IOCode::rec:
            io.record_no = load_integer(type, value);
            return;
        case IOCode::recl:
            // In INQUIRE the value that lies there means nothing, but reading it does no harm.
            spec.recl = load_integer(type, value);
            spec.recl_given = true;
            spec.recl_result = {value, type};
            return;
        case IOCode::unit:
            set_unit(io, type, value);
            return;
        case IOCode::handle:
            spec.handle = static_cast<std::int16_t*>(value);
            return;
        case IOCode::strict:
            s.ansi_mode = true;
            return;
        case IOCode::internal_file:
            set_internal_file(io, value, length);
            return;
        case IOCode::internal_variable:
            set_internal_file(io, value, type_size(type));
            return;
        case IOCode::internal_records:
            set_record_count(io, type, value);
            return;
        case IOCode::count:
            set_count(io, type, value);
            return;
        case IOCode::driver:
            spec.user_driver = value;
            return;
        case IOCode::namelist:
            io.namelist_table = value;
            return;
        case IOCode::size:
            io.size = {value, type};
            store_integer(io.size, 0);
            return;
        case IOCode::frame_word:
            io.frame_word = read_as<std::int32_t>(value);
            return;
        case IOCode::status_end:
            set_status_word(io, value);
            if (s.status_mode && io.per_item) set_label(io, io.end_label, value);
            return;
        case IOCode::status_eor:
            set_status_word(io, value);
            if (s.status_mode && io.per_item) set_label(io, io.eor_label, value);
            return;
        case IOCode::status_err:
            set_status_word(io, value);
            if (s.status_mode && io.per_item) set_label(io, io.err_label, value);
            return;
        default:
            return;
    }
}

}  // namespace tarn::fio::native
