// Trigonometry in degrees and in units of pi, in 80 bits. The forward functions first reduce their
// argument, in place, and clean their result: what is within 5E-16 of 0 or 1 becomes that.
#pragma once

namespace tarn::intrinsics::numbers {

// Whole turns taken off: -180 to 180, and the fraction kept.
long double reduced_degrees(long double x);
// -0.5 to 2.5; 2 is a whole turn.
long double reduced_half_turns(long double x);
long double clean_result(long double value);

long double sine_of_degrees(long double& x);
long double cosine_of_degrees(long double& x);
// Infinite at 90, by the sign of the reduced argument.
long double tangent_of_degrees(long double& x);

long double sine_of_half_turns(long double& x);
long double cosine_of_half_turns(long double& x);
long double tangent_of_half_turns(long double& x);

// Arguments outside -1 to 1 are failure 26, two zeros failure 33.
long double arc_sine_in_degrees(long double x);
long double arc_cosine_in_degrees(long double x);
long double arc_tangent_in_degrees(long double x);
long double arc_tangent_in_degrees(long double y, long double x);
long double arc_sine_in_half_turns(long double x);
long double arc_cosine_in_half_turns(long double x);
long double arc_tangent_in_half_turns(long double x);
long double arc_tangent_in_half_turns(long double y, long double x);

}  // namespace tarn::intrinsics::numbers
