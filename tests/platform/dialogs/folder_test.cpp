// What a file dialog makes of folders, patterns and typed names.
#include "platform/dialogs/folder.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/dialogs/file_list.h"

namespace tarn::platform {
namespace {

TEST(Folder, PatternsFitNamesWhateverTheirCase) {
    struct {
        const char *name, *patterns;
        bool fits;
    } const table[] = {
        {"a.dat", "*.dat", true},
        {"A.DAT", "*.dat", true},
        {"a.txt", "*.dat", false},
        {"a.txt", "*.dat;*.txt", true},
        {"a.txt", " *.dat ; *.txt ", true},
        {"plain", "*.*", true},
        {"plain", "", true},
        {"plain", ";;", false},
        {"a.dat", "[", false},
        {"x1.f90", "x?.f*", true},
    };
    for (const auto& row : table)
        EXPECT_EQ(fits_patterns(row.name, row.patterns), row.fits)
            << row.name << " " << row.patterns;
}

TEST(Folder, TypedNamesBecomeAbsolutePaths) {
    setenv("HOME", "/home/me", 1);
    struct {
        const char *folder, *typed, *path;
    } const table[] = {
        {"/a/b", "c", "/a/b/c"}, {"/a/b", "../c", "/a/c"},    {"/a/b", "/c", "/c"},
        {"/", "c", "/c"},        {"/a", "../../..", "/"},     {"/a", "./b//c/.", "/a/b/c"},
        {"/a", "~", "/home/me"}, {"/a", "~/x", "/home/me/x"}, {"/a", "~x", "/a/~x"},
    };
    for (const auto& row : table)
        EXPECT_EQ(absolute_path(row.folder, row.typed), row.path) << row.typed;
    EXPECT_EQ(folder_of("/a"), "/");
    EXPECT_EQ(folder_of("a"), "");
    EXPECT_EQ(name_of("/a/b"), "b");
}

TEST(Folder, QuotesHoldSeveralNames) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(split_names("  my file.txt "), Names{"my file.txt"});
    EXPECT_EQ(split_names("\"a b\" \"c\""), (Names{"a b", "c"}));
    EXPECT_EQ(split_names("\"a\" \"unclosed"), (Names{"a", "unclosed"}));
    EXPECT_EQ(split_names("  "), Names{});
    EXPECT_EQ(split_names("\"\""), Names{});
}

TEST(Folder, ListsFoldersFirstAndNumbersAsNumbers) {
    char name[] = "/tmp/tarnfolderXXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    const std::string folder = name;
    for (const char* file : {"run10.dat", "run9.dat", "Run007.dat", "a.txt", ".dat", "run9b.dat"})
        std::ofstream(folder + "/" + file) << "x";
    mkdir((folder + "/zoo").c_str(), 0700);
    ASSERT_EQ(symlink("zoo", (folder + "/link").c_str()), 0);
    std::vector<FolderEntry> entries;
    ASSERT_TRUE(read_folder(folder, "*.dat", false, entries));
    std::string all;
    for (const FolderEntry& entry : entries) all += entry.name + (entry.folder ? "/ " : " ");
    EXPECT_EQ(all, "link/ zoo/ Run007.dat run9.dat run9b.dat run10.dat ");
    EXPECT_TRUE(read_folder(folder, "*", true, entries));
    EXPECT_EQ(entries.size(), 8U);
    EXPECT_FALSE(read_folder(folder + "/none", "*", true, entries));
    EXPECT_EQ(entries.size(), 8U) << "what was there stays";
    EXPECT_EQ(system(("rm -r " + folder).c_str()), 0);
}

TEST(Folder, SizesAreShort) {
    EXPECT_EQ(size_text(0), "0 B");
    EXPECT_EQ(size_text(999), "999 B");
    EXPECT_EQ(size_text(1000), "1.0 KB");
    EXPECT_EQ(size_text(10 * 1024), "10 KB");
    EXPECT_EQ(size_text(5LL << 40), "5.0 TB");
    EXPECT_EQ(shown_name("b\xFF.txt"), "b\xEF\xBF\xBD.txt");
}

}  // namespace
}  // namespace tarn::platform
