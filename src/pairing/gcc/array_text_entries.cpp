// gfortran's MAXLOC, MINLOC, FINDLOC, MAXVAL and MINVAL of characters of kind 1 and 4.
#include <cstdarg>

#include "frame/link_name.h"
#include "intrinsics/arrays/text.h"
#include "pairing/gcc/array_location.h"

namespace tarn::gcc {
namespace {

using namespace tarn::arrays;

template <class Character>
View texts_of(const ArrayDescriptor& from, std::size_t length) {
    return view_of(from, static_cast<Index>(length * sizeof(Character)));
}

using Word = std::intptr_t;

struct TextEnd {
    bool back;
    std::size_t length;

    TextEnd(Word given, Word next, Word last) {
        const Back found = back_of(given, next);
        back = found.set;
        length = static_cast<std::size_t>(found.behind_kind ? last : next);
    }
    // Where `last` would lie on the stack. It may not be a parameter then: without a KIND= that
    // place is the caller's, and parameters are free for the compiler to write to.
    TextEnd(Word given, Word next, std::va_list rest)
        : TextEnd(given, next, back_of(given, next).behind_kind ? va_arg(rest, Word) : next) {}
};

template <class Character>
void extreme_whole(ArrayDescriptor& to, const View& array, const Mask* mask, bool largest,
                   bool back, Index size) {
    const char* const name = largest ? "MAXLOC" : "MINLOC";
    const View result = positions_for(to, array.rank, size, name);
    store_subscripts(array, place_of_extreme_text<Character>(array, mask, largest, back), result);
}

template <class Character>
void extreme_along(ArrayDescriptor& to, const View& array, const Mask* mask, Index dim_given,
                   bool largest, bool back, Index size) {
    const char* const name = largest ? "MAXLOC" : "MINLOC";
    const int dim = dim_of(dim_given, array.rank, name);
    const View result = reduced_result_for(to, array, dim, size, name);
    place_extreme_texts<Character>(array, mask, dim, largest, back, result);
}

template <class Character>
void value_along(ArrayDescriptor& to, const View& array, const Mask* mask, Index dim_given,
                 bool largest) {
    const char* const name = largest ? "MAXVAL" : "MINVAL";
    const int dim = dim_of(dim_given, array.rank, name);
    const View result = reduced_result_for(to, array, dim, array.element, name);
    extreme_texts<Character>(array, mask, dim, largest, result);
}

constexpr Index position_size = 8;

template <class Character>
void find_whole(ArrayDescriptor& to, const View& array, const Character* value, std::size_t length,
                const Mask* mask, Logical back) {
    const View result = positions_for(to, array.rank, position_size, "FINDLOC");
    store_subscripts(
        array, place_of_text(array, mask, value, static_cast<Index>(length), back != 0), result);
}

template <class Character>
void find_along(ArrayDescriptor& to, const View& array, const Character* value, std::size_t length,
                Index dim_given, const Mask* mask, Logical back) {
    const int dim = dim_of(dim_given, array.rank, "FINDLOC");
    const View result = reduced_result_for(to, array, dim, position_size, "FINDLOC");
    place_texts(array, mask, dim, value, static_cast<Index>(length), back != 0, result);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;
using namespace tarn::arrays;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

// BACK= and the length of the texts, which a KIND= may push one place further (`back_of`).
#define TARN_TEXT_LOCATION(entry, size, Kind, type, C, largest)                                    \
    TARN_EXPORT void _gfortran_##entry##0_##size##_##type(                                         \
        ArrayDescriptor* to, const ArrayDescriptor* from, Word back, Word next, Word last) {       \
        const TextEnd end(back, next, last);                                                       \
        extreme_whole<C>(*to, texts_of<C>(*from, end.length), nullptr, largest, end.back, size);   \
    }                                                                                              \
    TARN_EXPORT void _gfortran_m##entry##0_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, const ArrayDescriptor* mask, Word back,  \
        Word next, Word last) {                                                                    \
        const TextEnd end(back, next, last);                                                       \
        extreme_whole<C>(*to, texts_of<C>(*from, end.length), GivenMask(mask).get(), largest,      \
                         end.back, size);                                                          \
    }                                                                                              \
    TARN_EXPORT void _gfortran_s##entry##0_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Logical* mask, Word back,          \
        Word next, Word last) {                                                                    \
        const TextEnd end(back, next, last);                                                       \
        const View array = texts_of<C>(*from, end.length);                                         \
        extreme_whole<C>(*to, array, GivenMask(mask, array).get(), largest, end.back, size);       \
    }                                                                                              \
    TARN_EXPORT void _gfortran_##entry##1_##size##_##type(                                         \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim, Word back, Word next,  \
        Word last) {                                                                               \
        const TextEnd end(back, next, last);                                                       \
        extreme_along<C>(*to, texts_of<C>(*from, end.length), nullptr, *dim, largest, end.back,    \
                         size);                                                                    \
    }                                                                                              \
    TARN_EXPORT void _gfortran_m##entry##1_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim,                        \
        const ArrayDescriptor* mask, Word back, Word next, ...) {                                  \
        std::va_list rest;                                                                         \
        va_start(rest, next);                                                                      \
        const TextEnd end(back, next, rest);                                                       \
        va_end(rest);                                                                              \
        extreme_along<C>(*to, texts_of<C>(*from, end.length), GivenMask(mask).get(), *dim,         \
                         largest, end.back, size);                                                 \
    }                                                                                              \
    TARN_EXPORT void _gfortran_s##entry##1_##size##_##type(                                        \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Index* dim, const Logical* mask,   \
        Word back, Word next, ...) {                                                               \
        std::va_list rest;                                                                         \
        va_start(rest, next);                                                                      \
        const TextEnd end(back, next, rest);                                                       \
        va_end(rest);                                                                              \
        const View array = texts_of<C>(*from, end.length);                                         \
        extreme_along<C>(*to, array, GivenMask(mask, array).get(), *dim, largest, end.back, size); \
    }                                                                                              \
    TARN_EXPORT Kind _gfortran_##entry##2_##size##_##type(const ArrayDescriptor* from, Word back,  \
                                                          Word next, Word last) {                  \
        const TextEnd end(back, next, last);                                                       \
        return 1 + place_of_extreme_text<C>(texts_of<C>(*from, end.length), nullptr, largest,      \
                                            end.back);                                             \
    }                                                                                              \
    TARN_EXPORT Kind _gfortran_m##entry##2_##size##_##type(const ArrayDescriptor* from,            \
                                                           const ArrayDescriptor* mask, Word back, \
                                                           Word next, Word last) {                 \
        const TextEnd end(back, next, last);                                                       \
        return 1 + place_of_extreme_text<C>(texts_of<C>(*from, end.length), GivenMask(mask).get(), \
                                            largest, end.back);                                    \
    }                                                                                              \
    TARN_EXPORT Kind _gfortran_s##entry##2_##size##_##type(                                        \
        const ArrayDescriptor* from, const Logical* mask, Word back, Word next, Word last) {       \
        const TextEnd end(back, next, last);                                                       \
        const View array = texts_of<C>(*from, end.length);                                         \
        return 1 +                                                                                 \
               place_of_extreme_text<C>(array, GivenMask(mask, array).get(), largest, end.back);   \
    }

