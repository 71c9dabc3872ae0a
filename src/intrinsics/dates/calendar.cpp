#include "intrinsics/dates/calendar.h"

#include <cstdio>
#include <string_view>

#include "failure/failure.h"
#include "frame/state.h"

namespace tarn::intrinsics {
namespace {

constexpr int out_of_range = 428;

constexpr int lengths_from_march[] = {31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 31, 28};
constexpr int days_before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
constexpr std::string_view weekday_names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
constexpr const char* month_names[] = {"January",   "February", "March",    "April",
                                       "May",       "June",     "July",     "August",
                                       "September", "October",  "November", "December"};
constexpr int seconds_a_day = 86400;

[[noreturn]] void fail_out_of_range() {
    frame::ensure_up();
    failure::fail(out_of_range);
}

// `leap_base` is the year after a leap year at or before the first.
double seconds_since(const LocalTime& moment, int first_year, int leap_base) {
    if (moment.month < 1 || moment.month > 12) fail_out_of_range();
    std::int64_t days = (std::int64_t{moment.year} - leap_base) / 4;
    days += std::int64_t{days_before_month(moment.month)} + moment.day - 1;
    if (moment.year % 4 == 0 && moment.month >= 3) ++days;
    const double seconds = (moment.year - static_cast<double>(first_year)) * 31536000.0 +
                           static_cast<double>(days) * seconds_a_day;
    return seconds + moment.hour * 3600.0 + moment.minute * 60.0 + moment.second;
}

}  // namespace

// Counts from 29 February 1972, day 789: there, four years begin with their leap day.
Date date_of(std::int32_t seconds) {
    const int day = seconds / seconds_a_day - 789;
    if (seconds < 0 || day < 0) fail_out_of_range();
    Date date{};
    date.weekday = (day + 2) % 7;
    date.year = 1972 + day / 1461 * 4;
    int rest = day % 1461;
    if (rest == 0) {
        date.month = 2;
        date.day = 29;
        return date;
    }
    const int years = (rest - 1) / 365;
    date.year += years;
    rest -= years * 365;
    int used = 0;
    for (; used < 11 && lengths_from_march[used] < rest; ++used) rest -= lengths_from_march[used];
    date.month = (used + 2) % 12 + 1;
    if (date.month <= 2) ++date.year;
    date.day = rest;
    return date;
}

int days_before_month(int month) {
    return days_before[month - 1];
}

std::string date_text(const Date& date, DateOrder order, bool long_year) {
    const bool day_first = order == DateOrder::day_first;
    const int first = day_first ? date.day : date.month;
    const int second = day_first ? date.month : date.day;
    char text[40];
    std::snprintf(text, sizeof text, "%02d/%02d/%0*d", first, second, long_year ? 4 : 2,
                  long_year ? date.year : date.year % 100);
    return text;
}

std::string date_in_words(const Date& date) {
    char text[80];
    std::snprintf(text, sizeof text, "%s, %d %s %s%02d", weekday_names[date.weekday].data(),
                  date.day, month_names[date.month - 1], date.year < 2000 ? "19" : "20",
                  date.year % 100);
    return text;
}

Date date_today() {
    const std::time_t now = std::time(nullptr);
    tm fields{};
    localtime_r(&now, &fields);
    return {fields.tm_wday, fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900};
}

double seconds_since_1900(const LocalTime& moment) {
    return seconds_since(moment, 1900, 1897);
}
double seconds_since_1980(const LocalTime& moment) {
    return seconds_since(moment, 1980, 1977);
}

}  // namespace tarn::intrinsics
