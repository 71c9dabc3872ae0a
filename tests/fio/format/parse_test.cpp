#include <gtest/gtest.h>
#include <string>

#include "fio/format/program.h"

namespace tarn::fio {
namespace {

const char* edit_name(Edit edit) {
    static const char* const names[] = {"I",  "B",  "O",  "Z",  "F",  "E",  "D",  "EN", "ES", "EX",
                                        "G",  "L",  "A",  "DT", "",   "/",  ":",  "$",  "T",  "TL",
                                        "TR", "P",  "S",  "SP", "SS", "BN", "BZ", "RU", "RD", "RZ",
                                        "RN", "RC", "RP", "DC", "DP", "(",  ")",  "end"};
    return names[static_cast<int>(edit)];
}

// The nodes in one spelling: "( 2I5.3 'ab' TR3 end>0".
std::string spell(const FormatProgram& program) {
    std::string all;
    for (const FormatNode& node : program.nodes) {
        if (!all.empty()) all += ' ';
        if (node.repeat == unlimited) {
            all += '*';
        } else if (node.repeat != 1) {
            all += std::to_string(node.repeat);
        }
        if (node.edit == Edit::literal) {
            all += '\'' + program.literals.substr(node.text, node.length) + '\'';
            continue;
        }
        all += edit_name(node.edit);
        if (node.edit == Edit::DT) {
            all += program.literals.substr(node.text, node.length);
            for (int i = 0; i < node.w; ++i)
                all += ',' + std::to_string(program.values[node.d + i]);
            continue;
        }
        if (node.w != absent || node.edit == Edit::P) all += std::to_string(node.w);
        if (node.d != absent) all += '.' + std::to_string(node.d);
        if (node.e != absent) all += 'E' + std::to_string(node.e);
        if (node.edit == Edit::end) all += '>' + std::to_string(node.link);
    }
    return all;
}

FormatError parse(const std::string& text, FormatProgram& program) {
    return parse_gnu_format(text.data(), text.size(), {}, program);
}

TEST(GnuFormat, Nodes) {
    const struct {
        const char* text;
        const char* nodes;
    } table[] = {
        {"()", "( end>0"},
        {"(I5,F8.2)", "( I5 F8.2 end>0"},
        {" (i5 , f8.2)  what follows is no format", "( I5 F8.2 end>0"},
        {"(1 0 I 5 . 3\t)", "( 10I5.3 end>0"},
        {"(I0,B8.4,O0,Z08)", "( I0 B8.4 O0 Z8 end>0"},
        {"(E12.4E3,D10.3,EN12.3,ES12.3E0,G0,G0.3,EX14.6E2)",
         "( E12.4E3 D10.3 EN12.3 ES12.3E0 G0 G0.3 EX14.6E2 end>0"},
        {"(A,A4,L,L3,L0)", "( A A4 L L3 L end>0"},
        {"(1P2E12.4,-3P,F8.2,0PF6.1)", "( P1 2E12.4 P-3 F8.2 P0 F6.1 end>0"},
        {"(5Habcde,'it''s',\"a\"\"b\",3H),()", "( 'abcde' 'it's' 'a\"b' '),(' end>0"},
        {"(X,3X,T5,TL2,TR7)", "( TR1 TR3 T5 TL2 TR7 end>0"},
        {"(/,3/,//,:,$)", "( /1 /3 /1 /1 : $ end>0"},
        {"(S,SP,SS,BN,BZ,RU,RD,RZ,RN,RC,RP,DC,DP)",
         "( S SP SS BN BZ RU RD RZ RN RC RP DC DP end>0"},
        {"(I5F8.2'x'I5/A(I3)A)", "( I5 F8.2 'x' I5 /1 A ( I3 ) A end>7"},
        {"(I3,2(A,3(I5)),X)", "( I3 2( A 3( I5 ) ) TR1 end>2"},
        {"((I1),(I2),I3)", "( ( I1 ) ( I2 ) I3 end>4"},
        {"('n',*(G0,:,','))", "( 'n' *( G0 : ',' ) end>2"},
        {"(DT,2DT'list'(10,4),DT(7))", "( DT 2DTlist,10,4 DT,7 end>0"},
        {"(I5,)", "( I5 end>0"},
        {"(G,I5)", "( G I5 end>0"},
        {"(H5)", "( '5' end>0"},
    };
    for (const auto& row : table) {
        FormatProgram program;
        const FormatError error = parse(row.text, program);
        EXPECT_EQ(error.number, 0) << row.text;
        EXPECT_EQ(spell(program), row.nodes) << row.text;
    }
}

TEST(GnuFormat, Refused) {
    const struct {
        const char* text;
        int number;
        std::size_t position;
    } table[] = {
        {"", 73, 0},
        {"I5)", 73, 0},
        {"(I5", 415, 3},
        {"(2(I5)", 415, 6},
        {"(Q)", 74, 1},
        {"(I5,,I5)", 74, 4},
        {"(,I5)", 74, 1},
        {"(I5;I5)", 74, 3},
        {"(\\)", 74, 1},
        {"(R)", 74, 1},
        {"(2)", 59, 2},
        {"(2,I5)", 59, 2},
        {"(*(1X))", 59, 2},
        {"(*I5)", 73, 2},
        {"(0I5)", 75, 1},
        {"(-2I5)", 75, 1},
        {"(0X)", 75, 1},
        {"(A0)", 75, 2},
        {"(T0)", 75, 2},
        {"(I-5)", 75, 2},
        {"(2'x')", 76, 1},
        {"(2T5)", 76, 1},
        {"(3:)", 76, 1},
        {"(2*(I5))", 76, 1},
        {"(I)", 77, 2},
        {"(I5.)", 77, 4},
        {"(T)", 77, 2},
        {"(E12.4E)", 77, 7},
        {"(F)", 77, 2},
        {"(F8)", 78, 3},
        {"(G10,I5)", 78, 4},
        {"(P)", 61, 1},
        {"(3PI5)", 79, 3},
        {"(1P:)", 79, 3},
        {"(I5.6)", 54, 3},
        {"(Z5.6)", 55, 3},
        {"('abc)", 176, 1},
        {"(5Hab)", 415, 2},
        {"(I2147483648)", 68, 2},
        {"(9999999999I5)", 62, 1},
        {"(I5.4294967299)", 68, 4},
        {"(DT'x'())", 77, 7},
    };
    for (const auto& row : table) {
        FormatProgram program;
        const FormatError error = parse(row.text, program);
        EXPECT_EQ(error.number, row.number) << row.text;
        EXPECT_EQ(error.position, row.position) << row.text;
    }
}

TEST(GnuFormat, ZeroWidthIsForOutputOnly) {
    FormatProgram program;
    EXPECT_EQ(parse("(I5,F0.3,I0)", program).number, 0);
    EXPECT_EQ(program.unfit_for_input.number, 409);
    EXPECT_EQ(program.unfit_for_input.position, 5U);
    // A program record is used again and keeps nothing of its last text.
    EXPECT_EQ(parse("(1X)", program).number, 0);
    EXPECT_EQ(program.unfit_for_input.number, 0);
    EXPECT_FALSE(program.has_data_edit);
}

TEST(GnuFormat, GroupsAreLinked) {
    FormatProgram program;
    ASSERT_EQ(parse("(2(3(I5)))", program).number, 0);
    EXPECT_EQ(program.depth, 2U);
    ASSERT_EQ(program.nodes.size(), 7U);
    EXPECT_EQ(program.nodes[0].link, 6U);
    EXPECT_EQ(program.nodes[1].link, 5U);
    EXPECT_EQ(program.nodes[5].link, 1U);
    EXPECT_EQ(program.nodes[2].link, 4U);
    EXPECT_EQ(program.nodes[2].level, 2U);
    EXPECT_EQ(program.nodes[6].link, 1U);
}

TEST(GnuFormat, DepthAndLengthLimits) {
    FormatProgram program;
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '(') + "I5" + std::string(depth, ')');
    };
    EXPECT_EQ(parse(nested(max_format_depth + 1), program).number, 0);
    EXPECT_EQ(program.depth, max_format_depth);
    EXPECT_EQ(parse(nested(max_format_depth + 2), program).number, 72);
    EXPECT_EQ(parse(nested(1000000), program).number, 72);

    const std::string literal(300000, 'x');
    ASSERT_EQ(parse("('" + literal + "')", program).number, 0);
    EXPECT_EQ(program.nodes[1].length, literal.size());
    std::string many = "(I1";
    for (int i = 0; i < 50000; ++i) many += ",I1";
    ASSERT_EQ(parse(many + ")", program).number, 0);
    EXPECT_EQ(program.nodes.size(), 50003U);
}

}  // namespace
}  // namespace tarn::fio
