// Dates and clocks: the calendar against the C library's, texts, limits, zones.
#include "tarn/dates.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "intrinsics/dates/calendar.h"

namespace tarn::intrinsics {
namespace {

constexpr std::int32_t first_second = 68169600;  // 29 February 1972

class Zone {
  public:
    explicit Zone(const char* name) {
        setenv("TZ", name, 1);
        tzset();
    }
    ~Zone() {
        unsetenv("TZ");
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
};

using Write = void (*)(char*, std::intptr_t);
using WriteOf = void (*)(const std::int32_t*, char*, std::intptr_t);

std::string shown(Write write, std::size_t room) {
    std::string text(room, '#');
    write(text.data(), static_cast<std::intptr_t>(room));
    return text;
}
std::string shown(WriteOf write, std::int32_t time, std::size_t room) {
    std::string text(room, '#');
    write(&time, text.data(), static_cast<std::intptr_t>(room));
    return text;
}

TEST(Calendar, EveryDayUntilTheLastThatFits) {
    for (std::int64_t time = first_second; time <= INT32_MAX; time += 86400 / 2 + 1) {
        const auto seconds = static_cast<std::int32_t>(time);
        const Date date = date_of(seconds);
        const std::time_t wide = seconds;
        tm fields{};
        gmtime_r(&wide, &fields);
        ASSERT_EQ(date.year, fields.tm_year + 1900) << seconds;
        ASSERT_EQ(date.month, fields.tm_mon + 1) << seconds;
        ASSERT_EQ(date.day, fields.tm_mday) << seconds;
        ASSERT_EQ(date.weekday, fields.tm_wday) << seconds;
    }
    std::int16_t weekday = 0, day = 0, month = 0, year = 0;
    CONVDATE_h(&first_second, &weekday, &day, &month, &year);
    EXPECT_EQ(weekday, 2);
    EXPECT_EQ(day, 29);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(year, 1972);
    for (const std::int32_t early : {0, -1, INT32_MIN, first_second - 1})
        EXPECT_EXIT(CONVDATE_h(&early, &weekday, &day, &month, &year), testing::ExitedWithCode(1),
                    "428, Date out of range");
}

TEST(Texts, OfATimeValue) {
    const Zone zone("UTC");
    constexpr std::int32_t new_year = 946684800;  // 1 January 2000
    EXPECT_EQ(shown(TODATE_h, new_year - 1, 8), "12/31/99");
    EXPECT_EQ(shown(TODATE_h, new_year - 1, 11), "12/31/1999 ");
    EXPECT_EQ(shown(TOEDATE_h, new_year - 1, 10), "31/12/1999");
    EXPECT_EQ(shown(TOEDATE_h, new_year, 9), "01/01/00 ");
    EXPECT_EQ(shown(TODATE_h, new_year, 4), "01/0");
    EXPECT_EQ(shown(TOFDATE_h, new_year + 4 * 86400, 30), "Wednesday, 5 January 2000     ");
    EXPECT_EQ(shown(TOFDATE_h, new_year - 1, 24), "Friday, 31 December 1999");
    EXPECT_EQ(shown(TOFDATE_h, new_year - 1, 6), "Friday");
    EXPECT_EQ(shown(TOTIME_h, new_year - 1, 9), "23:59:59 ");
    EXPECT_EXIT(shown(TOFDATE_h, -1, 30), testing::ExitedWithCode(1), "428");
}

TEST(Texts, TimesAreLocal) {
    const struct {
        const char* zone;
        const char* text;
        int bias;
    } rows[] = {
        {"UTC", "00:00:00", 0},
        {"XXX-5:30", "05:30:00", 330},
        {"XXX3:30", "20:30:00", -210},
        {"XXX-14", "14:00:00", 840},
    };
    for (const auto& row : rows) {
        const Zone zone(row.zone);
        EXPECT_EQ(shown(TOTIME_h, 946684800, 8), row.text);
        EXPECT_EQ(local_time_now().bias, row.bias);
    }
}

TEST(Texts, Today) {
    const std::string date = shown(DATE_h, 10);
    const std::string european = shown(EDATE_h, 10);
    EXPECT_EQ(date.substr(0, 2), european.substr(3, 2));
    EXPECT_EQ(date.substr(3, 2), european.substr(0, 2));
    EXPECT_EQ(date.substr(5), european.substr(5));
    EXPECT_EQ(shown(DATE, 8), date.substr(0, 6) + date.substr(8));
    EXPECT_EQ(shown(TIME_h, 8)[2], ':');
    EXPECT_NE(shown(FDATE_h, 30).find(", "), std::string::npos);
    setenv("DATE_FAIL", "no", 1);
    shown(DATE_h, 8);
    setenv("DATE_FAIL", "yes", 1);
    shown(DATE_h, 10);
    EXPECT_EXIT(shown(DATE_h, 8), testing::ExitedWithCode(1),
                "411, This access of date facilities is not Millenium compatible");
    EXPECT_EXIT(shown(EDATE, 9), testing::ExitedWithCode(1), "411");
    unsetenv("DATE_FAIL");
}

TEST(DateAndTime, TextsAndValuesOfOneMoment) {
    const Zone east("IST-5:30");
    std::string date(10, '#'), time(10, '#'), zone(5, '#');
    std::int32_t values[8] = {};
    const std::time_t before = std::time(nullptr);
    DATE_AND_TIME_hJ(date.data(), time.data(), zone.data(), values, 10, 10, 5);
    char expected[40];
    std::snprintf(expected, sizeof expected, "%04d%02d%02d  %02d%02d%02d.%03d", values[0],
                  values[1], values[2], values[4], values[5], values[6], values[7]);
    EXPECT_EQ(date + time, expected);
    EXPECT_EQ(zone, "+0530");
    EXPECT_EQ(values[3], 330);
    tm fields{};
    fields.tm_year = values[0] - 1900, fields.tm_mon = values[1] - 1, fields.tm_mday = values[2];
    fields.tm_hour = values[4], fields.tm_min = values[5], fields.tm_sec = values[6];
    EXPECT_NEAR(static_cast<double>(std::mktime(&fields)), static_cast<double>(before), 2);

    // A short text is cut; what is absent is left alone.
    const Zone west("NST3:30");
    auto* const absent = reinterpret_cast<char*>(0xF0F0F0F0F0F0F0F0);
    std::int16_t narrow[8] = {};
    std::int64_t wide[8] = {};
    zone = "#####";
    DATE_AND_TIME_hI(absent, nullptr, zone.data(), narrow, 8, 10, 3);
    EXPECT_EQ(zone, "-03##");
    DATE_AND_TIME_hW(date.data(), absent, absent, wide, 4, 0, 0);
    EXPECT_EQ(date.substr(0, 4), std::to_string(wide[0]));
    EXPECT_EQ(narrow[3], -210);
    EXPECT_EQ(wide[3], -210);
    DATE_AND_TIME_hJ(absent, absent, absent, nullptr, 0, 0, 0);
}

TEST(Seconds, SinceAYear) {
    // 1900 counts as a leap year, so that everything behind it is a day late.
    constexpr double until_1970 = 2208988800.0 + 86400;
    const struct {
        std::int16_t year, month, day, hours, minutes, seconds;
        double result;
    } rows[] = {
        {1900, 1, 1, 0, 0, 0, 0.0},
        {1970, 1, 1, 0, 0, 0, until_1970},
        {2000, 2, 29, 12, 30, 15, until_1970 + 951827415.0},
        {2000, 3, 1, 0, 0, 0, until_1970 + 951868800.0},
        {2001, 1, 1, 0, 0, 0, until_1970 + 978307200.0},
    };
    for (const auto& row : rows) {
        double result = -1;
        SECONDS_SINCE_1900_h(&result, &row.seconds, &row.minutes, &row.hours, &row.day, &row.month,
                             &row.year);
        EXPECT_EQ(result, row.result) << row.year;
    }
    const std::int16_t zero = 0, one = 1, thirteen = 13;
    double result = 0;
    EXPECT_EXIT(SECONDS_SINCE_1900_h(&result, &zero, &zero, &zero, &one, &thirteen, &one),
                testing::ExitedWithCode(1), "428");
    const Zone zone("UTC");
    double since_1970 = 0, since_1980 = 0;
    SECONDS_SINCE_1970_h(&since_1970);
    SECONDS_SINCE_1980_h(&since_1980);
    EXPECT_NEAR(since_1970, static_cast<double>(std::time(nullptr)), 2);
    EXPECT_NEAR(since_1970 - since_1980, 315532800.0, 2);
    EXPECT_NEAR(DSECS_1900_h(nullptr), since_1970 + until_1970, 2);
}

TEST(Clocks, RatesLimitsAndAbsentArguments) {
    std::int16_t count_i = -1, rate_i = -1, top_i = -1;
    SYSTEM_CLOCK_hI(&count_i, &rate_i, &top_i);
    EXPECT_GE(count_i, 0);
    EXPECT_EQ(rate_i, 1000);
    EXPECT_EQ(top_i, 32767);
    std::int32_t rate_j = -1;
    auto* const absent = reinterpret_cast<std::int32_t*>(0xF0F0F0F0F0F0F0F0);
    SYSTEM_CLOCK_hJ(absent, &rate_j, nullptr);
    EXPECT_EQ(rate_j, 10000);
    std::int64_t count_w = -1, later_w = -1, top_w = -1;
    SYSTEM_CLOCK_hW(&count_w, nullptr, &top_w);
    EXPECT_EQ(top_w, INT64_MAX);
    SYSTEM_CLOCK_hW(&later_w, nullptr, nullptr);
    EXPECT_GE(later_w, count_w);
    EXPECT_LT(later_w - count_w, 100000);

    double elapsed = -1, later = -1;
    DCLOCK_h(&elapsed);
    DCLOCK(&later);
    EXPECT_GE(elapsed, 0);
    EXPECT_GE(later, elapsed);
    EXPECT_GT(HIGH_RES_CLOCK_h(), 0);
    double used = -1;
    long double used_more = -1;
    CPU_TIME_R8_h(&used);
    CPU_TIME_RX_h(&used_more);
    EXPECT_GT(used, 0);
    EXPECT_GE(used_more, used);
}

}  // namespace
}  // namespace tarn::intrinsics
