// Large storage: pieces carved from blocks of at least 50 MiB, each an expanding region.
#pragma once

#include <cstdint>
#include <cstdio>

namespace tarn::storage {

// A piece of `size` bytes, rounded up to a multiple of 4; null: no range can be had.
void* vmalloc(std::intptr_t size);
// What is no piece is left alone.
void vfree(void* address);
// Cuts a piece. Null for a size of nothing and for one above the present; what is no piece is given
// back as it came.
void* shrink_vmalloc(void* address, std::intptr_t size);
// Gives back the blocks of which nothing is in use; their bytes.
std::intptr_t free_empty_vmalloc_blocks();
void print_vheaps(bool allocated, bool free, std::FILE* stream);

}  // namespace tarn::storage