#define TARN_TEXT_VALUE(entry, type, C, largest)                                                   \
    TARN_EXPORT void _gfortran_##entry##0_##type(C* to, std::size_t, const ArrayDescriptor* from,  \
                                                 std::size_t length) {                             \
        extreme_text<C>(texts_of<C>(*from, length), nullptr, largest,                              \
                        reinterpret_cast<std::byte*>(to));                                         \
    }                                                                                              \
    TARN_EXPORT void _gfortran_m##entry##0_##type(C* to, std::size_t, const ArrayDescriptor* from, \
                                                  const ArrayDescriptor* mask,                     \
                                                  std::size_t length) {                            \
        extreme_text<C>(texts_of<C>(*from, length), GivenMask(mask).get(), largest,                \
                        reinterpret_cast<std::byte*>(to));                                         \
    }                                                                                              \
    TARN_EXPORT void _gfortran_s##entry##0_##type(C* to, std::size_t, const ArrayDescriptor* from, \
                                                  const Logical* mask, std::size_t length) {       \
        const View array = texts_of<C>(*from, length);                                             \
        extreme_text<C>(array, GivenMask(mask, array).get(), largest,                              \
                        reinterpret_cast<std::byte*>(to));                                         \
    }                                                                                              \
    TARN_EXPORT void _gfortran_##entry##1_##type(ArrayDescriptor* to, std::size_t,                 \
                                                 const ArrayDescriptor* from, const Index* dim,    \
                                                 std::size_t length) {                             \
        value_along<C>(*to, texts_of<C>(*from, length), nullptr, *dim, largest);                   \
    }                                                                                              \
    TARN_EXPORT void _gfortran_m##entry##1_##type(                                                 \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from, const Index* dim,           \
        const ArrayDescriptor* mask, std::size_t length) {                                         \
        value_along<C>(*to, texts_of<C>(*from, length), GivenMask(mask).get(), *dim, largest);     \
    }                                                                                              \
    TARN_EXPORT void _gfortran_s##entry##1_##type(ArrayDescriptor* to, std::size_t,                \
                                                  const ArrayDescriptor* from, const Index* dim,   \
                                                  const Logical* mask, std::size_t length) {       \
        const View array = texts_of<C>(*from, length);                                             \
        value_along<C>(*to, array, GivenMask(mask, array).get(), *dim, largest);                   \
    }

