#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "platform/kernel/config.h"
#include "platform/kernel/console.h"
#include "platform/kernel/module.h"
#include "platform/kernel/system.h"

extern "C" const char* ReadRegAndEnv(const char* key, const char* name);
extern "C" void* find_entry_point(const char* path, const char* routine);

namespace tarn::platform {
namespace {

constexpr const char* store =
    "# comment\n"
    "stray=1\n"
    "[Software\\Tarnick\\Common]\r\n"
    "  console = 0 \r\n"
    "empty=\n"
    "a=b=c\n"
    "[Other]\n"
    "console=1\n"
    "[broken\n"
    "console=2\n"
    "[SOFTWARE\\tarnick\\common]\n"
    "late=x";

TEST(Configuration, ValuesBySectionAndName) {
    constexpr const char* key = "Software\\Tarnick\\Common";
    EXPECT_EQ(find_config_value(store, key, "CONSOLE"), "0");
    EXPECT_EQ(find_config_value(store, key, "empty"), "");
    EXPECT_EQ(find_config_value(store, key, "a"), "b=c");
    EXPECT_EQ(find_config_value(store, key, "late"), "x");
    EXPECT_EQ(find_config_value(store, key, "stray"), std::nullopt);
    EXPECT_EQ(find_config_value(store, "other", "console"), "1");
    EXPECT_EQ(find_config_value("", key, "console"), std::nullopt);
}

TEST(Configuration, ChangedValuesKeepTheRestOfTheText) {
    const std::string text = "# mine\n[A]\nx = 1\n\n[B]\ny=2\n";
    EXPECT_EQ(with_config_values(text, {{"a", "X", "3"}}), "# mine\n[A]\nX=3\n\n[B]\ny=2\n");
    EXPECT_EQ(with_config_values(text, {{"A", "z", "4"}, {"C", "n", ""}}),
              "# mine\n[A]\nx = 1\nz=4\n\n[B]\ny=2\n\n[C]\nn=\n");
    EXPECT_EQ(with_config_values("", {{"A", "x", "1"}}), "[A]\nx=1\n");
}

TEST(Configuration, TheStoreWinsOverTheEnvironment) {
    std::string folder = testing::TempDir() + "tarn_config_test";
    ASSERT_EQ(std::system(("mkdir -p " + folder + "/tarnlibc").c_str()), 0);
    std::ofstream(folder + "/tarnlibc/config") << store;
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    setenv("console", "environment", 1);
    setenv("only_here", "environment", 1);
    EXPECT_STREQ(ReadRegAndEnv("Other", "console"), "1");
    EXPECT_STREQ(ReadRegAndEnv("Other", "only_here"), "environment");
    EXPECT_EQ(ReadRegAndEnv("Other", "nowhere"), nullptr);
    unsetenv("XDG_CONFIG_HOME");
}

TEST(Modules, EntryPointsOfLoadedAndUnloadedLibraries) {
    EXPECT_NE(find_entry_point("/anywhere/libc.so.6", "strlen"), nullptr);
    EXPECT_NE(find_entry_point("C:\\x\\c.dll", "strlen"), nullptr);
    EXPECT_EQ(find_entry_point("libc.so.6", "no_such_routine_here"), nullptr);
    EXPECT_EQ(find_entry_point("/no/such/library.so", "strlen"), nullptr);
    EXPECT_EQ(module_handle(nullptr), module_handle(nullptr));
    EXPECT_EQ(program_path().front(), '/');
}

TEST(Arguments, FoundWithoutAMain) {
    Arguments arguments = process_arguments();
    ASSERT_GE(arguments.count, 1);
    EXPECT_NE(std::string(arguments.values[0]).find("_test"), std::string::npos);
    EXPECT_EQ(arguments.values[arguments.count], nullptr);
}

TEST(Console, ALineIsReadAndNoByteMore) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_TRUE(write_descriptor(ends[1], "first\r\n\nrest"));
    close(ends[1]);
    int saved = dup(0);
    dup2(ends[0], 0);
    std::string line;
    EXPECT_TRUE(read_input_line(line));
    EXPECT_EQ(line, "first");
    EXPECT_TRUE(read_input_line(line));
    EXPECT_EQ(line, "");
    char next;
    EXPECT_EQ(read(0, &next, 1), 1);
    EXPECT_EQ(next, 'r');
    EXPECT_TRUE(read_input_line(line));
    EXPECT_EQ(line, "est");
    EXPECT_FALSE(read_input_line(line));
    dup2(saved, 0);
    close(saved);
    close(ends[0]);
}

}  // namespace
}  // namespace tarn::platform
