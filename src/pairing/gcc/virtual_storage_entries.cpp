// Virtual storage as gfortran calls it: every argument by reference, lengths of texts last. An
// address and a size are INTEGER(8), a slot INTEGER(2).
#include <cstdint>
#include <string>

#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "tarn/virtual_storage.h"

namespace {

std::string c_text(const char* text, std::size_t length) {
    return std::string(
        tarn::frame::trimmed(tarn::frame::character(text, static_cast<std::ptrdiff_t>(length))));
}

std::uintptr_t address_of(void* start) {
    return reinterpret_cast<std::uintptr_t>(start);
}

}  // namespace

extern "C" {

TARN_EXPORT std::uintptr_t setup_virtual_region__(const char* name, const std::intptr_t* size,
                                                  void* const* address, std::size_t length) {
    return address_of(setup_virtual_region(c_text(name, length).c_str(), *size, *address));
}
TARN_EXPORT std::uintptr_t setup_expanding_region__(const char* name, const std::intptr_t* size,
                                                    std::size_t length) {
    return address_of(setup_expanding_region(c_text(name, length).c_str(), *size));
}
TARN_EXPORT std::int32_t remove_virtual_region__(void* const* start, const std::int32_t* kind) {
    return remove_virtual_region(*start, *kind);
}
TARN_EXPORT void set_commit_pages__(const std::int32_t* pages) {
    __set_commit_pages(*pages);
}
TARN_EXPORT std::int32_t get_virtual_common_info__(const char* name, std::uintptr_t* address,
                                                   std::intptr_t* size, std::intptr_t* commit_size,
                                                   std::intptr_t* committed, std::size_t length) {
    return __get_virtual_common_info(c_text(name, length).c_str(), address, size, commit_size,
                                     committed);
}

TARN_EXPORT void set_virtual_scratch_file_size__(const std::intptr_t* size) {
    SET_VIRTUAL_SCRATCH_FILE_SIZE_h(size);
}
TARN_EXPORT void open_virtual_scratch__(std::int16_t* handle, std::int16_t* status) {
    OPEN_VIRTUAL_SCRATCH_h(handle, status);
}
TARN_EXPORT void create_virtual_scratch_file__(const std::int16_t* slot, void** address,
                                               std::int16_t* status) {
    const std::int32_t wide = *slot;
    CREATE_VIRTUAL_SCRATCH_FILE_h(&wide, address, status);
}
TARN_EXPORT void get_virtual_scratch_file_info__(const std::int16_t* slot, std::uintptr_t* address,
                                                 std::intptr_t* size, std::intptr_t* commit_size,
                                                 std::intptr_t* committed) {
    const std::int32_t wide = *slot;
    GET_VIRTUAL_SCRATCH_FILE_INFO_h(&wide, address, size, commit_size, committed);
}
TARN_EXPORT void close_virtual_scratch__(const std::int16_t* slot) {
    CLOSE_VIRTUAL_SCRATCH_h(slot);
}
TARN_EXPORT void release_virtual_scratch__(const std::int16_t* slot) {
    RELEASE_VIRTUAL_SCRATCH_h(slot);
}

}  // extern "C"
