// Formats in step with items, and records on their way to files and back.
#include "transfer.h"

#include <gtest/gtest.h>

namespace tarn::fio::native::test {
namespace {

TEST(Formats, RunInStepWithTheItems) {
    using Ints = std::vector<std::int32_t>;
    const struct {
        const char* format;
        Ints items;
        const char* text;
    } cases[] = {
        {"(I3)", {1, 2, 3}, "  1|  2|  3"},
        {"(I3,/)", {1}, "  1|"},
        {"(2(I2),I3)", {1, 2, 3, 4}, " 1 2  3| 4"},
        {"(I3,2(1X,I1))", {1, 2, 3, 4, 5, 6}, "  1 2 3| 4 5| 6"},
        {"(I3,:,'x')", {1}, "  1"},
        {"(I3,:,'x')", {1, 2}, "  1x|  2"},
        {"('x')", {}, "x"},
        {"('x')", {1}, "#59"},
        {"(I3,('x'))", {1, 2}, "#59"},
        {"()", {}, ""},
        {"()", {1}, "#59"},
        {"(T10,'a',T1,'b')", {}, "b        a"},
        {"('abcdef',TL3,'X',TR1,'Y')", {}, "abcXeY"},
        {"('ab',TL9,'X')", {}, "Xb"},
        {"('a',3X,'b')", {}, "a   b"},
        {"(5X)", {}, ""},
        {"(I1,5X,'|')", {7}, "7     |"},
        {"(I1,T1,I1)", {7, 8}, "8"},
        {"(2('a',2('b')),'c')", {}, "abbabbc"},
        {"(I1,//,I1)", {1, 2}, "1||2"},
        {"(2/,I1)", {1}, "||1"},
        {"(SP,I3,S,I3,SS,I3)", {1, 2, 3}, " +1  2  3"},
        {"(I1,(I2))", {1, 2, 3}, "1 2| 3"},
        {"(3HabcI2)", {5}, "abc 5"},
        {"(I3,", {1}, "#415"},
        {"I3", {1}, "#73"},
        {"((((((((((((((((((((I3))))))))))))))))))))", {1}, "  1"},
        {"((((((((((((((((((((((I3))))))))))))))))))))))", {1}, "#109"},
        {"(T78,I3)", {1}, "  1"},
        {"(T79,I3)", {1}, "#67"},
        {"(T79,'abc')", {}, "#67"},
        {"(I81)", {1}, "#67"},
        {"(5/)", {}, "#89"},
    };
    for (const auto& c : cases) {
        std::string text = written(c.format, c.items);
        text.erase(0, c.format == std::string("(T78,I3)") ? 77 : 0);
        EXPECT_EQ(text, c.text) << c.format;
    }
    EXPECT_EQ(written("(F6.2,2PF7.2)", std::vector<double>{1, 1, 1}), "  1.00 100.00|100.00");
    // Groups within groups of nothing come to an end.
    EXPECT_EQ(written("(99999(99999(99999(1X))),I1)", 1), "#72");
    EXPECT_EQ(written("(99999(99999(99999(SP))),I1)", 1), "#72");
}

TEST(Formats, WiderThanTheStream) {
    const std::string literal(3000, 'q');
    std::string line(40000, '~');
    Packed statement;
    statement.add(IOCode::internal_file, TypeCode::character, line.data(), 4000)
        .format("('" + literal + "',T3990,I5)");
    EXPECT_EQ(transfer(statement, WSF1_hh, [] { put(42); }), 0);
    EXPECT_EQ(line.substr(2990, 20), std::string(10, 'q') + std::string(10, ' '));
    EXPECT_EQ(line.substr(3989, 5), "   42");
}

TEST(Formats, CompiledStreams) {
    // (2I3,'ab') by its table, and behind the jump that an old compiler put around it.
    std::uint16_t table[] = {10, 0xD9, 0, 1, 0xC9, 2, 3, 0xC8, 2, 0x6261, 0x97};
    std::vector<std::uint16_t> words(table + 1, std::end(table));
    words.push_back(9);
    table[0] = 10;
    const auto run = [](IOCode code, const void* format) {
        std::string line(20, '~');
        Packed statement;
        statement.add(IOCode::internal_file, TypeCode::character, line.data(), 20)
            .add(code, TypeCode::none, format);
        const std::int32_t iostat = transfer(statement, WSF1_hh, [] { put(1), put(2); });
        return iostat == 0 ? line.substr(0, 8) : message(iostat);
    };
    std::vector<std::uint16_t> counted = {11};
    counted.insert(counted.end(), words.begin(), words.end());
    EXPECT_EQ(run(IOCode::fmt_table, counted.data()), "  1  2ab");
    counted[0] = 9;  // stops before its end instruction
    EXPECT_EQ(run(IOCode::fmt_table, counted.data()), "  1  2ab");
    counted[0] = 8;
    EXPECT_EQ(run(IOCode::fmt_table, counted.data()), "#83");
    counted[0] = 0;
    EXPECT_EQ(run(IOCode::fmt_table, counted.data()), "#83");

    std::vector<unsigned char> code(5 + words.size() * 2);
    code[0] = 0xE9;
    std::memcpy(code.data() + 5, words.data(), words.size() * 2);
    EXPECT_EQ(run(IOCode::fmt, code.data()), "  1  2ab");
    const void* label = code.data();
    EXPECT_EQ(run(IOCode::assigned_fmt, &label), "  1  2ab");
    code[5] = 0x55;
    EXPECT_EQ(run(IOCode::fmt, code.data()), "#83");

    // Numbers in words: in capitals, in small letters, and as at the start of a sentence.
    std::string line(120, '~');
    std::vector<std::uint16_t> in_words = {16, 0xD9, 0, 1,    0xDE, 0, 4,    0xDF, 0,
                                           0,  0x98, 1, 0xE0, 0,    7, 0x97, 14};
    Packed statement;
    statement.add(IOCode::internal_file, TypeCode::character, line.data(), 120)
        .add(IOCode::fmt_table, TypeCode::none, in_words.data());
    EXPECT_EQ(transfer(statement, WSF1_hh, [] { put(1), put(1234567), put(3); }), 0);
    EXPECT_EQ(line.substr(0, 89),
              "ONE one million two hundred and thirty four thousand five hundred and sixty seven"
              " Three  ");
}

TEST(Formats, InNumericVariables) {
    const char format[] = "(I5,A2) ";
    std::string line(7, '~');
    Packed statement;
    std::int64_t variable;
    std::memcpy(&variable, format, sizeof variable);
    statement.add(IOCode::internal_file, TypeCode::character, line.data(), 7)
        .add(IOCode::format_variable, TypeCode::integer8, &variable);
    EXPECT_EQ(transfer(statement, WSF1_hh, [] { put(12), put("ab"); }), 0);
    EXPECT_EQ(line, "   12ab");
}

TEST(Formats, MismatchesTellWhere) {
    std::string text(80, '~');
    std::string line(80, '~');
    Packed statement;
    statement.fill(IOCode::iomsg, text)
        .add(IOCode::internal_file, TypeCode::character, line.data(), 80)
        .format("(2I3,F5.1,'x',ES9.1)");
    EXPECT_EQ(transfer(statement, WSF1_hh, [] { put(1), put(2), put(3.0), put("abc"); }), 51);
    text.erase(text.find_last_not_of(' ') + 1);
    EXPECT_EQ(text, "FORMAT mismatch: ES-Format with CHARACTER item (at data position 4).");
}

TEST(InternalFiles, ItemsMustNotOverlap) {
    std::string line(20, 'x');
    Packed statement;
    statement.add(IOCode::internal_file, TypeCode::character, line.data(), 20).format("(A)");
    EXPECT_EQ(transfer(statement, WSF1_hh, [&] { CH_h_WSF(line.data() + 4, &one, 3); }), 86);
    Packed reading;
    reading.add(IOCode::internal_file, TypeCode::character, line.data(), 20);
    EXPECT_EQ(transfer(reading, RSF1_hh, [&] { CH_h_RSF(line.data() + 19, &one, 1); }), 86);
}

TEST(InternalFiles, EndAfterTheirLastRecord) {
    std::int32_t i = 0;
    std::int32_t j = 0;
    EXPECT_EQ(read({"1", "2"}, "(I1)", i, j), 0);
    EXPECT_EQ(read({"1"}, "(I1)", i, j), -1);
    EXPECT_EQ(written("(I1)", std::vector<std::int32_t>(5, 1)), "#89");
}

// ---- Files ----

class Files : public testing::Test {
  protected:
    static constexpr std::int32_t unit = 40;
    ~Files() override { close_unit(unit); }
    struct Word {
        IOCode code;
        std::string_view text;
    };
    static std::int32_t open(std::initializer_list<Word> words = {}, std::int32_t recl = 0) {
        Packed statement;
        statement.unit(unit).text(IOCode::file, "f");
        for (const Word& w : words) statement.text(w.code, w.text);
        if (recl != 0) statement.integer(IOCode::recl, recl);
        return statement.run(OPEN_hh);
    }
    template <typename... Items>
    static std::int32_t write(std::string_view format, const Items&... items) {
        Packed statement;
        statement.unit(unit);
        if (!format.empty()) statement.format(format);
        return transfer(statement, WSF1_hh, [&] { (put(items), ...); });
    }
    template <typename... Items>
    static std::int32_t write_on(std::string_view format, const Items&... items) {
        Packed statement;
        statement.unit(unit).format(format).text(IOCode::advance, "NO");
        return transfer(statement, WSF1_hh, [&] { (put(items), ...); });
    }
    template <typename... Items>
    static std::int32_t read(std::string_view format, Items&... items) {
        Packed statement;
        statement.unit(unit);
        if (!format.empty()) statement.format(format);
        return transfer(statement, RSF1_hh, [&] { (get(items), ...); });
    }
    // A non-advancing READ; "n" or "#message", and the count of SIZE=.
    template <typename... Items>
    static std::string read_on(std::string_view format, Items&... items) {
        static std::int32_t size;
        size = -99;
        Packed statement;
        statement.unit(unit).format(format).text(IOCode::advance, "NO");
        statement.result(IOCode::size, size);
        const std::int32_t iostat = transfer(statement, RSF1_hh, [&] { (get(items), ...); });
        return std::to_string(iostat) + " " + std::to_string(size);
    }
    template <typename... Items>
    static std::int32_t at(std::int32_t place, Opening entry, std::string_view format,
                           Items&... items) {
        Packed statement;
        statement.unit(unit).integer(IOCode::rec, place).format(format);
        return transfer(statement, entry, [&] {
            if (entry == RSF1_hh || entry == RDF1_hh) {
                if constexpr ((!std::is_const_v<Items> && ...)) (get(items), ...);
            } else {
                (put(items), ...);
            }
        });
    }
    static std::string bytes() {
        Packed().unit(unit).run(FLUSH_hh);
        return get_file("f");
    }
    Folder folder_;
};

TEST_F(Files, TextRecords) {
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(write("(A)", "ab   "), 0);
    EXPECT_EQ(write("(5X)"), 0);
    EXPECT_EQ(write("(I3,/,I3)", 1, 2), 0);
    EXPECT_EQ(write("", 3), 0);
    EXPECT_EQ(write("(A,$)", "x"), 0);
    EXPECT_EQ(bytes(), "ab\r\n\r\n  1\r\n  2\r\n            3\r\nx\r\n");
    EXPECT_EQ(Packed().unit(unit).run(RWIN_hh), 0);
    std::string s(4, '?');
    std::int32_t i = 0;
    std::int32_t j = 0;
    EXPECT_EQ(read("(A,/)", s), 0);
    EXPECT_EQ(s, "ab  ");
    EXPECT_EQ(read("(I3)", i, j), 0);
    EXPECT_EQ(i * 10 + j, 12);
    // A WRITE ends the file behind itself.
    EXPECT_EQ(write("(A)", "end"), 0);
    EXPECT_EQ(bytes(), "ab\r\n\r\n  1\r\n  2\r\nend\r\n");
    EXPECT_EQ(read("(A)", s), -1);
}

TEST_F(Files, DelimitersOfListOutput) {
    ASSERT_EQ(open({{IOCode::delim, "APOSTROPHE"}}), 0);
    EXPECT_EQ(write("", "it's", 5), 0);
    EXPECT_EQ(bytes(), "  'it''s'            5\r\n");
    EXPECT_EQ(write("", std::string(115, 'x'), std::string(3, 'y')), 0);
    EXPECT_EQ(bytes().substr(24), "  '" + std::string(115, 'x') + "'\r\n  'yyy'\r\n");
}

TEST_F(Files, FixedRecordsKeepTheirLength) {
    ASSERT_EQ(open({}, 10), 0);
    EXPECT_EQ(write("(A)", "abc"), 0);
    EXPECT_EQ(write_on("(A)", "ab "), 0);
    EXPECT_EQ(write_on("(A,T8)", "cd"), 0);
    EXPECT_EQ(write("(A,T9,A)", "e", "f"), 0);
    EXPECT_EQ(write("(A)", "12345678901"), 67);
    EXPECT_EQ(write("", "abc", 5), 67);
    EXPECT_EQ(bytes(), "abc       \r\nab cd  ef \r\n abc      \r\n");
}

TEST_F(Files, NonAdvancingWrite) {
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(write_on("(A)", "ab "), 0);
    EXPECT_EQ(write_on("(A,2X)", "cd"), 0);
    EXPECT_EQ(write_on("(I2,/,A)", 5, "next "), 0);
    EXPECT_EQ(write_on("(I1)", std::vector<std::int32_t>{1, 2}), 0);
    EXPECT_EQ(write("(T5,A)", "x"), 0);
    EXPECT_EQ(bytes(), "ab cd   5\r\nnext 1\r\n2   x\r\n");
}

TEST_F(Files, NonAdvancingRead) {
    put_file("f", "abc\r\n\r\ndef\r\n12 34\r\n");
    ASSERT_EQ(open(), 0);
    std::string c(1, '?');
    std::string seen;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(read_on("(A1)", c), "0 1");
        seen += c;
    }
    EXPECT_EQ(seen, "abc");
    EXPECT_EQ(read_on("(A1)", c), "-2 0");
    EXPECT_EQ(read_on("(A1)", c), "-2 0");
    std::string five(5, '?');
    EXPECT_EQ(read_on("(A)", five), "-2 3");
    EXPECT_EQ(five, "def  ");  // padded before the end of the record is told
    std::int32_t i = 0;
    std::int32_t j = 0;
    EXPECT_EQ(read_on("(I2)", i), "0 2");
    EXPECT_EQ(read("(I3)", j), 0);
    EXPECT_EQ(i * 100 + j, 1234);
    EXPECT_EQ(read_on("(A1)", c), "-1 0");
}

TEST_F(Files, NonAdvancingReadGoesOnAtASlash) {
    put_file("f", "1x\r\n2y\r\n3z\r\n");
    ASSERT_EQ(open(), 0);
    std::int32_t i = 0;
    std::int32_t j = 0;
    std::string c(1, '?');
    EXPECT_EQ(read_on("(I1,/,I1)", i, j), "0 2");
    EXPECT_EQ(read_on("(A1)", c), "0 1");
    EXPECT_EQ(i * 10 + j, 12);
    EXPECT_EQ(c, "y");
}

TEST_F(Files, ShortRecords) {
    put_file("f", "\r\n1\r\n\r\n");
    ASSERT_EQ(open(), 0);
    std::int32_t i = 5;
    EXPECT_EQ(read("(I3)", i), 0);
    EXPECT_EQ(i, 0);
    close_unit(unit);
    ASSERT_EQ(open({{IOCode::pad, "NO"}}), 0);
    EXPECT_EQ(read("(I3)", i), 215);
    EXPECT_EQ(read("(I1)", i), 0);
    EXPECT_EQ(read_on("(I1)", i), "-2 0");
}

TEST_F(Files, LongLines) {
    ASSERT_EQ(open(), 0);
    const auto buffer = static_cast<std::size_t>(current().buffer_size);
    const std::string text(3 * buffer, 'q');
    EXPECT_EQ(write("(A)", text), 0);
    EXPECT_EQ(bytes(), text + "\r\n");
    EXPECT_EQ(write("(A,A)", text.substr(0, buffer - 9), text.substr(0, 10)), 69);
}

TEST_F(Files, DirectRecords) {
    ASSERT_EQ(open({{IOCode::access, "DIRECT"}, {IOCode::form, "FORMATTED"}}, 6), 0);
    std::int32_t i = 12;
    std::int32_t j = 34;
    std::string s = "abcdefg";
    EXPECT_EQ(at(2, WDF1_hh, "(I3)", i), 0);
    EXPECT_EQ(bytes(), "      \r\n 12   \r\n");
    EXPECT_EQ(at(1, WDF1_hh, "(I3)", i, j), 0);
    EXPECT_EQ(bytes(), " 12   \r\n 34   \r\n");
    EXPECT_EQ(at(3, WDF1_hh, "(A)", s), 68);
    EXPECT_EQ(at(3, WDF1_hh, "(I3,/,I3)", j, i), 0);
    i = j = 0;
    EXPECT_EQ(at(2, RDF1_hh, "(I6,/,I6)", i, j), 0);
    EXPECT_EQ(i * 100 + j, 3434);
    EXPECT_EQ(at(5, RDF1_hh, "(I3)", i), 95);
    EXPECT_EQ(at(0, RDF1_hh, "(I3)", i), 95);
    EXPECT_EQ(at(1, RDF1_hh, "(I7)", i), 68);
    EXPECT_EQ(write("(I3)", 1), 90);
    Packed list;
    list.unit(unit).integer(IOCode::rec, 1);
    EXPECT_EQ(transfer(list, RDF1_hh, [] {}), 100);
}

TEST_F(Files, Streams) {
    ASSERT_EQ(open({{IOCode::access, "STREAM"}, {IOCode::form, "FORMATTED"}}), 0);
    EXPECT_EQ(write("(A,/,I3)", "one  ", 5), 0);
    EXPECT_EQ(write("(A)", std::string(100, 'w')), 0);
    EXPECT_EQ(write("(A,A)", "x", "\n"), 0);
    EXPECT_EQ(bytes(), "one  \r\n  5\r\n" + std::string(100, 'w') + "\r\nx\r\n\r\n");
    std::string s = "??";
    std::int32_t i = 0;
    EXPECT_EQ(at(1, RSF1_hh, "(A)", s), 0);
    EXPECT_EQ(s, "on");
    EXPECT_EQ(read("(I5)", i), 0);
    EXPECT_EQ(i, 5);
    EXPECT_EQ(read("(T99,A)", s), 0);
    EXPECT_EQ(s, "ww");
    EXPECT_EQ(at(3, RSF1_hh, "(A,/,I3)", s, i), 0);
    EXPECT_EQ(s, "e ");
    EXPECT_EQ(at(1000, RSF1_hh, "(A)", s), 450);
    EXPECT_EQ(write("", 1), 90);
    const std::string z = "Z";
    EXPECT_EQ(at(2, WSF1_hh, "(A)", z), 0);
    EXPECT_EQ(bytes().substr(0, 5), "oZ\r\n ");
    std::int32_t status = at(200, WSF1_hh, "(A)", z);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(bytes().substr(195), std::string(4, '\0') + "Z\r\n");
}

TEST_F(Files, TransparentUnits) {
    ASSERT_EQ(open({{IOCode::access, "TRANSPARENT"}, {IOCode::form, "FORMATTED"}}), 0);
    EXPECT_EQ(write("(A,I3,/,A)", "ab", 5, "c"), 0);
    EXPECT_EQ(write("(A)", "d"), 0);
    EXPECT_EQ(bytes(), "ab  5\r\ncd");
    EXPECT_EQ(Packed().unit(unit).run(RWIN_hh), 0);
    std::string s = "??";
    std::int32_t i = 0;
    std::string t = "?";
    EXPECT_EQ(read("(A2,I3,/,A)", s, i, t), 0);
    EXPECT_EQ(s + t, "abc");
    EXPECT_EQ(i, 5);
    EXPECT_EQ(read("(A2)", s), -1);
}

TEST_F(Files, StatementsThatAreRefused) {
    const auto run = [](Packed& statement, Opening entry) {
        return transfer(statement, entry, [] {});
    };
    Packed none;
    EXPECT_EQ(run(none.unit(77).format("(I3)"), WSF1_hh), 94);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(run(Packed().unit(unit).text(IOCode::advance, "NO"), WSF1_hh), 214);
    EXPECT_EQ(run(Packed().unit(unit).format("(I3)").text(IOCode::advance, "OFF"), WSF1_hh), 213);
    std::int32_t size = 0;
    EXPECT_EQ(run(Packed().unit(unit).format("(I3)").result(IOCode::size, size), RSF1_hh), 81);
    EXPECT_EQ(run(Packed().unit(unit).integer(IOCode::rec, 1).format("(I3)"), WSF1_hh), 90);
    std::string line(9, ' ');
    EXPECT_EQ(run(Packed()
                      .add(IOCode::internal_file, TypeCode::character, line.data(), 9)
                      .integer(IOCode::rec, 1)
                      .format("(I3)"),
                  WDF1_hh),
              101);
    close_unit(unit);
    ASSERT_EQ(open({{IOCode::action, "READ"}}), 0);
    EXPECT_EQ(write("(I3)", 1), 139);
    close_unit(unit);
    ASSERT_EQ(open({{IOCode::action, "WRITE"}}), 0);
    std::int32_t i = 0;
    EXPECT_EQ(read("(I3)", i), 208);
    close_unit(unit);
    ASSERT_EQ(open({{IOCode::form, "UNFORMATTED"}}), 0);
    EXPECT_EQ(write("(I3)", 1), 90);
}

TEST_F(Files, IgnoredMessagesLeaveNoHarm) {
    // In a child: the marks stay for good.
    ASSERT_EQ(open(), 0);
    EXPECT_EXIT(
        {
            for (std::int32_t m : {51, 52, 53, 59, 61, 67, 69, 71, 74, 83, 89, 109, 215, 415})
                __inhibit_iostat(m);
            bool good = written("(I200,'x')", 1).size() <= 80 && written("('x')", 1) == "x";
            good = good && written("(F8.2,Q,I3)", 1, 2.0) == "";
            std::string s = "??";
            std::int32_t i = 0;
            good = good && test::read({"x1x"}, "('a',I3,A2", i, s) == 0 && i == 1;
            good = good && test::read({"x1x"}, "", i) == 0;
            std::fprintf(stderr, "[%d]", good);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarn::fio::native::test
