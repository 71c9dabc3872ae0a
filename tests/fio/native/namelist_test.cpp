// Native NAMELIST statements over packed tables.
#include <complex>
#include <gtest/gtest.h>

#include "fio/native/namelist_table.h"
#include "packed.h"

namespace tarn::fio::native::test {
namespace {

extern "C" {
void RNML_hh(const std::int16_t*, ...) LINK_NAME("RNML##");
void WNML_hh(const std::int16_t*, ...) LINK_NAME("WNML##");
}

constexpr std::int32_t unit = 21;

// A group of a few variables on a unit of its own.
class NativeNamelist : public testing::Test {
  protected:
    NativeNamelist() : builder_("GROUP!ALIAS") {
        const std::int64_t five[] = {1, 5};
        const std::int64_t matrix[] = {0, 1, 1, 2};
        builder_.add("I", NamelistType::integer4, &i_, 4, 0, nullptr);
        builder_.add("A", NamelistType::integer2, a_, 2, 1, five);
        builder_.add("M", NamelistType::real8, m_, 8, 2, matrix);
        builder_.add("C", NamelistType::character, c_, 4, 1, five);
        builder_.add("L", NamelistType::logical1, &l_, 1, 0, nullptr);
        builder_.add("Z", NamelistType::complex16, &z_, 16, 0, nullptr);
        const std::int64_t two[] = {1, 2};
        builder_.add("S", NamelistType::structure, nullptr, sizeof(Part), 1, two);
        builder_.add("N", NamelistType::integer4, &s_[0].n, 4, 0, nullptr);
        builder_.add("INNER", NamelistType::structure, nullptr, 8, 0, nullptr);
        builder_.add("X", NamelistType::real4, &s_[0].x, 4, 0, nullptr);
        builder_.add("T", NamelistType::character, s_[0].t, 4, 0, nullptr);
        builder_.end_structure();
        builder_.end_structure();
        builder_.add("LAST", NamelistType::integer8, &last_, 8, 0, nullptr);
        EXPECT_TRUE(builder_.fits());
    }

    std::int32_t run(Opening entry) {
        return Packed()
            .unit(unit)
            .add(IOCode::namelist, TypeCode::none, builder_.table())
            .run(entry);
    }
    std::int32_t read(std::string_view text) {
        put_file("in", text);
        Packed().unit(unit).text(IOCode::file, "in").run(OPEN_hh);
        const std::int32_t iostat = run(RNML_hh);
        close_unit(unit);
        return iostat;
    }

    struct Part {
        std::int32_t n = 1;
        float x = 2;
        char t[4] = {'t', 'e', 'x', 't'};
    };

