#include "intrinsics/arrays/along.h"

namespace tarn::arrays {
namespace {

constexpr Index largest_element = 32;
// With so few rows the blocks cost more than they gain.
constexpr Index few_rows = 64;
// And with so few elements, the more where vectors do little for them.
constexpr Index few_elements = 256;
constexpr Index few_awkward_elements = 8192;

// n runs of `run.n` elements, all in step; each is a result.
void reduce_block(const Reduction& reduction, const Rows& rows, Index n) {
    Block block;
    alignas(64) std::byte gathered[block_width * largest_element];
    Flag flags[block_width];
    const Run& run = rows.first;
    reduction.begin(block, n);
    const bool gather = rows.step != run.element;
    const std::byte* at = run.at;
    const std::byte* mask = run.mask;
    for (Index k = 0; k < run.n; ++k) {
        const std::byte* x = at;
        if (gather) {
            copy_run(gathered, run.element, at, rows.step, n, run.element);
            x = gathered;
        }
        if (mask != nullptr) {
            load_flags(flags, mask, rows.mask_step, n, run.mask_size, run.truth);
            mask += run.mask_stride;
        }
        reduction.step(block, x, run.mask != nullptr ? flags : nullptr, n, k);
        at += run.stride;
    }
    reduction.end(block, n, run, rows.step, rows.mask_step, rows.to, rows.to_step);
}

[[gnu::noinline]] void reduce_blocks(const Reduction& reduction, Rows rows) {
    for (Index left = rows.n; left > 0; left -= block_width) {
        reduce_block(reduction, rows, std::min(block_width, left));
        rows.first.move(block_width * rows.step, block_width * rows.mask_step);
        rows.to += block_width * rows.to_step;
    }
}

}  // namespace

void reduce_rows(const Reduction& reduction, const Rows& rows) {
    const Run& run = rows.first;
    const bool smooth = rows.step == run.element && run.element <= 8 && run.mask == nullptr;
    const Index few = smooth ? few_elements : few_awkward_elements;
    const bool across = rows.n >= few_rows && rows.n * run.n > few &&
                        std::abs(rows.step) < std::abs(run.stride) && run.n < INT32_MAX &&
                        reduction.side_by_side();
    if (across) return reduce_blocks(reduction, rows);
    reduction.rows(rows);
}

void reduce_loops(const Reduction& reduction, Rows& rows, Loops<3>& loops) {
    // Where everything is near, the longest loop has the rows.
    constexpr Index near_elements = 2048;
    if (loops.rank == 2 && loops.extent[0] * loops.extent[1] * rows.first.n <= near_elements) {
        if (loops.extent[0] < loops.extent[1]) {
            std::swap(loops.extent[0], loops.extent[1]);
            std::swap(loops.stride[0], loops.stride[1]);
        }
    } else {
        loops.nearest_first(0);
    }
    rows.step = loops.stride[0][0];
    rows.to_step = loops.stride[0][1];
    rows.mask_step = loops.stride[0][2];
    rows.n = loops.extent[0];
    if (loops.rank == 1) {
        if (!loops.empty) reduce_rows(reduction, rows);
        return;
    }
    Run& run = rows.first;
    const bool masked = run.mask != nullptr;
    auto* const at = const_cast<std::byte*>(run.at);
    walk(loops, {at, rows.to, masked ? const_cast<std::byte*>(run.mask) : at},
         [&](const std::array<std::byte*, 3>& here, Index) {
             run.at = here[0];
             if (masked) run.mask = here[2];
             rows.to = here[1];
             reduce_rows(reduction, rows);
         });
}

void reduce_along(const Reduction& reduction, const View& array, const Mask* mask, int dim,
                  const View& result) {
    Rows rows;
    Run& run = rows.first;
    run.at = array.base;
    run.stride = array.dims[dim].stride;
    run.n = array.dims[dim].extent;
    run.element = array.element;
    rows.to = result.base;
    if (mask != nullptr) {
        run.mask = mask->view.base;
        run.mask_stride = mask->view.dims[dim].stride;
        run.mask_size = mask->view.element;
        run.truth = mask->truth;
    }
    const View& second = mask != nullptr ? mask->view : array;
    Loops<3> loops;
    for (int d = 0, r = 0; d < array.rank; ++d) {
        if (d == dim) continue;
        loops.add(array.dims[d].extent,
                  {array.dims[d].stride, result.dims[r++].stride, second.dims[d].stride});
    }
    loops.finish();
    reduce_loops(reduction, rows, loops);
}

}  // namespace tarn::arrays
