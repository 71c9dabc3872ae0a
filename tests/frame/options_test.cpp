#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "frame/main_arguments.h"
#include "frame/preconnection.h"
#include "frame/tarnenvar.h"

namespace tarn::frame {
namespace {

TEST(OptionVariable, TokensAreTakenInOrder) {
    struct Case {
        const char* text;
        std::vector<std::string> tokens;
    };
    const Case cases[] = {
        {"", {}},
        {" ;,; ", {}},
        {"FULL_TRACEBACK;no_traceback, bogus", {"full_traceback", "no_traceback"}},
        {"mask_all,,unmask_overflows  Mask_Underflow",
         {"mask_all", "unmask_overflows", "mask_underflow"}},
        {"kill_dialogboxes", {}},
        {"kill_dialogbox\thardfail", {}},  // a tab separates nothing
        {"hardfail;hardfail", {"hardfail", "hardfail"}},
    };
    for (const Case& c : cases) {
        std::vector<std::string> found;
        for (const Option* option : parse_options(c.text)) found.emplace_back(option->token);
        EXPECT_EQ(found, c.tokens) << c.text;
    }
}

TEST(Preconnections, EntriesAndFailures) {
    struct Case {
        const char* text;
        std::vector<std::string> entries;
        int failure;
    };
    const Case cases[] = {
        {"   ", {}, 0},
        {"rf1'in.dat'", {"r f 1 in.dat"}, 0},
        {"RF7'in.dat'WU99'a b'  ", {"r f 7 in.dat", "w u 99 a b"}, 0},
        {"WF007'x'", {"w f 7 x"}, 0},
        {"RF0'x'", {}, 412},
        {"RF100'x'", {}, 412},
        {"RF4294967297'x'", {}, 412},
        {"RF'x'", {}, 412},
        {"RF-1'x'", {}, 412},
        {"XF1'x'", {}, 413},
        {"RX1'x'", {}, 413},
        {"R", {}, 413},
        {"RF1", {}, 413},
        {"RF1x'", {}, 413},
        {"RF1''", {}, 413},
        {"RF1'x", {}, 413},
        {"WF8'ok' RF9'blank before'", {"w f 8 ok"}, 413},
    };
    for (const Case& c : cases) {
        std::vector<std::string> entries;
        std::string_view rest = c.text;
        int failure = 0;
        while (failure == 0 && !preconnections_done(rest)) {
            Preconnection entry;
            failure = next_preconnection(rest, entry);
            if (failure != 0) break;
            entries.push_back(std::string(entry.read_only ? "r " : "w ") +
                              (entry.formatted ? "f " : "u ") + std::to_string(entry.unit) + " " +
                              std::string(entry.name));
        }
        EXPECT_EQ(entries, c.entries) << c.text;
        EXPECT_EQ(failure, c.failure) << c.text;
    }
}

TEST(CommandLine, Splitting) {
    struct Case {
        const char* line;
        std::vector<std::string> arguments;
    };
    const Case cases[] = {
        {"", {}},
        {" \t ", {}},
        {"p a/b \"c d\" 'e'", {"p", "a", "/b", "\"c d\"", "'e'"}},
        {"p /x/y", {"p", "/x", "/y"}},
        {"p //", {"p", "/", "/"}},
        {"\"a/b c\" 'it\"s' x\"y z\"w", {"\"a/b c\"", "'it\"s'", "x\"y z\"w"}},
        {"p \"open / end", {"p", "\"open / end"}},
    };
    for (const Case& c : cases) EXPECT_EQ(split_command_line(c.line), c.arguments) << c.line;
}

TEST(CommandLine, JoiningSurvivesSplitting) {
    const char* values[] = {"./a b/prog", "plain", "two words", "", "say \"hi\" now"};
    std::string line = join_command_line(5, const_cast<char* const*>(values));
    EXPECT_EQ(line, "\"./a b/prog\" plain \"two words\" \"\" 'say \"hi\" now'");
    EXPECT_EQ(split_command_line(line).size(), 5u);
}

TEST(CommandLine, ProgramsAreFoundOnThePath) {
    EXPECT_NE(search_program("sh"), "");
    EXPECT_EQ(search_program("/bin/sh").front(), '/');
    EXPECT_EQ(search_program("no-such-program-anywhere"), "");
    EXPECT_EQ(search_program(""), "");
}

}  // namespace
}  // namespace tarn::frame
