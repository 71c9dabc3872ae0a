// EX editing: hexadecimal significands. gfortran 12 doesn't know the descriptor, so the choices
// that the standard leaves open are ours: a normal number begins with the digit 1, and a letter is
// a capital.
#pragma once

#include "fio/gnu/edit_out.h"
#include "fio/number/decimal.h"

namespace tarn::fio {

// A finite value. d = 0 or absent: as many digits as show the value exactly. e absent or 0: as few
// digits of the exponent as it takes.
char* put_hexadecimal(char* out, const BinaryReal& value, const FieldEdit& edit,
                      const EditModes& modes);
std::size_t hexadecimal_field_bound(const FieldEdit& edit);

}  // namespace tarn::fio
