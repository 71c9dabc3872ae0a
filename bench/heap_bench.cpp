// Storage: system mode against the system's allocator, which it must cost next to nothing over, and
// the own heap with many blocks alive.
#include <cstdlib>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "storage/heap.h"
#include "tarn/storage.h"

namespace {

using Get = void* (*)(std::size_t);
using Release = void (*)(void*);

// A request and its release, of one size.
void pair(benchmark::State& state, Get get, Release release) {
    auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* block = get(size);
        benchmark::DoNotOptimize(block);
        release(block);
    }
}

// With many blocks of mixed sizes alive, releases one at random and requests another.
void churn(benchmark::State& state, Get get, Release release) {
    std::mt19937 random(1);
    auto some_size = [&] { return std::size_t{16} + random() % 240; };
    std::vector<void*> live(static_cast<std::size_t>(state.range(0)));
    for (void*& block : live) block = get(some_size());
    for (auto _ : state) {
        void*& block = live[random() % live.size()];
        release(block);
        block = get(some_size());
    }
    for (void* block : live) release(block);
}

tarn::storage::Heap own_heap;

void* own_get(std::size_t size) {
    return own_heap.get(size, 16);
}
void own_release(void* block) {
    own_heap.release(block);
}

BENCHMARK_CAPTURE(pair, system, std::malloc, std::free)->Arg(24)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(pair, tarn_malloc, tarn_malloc, tarn_free)->Arg(24)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(pair, own_heap, own_get, own_release)->Arg(24)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(churn, system, std::malloc, std::free)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(churn, tarn_malloc, tarn_malloc, tarn_free)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(churn, own_heap, own_get, own_release)->Arg(1000)->Arg(100000);

}  // namespace

int main(int argc, char** argv) {
    own_heap.start();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
