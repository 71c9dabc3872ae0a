// Many numbers of one stream at once: eight parts of the stream are generated side by side, each a
// fixed number of steps ahead of the one before.
//
// The generator's steps are linear over the bits of its state, so that a number of steps is one
// table: for every four bits of a state what they contribute to the state that far ahead.
#pragma once

#include <cstddef>
#include <cstdint>

#include "intrinsics/random/xoshiro.h"

namespace tarn::intrinsics {

struct JumpTable {
    static constexpr int groups = 64;  // of four bits
    alignas(32) std::uint64_t ahead[groups][16][4];
};

inline constexpr std::size_t lane_count = 8;
// How long a part may be: the longer, the less the jumps cost. With 512 numbers they cost a fifth
// of the whole.
inline constexpr std::size_t lane_lengths[] = {4096, 1024};

// Fills lane_count * lane numbers and moves the generator past them. Only where AVX2 is there.
void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane, double* values);
void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane, float* values);
// The numbers themselves, and REALs of them.
void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane,
                std::uint64_t* numbers);
void reals_of(const std::uint64_t* numbers, double* values, std::size_t count);
void reals_of(const std::uint64_t* numbers, float* values, std::size_t count);

}  // namespace tarn::intrinsics
