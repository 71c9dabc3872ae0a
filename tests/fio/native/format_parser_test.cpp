// The parser of run-time formats and the code stream.
#include "fio/native/format_parser.h"

#include <gtest/gtest.h>

#include "fio/native/format_stream.h"

namespace tarn::fio::native {
namespace {

using Words = std::vector<std::uint16_t>;

std::int32_t reported;
bool reports_are_ignored;

bool report(std::int32_t message) {
    if (reported == 0) reported = message;
    return reports_are_ignored;
}

struct Parsed {
    std::int32_t result;
    std::int32_t message;
    Words words;
};

Parsed parse(std::string_view text, bool strict = false, bool ignoring = false) {
    reported = 0;
    reports_are_ignored = ignoring;
    Parsed parsed{};
    parsed.result = IO_parse_format_string(text, strict, report, parsed.words);
    parsed.message = reported;
    return parsed;
}

TEST(FormatParser, EmitsTheStream) {
    const struct {
        const char* text;
        Words words;  // between the outermost parentheses
    } cases[] = {
        {"(2I5,/,3X,'ab')", {0xC9, 2, 5, 0x8A, 1, 0x98, 3, 0xC8, 2, 0x6261}},
        {"(I5,F8.2)", {0xC9, 0, 5, 0x106, 0, 8, 2}},
        {"(I5.3,Z0,O4.2,B8)", {0x109, 0, 5, 3, 0xDD, 0, 0, 0x10F, 0, 4, 2, 0xCE, 0, 8}},
        {"(E10.3,E10.3E4,EN12.3E2,ES9.1,G0.2,D8.1)",
         {0x105, 0,     10, 3, 0x145, 0,     10, 3, 4, 0x161, 0, 12, 3,
          2,     0x122, 0,  9, 1,     0x107, 0,  0, 2, 0x104, 0, 8,  1}},
        {"(E0)", {0x105, 0, 0, 0}},
        {"(a,A3,2a4,l2)", {0xC1, 0, 0, 0xC1, 0, 3, 0xC1, 2, 4, 0xCC, 0, 2}},
        {"(-2PF8.3,3PE9.2,0P)", {0x90, 0xFFFE, 0x106, 0, 8, 3, 0x90, 3, 0x105, 0, 9, 2, 0x90, 0}},
        {"(1P,3E9.2)", {0x90, 1, 0x105, 3, 9, 2}},
        {"(T5,TL6,TR7,8X)", {0x94, 5, 0x95, 6, 0x96, 7, 0x98, 8}},
        {"(BN,BZ,S,SP,SS)", {0x42, 0x43, 0x53, 0x52, 0x51}},
        {"(2HaB,3H(,))", {0xC8, 2, 0x4261, 0x108, 3, 0x2C28, 0x29}},
        {"(' ''q'' ',\"a\"\"b\")", {0x148, 5, 0x2720, 0x2771, 0x20, 0x108, 3, 0x2261, 0x62}},
        {"('')", {0x88, 0}},
        {"(B'$$#.##')", {0x15B, 6, 0x2424, 0x2E23, 0x2323}},
        {"(I3,:,'x')", {0xC9, 0, 3, 0x4B, 0xC8, 1, 0x78}},
        {"(A,$)", {0xC1, 0, 0, 0x5C}},
        {"(A\\)", {0xC1, 0, 0, 0x5C}},
        {"(I3//I3)", {0xC9, 0, 3, 0x8A, 2, 0xC9, 0, 3}},
        {"(I3 / / ,I3)", {0xC9, 0, 3, 0x8A, 2, 0xC9, 0, 3}},
        {"(3/,I3)", {0x8A, 3, 0xC9, 0, 3}},
        {"(2//)", {0x8A, 3}},
        {"(I3 ,   /)", {0xC9, 0, 3, 0x8A, 1}},
        {"(I 5 , I1 2)", {0xC9, 0, 5, 0xC9, 0, 12}},
        {"(I3I4F5.1'x'3X)", {0xC9, 0, 3, 0xC9, 0, 4, 0x106, 0, 5, 1, 0xC8, 1, 0x78, 0x98, 3}},
        {"()", {}},
        {"  (I3) anything", {0xC9, 0, 3}},
    };
    for (const auto& c : cases) {
        const Parsed parsed = parse(c.text);
        Words expected = {0xD9, 0, 1};
        expected.insert(expected.end(), c.words.begin(), c.words.end());
        const auto end = static_cast<std::uint16_t>(expected.size());
        expected.push_back(0x97);
        expected.push_back(end);
        EXPECT_EQ(parsed.words, expected) << c.text;
        EXPECT_EQ(parsed.result, 2) << c.text;
    }
}

TEST(FormatParser, RevertsToTheLastInnerGroup) {
    const Words expected = {0xD9, 0, 1,    0xD9, 2,    2, 0xC9, 0,    3,
                            0x98, 1, 0x9A, 8,    0xC1, 0, 0,    0x97, 13};
    EXPECT_EQ(parse("(2(I3,1X),A)").words, expected);
    const Words two = parse("((I3,(A)),I2,2(L1),1X)").words;
    EXPECT_EQ(two.back(), 8 + 2);  // the group of L1, then ) and 1X
}

TEST(FormatParser, Reports) {
    const struct {
        const char* text;
        std::int32_t message;
        std::int32_t strict_message;
    } cases[] = {
        {"I3", 73, 73},         {"", 73, 73},       {"(I3", 415, 415},    {"(", 415, 415},
        {"((I3)", 415, 415},    {"('x", 415, 415},  {"(0I3)", 75, 75},    {"(-2I3)", 75, 75},
        {"(+2I3)", 75, 75},     {"(3,I2)", 59, 59}, {"(I2,3)", 59, 59},   {"(2'x')", 76, 76},
        {"(2SP)", 76, 76},      {"(2T5)", 76, 76},  {"(Q)", 74, 74},      {"(I3;I4)", 74, 74},
        {"(I3\"x\")", 74, 74},  {"(I3.5)", 54, 54}, {"(O3.5)", 55, 55},   {"(Z3.5)", 55, 55},
        {"(B3.5)", 55, 55},     {"(F8)", 77, 77},   {"(E8)", 77, 77},     {"(I)", 77, 77},
        {"(I-3)", 75, 75},      {"(F8.)", 77, 77},  {"(E8.2E0)", 75, 75}, {"(L0)", 75, 75},
        {"(L)", 77, 77},        {"(A0)", 75, 75},   {"(X)", 77, 77},      {"(H)", 77, 77},
        {"(P)", 77, 77},        {"(T0)", 75, 75},   {"(T)", 77, 77},      {"(A,$)x", 415, 126},
        {"(A,$,I3)", 415, 126}, {"(A,$)", 0, 126},  {"(B'#')", 0, 126},   {"(I3I4)", 0, 79},
        {"(I3/I4)", 0, 0},      {"(2PF3.1)", 0, 0}, {"(I3,,I4)", 0, 0},   {"(I3,)", 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parse(c.text).message, c.message) << c.text;
        EXPECT_EQ(parse(c.text, true).message, c.strict_message) << c.text;
        EXPECT_EQ(parse(c.text).result, c.message == 0 ? 2 : 0) << c.text;
    }
    const auto nested = [](int n) {
        return std::string(static_cast<std::size_t>(n), '(') + "I3" +
               std::string(static_cast<std::size_t>(n), ')');
    };
    EXPECT_EQ(parse(nested(64)).message, 0);
    EXPECT_EQ(parse(nested(65)).message, 72);
}

// With messages ignored every text comes to an end, and makes a sound stream or none.
TEST(FormatParser, GoesOnWhenMessagesAreIgnored) {
    for (const char* text : {"", "(", "(Q?;I3", "(3,I2", "I3", "(-2I", "(I+,F", "(((", "(H(X", "$",
                             "(A,$,I3)", "(E8.2E0)", "(2'x", "(0(I3)"}) {
        const Parsed parsed = parse(text, true, true);
        Format format;
        EXPECT_EQ(decode_format(parsed.words.data(), nullptr, format), 0) << text;
    }
}

TEST(FormatStream, HoldsLongLiteralsInParts) {
    const std::string literal(3000, 'y');
    const Parsed parsed = parse("('" + literal + "',I3)");
    ASSERT_EQ(parsed.result, 2);
    Format format;
    ASSERT_EQ(decode_format(parsed.words.data(), nullptr, format), 0);
    EXPECT_EQ(format.text, literal);
    // What no word can hold makes no stream, though the format itself is sound.
    EXPECT_EQ(parse("(I40000)").result, 0);
    EXPECT_EQ(parse("(I40000)").message, 0);
    std::string many = "(";
    for (int i = 0; i < 12000; ++i) many += "I3,";
    EXPECT_EQ(parse(many + "I3)").result, 0);  // its reversion point lies too far back
    EXPECT_EQ(parse(many + "(I3))").words.size(), 3 + 36000 + 8 + 2U);
}

TEST(FormatStream, IsTakenOnNoTrust) {
    const struct {
        Words words;
        std::int32_t message;
    } cases[] = {
        {{}, 83},
        {{0xD8, 0, 1, 0x97, 3}, 83},
        {{0xD9, 0, 1, 0x97, 3}, 0},
        {{0xD9, 0, 1, 0xC9, 0, 5}, 0},                      // a table may just stop
        {{0xD9, 0, 1, 0xC9, 0}, 83},                        // within an instruction
        {{0xD9, 0, 1, 0x09, 0, 5, 0x97, 6}, 83},            // no length
        {{0xD9, 0, 1, 0x8009, 0, 5, 0x97, 6}, 83},          // a negative one
        {{0xD9, 0, 1, 0x149, 0, 5, 1, 1, 0x97, 8}, 83},     // one word too many
        {{0xD9, 0, 1, 0x63, 0x97, 4}, 74},                  // no such opcode
        {{0xD9, 0, 1, 0xC9, 0, 0xFFFB, 0x97, 6}, 83},       // a negative width
        {{0xD9, 0, 1, 0xC8, 3, 0x6161, 0x97, 6}, 83},       // more text than words
        {{0xD9, 0, 1, 0xC8, 0xFFFF, 0x6161, 0x97, 6}, 83},  // less than none
        {{0xD9, 0, 1, 0xC9, 0, 5, 0x97, 7}, 83},            // back before the start
        {{0xD9, 0, 1, 0xC9, 0, 5, 0x97, 3}, 83},            // back to what is no group
        {{0xD9, 0, 1, 0xC9, 0, 5, 0x97, 5}, 83},            // back into an instruction
        {{0xD9, 0, 1, 0xC9, 0, 5, 0x97, 0xFFFF}, 83},       // forward
        {{0xD9, 0, 1, 0x9A, 3, 0x97, 5}, 109},              // closes the outermost group
        {{0xD9, 0, 1, 0xD9, 2, 3, 0x9A, 3, 0x97, 8}, 109},  // a level too deep
        {{0xD9, 0, 1, 0xD9, 2, 2, 0x97, 6}, 109},           // a group left open
        {{0xD9, 0, 1, 0xD9, 2, 2, 0x9A, 6, 0x97, 8}, 109},  // closes another group
        {{0xD9, 0, 1, 0xD9, 2, 2, 0x9A, 3, 0x97, 5}, 0},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const Words& words = cases[i].words;
        Format format;
        EXPECT_EQ(decode_format(words.data(), words.data() + words.size(), format),
                  cases[i].message)
            << "case " << i;
    }
}

}  // namespace
}  // namespace tarn::fio::native
