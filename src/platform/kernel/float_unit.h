// The processor's two floating-point units as one, in the words of the x87.
//
// Compiled code of this age computes in SSE registers, REAL*10 in the x87. A control word
// therefore reaches both: exception masks and rounding go to MXCSR as well, the precision has a
// meaning for the x87 only.
#pragma once

#include <cstdint>

namespace tarn::platform {

inline constexpr std::uint16_t fp_invalid = 0x01;
inline constexpr std::uint16_t fp_denormal = 0x02;
inline constexpr std::uint16_t fp_zero_divide = 0x04;
inline constexpr std::uint16_t fp_overflow = 0x08;
inline constexpr std::uint16_t fp_underflow = 0x10;
inline constexpr std::uint16_t fp_precision = 0x20;
inline constexpr std::uint16_t fp_all = 0x3F;
// To nearest, extended precision, nothing traps: what the system starts a process with.
inline constexpr std::uint16_t all_masked_word = 0x037F;

// Loads masks, precision and rounding. Exceptions that are pending already are dropped first:
// unmasking must not raise one for an operation of the past.
void load_control_word(std::uint16_t word);
std::uint16_t control_word();  // of the x87
std::uint32_t sse_control();   // MXCSR

// The exception flags that either unit holds, in the bits above.
std::uint16_t pending_exceptions();
void clear_exceptions();
std::uint16_t status_word();  // of the x87, with the flags of both units
void reset_unit();            // fninit, and the SSE flags cleared

// Runs a stretch of the library's own code with every exception masked and rounding to nearest;
// what the program had set comes back behind it, and no flag of ours stays.
class MaskedFloat {
  public:
    MaskedFloat();
    ~MaskedFloat();
    MaskedFloat(const MaskedFloat&) = delete;
    MaskedFloat& operator=(const MaskedFloat&) = delete;

  private:
    std::uint32_t saved_sse;
    std::uint16_t saved_x87;
};

}  // namespace tarn::platform
