// From the X keyboard's names of keys to the platform's numbers.
#pragma once

#include <cstdint>

namespace tarn::x11 {

// The VK_ code of a key whose plain keysym this is, 0 for none.
std::int32_t virtual_key(std::uint32_t keysym);
// That of the keypad's keys, whose keysym already says whether Num Lock counts.
std::int32_t keypad_key(std::uint32_t keysym);
// The code that the key has on a US keyboard, for keyboards that have no Latin letters at all.
std::int32_t key_of_scan(std::int32_t scan);

}  // namespace tarn::x11
