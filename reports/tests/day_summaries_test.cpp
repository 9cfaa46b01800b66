// The store's day summaries never disagree with its calls: every report,
// read from the summaries, is the same CSV as the report summed from the
// calls themselves, after a load in batches and a purge (the store's own
// tests follow the summaries through every other change) and after a store
// of the schema before the summaries gains them. On SQLite and on
// PostgreSQL.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "generated_month.h"
#include "pg_test_server.h"
#include "store_test_support.h"
#include "test_support.h"
#include "velqua/rating/directory.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/output.h"

namespace velqua_reports_testing {
namespace {

using velqua_store_testing::RunSql;

constexpr const char* kPlan = R"([[tariff]]
switch = "hq"
from = 2026-01-01
file = "office.toml"
rewrite = { "" = "+34" }
)";

// 203 moves from Support to Sales in the middle of March.
constexpr const char* kPeople =
    "extension,person,department,cost_centre,from\n"
    "201,Ana,Sales,CC-1,\n202,Ben,Sales,CC-1,\n203,Carla,Support,CC-2,\n"
    "203,Carla,Sales,CC-1,2026-03-16\n205,Dan,Support,CC-2,\n";

std::string Csv(velqua_store::Store& store, const velqua_reports::Request& r) {
  return Text(velqua_reports::WriteCsv, velqua_reports::BuildReport(store, r));
}

class DaySummariesTest : public ::testing::TestWithParam<bool> {
 protected:
  DaySummariesTest()
      : dir_(velqua_store_testing::TempDir(
            std::string("days-") + (GetParam() ? "pg-" : "sqlite-") +
            ::testing::UnitTest::GetInstance()->current_test_info()->name())),
        url_(GetParam() ? velqua_store_testing::PgTestServer::Shared().NewDatabase()
                        : dir_ + "/calls.db") {
    PutTariff("0.10");
    std::ofstream(dir_ + "/plan.toml") << kPlan;
    store_ = velqua_store::OpenStore(url_);
    store_->PutSwitch({"hq", "", "", ""});
    store_->PutRatingPlan(dir_ + "/plan.toml");
    store_->PutDirectory(velqua_rating::ReadDirectory(kPeople, "people.csv"));
    calls_ = GenerateMonth(1500, 26);
    for (size_t i = 0; i < calls_.size(); ++i) {
      GenCall& c = calls_[i];
      if (!c.number.empty() && i % 3 == 0) c.number[1] = '6';  // a mobile
      if (c.type == 2 && i % 5 == 0) c.account = i % 2 == 0 ? "77" : "88";
    }
  }

  // The store's tests' one-band tariff, its national minute at `national`.
  void PutTariff(const std::string& national) {
    std::string text =
        velqua_store_testing::ReadFile(VELQUA_SOURCE_DIR "/store/tests/data/office-line.toml");
    std::ofstream(dir_ + "/office.toml") << text.replace(text.find("{price}"), 7, national);
  }

  velqua_store_testing::Engine engine() const {
    return GetParam() ? velqua_store_testing::Engine::kPostgres
                      : velqua_store_testing::Engine::kSqlite;
  }

  ~DaySummariesTest() override {
    store_.reset();
    std::filesystem::remove_all(dir_);
  }

  // Every kind over the month and over a few days inside it, for every
  // department and none: the same CSV from the summaries as from the calls.
  // Returns how many reports were compared.
  int ExpectSameAsFromCalls() {
    int compared = 0;
    for (const std::string& kind : velqua_reports::KindNames()) {
      for (const auto& [from, to] :
           {std::pair{"2026-03-01", "2026-03-31"}, std::pair{"2026-03-10", "2026-03-17"}}) {
        for (const char* department : {"", "Sales", "Support"}) {
          SCOPED_TRACE(kind + " " + from + " " + department);
          velqua_reports::Request r;
          r.kind = kind;
          r.from = from;
          r.to = to;
          r.department = department;
          r.lines = 4;
          const std::string summed = Csv(*store_, r);
          r.from_calls = true;
          EXPECT_EQ(summed, Csv(*store_, r));
          ++compared;
        }
      }
    }
    return compared;
  }

