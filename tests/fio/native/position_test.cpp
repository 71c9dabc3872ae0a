// BACKSPACE, REWIND and ENDFILE between real READs and WRITEs, and nested statements.
#include <gtest/gtest.h>

#include "packed.h"

namespace tarn::fio::native::test {
namespace {

constexpr std::int32_t one = 1;

// WRITE(unit, '(A)') text
std::int32_t write_line(std::int32_t unit, std::string_view text) {
    std::int32_t iostat = -99;
    Packed statement;
    statement.unit(unit).format("(A)").result(IOCode::iostat, iostat);
    statement.call(WSF1_hh);
    CH_h_WSF(text.data(), &one, static_cast<std::ptrdiff_t>(text.size()));
    WSF2_h();
    return iostat;
}

// READ(unit, '(A)') line: its text without trailing blanks, or the IOSTAT value in angles.
std::string read_line(std::int32_t unit) {
    std::int32_t iostat = -99;
    char line[20];
    std::memset(line, '?', sizeof line);
    Packed statement;
    statement.unit(unit).format("(A)").result(IOCode::iostat, iostat);
    statement.call(RSF1_hh);
    CH_h_RSF(line, &one, sizeof line);
    WSF2_h();
    if (iostat != 0) return "<" + std::to_string(iostat) + ">";
    std::string text(line, sizeof line);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

class Position : public testing::Test {
  protected:
    void open(std::initializer_list<std::pair<IOCode, std::string_view>> texts = {}) {
        Packed statement;
        statement.unit(50).text(IOCode::file, "f");
        for (const auto& [code, text] : texts) statement.text(code, text);
        ASSERT_EQ(statement.run(OPEN_hh), 0);
    }
    ~Position() override { close_unit(50); }
    static std::int32_t backspace() { return Packed().unit(50).run(BACK_hh); }
    static std::int32_t rewind() { return Packed().unit(50).run(RWIN_hh); }
    static std::int32_t endfile() { return Packed().unit(50).run(ENDF_hh); }
    Folder folder_;
};

TEST_F(Position, BackspaceStepsOverOneRecord) {
    open();
    for (const char* text : {"one", "two", "", "four"}) ASSERT_EQ(write_line(50, text), 0);
    ASSERT_EQ(rewind(), 0);
    EXPECT_EQ(backspace(), 0);
    EXPECT_EQ(read_line(50), "one");
    EXPECT_EQ(read_line(50), "two");
    EXPECT_EQ(backspace(), 0);
    EXPECT_EQ(read_line(50), "two");
    EXPECT_EQ(read_line(50), "");
    EXPECT_EQ(read_line(50), "four");
    EXPECT_EQ(backspace(), 0);
    EXPECT_EQ(backspace(), 0);
    EXPECT_EQ(read_line(50), "");
    EXPECT_EQ(read_line(50), "four");
    EXPECT_EQ(read_line(50), "<-1>");
    EXPECT_EQ(backspace(), 0);  // over the end-of-file record
    EXPECT_EQ(read_line(50), "<-1>");
}

TEST_F(Position, BackspaceFindsRecordsLongerThanABlock) {
    std::string text;
    for (const std::size_t length : {5U, 8190U, 8192U, 20000U, 3U})
        text += std::string(length, static_cast<char>('a' + length % 26)) + "\r\n";
    put_file("f", text);
    open();
    std::vector<std::string> lines;
    for (int i = 0; i < 5; ++i) lines.push_back(read_line(50));
    for (int i = 4; i >= 0; --i) {
        ASSERT_EQ(backspace(), 0);
        EXPECT_EQ(read_line(50), lines[static_cast<std::size_t>(i)]) << i;
        ASSERT_EQ(backspace(), 0);
    }
}

TEST_F(Position, AWriteAfterReadingEndsTheFile) {
    put_file("f", "one\r\ntwo\r\nthree\r\n");
    open();
    EXPECT_EQ(read_line(50), "one");
    EXPECT_EQ(write_line(50, "new"), 0);
    close_unit(50);
    EXPECT_EQ(get_file("f"), "one\r\nnew\r\n");
    open();
    EXPECT_EQ(write_line(50, "again"), 0);
    close_unit(50);
    EXPECT_EQ(get_file("f"), "again\r\n");
    open({{IOCode::position, "APPEND"}});
    EXPECT_EQ(write_line(50, "more  "), 0);
    close_unit(50);
    EXPECT_EQ(get_file("f"), "again\r\nmore\r\n");
}

TEST_F(Position, EndfileCutsAndIsNotRepeated) {
    put_file("f", "one\r\ntwo\r\n");
    open();
    EXPECT_EQ(write_line(50, "new"), 0);
    EXPECT_EQ(endfile(), 0);
    EXPECT_EQ(endfile(), 104);
    EXPECT_EQ(backspace(), 0);
    EXPECT_EQ(endfile(), 0);
    close_unit(50);
    EXPECT_EQ(get_file("f"), "new\r\n");
    open();
    EXPECT_EQ(read_line(50), "new");
    EXPECT_EQ(endfile(), 90);  // behind a READ
    EXPECT_EQ(rewind(), 0);
    EXPECT_EQ(endfile(), 0);
    close_unit(50);
    EXPECT_EQ(get_file("f"), "");
    put_file("f", "kept\r\n");
    open({{IOCode::status, "READONLY"}});
    EXPECT_EQ(endfile(), 139);
    EXPECT_EQ(get_file("f"), "kept\r\n");
}

TEST_F(Position, RefusesUnitsWithoutRecordsInOrder) {
    put_file("f", std::string(16, 'x'));
    for (const Opening entry : {BACK_hh, RWIN_hh, ENDF_hh}) {
        EXPECT_EQ(Packed().unit(50).run(entry), 94);
        EXPECT_EQ(Packed().run(entry), 94);
        EXPECT_EQ(Packed().unit(-3).run(entry), 60);
        EXPECT_EQ(Packed().unit(50).text(IOCode::advance, "NO").run(entry), 214);
    }
    ASSERT_EQ(Packed()
                  .unit(50)
                  .text(IOCode::file, "f")
                  .text(IOCode::access, "DIRECT")
                  .integer(IOCode::recl, 8)
                  .run(OPEN_hh),
              0);
    EXPECT_EQ(backspace(), 96);
    EXPECT_EQ(rewind(), 96);
    EXPECT_EQ(endfile(), 96);
    close_unit(50);
    open({{IOCode::access, "STREAM"}});
    EXPECT_EQ(backspace(), 90);
    EXPECT_EQ(endfile(), 96);
    EXPECT_EQ(rewind(), 0);
    ASSERT_EQ(Packed().unit(51).text(IOCode::filetype, "TTY").run(OPEN_hh), 0);
    EXPECT_EQ(Packed().unit(51).run(ENDF_hh), 155);
    EXPECT_EQ(Packed().unit(51).run(RWIN_hh), 0);
    EXPECT_EQ(close_unit(51), 0);
}

TEST_F(Position, PrinterFormKeepsLineEndsBack) {
    const struct {
        std::vector<std::string_view> records;
        std::string_view bytes;
    } cases[] = {
        {{" a", " b"}, "a\r\nb\r\n"},
        {{" a", "0b"}, "a\r\n\r\nb\r\n"},
        {{"0a"}, "\r\na\r\n"},
        {{" a", "-b"}, "a\r\r\n\n\nb\r\n"},
        {{"-a"}, "\n\r\na\r\n"},
        {{"1a", " b"}, "\fa\r\nb\r\n"},
        {{" a", "1b", " c"}, "a\r\n\fb\rc\r\n"},
        {{" a", "+b"}, "a\rb\r\n"},
        {{"", "xy"}, "\r\ny\r\n"},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(Packed()
                      .unit(50)
                      .text(IOCode::file, "p")
                      .text(IOCode::status, "REPLACE")
                      .text(IOCode::form, "PRINTER")
                      .run(OPEN_hh),
                  0);
        for (const std::string_view record : c.records) ASSERT_EQ(write_line(50, record), 0);
        close_unit(50);
        EXPECT_EQ(get_file("p"), c.bytes) << c.bytes;
    }
    ASSERT_EQ(Packed().unit(50).text(IOCode::file, "p").text(IOCode::form, "PRINTER").run(OPEN_hh),
              0);
    EXPECT_EQ(read_line(50), "<190>");
}

TEST_F(Position, UnformattedRecordsAreSteppedOverFromBehind) {
    std::string file;
    std::vector<std::size_t> starts;
    const auto put = [&](std::string_view header, std::size_t length) {
        starts.push_back(file.size());
        file += header;
        file += std::string(length, 'd');
        file.append(header.rbegin() == header.rend() ? "" : "");
    };
    put(std::string("\x03", 1), 3);
    file += '\x03';
    put(std::string("\xff\x2c\x01\0\0", 5), 300);
    file += std::string("\x2c\x01\0\0\xff", 5);
    put(std::string("\xfe\x02\0\0\0\0\0\0\0", 9), 2);
    file += std::string("\x02\0\0\0\0\0\0\0\xfe", 9);
    put(std::string("\0", 1), 0);
    file += '\0';
    put_file("f", file);
    open({{IOCode::form, "UNFORMATTED"}});
    Unit* const unit = UnitList_getUnit(50);
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeek(*unit, static_cast<std::int64_t>(file.size()), position, err);
    unit->status.reading = true;
    unit->current_record = 5;
    for (std::size_t i = starts.size(); i-- > 0;) {
        ASSERT_EQ(backspace(), 0);
        EXPECT_EQ(unit->file.logical_position, static_cast<std::int64_t>(starts[i])) << i;
    }
    sys_fileSeek(*unit, 2, position, err);  // "d" says 100 bytes in front
    unit->status.reading = true;
    EXPECT_EQ(backspace(), 110);
}

// ---- Statements inside statements ----

class Nesting : public Position {
  protected:
    ~Nesting() override {
        const std::int32_t off = 0;
        ENABLE_REENTRANT_IO_h(&off);
        close_unit(51);
    }
};

TEST_F(Nesting, ControlStatementsRunInsideAnIOList) {
    open();
    std::int32_t iostat = -1;
    std::string words(8, '?');
    Packed outer;
    outer.unit(50).format("(A,A)").result(IOCode::iostat, iostat).call(WSF1_hh);
    CH_h_WSF("be", &one, 2);
    EXPECT_EQ(Packed().unit(51).text(IOCode::file, "g").run(OPEN_hh), 0);
    EXPECT_EQ(Packed().unit(51).text(IOCode::status, "X").run(CLOS_hh), 152);
    EXPECT_EQ(Packed().unit(51).fill(IOCode::form, words).run(INQR_hh), 0);
    EXPECT_EQ(
        Packed().unit(52).text(IOCode::file, "wide").integer(IOCode::recl, 200000).run(OPEN_hh), 0);
    EXPECT_EQ(close_unit(52), 0);
    EXPECT_EQ(close_unit(50), 433);  // the one that is being written
    CH_h_WSF("hind", &one, 4);
    WSF2_h();
    EXPECT_EQ(iostat, 0);
    EXPECT_EQ(words, "FORMATTE");
    close_unit(50);
    EXPECT_EQ(get_file("f"), "behind\r\n");
}

TEST_F(Nesting, ReentrantStatementsHaveRecordsOfTheirOwn) {
    open();
    ASSERT_EQ(Packed().unit(51).text(IOCode::file, "g").run(OPEN_hh), 0);
    const std::int32_t on = 1;
    ENABLE_REENTRANT_IO_h(&on);
    std::int32_t iostat = -1;
    Packed outer;
    outer.unit(50).format("(A,A,A)").result(IOCode::iostat, iostat).call(WSF1_hh);
    CH_h_WSF("a", &one, 1);
    EXPECT_EQ(write_line(51, "inner"), 0);
    EXPECT_EQ(write_line(50, "never"), 433);
    CH_h_WSF("b", &one, 1);
    EXPECT_EQ(Packed().unit(77).format("(A)").run(WSF1_hh), 94);
    EXPECT_EQ(state().io_depth, 0);
    CH_h_WSF("c", &one, 1);
    WSF2_h();
    EXPECT_EQ(iostat, 0);
    close_unit(50);
    close_unit(51);
    EXPECT_EQ(get_file("f"), "abc\r\n");
    EXPECT_EQ(get_file("g"), "inner\r\n");
}

TEST(NestingDeath, ANestedTransferStopsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::int32_t iostat = 0;
            Packed outer;
            outer.unit(2).format("(A)").result(IOCode::iostat, iostat).call(WSF1_hh);
            write_line(2, "x");
        },
        testing::ExitedWithCode(1), "Error  410, A function called from within an I/O statement");
}

TEST_F(Position, AFailureInTheMiddleLeavesNothingBehind) {
    open();
    std::int32_t iostat = -1;
    std::int32_t number = 5;
    std::string message(70, '?');
    Packed statement;
    statement.unit(50).format("(A,A)").result(IOCode::iostat, iostat).fill(IOCode::iomsg, message);
    statement.call(WSF1_hh);
    CH_h_WSF("a", &one, 1);
    R4_h_WSF(&number, &one);
    CH_h_WSF("b", &one, 1);
    WSF2_h();
    EXPECT_TRUE(iostat == 0 || iostat == 51);
    Packed wrong;
    wrong.unit(50).format("(A,I3)").result(IOCode::iostat, iostat).fill(IOCode::iomsg, message);
    wrong.call(WSF1_hh);
    CH_h_WSF("a", &one, 1);
    CH_h_WSF("b", &one, 1);
    CH_h_WSF("c", &one, 1);
    WSF2_h();
    EXPECT_EQ(iostat, 51);
    EXPECT_EQ(message.substr(0, 60),
              "FORMAT mismatch: I-Format with CHARACTER item (at data posit");
    EXPECT_EQ(write_line(50, "after"), 0);
    EXPECT_FALSE(state().in_io);
}

TEST_F(Position, ANonAdvancingREADKeepsItsRecord) {
    put_file("f", "abcdef\r\nnext\r\n");
    open();
    const auto read_part = [](std::ptrdiff_t length, std::int32_t& size) {
        std::int32_t iostat = -1;
        std::string part(static_cast<std::size_t>(length), '?');
        Packed statement;
        statement.unit(50).format("(A)").text(IOCode::advance, "NO").result(IOCode::size, size);
        statement.result(IOCode::iostat, iostat).call(RSF1_hh);
        CH_h_RSF(part.data(), &one, length);
        WSF2_h();
        return iostat == 0 ? part : "<" + std::to_string(iostat) + ">";
    };
    std::int32_t size = -1;
    EXPECT_EQ(read_part(2, size), "ab");
    EXPECT_EQ(size, 2);
    EXPECT_EQ(read_part(3, size), "cde");
    EXPECT_EQ(read_part(4, size), "<-2>");
    EXPECT_EQ(size, 1);
    EXPECT_EQ(read_line(50), "next");
    ASSERT_EQ(rewind(), 0);
    EXPECT_EQ(read_part(2, size), "ab");
    EXPECT_EQ(read_line(50), "cdef");
    EXPECT_EQ(read_line(50), "next");
}

}  // namespace
}  // namespace tarn::fio::native::test
