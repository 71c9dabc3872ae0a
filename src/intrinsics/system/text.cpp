#include "intrinsics/system/text.h"

#include <cstring>

namespace tarn::intrinsics {

void give_text(std::string_view text, char* variable, std::intptr_t length) {
    if (length <= 0) return;
    const auto room = static_cast<std::size_t>(length);
    const std::size_t count = text.copy(variable, room);
    std::memset(variable + count, ' ', room - count);
}

}  // namespace tarn::intrinsics
