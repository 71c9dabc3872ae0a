// The native generators as gfortran calls them: `name@` arrives as `name__`.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/random.h"

extern "C" {

TARN_EXPORT double random__() {
    return RANDOM_h();
}
TARN_EXPORT void set_seed__(const double* seed) {
    SET_SEED_h(seed);
}
TARN_EXPORT void set_random_seed__(const std::uint32_t* words) {
    SET_RANDOM_SEED_h(words);
}
TARN_EXPORT void get_random_seed__(std::uint32_t* words) {
    GET_RANDOM_SEED_h(words);
}
TARN_EXPORT void date_time_seed__() {
    DATE_TIME_SEED_h();
}

TARN_EXPORT void mt_randomr4__(float* value) {
    MT_RANDOMR4_h(value);
}
TARN_EXPORT void mt_randomr8__(double* value) {
    MT_RANDOMR8_h(value);
}
TARN_EXPORT void mt_randomi4__(std::uint32_t* value) {
    MT_RANDOMI4_h(value);
}
TARN_EXPORT void mt_randomi8__(std::uint64_t* value) {
    MT_RANDOMI8_h(value);
}
TARN_EXPORT void mt_randomr4_array__(float* values, const std::int32_t* count) {
    MT_RANDOMR4_hARRAY(values, *count);
}
TARN_EXPORT void mt_randomr8_array__(double* values, const std::int32_t* count) {
    MT_RANDOMR8_hARRAY(values, *count);
}
TARN_EXPORT void mt_random_seed__(const std::int32_t* action, std::int32_t* seed) {
    MT_RANDOM_SEED_h(*action, seed);
}
TARN_EXPORT void mt_date_time_seed__() {
    __SET_DATE_TIME_SEED();
}
}
