// Reductions along a dimension and the whole-array forms that take a result descriptor.
#include "intrinsics/arrays/extremes.h"
#include "intrinsics/arrays/find.h"
#include "intrinsics/arrays/fold.h"
#include "intrinsics/arrays/logical.h"
#include "intrinsics/arrays/native_routines.h"
#include "intrinsics/numbers/norms.h"

namespace tarn::arrays {
namespace {

// The mask that the words from `first` tell: address, extents, element size.
struct OptionalMask {
    Mask mask;
    bool present = false;

    OptionalMask(const NativeCall& call, int first, const View& array, Truth truth) {
        present = call.has(first);
        if (!present) return;
        const auto size = call.integer(first + 2);
        mask = {native_view(call.address<std::byte>(first), size, array.rank,
                            call.address<std::int32_t>(first + 1)),
                truth};
        if (!same_extents(mask.view, array)) native_fail(fail_shape);
    }
    const Mask* get() const { return present ? &mask : nullptr; }
};

template <class T>
View array_of(const NativeCall& call) {
    return native_view(call.address<T>(1), sizeof(T), call.integer(0),
                       call.address<std::int32_t>(2));
}

// DIM from 0.
int dim_of(Index dim, const View& array) {
    if (dim < 1 || dim > array.rank) native_fail(fail_dim);
    return static_cast<int>(dim) - 1;
}

bool back_of(const NativeCall& call, int i) {
    return call.has(i) && call.integer(i) != 0;
}

// ---- rank, array, extents, mask, mask extents, mask element size, DIM, result ----

template <class Reduction, class T>
void along(NativeCall& call) {
    const View array = array_of<T>(call);
    const int dim = dim_of(call.integer(6), array);
    const OptionalMask mask(call, 3, array, Truth::byte_is_one);
    View result;
    if (!open_result(call, call.result(7), without(array, dim), sizeof(T), result)) return;
    reduce_along(Reduction{}, array, mask.get(), dim, result);
}

template <class T, bool largest>
void place_along(NativeCall& call, Truth truth, bool back, int result_word) {
    const View array = array_of<T>(call);
    const int dim = dim_of(call.integer(6), array);
    const OptionalMask mask(call, 3, array, truth);
    ResultDescriptor& descriptor = call.result(result_word);
    View result;
    if (!open_result(call, descriptor, without(array, dim), descriptor.element, result)) return;
    const ExtremePlace<T, largest> reduction(back, result.element, value_of_nothing<T, largest>());
    reduce_along(reduction, array, mask.get(), dim, result);
}

template <class T, bool largest>
void place_along_first(NativeCall& call) {
    place_along<T, largest>(call, Truth::byte_is_one, false, 7);
}
template <class T, bool largest>
void place_along_back(NativeCall& call) {
    place_along<T, largest>(call, Truth::whole, back_of(call, 7), 8);
}

// ---- Whole arrays: a vector of subscripts ----

constexpr int too_few_elements = 404;

// The result's vector of `rank` positions.
bool open_positions(NativeCall& call, ResultDescriptor& descriptor, int rank, View& result) {
    check_base(descriptor);
    if (descriptor.base != 0) {
        const Word extent = descriptor.extent[0];
        if (extent != rank && !(extent == 0 && rank == 1)) native_fail(too_few_elements);
    }
    View vector;
    vector.rank = 1;
    vector.dims[0].extent = descriptor.base != 0 ? descriptor.extent[0] : rank;
    if (!open_result(call, descriptor, vector, descriptor.element, result)) return false;
    result.dims[0].extent = rank;
    return true;
}

template <class T, bool largest>
void place(NativeCall& call, bool back, int result_word) {
    const View array = array_of<T>(call);
    View result;
    if (!open_positions(call, call.result(result_word), array.rank, result)) return;
    const OptionalMask mask(call, 3, array, Truth::whole);
    store_position(
        array,
        place_of_extreme<T, largest>(array, mask.get(), value_of_nothing<T, largest>(), back),
        result);
}
template <class T, bool largest>
void place_first(NativeCall& call) {
    place<T, largest>(call, false, 7);
}
template <class T, bool largest>
void place_back(NativeCall& call) {
    place<T, largest>(call, back_of(call, 7), 8);
}

// ---- FINDLOC: rank, array, extents, VALUE, mask, mask extents, mask size, DIM or spare, [BACK],
// result ----

constexpr int no_storage = 501;

template <class Match>
void find(NativeCall& call, bool back, int result_word) {
    using T = typename Match::Element;
    ResultDescriptor& descriptor = call.result(result_word);
    if (descriptor.base == 0) native_fail(no_storage);
    const View array = array_of<T>(call);
    View result;
    if (!open_positions(call, descriptor, array.rank, result)) return;
    const OptionalMask mask(call, 4, array, Truth::whole);
    const Match match{*call.address<T>(3)};
    store_position(array, place_of_match(match, array, mask.get(), back), result);
}
template <class Match>
void find_first(NativeCall& call) {
    find<Match>(call, false, 8);
}
template <class Match>
void find_back(NativeCall& call) {
    find<Match>(call, back_of(call, 8), 9);
}

template <class Match>
void find_along(NativeCall& call, bool back, int result_word) {
    using T = typename Match::Element;
    ResultDescriptor& descriptor = call.result(result_word);
    if (descriptor.base == 0) native_fail(no_storage);
    const View array = array_of<T>(call);
    const int dim = dim_of(call.integer(7), array);
    const OptionalMask mask(call, 4, array, Truth::whole);
    View result;
    if (!open_result(call, descriptor, without(array, dim), descriptor.element, result)) return;
    const MatchPlace<Match> reduction({*call.address<T>(3)}, back, result.element);
    reduce_along(reduction, array, mask.get(), dim, result);
}
template <class Match>
void find_along_first(NativeCall& call) {
    find_along<Match>(call, false, 8);
}
template <class Match>
void find_along_back(NativeCall& call) {
    find_along<Match>(call, back_of(call, 8), 9);
}

// ---- rank, mask array, extents, mask element size, DIM, result ----

template <LogicalReduction what>
void logical_along(NativeCall& call) {
    Mask array;
    array.truth = Truth::byte_is_one;
    array.view = native_view(call.address<std::byte>(1), call.integer(3), call.integer(0),
                             call.address<std::int32_t>(2));
    const int dim = dim_of(call.integer(4), array.view);
    ResultDescriptor& descriptor = call.result(5);
    View result;
    if (!open_result(call, descriptor, without(array.view, dim), descriptor.element, result))
        return;
    reduce_logical(what, array, dim, result);
}

// ---- NORM2: rank, array, extents, DIM, result ----

// The squares unscaled, in the element's own type.
template <class T>
struct PlainNorm final : Reduction {
    using State = std::array<T, block_width>;

