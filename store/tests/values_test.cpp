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
      {"winter", "Europe/Madrid", Start(2026, 1, 15, 9 * 3600 + 5 * 60 + 7, kAll),
       "2026-01-15T09:05:07", "2026-01-15T08:05:07Z"},
      {"summer", "Europe/Madrid", Start(2026, 7, 15, 9 * 3600, kAll), "2026-07-15T09:00:00",
       "2026-07-15T07:00:00Z"},
      {"no seconds printed: none invented", "Europe/Madrid",
       Start(2026, 1, 15, 9 * 3600 + 5 * 60, kNoSeconds), "2026-01-15T09:05", "2026-01-15T08:05Z"},
      {"a time that never happens (clocks forward): the change", "Europe/Madrid",
       Start(2026, 3, 29, 2 * 3600 + 30 * 60, kAll), "2026-03-29T02:30:00", "2026-03-29T01:00:00Z"},
      {"a time that happens twice (clocks back): the first", "Europe/Madrid",
       Start(2026, 10, 25, 2 * 3600 + 30 * 60, kAll), "2026-10-25T02:30:00",
       "2026-10-25T00:30:00Z"},
      {"west of Greenwich, across midnight", "America/New_York",
       Start(2025, 12, 31, 23 * 3600 + 30 * 60, kAll), "2025-12-31T23:30:00",
       "2026-01-01T04:30:00Z"},
      {"hours past 23 as the record says", "UTC", Start(2026, 1, 15, 25 * 3600, kAll),
       "2026-01-15T25:00:00", "2026-01-16T01:00:00Z"},
      {"no zone: local only", "", Start(2026, 1, 15, 9 * 3600, kAll), "2026-01-15T09:00:00", ""},
      {"no time printed", "UTC", Start(2026, 1, 15, 0, kNoTime), "2026-01-15", ""},
      {"no day printed", "UTC", Start(2026, 1, 15, 0, kNoDay), "", ""},
      {"a day that does not exist", "UTC", Start(2026, 2, 30, 0, kAll), "2026-02-30T00:00:00", ""},
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

}  // namespace
}  // namespace velqua_store
