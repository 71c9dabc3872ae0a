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
    const View outer = without(array, dim);
    const View outer_mask = mask != nullptr ? without(mask->view, dim) : outer;
    Loops<3> loops;
    for (int d = 0; d < outer.rank; ++d)
        loops.add(outer.dims[d].extent,
                  {outer.dims[d].stride, result.dims[d].stride, outer_mask.dims[d].stride});
    loops.finish();
    loops.nearest_first(0);

    Run run{array.base, array.dims[dim].stride, array.dims[dim].extent, array.element};
    if (mask != nullptr) {
        run.mask_stride = mask->view.dims[dim].stride;
        run.mask_size = mask->view.element;
        run.truth = mask->truth;
    }
    const Index* const step = loops.stride[0];
    const bool across = loops.extent[0] > 1 && loops.extent[0] * run.n > few_elements &&
                        std::abs(step[0]) < std::abs(run.stride) && run.n < INT32_MAX &&
                        reduction.side_by_side();
    std::byte* const mask_base = mask != nullptr ? mask->view.base : array.base;

    walk(loops, {array.base, result.base, mask_base}, [&](std::array<std::byte*, 3> at, Index n) {
        Run here = run;
        here.at = at[0];
        if (mask != nullptr) here.mask = at[2];
        if (!across && mask == nullptr && n > 1 &&
            reduction.several(here, step[0], at[1], step[1], n))
            return;
        for (Index first = 0; first < n;) {
            const Index m = across ? std::min(block_width, n - first) : 1;
            std::byte* const to = at[1] + first * step[1];
            if (across) {
                reduce_block(reduction, here, step[0], step[2], m, to, step[1]);
            } else {
                reduction.one(here, to);
            }
            here.at += m * step[0];
            if (mask != nullptr) here.mask += m * step[2];
            first += m;
        }
    });
}

}  // namespace tarn::arrays
