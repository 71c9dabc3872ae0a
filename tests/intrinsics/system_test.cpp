// Files, the command line, the environment and other programs, through the entries where the
// meaning is theirs and the routines where it is not.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "frame/fortran_start.h"
#include "frame/state.h"
#include "intrinsics/system/command_line.h"
#include "intrinsics/system/file_list.h"
#include "intrinsics/system/processes.h"
#include "tarn/dates.h"
#include "tarn/files.h"
#include "tarn/handles.h"

namespace tarn::intrinsics {
namespace {

// A folder of its own, which is the current one.
class Files : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/tarn_system_XXXXXX";
        path = ::mkdtemp(name);
        before = current_folder();
        ASSERT_EQ(::chdir(path.c_str()), 0);
    }
    void TearDown() override {
        ASSERT_EQ(::chdir(before.c_str()), 0);
        (void)std::system(("chmod -R u+w '" + path + "'; rm -rf '" + path + "'").c_str());
    }
    static void put(const std::string& name, const std::string& bytes = "x") {
        std::ofstream(name, std::ios::binary) << bytes;
    }
    std::string path;
    std::string before;
};

std::intptr_t length_of(const std::string& text) {
    return static_cast<std::intptr_t>(text.size());
}

// The text result of an entry, without the blanks behind it.
template <typename Call>
std::string text_from(Call call, std::size_t room = 300) {
    std::string text(room, '?');
    call(text.data(), static_cast<std::intptr_t>(room));
    EXPECT_EQ(text.find('?'), std::string::npos);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

TEST(Patterns, MatchWhatTheySay) {
    struct Row {
        const char* pattern;
        const char* name;
        bool matches;
    };
    const Row rows[] = {
        {"*", "", true},          {"*", "a.b", true},       {"a*", "a", true},
        {"a*c", "abbc", true},    {"a*c", "abcb", false},   {"*.f90", "x.f90", true},
        {"*.f90", "xf90", false}, {"?", "", false},         {"?.f?", "x.f9", true},
        {"a?c", "ac", false},     {"*a*b*", "xxabx", true}, {"*a*b*", "xbax", false},
        {"**", "x", true},        {"*?", "x", true},        {"*?", "", false},
        {"[ab]", "a", false},     {"[ab]", "[ab]", true},   {"A", "a", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(matches(row.pattern, row.name), row.matches) << row.pattern << " " << row.name;
    }
    // Many stars on a long name come to an end.
    std::string stars;
    for (int i = 0; i < 100; ++i) stars += "*a";
    EXPECT_FALSE(matches(stars + "b", std::string(20000, 'a')));
}

TEST_F(Files, ListsWhatAPatternMatches) {
    for (const char* name : {"b.txt", "a.txt", "plain", "c.dat", ".hidden", "d.txt"}) put(name);
    ASSERT_EQ(::mkdir("sub", 0700), 0);
    put("sub/in", "12345");
    struct Row {
        std::string pattern;
        std::vector<std::string> names;
        std::int32_t maximum = 10;
    };
    const Row rows[] = {
        {"*.txt", {"a.txt", "b.txt", "d.txt"}},
        {"*.txt  ", {"a.txt", "b.txt"}, 2},
        {"*.*", {"a.txt", "b.txt", "c.dat", "d.txt", "plain", "sub"}},
        {".*", {".hidden"}},
        {"plain", {"plain"}},
        {"sub", {"sub"}},
        {"sub/*", {"sub/in"}},
        {path + "/su?", {"sub"}},
        {"*.none", {}},
        {"none/*", {}},
        {"sub/", {}},
        {"", {}},
        {"*", {}, 0},
        {"*", {}, -3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pattern);
        constexpr std::size_t name_length = 100;
        std::string names(name_length * 10, '?');
        std::int16_t attributes[10];
        std::int16_t dates[10];
        std::int16_t times[10];
        std::int32_t sizes[10];
        std::int32_t count = -1;
        FILES_h(row.pattern.data(), &count, &row.maximum, names.data(), attributes, dates, times,
                sizes, length_of(row.pattern), name_length);
        ASSERT_EQ(count, static_cast<std::int32_t>(row.names.size()));
        for (std::size_t i = 0; i < row.names.size(); ++i) {
            const std::string name = names.substr(i * name_length, name_length);
            EXPECT_EQ(name.substr(0, name.find(' ')), path + "/" + row.names[i]);
            EXPECT_EQ(attributes[i], row.names[i] == "sub"       ? TARN_FILE_DIRECTORY
                                     : row.names[i] == ".hidden" ? TARN_FILE_HIDDEN
                                                                 : TARN_FILE_NORMAL);
            EXPECT_NE(dates[i], 0);
            if (row.names[i] == "sub/in") {
                EXPECT_EQ(sizes[i], 5);
            }
        }
        // Nothing is written behind what was found.
        EXPECT_EQ(names.find_first_not_of('?', row.names.size() * name_length), std::string::npos);
    }
}

TEST(Dates, StandInTwoWords) {
    EXPECT_EXIT(
        {
            ::setenv("TZ", "UTC", 1);
            ::tzset();
            const DateWords first = date_words(315532800);  // 1980-01-01 00:00:00
            const DateWords some = date_words(1718454645);  // 2024-06-15 12:30:45
            const DateWords early = date_words(315532799);
            const bool good = first.date == 0x21 && first.time == 0 &&
                              some.date == (44 << 9 | 6 << 5 | 15) &&
                              some.time == (12 << 11 | 30 << 5 | 22) && early.date == 0 &&
                              early.time == 0 && date_words(INT64_MAX).date == 0;
            _exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Files, ExistByNameOrPattern) {
    put("there.txt");
    auto exists = [](const std::string& name) { return FEXISTS_h(name.data(), length_of(name)); };
    EXPECT_TRUE(exists("there.txt   "));
    EXPECT_TRUE(exists("*.txt"));
    EXPECT_TRUE(exists("."));
    EXPECT_FALSE(exists("*.dat"));
    EXPECT_FALSE(exists("There.txt"));
    EXPECT_FALSE(exists(""));
    EXPECT_FALSE(exists(std::string("there.txt\0x", 11)));
    EXPECT_FALSE(exists(std::string(9000, 'n')));
}

TEST_F(Files, AreErasedAndRenamedWithCare) {
    put("a", "aa");
    put("b", "bb");
    std::int16_t error = -1;
    auto rename = [&](const std::string& from, const std::string& to) {
        RENAME_h(from.data(), to.data(), &error, length_of(from), length_of(to));
        return error;
    };
    EXPECT_EQ(rename("a ", "b "), EEXIST);
    EXPECT_EQ(rename("none", "c"), ENOENT);
    EXPECT_EQ(rename("a", "c"), 0);
    EXPECT_EQ(rename("c", std::string("d\0e", 3)), EINVAL);
    FileStatus status;
    EXPECT_EQ(file_status("c", status), 0);
    EXPECT_EQ(erase_file("c"), 0);
    EXPECT_EQ(erase_file("c"), ENOENT);
    EXPECT_EQ(erase_file(std::string(300, 'n')), ENAMETOOLONG);
    EXPECT_EQ(make_folder("sub"), 0);
    EXPECT_EQ(make_folder("sub"), EEXIST);
    EXPECT_EQ(enter_folder("sub"), 0);
    EXPECT_EQ(text_from(CURDIR_h), path + "/sub");
    EXPECT_EQ(enter_folder("none"), ENOENT);
    EXPECT_EQ(enter_folder(".."), 0);
    CHANGE_DRIVE_h("C", &error, 1);
    EXPECT_EQ(error, 15);
}

TEST_F(Files, TellOfThemselves) {
    put("small", "12345");
    const int descriptor = ::open("huge", O_CREAT | O_WRONLY, 0600);
    ASSERT_EQ(::ftruncate(descriptor, 3000000000), 0);
    ::close(descriptor);
    std::int32_t size = 0;
    std::int64_t size8 = 0;
    std::int16_t error = -1;
    FILE_SIZE_h("small", &size, &error, 5);
    EXPECT_EQ(size, 5);
    FILE_SIZE_h("huge", &size, &error, 4);
    EXPECT_EQ(size, 2147483647);
    FILE_SIZE8_h("huge", &size8, &error, 4);
    EXPECT_EQ(size8, 3000000000);
    EXPECT_EQ(error, 0);
    FILE_SIZE_h("none", &size, &error, 4);
    EXPECT_EQ(error, 2);
    EXPECT_EQ(size, 2147483647);

    std::int32_t mode, device, links, created, accessed, written;
    FILEINFO_h("small", &mode, &device, &links, &size, &created, &accessed, &written, &error, 5);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mode, TARN_FILE_NORMAL);
    EXPECT_EQ(size, 5);
    EXPECT_LT(std::abs(written - ::time(nullptr)), 100);
    FILEINFO_h("none", &mode, &device, &links, &size, &created, &accessed, &written, &error, 4);
    EXPECT_EQ(error, 2);
}

TEST_F(Files, OfAttributesOnlyReadOnlyChanges) {
    put("t");
    ASSERT_EQ(::chmod("t", 0751), 0);
    FileStatus status;
    auto attributes = [&] {
        EXPECT_EQ(file_status("t", status), 0);
        return status.attributes;
    };
    EXPECT_EQ(set_file_attributes("t", attribute_read_only | attribute_archive), 0);
    EXPECT_EQ(attributes(), attribute_read_only);
    EXPECT_EQ(set_file_attributes("t", attribute_hidden), 50);
    EXPECT_EQ(attributes(), attribute_read_only);
    EXPECT_EQ(set_file_attributes("t", attribute_normal), 0);
    EXPECT_EQ(attributes(), attribute_normal);
    struct stat about;
    ::stat("t", &about);
    EXPECT_EQ(about.st_mode & 0777U, 0751U);
    EXPECT_EQ(set_file_attributes("none", 0), 2);
}

TEST_F(Files, HavePathsInFullAndLocal) {
    ASSERT_EQ(::mkdir("sub", 0700), 0);
    struct Row {
        std::string given, full, local;
    };
    const Row rows[] = {
        {"x", path + "/x", "x"},
        {"./sub//x ", path + "/sub/x", "sub/x"},
        {"sub/../x", path + "/x", "x"},
        {"/", "/", "/"},
        {path, path, "."},
        {path + "x", path + "x", path + "x"},
        {"", "", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(full_path(row.given), row.full);
        EXPECT_EQ(local_name(row.given), row.local) << row.given;
    }
}

// From the root such names would be those of other files.
TEST_F(Files, StayThemselvesWhereTheFolderHasNoName) {
    ASSERT_EQ(::mkdir("gone", 0777), 0);
    ASSERT_EQ(::chdir("gone"), 0);
    ASSERT_EQ(::rmdir((path + "/gone").c_str()), 0);
    EXPECT_EQ(current_folder(), "");
    EXPECT_EQ(full_path("x"), "x");
    EXPECT_EQ(local_name("/tmp/x"), "/tmp/x");

    ASSERT_EQ(::chdir(path.c_str()), 0);
    const std::string part(200, 'd');
    for (int depth = 0; depth < 25; ++depth) {
        ASSERT_EQ(::mkdir(part.c_str(), 0777), 0);
        ASSERT_EQ(::chdir(part.c_str()), 0);
    }
    EXPECT_EQ(current_folder().size(), path.size() + 25 * 201);
    std::int16_t error = -1;
    const std::int16_t handle = __fortran_open("deep", TARN_HANDLE_WRITE, &error);
    ASSERT_EQ(error, 0);
    EXPECT_TRUE(file_exists("deep"));
    EXPECT_EQ(__fortran_closef(handle, 1), 0);
    EXPECT_FALSE(file_exists("deep"));
}

TEST_F(Files, TemporaryNamesAreFreeOnesInOrder) {
    EXPECT_EXIT(
        {
            put("F$000002.tmp");
            ::setenv("TMPDIR", path.c_str(), 1);
            std::int16_t error = -1;
            auto here = [&](char* name, std::intptr_t room) { TEMP_FILE_h(name, &error, room); };
            auto there = [&](char* name, std::intptr_t room) { TEMP_PATH_h(name, &error, room); };
            bool good = text_from(here) == "F$000001.tmp" && error == 0;
            good = good && text_from(here) == "F$000003.tmp";
            good = good && text_from(there) == path + "/F$000004.tmp";
            good = good && text_from(here, 5).empty() && error == 206;
            good = good && text_from(TEMP_DIR_NAME_h) == path;
            _exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(IS_WRITABLE_DIRECTORY_h(path.data(), length_of(path)));
    put("file");
    for (const char* name : {"file", "none", "", "/proc"}) {
        EXPECT_FALSE(IS_WRITABLE_DIRECTORY_h(name, length_of(name))) << name;
    }
}

// ---- The command line and the environment ----

class Arguments : public testing::Test {
  protected:
    void SetUp() override {
        static const char* words[] = {"prog", "one two", "42", "-7", "\"q\"", "4x", ""};
        frame::ensure_up();
        count_ = frame::state().argument_count;
        before_ = frame::state().arguments;
        frame::set_arguments(std::size(words), const_cast<char**>(words));
    }
    void TearDown() override { frame::set_arguments(count_, before_); }

  private:
    int count_ = 0;
    char** before_ = nullptr;
};

TEST_F(Arguments, StandardForms) {
    struct Row {
        std::int32_t number;
        std::intptr_t room;
        std::string value;
        std::int32_t length, status;
    };
    const Row rows[] = {
        {0, 5, "prog ", 4, 0},  {1, 7, "one two", 7, 0}, {1, 6, "??????", 7, -1},
        {4, 4, "\"q\" ", 3, 0}, {6, 2, "  ", 0, 0},      {7, 2, "??", -9, 1},
        {-1, 2, "??", -9, 1},
    };
    for (const Row& row : rows) {
        std::string value(static_cast<std::size_t>(row.room), '?');
        std::int32_t length = -9;
        std::int32_t status = -9;
        GET_COMMAND_ARGUMENT(&row.number, value.data(), &length, &status, row.room);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(status, row.status);
    }
    // Absent ones are left alone, whichever mark they bear.
    const std::int32_t one = 1;
    auto* absent = reinterpret_cast<std::int32_t*>(0xF0F0F0F0F0F0F0F0U);
    GET_COMMAND_ARGUMENT(&one, nullptr, absent, absent, 0);
    GET_COMMAND(nullptr, absent, nullptr, 0);
    EXPECT_EQ(COMMAND_ARGUMENT_COUNT(), 6);
    EXPECT_EQ(text_from(COMMAND_LINE_h), "prog \"one two\" 42 -7 \"q\" 4x \"\"");
    EXPECT_EQ(LEN_CMLINE_h(), 30);
}

TEST_F(Arguments, OneAfterTheOther) {
    std::int32_t value = 99;
    std::int16_t error = -1;
    EXPECT_EQ(text_from(CMNAM_h), "one two");
    struct Row {
        std::int32_t value;
        std::int16_t error;
    };
    for (const Row& row : {Row{42, 0}, Row{-7, 0}, Row{-7, 13}, Row{-7, 13}, Row{-7, 13},
                           Row{-7, 18}, Row{-7, 18}}) {
        CMNUM_h(&value, &error);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(error, row.error);
    }
    EXPECT_EQ(text_from(CMNAM_h), "");
    CMNAMR_h();
    EXPECT_EQ(text_from(CMNAM_h, 3), "one");
    EXPECT_EQ(text_from(CMPROGNM_h), "prog");
}

TEST(Environment, ValuesAndTheirLengths) {
    auto put_definition = [](const std::string& text) {
        return PUTENV_h(text.data(), length_of(text));
    };
    EXPECT_EQ(put_definition("TARN_TEST_A=some value  "), 0);
    EXPECT_EQ(put_definition("TARN_TEST_B=x"), 0);
    EXPECT_EQ(put_definition("TARN_TEST_B="), 0);
    for (const char* bad : {"", "=", "=x", "NAME"}) EXPECT_EQ(put_definition(bad), EINVAL);
    ::setenv("TARN_TEST_EMPTY", "", 1);
    const std::int32_t no = 0;
    struct Row {
        std::string name;
        const std::int32_t* trim;
        std::string value;  // in a variable of that length
        std::int32_t length, status;
    };
    const Row rows[] = {
        {"TARN_TEST_A", nullptr, "some value   ", 10, 0},
        {"TARN_TEST_A  ", nullptr, "some value", 10, 0},
        {"TARN_TEST_A  ", &no, "   ", 0, 1},
        {"TARN_TEST_A", &no, "some", 10, -1},
        {"TARN_TEST_B", nullptr, "   ", 0, 1},
        {"TARN_TEST_EMPTY", nullptr, "   ", 0, 0},
        {"", nullptr, "   ", 0, 1},
        {std::string("TARN_TEST_A\0B", 13), nullptr, "  ", 0, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::string value(row.value.size(), '?');
        std::int32_t length = -9;
        std::int32_t status = -9;
        GET_ENVIRONMENT_VARIABLE(row.name.data(), value.data(), &length, &status, row.trim,
                                 length_of(row.name), length_of(value));
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(length, row.length);
        EXPECT_EQ(status, row.status);
    }
    std::int32_t length = 0;
    GET_ENVIRONMENT_VARIABLE(nullptr, nullptr, &length, nullptr, nullptr, 0, 0);
    EXPECT_EQ(length, -1);
}

TEST(Environment, ATimeZoneCountsAtOnce) {
    const std::int32_t time = 0;
    for (const char* zone : {"TZ=XXX-5", "TZ=XXX3", "TZ=UTC0"}) {
        ASSERT_EQ(PUTENV_h(zone, static_cast<std::intptr_t>(std::strlen(zone))), 0);
        std::string text(8, '?');
        TOTIME_h(&time, text.data(), length_of(text));
        EXPECT_EQ(text, zone[6] == '-' ? "05:00:00" : zone[3] == 'X' ? "21:00:00" : "00:00:00");
    }
}

// ---- Other programs ----

TEST(Processes, WordsOfACommand) {
    struct Row {
        const char* text;
        std::vector<std::string> words;
    };
    const Row rows[] = {
        {"", {}},
        {" a  b\tc ", {"a", "b", "c"}},
        {"\"a b\" 'c d'", {"a b", "c d"}},
        {"x\"y z\"w", {"xy zw"}},
        {"\"\" ''", {"", ""}},
        {"\"it's\" 'say \"hi\"'", {"it's", "say \"hi\""}},
        {"\\\"a \"b\\\" c\"", {"\"a", "b\" c"}},
        {"a\\b 'c\\'", {"a\\b", "c\\"}},
        {"\"never closed", {"never closed"}},
    };
    for (const Row& row : rows) EXPECT_EQ(split_words(row.text), row.words) << row.text;
}

TEST_F(Files, ProgramsAreStartedAndWaitedFor) {
    put("my tool", "#!/bin/sh\nexit $#\n");
    ASSERT_EQ(::chmod("my tool", 0700), 0);
    struct Row {
        std::string program, arguments;
        int result;
    };
    const Row rows[] = {
        {"true", "", 0},
        {"sh  ", "-c 'exit 7'", 7},
        {"sh -c", "'exit 8'", 8},
        {"sh", "-c 'kill -9 $$'", 137},
        {"my tool", "a 'b c' \"\"", 3},
        {"./my tool", "* *", 2},  // no shell, no expansion
        {"no_such_program", "", -1},
        {".", "", -1},
        {"", " ", -2},
        {std::string("true\0x", 6), "", -1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(spawn(Wait::for_end, row.program, row.arguments), row.result) << row.program;
    }
    EXPECT_EQ(__spawns(1, "true", ""), -1);
    EXPECT_EQ(__spawn_process("sh -c 'exit 7'", "title", 1), 0);
    EXPECT_EQ(__spawn_process("no_such_program", nullptr, 1), 2);
    EXPECT_EQ(__spawn_process("'./my folder/x'", nullptr, 0), 2);
    EXPECT_EQ(__spawn_process("", nullptr, 1), 2);
    EXPECT_EQ(__spawns(2, "sh", "-c 'echo done > late'"), 0);
    for (int i = 0; i < 500 && !file_exists("late"); ++i) ::usleep(10000);
    EXPECT_TRUE(file_exists("late"));
    std::int16_t error = -1;
    CISSUE_h("exit 3", &error, 6);
    EXPECT_EQ(error, 0);
}

TEST(Texts, CrossBetweenFortranAndC) {
    char room[8];
    MAKE_CSTRING_h(" ab  ", room, 5);
    EXPECT_STREQ(room, " ab");
    MAKE_CSTRING_h("", room, -3);
    EXPECT_STREQ(room, "");
    FSTRCPY(room, 4, "abcdef", 6);
    EXPECT_STREQ(room, "abc");
    FSTRCPY(room, 8, "ab \0c  ", 7);
    EXPECT_EQ(std::string(room, 6), std::string("ab \0c\0", 6));
    FSTRCPY(room, 0, "x", 1);
    EXPECT_EQ(room[0], 'a');
    char text[5] = "....";
    GET_CSTRING_h(text, "xy", 4);
    EXPECT_STREQ(text, "xy  ");
    RETURNED_CSTRING_h(text, "longer", 4);
    EXPECT_STREQ(text, "long");
}

}  // namespace
}  // namespace tarn::intrinsics
