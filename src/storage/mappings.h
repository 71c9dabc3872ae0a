// Storage that stands for a file, or that processes share by a name.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::storage {

enum class MappedFor : std::uint8_t { reading, read_write, sharing };

// Maps the whole of a file, or `size` bytes where that is more: a file that is mapped for reading
// and has fewer is refused, any other is made as long. A file of no bytes can't be mapped. Null:
// the system refuses, which errno tells.
void* map_file(const char* path, std::intptr_t size, MappedFor purpose);

// The storage of this name, zeros at first: every process of the user that asks for the name gets
// the same bytes. It is gone when the last of them has released it or has ended.
void* create_interprocess_shared_memory(std::string_view name, std::intptr_t size);

// Whether this is the address of a mapping from here.
bool is_mapped(const void* address);
// Gives a mapping back. False: it is none.
bool unmap(void* address);

}  // namespace tarn::storage