    Folder folder_;
    NamelistTableBuilder builder_;
    std::int32_t i_ = 7;
    std::int16_t a_[5] = {1, 2, 3, 4, 5};
    double m_[4] = {1.5, 2.5, 3.5, 4.5};
    char c_[20] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j',
                   'k', 'l', 'm', 'n', 'o', 'p', 'q', 'r', 's', 't'};
    std::int8_t l_ = 1;
    std::complex<double> z_ = {1, -2};
    Part s_[2];
    std::int64_t last_ = -1;
};

TEST_F(NativeNamelist, TableIsPackedAsCompiledCodeLaysItOut) {
    const NamelistTable table = read_namelist_table(builder_.table());
    EXPECT_EQ(table.count, 8);
    EXPECT_EQ(table.name, "GROUP!ALIAS");
    EXPECT_EQ(table.first, static_cast<const char*>(builder_.table()) + 16);
    const NamelistItem first = read_namelist_item(table.first);
    EXPECT_EQ(first.name, "I");
    EXPECT_EQ(first.next - first.at, 1 + 1 + 1 + 14);
    const NamelistItem second = read_namelist_item(first.next);
    EXPECT_EQ(second.next - second.at, 1 + 1 + 1 + 14 + 8);
    EXPECT_EQ(second.entry.upper[0], 5);
    NamelistItem item = second;
    for (int i = 0; i < 5; ++i) item = read_namelist_item(item.next);
    EXPECT_EQ(item.name, "S");
    EXPECT_EQ(item.entry.components, 2);
    const NamelistEntry n = read_namelist_component(item.entry.behind);
    EXPECT_EQ(n.distance, 16);
    const NamelistEntry inner = read_namelist_component(item.entry.behind + n.distance);
    EXPECT_EQ(inner.components, 2);
    EXPECT_EQ(read_namelist_item(item.next).name, "LAST");
}

TEST_F(NativeNamelist, Writes) {
    Packed().unit(unit).text(IOCode::file, "out").run(OPEN_hh);
    EXPECT_EQ(run(WNML_hh), 0);
    close_unit(unit);
    EXPECT_EQ(get_file("out"),
              "&GROUP!ALIAS\r\n"
              "I =            7\r\n"
              "A =            1            2            3            4 \r\n"
              "           5 \r\n"
              "M =           1.50000000000               2.50000000000               "
              "3.50000000000               4.50000000000     \r\n"
              "C = 'abcd' 'efgh' 'ijkl' 'mnop' \r\n"
              "'qrst' \r\n"
              "L = T\r\n"
              "Z =  (1.00000000000,-2.00000000000) \r\n"
              "S =            1     2.00000    'text'           1\r\n"
              "     2.00000    'text'\r\n"
              "LAST =                    -1\r\n"
              "/\r\n");
}

TEST_F(NativeNamelist, Reads) {
    EXPECT_EQ(read("junk\n&OTHER I=1 /\n! &group I=2 /\n&GrouP i=3 ! text\n a(2:3)=21,22,\n"
                   "c(2)(3:4)='XY', m = 1 , , -2.5d1\n last=12 l=.false. z=(3 , 4.5)/\n"),
              0);
    EXPECT_EQ(i_, 3);
    EXPECT_EQ(a_[0], 1);
    EXPECT_EQ(a_[2], 22);
    EXPECT_EQ(a_[3], 4);
    EXPECT_EQ(std::string(c_, 12), "abcdefXYijkl");
    EXPECT_EQ(m_[0], 1);
    EXPECT_EQ(m_[1], 2.5);
    EXPECT_EQ(m_[2], -25);
    EXPECT_EQ(last_, 12);
    EXPECT_EQ(l_, 0);
    EXPECT_EQ(z_, std::complex<double>(3, 4.5));

    EXPECT_EQ(read("&ALIAS\nA = 3*7, , 9 I = 5\n/"), 0);
    EXPECT_EQ(a_[2], 7);
    EXPECT_EQ(a_[3], 4);
    EXPECT_EQ(a_[4], 9);
    EXPECT_EQ(read("&ALIAS A(2) = 1, 2, 3 /"), 0);
    EXPECT_EQ(a_[1], 1);
    EXPECT_EQ(a_[3], 3);
    EXPECT_EQ(read("&ALIAS A = 2*, 5 /"), 0);
    EXPECT_EQ(a_[0], 7);
    EXPECT_EQ(a_[2], 5);
    EXPECT_EQ(read("&GROUP C(1)='it''s' C(2)='a\nb' /"), 0);
    EXPECT_EQ(std::string(c_, 8), "it'sab  ");
    EXPECT_EQ(read("&GROUP S = 5 6.5 'one' 7, 8, 'two' S(2) = 9 /"), 0);
    EXPECT_EQ(s_[0].n, 5);
    EXPECT_EQ(std::string(s_[0].t, 4), "one ");
    EXPECT_EQ(s_[1].n, 9);
    EXPECT_EQ(s_[1].x, 8);
}

TEST_F(NativeNamelist, Faults) {
    const struct {
        const char* text;
        std::int32_t iostat;
    } cases[] = {
        {"nothing\n", -1},
        {"", -1},
        {"&GROUPS I=1 /\n", -1},
        {"&GROUP I=1\n", 202},
        {"&GROUP NOSUCH=1 /\n", 204},
        {"&GROUP =1 /\n", 202},
        {"&GROUP I 1 /\n", 52},
        {"&GROUP I=x /\n", 77},
        {"&GROUP A=40000 /\n", 53},
        {"&GROUP A(6)=1 /\n", 206},
        {"&GROUP A(0)=1 /\n", 206},
        {"&GROUP A(3:2)=1 /\n", 206},
        {"&GROUP A(1,2)=1 /\n", 205},
        {"&GROUP M(1)=1 /\n", 205},
        {"&GROUP A(1;=1 /\n", 52},
        {"&GROUP A=6*1 /\n", 203},
        {"&GROUP A=2000000000*1 /\n", 203},
        {"&GROUP C(1)(2:5)='x' /\n", 206},
        {"&GROUP C(1)(2)='x' /\n", 202},
        {"&GROUP C=x /\n", 52},
        {"&GROUP L=x /\n", 202},
        {"&GROUP Z=1 /\n", 52},
        {"&GROUP Z=(1 2) /\n", 202},
        {"&GROUP M=. /\n", 52},
    };
    for (const auto& c : cases) EXPECT_EQ(read(c.text), c.iostat) << c.text;
    EXPECT_EQ(run(WNML_hh), 94);
}

TEST_F(NativeNamelist, RecordLengthLimitsAFileOnly) {
    Packed().unit(unit).text(IOCode::file, "short").integer(IOCode::recl, 8).run(OPEN_hh);
    EXPECT_EQ(run(WNML_hh), 200);
    close_unit(unit);
}

// What a table can't hold is told.
TEST(NamelistTable, Limits) {
    NamelistTableBuilder long_name("G");
    long_name.add(std::string(300, 'N'), NamelistType::integer4, nullptr, 4, 0, nullptr);
    EXPECT_FALSE(long_name.fits());
    const std::int64_t far[] = {1, std::int64_t{1} << 40};
    NamelistTableBuilder long_array("G");
    long_array.add("A", NamelistType::integer1, nullptr, 1, 1, far);
    EXPECT_FALSE(long_array.fits());
    NamelistTableBuilder large("G");
    large.add("S", NamelistType::structure, nullptr, 4000, 0, nullptr);
    for (int i = 0; i < 3000; ++i) large.add("C", NamelistType::integer1, nullptr, 1, 0, nullptr);
    large.end_structure();
    EXPECT_FALSE(large.fits());
}

}  // namespace
}  // namespace tarn::fio::native::test
