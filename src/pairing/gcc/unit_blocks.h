// The parameter blocks of gfortran's statements on units, as the compiled program lays them out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/fault.h"

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
static_assert(offsetof(CommonBlock, iomsg_length) == 24);
static_assert(sizeof(CommonBlock) == 48);

// The caller of a statement, from its block; and the outcome back into the block's flags.
fio::Caller caller_of(const CommonBlock& block);
void store_outcome(CommonBlock& block, const fio::Caller& caller);

// A CHARACTER specifier: its address and length, in either order.
struct TextThenLength {
    char* text;
    std::size_t length;
};
struct LengthThenText {
    std::size_t length;
    char* text;
};

namespace open_flag {
enum : std::uint32_t {
    recl = 1U << 7,
    file = 1U << 8,
    status = 1U << 9,
    access = 1U << 10,
    form = 1U << 11,
    blank = 1U << 12,
    position = 1U << 13,
    action = 1U << 14,
    delim = 1U << 15,
    pad = 1U << 16,
    convert = 1U << 17,
    decimal = 1U << 18,
    encoding = 1U << 19,
    round = 1U << 20,
    sign = 1U << 21,
    asynchronous = 1U << 22,
    new_unit = 1U << 23,
    read_only = 1U << 24,  // the block has the fields from `read_only` on
    carriage_control = 1U << 25,
    share = 1U << 26,
};
}

struct OpenBlock {
    CommonBlock common;
    std::int64_t recl;
    LengthThenText file;
    TextThenLength status;
    LengthThenText access;
    TextThenLength form;
    LengthThenText blank;
    TextThenLength position;
    LengthThenText action;
    TextThenLength delim;
    LengthThenText pad;
    TextThenLength convert;
    LengthThenText decimal;
    TextThenLength encoding;
    LengthThenText round;
    TextThenLength sign;
    LengthThenText asynchronous;
    std::int32_t* new_unit;
    std::int32_t read_only;
    LengthThenText carriage_control;
    TextThenLength share;
};
static_assert(offsetof(OpenBlock, file) == 56);
static_assert(offsetof(OpenBlock, asynchronous) == 280);
static_assert(offsetof(OpenBlock, new_unit) == 296);
static_assert(offsetof(OpenBlock, carriage_control) == 312);
static_assert(sizeof(OpenBlock) == 344);

namespace close_flag {
enum : std::uint32_t { status = 1U << 7 };
}

struct CloseBlock {
    CommonBlock common;
    TextThenLength status;
};
static_assert(sizeof(CloseBlock) == 64);

namespace wait_flag {
enum : std::uint32_t { id = 1U << 7 };
}

struct WaitBlock {
    CommonBlock common;
    std::int32_t* id;
};

namespace inquire_flag {
enum : std::uint32_t {
    exist = 1U << 7,
    opened = 1U << 8,
    number = 1U << 9,
    named = 1U << 10,
    nextrec = 1U << 11,
    recl = 1U << 12,
    pos = 1U << 13,
    file = 1U << 14,
    access = 1U << 15,
    form = 1U << 16,
    blank = 1U << 17,
    position = 1U << 18,
    action = 1U << 19,
    delim = 1U << 20,
    pad = 1U << 21,
    name = 1U << 22,
    sequential = 1U << 23,
    direct = 1U << 24,
    formatted = 1U << 25,
    unformatted = 1U << 26,
    read = 1U << 27,
    write = 1U << 28,
    readwrite = 1U << 29,
    convert = 1U << 30,
    more_flags = 1U << 31,  // the block has the fields from `more_flags` on
};
}

namespace inquire_more_flag {
enum : std::uint32_t {
    asynchronous = 1U << 0,
    decimal = 1U << 1,
    encoding = 1U << 2,
    round = 1U << 3,
    sign = 1U << 4,
    pending = 1U << 5,
    size = 1U << 6,
    id = 1U << 7,
    stream = 1U << 8,
    share = 1U << 9,
    carriage_control = 1U << 10,
};
}

struct InquireBlock {
    CommonBlock common;
    std::int32_t* exist;
    std::int32_t* opened;
    std::int32_t* number;
    std::int32_t* named;
    std::int64_t* nextrec;
    std::int64_t* recl;
    std::int64_t* pos;
    TextThenLength file;
    LengthThenText access;
    TextThenLength form;
    LengthThenText blank;
    TextThenLength position;
    LengthThenText action;
    TextThenLength delim;
    LengthThenText pad;
    TextThenLength name;
    LengthThenText sequential;
    TextThenLength direct;
    LengthThenText formatted;
    TextThenLength unformatted;
    LengthThenText read;
    TextThenLength write;
    LengthThenText readwrite;
    TextThenLength convert;
    std::uint32_t more_flags;
    TextThenLength asynchronous;
    LengthThenText decimal;
    TextThenLength encoding;
    LengthThenText round;
    TextThenLength sign;
    std::int32_t* pending;
    std::int64_t* size;
    std::int32_t* id;
    TextThenLength stream;
    LengthThenText share;
    TextThenLength carriage_control;
};
static_assert(offsetof(InquireBlock, file) == 104);
static_assert(offsetof(InquireBlock, name) == 232);
static_assert(offsetof(InquireBlock, more_flags) == 376);
static_assert(offsetof(InquireBlock, pending) == 464);
static_assert(offsetof(InquireBlock, stream) == 488);
static_assert(sizeof(InquireBlock) == 536);

}  // namespace tarn::gcc
