// Products against plain loops, at sizes around the edges of tiles and blocks.
#include "intrinsics/matmul/multiply.h"

#include <array>
#include <atomic>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "frame/cores.h"
#include "intrinsics/matmul/tiles.h"
#include "platform/kernel/workers.h"

namespace {

using namespace tarn::matmul;

template <class T>
struct Part {
    using Type = T;
};
template <class T>
struct Part<Complex<T>> {
    using Type = T;
};

template <class T>
double distance(T a, T b) {
    return static_cast<double>(
        std::fabs(static_cast<long double>(a) - static_cast<long double>(b)));
}
template <class T>
double distance(Complex<T> a, Complex<T> b) {
    return distance(a.re, b.re) + distance(a.im, b.im);
}

template <class T>
T draw(std::mt19937& random) {
    std::uniform_real_distribution<double> real(-1, 1);
    if constexpr (tarn::arrays::is_complex<T>) {
        using P = typename Part<T>::Type;
        return {static_cast<P>(real(random)), static_cast<P>(real(random))};
    } else if constexpr (tarn::arrays::is_integer<T>) {
        return static_cast<T>(random());
    } else {
        return static_cast<T>(real(random));
    }
}

// A matrix inside storage that is larger, at some steps.
template <class T>
struct Stored {
    std::vector<T> elements;
    Matrix<T> matrix;

    Stored(Index rows, Index columns, bool by_rows, Index gap, bool backwards,
           std::mt19937& random) {
        const Index lead = (by_rows ? columns : rows) * gap + 3;
        elements.resize(static_cast<std::size_t>(lead * (by_rows ? rows : columns) + 1));
        for (T& e : elements) e = draw<T>(random);
        matrix = {elements.data(), rows, columns, by_rows ? lead : gap, by_rows ? gap : lead};
        if (backwards && rows > 0) {
            matrix.base += (rows - 1) * matrix.row_step;
            matrix.row_step = -matrix.row_step;
        }
    }
    Matrix<const T> read() const {
        return {matrix.base, matrix.rows, matrix.columns, matrix.row_step, matrix.column_step};
    }
};

template <class T>
class Products : public testing::Test {};
using Types = testing::Types<float, double, Complex<float>, Complex<double>, std::uint8_t,
                             std::uint16_t, std::uint32_t, std::uint64_t, long double>;
TYPED_TEST_SUITE(Products, Types);

TYPED_TEST(Products, EqualPlainLoops) {
    using T = TypeParam;
    using P = typename Part<T>::Type;
    std::mt19937 random(11);
    const Index sizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 17, 33, 65, 130, 300};
    const auto size = [&] { return sizes[random() % std::size(sizes)]; };
    for (int round = 0; round < 150; ++round) {
        const Index m = size();
        const Index k = round % 25 == 24 ? 0 : size();
        const Index n = m * k > 10000 ? size() % 10 + 1 : size();
        const bool odd = random() % 4 == 0;
        Stored<T> a(m, k, random() % 2 != 0, odd ? 2 : 1, random() % 5 == 0, random);
        Stored<T> b(k, n, random() % 2 != 0, odd ? 3 : 1, random() % 5 == 0, random);
        Stored<T> c(m, n, random() % 4 == 0, random() % 4 == 0 ? 2 : 1, random() % 5 == 0, random);
        const std::vector<T> before = c.elements;
        multiply<T>(a.read(), b.read(), c.matrix);
        double worst = 0;
        for (Index j = 0; j < n; ++j) {
            for (Index i = 0; i < m; ++i) {
                T sum{};
                for (Index p = 0; p < k; ++p) {
                    const T x = a.matrix.base[i * a.matrix.row_step + p * a.matrix.column_step];
                    const T y = b.matrix.base[p * b.matrix.row_step + j * b.matrix.column_step];
                    sum = static_cast<T>(sum + x * y);
                }
                T& made = c.matrix.base[i * c.matrix.row_step + j * c.matrix.column_step];
                worst = std::max(worst, distance(made, sum));
                made = before[static_cast<std::size_t>(&made - c.elements.data())];
            }
        }
        // Twice what n additions of products below 1 in magnitude can lose.
        double bound = 0;
        if constexpr (!tarn::arrays::is_integer<T>)
            bound = 4.0 * static_cast<double>(k + 1) * static_cast<double>(k + 1) *
                    static_cast<double>(std::numeric_limits<P>::epsilon());
        EXPECT_LE(worst, bound) << m << " x " << k << " x " << n;
        EXPECT_EQ(c.elements, before) << "something beside the product was written";
    }
}

