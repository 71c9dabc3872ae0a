// How compiled code says that an argument isn't there.
#pragma once

#include <cstdint>

namespace tarn::intrinsics {

// The mark of an absent argument stands in place of its address: 0xF0 over and over, as wide as a
// word of compiled code. A C program may pass a null pointer.
inline bool present(const void* argument) {
    const auto address = reinterpret_cast<std::uintptr_t>(argument);
    return address != 0 && address != 0xF0F0F0F0 && address != 0xF0F0F0F0F0F0F0F0;
}

}  // namespace tarn::intrinsics
