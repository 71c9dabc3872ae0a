// gfortran's dates, times and clocks.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>
#include <sys/resource.h>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/dates/clock.h"
#include "pairing/gcc/descriptor_runs.h"

namespace tarn::gcc {
namespace {

using intrinsics::LocalTime;

constexpr int nonconformant = 389;
constexpr int out_of_memory = 408;

void require_elements(const ArrayDescriptor& array, std::int64_t needed, const char* argument) {
    const std::int64_t extent = array.dimension[0].extent();
    if (extent >= needed) return;
    frame::ensure_up();
    failure::fail(nonconformant, std::string("    ") + argument + " has " + std::to_string(extent) +
                                     " elements, and needs " + std::to_string(needed) + "\n");
}

template <class Integer, std::size_t count>
void store(const ArrayDescriptor& array, const int (&values)[count]) {
    for (std::size_t i = 0; i < count; ++i)
        element<Integer>(array, static_cast<std::int64_t>(i)) = values[i];
}

// ---- Texts ----

// Day, month, year and time in the words of the process's locale; empty where there is no such
// moment or no room.
std::size_t moment_in_words(char* text, std::size_t room, std::time_t moment) {
    tm fields{};
    if (localtime_r(&moment, &fields) == nullptr) return 0;
    return std::strftime(text, room, "%c", &fields);
}

void new_moment_text(char** result, std::size_t* length, std::time_t moment) {
    constexpr std::size_t room = 100;
    auto* const text = static_cast<char*>(std::malloc(room));
    if (text == nullptr) {
        frame::ensure_up();
        failure::fail(out_of_memory);
    }
    *length = moment_in_words(text, room, moment);
    *result = text;
}

// All of it or nothing.
void put_moment_text(char* result, std::size_t length, std::time_t moment) {
    char text[100];
    const std::size_t count = moment_in_words(text, sizeof text, moment);
    const std::size_t copied = count <= length ? count : 0;
    std::copy_n(text, copied, result);
    std::fill_n(result + copied, length - copied, ' ');
}

// Digits into a CHARACTER variable that may be shorter or longer.
void put_figures(char* result, std::size_t length, const std::string& text) {
    const std::size_t count = std::min(length, text.size());
    std::copy_n(text.begin(), count, result);
    std::fill_n(result + count, length - count, ' ');
}

std::string figures(const char* format, int first, int second, int third, int fourth) {
    char text[64];
    std::snprintf(text, sizeof text, format, first, second, third, fourth);
    return text;
}

void date_and_time(char* date, char* time, char* zone, const ArrayDescriptor* values,
                   std::size_t date_length, std::size_t time_length, std::size_t zone_length) {
    const LocalTime now = intrinsics::local_time_now();
    if (values != nullptr) {
        const int fields[] = {now.year, now.month,  now.day,    now.bias,
                              now.hour, now.minute, now.second, now.millisecond};
        require_elements(*values, 8, "VALUES of DATE_AND_TIME");
        switch (values->element_length) {
            case 1:
                store<std::int8_t>(*values, fields);
                break;
            case 2:
                store<std::int16_t>(*values, fields);
                break;
            case 4:
                store<std::int32_t>(*values, fields);
                break;
            case 8:
                store<std::int64_t>(*values, fields);
                break;
            default:
                store<__int128>(*values, fields);
        }
    }
    if (date != nullptr)
        put_figures(date, date_length, figures("%04d%02d%02d", now.year, now.month, now.day, 0));
    if (time != nullptr)
        put_figures(
            time, time_length,
            figures("%02d%02d%02d.%03d", now.hour, now.minute, now.second, now.millisecond));
    if (zone != nullptr) {
        const int bias = std::abs(now.bias);
        put_figures(zone, zone_length,
                    figures(now.bias < 0 ? "-%02d%02d" : "+%02d%02d", bias / 60, bias % 60, 0, 0));
    }
}

// ---- Fields ----

// The nine fields of C's `tm`; zeros where the calendar ends.
template <class Integer>
void store_fields(const ArrayDescriptor& array, const tm* fields, const char* argument) {
    require_elements(array, 9, argument);
    const tm none{};
    const tm& of = fields != nullptr ? *fields : none;
    const int values[] = {of.tm_sec,  of.tm_min,  of.tm_hour, of.tm_mday, of.tm_mon,
                          of.tm_year, of.tm_wday, of.tm_yday, of.tm_isdst};
    store<Integer>(array, values);
}

template <class Integer>
void local_fields(const Integer* moment, const ArrayDescriptor& array) {
    const std::time_t seconds = *moment;
    tm fields{};
    store_fields<Integer>(array, localtime_r(&seconds, &fields), "TARRAY of LTIME");
}

template <class Integer>
void universal_fields(const Integer* moment, const ArrayDescriptor& array) {
    const std::time_t seconds = *moment;
    tm fields{};
    store_fields<Integer>(array, gmtime_r(&seconds, &fields), "TARRAY of GMTIME");
}

template <class Integer>
void date_fields(const ArrayDescriptor& array) {
    require_elements(array, 3, "TARRAY of IDATE");
    const LocalTime now = intrinsics::local_time_now();
    const int values[] = {now.day, now.month, now.year};
    store<Integer>(array, values);
}

template <class Integer>
void time_fields(const ArrayDescriptor& array) {
    require_elements(array, 3, "TARRAY of ITIME");
    const LocalTime now = intrinsics::local_time_now();
    const int values[] = {now.hour, now.minute, now.second};
    store<Integer>(array, values);
}

// ---- Clocks ----

template <class Integer>
void system_clock(Integer* count, Integer* rate, Integer* maximum) {
    constexpr std::int64_t billion = 1000000000;
    constexpr std::int64_t counts_a_second = sizeof(Integer) == 4 ? 1000 : billion;
    constexpr Integer top = std::numeric_limits<Integer>::max();
    if (count != nullptr)
        *count = static_cast<Integer>(
            intrinsics::steady_nanoseconds() / (billion / counts_a_second) & top);
    if (rate != nullptr) *rate = static_cast<Integer>(counts_a_second);
    if (maximum != nullptr) *maximum = top;
}

template <class Real>
Real processor_seconds() {
    return static_cast<Real>(intrinsics::processor_nanoseconds()) / static_cast<Real>(1e9);
}

struct Usage {
    std::int64_t user;  // microseconds
    std::int64_t system;
};

Usage usage_so_far() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return {used.ru_utime.tv_sec * std::int64_t{1000000} + used.ru_utime.tv_usec,
            used.ru_stime.tv_sec * std::int64_t{1000000} + used.ru_stime.tv_usec};
}

float seconds_of(std::int64_t microseconds) {
    return static_cast<float>(static_cast<double>(microseconds) * 1e-6);
}

float store_usage(const ArrayDescriptor& array, Usage usage, const char* argument) {
    require_elements(array, 2, argument);
    const float user = seconds_of(usage.user);
    const float system = seconds_of(usage.system);
    element<float>(array, 0) = user;
    element<float>(array, 1) = system;
    return user + system;
}

float elapsed_usage(const ArrayDescriptor& array) {
    return store_usage(array, usage_so_far(), "TARRAY of ETIME");
}

// What DTIME told last.
struct LastUsage {
    std::atomic<std::int64_t> user{0};
    std::atomic<std::int64_t> system{0};
};
constinit LastUsage last_usage;

float usage_since_last(const ArrayDescriptor& array) {
    const Usage now = usage_so_far();
    const Usage since = {now.user - last_usage.user.exchange(now.user),
                         now.system - last_usage.system.exchange(now.system)};
    return store_usage(array, since, "TARRAY of DTIME");
}

// Seconds since midnight, less the argument, which counts modulo a day.
float seconds_of_day_since(float reference) {
    const LocalTime now = intrinsics::local_time_now();
    // In single precision throughout: a moment less itself must not come out below zero.
    const auto seconds = static_cast<float>(now.hour * 3600.0 + now.minute * 60.0 + now.second +
                                            now.millisecond * 0.001);
    const float since = std::fmod(reference, 86400.0F);
    return seconds - (seconds < since ? since - 86400.0F : since);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

// ---- Dates and times ----

TARN_EXPORT void _gfortran_date_and_time(char* date, char* time, char* zone,
                                         const ArrayDescriptor* values, std::size_t date_length,
                                         std::size_t time_length, std::size_t zone_length) {
    date_and_time(date, time, zone, values, date_length, time_length, zone_length);
}
TARN_EXPORT void _gfortran_ctime(char** result, std::size_t* length, std::int64_t moment) {
    new_moment_text(result, length, moment);
}
TARN_EXPORT void _gfortran_ctime_sub(const std::int64_t* moment, char* result, std::size_t length) {
    put_moment_text(result, length, *moment);
}
TARN_EXPORT void _gfortran_fdate(char** result, std::size_t* length) {
    new_moment_text(result, length, std::time(nullptr));
}
TARN_EXPORT void _gfortran_fdate_sub(char* result, std::size_t length) {
    put_moment_text(result, length, std::time(nullptr));
}
TARN_EXPORT void _gfortran_idate_i4(const ArrayDescriptor* array) {
    date_fields<std::int32_t>(*array);
}
TARN_EXPORT void _gfortran_idate_i8(const ArrayDescriptor* array) {
    date_fields<std::int64_t>(*array);
}
TARN_EXPORT void _gfortran_itime_i4(const ArrayDescriptor* array) {
    time_fields<std::int32_t>(*array);
}
TARN_EXPORT void _gfortran_itime_i8(const ArrayDescriptor* array) {
    time_fields<std::int64_t>(*array);
}
TARN_EXPORT void _gfortran_ltime_i4(const std::int32_t* moment, const ArrayDescriptor* array) {
    local_fields(moment, *array);
}
TARN_EXPORT void _gfortran_ltime_i8(const std::int64_t* moment, const ArrayDescriptor* array) {
    local_fields(moment, *array);
}
TARN_EXPORT void _gfortran_gmtime_i4(const std::int32_t* moment, const ArrayDescriptor* array) {
    universal_fields(moment, *array);
}
TARN_EXPORT void _gfortran_gmtime_i8(const std::int64_t* moment, const ArrayDescriptor* array) {
    universal_fields(moment, *array);
}
TARN_EXPORT std::int32_t _gfortran_time_func() {
    return static_cast<std::int32_t>(std::time(nullptr));
}
TARN_EXPORT std::int64_t _gfortran_time8_func() {
    return std::time(nullptr);
}
TARN_EXPORT float _gfortran_secnds(const float* reference) {
    return seconds_of_day_since(*reference);
}

// ---- Clocks ----

TARN_EXPORT void _gfortran_system_clock_4(std::int32_t* count, std::int32_t* rate,
                                          std::int32_t* maximum) {
    system_clock(count, rate, maximum);
}
TARN_EXPORT void _gfortran_system_clock_8(std::int64_t* count, std::int64_t* rate,
                                          std::int64_t* maximum) {
    system_clock(count, rate, maximum);
}
TARN_EXPORT void _gfortran_cpu_time_4(float* time) {
    *time = processor_seconds<float>();
}
TARN_EXPORT void _gfortran_cpu_time_8(double* time) {
    *time = processor_seconds<double>();
}
TARN_EXPORT void _gfortran_cpu_time_10(long double* time) {
    *time = processor_seconds<long double>();
}
TARN_EXPORT void _gfortran_cpu_time_16(__float128* time) {
    *time = processor_seconds<__float128>();
}
TARN_EXPORT float _gfortran_second() {
    return processor_seconds<float>();
}
TARN_EXPORT void _gfortran_second_sub(float* time) {
    *time = processor_seconds<float>();
}
TARN_EXPORT float _gfortran_etime(const ArrayDescriptor* array) {
    return elapsed_usage(*array);
}
TARN_EXPORT void _gfortran_etime_sub(const ArrayDescriptor* array, float* result) {
    *result = elapsed_usage(*array);
}
TARN_EXPORT float _gfortran_dtime(const ArrayDescriptor* array) {
    return usage_since_last(*array);
}
TARN_EXPORT void _gfortran_dtime_sub(const ArrayDescriptor* array, float* result) {
    *result = usage_since_last(*array);
}
TARN_EXPORT std::int32_t _gfortran_mclock() {
    return static_cast<std::int32_t>(std::clock());
}
TARN_EXPORT std::int64_t _gfortran_mclock8() {
    return std::clock();
}
}
