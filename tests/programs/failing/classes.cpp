//> runs: failure virtual lambda thrown vector thread early deleted template
//> failure: in Grid<double>::fail(int), @fail
//> failure: called by (anonymous namespace)::inner(int, Grid<double>&), @inner
//> virtual: Access violation:
//> virtual: in Circle::area() const, @area
//> virtual: called by (anonymous namespace)::total(Shape const*), @total
//> lambda: in *, @lambda
//> thrown: Program aborted.
//> thrown: in (anonymous namespace)::throwing(int), @throw
//> vector: in (anonymous namespace)::outside(*), @outside
//> thread: in (anonymous namespace)::on_thread(int*), @thread
//> not: std::__invoke
//> not: std::thread
//> early: in Early::Early(), @early
//> deleted: Program aborted.
//> deleted: in (anonymous namespace)::twice(int*), @twice
//> template: Integer divide by zero at address *
//> template: in int quotient<int>(int, int), @quotient
//> template: called by long quotient<long>(long, long), @narrow
//> failure: called by main, classes.cpp:*
//> virtual: called by main, classes.cpp:*
//> lambda: called by main, classes.cpp:*
//> thrown: called by main, classes.cpp:*
//> vector: called by main, classes.cpp:*
//> deleted: called by main, classes.cpp:*
//> template: called by main, classes.cpp:*
//> not: tarnlibc
//> not: _start
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <tarn/failure.h>
#include <thread>
#include <vector>

#define NEVER_INLINED [[gnu::noinline, gnu::noclone]]

template <class Number>
struct Grid {
    Number cells[4];
    NEVER_INLINED void fail(int number) {
        C_FAIL_h(&number);  // @fail
        cells[0] = 0;
    }
};
template struct Grid<double>;

struct Shape {
    virtual ~Shape() = default;
    virtual double area() const = 0;
};
struct Circle : Shape {
    const volatile double* radius = nullptr;
    NEVER_INLINED double area() const override {
        return *radius * 3;  // @area
    }
};

template <class Number>
NEVER_INLINED Number quotient(Number a, Number b);
template <>
NEVER_INLINED int quotient<int>(int a, int b) {
    return a / b;  // @quotient
}
template <>
NEVER_INLINED long quotient<long>(long a, long b) {
    return 1L + quotient<int>(static_cast<int>(a), static_cast<int>(b));  // @narrow
}

struct Early {
    volatile int* nowhere = nullptr;
    NEVER_INLINED Early() {
        const char* way = std::getenv("EARLY");
        if (way != nullptr) *nowhere = 1;  // @early
    }
};

namespace {
NEVER_INLINED void inner(int number, Grid<double>& grid) {
    grid.cells[0] += 1;
    grid.fail(number);  // @inner
    grid.cells[1] += 1;
}

NEVER_INLINED double total(const Shape* shape) {
    return shape->area() + 1;  // @total
}

NEVER_INLINED int throwing(int number) {
    if (number >= 0) throw std::runtime_error("nobody catches this");  // @throw
    return number;
}

NEVER_INLINED int outside(std::vector<int>& numbers, long place) {
    return numbers[static_cast<unsigned long>(place)] + 1;  // @outside
}

NEVER_INLINED void on_thread(int* volatile where) {
    *where = 1;  // @thread
}

NEVER_INLINED int twice(int* block) {
    delete block;
    __asm__ volatile("" : "+r"(block));
    delete block;  // @twice
    return 1;
}

volatile int sum = 0;
volatile int zero = 0;
}  // namespace

int main(int count, char** words) {
    const char* way = count > 1 ? words[1] : "";
    if (std::strcmp(way, "failure") == 0) {
        Grid<double> grid{};
        inner(count, grid);
    }
    if (std::strcmp(way, "virtual") == 0) sum = static_cast<int>(total(new Circle));
    if (std::strcmp(way, "lambda") == 0) {
        volatile int* volatile nowhere = nullptr;
        auto fall = [&] {
            *nowhere = count;  // @lambda
            return 1;
        };
        sum = fall() + 1;
    }
    if (std::strcmp(way, "thrown") == 0) sum = throwing(count);
    if (std::strcmp(way, "vector") == 0) {
        std::vector<int> numbers(4);
        sum = outside(numbers, 1L << 40);
    }
    if (std::strcmp(way, "thread") == 0) std::thread(on_thread, nullptr).join();
    if (std::strcmp(way, "early") == 0) {
        setenv("EARLY", "1", 1);
        const Early early;
    }
    if (std::strcmp(way, "deleted") == 0) sum = twice(new int(7));
    if (std::strcmp(way, "template") == 0) sum = static_cast<int>(quotient<long>(7, zero));
}
