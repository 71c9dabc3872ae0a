// Dates as numbers and as texts.
#pragma once

#include <cstdint>
#include <string>

#include "intrinsics/dates/clock.h"

namespace tarn::intrinsics {

struct Date {
    int weekday;  // 0 is Sunday
    int day;
    int month;
    int year;
};

// The date of a count of seconds since 1970; one before 29 February 1972 is failure 428.
Date date_of(std::int32_t seconds);

// Days of a common year before a month (1 to 12).
int days_before_month(int month);

enum class DateOrder { month_first, day_first };
// mm/dd/yyyy, or mm/dd/yy.
std::string date_text(const Date& date, DateOrder order, bool long_year);
// Wednesday, 5 January 2000
std::string date_in_words(const Date& date);

Date date_today();

// Seconds from the beginning of a year to a moment, by a calendar that has a leap day in every
// fourth year. A month that isn't one is failure 428.
double seconds_since_1900(const LocalTime& moment);
double seconds_since_1980(const LocalTime& moment);

}  // namespace tarn::intrinsics
