// Storage by whole pages.
#pragma once

#include <cstdint>

namespace tarn::storage {

// Pages of their own, readable, writable and zero; null: none to be had.
void* global_alloc(std::intptr_t size);
// What is no block of these is left alone.
void global_free(void* address);

}  // namespace tarn::storage
