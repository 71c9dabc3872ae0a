// The storage routines as gfortran calls them: `name@` arrives as `name__`, every argument by
// reference. An address is an INTEGER(8); a size may be a default INTEGER too, for which the
// module names routines of their own.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/allocate.h"
#include "tarn/storage.h"

extern "C" {

TARN_EXPORT void get_storage__(std::intptr_t* address, const std::intptr_t* size) {
    GET_STORAGE_h(address, size);
}
TARN_EXPORT void get_storage4__(std::intptr_t* address, const std::int32_t* size) {
    const std::intptr_t wide = *size;
    GET_STORAGE_h(address, &wide);
}
TARN_EXPORT void return_storage__(const std::intptr_t* address) {
    RETURN_STORAGE_h(address);
}
TARN_EXPORT void shrink_storage__(std::intptr_t* address, const std::intptr_t* size) {
    SHRINK_STORAGE_h(address, size);
}
TARN_EXPORT void shrink_storage4__(std::intptr_t* address, const std::int32_t* size) {
    const std::intptr_t wide = *size;
    SHRINK_STORAGE_h(address, &wide);
}
TARN_EXPORT void get_mstorage__(std::intptr_t* address, const std::intptr_t* size) {
    GET_MSTORAGE_h(address, size);
}
TARN_EXPORT void get_mstorage4__(std::intptr_t* address, const std::int32_t* size) {
    const std::intptr_t wide = *size;
    GET_MSTORAGE_h(address, &wide);
}
TARN_EXPORT void return_mstorage__(const std::intptr_t* address) {
    RETURN_MSTORAGE_h(address);
}
TARN_EXPORT void shrink_mstorage__(std::intptr_t* address, const std::intptr_t* size) {
    SHRINK_MSTORAGE_h(address, size);
}
TARN_EXPORT void shrink_mstorage4__(std::intptr_t* address, const std::int32_t* size) {
    const std::intptr_t wide = *size;
    SHRINK_MSTORAGE_h(address, &wide);
}
TARN_EXPORT void get_gstorage__(std::intptr_t* address, const std::intptr_t* size) {
    GET_GSTORAGE_h(address, size);
}
TARN_EXPORT void get_gstorage4__(std::intptr_t* address, const std::int32_t* size) {
    const std::intptr_t wide = *size;
    GET_GSTORAGE_h(address, &wide);
}
TARN_EXPORT void return_gstorage__(const std::intptr_t* address) {
    RETURN_GSTORAGE_h(address);
}
TARN_EXPORT void giveback_allocation_blocks__(std::intptr_t* freed) {
    GIVEBACK_ALLOCATION_BLOCKS_h(freed);
}
TARN_EXPORT void dbg_display_get_storage_list__() {
    DBG_DISPLAY_GET_STORAGE_LIST_h();
}
TARN_EXPORT void set_debug_allocate__(const std::int32_t* flag) {
    SET_DEBUG_ALLOCATE_h(flag);
}
TARN_EXPORT void set_debug_allocate_break_number__(const std::int32_t* number) {
    SET_DEBUG_ALLOCATE_BREAK_NUMBER_h(number);
}

}  // extern "C"