    void rows(const Rows& rows) const override {
        for_each_row(rows, [](const Run& run, std::byte* to) {
            T sum = 0;
            for_counted<T>(run, [&](const T* x, Index n) {
                for (Index i = 0; i < n; ++i) sum += x[i] * x[i];
            });
            *reinterpret_cast<T*>(to) = intrinsics::numbers::root_of_squares(sum);
        });
    }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().begin(), n, T(0));
    }
    void step(Block& block, const std::byte* x, const Flag*, Index n, Index) const override {
        State& sums = block.as<State>();
        const T* const values = reinterpret_cast<const T*>(x);
        for (Index i = 0; i < n; ++i) sums[static_cast<std::size_t>(i)] += values[i] * values[i];
    }
    void end(Block& block, Index n, Run, Index, Index, std::byte* to,
             Index to_step) const override {
        const State& sums = block.as<State>();
        for (Index i = 0; i < n; ++i)
            *reinterpret_cast<T*>(to + i * to_step) =
                intrinsics::numbers::root_of_squares(sums[static_cast<std::size_t>(i)]);
    }
};

template <class T>
void norm_along(NativeCall& call) {
    const View array = array_of<T>(call);
    const int dim = dim_of(call.integer(3), array);
    View result;
    if (!open_result(call, call.result(4), without(array, dim), sizeof(T), result)) return;
    reduce_along(PlainNorm<T>{}, array, nullptr, dim, result);
}

template <class... T>
struct Types {};
using RealTypes =
    Types<std::int8_t, std::int16_t, std::int32_t, std::int64_t, float, double, Real10>;
