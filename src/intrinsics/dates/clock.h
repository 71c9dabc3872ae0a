// The clocks: what time it is, how much has passed, how much the processor has worked.
#pragma once

#include <array>
#include <cstdint>
#include <ctime>

namespace tarn::intrinsics {

struct LocalTime {
    int year;
    int month;  // 1 to 12
    int day;
    int hour;
    int minute;
    int second;
    int millisecond;
    int bias;  // minutes that local time is ahead of UTC
};
LocalTime local_time_now();
// Of a count of seconds since 1970, without milliseconds; false where the calendar ends.
bool local_time(std::time_t seconds, LocalTime& fields);

// hh:mm:ss
std::array<char, 8> time_text(const LocalTime& time);

// Nanoseconds of a clock that is never set.
std::int64_t steady_nanoseconds();
// Nanoseconds that the process has used the processor, in the program and the system.
std::int64_t processor_nanoseconds();

// Seconds since the first call, by the time of day.
double elapsed_clock();

}  // namespace tarn::intrinsics
