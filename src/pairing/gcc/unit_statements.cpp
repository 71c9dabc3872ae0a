// The entries that gfortran's statements on units call: OPEN, CLOSE, INQUIRE, REWIND, BACKSPACE,
// ENDFILE, FLUSH, WAIT.
#include "fio/gnu/close.h"
#include "fio/gnu/inquire.h"
#include "fio/gnu/open.h"
#include "fio/gnu/position.h"
#include "frame/link_name.h"
#include "pairing/gcc/data_block.h"
#include "pairing/gcc/unit_blocks.h"

namespace tarn::gcc {

fio::Caller caller_of(const CommonBlock& block) {
    const bool tells = (block.flags & has_iostat) != 0;
    fio::Caller caller;
    caller.source_file = block.source_file;
    caller.line = block.line;
    caller.iostat = tells ? block.iostat : nullptr;
    caller.iomsg = (block.flags & has_iomsg) != 0 ? block.iomsg : nullptr;
    caller.iomsg_length = block.iomsg_length;
    caller.catches_error = tells || (block.flags & has_err) != 0;
    caller.catches_end = tells || (block.flags & has_end) != 0;
    caller.catches_eor = tells || (block.flags & has_eor) != 0;
    caller.unit = block.unit;
    if (tells) *block.iostat = 0;
    return caller;
}

void store_outcome(CommonBlock& block, const fio::Caller& caller) {
    block.flags = (block.flags & ~outcome_mask) | static_cast<std::uint32_t>(caller.outcome);
}

namespace {

// A text that was given, an empty one with an address too.
template <class Text>
std::string_view given(std::uint32_t flags, std::uint32_t flag, const Text& text) {
    if ((flags & flag) == 0) return {};
    return text.text != nullptr ? std::string_view(text.text, text.length) : std::string_view("");
}

template <class Text>
fio::TextAnswer wanted(std::uint32_t flags, std::uint32_t flag, const Text& text) {
    if ((flags & flag) == 0) return {};
    return {text.text, text.length};
}

template <class Value>
Value* wanted(std::uint32_t flags, std::uint32_t flag, Value* variable) {
    return (flags & flag) != 0 ? variable : nullptr;
}

fio::OpenSpecifiers specifiers_of(const OpenBlock& block) {
    const std::uint32_t flags = block.common.flags;
    fio::OpenSpecifiers s;
    s.unit = block.common.unit;
    s.new_unit = wanted(flags, open_flag::new_unit, block.new_unit);
    s.has_recl = (flags & open_flag::recl) != 0;
    s.recl = s.has_recl ? block.recl : 0;
    s.file = given(flags, open_flag::file, block.file);
    s.status = given(flags, open_flag::status, block.status);
    s.access = given(flags, open_flag::access, block.access);
    s.form = given(flags, open_flag::form, block.form);
    s.blank = given(flags, open_flag::blank, block.blank);
    s.position = given(flags, open_flag::position, block.position);
    s.action = given(flags, open_flag::action, block.action);
    s.delim = given(flags, open_flag::delim, block.delim);
    s.pad = given(flags, open_flag::pad, block.pad);
    s.convert = given(flags, open_flag::convert, block.convert);
    s.decimal = given(flags, open_flag::decimal, block.decimal);
    s.encoding = given(flags, open_flag::encoding, block.encoding);
    s.round = given(flags, open_flag::round, block.round);
    s.sign = given(flags, open_flag::sign, block.sign);
    s.asynchronous = given(flags, open_flag::asynchronous, block.asynchronous);
    s.carriage_control = given(flags, open_flag::carriage_control, block.carriage_control);
    s.share = given(flags, open_flag::share, block.share);
    s.read_only = (flags & open_flag::read_only) != 0 && block.read_only != 0;
    return s;
}

fio::Inquiry inquiry_of(const InquireBlock& block) {
    namespace flag = inquire_flag;
    const std::uint32_t flags = block.common.flags;
    fio::Inquiry q;
    q.by_file = (flags & flag::file) != 0;
    q.file = given(flags, flag::file, block.file);
    q.exist = wanted(flags, flag::exist, block.exist);
    q.opened = wanted(flags, flag::opened, block.opened);
    q.number = wanted(flags, flag::number, block.number);
    q.named = wanted(flags, flag::named, block.named);
    q.nextrec = wanted(flags, flag::nextrec, block.nextrec);
    q.recl = wanted(flags, flag::recl, block.recl);
    q.pos = wanted(flags, flag::pos, block.pos);
    if ((flags & flag::more_flags) == 0) return q;
    const std::uint32_t more = block.more_flags;
    q.pending = wanted(more, inquire_more_flag::pending, block.pending);
    q.size = wanted(more, inquire_more_flag::size, block.size);
    q.id = wanted(more, inquire_more_flag::id, block.id);
    return q;
}

bool asks_for_texts(const InquireBlock& block) {
    namespace flag = inquire_flag;
    constexpr std::uint32_t others = flag::exist | flag::opened | flag::number | flag::named |
                                     flag::nextrec | flag::recl | flag::pos | flag::file;
    constexpr std::uint32_t first = flag::exist;
    return (block.common.flags & ~others & ~(first - 1)) != 0;
}

void ask_for_more_texts(const InquireBlock& block, fio::InquiryTexts& q) {
    namespace flag = inquire_more_flag;
    const std::uint32_t flags = block.more_flags;
    q.asynchronous = wanted(flags, flag::asynchronous, block.asynchronous);
    q.decimal = wanted(flags, flag::decimal, block.decimal);
    q.encoding = wanted(flags, flag::encoding, block.encoding);
    q.round = wanted(flags, flag::round, block.round);
    q.sign = wanted(flags, flag::sign, block.sign);
    q.stream = wanted(flags, flag::stream, block.stream);
    q.share = wanted(flags, flag::share, block.share);
    q.carriage_control = wanted(flags, flag::carriage_control, block.carriage_control);
}

fio::InquiryTexts texts_of(const InquireBlock& block) {
    namespace flag = inquire_flag;
    const std::uint32_t flags = block.common.flags;
    fio::InquiryTexts q;
    q.name = wanted(flags, flag::name, block.name);
    q.access = wanted(flags, flag::access, block.access);
    q.sequential = wanted(flags, flag::sequential, block.sequential);
    q.direct = wanted(flags, flag::direct, block.direct);
    q.form = wanted(flags, flag::form, block.form);
    q.formatted = wanted(flags, flag::formatted, block.formatted);
    q.unformatted = wanted(flags, flag::unformatted, block.unformatted);
    q.blank = wanted(flags, flag::blank, block.blank);
    q.position = wanted(flags, flag::position, block.position);
    q.action = wanted(flags, flag::action, block.action);
    q.read = wanted(flags, flag::read, block.read);
    q.write = wanted(flags, flag::write, block.write);
    q.readwrite = wanted(flags, flag::readwrite, block.readwrite);
    q.delim = wanted(flags, flag::delim, block.delim);
    q.pad = wanted(flags, flag::pad, block.pad);
    q.convert = wanted(flags, flag::convert, block.convert);
    if ((flags & flag::more_flags) != 0) ask_for_more_texts(block, q);
    return q;
}

void inquire(fio::Caller& caller, const InquireBlock& block) {
    fio::Inquiry inquiry = inquiry_of(block);
    if (!asks_for_texts(block)) return fio::inquire(caller, inquiry);
    const fio::InquiryTexts texts = texts_of(block);
    inquiry.texts = &texts;
    fio::inquire(caller, inquiry);
}

template <class Statement>
void run(CommonBlock& block, Statement statement) {
    // A unit number outside 32 bits has been reported before the statement.
    if ((block.flags & outcome_mask) != 0) return;
    fio::Caller caller = caller_of(block);
    statement(caller);
    store_outcome(block, caller);
}

}  // namespace
extern "C" {

TARN_EXPORT void _gfortran_st_open(OpenBlock* block) {
    run(block->common, [&](fio::Caller& c) { fio::open_unit(c, specifiers_of(*block)); });
}

TARN_EXPORT void _gfortran_st_close(CloseBlock* block) {
    const std::string_view status = given(block->common.flags, close_flag::status, block->status);
    run(block->common, [&](fio::Caller& c) { fio::close_unit(c, status); });
}

TARN_EXPORT void _gfortran_st_inquire(InquireBlock* block) {
    run(block->common, [&](fio::Caller& c) { inquire(c, *block); });
}

TARN_EXPORT void _gfortran_st_rewind(CommonBlock* block) {
    run(*block, fio::rewind_unit);
}

TARN_EXPORT void _gfortran_st_backspace(CommonBlock* block) {
    run(*block, fio::backspace_unit);
}

TARN_EXPORT void _gfortran_st_endfile(CommonBlock* block) {
    run(*block, fio::end_file_of_unit);
}

TARN_EXPORT void _gfortran_st_flush(CommonBlock* block) {
    run(*block, fio::flush_unit);
}

TARN_EXPORT void _gfortran_st_wait_async(WaitBlock* block) {
    const std::int32_t* id = wanted(block->common.flags, wait_flag::id, block->id);
    run(block->common, [&](fio::Caller& c) { fio::wait_for_unit(c, id); });
}

// Programs of older compilers: the unit alone.
TARN_EXPORT void _gfortran_st_wait(CommonBlock*) {}

}  // extern "C"

}  // namespace tarn::gcc
