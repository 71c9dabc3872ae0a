#include "intrinsics/arrays/along.h"

namespace tarn::arrays {
namespace {

constexpr Index largest_element = 32;
// With so few elements the blocks cost more than they gain.
constexpr Index few_elements = 256;

// n runs of `run.n` elements, all in step; each is a result.
void reduce_block(const Reduction& reduction, const Run& run, Index step, Index mask_step, Index n,
                  std::byte* to, Index to_step) {
    Block block;
    alignas(64) std::byte gathered[block_width * largest_element];
    Flag flags[block_width];
    reduction.begin(block, n);
    const bool gather = step != run.element;
    const std::byte* at = run.at;
    const std::byte* mask = run.mask;
    for (Index k = 0; k < run.n; ++k) {
        const std::byte* x = at;
        if (gather) {
            copy_run(gathered, run.element, at, step, n, run.element);
            x = gathered;
        }
        if (mask != nullptr) {
            load_flags(flags, mask, mask_step, n, run.mask_size, run.truth);
            mask += run.mask_stride;
        }
        reduction.step(block, x, run.mask != nullptr ? flags : nullptr, n, k);
        at += run.stride;
    }
    reduction.end(block, n, run, step, mask_step, to, to_step);
}

}  // namespace

void reduce_along(const Reduction& reduction, const View& array, const Mask* mask, int dim,
                  const View& result) {
    Run run(array.base, array.dims[dim].stride, array.dims[dim].extent, array.element);
    if (mask != nullptr) {
        run.mask = mask->view.base;
        run.mask_stride = mask->view.dims[dim].stride;
        run.mask_size = mask->view.element;
        run.truth = mask->truth;
    }
    // The results of n runs that begin with `here`, some steps of the array and the mask apart.
    const auto reduce = [&](Run& here, Index step, Index mask_step, Index n, std::byte* to,
                            Index to_step) {
        const bool across = n > 1 && n * run.n > few_elements &&
                            std::abs(step) < std::abs(run.stride) && run.n < INT32_MAX &&
                            reduction.side_by_side();
        if (!across && mask == nullptr && n > 1 && reduction.several(here, step, to, to_step, n))
            return;
        const Index together = across ? block_width : 1;
        for (Index first = 0; first < n; first += together) {
            if (across) {
                reduce_block(reduction, here, step, mask_step, std::min(block_width, n - first), to,
                             to_step);
            } else {
                reduction.one(here, to);
            }
            here.move(together * step, together * mask_step);
            to += together * to_step;
        }
    };
    if (array.rank == 2) {
        const Dimension& other = array.dims[1 - dim];
        return reduce(run, other.stride, mask != nullptr ? mask->view.dims[1 - dim].stride : 0,
                      other.extent, result.base, result.dims[0].stride);
    }

    const View outer = without(array, dim);
    const View outer_mask = mask != nullptr ? without(mask->view, dim) : outer;
    Loops<3> loops;
    for (int d = 0; d < outer.rank; ++d)
        loops.add(outer.dims[d].extent,
                  {outer.dims[d].stride, result.dims[d].stride, outer_mask.dims[d].stride});
    loops.finish();
    loops.nearest_first(0);
    std::byte* const mask_base = mask != nullptr ? mask->view.base : array.base;
    walk(loops, {array.base, result.base, mask_base}, [&](std::array<std::byte*, 3> at, Index n) {
        Run here = run;
        here.at = at[0];
        if (mask != nullptr) here.mask = at[2];
        const Index* const step = loops.stride[0];
        reduce(here, step[0], step[2], n, at[1], step[1]);
    });
}

}  // namespace tarn::arrays
