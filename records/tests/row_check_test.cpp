#include "velqua/records/row_check.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/translation.h"

namespace velqua_records {
namespace {

// Day, month, time of day; a duration of minutes (no hours field, so any
// number of minutes) and seconds; a ring of seconds only; "O" marks a call.
const std::string kConfig =
    ReadWholeFile(VELQUA_SOURCE_DIR "/records/tests/data/row_check.json", "configuration");

struct Rows : RowSink {
  Row last;
  void Write(const Row& row) override { last = row; }
};

TEST(RowCheck, DamagedRecordsAreKeptAsUnrecognisedWithTheReason) {
  const struct {
    const char* record;
    const char* reason;  // "" = a call
  } kCases[] = {
      {"09.03 08:10 005:30 05 O 0301234567", ""},
      // No hours field: the minutes count on; no minutes field: so do the seconds.
      {"09.03 08:10 120:30 99 O 0301234567", ""},
      {"09.03 08:10 005:30    O 0301234567", ""},  // ring blank: not printed
      {"29.02 08:10 005:30 05 O 0301234567", ""},  // no year printed: 29 February may be
      {"09.03 08:10 005:60 05 O 0301234567",
       "duration seconds 60 (columns 17-18) is out of range 0-59"},
      {"09.03 08:10 0 5:30 05 O 0301234567",
       "duration minutes \"0 5\" (columns 13-15) is not a number"},
      {"00.03 08:10 005:30 05 O 0301234567", "day 0 (columns 1-2) is out of range 1-31"},
      {"31.04 08:10 005:30 05 O 0301234567", "date "},  // the year is the clock's
      {"09.03 24:00 005:30 05 O 0301234567", "hour 24 (columns 7-8) is out of range 0-23"},
      {"09.03 08:1x 005:30 05 O 0301234567", "minute \"1x\" (columns 10-11) is not a number"},
  };
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  RecordForm form;
  std::string delivery;
  SwitchConfigFromJson(kConfig, *cfg, &form, &delivery);
  Rows rows;
  Translation translation(cfg, rows, {"", "", false, form});
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.record);
    translation.Record(U16(c.record));
    const std::string reason = c.reason;
    EXPECT_EQ(rows.last.has_fields, reason.empty());
    EXPECT_EQ(rows.last.error.substr(0, reason.size()), reason);
    EXPECT_EQ(rows.last.type == 0, !reason.empty());
  }
  EXPECT_EQ(translation.counts().damaged, 6);
  EXPECT_EQ(translation.counts().failed, 0);
}

}  // namespace
}  // namespace velqua_records
