// List-directed READ over files, as a compiled program asks for it. Expectations were taken from
// gfortran 12; where it is at fault a comment says so.
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "fio/gnu/close.h"
#include "fio/gnu/open.h"
#include "fio/gnu/statement.h"

namespace tarn::fio {
namespace {

constexpr int unit_number = 77;

struct Connection {
    std::string_view decimal, encoding;
};

// A file on a unit while the test looks at it.
class ListFile {
  public:
    explicit ListFile(const std::string& text, const Connection& connection = {}) {
        const int descriptor = mkstemp(path_);
        EXPECT_EQ(write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(descriptor);
        OpenSpecifiers specifiers;
        specifiers.unit = unit_number;
        specifiers.file = path_;
        specifiers.decimal = connection.decimal;
        specifiers.encoding = connection.encoding;
        Caller caller = caller_of(nullptr);
        open_unit(caller, specifiers);
    }
    ~ListFile() {
        Caller caller = caller_of(nullptr);
        close_unit(caller, {});
        std::remove(path_);
    }

    static Caller caller_of(std::int32_t* iostat) {
        Caller caller;
        caller.unit = unit_number;
        caller.has_unit = true;
        caller.iostat = iostat;
        caller.catches_error = caller.catches_end = caller.catches_eor = iostat != nullptr;
        return caller;
    }

  private:
    char path_[32] = "/tmp/tarn_list_XXXXXX";
};

std::string spell_real(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

// Items by type letters: i INTEGER(4), b INTEGER(1), l LOGICAL(4), r REAL(8), f REAL(4),
// c COMPLEX(8), s CHARACTER(5), w CHARACTER(3, 4).
class Items {
  public:
    explicit Items(const std::string& types) : types_(types), cells_(types.size()) {}

    void transfer(Statement& s) {
        for (std::size_t i = 0; i < types_.size(); ++i) {
            char* const cell = cells_[i].bytes;
            switch (types_[i]) {
                case 'i':
                    transfer_items(s, ItemType::integer, cell, 4, 4, 0, 1);
                    break;
                case 'b':
                    transfer_items(s, ItemType::integer, cell, 1, 1, 0, 1);
                    break;
                case 'l':
                    transfer_items(s, ItemType::logical, cell, 4, 4, 0, 1);
                    break;
                case 'r':
                    transfer_items(s, ItemType::real, cell, 8, 8, 0, 1);
                    break;
                case 'f':
                    transfer_items(s, ItemType::real, cell, 4, 4, 0, 1);
                    break;
                case 'c':
                    transfer_items(s, ItemType::complex, cell, 8, 16, 0, 1);
                    break;
                case 's':
                    transfer_items(s, ItemType::character, cell, 1, 5, 0, 1);
                    break;
                default:
                    transfer_items(s, ItemType::character, cell, 4, 3, 0, 1);
                    break;
            }
        }
    }

    // The items with a bar between them; `~` is one that kept its value.
    std::string spell() const {
        std::string all;
        for (std::size_t i = 0; i < types_.size(); ++i) {
            if (i != 0) all += '|';
            all += spell(types_[i], cells_[i].bytes);
        }
        return all;
    }

  private:
    struct Cell {
        Cell() { std::memset(bytes, '~', sizeof bytes); }
        alignas(16) char bytes[32];
    };

    template <class T>
    static T value(const char* cell) {
        T result;
        std::memcpy(&result, cell, sizeof result);
        return result;
    }

    static std::string spell(char type, const char* cell) {
        if (cell[0] == '~') return "~";
        switch (type) {
            case 'i':
                return std::to_string(value<std::int32_t>(cell));
            case 'b':
                return std::to_string(value<std::int8_t>(cell));
            case 'l':
                return std::to_string(value<std::int32_t>(cell));
            case 'r':
                return spell_real(value<double>(cell));
            case 'f':
                return spell_real(value<float>(cell));
            case 'c':
                return '(' + spell_real(value<double>(cell)) + ',' +
                       spell_real(value<double>(cell + 8)) + ')';
            case 's':
                return {cell, 5};
            default: {
                std::string codes;
                for (int i = 0; i < 3; ++i) {
                    if (i != 0) codes += ' ';
                    codes += std::to_string(value<std::int32_t>(cell + 4 * i));
                }
                return codes;
            }
        }
    }

    std::string types_;
    std::vector<Cell> cells_;
};

std::string read_items(const std::string& types, std::string* message = nullptr) {
    std::int32_t iostat = 0;
    Caller caller = ListFile::caller_of(&iostat);
    char text[160];
    caller.iomsg = text;
    caller.iomsg_length = sizeof text;
    TransferSpecifiers specifiers;
    specifiers.reading = true;
    specifiers.list_directed = true;
    Statement* const statement = begin_transfer(caller, specifiers);
    Items items(types);
    items.transfer(*statement);
    end_transfer(statement);
    if (message != nullptr) {
        message->assign(text, sizeof text);
        message->resize(message->find_last_not_of(' ') + 1);
    }
    return std::to_string(iostat) + ": " + items.spell();
}

struct Row {
    const char* types;
    const char* text;
    const char* result;
};

void check(const std::vector<Row>& table, const Connection& connection = {}) {
    for (const Row& row : table) {
        const ListFile file(row.text, connection);
        EXPECT_EQ(read_items(row.types), row.result) << row.text;
    }
}

TEST(GnuListRead, Separators) {
    check({
        {"ii", "1 2\n", "0: 1|2"},          {"ii", "1,2\n", "0: 1|2"},
        {"ii", " 1 , 2\n", "0: 1|2"},       {"ii", "1;2\n", "0: 1|2"},
        {"ii", "1\t2\n", "0: 1|2"},         {"ii", "1\n2\n", "0: 1|2"},
        {"ii", "1\n\n  \n2 3\n", "0: 1|2"}, {"ii", "1\r\n2\r\n", "0: 1|2"},
        {"ii", "1,\n2\n", "0: 1|2"},        {"ii", "1\n,2\n", "0: 1|2"},
        {"iii", "1,\n,2\n", "0: 1|~|2"},    {"iii", "1,,2\n", "0: 1|~|2"},
        {"ii", ",2\n", "0: ~|2"},           {"ii", ";2\n", "0: ~|2"},
        {"ii", ",\n2\n", "0: ~|2"},         {"ii", "1/\n", "0: 1|~"},
        {"ii", "1 /2\n", "0: 1|~"},         {"ii", "/\n", "0: ~|~"},
        {"ii", "1\n/\n", "0: 1|~"},         {"is", "1 2!x 3\n", "0: 1|2!x  "},
    });
}

TEST(GnuListRead, Repeats) {
    check({
        {"iii", "3*7\n", "0: 7|7|7"},
        {"iii", "2*7 8\n", "0: 7|7|8"},
        {"iii", "2*,8\n", "0: ~|~|8"},
        {"iii", "2* 8\n", "0: ~|~|8"},
        {"iii", "2*\n8\n", "0: ~|~|8"},
        {"iii", "2*/\n", "0: ~|~|~"},
        {"ii", "5*-7\n", "0: -7|-7"},
        {"rr", "2*1.5\n", "0: 1.5|1.5"},
        {"rr", "2*-inf\n", "0: -inf|-inf"},
        {"cc", "2*(1,2)\n", "0: (1,2)|(1,2)"},
        {"ll", "2*.t.\n", "0: 1|1"},
        {"ss", "2*abc\n", "0: abc  |abc  "},
        {"ss", "2*'a b'\n", "0: a b  |a b  "},
        {"s", "1*1*2\n", "0: 1*2  "},
        {"s", "12'a\n", "0: 12'a "},
        {"i", "0*7\n", "5010: ~"},
        {"i", "200000001*7\n", "5010: ~"},
        {"i", "99999999999999999999*7\n", "5010: ~"},
        {"i", "2*3*4\n", "5010: ~"},
        {"l", "2x\n", "5010: ~"},
        // A repeated value keeps its type and kind.
        {"ir", "2*3\n", "5010: 3|~"},
        {"rf", "2*3\n", "5010: 3|~"},
        {"is", "2*3\n", "5010: 3|~"},
        {"ir", "2*\n", "0: ~|~"},
    });
}

TEST(GnuListRead, Numbers) {
    check({
        {"i", "+5\n", "0: 5"},
        {"i", "-2147483648\n", "0: -2147483648"},
        {"i", "2147483648\n", "5010: ~"},
        {"b", "-128\n", "0: -128"},
        {"b", "128\n", "5010: ~"},
        {"i", "1.5\n", "5010: ~"},
        {"i", "12abc\n", "5010: ~"},
        {"i", "'12'\n", "5010: ~"},
        {"i", "+\n", "5010: ~"},
        {"rr", "1.5e3,2d4\n", "0: 1500|20000"},
        {"rr", "1.5+3 2q-4\n", "0: 1500|0.00020000000000000001"},
        {"rr", "5. +.5\n", "0: 5|0.5"},
        {"rr", "1e400 -1e-400\n", "0: inf|-0"},
        {"r", "1.5e99999999999999999999\n", "0: inf"},
        {"rr", "Inf -INFINITY\n", "0: inf|-inf"},
        {"rr", "nan nan(a.b)\n", "0: nan|nan"},
        {"f", "3.4028236e38\n", "0: inf"},
        {"r", "1.5.2\n", "5010: ~"},
        {"r", "1e\n", "5010: ~"},
        {"r", "1e+\n", "5010: ~"},
        {"r", "1.5*3\n", "5010: ~"},
        {"r", "e5\n", "5010: ~"},
        {"r", "infi\n", "5010: ~"},
        {"r", "nan(a b)\n", "5010: ~"},
        // gfortran stores a zero here.
        {"r", ".\n", "5010: ~"},
        {"c", "(1,2)\n", "0: (1,2)"},
        {"c", "( 1.5 , -inf )\n", "0: (1.5,-inf)"},
        {"c", "(\n1\n,\n2\n)\n", "0: (1,2)"},
        {"ci", "(1,2),3\n", "0: (1,2)|3"},
        {"ci", "(1,2)3\n", "5010: ~|~"},
        {"c", "(1 2)\n", "5010: ~"},
        {"c", "(1)\n", "5010: ~"},
        {"c", "(,)\n", "5010: ~"},
        {"c", "1\n", "5010: ~"},
    });
}

TEST(GnuListRead, Logicals) {
    check({
        {"ll", "T f\n", "0: 1|0"},
        {"ll", ".true. .FALSE.\n", "0: 1|0"},
        {"ll", "truefalse,fy\n", "0: 1|0"},
        {"l", ".tr?\n", "0: 1"},
        {"ll", "t,x\n", "5010: 1|~"},
        {"l", ".\n", "5010: ~"},
        {"l", "1\n", "5010: ~"},
        // gfortran takes the slash for a part of the word.
        {"ll", "true/f\n", "0: 1|~"},
    });
}

TEST(GnuListRead, Texts) {
    check({
        {"ss", "abc defghi\n", "0: abc  |defgh"},
        {"ss", "abc,def\n", "0: abc  |def  "},
        {"ss", "abc/def\n", "0: abc  |~"},
        {"s", "ab'cd'e f\n", "0: ab'cd"},
        {"s", "'a b,c'\n", "0: a b,c"},
        {"s", "'it''s'\n", "0: it's "},
        {"s", "\"a\"\"b\"\n", "0: a\"b  "},
        {"s", "\"it''s\"\n", "0: it''s"},
        {"ss", "'','a'\n", "0:      |a    "},
        {"s", "'ab\ncd'\n", "0: abcd "},
        {"s", "'a\r\n\r\nb'\r\n", "0: ab   "},
        {"ss", "'a''\n' x\n", "0: a'   |x    "},
        {"ss", "'ab'cd ef\n", "5010: ~|~"},
        {"s", "!ab\n", "0: !ab  "},
        {"s", "*5\n", "0: *5   "},
        {"w", "abcd\n", "0: 97 98 99"},
        {"s", "\303\244b\n", "0: \303\244b  "},
    });
}

TEST(GnuListRead, Utf8) {
    const Connection utf8{.encoding = "UTF-8"};
    check(
        {
            {"w", "\303\244\342\202\254\n", "0: 228 8364 32"},
            {"ww", "2*'\303\244'\n", "0: 228 32 32|228 32 32"},
            {"si", "\342\202\254x 12\n", "0: ?x   |12"},
        },
        utf8);
}

TEST(GnuListRead, DecimalComma) {
    const Connection comma{.decimal = "COMMA"};
    check(
        {
            {"rr", "1,5;2,5\n", "0: 1.5|2.5"},
            {"rr", "1,5 2.5\n", "0: 1.5|2.5"},
            {"rrr", "1;;2\n", "0: 1|~|2"},
            {"rr", "1 ,5\n", "0: 1|0.5"},
            {"rr", "inf,5\n", "0: inf|0.5"},
            {"rr", "1e1,5\n", "0: 10|0.5"},
            {"r", "1,5,3\n", "5010: ~"},
            {"c", "(1,5;,5)\n", "0: (1.5,0.5)"},
            {"c", "(1,5,2)\n", "5010: ~"},
            // A comma separates no values, but none can begin with it.
            {"ii", "1,2\n", "0: 1|~"},
            {"ss", "a,b;c\n", "0: a    |~"},
        },
        comma);
}

TEST(GnuListRead, EndOfFile) {
    check({
        {"i", "", "-1: ~"},
        {"i", "  \n\n", "-1: ~"},
        {"i", "5", "0: 5"},
        {"i", "5 ", "0: 5"},
        {"i", "5,", "0: 5"},
        {"ii", "5,6", "0: 5|6"},
        {"ii", "5,,", "0: 5|~"},
        {"ii", "5", "-1: 5|~"},
        {"ii", "5,\n", "-1: 5|~"},
        {"ii", ",", "-1: ~|~"},
        {"ii", "3*5", "0: 5|5"},
        {"i", "2*", "-1: ~"},
        {"i", "5/", "-1: 5"},
        {"i", "5/\n", "0: 5"},
        {"i", "-", "-1: ~"},
        {"r", "1e", "-1: ~"},
        {"i", "1x", "5010: ~"},
        {"c", "(1,2", "-1: ~"},
        {"c", "(1,2)", "0: (1,2)"},
        {"s", "'abc", "0: abc  "},
        {"s", "'abc\n", "0: abc  "},
        {"si", "'abc\n", "-1: abc  |~"},
        // gfortran meets the end of the file behind such a word.
        {"l", "true", "0: 1"},
    });
}

TEST(GnuListRead, RecordsGoByOneStatementAtATime) {
    const ListFile file("1 2 3\n4\n\n5 x\n6,7/8\n'9\n10' 11\n12");
    EXPECT_EQ(read_items("i"), "0: 1");
    EXPECT_EQ(read_items(""), "0: ");
    EXPECT_EQ(read_items("i"), "0: 5");
    EXPECT_EQ(read_items("iii"), "0: 6|7|~");
    EXPECT_EQ(read_items("s"), "0: 910  ");
    EXPECT_EQ(read_items("i"), "0: 12");
    EXPECT_EQ(read_items("i"), "-1: ~");
}

TEST(GnuListRead, FaultNamesItemAndText) {
    const ListFile file("1 2 abc,4\n5\n");
    std::string message;
    EXPECT_EQ(read_items("iiii", &message), "5010: 1|2|~|~");
    EXPECT_NE(message.find("item 3"), std::string::npos) << message;
    EXPECT_NE(message.find("\"abc\""), std::string::npos) << message;
    EXPECT_EQ(message.find(",4"), std::string::npos) << message;
    // The record at fault has gone by.
    EXPECT_EQ(read_items("i"), "0: 5");
}

TEST(GnuListRead, LongValuesAndRecords) {
    std::string number = "0.";
    number.append(150000, '0').append("125e150000");
    std::string numbers;
    for (int i = 0; i < 40000; ++i) numbers += std::to_string(i) + (i % 7 == 0 ? " ,  " : " ");
    const ListFile file(number + "\n" + numbers + "\n'" + std::string(300000, 'q') + "\n" +
                        std::string(300000, 'r') + "' 5\n");
    EXPECT_EQ(read_items("r"), "0: 0.125");

    std::int32_t iostat = 0;
    Caller caller = ListFile::caller_of(&iostat);
    TransferSpecifiers specifiers;
    specifiers.reading = true;
    specifiers.list_directed = true;
    Statement* statement = begin_transfer(caller, specifiers);
    std::vector<std::int32_t> items(40000);
    transfer_items(*statement, ItemType::integer, items.data(), 4, 4, 4, items.size());
    end_transfer(statement);
    EXPECT_EQ(iostat, 0);
    for (int i = 0; i < 40000; ++i) ASSERT_EQ(items[static_cast<std::size_t>(i)], i);

    std::string text(600001, '-');
    std::int32_t last = 0;
    statement = begin_transfer(caller, specifiers);
    transfer_items(*statement, ItemType::character, text.data(), 1, text.size(), 0, 1);
    transfer_items(*statement, ItemType::integer, &last, 4, 4, 0, 1);
    end_transfer(statement);
    EXPECT_EQ(iostat, 0);
    EXPECT_EQ(text, std::string(300000, 'q') + std::string(300000, 'r') + " ");
    EXPECT_EQ(last, 5);
}

}  // namespace
}  // namespace tarn::fio
