// Unformatted statements through the entries that compiled code calls: the layout of their records
// byte for byte, and what becomes of files that have been damaged.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <thread>

#include "packed.h"

namespace tarn::fio::native::test {
namespace {

extern "C" {
void RSU1_hh(const std::int16_t*, ...) LINK_NAME("RSU1##");
void RDU1_hh(const std::int16_t*, ...) LINK_NAME("RDU1##");
void WDU1_hh(const std::int16_t*, ...) LINK_NAME("WDU1##");
void XSUX_h(void*, const std::int32_t*, const std::int16_t*, std::ptrdiff_t) LINK_NAME("XSUX#");
void WSU2_h() LINK_NAME("WSU2#");
void WDU2_h() LINK_NAME("WDU2#");
void END_RU_h() LINK_NAME("END_RU#");
}

constexpr std::int32_t unit_number = 50;

std::string number(std::uint64_t value, int bytes) {
    std::string text;
    for (; bytes > 0; --bytes, value >>= 8) text += static_cast<char>(value);
    return text;
}

// A record as it stands on the file; `form` 0 is what a WRITE makes of it.
std::string framed(const std::string& data, int form = 0) {
    const std::uint64_t length = data.size();
    if (form == 254) return "\xfe" + number(length, 8) + data + number(length, 8) + "\xfe";
    if (form == 255 || length >= 240)
        return "\xff" + number(length, 4) + data + number(length, 4) + "\xff";
    return number(length, 1) + data + number(length, 1);
}

std::string random_bytes(std::size_t count) {
    static std::minstd_rand random(7);
    std::string text(count, ' ');
    for (char& c : text) c = static_cast<char>(random() >> 8);
    return text;
}

// Items of `piece` bytes, by the size word for CHARACTER or for numbers.
void move(std::string& data, std::size_t piece) {
    for (std::size_t at = 0; at < data.size(); at += piece) {
        const auto length = static_cast<std::ptrdiff_t>(std::min(piece, data.size() - at));
        const bool text = at % 2 == 0;
        const std::int16_t size = text ? 1 : -1;
        const auto count = static_cast<std::int32_t>(text ? 1 : length);
        XSUX_h(data.data() + at, &count, &size, text ? length : 0);
    }
}

struct Result {
    std::int32_t iostat;
    std::string data;
};

Result transfer(Opening opening, void (*end)(), std::string data, std::size_t piece,
                std::int32_t record = 0) {
    Result result{-99, std::move(data)};
    Packed statement;
    statement.unit(unit_number).result(IOCode::iostat, result.iostat);
    if (record > 0) statement.integer(IOCode::rec, record);
    statement.call(opening);
    move(result.data, piece);
    end();
    return result;
}

std::int32_t write(const std::string& data, std::size_t piece = SIZE_MAX / 2) {
    return transfer(WSU1_hh, WSU2_h, data, piece).iostat;
}
Result read(std::size_t length, std::size_t piece = SIZE_MAX / 2) {
    return transfer(RSU1_hh, END_RU_h, std::string(length, '?'), piece);
}

class Unformatted : public testing::Test {
  protected:
    static void open(std::initializer_list<std::pair<IOCode, std::string_view>> texts = {},
                     std::int32_t recl = 0) {
        Packed statement;
        statement.unit(unit_number).text(IOCode::file, "f").text(IOCode::form, "UNFORMATTED");
        for (const auto& [code, text] : texts) statement.text(code, text);
        if (recl > 0) statement.integer(IOCode::recl, recl);
        ASSERT_EQ(statement.run(OPEN_hh), 0);
    }
    ~Unformatted() override { close_unit(unit_number); }
    static std::int32_t backspace() { return Packed().unit(unit_number).run(BACK_hh); }
    static std::int32_t rewind() { return Packed().unit(unit_number).run(RWIN_hh); }
    static void put(const std::string& bytes) {
        close_unit(unit_number);
        put_file("f", bytes);
        open();
    }
    Folder folder_;
};

TEST_F(Unformatted, RecordsOfEveryLengthThroughItemsOfEverySize) {
    // The I/O buffer has 32767 bytes.
    for (const std::size_t length : {0U, 1U, 238U, 239U, 240U, 241U, 8192U, 32766U, 32767U, 32768U,
                                     65534U, 65535U, 100000U, 1000000U}) {
        const std::string data = random_bytes(length);
        const std::string other = random_bytes(length % 300);
        for (const std::size_t piece : {std::size_t{1} << 30, 40000UL, 1001UL}) {
            put_file("f", std::string(50, 'x'));
            open();
            ASSERT_EQ(write(data, piece), 0) << length;
            ASSERT_EQ(write(other), 0);
            ASSERT_EQ(close_unit(unit_number), 0);
            ASSERT_EQ(get_file("f") == framed(data) + framed(other), true)
                << length << ' ' << piece;
            open();
            const Result back = read(length, piece);
            ASSERT_EQ(back.iostat, 0);
            ASSERT_EQ(back.data == data, true) << length << ' ' << piece;
            ASSERT_EQ(read(other.size()).data, other);
            ASSERT_EQ(backspace(), 0);
            ASSERT_EQ(backspace(), 0);
            ASSERT_EQ(UnitList_getUnit(unit_number)->file.logical_position, 0);
            ASSERT_EQ(read(length / 2).iostat, 0);  // what is left of it is passed
            ASSERT_EQ(read(other.size()).data, other);
            EXPECT_EQ(read(1).iostat, -1);
            EXPECT_EQ(read(1).iostat, 104);
            close_unit(unit_number);
        }
    }
}

TEST_F(Unformatted, EveryFormIsRead) {
    for (const int form : {255, 254}) {
        for (const std::size_t length : {0U, 3U, 300U, 32767U, 32768U, 200000U}) {
            const std::string data = random_bytes(length);
            put(framed(data, form) + framed("next"));
            ASSERT_EQ(read(length, 5000).data == data, true) << form << ' ' << length;
            ASSERT_EQ(read(4).data, "next");
            ASSERT_EQ(backspace(), 0);
            ASSERT_EQ(backspace(), 0);
            ASSERT_EQ(read(length).data == data, true) << form << ' ' << length;
        }
    }
}

TEST_F(Unformatted, ListsLongerThanTheRecord) {
    put(framed("abcd") + framed("efgh"));
    EXPECT_EQ(read(5).iostat, 158);
    EXPECT_EQ(read(4).data, "efgh");
    EXPECT_EQ(Packed().unit(unit_number).run(CLOS_hh), 0);
    EXPECT_EQ(Packed().unit(unit_number).run(RSU1_hh), 94);
}

TEST_F(Unformatted, DamagedRecordsAreRefused) {
    const std::string good = framed("head");
    const struct {
        std::string bytes;
        std::int32_t iostat;
    } rows[] = {
        {"", -1},
        {"\xf0", 110},
        {"\xfd" + std::string(20, '\xfd'), 110},
        {std::string("\x03"
                     "abc",
                     4),
         110},
        {std::string("\x03"
                     "abc\x04",
                     5),
         110},
        {"\xff", 110},
        {"\xff" + number(300, 4) + std::string(300, 'a'), 110},
        {"\xff" + number(3, 4) + "abc" + number(4, 4) + "\xff", 110},
        {"\xff" + number(3, 4) + "abc" + number(3, 4) + "\xfe", 110},
        {"\xff" + number(0xffffffff, 4) + std::string(100, 'a'), 110},
        {"\xfe" + number(UINT64_MAX, 8) + std::string(100, 'a'), 110},
        {"\xfe" + number(INT64_MAX, 8) + std::string(100, 'a'), 110},
        {"\xfe" + number(std::uint64_t{1} << 40, 8) + std::string(100, 'a'), 110},
        {"\xfe" + number(3, 8) + "abc" + number(3, 8) + "\xff", 110},
        {"\xff" + number(40000, 4) + std::string(40000, 'a') + number(39999, 4) + "\xff", 110},
    };
    for (const auto& row : rows) {
        put(good + row.bytes);
        ASSERT_EQ(read(4).data, "head");
        const Result result = read(3);
        EXPECT_EQ(result.iostat, row.iostat) << testing::PrintToString(row.bytes.substr(0, 20));
        EXPECT_EQ(result.data, "???");
    }
    // Whatever is cut off, what comes before stays readable.
    const std::string whole = framed("one") + framed(std::string(300, '2')) + framed("", 254);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        put(whole.substr(0, length));
        const std::int32_t first = length == 0 ? -1 : length < 5 ? 110 : 0;
        ASSERT_EQ(read(3).iostat, first) << length;
        if (first != 0) continue;
        const std::int32_t second = length == 5 ? -1 : length < 315 ? 110 : 0;
        ASSERT_EQ(read(300).iostat, second) << length;
        if (second == 0) ASSERT_EQ(read(0).iostat, length == 315 ? -1 : 110) << length;
    }
}

TEST_F(Unformatted, FilesThatShrinkBetweenReads) {
    put(framed("head") + framed(std::string(100000, 'a')));
    ASSERT_EQ(read(4).iostat, 0);
    ASSERT_EQ(truncate("f", 50000), 0);
    EXPECT_EQ(read(100000).iostat, 110);
    // Behind the opening, with the record's frame already found to be right.
    constexpr std::size_t length = 8000000;
    put(framed(std::string(length, 'a')));
    std::int32_t iostat = -99;
    Packed statement;
    statement.unit(unit_number).result(IOCode::iostat, iostat).call(RSU1_hh);
    ASSERT_EQ(truncate("f", length / 2), 0);
    std::string data(length, '?');
    move(data, 10000);
    END_RU_h();
    EXPECT_EQ(iostat, 110);
    close_unit(unit_number);
    put_file("f", std::string(64, 'a'));
    open({{IOCode::access, "DIRECT"}}, 8);
    ASSERT_EQ(truncate("f", 20), 0);
    EXPECT_EQ(transfer(RDU1_hh, END_RU_h, "12345678", 8, 2).data, "aaaaaaaa");
    EXPECT_EQ(transfer(RDU1_hh, END_RU_h, "12345678", 8, 3).iostat, 110);
}

TEST_F(Unformatted, AnIgnoredMessageKeepsTheItemsWithinTheRecord) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            __inhibit_iostat(158);
            __inhibit_iostat(110);
            __inhibit_iostat(68);
            put_file("f", framed("abcd") + "\x05zz");
            open();
            const bool shorter = read(6).data == "abcd??";
            const bool nothing = read(2).data == "??";
            close_unit(unit_number);
            put_file("f", "");
            open({{IOCode::access, "DIRECT"}}, 4);
            transfer(WDU1_hh, WDU2_h, "abcdefgh", 3, 1);
            close_unit(unit_number);
            std::_Exit(shorter && nothing && get_file("f") == "abcd" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Unformatted, DirectRecordsLongerThanTheBuffer) {
    const std::string data = random_bytes(70000);
    put_file("f", "");
    open({{IOCode::access, "DIRECT"}}, 100000);
    for (const std::int32_t record : {3, 1})
        ASSERT_EQ(transfer(WDU1_hh, WDU2_h, data, 9000, record).iostat, 0);
    EXPECT_EQ(transfer(RDU1_hh, END_RU_h, data, 40000, 1).data == data, true);
    EXPECT_EQ(transfer(RDU1_hh, END_RU_h, data, 1, 4).iostat, 95);
    EXPECT_EQ(transfer(WDU1_hh, WDU2_h, std::string(100001, 'x'), 9000, 4).iostat, 68);
    EXPECT_EQ(transfer(RDU1_hh, END_RU_h, data, 1, 4).iostat, 95);
    close_unit(unit_number);
    const std::string record = data + std::string(30000, '\0');
    EXPECT_EQ(get_file("f") == record + std::string(100000, '\x80') + record, true);
}

TEST_F(Unformatted, PipesGiveRecordsOfAnyLength) {
    const std::string data = random_bytes(200000);
    ASSERT_EQ(mkfifo("p", 0600), 0);
    const std::string bytes = framed("first") + framed(data) + framed("last", 254) + "\xff\x01";
    std::thread writer([&bytes] { put_file("p", bytes); });
    Packed statement;
    statement.unit(unit_number).text(IOCode::file, "p").text(IOCode::form, "UNFORMATTED");
    ASSERT_EQ(statement.text(IOCode::action, "READ").run(OPEN_hh), 0);
    EXPECT_EQ(read(5).data, "first");
    EXPECT_EQ(read(200000, 30000).data == data, true);
    EXPECT_EQ(read(4).data, "last");
    EXPECT_EQ(read(4).iostat, 110);
    writer.join();
}

TEST_F(Unformatted, RecordsIntoAPipeLeaveWhole) {
    const std::string data = random_bytes(100000);
    ASSERT_EQ(mkfifo("p", 0600), 0);
    std::string got;
    std::thread reader([&got] { got = get_file("p"); });
    Packed statement;
    statement.unit(unit_number).text(IOCode::file, "p").text(IOCode::form, "UNFORMATTED");
    ASSERT_EQ(statement.text(IOCode::action, "WRITE").run(OPEN_hh), 0);
    EXPECT_EQ(write("ab"), 0);
    EXPECT_EQ(write(data, 1000), 0);
    close_unit(unit_number);
    reader.join();
    EXPECT_EQ(got == framed("ab") + framed(data), true);
}

// A driver that keeps one record and tells what it was asked.
struct Device {
    std::string record;
    std::vector<int> operations;
} device;

void drive(char* buffer, std::int32_t* capacity, std::int32_t* length, std::int32_t* operation,
           std::int16_t* status, std::size_t) {
    device.operations.push_back(*operation);
    *status = 0;
    if (*operation == 10 || *operation == 14) device.record.assign(buffer, *length);
    if (*operation != 9 && *operation != 13) return;
    *length = std::min<std::int32_t>(*capacity, static_cast<std::int32_t>(device.record.size()));
    std::memcpy(buffer, device.record.data(), static_cast<std::size_t>(*length));
}

TEST_F(Unformatted, ADriverGetsWholeRecords) {
    Packed statement;
    statement.unit(unit_number).text(IOCode::form, "UNFORMATTED");
    statement.add(IOCode::driver, TypeCode::none, reinterpret_cast<const void*>(drive));
    ASSERT_EQ(statement.run(OPEN_hh), 0);
    const std::string data = random_bytes(50000);
    EXPECT_EQ(write(data, 7000), 0);
    EXPECT_EQ(device.record == data, true);
    device.record = "short";
    EXPECT_EQ(read(5).data, "short");
    EXPECT_EQ(read(6).iostat, 158);
    EXPECT_EQ(device.operations, (std::vector<int>{6, 10, 9, 9}));
}

}  // namespace
}  // namespace tarn::fio::native::test
