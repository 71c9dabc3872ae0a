// The native array routines, called as compiled code calls them.
#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tarn/arrays.h"

namespace {

using Extents = std::vector<std::int32_t>;
using Word = std::intptr_t;

constexpr Word no_argument = static_cast<Word>(0xF0F0F0F0F0F0F0F0u);

template <class T>
Word at(const T& value) {
    return reinterpret_cast<Word>(&value);
}
template <class T>
Word at(const std::vector<T>& values) {
    return reinterpret_cast<Word>(values.data());
}
Word routine(auto* entry) {
    return reinterpret_cast<Word>(entry);
}

// Calls an entry with any number of words, as code compiled for it does: the frame is found again
// when the stack pointer has moved. What the result holds is copied out before that.
struct Call {
    const Word* words;
    Word stack_words;
    Word entry;
    tarn_array_result* result;
    void* to;
    Word bytes;
};
__attribute__((noinline)) void run(const Call& call) {
    __asm__ volatile(
        "movq %%rsp, %%r12\n\t"
        "andq $-16, %%rsp\n\t"
        "subq $512, %%rsp\n\t"  // over what the compiler keeps below the stack pointer
        "movq 0(%%rbx), %%rax\n\t"
        "leaq 48(%%rax), %%rsi\n\t"
        "movq %%rsp, %%rdi\n\t"
        "movq 8(%%rbx), %%rcx\n\t"
        "rep movsq\n\t"
        "movq 0(%%rax), %%rdi\n\t"
        "movq 8(%%rax), %%rsi\n\t"
        "movq 16(%%rax), %%rdx\n\t"
        "movq 24(%%rax), %%rcx\n\t"
        "movq 32(%%rax), %%r8\n\t"
        "movq 40(%%rax), %%r9\n\t"
        "call *16(%%rbx)\n\t"
        "movq 24(%%rbx), %%rsi\n\t"
        "movq (%%rsi), %%rsi\n\t"
        "movq 32(%%rbx), %%rdi\n\t"
        "movq 40(%%rbx), %%rcx\n\t"
        "rep movsb\n\t"
        "movq %%r12, %%rsp\n\t"
        :
        : "b"(&call)
        : "rax", "rcx", "rdx", "rsi", "rdi", "r8", "r9", "r10", "r11", "r12", "memory", "cc");
}

// What a routine with the given words makes of a result; the result's address comes last.
// `made`: the routine makes the storage, otherwise it finds it.
template <class T>
std::vector<T> result_of(Word entry, std::vector<Word> words, const std::vector<Word>& extents,
                         bool made = true) {
    Word count = 1;
    for (const Word extent : extents) count *= extent;
    std::vector<T> values(static_cast<std::size_t>(count) + 1);
    tarn_array_result result = {};
    result.element_size = sizeof(T);
    std::vector<T> storage(values.size());
    if (!made) {
        result.base = storage.data();
        std::copy(extents.begin(), extents.end(), result.extent);
    }
    words.push_back(at(result));
    const auto stack = static_cast<Word>(words.size()) - 6;
    words.resize(std::max<std::size_t>(words.size(), 6));
    run({words.data(), std::max<Word>(stack, 0), entry, &result, values.data(),
         count * static_cast<Word>(sizeof(T))});
    for (std::size_t d = 0; d < extents.size(); ++d) EXPECT_EQ(result.extent[d], extents[d]) << d;
    values.pop_back();
    return values;
}

using Ints = std::vector<std::int32_t>;
constexpr std::int32_t int_size = 4;

// SUM and its kin with an optional mask of LOGICAL*4.
std::vector<std::int32_t> along(auto* entry, const Ints& array, const Extents& extents,
                                std::int32_t dim, const Ints* mask = nullptr, bool made = true) {
    const auto rank = static_cast<std::int32_t>(extents.size());
    std::vector<Word> shape;
    for (int d = 0; d < rank; ++d)
        if (d != dim - 1) shape.push_back(extents[static_cast<std::size_t>(d)]);
    return result_of<std::int32_t>(
        routine(entry),
        {at(rank), at(array), at(extents), mask != nullptr ? at(*mask) : no_argument, at(extents),
         at(int_size), at(dim)},
        shape, made);
}

const Ints three_by_two = {1, 2, 3, 40, 50, 60};

TEST(NativeReductions, GoAlongADimension) {
    for (const bool made : {true, false}) {
        EXPECT_EQ(along(SUMI4_h, three_by_two, {3, 2}, 1, nullptr, made), (Ints{6, 150}));
        EXPECT_EQ(along(SUMI4_h, three_by_two, {3, 2}, 2, nullptr, made), (Ints{41, 52, 63}));
    }
    EXPECT_EQ(along(PRODUCTI4_h, three_by_two, {3, 2}, 1), (Ints{6, 120000}));
    EXPECT_EQ(along(MAXVALI4_h, three_by_two, {3, 2}, 1), (Ints{3, 60}));
    EXPECT_EQ(along(MINVALI4_h, three_by_two, {3, 2}, 2), (Ints{1, 2, 3}));
    EXPECT_EQ(along(MAXLOCDI4_h, Ints{5, 9, 9, 1, 0, 0}, {3, 2}, 1), (Ints{2, 1}));
    EXPECT_EQ(along(MINLOCDI4_h, Ints{5, 9, 9, 1, 0, 0}, {3, 2}, 1), (Ints{1, 2}));
}

TEST(NativeReductions, OfNothing) {
    EXPECT_EQ(along(SUMI4_h, {}, {0, 3}, 1), (Ints{0, 0, 0}));
    EXPECT_EQ(along(PRODUCTI4_h, {}, {0, 2}, 1), (Ints{1, 1}));
    EXPECT_EQ(along(MAXVALI4_h, {}, {0, 1}, 1), (Ints{std::numeric_limits<int>::min()}));
    EXPECT_EQ(along(MINVALI4_h, {}, {0, 1}, 1), (Ints{std::numeric_limits<int>::max()}));
    EXPECT_EQ(along(MAXLOCDI4_h, {}, {0, 1}, 1), (Ints{0}));
    EXPECT_EQ(along(SUMI4_h, {}, {3, 0}, 1), Ints{});
}

TEST(NativeReductions, OnlyAFirstByteOfOneIsTrue) {
    const Ints mask = {1, 2, 0x101, 0, 257, -1};
    EXPECT_EQ(along(SUMI4_h, three_by_two, {3, 2}, 1, &mask), (Ints{4, 50}));
    const std::int32_t rank = 2;
    const std::int32_t dim = 1;
    const Extents extents = {3, 2};
    const std::vector<Word> words = {at(rank), at(mask), at(extents), at(int_size), at(dim)};
    EXPECT_EQ(result_of<std::int32_t>(routine(COUNT_h), words, {2}), (Ints{2, 1}));
    EXPECT_EQ(result_of<std::int8_t>(routine(ANY_h), words, {2}), (std::vector<std::int8_t>{1, 1}));
    EXPECT_EQ(result_of<std::int64_t>(routine(ALL_h), words, {2}),
              (std::vector<std::int64_t>{0, 0}));
}

TEST(NativeReductions, RealsStartAtFiniteExtremes) {
    const std::int32_t rank = 1;
    const std::int32_t dim = 1;
    const Extents extents = {2};
    const std::vector<double> low(2, -std::numeric_limits<double>::infinity());
    const std::vector<Word> words = {at(rank),    at(low),      at(extents), no_argument,
                                     no_argument, at(int_size), at(dim)};
    EXPECT_EQ(result_of<double>(routine(MAXVALR8_h), words, {}),
              std::vector<double>{-std::numeric_limits<double>::max()});
}

TEST(NativeReductions, SumsAreRoundedStepByStep) {
    const std::int32_t rank = 1;
    const std::int32_t dim = 1;
    const Extents extents = {4};
    const std::vector<float> values = {16777216.0F, 1.0F, 1.0F, -16777216.0F};
    const std::vector<Word> words = {at(rank),    at(values),   at(extents), no_argument,
                                     no_argument, at(int_size), at(dim)};
    EXPECT_EQ(result_of<float>(routine(SUMR4_h), words, {}), std::vector<float>{0.0F});
}

TEST(NativeReductions, RootsOfSquares) {
    const std::int32_t rank = 2;
    std::int32_t dim = 1;
    const Extents extents = {2, 3};
    std::vector<double> values = {3, 4, -5, 12, 1e200, 1};
    const auto norms = [&](auto* entry, const auto& array, Word extent) {
        using T = typename std::decay_t<decltype(array)>::value_type;
        return result_of<T>(routine(entry), {at(rank), at(array), at(extents), at(dim)}, {extent});
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(norms(NORM2R8_h, values, 3), (std::vector<double>{5, 13, infinity}));
    dim = 2;
    values[4] = 0;
    EXPECT_EQ(norms(NORM2R8_h, values, 2)[0], std::sqrt(34.0));
    std::vector<float> singles = {3, 4, -5, 12, 2.0F, 1.5F};
    dim = 1;
    EXPECT_EQ(norms(NORM2R4_h, singles, 3), (std::vector<float>{5, 13, 2.5F}));
    singles[4] = 1e20F;
    EXPECT_EXIT(norms(NORM2R4_h, singles, 3), testing::ExitedWithCode(1),
                "453, Floating point overflow when computing NORM2");
    dim = 3;
    EXPECT_EXIT(norms(NORM2R8_h, values, 3), testing::ExitedWithCode(1), "DIM out of range");
}

TEST(NativeLocations, OfWholeArrays) {
    const std::int32_t rank = 2;
    const Extents extents = {3, 4};
    const std::int32_t back = 1;
    Ints array(12, 7);
    array[7] = array[10] = 9;  // (2,3) and (2,4)
    std::vector<Word> words = {at(rank),     at(array), at(extents), no_argument, no_argument,
                               at(int_size), 0};
    EXPECT_EQ(result_of<std::int32_t>(routine(MAXLOCI4_h), words, {2}), (Ints{2, 3}));
    EXPECT_EQ(result_of<std::int16_t>(routine(MAXLOCI4_h), words, {2}, false),
              (std::vector<std::int16_t>{2, 3}));
    const Ints mask(12, 0);
    words[3] = at(mask);
    words[4] = at(extents);
    EXPECT_EQ(result_of<std::int32_t>(routine(MAXLOCI4_h), words, {2}), (Ints{0, 0}));
    words[3] = no_argument;
    words.push_back(at(back));
    EXPECT_EQ(result_of<std::int32_t>(routine(MAXLOCBI4_h), words, {2}), (Ints{2, 4}));
    EXPECT_EQ(result_of<std::int32_t>(routine(MINLOCBI4_h), words, {2}), (Ints{3, 4}));

    const std::int32_t nine = 9;
    words = {at(rank), at(array), at(extents), at(nine), no_argument, no_argument, at(int_size), 0};
    EXPECT_EQ(result_of<std::int32_t>(routine(FINDLOCI4_h), words, {2}, false), (Ints{2, 3}));
    words.push_back(at(back));
    EXPECT_EQ(result_of<std::int32_t>(routine(FINDLOCBI4_h), words, {2}, false), (Ints{2, 4}));
    const std::int32_t dim = 2;
    words[7] = at(dim);
    EXPECT_EQ(result_of<std::int32_t>(routine(FINDLOCDBI4_h), words, {3}, false), (Ints{0, 4, 0}));
}

TEST(NativeLocations, OfVectors) {
    const float reals[] = {1, 5, std::nanf(""), 5, -2};
    const std::int32_t mask[] = {1, 0, 0, -1, 1};
    const float five = 5;
    EXPECT_EQ(MAXLOC_h(reals, 5, nullptr), 2);
    EXPECT_EQ(MAXLOC_h(reals, 5, mask), 4);
    EXPECT_EQ(MINLOC_h(reals, 5, nullptr), 5);
    EXPECT_EQ(MAXLOC_h(reals, 0, nullptr), 0);
    EXPECT_EQ(FINDLOC_h(reals, 5, &five, nullptr), 2);
    EXPECT_EQ(FINDLOC_h(reals, 5, &five, mask), 4);
    const std::int8_t logicals[] = {0, 4, 1};
    const std::int8_t truth = -1;
    EXPECT_EQ(hFINDLOC_h(logicals, 3, &truth, nullptr), 2);
    EXPECT_EQ(HFINDLOC_h(logicals, 3, &truth, nullptr), 0);
}

// ---- Transformations ----

struct Vector {
    std::int32_t rank = 1;
    Extents extents;
    Ints values;

    explicit Vector(Ints v) : extents{static_cast<std::int32_t>(v.size())}, values(std::move(v)) {}
};

Ints reshaped(const Ints& source, const Ints& shape, const Ints* pad, const Ints* order) {
    const Vector from(source);
    const Vector wanted(shape);
    const Vector padding(pad != nullptr ? *pad : Ints{});
    const Vector turned(order != nullptr ? *order : Ints{});
    const std::vector<Word> extents(shape.begin(), shape.end());
    return result_of<std::int32_t>(
        routine(RESHAPE_h),
        {at(from.rank), at(from.values), at(from.extents), at(int_size), at(wanted.rank),
         at(wanted.values), at(wanted.extents), at(int_size), at(padding.rank),
         pad != nullptr ? at(padding.values) : no_argument, at(padding.extents), at(turned.rank),
         order != nullptr ? at(turned.values) : no_argument, at(turned.extents), at(int_size)},
        extents);
}

TEST(NativeTransformations, Reshape) {
    const Ints order = {2, 1};
    const Ints pad = {8, 9};
    const Ints empty;
    EXPECT_EQ(reshaped({1, 2, 3, 4, 5, 6}, {2, 3}, nullptr, &order), (Ints{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(reshaped({1}, {2, 3}, &pad, nullptr), (Ints{1, 8, 9, 8, 9, 8}));
    EXPECT_EQ(reshaped({1, 2}, {2}, &empty, nullptr), (Ints{1, 2}));
    const auto fails = [](const Ints& source, const Ints& shape, const Ints* by) {
        reshaped(source, shape, nullptr, by);
    };
    const Ints twice = {1, 1};
    const Ints beyond = {1, 3};
    const Ints one = {1};
    EXPECT_EXIT(fails({1, 2}, {2, 1}, &twice), testing::ExitedWithCode(1), "not a permutation");
    EXPECT_EXIT(fails({1, 2}, {2, 1}, &beyond), testing::ExitedWithCode(1), "not a permutation");
    EXPECT_EXIT(fails({1, 2}, {2, 1}, &one), testing::ExitedWithCode(1),
                "same number of elements as SHAPE");
    EXPECT_EXIT(fails({1, 2}, {2, 2}, nullptr), testing::ExitedWithCode(1), "Nonconformant arrays");
    EXPECT_EXIT(fails({1}, Ints(8, 1), nullptr), testing::ExitedWithCode(1),
                "wrong number of dimensions");
}

TEST(NativeTransformations, PackAndUnpack) {
    const Vector array({1, 2, 3, 4});
    const Vector mask({1, 2, 0, 257});
    const Vector vector({7, 8, 9});
    const std::int32_t scalar = 0;
    const std::int32_t three = 3;
    const auto pack = [&](Word mask_rank, Word mask_at, Word vector_at, Ints room) {
        tarn_array_result result = {room.data(), 4, {static_cast<Word>(room.size())}};
        const std::vector<Word> words = {
            at(array.rank),   at(array.values), at(array.extents), at(int_size), mask_rank, mask_at,
            at(mask.extents), at(int_size),     vector_at,         at(three),    at(result)};
        run({words.data(), 5, routine(PACK_h), &result, room.data(), 0});
        EXPECT_EQ(IPACKED_SIZE_h(), result.extent[0]);
        room.resize(static_cast<std::size_t>(result.extent[0]));
        return room;
    };
    EXPECT_EQ(pack(at(mask.rank), at(mask.values), no_argument, Ints(2)), (Ints{1, 4}));
    EXPECT_EQ(pack(at(mask.rank), at(mask.values), no_argument, Ints(4)), (Ints{1, 4}));
    EXPECT_EQ(pack(at(mask.rank), at(mask.values), at(vector.values), Ints(3)), (Ints{1, 4, 9}));
    EXPECT_EQ(pack(at(scalar), at(scalar), at(vector.values), Ints(3)), (Ints{7, 8, 9}));
    EXPECT_EQ(pack(at(scalar), at(scalar), no_argument, Ints(3)), Ints{});
    EXPECT_EXIT(pack(at(mask.rank), at(mask.values), no_argument, Ints(1)),
                testing::ExitedWithCode(1), "result array size is too small");
    EXPECT_EXIT(pack(at(mask.rank), at(mask.values), at(vector.values), Ints(2)),
                testing::ExitedWithCode(1), "different from the size of VECTOR");
    EXPECT_EXIT(pack(at(scalar), at(mask.rank), no_argument, Ints(3)), testing::ExitedWithCode(1),
                "different from the size of RESULT");
    EXPECT_EXIT(pack(at(scalar), at(mask.rank), at(vector.values), Ints(3)),
                testing::ExitedWithCode(1), "less than the size of ARRAY");

    // More than there can be, and no storage given.
    const auto endless = [&] {
        const std::int32_t rank = 2;
        const Extents extents(2, std::numeric_limits<std::int32_t>::max());
        tarn_array_result result = {nullptr, 4, {}};
        PACK_h(&rank, array.values.data(), extents.data(), &int_size, &scalar, &scalar,
               extents.data(), &int_size, TARN_NO_ARGUMENT, &three, &result);
    };
    EXPECT_EXIT(endless(), testing::ExitedWithCode(1), "Bad request for stack memory");

    const std::int32_t field = -1;
    std::int32_t size = 2;
    const std::vector<Word> words = {at(mask.rank),   at(vector.values), at(size),     at(int_size),
                                     at(mask.values), at(mask.extents),  at(int_size), at(scalar),
                                     at(field),       at(mask.extents)};
    EXPECT_EQ(result_of<std::int32_t>(routine(UNPACK_h), words, {4}), (Ints{7, -1, -1, 8}));
    size = 1;
    EXPECT_EXIT(result_of<std::int32_t>(routine(UNPACK_h), words, {4}), testing::ExitedWithCode(1),
                "VECTOR has insufficient elements");
}

TEST(NativeTransformations, Spread) {
    const std::int32_t scalar = 0;
    const std::int32_t five = 5;
    std::int32_t copies = 3;
    std::int32_t dim = 1;
    const Extents none;
    std::vector<Word> words = {at(scalar), at(five), at(none), at(copies), at(dim)};
    EXPECT_EQ(result_of<std::int32_t>(routine(SPREAD_h), words, {3}), (Ints{5, 5, 5}));
    const Vector source({1, 2});
    words = {at(source.rank), at(source.values), at(source.extents), at(copies), at(dim)};
    EXPECT_EQ(result_of<std::int32_t>(routine(SPREAD_h), words, {3, 2}), (Ints{1, 1, 1, 2, 2, 2}));
    dim = 2;
    EXPECT_EQ(result_of<std::int32_t>(routine(SPREAD_h), words, {2, 3}), (Ints{1, 2, 1, 2, 1, 2}));
    dim = 3;
    EXPECT_EXIT(result_of<std::int32_t>(routine(SPREAD_h), words, {2, 3}),
                testing::ExitedWithCode(1), "DIM out of range");
    copies = -1;
    EXPECT_EQ(result_of<std::int32_t>(routine(SPREAD_h), words, {0, 0}), Ints{});
}

TEST(NativeTransformations, Shifts) {
    const Vector array({1, 2, 3, 4});
    const std::int32_t scalar = 0;
    const auto shift = [&](auto* entry, std::int32_t by, bool end_off, std::int32_t text = 0) {
        std::vector<Word> words = {at(array.rank), at(array.values), at(array.extents),
                                   at(int_size),   at(scalar),       at(by),
                                   at(scalar),     at(int_size)};
        if (end_off) words.insert(words.end(), {at(scalar), no_argument, at(scalar)});
        words.push_back(no_argument);
        if (end_off) words.push_back(at(text));
        return result_of<std::int32_t>(routine(entry), words, {4});
    };
    EXPECT_EQ(shift(CSHIFT_h, -1, false), (Ints{4, 1, 2, 3}));
    EXPECT_EQ(shift(CSHIFT_h, 5, false), (Ints{2, 3, 4, 1}));
    EXPECT_EQ(shift(EOSHIFT_h, 1, true), (Ints{2, 3, 4, 0}));
    EXPECT_EQ(shift(EOSHIFT_h, -9, true), (Ints{0, 0, 0, 0}));
    EXPECT_EQ(shift(EOSHIFT_h, 3, true, 1), (Ints{4, 0x20202020, 0x20202020, 0x20202020}));
}

// An element may be longer than the stack.
TEST(NativeTransformations, LongTextsAreShifted) {
    constexpr std::int32_t length = 10 << 20;
    const std::int32_t rank = 2;
    const std::int32_t vector = 1;
    const Extents extents = {2, 2};
    std::vector<char> texts(4 * std::size_t{length}, 'a');
    for (std::size_t i = 1; i < 4; ++i) texts[(i + 1) * length - 1] = static_cast<char>('a' + i);
    const auto shifted = [&](std::int32_t shift_rank, const Ints& by) {
        std::vector<char> to(texts.size());
        tarn_array_result result = {to.data(), length, {2, 2}};
        EOSHIFT_h(&rank, texts.data(), extents.data(), &length, &shift_rank, by.data(),
                  extents.data(), &int_size, &vector, TARN_NO_ARGUMENT, nullptr, &vector, &vector,
                  &result);
        std::string ends;
        for (std::size_t i = 0; i < 4; ++i) ends += {to[i * length], to[(i + 1) * length - 1]};
        return ends;
    };
    EXPECT_EQ(shifted(0, {1}), "ab  ad  ");
    EXPECT_EQ(shifted(1, {1, -1}), "ab    ac");
}

TEST(NativeTransformations, LargeResultsMeetEveryPage) {
    const Extents extents = {300, 400};
    Ints matrix(120000);
    for (std::size_t i = 0; i < matrix.size(); ++i) matrix[i] = static_cast<std::int32_t>(i);
    const auto turned = result_of<std::int32_t>(
        routine(TRANSPOSE_h), {at(matrix), at(extents), at(int_size)}, {400, 300});
    for (const int i : {0, 1, 399, 400, 119999}) {
        const int row = i % 400;
        const int column = i / 400;
        EXPECT_EQ(turned[static_cast<std::size_t>(i)], column + 300 * row);
    }
}

TEST(NativeDescriptors, ArePrinted) {
    struct {
        std::uint64_t base;
        std::int32_t words[10];
    } const descriptor = {0x7FFF12345678, {1, 2, -3, 4, 5, -6, 7, 8, 9, 10}};
    std::int32_t rank = 2;
    testing::internal::CaptureStdout();
    DUMP_ARRAY1_h(&descriptor, &rank);
    DUMP_ARRAY3_h(&descriptor, &rank);
    rank = 1;
    DUMP_ARRAY2_h(&descriptor, &rank);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "**** Rank 2 POINTER Array @ 00007fff12345678\n"
        "     Start:       1\n     Size:        2\n     Stride:      -3\n"
        "     SectionSize: 4\n     Offset:      5\n"
        "     Start:       -6\n     Size:        7\n     Stride:      8\n"
        "     SectionSize: 9\n     Offset:      10\n"
        "**** Rank 2 \"Normal\" Array @ 00007fff12345678\n"
        "     Start:       1\n     Size:        2\n     Start:       -3\n     Size:        4\n"
        "**** Rank 1 ALLOCATABLE Array @ 00007fff12345678\n"
        "     Start:       1\n     Size:        2\n     SectionSize: -3\n");
    rank = 8;
    EXPECT_EXIT(DUMP_ARRAY1_h(&descriptor, &rank), testing::ExitedWithCode(1),
                "wrong number of dimensions");
}

TEST(NativeResults, BadDescriptorsFail) {
    const std::int32_t rank = 2;
    const Extents extents = {3, 2};
    const auto sum = [&](std::int32_t dim, std::uint64_t base, Word extent) {
        tarn_array_result result = {reinterpret_cast<void*>(base), 4, {extent}};
        SUMI4_h(&rank, three_by_two.data(), extents.data(), TARN_NO_ARGUMENT, nullptr, &int_size,
                &dim, &result);
    };
    std::array<std::int32_t, 3> room{};
    const auto good = reinterpret_cast<std::uint64_t>(room.data());
    EXPECT_EXIT(sum(0, good, 2), testing::ExitedWithCode(1), "DIM out of range");
    EXPECT_EXIT(sum(3, good, 2), testing::ExitedWithCode(1), "DIM out of range");
    EXPECT_EXIT(sum(1, good, 3), testing::ExitedWithCode(1), "Nonconformant arrays");
    EXPECT_EXIT(sum(1, 0x8000000000000000u, 2), testing::ExitedWithCode(1), "Undefined pointer");
    EXPECT_EXIT(sum(1, 0x8080808080808080u, 2), testing::ExitedWithCode(1),
                "Disassociated pointer");
    EXPECT_EXIT(sum(1, 0xFFFF000000000000u, 2), testing::ExitedWithCode(1), "Corrupt pointer");
    sum(1, good, 2);
    EXPECT_EQ(room[1], 150);
}

TEST(NativeMatmul, RoundsOnceAtTheEnd) {
    const double a[] = {0x1p53, 1, 1, -0x1p53};  // one row
    const double ones[] = {1, 1, 1, 1};
    double result = 0;
    MATMULR8_h(a, ones, 0, 3, 3, 0, &result);
    EXPECT_EQ(result, 2.0);
    const float left[] = {1, 2, 3, 4, 5, 6};  // 2 x 3
    const float right[] = {1, 0, 2, 0, 1, 1};
    float product[4] = {};
    MATMULR4_h(left, right, 1, 2, 2, 1, product);
    EXPECT_EQ(std::vector<float>(product, product + 4), (std::vector<float>{11, 14, 8, 10}));
    const double z[] = {1, 2};
    const double w[] = {3, -1};
    double zw[2];
    MATMULCD_h(z, w, 0, 0, 0, 0, zw);
    EXPECT_EQ(zw[0], 5.0);
    EXPECT_EQ(zw[1], 5.0);
    EXPECT_EXIT(MATMULR8_h(a, ones, 0, 3, 2, 0, &result), testing::ExitedWithCode(1),
                "Non-conformant array shapes");
}

}  // namespace