  std::string dir_, url_;
  std::unique_ptr<velqua_store::Store> store_;
  std::vector<GenCall> calls_;
};

TEST_P(DaySummariesTest, ReportsFromSummariesMatchTheCallsAfterALoadAndAPurge) {
  {
    SCOPED_TRACE("a load in batches");
    WriteCalls(*store_, "hq", calls_);
    EXPECT_GT(ExpectSameAsFromCalls(), 40);
  }
  {
    SCOPED_TRACE("a purge of the first days");
    EXPECT_GT(store_->Purge({"2026-03-05", ""}, false).calls, 0);
    ExpectSameAsFromCalls();
  }
}

TEST_P(DaySummariesTest, ReportsReadTheSummaries) {
  WriteCalls(*store_, "hq", calls_);
  velqua_reports::Request r;
  r.kind = "extensions";
  r.from = "2026-03-01";
  r.to = "2026-03-31";
  const std::string before = Csv(*store_, r);
  // A summed row changed behind the store's back shows in the report (and
  // not in the report from the calls): the report read the summaries.
  ASSERT_TRUE(RunSql(engine(), url_,
                     "UPDATE call_days SET calls = calls + 1000 WHERE kind = 'e' AND day = "
                     "'2026-03-10' AND item = '201'"));
  EXPECT_NE(Csv(*store_, r), before);
  r.from_calls = true;
  EXPECT_EQ(Csv(*store_, r), before);
}

TEST_P(DaySummariesTest, AStoreFromBeforeTheSummariesSumsItsCallsWhenOpened) {
  WriteCalls(*store_, "hq", calls_);
  store_.reset();
  const bool pg = GetParam();
  const std::string drop =
      pg ? "DROP TABLE call_days; DROP TABLE call_days_stale; "
           "DROP FUNCTION calls_mark_days() CASCADE; DROP FUNCTION call_costs_mark_days() CASCADE; "
           "DELETE FROM schema_migrations WHERE version = (SELECT max(version) FROM "
           "schema_migrations);"
         : "DROP TRIGGER calls_mark_insert; DROP TRIGGER calls_mark_update; "
           "DROP TRIGGER calls_mark_update_old; "
           "DROP TRIGGER calls_mark_delete; DROP TRIGGER call_costs_mark_insert; "
           "DROP TRIGGER call_costs_mark_update; DROP TRIGGER call_costs_mark_delete; "
           "DROP TABLE call_days; DROP TABLE call_days_stale;";
  ASSERT_TRUE(RunSql(engine(), url_, drop));
  if (!pg) {
    // The version before, from the version stored.
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(url_.c_str(), &db), SQLITE_OK);
    int version = 0;
    sqlite3_exec(
        db, "PRAGMA user_version",
        [](void* v, int, char** text, char**) {
          *static_cast<int*>(v) = std::atoi(text[0]);
          return 0;
        },
        &version, nullptr);
    sqlite3_close(db);
    ASSERT_TRUE(RunSql(engine(), url_, "PRAGMA user_version = " + std::to_string(version - 1)));
  }
  store_ = velqua_store::OpenStore(url_);
  EXPECT_GT(ExpectSameAsFromCalls(), 40);
  // And kept from then on.
  const velqua_store::Source source = store_->OpenSource("hq", "capture", "capture");
  store_->Write(source, {RecordOf(calls_[5], 0)}, std::nullopt);
  ExpectSameAsFromCalls();
}

// A user who may only read the store's tables (a reporting login; opening
// a store needs CREATE on its schema, for the versions' table) cannot sum
// the days noted since the last write: the report is read from the calls,
// and is the same.
TEST_P(DaySummariesTest, AReaderWhoMayNotWriteGetsTheSameReportFromTheCalls) {
  if (!GetParam()) GTEST_SKIP() << "SQLite has no users";
  WriteCalls(*store_, "hq", calls_);
  const velqua_store::Source source = store_->OpenSource("hq", "capture", "capture");
  store_->Write(source, {RecordOf(calls_[7], 0)}, std::nullopt);  // a day noted
  ASSERT_TRUE(RunSql(engine(), url_,
                     "CREATE ROLE report_reader LOGIN; "
                     "GRANT CREATE ON SCHEMA public TO report_reader; "
                     "GRANT SELECT ON ALL TABLES IN SCHEMA public TO report_reader"));
  std::string reader_url = url_;
  reader_url.replace(reader_url.find("postgres@"), 9, "report_reader@");
  auto reader = velqua_store::OpenStore(reader_url);
  velqua_reports::Request r;
  r.kind = "extensions";
  r.from = "2026-03-01";
  r.to = "2026-03-31";
  const std::string read = Csv(*reader, r);
  r.from_calls = true;
  EXPECT_EQ(read, Csv(*store_, r));
  reader.reset();
  RunSql(engine(), url_,
         "REVOKE ALL ON ALL TABLES IN SCHEMA public FROM report_reader; "
         "REVOKE ALL ON SCHEMA public FROM report_reader; "
         "DROP ROLE report_reader");
}

INSTANTIATE_TEST_SUITE_P(Engines, DaySummariesTest, ::testing::Values(false, true),
                         [](const auto& p) { return p.param ? "Postgres" : "Sqlite"; });

}  // namespace
}  // namespace velqua_reports_testing
