// Any text as an option variable: every token found is one of the table's.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "frame/tarnenvar.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::size_t length = 0;
    for (const tarn::frame::Option* option : tarn::frame::parse_options(text)) {
        length += option->token.size();
    }
    if (length > size) std::abort();
    return 0;
}
