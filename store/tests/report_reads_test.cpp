// What the reports read of calls one by one: a missed call's call back is
// sought from the missed call's start to the window's end, both included,
// and a stored local start is counted in seconds whatever its form.
#include <string>
#include <vector>

#include "line_sweep.h"
#include "store_test_support.h"
#include "velqua/store/aggregates.h"

namespace velqua_store {
namespace {

using velqua_store_testing::StoreTest;

class CallBackTest : public StoreTest {};

TEST_P(CallBackTest, TheWindowHoldsItsEndsAndNothingPast) {
  struct Row {
    const char* number;
    const char* back;  // the outgoing call to the number; "" none
    int32_t type;      // of that call
    bool called_back;
  };
  // Missed at 10:00:30 on 10 March; the window is an hour.
  const Row rows[] = {
      {"600000001", "", 2, false},
      {"600000002", "2026-03-10 10:00:29", 2, false},  // before the missed call
      {"600000003", "2026-03-10 10:00:30", 2, true},   // at once
      {"600000004", "2026-03-10 11:00:30", 2, true},   // at the window's end
      {"600000005", "2026-03-10 11:00:31", 2, false},  // a second past it
      {"600000006", "2026-03-10 11:00:59", 2, false},  // within the minute past it
      {"600000007", "2026-03-10 10:30:00", 1, false},  // incoming: not a call back
      {"600000008", "2026-03-10 10:30:00", 5, true},   // through an account code
      {"600000009", "2026-03-11 10:00:30", 2, false},  // the next day
  };
  const Source source = NewSource("hq", "line");
  std::vector<Record> records;
  int64_t position = 0;
  for (const Row& row : rows) {
    Record missed = velqua_store_testing::Call(position++, "201", "2026-03-10 10:00:30", "01",
                                               row.number, "", 1);
    missed.row.attribute = 4;
    records.push_back(missed);
    if (*row.back != '\0') {
      records.push_back(
          velqua_store_testing::Call(position++, "202", row.back, "01", row.number, "", row.type));
    }
  }
  store_->Write(source, records, std::nullopt);
  Span span;
  span.from = "2026-03-01";
  span.to_next = "2026-04-01";
  const std::vector<MissedCall> never = MissedNotCalledBack(*store_, span, 3600);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.number);
    bool listed = false;
    for (const MissedCall& m : never) listed = listed || m.number == row.number;
    EXPECT_EQ(listed, !row.called_back);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, CallBackTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

TEST(LocalSeconds, EveryFormOfAStoredStart) {
  constexpr int64_t kMarch1 = 1740787200;  // 2025-03-01T00:00 as seconds since 1970
  const struct {
    const char* text;
    int64_t seconds;
  } rows[] = {
      {"2025-03-01T10:05:30", kMarch1 + 36330},
      {"2025-03-01T10:05", kMarch1 + 36300},
      {"2025-03-01 10:05:30", kMarch1 + 36330},
      {"2025-3-1T10:05:30", kMarch1 + 36330},  // not the store's form, still a time
      {"2025-03-01T10:05:3x", kMarch1 + 36303},
      {"2024-02-29T00:00", 1709164800},
      {"2025-02-29T00:00", -1},  // no such day
      {"2025-03-01T1a:05", -1},
      {"2025-03-01", -1},
      {"", -1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(SecondsOf(row.text), row.seconds);
  }
}

}  // namespace
}  // namespace velqua_store
