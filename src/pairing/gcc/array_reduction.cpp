#include "pairing/gcc/array_reduction.h"

#include <cstdlib>

namespace tarn::gcc {
namespace {

using arrays::Loops;
using arrays::Reduction;
using arrays::Rows;
using arrays::Run;

void reduce_checked(const Reduction& reduction, const ReductionCall& call, int dim,
                    const View& array, const Mask* mask) {
    if (mask != nullptr) check_shape(mask->view, array, "MASK", call.name);
    const View result = reduced_result_for(call.to, array, dim, call.result_size, call.name);
    reduce_along(reduction, array, mask, dim, result);
}

// Storage for a result without one. False: it has no elements, or too many, which have oddities of
// their own.
bool give_storage(const ReductionCall& call, Index elements, int rank) {
    Index bytes = 0;
    if (elements == 0 || __builtin_mul_overflow(elements, call.result_size, &bytes)) return false;
    ArrayDescriptor& to = call.to;
    to.rank = static_cast<std::int8_t>(rank);
    to.offset = 0;
    to.base = static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes)));
    return to.base != nullptr;
}

// The loops over the rows, straight from the descriptors, which are a good part of the work where
// the elements are few. A result without storage gets it.
bool loops_of(const ReductionCall& call, int dim, Loops<3>& loops) {
    const ArrayDescriptor& from = call.from;
    const ArrayDescriptor& second = call.mask != nullptr ? *call.mask : from;
    const Index mask_element = static_cast<Index>(second.element_length);
    ArrayDescriptor& to = call.to;
    const bool make = to.base == nullptr;
    Index elements = 1;
    int r = 0;
    for (int d = 0; d < from.rank; ++d) {
        if (d == dim) continue;
        const Index extent = from.dimension[d].extent();
        Dimension& along = to.dimension[r++];
        if (make) along = {elements, 0, extent - 1};
        const Index step = make ? elements : along.stride;
        if (__builtin_mul_overflow(elements, extent, &elements)) return false;
        loops.add(extent, {from.dimension[d].stride * call.element, step * call.result_size,
                           second.dimension[d].stride * mask_element});
    }
    loops.finish();
    return make ? give_storage(call, elements, r) : elements != 0;
}

// The first run, and where its result goes.
void describe_first(const ReductionCall& call, Index dim, Rows& rows) {
    const Dimension& along = call.from.dimension[dim];
    Run& run = rows.first;
    run.at = reinterpret_cast<const std::byte*>(call.from.base);
    run.stride = along.stride * call.element;
    run.n = along.extent();
    run.element = call.element;
    rows.to = reinterpret_cast<std::byte*>(call.to.base);
    if (call.mask == nullptr) return;
    run.mask = reinterpret_cast<const std::byte*>(call.mask->base);
    run.mask_size = static_cast<Index>(call.mask->element_length);
    run.mask_stride = call.mask->dimension[dim].stride * run.mask_size;
}

// A matrix needs no loops but that over its rows or columns.
bool reduce_matrix(const Reduction& reduction, const ReductionCall& call, Index dim) {
    const Dimension& other = call.from.dimension[1 - dim];
    ArrayDescriptor& to = call.to;
    Rows rows;
    rows.n = other.extent();
    if (to.base == nullptr) {
        if (!give_storage(call, rows.n, 1)) return false;
        to.dimension[0] = {1, 0, rows.n - 1};
        rows.to_step = call.result_size;
    } else {
        rows.to_step = to.dimension[0].stride * call.result_size;
    }
    describe_first(call, dim, rows);
    rows.step = other.stride * call.element;
    if (call.mask != nullptr)
        rows.mask_step = call.mask->dimension[1 - dim].stride * rows.first.mask_size;
    reduce_rows(reduction, rows);
    return true;
}

bool reduce_plainly(const Reduction& reduction, const ReductionCall& call, int dim) {
    Loops<3> loops;
    if (!loops_of(call, dim, loops)) return false;
    Rows rows;
    describe_first(call, dim, rows);
    reduce_loops(reduction, rows, loops);
    return true;
}

[[gnu::noinline]] void reduce_with_care(const Reduction& reduction, const ReductionCall& call) {
    const View array = view_of(call.from, call.element);
    const int dim = dim_of(call.dim, array.rank, call.name);
    reduce_checked(reduction, call, dim, array, GivenMask(call.mask).get());
}

}  // namespace

void reduce(const Reduction& reduction, const ReductionCall& call) {
    const int rank = call.from.rank;
    const Index dim = call.dim - 1;
    const bool plain = !checks_bounds() && dim >= 0 && dim < rank &&
                       (call.to.base == nullptr || call.to.rank == rank - 1);
    if (plain && rank == 2 && reduce_matrix(reduction, call, dim)) return;
    if (plain && rank > 2 && reduce_plainly(reduction, call, static_cast<int>(dim))) return;
    reduce_with_care(reduction, call);
}

void reduce_if(const Logical* mask, const Reduction& reduction, const ReductionCall& call) {
    if (mask == nullptr || *mask != 0) return reduce(reduction, call);
    const View array = view_of(call.from, call.element);
    const int dim = dim_of(call.dim, array.rank, call.name);
    reduce_checked(reduction, call, dim, array, GivenMask(mask, array).get());
}

}  // namespace tarn::gcc
