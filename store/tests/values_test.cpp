// The stored form of a start: ISO 8601 local time with the precision the
// switch printed, and UTC through the switch's time zone, across the days
// the clocks change.
#include <gtest/gtest.h>

#include <string>

#include "values.h"
#include "velqua/records/clock.h"
#include "velqua/store/store.h"

namespace velqua_store {
namespace {

using velqua_records::Row;

Row Start(int year, int month, int day, int time, uint8_t printed) {
  Row row;
  row.has_fields = true;
  row.year = year;
  row.month = month;
  row.day = day;
  row.time = time;
  row.printed = printed;
  return row;
}

TEST(StartTimes, LocalAsPrintedAndUtcThroughTheZone) {
  constexpr uint8_t kAll = velqua_records::kPrintedAll;
  constexpr uint8_t kNoSeconds = kAll & ~velqua_records::kPrintedSecond;
  constexpr uint8_t kNoTime = kAll & ~velqua_records::kPrintedHour;
  constexpr uint8_t kNoDay = kAll & ~velqua_records::kPrintedDay;
  struct Case {
    const char* what;
    const char* zone;
    Row row;
    const char* start;
    const char* utc;
  };
  const Case cases[] = {
      // clang-format off
      {"winter", "Europe/Madrid", Start(2026, 1, 15, 9 * 3600 + 5 * 60 + 7, kAll), "2026-01-15T09:05:07", "2026-01-15T08:05:07Z"},
      {"summer", "Europe/Madrid", Start(2026, 7, 15, 9 * 3600, kAll), "2026-07-15T09:00:00", "2026-07-15T07:00:00Z"},
      {"no seconds printed: none invented", "Europe/Madrid", Start(2026, 1, 15, 9 * 3600 + 5 * 60, kNoSeconds), "2026-01-15T09:05", "2026-01-15T08:05Z"},
      {"a time that never happens (clocks forward): the change", "Europe/Madrid", Start(2026, 3, 29, 2 * 3600 + 30 * 60, kAll), "2026-03-29T02:30:00", "2026-03-29T01:00:00Z"},
      {"a time that happens twice (clocks back): the first", "Europe/Madrid", Start(2026, 10, 25, 2 * 3600 + 30 * 60, kAll), "2026-10-25T02:30:00", "2026-10-25T00:30:00Z"},
      {"west of Greenwich, across midnight", "America/New_York", Start(2025, 12, 31, 23 * 3600 + 30 * 60, kAll), "2025-12-31T23:30:00", "2026-01-01T04:30:00Z"},
      {"hours past 23 as the record says", "UTC", Start(2026, 1, 15, 25 * 3600, kAll), "2026-01-15T25:00:00", "2026-01-16T01:00:00Z"},
      {"no zone: local only", "", Start(2026, 1, 15, 9 * 3600, kAll), "2026-01-15T09:00:00", ""},
      {"no time printed", "UTC", Start(2026, 1, 15, 0, kNoTime), "2026-01-15", ""},
      {"no day printed", "UTC", Start(2026, 1, 15, 0, kNoDay), "", ""},
      {"a day that does not exist", "UTC", Start(2026, 2, 30, 0, kAll), "2026-02-30T00:00:00", ""},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::string start;
    AppendStart(start, c.row);
    EXPECT_EQ(start, c.start);
    EXPECT_EQ(Zone(c.zone).ToUtc(c.row), c.utc);
  }
  EXPECT_THROW(Zone("Europe/Atlantis"), StoreError);
}

// A switch that prints no date: the call takes the date it was received on
// in the switch's zone, the day before when it ended later in the day than
// it was received; a call that began before midnight and ended after it
// begins the day before its end.
TEST(StartTimes, ASwitchWithoutDatesTakesTheDateReceived) {
  constexpr uint8_t kNoDate = velqua_records::kPrintedHour | velqua_records::kPrintedMinute;
  struct Case {
    const char* what;
    const char* zone;
    int time, duration;
    const char* received_utc;
    const char* start;
    const char* end;
  };
  const Case cases[] = {
      // clang-format off
      {"the same day", "Europe/Madrid", 8 * 3600 + 2 * 60, 120, "2026-03-09T08:30:00Z", "2026-03-09T08:02", "2026-03-09T08:04"},
      {"received just after midnight, local time", "Europe/Madrid", 23 * 3600 + 50 * 60, 300, "2026-03-09T23:30:00Z", "2026-03-09T23:50", "2026-03-09T23:55"},
      {"ended later in the day than received: the day before", "UTC", 23 * 3600 + 50 * 60, 300, "2026-03-10T00:10:00Z", "2026-03-09T23:50", "2026-03-09T23:55"},
      {"across midnight: begun the day before its end", "UTC", 23 * 3600 + 58 * 60, 240, "2026-03-10T00:10:00Z", "2026-03-09T23:58", "2026-03-10T00:02"},
      {"across a year's end", "UTC", 23 * 3600 + 58 * 60, 240, "2026-01-01T00:03:00Z", "2025-12-31T23:58", "2026-01-01T00:02"},
      {"no duration: the start decides", "America/New_York", 20 * 3600, -1, "2026-03-10T00:30:00Z", "2026-03-09T20:00", ""},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Row row = Start(0, 0, 0, c.time, kNoDate);
    row.duration = c.duration;
    if (c.duration >= 0) row.end_time = (c.time + c.duration) % 86400;
    ASSERT_TRUE(Zone(c.zone).DateFromReceived(c.received_utc, &row));
    std::string start, end;
    AppendStart(start, row);
    AppendEnd(end, row);
    EXPECT_EQ(start, c.start);
    EXPECT_EQ(end, c.end);
  }
  Row dated = Start(2026, 1, 15, 9 * 3600, velqua_records::kPrintedAll);
  EXPECT_FALSE(Zone("UTC").DateFromReceived("2026-03-10T00:00:00Z", &dated));
  Row untimed = Start(0, 0, 0, 0, 0);
  EXPECT_FALSE(Zone("UTC").DateFromReceived("2026-03-10T00:00:00Z", &untimed));
  Row unread = Start(0, 0, 0, 3600, kNoDate);
  EXPECT_FALSE(Zone("UTC").DateFromReceived("yesterday", &unread));
  EXPECT_EQ(unread.printed, kNoDate);
}

}  // namespace
}  // namespace velqua_store
