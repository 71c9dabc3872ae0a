// gfortran's MAXLOC and MINLOC, but for characters.
#include "frame/link_name.h"
#include "intrinsics/arrays/extremes.h"
#include "pairing/gcc/array_location.h"
#include "pairing/gcc/array_reduction.h"
#include "pairing/gcc/array_types.h"

namespace tarn::gcc {
namespace {

using namespace tarn::arrays;
using Word = std::intptr_t;

template <class T, bool largest>
struct Location {
    static constexpr const char* name = largest ? "MAXLOC" : "MINLOC";

    [[gnu::noinline]] static void whole(ArrayDescriptor& to, const View& array, const Mask* mask,
                                        bool back, Index size) {
        if (mask != nullptr) check_shape(mask->view, array, "MASK", name);
        const View result = positions_for(to, array.rank, size, name);
        store_subscripts(array,
                         place_of_extreme<T, largest>(array, mask, worst_value<T, largest>(), back),
                         result);
    }
};

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

#define TARN_LOCATION(entry, size, type, T, largest)                                              \
    TARN_EXPORT void _gfortran_##entry##0_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, Word back, Word next) {                 \
        Location<T, largest>::whole(*to, view_of(*from, sizeof(T)), nullptr,                      \
                                    back_of(back, next).set, size);                               \
    }                                                                                             \
    TARN_EXPORT void _gfortran_m##entry##0_##size##_##type(                                       \
        ArrayDescriptor* to, const ArrayDescriptor* from, const ArrayDescriptor* mask, Word back, \
        Word next) {                                                                              \
        Location<T, largest>::whole(*to, view_of(*from, sizeof(T)), GivenMask(mask).get(),        \
                                    back_of(back, next).set, size);                               \
    }                                                                                             \
    TARN_EXPORT void _gfortran_s##entry##0_##size##_##type(                                       \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Logical* mask, Word back,         \
        Word next) {                                                                              \
        const View array = view_of(*from, sizeof(T));                                             \
        Location<T, largest>::whole(*to, array, GivenMask(mask, array).get(),                     \
                                    back_of(back, next).set, size);                               \
    }                                                                                             \
    TARN_EXPORT void _gfortran_##entry##1_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim, Word back,            \
        Word next) {                                                                              \
        reduce(ExtremePlace<T, largest>(back_of(back, next).set, size),                           \
               {*to, *from, nullptr, *dim, sizeof(T), size, Location<T, largest>::name});         \
    }                                                                                             \
    TARN_EXPORT void _gfortran_m##entry##1_##size##_##type(                                       \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim,                       \
        const ArrayDescriptor* mask, Word back, Word next) {                                      \
        reduce(ExtremePlace<T, largest>(back_of(back, next).set, size),                           \
               {*to, *from, mask, *dim, sizeof(T), size, Location<T, largest>::name});            \
    }                                                                                             \
    TARN_EXPORT void _gfortran_s##entry##1_##size##_##type(                                       \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim, const Logical* mask,  \
        Word back, Word next) {                                                                   \
        reduce_if(mask, ExtremePlace<T, largest>(back_of(back, next).set, size),                  \
                  {*to, *from, nullptr, *dim, sizeof(T), size, Location<T, largest>::name});      \
    }
#define TARN_LOCATIONS(type, T)              \
    TARN_LOCATION(maxloc, 4, type, T, true)  \
    TARN_LOCATION(maxloc, 8, type, T, true)  \
    TARN_LOCATION(maxloc, 16, type, T, true) \
    TARN_LOCATION(minloc, 4, type, T, false) \
    TARN_LOCATION(minloc, 8, type, T, false) \
    TARN_LOCATION(minloc, 16, type, T, false)
TARN_GNU_ORDERED(TARN_LOCATIONS)
}
// NOLINTEND(bugprone-macro-parentheses)
