// Whatever road calls and prices take into the store, the day summaries a
// report reads afterwards are the calls summed again: a load in batches, a
// capture's batch and its single call, velqua rate of everything and of a
// period, retranslation of many records and of a few, a directory change,
// and SQL written behind the store's back. The store's own writers of many
// rows note their days themselves, the triggers every other write; a day
// either misses is found here as a summary that differs from the calls.
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "day_summaries.h"
#include "day_sums_all.h"
#include "sql_store.h"
#include "store_test_support.h"
#include "velqua/rating/directory.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Engine;
using velqua_store_testing::StoreTest;

// A one-band tariff of a national minute at `price` (fixed numbers as the
// store's tests and the reports' generated month print them), and mobiles.
std::string Tariff(const std::string& price) {
  std::string text =
      velqua_store_testing::ReadFile(VELQUA_SOURCE_DIR "/store/tests/data/office-line.toml");
  return text.replace(text.find("{price}"), 7, price);
}

// The rows of call_days in key order, one line each.
std::string SummedRows(Connection& db) {
  std::string rows;
  db.Run(
      "SELECT kind, day, switch_id, item, class, currency, decimals, calls, seconds, cost, "
      "unpriced, outgoing, incoming, internal, unanswered FROM call_days "
      "ORDER BY kind, day, switch_id, item, class, currency, decimals",
      {}, [&](const ResultRow& r) {
        for (int i = 0; i < 15; ++i) rows += (r.IsNull(i) ? "NULL" : r.Text(i)) + "|";
        rows += "\n";
      });
  return rows;
}

int64_t Count(Connection& db, const std::string& sql) {
  int64_t n = 0;
  db.Run(sql, {}, [&](const ResultRow& r) { n = r.Int(0); });
  return n;
}

class DayMarksTest : public StoreTest {
 protected:
  DayMarksTest() : dir_(velqua_store_testing::TempDir(velqua_store_testing::Name() + "-plan")) {
    store_->PutSwitch({"hq", "", "", ""});
    PutPlan("0.10");
  }
  ~DayMarksTest() override { std::filesystem::remove_all(dir_); }

  void PutPlan(const std::string& price) {
    std::ofstream(dir_ + "/office.toml") << Tariff(price);
    std::ofstream(dir_ + "/plan.toml")
        << "[[tariff]]\nswitch = \"hq\"\nfile = \"office.toml\"\nrewrite = { \"\" = \"+34\" }\n";
    store_->PutRatingPlan(dir_ + "/plan.toml");
  }

  // The n-th made-up call from `first_day` of March 2026 on, over `days`
  // days: six extensions, four trunks, fixed and mobile numbers and some no
  // tariff knows, outgoing, incoming and internal, some with an account.
  static Record MadeUp(int64_t position, int64_t n, int first_day, int days) {
    char start[32];
    std::snprintf(start, sizeof start, "2026-03-%02d %02d:%02d:%02d",
                  first_day + static_cast<int>(n % days), 7 + static_cast<int>(n % 13),
                  static_cast<int>(n * 7 % 60), static_cast<int>(n * 13 % 60));
    const char* numbers[] = {"912345678", "612345678", "0099887766", "934000111"};
    const int32_t types[] = {2, 2, 1, 3, 2};
    Record r = velqua_store_testing::Call(position, std::to_string(201 + n % 6), start,
                                          "0" + std::to_string(1 + n % 4), numbers[n % 4],
                                          n % 7 == 0 ? "77" : "", types[n % 5]);
    r.row.duration = static_cast<int32_t>(5 + n * 37 % 900);
    return r;
  }

  void WriteMadeUp(const Source& source, int64_t first, int64_t count, int first_day, int days,
                   size_t batch) {
    std::vector<Record> records;
    for (int64_t n = first; n < first + count; ++n) {
      records.push_back(MadeUp(n, n, first_day, days));
      if (records.size() == batch) {
        store_->Write(source, records, std::nullopt);
        records.clear();
      }
    }
    if (!records.empty()) store_->Write(source, records, std::nullopt);
  }

  // Stored calls retranslated a day later and to another extension; every
  // `unrecognised`-th becomes a record no configuration reads.
  void Retranslate(int64_t count, int64_t unrecognised) {
    std::vector<Retranslated> changed;
    for (const StoredRecord& s : store_->ReadStored("hq", true, 0, count)) {
      Record r = MadeUp(s.position, s.position, 3, 8);
      r.row.day += 1;
      r.row.extension = velqua_records::U16("209");
      if (s.id % unrecognised == 0) r.row = velqua_records::Row();
      changed.push_back({s, r.row});
    }
    store_->Rewrite("hq", changed);
  }

