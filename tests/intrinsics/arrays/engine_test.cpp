// The array engines against plain loops, at lengths around the edges of their chunks and blocks.
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "intrinsics/arrays/extremes.h"
#include "intrinsics/arrays/find.h"
#include "intrinsics/arrays/fold.h"
#include "intrinsics/arrays/logical.h"
#include "intrinsics/arrays/transform.h"

namespace {

using namespace tarn::arrays;

// A section of a matrix that is larger: every `stride`th element of the rows, perhaps backwards.
template <class T>
struct Section {
    std::vector<T> elements;
    View view;

    Section(Index rows, Index columns, Index stride, bool backwards)
        : elements(static_cast<std::size_t>(std::max<Index>(1, rows * stride * columns))) {
        view.base = reinterpret_cast<std::byte*>(elements.data());
        view.element = sizeof(T);
        view.rank = 2;
        view.dims[0] = {rows, stride * static_cast<Index>(sizeof(T))};
        view.dims[1] = {columns, rows * stride * static_cast<Index>(sizeof(T))};
        if (backwards) view = reversed(view);
    }
    T& at(Index i, Index j) {
        return *reinterpret_cast<T*>(view.base + i * view.dims[0].stride + j * view.dims[1].stride);
    }
};

// One draw of everything: an array with few different values, a mask, room for results.
struct Case {
    Index rows, columns;
    Section<double> array;
    Section<std::int32_t> mask;
    Mask with;
    const Mask* chosen;

