// DUMP_ARRAY: what stands in a descriptor that compiled code keeps of an array.
#include <cstdio>
#include <cstring>
#include <span>

#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/arrays/native_call.h"
#include "tarn/arrays.h"

namespace tarn::arrays {
namespace {

constexpr const char* pointer_lines[] = {"     Start:       %d\n", "     Size:        %d\n",
                                         "     Stride:      %d\n", "     SectionSize: %d\n",
                                         "     Offset:      %d\n"};
constexpr const char* allocatable_lines[] = {pointer_lines[0], pointer_lines[1], pointer_lines[3]};
constexpr const char* normal_lines[] = {pointer_lines[0], pointer_lines[1]};

// The base address, then for each dimension a word for each line.
void dump(const char* kind, std::span<const char* const> lines, const void* descriptor,
          std::int32_t rank) {
    frame::ensure_up();
    if (rank < 0 || rank > max_native_rank) native_fail(fail_rank);
    const auto* at = static_cast<const std::byte*>(descriptor);
    std::uint64_t base = 0;
    std::memcpy(&base, at, sizeof base);
    at += sizeof base;
    std::printf("**** Rank %d %s Array @ %16.16llx\n", rank, kind,
                static_cast<unsigned long long>(base));
    for (std::int32_t d = 0; d < rank; ++d) {
        for (const char* const line : lines) {
            std::int32_t word = 0;
            std::memcpy(&word, at, sizeof word);
            at += sizeof word;
            std::printf(line, word);
        }
    }
}

}  // namespace
}  // namespace tarn::arrays

using namespace tarn::arrays;

extern "C" {

TARN_EXPORT void DUMP_ARRAY1_h(const void* descriptor, const int32_t* rank) {
    dump("POINTER", pointer_lines, descriptor, *rank);
}
TARN_EXPORT void DUMP_ARRAY2_h(const void* descriptor, const int32_t* rank) {
    dump("ALLOCATABLE", allocatable_lines, descriptor, *rank);
}
TARN_EXPORT void DUMP_ARRAY3_h(const void* descriptor, const int32_t* rank) {
    dump("\"Normal\"", normal_lines, descriptor, *rank);
}
}
