// Any text is a format or gets an error that lies in it; the links of a program are sound.
#include <cstdint>
#include <cstdlib>

#include "fio/format/program.h"

using namespace tarn::fio;

static void require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FormatProgram program;
    const FormatError error =
        parse_gnu_format(reinterpret_cast<const char*>(data), size, {}, program);
    require(error.position <= size);
    if (error.number != 0) return 0;
    require(program.nodes.size() >= 2 && program.nodes.front().edit == Edit::open &&
            program.nodes.back().edit == Edit::end);
    for (std::uint32_t i = 0; i < program.nodes.size(); ++i) {
        const FormatNode& node = program.nodes[i];
        require(node.source < size && node.link < program.nodes.size());
        require(std::size_t{node.text} + node.length <= program.literals.size());
        if (node.edit == Edit::close) require(program.nodes[node.link].link == i);
        if (node.edit == Edit::DT) {
            require(static_cast<std::size_t>(node.d) + node.w <= program.values.size());
        }
    }
    return 0;
}
