// Loops over several arrays of one shape at once.
#pragma once

#include <array>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// The dimensions that N arrays share, as few as their strides allow: neighbours that run on without
// a gap in all of them become one loop, and loops of one turn are left out.
template <int N>
struct Loops {
    int rank = 0;
    bool empty = false;
    Index extent[max_rank + 1];
    Index stride[max_rank + 1][N];

    void add(Index n, const std::array<Index, N>& steps) {
        if (n <= 0) empty = true;
        if (n == 1) return;
        if (rank > 0) {
            bool runs_on = true;
            for (int i = 0; i < N; ++i)
                runs_on &= stride[rank - 1][i] * extent[rank - 1] == steps[i];
            if (runs_on) {
                extent[rank - 1] *= n;
                return;
            }
        }
        extent[rank] = n;
        for (int i = 0; i < N; ++i) stride[rank][i] = steps[i];
        ++rank;
    }

    // There is always a first loop to run.
    void finish() {
        if (rank > 0) return;
        extent[0] = 1;
        for (int i = 0; i < N; ++i) stride[0][i] = 0;
        rank = 1;
    }

    // Puts the loops with the shortest steps in array `which` inside. Only where the order in which
    // elements are met is of no account.
    void nearest_first(int which) {
        if (rank < 2) return;
        auto distance = [&](int d) { return std::abs(stride[d][which]); };
        bool sorted = true;
        for (int d = 1; d < rank; ++d) sorted &= distance(d) >= distance(d - 1);
        if (sorted) return;  // and already joined
        for (int d = 1; d < rank; ++d) {
            for (int e = d; e > 0 && distance(e) < distance(e - 1); --e) {
                std::swap(extent[e], extent[e - 1]);
                std::swap(stride[e], stride[e - 1]);
            }
        }
        // What runs on without a gap now. `add` writes no further than it has been read.
        const int loops = rank;
        rank = 0;
        for (int d = 0; d < loops; ++d) {
            std::array<Index, N> steps;
            for (int i = 0; i < N; ++i) steps[i] = stride[d][i];
            add(extent[d], steps);
        }
        finish();
    }
};

// Calls run(addresses, count) for each turn of the outer loops; the run itself goes along loop 0.
// A run that returns bool says whether to go on.
template <int N, class Run>
void walk(const Loops<N>& loops, std::type_identity_t<std::array<std::byte*, N>> at, Run&& run) {
    if (loops.empty) return;
    Index turn[max_rank + 1];
    for (int d = 1; d < loops.rank; ++d) turn[d] = 0;
    for (;;) {
        if constexpr (std::is_void_v<decltype(run(at, loops.extent[0]))>) {
            run(at, loops.extent[0]);
        } else if (!run(at, loops.extent[0])) {
            return;
        }
        int d = 1;
        for (; d < loops.rank; ++d) {
            for (int i = 0; i < N; ++i) at[i] += loops.stride[d][i];
            if (++turn[d] < loops.extent[d]) break;
            for (int i = 0; i < N; ++i) at[i] -= loops.stride[d][i] * loops.extent[d];
            turn[d] = 0;
        }
        if (d >= loops.rank) return;
    }
}

template <class... Views>
auto loops_over(const View& first, const Views&... others) {
    Loops<1 + sizeof...(others)> loops;
    for (int d = 0; d < first.rank; ++d)
        loops.add(first.dims[d].extent, {first.dims[d].stride, others.dims[d].stride...});
    loops.finish();
    return loops;
}

}  // namespace tarn::arrays
