// What failing costs. A repaired underflow, beside a signal whose handler does nothing but step on:
// the system's part of it. A quotient by zero is the same exception to the processor.
#include <benchmark/benchmark.h>
#include <cfenv>
#include <cfloat>
#include <csignal>
#include <pthread.h>
#include <ucontext.h>

#include "tarn/float.h"
#include "traceback/registers.h"
#include "traceback/traceback.h"

namespace {

namespace traceback = tarn::traceback;

void step_on(int, siginfo_t*, void* context) {
    static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP] += 4;  // divsd
}

void signal_alone(benchmark::State& state) {
    struct sigaction action = {};
    struct sigaction before;
    action.sa_sigaction = step_on;
    action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_ONSTACK;
    sigaction(SIGFPE, &action, &before);
    feenableexcept(FE_DIVBYZERO);
    double one = 1;
    double zero = 0;
    for ([[maybe_unused]] auto each : state) {
        __asm__ volatile("divsd %1, %0" : "+x"(one) : "x"(zero));
        // What was raised stays, or each one after it would be masked in place of raised.
        __builtin_ia32_ldmxcsr(__builtin_ia32_stmxcsr() & ~0x3FU);
    }
    fedisableexcept(FE_DIVBYZERO);
    sigaction(SIGFPE, &before, nullptr);
}
BENCHMARK(signal_alone);

template <class Real>
void repaired_underflow(benchmark::State& state) {
    __unmask_underflow();
    volatile Real small = sizeof(Real) == sizeof(double) ? Real{DBL_MIN} : Real{LDBL_MIN};
    [[maybe_unused]] volatile Real product = 0;
    for ([[maybe_unused]] auto each : state) product = small * Real{0.5};
    __mask_underflow();
    state.counters["repaired"] = __get_underflow_count();
}
BENCHMARK(repaired_underflow<double>);
BENCHMARK(repaired_underflow<long double>);

// Recursion that deep, walked from its end and put into lines: 1e4 frames are to take less than 50
// ms, 1e6 less than 2 s.
[[gnu::noinline, gnu::optimize("no-optimize-sibling-calls")]] std::size_t descend(
    benchmark::State& state, std::int64_t levels) {
    if (levels > 0) return descend(state, levels - 1) + 1;
    std::size_t shown = 0;
    for ([[maybe_unused]] auto each : state)
        shown = traceback::console_text(traceback::registers_here(), traceback::Place::call).size();
    return shown;
}

void traceback_of(benchmark::State& state) {
    struct Work {
        benchmark::State& state;
        std::size_t result = 0;
    } work{state};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{512} << 20);
    pthread_t thread{};
    pthread_create(
        &thread, &attributes,
        [](void* data) -> void* {
            auto* const given = static_cast<Work*>(data);
            given->result = descend(given->state, given->state.range(0));
            return nullptr;
        },
        &work);
    pthread_join(thread, nullptr);
    benchmark::DoNotOptimize(work.result);
}
BENCHMARK(traceback_of)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
