// Whole formatted statements, run through the packed entries.
#pragma once

#include <complex>

#include "packed.h"

namespace tarn::fio::native::test {

extern "C" {
#define TEST_ITEM(name)                                                          \
    void name##_h_WSF(const void*, const std::int32_t*) LINK_NAME(#name "#WSF"); \
    void name##_h_RSF(void*, const std::int32_t*) LINK_NAME(#name "#RSF");
TEST_ITEM(I1)
TEST_ITEM(I2)
TEST_ITEM(I8)
TEST_ITEM(L1)
TEST_ITEM(L2)
TEST_ITEM(L4)
TEST_ITEM(R4)
TEST_ITEM(D8)
TEST_ITEM(RX)
TEST_ITEM(C8)
TEST_ITEM(CD)
TEST_ITEM(CX)
#undef TEST_ITEM
}

struct Logical {
    std::int32_t value = 0;
};

inline constexpr std::int32_t one = 1;

// One item each way.
#define TEST_MOVES(type, name)                        \
    inline void put(const type& item) {               \
        name##_h_WSF(const_cast<type*>(&item), &one); \
    }                                                 \
    inline void get(type& item) {                     \
        name##_h_RSF(&item, &one);                    \
    }
TEST_MOVES(std::int8_t, I1)
TEST_MOVES(std::int16_t, I2)
TEST_MOVES(std::int32_t, I4)
TEST_MOVES(std::int64_t, I8)
TEST_MOVES(Logical, L4)
TEST_MOVES(float, R4)
TEST_MOVES(double, D8)
TEST_MOVES(long double, RX)
TEST_MOVES(std::complex<float>, C8)
TEST_MOVES(std::complex<double>, CD)
TEST_MOVES(std::complex<long double>, CX)
#undef TEST_MOVES
inline void put(std::string_view item) {
    CH_h_WSF(item.data(), &one, static_cast<std::ptrdiff_t>(item.size()));
}
inline void put(const char* item) {
    put(std::string_view(item));
}
inline void put(const std::string& item) {
    put(std::string_view(item));
}
inline void get(std::string& item) {
    CH_h_RSF(item.data(), &one, static_cast<std::ptrdiff_t>(item.size()));
}
template <typename T>
void put(const std::vector<T>& items) {
    for (const T& item : items) put(item);
}
template <typename T>
void get(std::vector<T>& items) {
    for (T& item : items) get(item);
}

// Opens the statement, moves the items, ends it; the value of IOSTAT=.
template <typename Work>
std::int32_t transfer(Packed& statement, Opening entry, Work work) {
    static std::int32_t iostat;
    static jmp_buf landing;
    iostat = -99;
    statement.result(IOCode::iostat, iostat);
    statement.add(IOCode::err_of_iostat, TypeCode::none, &landing);
    if (setjmp(landing) == 0) {
        statement.call(entry);
        work();
        WSF2_h();
    }
    return iostat;
}

// An internal file of `records` records of `length` characters.
struct Internal {
    std::string text;
    std::int32_t length;
    std::int32_t records;

    Internal(std::int32_t length, std::int32_t records)
        : text(static_cast<std::size_t>(length) * static_cast<std::size_t>(records), '~'),
          length(length),
          records(records) {}
    Internal(std::initializer_list<std::string_view> lines)
        : length(0), records(static_cast<std::int32_t>(lines.size())) {
        for (const std::string_view line : lines)
            length = std::max(length, static_cast<std::int32_t>(line.size()));
        for (const std::string_view line : lines) {
            text += line;
            text.append(static_cast<std::size_t>(length) - line.size(), ' ');
        }
    }
    void give_to(Packed& statement) {
        statement.integer(IOCode::internal_records, records);
        statement.add(IOCode::internal_file, TypeCode::character, text.data(), length);
    }
    // The records that were written, each without its trailing blanks, with "|" between them.
    std::string shown() const {
        std::string all;
        for (std::int32_t r = 0; r < records; ++r) {
            std::string line =
                text.substr(static_cast<std::size_t>(r * length), static_cast<std::size_t>(length));
            if (line.front() == '~') break;
            line.erase(line.find_last_not_of(' ') + 1);
            if (r > 0) all += '|';
            all += line;
        }
        return all;
    }
};

inline std::string message(std::int32_t iostat) {
    return "#" + std::to_string(iostat);
}

// What a WRITE puts into records of 80 characters, or "#" and the number of its message. An empty
// format means list-directed.
template <typename... Items>
std::string written(std::string_view format, const Items&... items) {
    Internal file(format.empty() ? 120 : 80, 4);
    Packed statement;
    file.give_to(statement);
    if (!format.empty()) statement.format(format);
    const std::int32_t iostat = transfer(statement, WSF1_hh, [&] { (put(items), ...); });
    return iostat == 0 ? file.shown() : message(iostat);
}

// Reads items from records; the value of IOSTAT=.
template <typename... Items>
std::int32_t read(std::initializer_list<std::string_view> lines, std::string_view format,
                  Items&... items) {
    Internal file(lines);
    Packed statement;
    file.give_to(statement);
    if (!format.empty()) statement.format(format);
    return transfer(statement, RSF1_hh, [&] { (get(items), ...); });
}

}  // namespace tarn::fio::native::test
