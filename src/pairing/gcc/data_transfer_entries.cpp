// The entries that gfortran's READ, WRITE, PRINT and INQUIRE(IOLENGTH=) call.
#include "fio/gnu/items.h"
#include "frame/link_name.h"
#include "pairing/gcc/data_transfer.h"

using tarn::fio::ItemType;
using tarn::gcc::ArrayDescriptor;
using tarn::gcc::DataBlock;

extern "C" {

TARN_EXPORT void _gfortran_st_read(DataBlock* block) {
    tarn::gcc::begin_data_transfer(*block, true);
}

TARN_EXPORT void _gfortran_st_write(DataBlock* block) {
    tarn::gcc::begin_data_transfer(*block, false);
}

TARN_EXPORT void _gfortran_st_iolength(DataBlock* block) {
    tarn::gcc::begin_measuring(*block);
}

TARN_EXPORT void _gfortran_st_read_done(DataBlock* block) {
    tarn::gcc::end_data_transfer(*block);
}
TARN_EXPORT void _gfortran_st_write_done(DataBlock* block) TARN_ALIAS(_gfortran_st_read_done);
TARN_EXPORT void _gfortran_st_iolength_done(DataBlock* block) TARN_ALIAS(_gfortran_st_read_done);

// gfortran names reading and writing apart so that a WRITE may hand over what is read-only; the
// statement knows its direction.
TARN_EXPORT void _gfortran_transfer_integer(DataBlock* block, void* item, int kind) {
    tarn::gcc::transfer_item(*block, ItemType::integer, item, kind, static_cast<std::size_t>(kind));
}
TARN_EXPORT void _gfortran_transfer_integer_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_integer);

TARN_EXPORT void _gfortran_transfer_logical(DataBlock* block, void* item, int kind) {
    tarn::gcc::transfer_item(*block, ItemType::logical, item, kind, static_cast<std::size_t>(kind));
}
TARN_EXPORT void _gfortran_transfer_logical_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_logical);

TARN_EXPORT void _gfortran_transfer_real(DataBlock* block, void* item, int kind) {
    tarn::gcc::transfer_item(*block, ItemType::real, item, kind, tarn::fio::real_size(kind));
}
TARN_EXPORT void _gfortran_transfer_real_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_real);
TARN_EXPORT void _gfortran_transfer_real128(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_real);
TARN_EXPORT void _gfortran_transfer_real128_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_real);

TARN_EXPORT void _gfortran_transfer_complex(DataBlock* block, void* item, int kind) {
    tarn::gcc::transfer_complex(*block, item, kind);
}
TARN_EXPORT void _gfortran_transfer_complex_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_complex);
TARN_EXPORT void _gfortran_transfer_complex128(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_complex);
TARN_EXPORT void _gfortran_transfer_complex128_write(DataBlock* block, void* item, int kind)
    TARN_ALIAS(_gfortran_transfer_complex);

TARN_EXPORT void _gfortran_transfer_character(DataBlock* block, void* item, std::size_t length) {
    tarn::gcc::transfer_item(*block, ItemType::character, item, 1, length);
}
TARN_EXPORT void _gfortran_transfer_character_write(DataBlock* block, void* item,
                                                    std::size_t length)
    TARN_ALIAS(_gfortran_transfer_character);

TARN_EXPORT void _gfortran_transfer_character_wide(DataBlock* block, void* item, std::size_t length,
                                                   int kind) {
    tarn::gcc::transfer_item(*block, ItemType::character, item, kind, length);
}
TARN_EXPORT void _gfortran_transfer_character_wide_write(DataBlock* block, void* item,
                                                         std::size_t length, int kind)
    TARN_ALIAS(_gfortran_transfer_character_wide);

TARN_EXPORT void _gfortran_transfer_array(DataBlock* block, ArrayDescriptor* array, int kind,
                                          std::size_t character_length) {
    tarn::gcc::transfer_array(*block, *array, kind, character_length);
}
TARN_EXPORT void _gfortran_transfer_array_write(DataBlock* block, ArrayDescriptor* array, int kind,
                                                std::size_t character_length)
    TARN_ALIAS(_gfortran_transfer_array);

TARN_EXPORT void _gfortran_transfer_derived(DataBlock* block, void* object, void* routine) {
    tarn::gcc::transfer_derived(*block, object, routine);
}

}  // extern "C"
