// The parameter blocks of gfortran's OPEN, CLOSE, INQUIRE and positioning statements, as the
// compiled program lays them out. The flags of the common part are in data_block.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::gcc {

// What every block begins with.
struct CommonBlock {
    std::uint32_t flags;
    std::int32_t unit;
    const char* source_file;
    std::int32_t line;
    std::size_t iomsg_length;
    char* iomsg;
    std::int32_t* iostat;
};
static_assert(sizeof(CommonBlock) == 48);

// Flags of an OPEN.
inline constexpr std::uint32_t open_has_recl = 1U << 7;
inline constexpr std::uint32_t open_has_file = 1U << 8;
inline constexpr std::uint32_t open_has_status = 1U << 9;
inline constexpr std::uint32_t open_has_access = 1U << 10;
inline constexpr std::uint32_t open_has_form = 1U << 11;
inline constexpr std::uint32_t open_has_blank = 1U << 12;
inline constexpr std::uint32_t open_has_position = 1U << 13;
inline constexpr std::uint32_t open_has_action = 1U << 14;
inline constexpr std::uint32_t open_has_delim = 1U << 15;
inline constexpr std::uint32_t open_has_pad = 1U << 16;
inline constexpr std::uint32_t open_has_convert = 1U << 17;
inline constexpr std::uint32_t open_has_decimal = 1U << 18;
inline constexpr std::uint32_t open_has_encoding = 1U << 19;
inline constexpr std::uint32_t open_has_round = 1U << 20;
inline constexpr std::uint32_t open_has_sign = 1U << 21;
inline constexpr std::uint32_t open_has_asynchronous = 1U << 22;
inline constexpr std::uint32_t open_has_newunit = 1U << 23;
inline constexpr std::uint32_t open_has_readonly = 1U << 24;
inline constexpr std::uint32_t open_has_carriage_control = 1U << 25;
inline constexpr std::uint32_t open_has_share = 1U << 26;

struct OpenBlock {
    CommonBlock common;
    std::int64_t recl;
    std::size_t file_length;
    char* file;
    char* status;
    std::size_t status_length;
    std::size_t access_length;
    char* access;
    char* form;
    std::size_t form_length;
    std::size_t blank_length;
    char* blank;
    char* position;
    std::size_t position_length;
    std::size_t action_length;
    char* action;
    char* delim;
    std::size_t delim_length;
    std::size_t pad_length;
    char* pad;
    char* convert;
    std::size_t convert_length;
    std::size_t decimal_length;
    char* decimal;
    char* encoding;
    std::size_t encoding_length;
    std::size_t round_length;
    char* round;
    char* sign;
    std::size_t sign_length;
    std::size_t asynchronous_length;
    char* asynchronous;
    std::int32_t* newunit;
    std::int32_t readonly;
    std::size_t carriage_control_length;
    char* carriage_control;
    char* share;
    std::size_t share_length;
};
static_assert(offsetof(OpenBlock, convert) == 200);
static_assert(offsetof(OpenBlock, newunit) == 296);
static_assert(sizeof(OpenBlock) == 344);

// Flags of a CLOSE.
inline constexpr std::uint32_t close_has_status = 1U << 7;

struct CloseBlock {
    CommonBlock common;
    char* status;
    std::size_t status_length;
};
static_assert(sizeof(CloseBlock) == 64);

