// The fields that programs write most: REAL(4) and REAL(8), no ROUND=, up to 18 digits. Straight
// from the bits of the value to the characters of the field.
#pragma once

#include "fio/gnu/edit_out.h"

namespace tarn::fio {

// As the put_ functions of edit_out.h; null where the general road has to be taken, for whatever
// reason.
char* quick_put_real(char* out, const void* value, int kind, const FieldEdit& edit,
                     const EditModes& modes);
char* quick_put_list_real(char* out, const void* value, int kind, const EditModes& modes);

}  // namespace tarn::fio
