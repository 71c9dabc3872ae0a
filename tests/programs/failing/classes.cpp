//> report: in Grid<double>::fail(int), classes.cpp:11
//> report: called by inner, classes.cpp:18
//> report: called by main, classes.cpp:24
//> not: tarnlibc
//> not: _start
#include <tarn/failure.h>

template <class Number>
struct Grid {
    Number cells[4];
    [[gnu::noinline]] void fail(int number) { C_FAIL_h(&number); }
};
template struct Grid<double>;

namespace {
[[gnu::noinline]] void inner(int number, Grid<double>& grid) {
    grid.cells[0] += 1;
    grid.fail(number);
}
}  // namespace

int main(int count, char**) {
    Grid<double> grid{};
    inner(count + 1, grid);
}
