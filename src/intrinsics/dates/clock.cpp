#include "intrinsics/dates/clock.h"

#include "frame/hooks.h"
#include "intrinsics/dates/calendar.h"

namespace tarn::intrinsics {
namespace {

constexpr std::int64_t billion = 1000000000;

std::int64_t nanoseconds_of(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * billion + now.tv_nsec;
}

void put_two(char* text, int value) {
    text[0] = static_cast<char>('0' + value / 10 % 10);
    text[1] = static_cast<char>('0' + value % 10);
}

// The moment of the first call of the elapsed clock. Its fields aren't wanted before the second:
// to find them the C library reads the rules of the time zone, which a start has no time for.
struct ElapsedClock {
    bool called = false;
    timespec first{};
};
constinit ElapsedClock elapsed;

timespec moment_now() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

LocalTime local_time_at(const timespec& moment) {
    LocalTime fields{};
    local_time(moment.tv_sec, fields);
    fields.millisecond = static_cast<int>(moment.tv_nsec / 1000000);
    return fields;
}

// In a year of 365 days: 29 February counts as the day before it.
int day_of_year(const LocalTime& time) {
    const int day = time.month == 2 && time.day == 29 ? 28 : time.day;
    return days_before_month(time.month) + day - 1;
}

double seconds_of_day(const LocalTime& time) {
    const int minutes = time.hour * 60 + time.minute;
    return ((minutes * 60 + time.second) * 1000 + time.millisecond) * 0.001;
}

void start_clock() {
    elapsed_clock();
}
void install_clock() {
    frame::hooks().start_clock = start_clock;
}
TARN_PREAMBLE(install_clock)

}  // namespace

bool local_time(std::time_t seconds, LocalTime& fields) {
    tm broken{};
    if (localtime_r(&seconds, &broken) == nullptr) return false;
    fields = {broken.tm_year + 1900,
              broken.tm_mon + 1,
              broken.tm_mday,
              broken.tm_hour,
              broken.tm_min,
              broken.tm_sec,
              0,
              static_cast<int>(broken.tm_gmtoff / 60)};
    return true;
}

LocalTime local_time_now() {
    return local_time_at(moment_now());
}

std::array<char, 8> time_text(const LocalTime& time) {
    std::array<char, 8> text{'0', '0', ':', '0', '0', ':', '0', '0'};
    put_two(text.data(), time.hour);
    put_two(text.data() + 3, time.minute);
    put_two(text.data() + 6, time.second);
    return text;
}

std::int64_t steady_nanoseconds() {
    return nanoseconds_of(CLOCK_MONOTONIC);
}
std::int64_t processor_nanoseconds() {
    return nanoseconds_of(CLOCK_PROCESS_CPUTIME_ID);
}

double elapsed_clock() {
    const timespec now = moment_now();
    const LocalTime first = elapsed.called ? local_time_at(elapsed.first) : LocalTime{};
    const double first_time = elapsed.called ? seconds_of_day(first) : 0;
    // A first call at the very midnight can't be told from none.
    if (first_time == 0) {
        elapsed = {true, now};
        return 0;
    }
    const LocalTime fields = local_time_at(now);
    int days = day_of_year(fields) - day_of_year(first);
    if (days < 0) days += 365;
    return days * 86400.0 + seconds_of_day(fields) - first_time;
}

}  // namespace tarn::intrinsics