    Case(Index m, Index n, std::mt19937& random)
        : rows(m),
          columns(n),
          array(m, n, 1 + random() % 3, random() % 2 != 0),
          mask(m, n, 1 + random() % 3, random() % 2 != 0),
          with{mask.view, Truth::low_byte},
          chosen(random() % 3 != 0 ? &with : nullptr) {
        const unsigned density = random() % 4;
        for (double& e : array.elements) e = static_cast<double>(random() % 50) - 25;
        for (std::int32_t& e : mask.elements) e = random() % 4 < density ? 1 : 0x100;
    }
    bool counts(Index i, Index j) { return chosen == nullptr || (mask.at(i, j) & 0xFF) != 0; }
    bool counts_along(int dim, Index k, Index other) {
        return dim == 0 ? counts(k, other) : counts(other, k);
    }
    double along(int dim, Index k, Index other) {
        return dim == 0 ? array.at(k, other) : array.at(other, k);
    }
};

template <class T>
std::vector<T> reduced(const Reduction& reduction, Case& c, int dim) {
    const Index n = dim == 0 ? c.columns : c.rows;
    std::vector<T> results(static_cast<std::size_t>(n));
    View result;
    result.base = reinterpret_cast<std::byte*>(results.data());
    result.element = sizeof(T);
    result.rank = 1;
    result.dims[0] = {n, sizeof(T)};
    reduce_along(reduction, c.array.view, c.chosen, dim, result);
    return results;
}

constexpr Index sizes[] = {0, 1, 2, 3, 5, 63, 64, 65, 511, 512, 513, 1030, 2100};

template <class Check>
void for_cases(Check&& check) {
    std::mt19937 random(5);
    for (const Index rows : sizes) {
        for (const Index columns : {Index{1}, Index{4}, Index{600}}) {
            if (rows * columns > 200000) continue;
            Case c(rows, columns, random);
            SCOPED_TRACE(testing::Message() << rows << " x " << columns);
            check(c, random);
        }
    }
}

TEST(Engine, ReductionsAlongEitherDimension) {
    for_cases([](Case& c, std::mt19937&) {
        for (const int dim : {0, 1}) {
            const Index n = dim == 0 ? c.rows : c.columns;
            const auto sums = reduced<double>(Fold<Add, double>(), c, dim);
            const auto largest = reduced<double>(Extreme<double, true, true>(), c, dim);
            const auto first = reduced<std::int64_t>(ExtremePlace<double, false>(false, 8), c, dim);
            const auto last = reduced<std::int64_t>(ExtremePlace<double, true>(true, 8), c, dim);
            const auto found =
                reduced<std::int64_t>(MatchPlace<Equal<double>>({7.0}, false, 8), c, dim);
            for (std::size_t r = 0; r < sums.size(); ++r) {
                const auto other = static_cast<Index>(r);
                double sum = 0;
                double most = smallest_finite<double>();
                Index least_at = 0;
                Index most_at = 0;
                Index seven_at = 0;
                for (Index k = 0; k < n; ++k) {
                    if (!c.counts_along(dim, k, other)) continue;
                    const double x = c.along(dim, k, other);
                    sum += x;
                    most = std::max(most, x);
                    if (least_at == 0 || x < c.along(dim, least_at - 1, other)) least_at = k + 1;
                    if (most_at == 0 || x >= c.along(dim, most_at - 1, other)) most_at = k + 1;
                    if (x == 7 && seven_at == 0) seven_at = k + 1;
                }
                ASSERT_EQ(sums[r], sum) << "dimension " << dim << ", result " << r;
                ASSERT_EQ(largest[r], most);
                ASSERT_EQ(first[r], least_at);
                ASSERT_EQ(last[r], most_at);
                ASSERT_EQ(found[r], seven_at);
            }
        }
    });
}

TEST(Engine, PlacesInWholeArrays) {
    for_cases([](Case& c, std::mt19937& random) {
        const bool back = random() % 2 != 0;
        Index best = -1;
        Index seven = -1;
        for (Index p = 0; p < c.rows * c.columns; ++p) {
            const Index i = p % c.rows;
            const Index j = p / c.rows;
            if (!c.counts(i, j)) continue;
            const double x = c.array.at(i, j);
            const double old = best < 0 ? 0 : c.array.at(best % c.rows, best / c.rows);
            if (best < 0 || x > old || (back && x == old)) best = p;
            if (x == 7 && (back || seven < 0)) seven = p;
        }
        EXPECT_EQ((place_of_extreme<double, true>(c.array.view, c.chosen,
                                                  worst_value<double, true>(), back)),
                  best);
        EXPECT_EQ(place_of_match(Equal<double>{7}, c.array.view, c.chosen, back), seven);
    });
}

TEST(Engine, CountsPacksAndUnpacks) {
    for_cases([](Case& c, std::mt19937&) {
        std::vector<double> chosen;
        for (Index j = 0; j < c.columns; ++j)
            for (Index i = 0; i < c.rows; ++i)
                if ((c.mask.at(i, j) & 0xFF) != 0) chosen.push_back(c.array.at(i, j));
        const auto count = static_cast<Index>(chosen.size());
        EXPECT_EQ(count_true(c.with), count);

        // Room for exactly what is chosen, with guards behind it.
        std::vector<double> packed(chosen.size() + 1, 99.0);
        auto* const to = reinterpret_cast<std::byte*>(packed.data());
        EXPECT_EQ(pack(to, 8, count, c.array.view, c.with), count);
        EXPECT_EQ(packed.back(), 99.0);
        packed.pop_back();
        EXPECT_EQ(packed, chosen);
        if (count > 0) {
            EXPECT_EQ(pack(to, 8, count - 1, c.array.view, c.with), count);
        }

        Section<double> unpacked(c.rows, c.columns, 1, false);
        View minus_one = unpacked.view;
        double field = -1;
        minus_one.base = reinterpret_cast<std::byte*>(&field);
        minus_one.dims[0].stride = minus_one.dims[1].stride = 0;
        const auto* const vector = reinterpret_cast<const std::byte*>(chosen.data());
        EXPECT_TRUE(unpack(unpacked.view, vector, 8, count, c.with, minus_one));
        std::size_t next = 0;
        for (Index j = 0; j < c.columns; ++j)
            for (Index i = 0; i < c.rows; ++i)
                ASSERT_EQ(unpacked.at(i, j), (c.mask.at(i, j) & 0xFF) != 0 ? chosen[next++] : -1);
        if (count > 0) {
            EXPECT_FALSE(unpack(unpacked.view, vector, 8, count - 1, c.with, minus_one));
        }
    });
}

// Nothing is stored of elements without length, which are chosen, counted and shifted all the same.
TEST(Engine, ElementsOfNoLength) {
    Section<std::int32_t> mask(3, 2, 1, false);
    std::fill(mask.elements.begin(), mask.elements.end(), 1);
    View array = mask.view;
    array.element = array.dims[0].stride = array.dims[1].stride = 0;
    std::byte guard{99};
    EXPECT_EQ(pack(&guard, 0, 6, array, {mask.view}), 6);
    EXPECT_EQ(pack(&guard, 0, 5, array, {mask.view}), 6);
    View to = array;
    to.base = &guard;
    EXPECT_TRUE(unpack(to, array.base, 0, 6, {mask.view}, array));
    EXPECT_FALSE(unpack(to, array.base, 0, 5, {mask.view}, array));
    const std::int32_t one = 1;
    circular_shift(to, array, 1, reinterpret_cast<const std::byte*>(&one), sizeof one);
    end_off_shift(to, array, 0, -2, without(array, 0));
    EXPECT_EQ(guard, std::byte{99});
}

TEST(Engine, CopiesInAnyDirection) {
    for_cases([](Case& c, std::mt19937&) {
        Section<double> turned(c.columns, c.rows, 1, false);
        View from = c.array.view;
        std::swap(from.dims[0], from.dims[1]);
        copy(turned.view, from);
        for (Index j = 0; j < c.columns; ++j)
            for (Index i = 0; i < c.rows; ++i) ASSERT_EQ(turned.at(j, i), c.array.at(i, j));
    });
}

TEST(Engine, LogicalsAlongEitherDimension) {
    constexpr LogicalReduction all_of[] = {LogicalReduction::count, LogicalReduction::any,
                                           LogicalReduction::all, LogicalReduction::parity};
    for_cases([&](Case& c, std::mt19937& random) {
        // Few rows that aren't all of one kind, so that searches go on to the end.
        if (random() % 2 == 0) {
            const std::int32_t mostly = random() % 2 != 0 ? 1 : 0;
            for (std::int32_t& e : c.mask.elements) e = random() % 800 == 0 ? 1 - mostly : mostly;
        }
        for (const Truth truth : {Truth::low_byte, Truth::byte_is_one, Truth::whole}) {
            const Mask mask{c.mask.view, truth};
            for (const int dim : {0, 1}) {
                const Index n = dim == 0 ? c.rows : c.columns;
                const Index others = dim == 0 ? c.columns : c.rows;
                for (const LogicalReduction what : all_of) {
                    std::vector<std::int32_t> results(static_cast<std::size_t>(others), 77);
                    View result;
                    result.base = reinterpret_cast<std::byte*>(results.data());
                    result.element = 4;
                    result.rank = 1;
                    result.dims[0] = {others, 4};
                    reduce_logical(what, mask, dim, result);
                    for (Index r = 0; r < others; ++r) {
                        Index count = 0;
                        for (Index k = 0; k < n; ++k) {
                            const auto e = static_cast<std::uint32_t>(dim == 0 ? c.mask.at(k, r)
                                                                               : c.mask.at(r, k));
                            count += truth == Truth::whole      ? e != 0
                                     : truth == Truth::low_byte ? (e & 0xFF) != 0
                                                                : (e & 0xFF) == 1;
                        }
                        const Index wanted = what == LogicalReduction::count ? count
                                             : what == LogicalReduction::any ? count > 0
                                             : what == LogicalReduction::all ? count == n
                                                                             : count & 1;
                        ASSERT_EQ(results[static_cast<std::size_t>(r)], wanted)
                            << "reduction " << static_cast<int>(what) << ", dimension " << dim
                            << ", result " << r << ", truth " << static_cast<int>(truth);
                    }
                }
            }
        }
    });
}

// Elements of every size, dense and not, that are chosen by flags or repeated.
template <class T>
class Elements : public testing::Test {};
struct Odd {
    std::uint8_t bytes[12];
    bool operator==(const Odd&) const = default;
};
using ElementTypes = testing::Types<std::uint8_t, std::uint16_t, std::uint32_t, std::uint64_t,
                                    unsigned __int128, Odd>;
TYPED_TEST_SUITE(Elements, ElementTypes);

TYPED_TEST(Elements, PackUnpackAndSpread) {
    using T = TypeParam;
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const Index n = sizes[random() % std::size(sizes)];
        const Index columns = 1 + static_cast<Index>(random() % 3);
        Section<T> array(n, columns, 1 + random() % 3, random() % 3 == 0);
        Section<T> field(n, columns, 1 + random() % 2, false);
        Section<std::int32_t> mask(n, columns, 1 + random() % 3, random() % 3 == 0);
        const unsigned density = random() % 9;
        for (T& e : array.elements) std::memset(&e, static_cast<int>(random()), sizeof e);
        for (T& e : field.elements) std::memset(&e, static_cast<int>(random()), sizeof e);
        for (auto& e : mask.elements) e = random() % 8 < density ? 1 : 0;
        SCOPED_TRACE(testing::Message() << n << " x " << columns);

        std::vector<T> chosen;
        for (Index j = 0; j < columns; ++j)
            for (Index i = 0; i < n; ++i)
                if (mask.at(i, j) != 0) chosen.push_back(array.at(i, j));
        const auto count = static_cast<Index>(chosen.size());
        constexpr auto size = static_cast<Index>(sizeof(T));
        const Index gap = 1 + static_cast<Index>(random() % 2);
        std::vector<T> packed(chosen.size() * static_cast<std::size_t>(gap) + 1);
        const T guard = packed.back();
        const Mask with{mask.view, Truth::low_byte};
        ASSERT_EQ(
            pack(reinterpret_cast<std::byte*>(packed.data()), gap * size, count, array.view, with),
            count);
        for (std::size_t i = 0; i < chosen.size(); ++i)
            ASSERT_TRUE(packed[i * static_cast<std::size_t>(gap)] == chosen[i]) << i;
        ASSERT_TRUE(packed.back() == guard);

        Section<T> to(n, columns, 1 + random() % 2, false);
        ASSERT_TRUE(unpack(to.view, reinterpret_cast<const std::byte*>(packed.data()), gap * size,
                           count, with, field.view));
        std::size_t next = 0;
        for (Index j = 0; j < columns; ++j)
            for (Index i = 0; i < n; ++i)
                ASSERT_TRUE(to.at(i, j) == (mask.at(i, j) != 0 ? chosen[next++] : field.at(i, j)));

        // A new first dimension, and a new last.
        const Index copies = static_cast<Index>(random() % 12);
        for (const int dim : {0, 2}) {
            std::vector<T> room(static_cast<std::size_t>(n * columns * copies + 1));
            View view;
            view.base = reinterpret_cast<std::byte*>(room.data());
            view.element = size;
            view.rank = 3;
            view.dims[dim].extent = copies;
            view.dims[dim == 0 ? 1 : 0].extent = n;
            view.dims[dim == 0 ? 2 : 1].extent = columns;
            make_contiguous(view);
            spread(view, array.view, dim);
            for (Index j = 0; j < columns; ++j)
                for (Index i = 0; i < n; ++i)
                    for (Index k = 0; k < copies; ++k)
                        ASSERT_TRUE(
                            room[static_cast<std::size_t>(dim == 0 ? k + copies * (i + n * j)
                                                                   : i + n * (j + columns * k))] ==
                            array.at(i, j));
        }
    }
}

}  // namespace