// Flags of an INQUIRE.
inline constexpr std::uint32_t inquire_has_exist = 1U << 7;
inline constexpr std::uint32_t inquire_has_opened = 1U << 8;
inline constexpr std::uint32_t inquire_has_number = 1U << 9;
inline constexpr std::uint32_t inquire_has_named = 1U << 10;
inline constexpr std::uint32_t inquire_has_nextrec = 1U << 11;
inline constexpr std::uint32_t inquire_has_recl = 1U << 12;
inline constexpr std::uint32_t inquire_has_pos = 1U << 13;
inline constexpr std::uint32_t inquire_has_file = 1U << 14;
inline constexpr std::uint32_t inquire_has_access = 1U << 15;
inline constexpr std::uint32_t inquire_has_form = 1U << 16;
inline constexpr std::uint32_t inquire_has_blank = 1U << 17;
inline constexpr std::uint32_t inquire_has_position = 1U << 18;
inline constexpr std::uint32_t inquire_has_action = 1U << 19;
inline constexpr std::uint32_t inquire_has_delim = 1U << 20;
inline constexpr std::uint32_t inquire_has_pad = 1U << 21;
inline constexpr std::uint32_t inquire_has_name = 1U << 22;
inline constexpr std::uint32_t inquire_has_sequential = 1U << 23;
inline constexpr std::uint32_t inquire_has_direct = 1U << 24;
inline constexpr std::uint32_t inquire_has_formatted = 1U << 25;
inline constexpr std::uint32_t inquire_has_unformatted = 1U << 26;
inline constexpr std::uint32_t inquire_has_read = 1U << 27;
inline constexpr std::uint32_t inquire_has_write = 1U << 28;
inline constexpr std::uint32_t inquire_has_readwrite = 1U << 29;
inline constexpr std::uint32_t inquire_has_convert = 1U << 30;
inline constexpr std::uint32_t inquire_has_more = 1U << 31;
// Of `more_flags`, which means something under inquire_has_more only.
inline constexpr std::uint32_t inquire_has_asynchronous = 1U << 0;
inline constexpr std::uint32_t inquire_has_decimal = 1U << 1;
inline constexpr std::uint32_t inquire_has_encoding = 1U << 2;
inline constexpr std::uint32_t inquire_has_round = 1U << 3;
inline constexpr std::uint32_t inquire_has_sign = 1U << 4;
inline constexpr std::uint32_t inquire_has_pending = 1U << 5;
inline constexpr std::uint32_t inquire_has_size = 1U << 6;
inline constexpr std::uint32_t inquire_has_id = 1U << 7;
inline constexpr std::uint32_t inquire_has_stream = 1U << 8;
inline constexpr std::uint32_t inquire_has_share = 1U << 9;
inline constexpr std::uint32_t inquire_has_carriage_control = 1U << 10;

struct InquireBlock {
    CommonBlock common;
    std::int32_t* exist;
    std::int32_t* opened;
    std::int32_t* number;
    std::int32_t* named;
    std::int64_t* nextrec;
    std::int64_t* recl;
    std::int64_t* pos;
    char* file;
    std::size_t file_length;
    std::size_t access_length;
    char* access;
    char* form;
    std::size_t form_length;
    std::size_t blank_length;
    char* blank;
    char* position;
    std::size_t position_length;
    std::size_t action_length;
    char* action;
    char* delim;
    std::size_t delim_length;
    std::size_t pad_length;
    char* pad;
    char* name;
    std::size_t name_length;
    std::size_t sequential_length;
    char* sequential;
    char* direct;
    std::size_t direct_length;
    std::size_t formatted_length;
    char* formatted;
    char* unformatted;
    std::size_t unformatted_length;
    std::size_t read_length;
    char* read;
    char* write;
    std::size_t write_length;
    std::size_t readwrite_length;
    char* readwrite;
    char* convert;
    std::size_t convert_length;
    std::uint32_t more_flags;
    char* asynchronous;
    std::size_t asynchronous_length;
    std::size_t decimal_length;
    char* decimal;
    char* encoding;
    std::size_t encoding_length;
    std::size_t round_length;
    char* round;
    char* sign;
    std::size_t sign_length;
    std::int32_t* pending;
    std::int64_t* size;
    std::int32_t* id;
    char* stream;
    std::size_t stream_length;
    std::size_t share_length;
    char* share;
    char* carriage_control;
    std::size_t carriage_control_length;
};
static_assert(offsetof(InquireBlock, file) == 104);
static_assert(offsetof(InquireBlock, name) == 232);
static_assert(offsetof(InquireBlock, more_flags) == 376);
static_assert(offsetof(InquireBlock, size) == 472);
static_assert(sizeof(InquireBlock) == 536);

}  // namespace tarn::gcc
