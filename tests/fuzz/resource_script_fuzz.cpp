// Any text is a resource script: what is found in it has a name, and a file or the lines of a menu
// whose levels all end.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/dialogs/program_resources.h"

using namespace tarn::platform;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
    const std::string text(reinterpret_cast<const char*>(data), length);
    for (const ProgramResource& each : read_resource_script(text, "/no/such/folder/")) {
        require(each.kind == resource_kind::menu || !each.file.empty());
        int depth = 0;
        for (const MenuLine& line : each.menu) {
            depth += line.form == MenuLine::Form::popup;
            depth -= line.form == MenuLine::Form::end;
            require(depth >= 0);
        }
        require(depth == 0);
    }
    return 0;
}