  Connection& db() { return dynamic_cast<SqlStore&>(*store_).connection(); }

  // The summaries as a reader finds them, against every call summed again
  // by the engine day by day; the store's triggers all in place.
  std::string ExpectSummariesOfTheCalls() {
    RefreshDaySummaries(db());
    const std::string kept = SummedRows(db());
    InTransaction(db(), [&] {
      db().Run("DELETE FROM call_days");
      db().Run("DELETE FROM call_days_stale");
      db().Run(
          "INSERT INTO call_days_stale SELECT DISTINCT switch_id, substr(start, 1, 10) FROM "
          "calls WHERE start IS NOT NULL");
    });
    EXPECT_LE(Count(db(), "SELECT count(*) FROM call_days_stale"), 60);  // summed day by day
    RefreshDaySummaries(db());
    EXPECT_EQ(kept, SummedRows(db()));
    if (GetParam() == Engine::kSqlite) {
      // SQLite's one read of every call (a new store's first sums, a
      // refresh of many days) sums by the same rules as the engine.
      InTransaction(db(), [&] { SumEveryCall(db()); });
      EXPECT_EQ(kept, SummedRows(db()));
    }
    EXPECT_EQ(Triggers(), triggers_);
    return kept;
  }

  // The store's own triggers (on PostgreSQL not the copies a month's table
  // takes from `calls`), counted.
  int64_t Triggers() {
    return Count(db(), GetParam() == Engine::kSqlite
                           ? "SELECT count(*) FROM sqlite_schema WHERE type = 'trigger'"
                           : "SELECT count(*) FROM pg_trigger WHERE NOT tgisinternal "
                             "AND tgparentid = 0");
  }

  int64_t triggers_ = 0;

  std::string dir_;
};

TEST_P(DayMarksTest, SummariesAreTheCallsSummedAfterEveryRoad) {
  triggers_ = Triggers();
  ASSERT_GE(triggers_, 6);
  const Source file = store_->OpenSource("hq", "march.txt", "file");
  const Source capture = store_->OpenSource("hq", "line", "capture");
  struct Road {
    const char* name;
    bool changes_sums;
    std::function<void()> take;
  };
  const Road roads[] = {
      {"an import's load in batches", true,
       [&] {
         store_->BeginBulk(900);
         WriteMadeUp(file, 0, 900, 2, 10, 300);
         store_->EndBulk();
       }},
      {"a capture's batch, on stored days and new ones", true,
       [&] { WriteMadeUp(capture, 1000, 400, 9, 6, 400); }},
      {"a capture's single call", true, [&] { WriteMadeUp(capture, 2000, 1, 4, 1, 1); }},
      {"velqua rate of every call, the tariff changed", true,
       [&] {
         PutPlan("0.125");
         store_->Rate(RatePeriod());
       }},
      {"velqua rate of two days in small batches, the tariff changed", true,
       [&] {
         PutPlan("0.20");
         RatePeriod period;
         period.from = "2026-03-05";
         period.to = "2026-03-06";
         period.batch = 300;
         store_->Rate(period);
       }},
      {"retranslation of many calls to other days and extensions", true,
       [&] { Retranslate(500, 9); }},
      {"retranslation of a few calls", true, [&] { Retranslate(5, 2); }},
      {"a directory change", false,
       [&] {
         store_->PutDirectory(velqua_rating::ReadDirectory(
             "extension,person,department,cost_centre,from\n201,Ana,Sales,CC-1,\n", "d.csv"));
       }},
      {"SQL written behind the store's back", true,
       [&] {
         velqua_store_testing::RunSql(
             GetParam(), url_,
             "UPDATE calls SET extension = '299', duration = duration + 60 WHERE id % "
             "11 = 0; DELETE FROM call_costs WHERE call_id % 13 = 0; "
             "UPDATE call_costs SET cost = NULL WHERE call_id % 17 = 0; "
             "DELETE FROM calls WHERE id % 19 = 0");
       }},
  };
  std::string before;
  for (const Road& road : roads) {
    SCOPED_TRACE(road.name);
    road.take();
    const std::string after = ExpectSummariesOfTheCalls();
    EXPECT_NE(after, "");
    if (road.changes_sums) {
      EXPECT_NE(after, before);
    }
    before = after;
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, DayMarksTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