#define TARN_TEXT_FIND(type, C)                                                                    \
    TARN_EXPORT void _gfortran_findloc0_##type(ArrayDescriptor* to, const ArrayDescriptor* from,   \
                                               const C* value, Logical back, std::size_t length,   \
                                               std::size_t value_length) {                         \
        find_whole(*to, texts_of<C>(*from, length), value, value_length, nullptr, back);           \
    }                                                                                              \
    TARN_EXPORT void _gfortran_mfindloc0_##type(                                                   \
        ArrayDescriptor* to, const ArrayDescriptor* from, const C* value,                          \
        const ArrayDescriptor* mask, Logical back, std::size_t length, std::size_t value_length) { \
        find_whole(*to, texts_of<C>(*from, length), value, value_length, GivenMask(mask).get(),    \
                   back);                                                                          \
    }                                                                                              \
    TARN_EXPORT void _gfortran_sfindloc0_##type(ArrayDescriptor* to, const ArrayDescriptor* from,  \
                                                const C* value, const Logical* mask, Logical back, \
                                                std::size_t length, std::size_t value_length) {    \
        const View array = texts_of<C>(*from, length);                                             \
        find_whole(*to, array, value, value_length, GivenMask(mask, array).get(), back);           \
    }                                                                                              \
    TARN_EXPORT void _gfortran_findloc1_##type(ArrayDescriptor* to, const ArrayDescriptor* from,   \
                                               const C* value, const Index* dim, Logical back,     \
                                               std::size_t length, std::size_t value_length) {     \
        find_along(*to, texts_of<C>(*from, length), value, value_length, *dim, nullptr, back);     \
    }                                                                                              \
    TARN_EXPORT void _gfortran_mfindloc1_##type(                                                   \
        ArrayDescriptor* to, const ArrayDescriptor* from, const C* value, const Index* dim,        \
        const ArrayDescriptor* mask, Logical back, std::size_t length, std::size_t value_length) { \
        find_along(*to, texts_of<C>(*from, length), value, value_length, *dim,                     \
                   GivenMask(mask).get(), back);                                                   \
    }                                                                                              \
    TARN_EXPORT void _gfortran_sfindloc1_##type(                                                   \
        ArrayDescriptor* to, const ArrayDescriptor* from, const C* value, const Index* dim,        \
        const Logical* mask, Logical back, std::size_t length, std::size_t value_length) {         \
        const View array = texts_of<C>(*from, length);                                             \
        find_along(*to, array, value, value_length, *dim, GivenMask(mask, array).get(), back);     \
    }                                                                                              \
    TARN_EXPORT Index _gfortran_findloc2_##type(const ArrayDescriptor* from, const C* value,       \
                                                Logical back, std::size_t length,                  \
                                                std::size_t value_length) {                        \
        return 1 + place_of_text(texts_of<C>(*from, length), nullptr, value,                       \
                                 static_cast<Index>(value_length), back != 0);                     \
    }                                                                                              \
    TARN_EXPORT Index _gfortran_mfindloc2_##type(const ArrayDescriptor* from, const C* value,      \
                                                 const ArrayDescriptor* mask, Logical back,        \
                                                 std::size_t length, std::size_t value_length) {   \
        return 1 + place_of_text(texts_of<C>(*from, length), GivenMask(mask).get(), value,         \
                                 static_cast<Index>(value_length), back != 0);                     \
    }                                                                                              \
    TARN_EXPORT Index _gfortran_sfindloc2_##type(const ArrayDescriptor* from, const C* value,      \
                                                 const Logical* mask, Logical back,                \
                                                 std::size_t length, std::size_t value_length) {   \
        const View array = texts_of<C>(*from, length);                                             \
        return 1 + place_of_text(array, GivenMask(mask, array).get(), value,                       \
                                 static_cast<Index>(value_length), back != 0);                     \
    }

#define TARN_TEXTS(type, C)                                     \
    TARN_TEXT_LOCATION(maxloc, 4, std::int32_t, type, C, true)  \
    TARN_TEXT_LOCATION(maxloc, 8, std::int64_t, type, C, true)  \
    TARN_TEXT_LOCATION(maxloc, 16, __int128, type, C, true)     \
    TARN_TEXT_LOCATION(minloc, 4, std::int32_t, type, C, false) \
    TARN_TEXT_LOCATION(minloc, 8, std::int64_t, type, C, false) \
    TARN_TEXT_LOCATION(minloc, 16, __int128, type, C, false)    \
    TARN_TEXT_VALUE(maxval, type, C, true)                      \
    TARN_TEXT_VALUE(minval, type, C, false)                     \
    TARN_TEXT_FIND(type, C)
TARN_TEXTS(s1, std::uint8_t)
TARN_TEXTS(s4, std::uint32_t)
}
// NOLINTEND(bugprone-macro-parentheses)
