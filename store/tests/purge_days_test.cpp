// Purge's day: only a day of the calendar written YYYY-MM-DD is taken; any
// other text is refused before anything is removed, so that a typing slip
// cannot become a day that removes more than was meant.
#include <gtest/gtest.h>

#include <string>

#include "store_test_support.h"
#include "velqua/records/common.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Engine;
using velqua_store_testing::StoreTest;

class PurgeDaysTest : public StoreTest {};

TEST_P(PurgeDaysTest, OnlyACalendarDayIsTaken) {
  NewSource("hq", "tcp");
  const struct {
    const char* before;
    bool taken;
  } rows[] = {
      {"2026-03-10", true},  {"2024-02-29", true},  {"2026-02-30", false}, {"2026-1x-01", false},
      {"20x6-03-10", false}, {"2026-03-1x", false}, {"2026/03/10", false}, {"2026-03-100", false},
      {"+026-03-10", false}, {"2026-03- 1", false}, {"", false},           {"2026-13-01", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.before);
    if (row.taken) {
      const PurgeResult r = store_->Purge({row.before, ""}, true);
      EXPECT_EQ(r.calls, 0);
      continue;
    }
    try {
      store_->Purge({row.before, ""}, true);
      ADD_FAILURE() << "taken";
    } catch (const velqua_records::Failure& e) {
      EXPECT_EQ(std::string(e.what()),
                std::string("--before: expected a date YYYY-MM-DD, got '") + row.before + "'");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, PurgeDaysTest, ::testing::Values(Engine::kSqlite),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
