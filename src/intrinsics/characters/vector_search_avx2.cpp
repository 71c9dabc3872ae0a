// Compiled for AVX2 (see CMakeLists.txt): nothing here may be called where it isn't there.
#include "intrinsics/characters/vector_search_code.h"

#ifndef __AVX2__
#error "this file is compiled with -mavx2"
#endif

namespace tarn::intrinsics {

constinit const VectorSearch<std::uint8_t> avx2_search_1 = {
    vectors::other_than<std::uint8_t>, vectors::difference<std::uint8_t>,
    vectors::of_set<std::uint8_t>, vectors::find_part<std::uint8_t>};
constinit const VectorSearch<std::uint32_t> avx2_search_4 = {
    vectors::other_than<std::uint32_t>, vectors::difference<std::uint32_t>,
    vectors::of_set<std::uint32_t>, vectors::find_part<std::uint32_t>};

}  // namespace tarn::intrinsics
