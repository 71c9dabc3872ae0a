// An exception out of a call-back comes out of the call that runs the window, and what follows works.
#include <cstdio>
#include <stdexcept>

#include "tarn/winio.hpp"

namespace {
int n = 1;

int fail() {
    throw std::runtime_error("out of the call-back");
}
int add() {
    ++n;
    return 1;
}
}  // namespace

int main() {
    using tarn::winio;
    try {
        winio("%ca[First]%rd%^bt[&Fail]", &n, fail);
        std::puts("not reached");
    } catch (const std::runtime_error& error) {
        std::printf("caught: %s\n", error.what());
    }
    const int result = winio("%ca[Second]%rd%^bt[&Add]%^bt[&Lambda]%bt[&Done]", &n, add, [] {
        n *= 10;
        return 1;
    });
    std::printf("second %d, n %d\n", result, n);
}
