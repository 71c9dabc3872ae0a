// DATE_AND_TIME for integers of each width. What it gives is told in include/tarn/dates.h.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "frame/link_name.h"
#include "intrinsics/characters/assignment.h"
#include "intrinsics/dates/clock.h"
#include "intrinsics/marks.h"
#include "tarn/dates.h"

namespace {

using namespace tarn::intrinsics;

// As much of a text as there is room for, and blanks behind it.
void put(char* result, std::intptr_t length, std::string_view text) {
    if (!present(result)) return;
    copy_characters(text.data(), result, static_cast<std::intptr_t>(text.size()), length,
                    Overlap::plain, Undefined::allowed);
}

template <class Integer>
void date_and_time(char* date, char* time, char* zone, Integer* values, std::intptr_t date_length,
                   std::intptr_t time_length, std::intptr_t zone_length) {
    const LocalTime now = local_time_now();
    char text[64];
    std::snprintf(text, sizeof text, "%04d%02d%02d", now.year, now.month, now.day);
    put(date, date_length, text);
    std::snprintf(text, sizeof text, "%02d%02d%02d.%03d", now.hour, now.minute, now.second,
                  now.millisecond);
    put(time, time_length, text);
    const int bias = std::abs(now.bias);
    std::snprintf(text, sizeof text, "%c%02d%02d", now.bias < 0 ? '-' : '+', bias / 60, bias % 60);
    put(zone, zone_length, text);
    if (!present(values)) return;
    const int fields[] = {now.year, now.month,  now.day,    now.bias,
                          now.hour, now.minute, now.second, now.millisecond};
    for (const int field : fields) *values++ = static_cast<Integer>(field);
}

}  // namespace

extern "C" {

TARN_EXPORT void DATE_AND_TIME_hI(char* date, char* time, char* zone, std::int16_t* values,
                                  std::intptr_t date_length, std::intptr_t time_length,
                                  std::intptr_t zone_length) {
    date_and_time(date, time, zone, values, date_length, time_length, zone_length);
}
TARN_EXPORT void DATE_AND_TIME_hJ(char* date, char* time, char* zone, std::int32_t* values,
                                  std::intptr_t date_length, std::intptr_t time_length,
                                  std::intptr_t zone_length) {
    date_and_time(date, time, zone, values, date_length, time_length, zone_length);
}
TARN_EXPORT void DATE_AND_TIME_hW(char* date, char* time, char* zone, std::int64_t* values,
                                  std::intptr_t date_length, std::intptr_t time_length,
                                  std::intptr_t zone_length) {
    date_and_time(date, time, zone, values, date_length, time_length, zone_length);
}
}
