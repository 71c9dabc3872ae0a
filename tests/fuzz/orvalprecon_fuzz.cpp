// Any text as a preconnection variable: it ends, and what it accepts keeps the rules.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "frame/preconnection.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn::frame;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    while (!preconnections_done(rest)) {
        std::size_t before = rest.size();
        Preconnection entry;
        int failure = next_preconnection(rest, entry);
        if (failure != 0) {
            if (failure != preconnection_bad_unit && failure != preconnection_bad_text)
                std::abort();
            break;
        }
        if (rest.size() >= before || entry.name.empty()) std::abort();
        if (entry.unit < 1 || entry.unit > 99) std::abort();
    }
    return 0;
}
