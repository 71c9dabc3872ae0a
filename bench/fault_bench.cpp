// What a repaired underflow costs, beside a signal whose handler does nothing but step on: the
// system's part of it. A quotient by zero is the same exception to the processor.
#include <benchmark/benchmark.h>
#include <cfenv>
#include <cfloat>
#include <csignal>
#include <ucontext.h>

#include "tarn/float.h"

namespace {

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

}  // namespace

BENCHMARK_MAIN();
