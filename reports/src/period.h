// Days and half hours of a report's period (date arithmetic on the civil
// calendar; the store's times are the switch's local times).
#pragma once

#include <cstdint>
#include <string>

#include "velqua/store/aggregates.h"

namespace velqua_reports {

// Days since 1970-01-01 of "YYYY-MM-DD"; throws velqua_records::Failure
// naming `option` for a malformed or impossible day.
int64_t DayNumber(const std::string& text, const char* option);
// "YYYY-MM-DD" of a day number.
std::string DayText(int64_t day);
// The weekday of a day number: 0 Monday ... 6 Sunday.
int WeekdayOf(int64_t day);

// The store's span of the days [from, to] (checked) and switch.
velqua_store::Span SpanOf(const std::string& from, const std::string& to,
                          const std::string& switch_name);

// "YYYY-MM-DD HH:MM" of a half-hour slot (seconds since 1970 / 1800).
std::string SlotText(int64_t slot);

}  // namespace velqua_reports
