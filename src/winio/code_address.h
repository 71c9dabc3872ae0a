// Telling a function from a text.
#pragma once

#include <cstddef>

namespace tarn::winio {

// Code of a loaded module, or a trampoline that a compiler built for a contained procedure.
bool is_code(const void* address);
// Copies up to `size` bytes that can be read; how many.
std::size_t copy_readable(const void* from, char* to, std::size_t size);

}  // namespace tarn::winio