using NumberTypes = Types<std::int8_t, std::int16_t, std::int32_t, std::int64_t, float, double,
                          Real10, Complex<float>, Complex<double>, Complex<Real10>>;

template <std::size_t count>
using Table = std::array<NativeRoutine, count>;

// The routines of a family, one a type; make<T>() gives a member.
template <class... T, class Make>
constexpr Table<sizeof...(T)> family(Types<T...>, Make make) {
    return {make.template operator()<T>()...};
}

// FINDLOC compares numbers by value and LOGICALs by truth.
template <class Make>
constexpr Table<10> find_family(Make make) {
    return {make.template operator()<Equal<std::int8_t>>(),
            make.template operator()<Equal<std::int16_t>>(),
            make.template operator()<Equal<std::int32_t>>(),
            make.template operator()<Equal<std::int64_t>>(),
            make.template operator()<Equal<float>>(),
            make.template operator()<Equal<double>>(),
            make.template operator()<SameTruth<std::int8_t>>(),
            make.template operator()<SameTruth<std::int16_t>>(),
            make.template operator()<SameTruth<std::int32_t>>(),
            make.template operator()<SameTruth<std::int64_t>>()};
}

}  // namespace

void store_position(const View& array, Index place, const View& result) {
    for (int d = 0; d < array.rank; ++d) {
        const Index extent = array.dims[d].extent;
        const Index subscript = place < 0 ? 0 : place % extent + 1;
        store_integer(result.base + d * result.dims[0].stride, result.element, subscript);
        if (place >= 0) place /= extent;
    }
}

}  // namespace tarn::arrays

using namespace tarn::arrays;

// What native_entries.cpp gives names to, each table in the order of its types there.
extern "C" {
#define TARN_TABLE(name, count, ...)                                            \
    [[gnu::visibility("hidden")]] extern const Table<count> tarn_native_##name; \
    [[gnu::used]] const Table<count> tarn_native_##name = __VA_ARGS__;

TARN_TABLE(sum, 10, family(NumberTypes{}, []<class T>() { return &along<Fold<Add, T>, T>; }))
TARN_TABLE(product, 10,
           family(NumberTypes{}, []<class T>() { return &along<Fold<Multiply, T>, T>; }))
TARN_TABLE(maxval, 7,
           family(RealTypes{}, []<class T>() { return &along<Extreme<T, true, true>, T>; }))
TARN_TABLE(minval, 7,
           family(RealTypes{}, []<class T>() { return &along<Extreme<T, false, true>, T>; }))
TARN_TABLE(maxlocd, 7, family(RealTypes{}, []<class T>() { return &place_along_first<T, true>; }))
TARN_TABLE(minlocd, 7, family(RealTypes{}, []<class T>() { return &place_along_first<T, false>; }))
TARN_TABLE(maxlocdb, 7, family(RealTypes{}, []<class T>() { return &place_along_back<T, true>; }))
TARN_TABLE(minlocdb, 7, family(RealTypes{}, []<class T>() { return &place_along_back<T, false>; }))
TARN_TABLE(maxloc, 7, family(RealTypes{}, []<class T>() { return &place_first<T, true>; }))
TARN_TABLE(minloc, 7, family(RealTypes{}, []<class T>() { return &place_first<T, false>; }))
TARN_TABLE(maxlocb, 7, family(RealTypes{}, []<class T>() { return &place_back<T, true>; }))
TARN_TABLE(minlocb, 7, family(RealTypes{}, []<class T>() { return &place_back<T, false>; }))
TARN_TABLE(findloc, 10, find_family([]<class Match>() { return &find_first<Match>; }))
TARN_TABLE(findlocb, 10, find_family([]<class Match>() { return &find_back<Match>; }))
TARN_TABLE(findlocd, 10, find_family([]<class Match>() { return &find_along_first<Match>; }))
TARN_TABLE(findlocdb, 10, find_family([]<class Match>() { return &find_along_back<Match>; }))
TARN_TABLE(norm2, 2, family(Types<float, double>{}, []<class T>() { return &norm_along<T>; }))
TARN_TABLE(logical, 3,
           {&logical_along<LogicalReduction::count>, &logical_along<LogicalReduction::any>,
            &logical_along<LogicalReduction::all>})

#undef TARN_TABLE
}
