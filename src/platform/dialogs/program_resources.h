// What a program carries by name: pictures, sounds and menus. They are files: in the working folder
// or beside the program. PROGRAM.rc beside the program, in the language of resource compilers, says
// which name means which file, and describes the menus.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/base/types.h"

namespace tarn::platform {

enum class resource_kind : std::uint8_t { icon, cursor, bitmap, sound, menu };

struct MenuLine {
    enum class Form : std::uint8_t { item, separator, popup, end } form;
    std::string text;
    std::int32_t id = 0;
    UINT flags = 0;  // MF_GRAYED, MF_CHECKED
};
struct ProgramResource {
    resource_kind kind;
    std::string name;  // names don't regard case; a number is its digits
    std::string file;  // of any other than a menu, from the script's folder
    std::vector<MenuLine> menu;
};

// What a script says; what can't be understood is left out. `folder` ends in a slash, or is empty.
std::vector<ProgramResource> read_resource_script(const std::string& text,
                                                  const std::string& folder);

// The path of a picture or sound: by the script, else a file of that name, with the ending of its
// kind (.ico, .cur, .bmp, .wav) where it has none. Empty when there is none.
std::string resource_file(resource_kind kind, const std::string& name);
// The bytes of that file. False when there is none.
bool read_picture_resource(resource_kind kind, const std::string& name, std::string& bytes);

// A menu by its name in the script, or by a number below 65536 in the place of the address; the
// commands are those of the script. 0: none.
HMENU LoadMenuA(const char* name);

}  // namespace tarn::platform
