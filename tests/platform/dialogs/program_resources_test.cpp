// Resource scripts: what they say of pictures and menus, and what isn't understood.
#include "platform/dialogs/program_resources.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

std::string shape(const std::vector<MenuLine>& lines) {
    std::string out;
    for (const MenuLine& line : lines) {
        if (line.form == MenuLine::Form::end) {
            out += ']';
            continue;
        }
        if (!out.empty() && out.back() != '[') out += ',';
        out += line.form == MenuLine::Form::separator ? "|" : line.text;
        if (line.id != 0) out += '=' + std::to_string(line.id);
        if (line.flags != 0) out += '!' + std::to_string(line.flags);
        if (line.form == MenuLine::Form::popup) out += '[';
    }
    return out;
}

// One text for all that a script holds.
std::string shape(const std::vector<ProgramResource>& all) {
    constexpr const char* kinds[] = {"icon", "cursor", "bitmap", "sound", "menu"};
    std::string out;
    for (const ProgramResource& each : all) {
        out += std::string(kinds[static_cast<int>(each.kind)]) + ' ' + each.name + ' ';
        out += each.kind == resource_kind::menu ? shape(each.menu) : each.file;
        out += ';';
    }
    return out;
}

TEST(ResourceScript, TellsPicturesAndMenus) {
    const struct {
        const char *script, *holds;
    } cases[] = {
        {"", ""},
        {"save ICON \"save.ico\"", "icon save dir/save.ico;"},
        {"save icon DISCARDABLE pictures\\save.ico\ngrip CURSOR grip.cur",
         "icon save dir/pictures/save.ico;cursor grip dir/grip.cur;"},
        {"#define LOGO 0x10\nLOGO BITMAP \"/logo.bmp\"", "bitmap 16 /logo.bmp;"},
        {"/* a ICON b */ // c ICON d\n7 ICON e", "icon 7 dir/e;"},
        {"ding SOUND ding.wav", "sound ding dir/ding.wav;"},
        {"M MENU BEGIN MENUITEM \"&A\\tF1\", 3 END", "menu M &A\tF1=3;"},
        {"#define GO 5\nM MENUEX { POPUP \"F\" { MENUITEM \"say \"\"x\"\"\", GO, CHECKED, GRAYED\n"
         "MENUITEM SEPARATOR POPUP \"S\", GRAYED { } } MENUITEM \"B\", 6 INACTIVE }",
         "menu M F[say \"x\"=5!9,|,S!1[]],B=6!1;"},
        {"STRINGTABLE BEGIN 1 \"M MENU\"\nX ICON y\nEND Z ICON z", ""},
        {"STRINGTABLE BEGIN 1 \"a\" END\nZ ICON z", "icon Z dir/z;"},
        {"D DIALOG 0, 0, 10, 10\nCAPTION \"x\"\nBEGIN\nICON 3, 4, 5\nEND\nA ICON a",
         "icon A dir/a;"},
        // Not sound.
        {"M MENU", ""},
        {"M MENU BEGIN MENUITEM", ""},
        {"M MENU BEGIN MENUITEM \"A", ""},
        {"M MENU BEGIN POPUP", ""},
        {"M MENU BEGIN NONSENSE END\nA ICON a", "icon A dir/a;"},
        {"A ICON", ""},
        {"/* never closed", ""},
        {"#define\n#include \"\"\nA ICON a", "icon A dir/a;"},
        {"}}}} END A ICON a\nB ICON b", "icon B dir/b;"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(shape(read_resource_script(each.script, "dir/")), each.holds) << each.script;
}

TEST(ResourceScript, IncludesOtherFilesButNotItselfForEver) {
    const std::string folder =
        std::filesystem::temp_directory_path() / ("resources" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const std::string script = "#include \"own.h\"\nGO BITMAP go.bmp\n";
    std::string own;
    for (int i = 0; i < 100; ++i) own += "#include \"own.h\"\n";
    std::ofstream(folder + "/own.h") << own << "#define GO 12\n";
    EXPECT_EQ(shape(read_resource_script(script, folder + "/")),
              "bitmap 12 " + folder + "/go.bmp;");
    std::filesystem::remove_all(folder);
}

TEST(ResourceScript, EndsHoweverDeepAndLongItIs) {
    std::string deep = "M MENU BEGIN ", garbage;
    for (int i = 0; i < 100000; ++i) deep += "POPUP \"x\" BEGIN ";
    for (unsigned i = 0; i < 300000; ++i) garbage += static_cast<char>(i * 7919 % 255 + 1);
    EXPECT_EQ(shape(read_resource_script(deep, "")), "");
    read_resource_script(garbage, "");
}

}  // namespace
}  // namespace tarn::platform
