// gfortran's random numbers.
#include <algorithm>
#include <string>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/random/streams.h"
#include "pairing/gcc/descriptor_runs.h"

namespace tarn::gcc {
namespace {

using intrinsics::Seed;
using intrinsics::thread_stream;

template <class Real>
void fill(const ArrayDescriptor& array) {
    constexpr auto unit = static_cast<std::int64_t>(sizeof(Real));
    intrinsics::Stream& stream = thread_stream();
    const Dimension& first = array.dimension[0];
    if (array.rank == 1 && first.stride == 1)
        return stream.fill(reinterpret_cast<Real*>(array.base),
                           static_cast<std::size_t>(first.extent()));
    for_each_run(array, sizeof(Real), [&](char* at, std::int64_t count, std::int64_t step) {
        if (step == unit) {
            stream.fill(reinterpret_cast<Real*>(at), static_cast<std::size_t>(count));
            return;
        }
        for (std::int64_t i = 0; i < count; ++i, at += step)
            *reinterpret_cast<Real*>(at) = intrinsics::random_real<Real>(stream);
    });
}

// ---- RANDOM_SEED, with seeds of 32 or 64-bit integers ----

constexpr int invalid_seeder_call = 406;

[[noreturn]] void fail_seed(const std::string& why) {
    frame::ensure_up();
    failure::fail(invalid_seeder_call, "    " + why + "\n");
}

template <class Integer>
constexpr std::int64_t seed_size = sizeof(Seed) / sizeof(Integer);

template <class Integer>
void require_room(const ArrayDescriptor& array, const char* name) {
    if (array.rank != 1)
        fail_seed(std::string(name) + "= of RANDOM_SEED must be an array of rank 1");
    const std::int64_t extent = array.dimension[0].extent();
    if (extent >= seed_size<Integer>) return;
    fail_seed(std::string(name) + "= of RANDOM_SEED has " + std::to_string(extent) +
              " elements, and needs " + std::to_string(seed_size<Integer>));
}

// A seed of 32-bit integers holds the words backwards: the last integer is the low half of the
// first word.
void put_seed(const ArrayDescriptor& array, std::int64_t) {
    Seed seed{};
    for (std::int64_t i = 0; i < 4; ++i)
        seed[static_cast<std::size_t>(i)] = element<std::uint64_t>(array, i);
    intrinsics::set_seed(seed);
}
void put_seed(const ArrayDescriptor& array, std::int32_t) {
    Seed seed{};
    for (std::int64_t i = 0; i < 8; ++i)
        seed[static_cast<std::size_t>(3 - i / 2)] |= std::uint64_t{element<std::uint32_t>(array, i)}
                                                     << (i % 2 == 0 ? 32 : 0);
    intrinsics::set_seed(seed);
}
void get_seed(const ArrayDescriptor& array, std::int64_t) {
    const Seed seed = intrinsics::thread_seed();
    for (std::int64_t i = 0; i < 4; ++i)
        element<std::uint64_t>(array, i) = seed[static_cast<std::size_t>(i)];
}
void get_seed(const ArrayDescriptor& array, std::int32_t) {
    const Seed seed = intrinsics::thread_seed();
    for (std::int64_t i = 0; i < 8; ++i)
        element<std::uint32_t>(array, i) = static_cast<std::uint32_t>(
            seed[static_cast<std::size_t>(3 - i / 2)] >> (i % 2 == 0 ? 32 : 0));
}

template <class Integer>
void random_seed(Integer* size, const ArrayDescriptor* put, const ArrayDescriptor* get) {
    const int present = (size != nullptr) + (put != nullptr) + (get != nullptr);
    if (present > 1) fail_seed("RANDOM_SEED takes one argument at most");
    if (present == 0) intrinsics::set_seed_from_system();
    if (size != nullptr) *size = static_cast<Integer>(seed_size<Integer>);
    if (put != nullptr) {
        require_room<Integer>(*put, "PUT");
        put_seed(*put, Integer{});
    }
    if (get != nullptr) {
        require_room<Integer>(*get, "GET");
        get_seed(*get, Integer{});
    }
}

// The argument of IRAND and RAND: 0 or none goes on, 1 begins anew, another value is the seed.
std::int32_t irand(const std::int32_t* flag) {
    const std::int32_t value = flag != nullptr ? *flag : 0;
    if (value != 0) intrinsics::seed_irand(value == 1 ? 0 : value);
    return intrinsics::next_irand();
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;
namespace intrinsics = tarn::intrinsics;

extern "C" {

TARN_EXPORT void _gfortran_random_r4(float* value) {
    *value = intrinsics::random_real<float>(thread_stream());
}
TARN_EXPORT void _gfortran_random_r8(double* value) {
    *value = intrinsics::random_real<double>(thread_stream());
}
TARN_EXPORT void _gfortran_random_r10(long double* value) {
    *value = intrinsics::random_real<long double>(thread_stream());
}
TARN_EXPORT void _gfortran_random_r16(__float128* value) {
    *value = intrinsics::random_real<__float128>(thread_stream());
}
TARN_EXPORT void _gfortran_arandom_r4(const ArrayDescriptor* array) {
    fill<float>(*array);
}
TARN_EXPORT void _gfortran_arandom_r8(const ArrayDescriptor* array) {
    fill<double>(*array);
}
TARN_EXPORT void _gfortran_arandom_r10(const ArrayDescriptor* array) {
    fill<long double>(*array);
}
TARN_EXPORT void _gfortran_arandom_r16(const ArrayDescriptor* array) {
    fill<__float128>(*array);
}

TARN_EXPORT void _gfortran_random_seed_i4(std::int32_t* size, const ArrayDescriptor* put,
                                          const ArrayDescriptor* get) {
    random_seed(size, put, get);
}
TARN_EXPORT void _gfortran_random_seed_i8(std::int64_t* size, const ArrayDescriptor* put,
                                          const ArrayDescriptor* get) {
    random_seed(size, put, get);
}
// A program is one image: that its numbers differ from other images' needs nothing.
TARN_EXPORT void _gfortran_random_init(std::int32_t repeatable, std::int32_t, std::int32_t) {
    if (repeatable != 0) {
        intrinsics::set_repeatable_seed();
    } else {
        intrinsics::set_seed_from_system();
    }
}

TARN_EXPORT std::int32_t _gfortran_irand(const std::int32_t* flag) {
    return irand(flag);
}
TARN_EXPORT float _gfortran_rand(const std::int32_t* flag) {
    return intrinsics::real_of_irand(irand(flag));
}
TARN_EXPORT void _gfortran_srand(const std::int32_t* seed) {
    intrinsics::seed_irand(*seed);
}
}
