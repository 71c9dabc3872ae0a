// The entries of dates, times and clocks. What each does is told in include/tarn/dates.h.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <strings.h>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/characters/assignment.h"
#include "intrinsics/dates/calendar.h"
#include "intrinsics/dates/clock.h"
#include "intrinsics/marks.h"
#include "tarn/dates.h"

namespace {

using namespace tarn::intrinsics;

constexpr int two_digit_year = 411;
constexpr std::intptr_t room_for_long_year = 10;

void put(char* result, std::intptr_t length, std::string_view text) {
    copy_characters(text.data(), result, static_cast<std::intptr_t>(text.size()), length,
                    Overlap::plain, Undefined::allowed);
}

void put_today(char* result, std::intptr_t length, DateOrder order) {
    const bool long_year = length >= room_for_long_year;
    put(result, length, date_text(date_today(), order, long_year));
    if (long_year) return;
    const char* const word = std::getenv("DATE_FAIL");
    if (word == nullptr || strcasecmp(word, "YES") != 0) return;
    tarn::frame::ensure_up();
    tarn::failure::fail(two_digit_year);
}

void put_date(std::int32_t time, char* result, std::intptr_t length, DateOrder order) {
    put(result, length, date_text(date_of(time), order, length >= room_for_long_year));
}

void put_time(const LocalTime& time, char* result, std::intptr_t length) {
    const auto text = time_text(time);
    put(result, length, {text.data(), text.size()});
}

void put_time_now(char* result, std::intptr_t length) {
    put_time(local_time_now(), result, length);
}

std::int16_t narrow(int value) {
    return static_cast<std::int16_t>(value);
}

double seconds_since_1980_now() {
    return seconds_since_1980(local_time_now());
}

template <class Integer>
void system_clock(Integer* count, Integer* rate, Integer* maximum, std::int64_t counts_a_second) {
    constexpr std::int64_t billion = 1000000000;
    constexpr Integer top = std::numeric_limits<Integer>::max();
    const std::int64_t now = steady_nanoseconds() / (billion / counts_a_second);
    if (present(count)) *count = static_cast<Integer>(now & top);
    if (present(rate)) *rate = static_cast<Integer>(counts_a_second);
    if (present(maximum)) *maximum = top;
}

// In the units of 100 nanoseconds that the platform counts in.
template <class Real>
void cpu_time(Real* time) {
    const std::int64_t units = processor_nanoseconds() / 100;
    *time = static_cast<Real>(static_cast<double>(units) / 10000000.0);
}

}  // namespace

using tarn::frame::ensure_up;

extern "C" {

// ---- Today ----

TARN_EXPORT void DATE_h(char* result, std::intptr_t length) {
    put_today(result, length, DateOrder::month_first);
}
TARN_EXPORT void DATE(char* result, std::intptr_t length) {
    put_today(result, length, DateOrder::month_first);
}
TARN_EXPORT void EDATE_h(char* result, std::intptr_t length) {
    put_today(result, length, DateOrder::day_first);
}
TARN_EXPORT void EDATE(char* result, std::intptr_t length) {
    put_today(result, length, DateOrder::day_first);
}
TARN_EXPORT void FDATE_h(char* result, std::intptr_t length) {
    put(result, length, date_in_words(date_today()));
}
TARN_EXPORT void FDATE(char* result, std::intptr_t length) {
    put(result, length, date_in_words(date_today()));
}
TARN_EXPORT void TIME_h(char* result, std::intptr_t length) {
    put_time_now(result, length);
}
TARN_EXPORT void TIME(char* result, std::intptr_t length) {
    put_time_now(result, length);
}

// ---- Of a time value ----

TARN_EXPORT void TODATE_h(const std::int32_t* time, char* result, std::intptr_t length) {
    put_date(*time, result, length, DateOrder::month_first);
}
TARN_EXPORT void TOEDATE_h(const std::int32_t* time, char* result, std::intptr_t length) {
    put_date(*time, result, length, DateOrder::day_first);
}
TARN_EXPORT void TOFDATE_h(const std::int32_t* time, char* result, std::intptr_t length) {
    put(result, length, date_in_words(date_of(*time)));
}
TARN_EXPORT void TOTIME_h(const std::int32_t* time, char* result, std::intptr_t length) {
    LocalTime fields{};
    local_time(*time, fields);
    put_time(fields, result, length);
}
TARN_EXPORT void CONVDATE_h(const std::int32_t* time, std::int16_t* weekday, std::int16_t* day,
                            std::int16_t* month, std::int16_t* year) {
    const Date date = date_of(*time);
    *weekday = narrow(date.weekday);
    *day = narrow(date.day);
    *month = narrow(date.month);
    *year = narrow(date.year);
}

// ---- Seconds ----

TARN_EXPORT void SECONDS_SINCE_1900_h(double* result, const std::int16_t* seconds,
                                      const std::int16_t* minutes, const std::int16_t* hours,
                                      const std::int16_t* day, const std::int16_t* month,
                                      const std::int16_t* year) {
    *result = seconds_since_1900({*year, *month, *day, *hours, *minutes, *seconds, 0, 0});
}
TARN_EXPORT void SECONDS_SINCE_1980_h(double* result) {
    *result = seconds_since_1980_now();
}
TARN_EXPORT void SECONDS_SINCE_1970_h(double* result) {
    *result = seconds_since_1980_now() + 315532800.0;
}
TARN_EXPORT double DSECS_1900_h(double* result) {
    const LocalTime now = local_time_now();
    const double seconds = seconds_since_1900(now) + now.millisecond / 1000.0;
    if (present(result)) *result = seconds;
    return seconds;
}

// ---- Clocks. The start of the library sets the elapsed clock going. ----

TARN_EXPORT void DCLOCK_h(double* result) {
    ensure_up();
    *result = elapsed_clock();
}
TARN_EXPORT void DCLOCK(double* result) {
    ensure_up();
    *result = elapsed_clock();
}
TARN_EXPORT void CLOCK_h(float* result) {
    ensure_up();
    *result = static_cast<float>(elapsed_clock());
}
TARN_EXPORT void CLOCK(float* result) {
    ensure_up();
    *result = static_cast<float>(elapsed_clock());
}
TARN_EXPORT double HIGH_RES_CLOCK_h() {
    return static_cast<double>(steady_nanoseconds()) / 1e9;
}
TARN_EXPORT void SYSTEM_CLOCK_hI(std::int16_t* count, std::int16_t* rate, std::int16_t* maximum) {
    system_clock(count, rate, maximum, 1000);
}
TARN_EXPORT void SYSTEM_CLOCK_hJ(std::int32_t* count, std::int32_t* rate, std::int32_t* maximum) {
    system_clock(count, rate, maximum, 10000);
}
TARN_EXPORT void SYSTEM_CLOCK_hW(std::int64_t* count, std::int64_t* rate, std::int64_t* maximum) {
    system_clock(count, rate, maximum, 10000);
}
TARN_EXPORT void CPU_TIME_R4_h(float* time) {
    cpu_time(time);
}
TARN_EXPORT void CPU_TIME_R8_h(double* time) {
    cpu_time(time);
}
TARN_EXPORT void CPU_TIME_RX_h(long double* time) {
    cpu_time(time);
}
}
