#include "intrinsics/arrays/logical.h"

#include "intrinsics/arrays/along.h"
#include "intrinsics/arrays/dispatch.h"

namespace tarn::arrays {
namespace {

struct CountAcross {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(std::uint32_t* count, const Flag* flags,
                                                  Index n) {
        for (Index i = 0; i < n; ++i) count[i] += flags[i];
    }
};

// The array is its own mask: its flags are what is reduced.
struct Logical final : Reduction {
    struct State {
        std::uint32_t count[block_width];
        Index length;
    };
    LogicalReduction what;
    Index result_size;

    Logical(LogicalReduction w, Index size) : what(w), result_size(size) {}

    std::int64_t verdict(Index true_ones, Index n) const {
        switch (what) {
            case LogicalReduction::count:
                return true_ones;
            case LogicalReduction::any:
                return true_ones > 0;
            case LogicalReduction::all:
                return true_ones == n;
            case LogicalReduction::parity:
                return true_ones & 1;
        }
        return 0;
    }
    void one(const Run& run, std::byte* to) const override {
        constexpr Index chunk = 4096;
        Index true_ones = 0;
        Index seen = 0;
        while (seen < run.n) {
            const Index m = std::min(chunk, run.n - seen);
            true_ones += count_true(run.mask + seen * run.mask_stride, run.mask_stride, m,
                                    run.mask_size, run.truth);
            seen += m;
            if (what == LogicalReduction::any && true_ones > 0) break;
            if (what == LogicalReduction::all && true_ones < seen) break;
        }
        store_integer(to, result_size, verdict(true_ones, seen));
    }
    bool flags_only() const override { return true; }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().count, n, 0);
        block.as<State>().length = 0;
    }
    void step(Block& block, const std::byte*, const Flag* flags, Index n, Index) const override {
        dispatch<CountAcross>(block.as<State>().count + 0, flags, n);
        ++block.as<State>().length;
    }
    bool decided(Block& block, Index n) const override {
        const State& state = block.as<State>();
        if (what != LogicalReduction::any && what != LogicalReduction::all) return false;
        // Runs that may still change: without a true element, or without a false one.
        const auto open_at =
            static_cast<std::uint32_t>(what == LogicalReduction::any ? 0 : state.length);
        Index open = 0;
        for (Index i = 0; i < n; ++i) open += state.count[i] == open_at;
        return open == 0;
    }
    void end(Block& block, Index n, Run, Index, Index, std::byte* to,
             Index to_step) const override {
        const State& state = block.as<State>();
        for (Index i = 0; i < n; ++i)
            store_integer(to + i * to_step, result_size, verdict(state.count[i], state.length));
    }
};

}  // namespace

void reduce_logical(LogicalReduction what, const Mask& array, int dim, const View& result) {
    reduce_along(Logical(what, result.element), array.view, &array, dim, result);
}

}  // namespace tarn::arrays
