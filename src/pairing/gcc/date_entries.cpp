// The library's dates and clocks as gfortran calls them: `name@` arrives as `name__`. A function
// with a CHARACTER result and a subroutine with one CHARACTER argument are called alike.
#include <cstddef>
#include <cstdint>

#include "frame/link_name.h"
#include "intrinsics/dates/calendar.h"
#include "tarn/dates.h"

namespace {

std::intptr_t length_of(std::size_t length) {
    return static_cast<std::intptr_t>(length);
}

// Texts of a time value may be called as functions (`text = todate@(time)`: the result, its length,
// the time) and as subroutines (`call todate@(time, text)`: the time, the text, its length). An
// address is never as small as a length.
void put_text(void (*write)(const std::int32_t*, char*, std::intptr_t), void* first, void* second,
              void* third) {
    constexpr std::uintptr_t lowest_address = 65536;
    const auto word = [](void* argument) { return reinterpret_cast<std::intptr_t>(argument); };
    if (reinterpret_cast<std::uintptr_t>(second) < lowest_address) {
        write(static_cast<const std::int32_t*>(third), static_cast<char*>(first), word(second));
    } else {
        write(static_cast<const std::int32_t*>(first), static_cast<char*>(second), word(third));
    }
}

}  // namespace

extern "C" {

TARN_EXPORT void date__(char* result, std::size_t length) {
    DATE_h(result, length_of(length));
}
TARN_EXPORT void edate__(char* result, std::size_t length) {
    EDATE_h(result, length_of(length));
}
TARN_EXPORT void fdate__(char* result, std::size_t length) {
    FDATE_h(result, length_of(length));
}
TARN_EXPORT void time__(char* result, std::size_t length) {
    TIME_h(result, length_of(length));
}
TARN_EXPORT void todate__(void* first, void* second, void* third) {
    put_text(TODATE_h, first, second, third);
}
TARN_EXPORT void toedate__(void* first, void* second, void* third) {
    put_text(TOEDATE_h, first, second, third);
}
TARN_EXPORT void tofdate__(void* first, void* second, void* third) {
    put_text(TOFDATE_h, first, second, third);
}
TARN_EXPORT void totime__(void* first, void* second, void* third) {
    put_text(TOTIME_h, first, second, third);
}

TARN_EXPORT void convdate__(const std::int32_t* time, std::int32_t* weekday, std::int32_t* day,
                            std::int32_t* month, std::int32_t* year) {
    std::int16_t fields[4];
    CONVDATE_h(time, fields, fields + 1, fields + 2, fields + 3);
    *weekday = fields[0];
    *day = fields[1];
    *month = fields[2];
    *year = fields[3];
}
TARN_EXPORT void seconds_since_1900__(double* result, const std::int32_t* seconds,
                                      const std::int32_t* minutes, const std::int32_t* hours,
                                      const std::int32_t* day, const std::int32_t* month,
                                      const std::int32_t* year) {
    // An INTEGER holds more than the 16 bits of the library's own entry: 86400 seconds, say.
    *result = tarn::intrinsics::seconds_since_1900(
        {*year, *month, *day, *hours, *minutes, *seconds, 0, 0});
}
TARN_EXPORT void seconds_since_1970__(double* result) {
    SECONDS_SINCE_1970_h(result);
}
TARN_EXPORT void seconds_since_1980__(double* result) {
    SECONDS_SINCE_1980_h(result);
}
TARN_EXPORT void dsecs_1900__(double* result) {
    DSECS_1900_h(result);
}
TARN_EXPORT void dclock__(double* result) {
    DCLOCK_h(result);
}
TARN_EXPORT void clock__(float* result) {
    CLOCK_h(result);
}
TARN_EXPORT double high_res_clock__() {
    return HIGH_RES_CLOCK_h();
}
}
