// The failures of numeric routines, by their catalogue numbers.
#pragma once

#include "failure/failure.h"
#include "frame/state.h"

namespace tarn::intrinsics::numbers {

inline constexpr int no_failure = 0;
inline constexpr int floating_overflow = 1;
inline constexpr int integer_overflow = 2;
inline constexpr int sinh_out_of_range = 20;
inline constexpr int zero_to_power = 21;
inline constexpr int exp_out_of_range = 25;
inline constexpr int asin_out_of_range = 26;
inline constexpr int mod_by_zero = 32;
inline constexpr int atan2_of_zeros = 33;
inline constexpr int log_out_of_range = 34;
inline constexpr int negative_to_power = 36;
inline constexpr int circular_shift_out_of_range = 217;
inline constexpr int invalid_argument = 357;
inline constexpr int nearest_to_zero = 384;
inline constexpr int complex_log_of_zero = 385;
inline constexpr int move_bits_out_of_range = 386;
inline constexpr int norm_overflow = 453;
inline constexpr int negative_shift = 457;
inline constexpr int acosh_out_of_range = 495;
inline constexpr int atanh_out_of_range = 496;

// A program may call a numeric routine before anything else of the library.
[[noreturn]] inline void fail(int number) {
    frame::ensure_up();
    failure::fail(number);
}

}  // namespace tarn::intrinsics::numbers
