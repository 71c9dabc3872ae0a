// Reductions along a dimension, as gfortran's entries are called.
#pragma once

#include "intrinsics/arrays/along.h"
#include "pairing/gcc/array_descriptor.h"

namespace tarn::gcc {

struct ReductionCall {
    ArrayDescriptor& to;
    const ArrayDescriptor& from;
    const ArrayDescriptor* mask;  // null: there is none
    Index dim;                    // as it was given
    Index element;
    Index result_size;
    const char* name;
};

void reduce(const arrays::Reduction& reduction, const ReductionCall& call);

// The same under a scalar mask.
void reduce_if(const Logical* mask, const arrays::Reduction& reduction, const ReductionCall& call);

}  // namespace tarn::gcc