// On any number of threads, by columns and by rows, and while other threads do the same.
TYPED_TEST(Products, AreTheSameOnSeveralThreads) {
    using T = TypeParam;
    std::mt19937 random(4);
    for (const auto [m, k, n] : {std::array<Index, 3>{300, 256, 301}, {2000, 300, 30}}) {
        Stored<T> a(m, k, false, 1, false, random);
        Stored<T> b(k, n, true, 1, false, random);
        Stored<T> alone(m, n, false, 1, false, random);
        Stored<T> shared[] = {alone, alone, alone};
        multiply<T>(a.read(), b.read(), alone.matrix);
        const std::int32_t before = tarn::frame::max_cores();
        tarn::frame::set_max_cores(2);
        std::vector<std::thread> threads;
        for (Stored<T>& c : shared) {
            c.matrix.base = c.elements.data();
            threads.emplace_back([&] { multiply<T>(a.read(), b.read(), c.matrix); });
        }
        for (std::thread& thread : threads) thread.join();
        for (const Stored<T>& c : shared)
            EXPECT_TRUE(c.elements == alone.elements) << m << " x " << k << " x " << n;
        tarn::frame::set_max_cores(before == 0 ? 1 : before);
    }
}

// A child has no helpers but may ask for some; and exceptions raised by helpers are the caller's.
TEST(Workers, ComeBackInAChildAndTellOfExceptions) {
    std::atomic<int> sum{0};
    const auto part = [](void* context, int index) {
        static_cast<std::atomic<int>*>(context)->fetch_add(index);
        volatile double zero = 0;
        if (index == 5) zero = 1 / zero;
    };
    const auto works = [&] {
        sum = 0;
        std::feclearexcept(FE_ALL_EXCEPT);
        tarn::platform::run_parts(100, 4, part, &sum);
        return sum == 4950 && std::fetestexcept(FE_DIVBYZERO) != 0;
    };
    EXPECT_TRUE(works());
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        _exit(works() ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(works());
}

// The widest tiles run on few machines; their code for any machine shows what they compute.
TEST(Tiles, OfTheWidestVectors) {
    using Wide = Tile<double, 64, 3, 8, true>;
    constexpr Index k = 5;
    std::vector<double> a(Wide::rows * k);
    std::vector<double> b(Wide::columns * k);
    for (std::size_t i = 0; i < a.size(); ++i) a[i] = static_cast<double>(i % 7) - 3;
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = static_cast<double>(i % 5) - 2;
    std::vector<double> c(Wide::rows * Wide::columns, 1.0);
    Sse2::run<Wide>(k, static_cast<const double*>(a.data()), Index{Wide::rows},
                    static_cast<const double*>(b.data()), Index{0}, Index{0}, c.data(),
                    Index{Wide::rows}, true);
    for (int j = 0; j < Wide::columns; ++j) {
        for (int i = 0; i < Wide::rows; ++i) {
            double sum = 1;
            for (Index p = 0; p < k; ++p)
                sum += a[static_cast<std::size_t>(p * Wide::rows + i)] *
                       b[static_cast<std::size_t>(p * Wide::columns + j)];
            EXPECT_EQ(c[static_cast<std::size_t>(j * Wide::rows + i)], sum);
        }
    }
}

}  // namespace
