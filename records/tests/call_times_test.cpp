#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "velqua/records/call_times.h"

namespace velqua_records {
namespace {

// "YYYY-MM-DD HH:MM:SS" of a row's start and of its end ("-" when unknown;
// "HH:MM:SS" alone without a date).
std::string Moment(int32_t year, int32_t month, int32_t day, int32_t time) {
  if (time < 0) return "-";
  char text[32];
  if (month == 0) {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", time / 3600, time / 60 % 60, time % 60);
  } else {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", year, month, day, time / 3600,
                  time / 60 % 60, time % 60);
  }
  return text;
}

TEST(PlaceInTime, TheStartIsTheEndLessTheDurationAndTheEndTheStartPlusIt) {
  constexpr uint8_t kAll = 63, kNoDate = 63 & ~3;
  struct Case {
    PrintedTime printed;
    int32_t year, month, day, time, duration;
    uint8_t printed_parts;
    const char* start;
    const char* end;
  } const cases[] = {
      // clang-format off
      {PrintedTime::kEnd, 2026, 3, 10, 10 * 3600 + 5 * 60, 125, kAll, "2026-03-10 10:02:55", "2026-03-10 10:05:00"},
      // back across midnight, a month end, a year end, a leap day
      {PrintedTime::kEnd, 2026, 3, 11, 60, 3600, kAll, "2026-03-10 23:01:00", "2026-03-11 00:01:00"},
      {PrintedTime::kEnd, 2026, 3, 1, 30, 60, kAll, "2026-02-28 23:59:30", "2026-03-01 00:00:30"},
      {PrintedTime::kEnd, 2024, 3, 1, 30, 60, kAll, "2024-02-29 23:59:30", "2024-03-01 00:00:30"},
      {PrintedTime::kEnd, 2026, 1, 1, 0, 1, kAll, "2025-12-31 23:59:59", "2026-01-01 00:00:00"},
      {PrintedTime::kEnd, 2026, 5, 3, 3600, 3 * 86400, kAll, "2026-04-30 01:00:00", "2026-05-03 01:00:00"},
      // no date printed: the time of day only, modulo one day
      {PrintedTime::kEnd, 2026, 3, 11, 60, 3600, kNoDate, "23:01:00", "00:01:00"},
      // no duration: a printed end is all that is known of the call's time
      {PrintedTime::kEnd, 2026, 3, 11, 60, -1, kAll, "2026-03-11 00:01:00", "2026-03-11 00:01:00"},
      {PrintedTime::kEnd, 2026, 3, 11, 60, 0, kAll, "2026-03-11 00:01:00", "2026-03-11 00:01:00"},
      // a printed start: the end forward across a year end; unknown without a duration
      {PrintedTime::kStart, 2025, 12, 31, 86399, 2, kAll, "2025-12-31 23:59:59", "2026-01-01 00:00:01"},
      {PrintedTime::kUnstated, 2026, 2, 28, 86000, 400, kAll, "2026-02-28 23:53:20", "2026-03-01 00:00:00"},
      {PrintedTime::kStart, 2026, 3, 11, 60, -1, kAll, "2026-03-11 00:01:00", "-"},
      {PrintedTime::kStart, 2026, 3, 11, 86000, 400, kNoDate, "23:53:20", "00:00:00"},
      // seconds not printed: :00, whatever the clock filled in
      {PrintedTime::kEnd, 2026, 3, 11, 8 * 3600 + 2 * 60 + 37, 83, kAll & ~32, "2026-03-11 08:00:37", "2026-03-11 08:02:00"},
      // clang-format on
  };
  for (const Case& c : cases) {
    Row row;
    row.has_fields = true;
    row.year = c.year;
    row.month = c.month;
    row.day = c.day;
    row.time = c.time;
    row.duration = c.duration;
    row.printed = c.printed_parts;
    SCOPED_TRACE(Moment(c.year, c.month, c.day, c.time) + " + " + std::to_string(c.duration));
    PlaceInTime(c.printed, &row);
    const bool dated = row.HasDate();
    EXPECT_EQ(Moment(row.year, dated ? row.month : 0, row.day, row.time), c.start);
    EXPECT_EQ(Moment(row.end_year, row.end_month, row.end_day, row.end_time), c.end);
    EXPECT_EQ(row.duration, c.duration);  // the duration is never touched
  }
}

TEST(PlaceInTime, RowsWithoutATimeAreLeftAsTheyAre) {
  for (const bool recognised : {false, true}) {
    Row row;
    row.has_fields = recognised;
    row.printed = recognised ? static_cast<uint8_t>(63 & ~24) : 63;  // no hour or minute
    row.time = 100;
    row.duration = 50;
    PlaceInTime(PrintedTime::kEnd, &row);
    EXPECT_EQ(row.time, 100);
    EXPECT_FALSE(row.HasEnd());
  }
}

}  // namespace
}  // namespace velqua_records
