// gfortran's FINDLOC, but for characters. Positions are 8-byte integers; the value that is looked
// for comes by value.
#include "frame/link_name.h"
#include "intrinsics/arrays/find.h"
#include "pairing/gcc/array_location.h"
#include "pairing/gcc/array_reduction.h"
#include "pairing/gcc/array_types.h"

namespace tarn::gcc {
namespace {

using namespace tarn::arrays;

constexpr Index position_size = 8;

template <class T>
[[gnu::noinline]] void find_whole(ArrayDescriptor& to, const View& array, T value, const Mask* mask,
                                  Logical back) {
    if (mask != nullptr) check_shape(mask->view, array, "MASK", "FINDLOC");
    const View result = positions_for(to, array.rank, position_size, "FINDLOC");
    store_subscripts(array, place_of_match(Equal<T>{value}, array, mask, back != 0), result);
}

template <class T>
MatchPlace<Equal<T>> match_place(T value, Logical back) {
    return {{value}, back != 0, position_size};
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

#define TARN_FINDLOC(type, T)                                                                     \
    TARN_EXPORT void _gfortran_findloc0_##type(ArrayDescriptor* to, const ArrayDescriptor* from,  \
                                               T value, Logical back) {                           \
        find_whole<T>(*to, view_of(*from, sizeof(T)), value, nullptr, back);                      \
    }                                                                                             \
    TARN_EXPORT void _gfortran_mfindloc0_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                T value, const ArrayDescriptor* mask,             \
                                                Logical back) {                                   \
        find_whole<T>(*to, view_of(*from, sizeof(T)), value, GivenMask(mask).get(), back);        \
    }                                                                                             \
    TARN_EXPORT void _gfortran_sfindloc0_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                T value, const Logical* mask, Logical back) {     \
        const View array = view_of(*from, sizeof(T));                                             \
        find_whole<T>(*to, array, value, GivenMask(mask, array).get(), back);                     \
    }                                                                                             \
    TARN_EXPORT void _gfortran_findloc1_##type(ArrayDescriptor* to, const ArrayDescriptor* from,  \
                                               T value, const Index* dim, Logical back) {         \
        reduce(match_place<T>(value, back),                                                       \
               {*to, *from, nullptr, *dim, sizeof(T), position_size, "FINDLOC"});                 \
    }                                                                                             \
    TARN_EXPORT void _gfortran_mfindloc1_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                T value, const Index* dim,                        \
                                                const ArrayDescriptor* mask, Logical back) {      \
        reduce(match_place<T>(value, back),                                                       \
               {*to, *from, mask, *dim, sizeof(T), position_size, "FINDLOC"});                    \
    }                                                                                             \
    TARN_EXPORT void _gfortran_sfindloc1_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                T value, const Index* dim, const Logical* mask,   \
                                                Logical back) {                                   \
        reduce_if(mask, match_place<T>(value, back),                                              \
                  {*to, *from, nullptr, *dim, sizeof(T), position_size, "FINDLOC"});              \
    }
TARN_GNU_NUMBERS(TARN_FINDLOC)
}
// NOLINTEND(bugprone-macro-parentheses)
