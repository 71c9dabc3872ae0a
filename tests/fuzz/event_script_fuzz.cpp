// Any text is a script or gets a mistake that names one of its lines; what a line keeps is within
// the bounds that playing it relies on.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/script/parser.h"

using namespace tarn::platform;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<ScriptLine> lines;
    ScriptMistake mistake;
    auto most = 1 + std::count(text.begin(), text.end(), '\n');
    if (!parse_script(text, lines, mistake)) {
        require(mistake.line >= 1 && mistake.line <= most && !mistake.what.empty());
        require(text.find(mistake.source) != std::string_view::npos);
        return 0;
    }
    require(static_cast<std::ptrdiff_t>(lines.size()) <= most);
    std::int32_t before = 0;
    for (const ScriptLine& line : lines) {
        require(line.number > before && line.number <= most);
        before = line.number;
        bool texts = line.command == Command::type || line.command == Command::menu ||
                     line.command == Command::expect_value ||
                     line.command == Command::expect_text ||
                     line.command == Command::expect_window ||
                     line.command == Command::screenshot || line.command == Command::tree;
        require(!texts || !line.texts.empty());
        require(std::abs(line.first) <= 3600 * 1000 && std::abs(line.second) <= 3600 * 1000);
        if (line.command == Command::key || line.command == Command::wheel)
            require(line.first != 0 && std::abs(line.first) <= 1000);
        if (line.command == Command::drag) require(line.other.kind != Target::Kind::none);
    }
    return 0;
}
