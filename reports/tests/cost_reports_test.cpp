// The reports of money on a few calls priced as they are stored, by a
// one-band tariff whose every cost is worked out by hand below, with a
// directory in which one person changes department in the middle of the
// month. On SQLite and on PostgreSQL.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "generated_month.h"
#include "pg_test_server.h"
#include "test_support.h"
#include "velqua/rating/directory.h"
#include "velqua/records/common.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/output.h"

namespace velqua_reports_testing {
namespace {

using velqua_reports::Report;
using velqua_reports::Request;
using velqua_reports::Table;

// The tariff, plan and directory of data/cost: whole minutes started, 0.10 a
// minute fixed, 0.30 mobile, 1.00 + 0.60 a minute abroad; Carla (203) moves
// from Support to Sales on 16 March, 204 is in no department.
const std::string kData = VELQUA_SOURCE_DIR "/reports/tests/data/cost/";

int64_t At(int day, int hour) { return (20512 + day) * 86400 + hour * 3600; }  // day of March

// Each call's cost, worked out: 1) 125 s, 3 minutes fixed 0.30;
// 2) 60 s, 1 minute mobile 0.30; 3) 61 s abroad 1.00 + 2 x 0.60 = 2.20;
// 4) 30 s fixed 0.10; 5) 150 s mobile 0.90; 6) 600 s fixed 1.00;
// 7) incoming 0.00; 8) 59 s fixed 0.10 on account 77; 9) a number no
// destination has: not priced; 10) February, 60 s fixed 0.10.
std::vector<GenCall> Calls() {
  const auto out = [](int64_t start, const char* ext, const char* number, int64_t duration) {
    GenCall c;
    c.start = start;
    c.type = 2;
    c.extension = ext;
    c.trunk = "01";
    c.number = number;
    c.duration = duration;
    return c;
  };
  std::vector<GenCall> calls{
      out(At(2, 9), "201", "912345678", 125),     out(At(3, 10), "201", "612345678", 60),
      out(At(4, 11), "202", "0033123456789", 61), out(At(10, 12), "203", "912000001", 30),
      out(At(20, 12), "203", "612000002", 150),   out(At(5, 9), "204", "912000003", 600),
      out(At(6, 9), "201", "912000004", 200),     out(At(7, 9), "202", "912000005", 59),
      out(At(11, 9), "201", "0099123456", 45),    out(At(-18, 9), "201", "912000006", 60)};
  calls[6].type = 1;  // incoming
  calls[6].trunk = "02";
  calls[7].account = "77";
  return calls;
}

velqua_store::Store& StoreOf(bool postgres) {
  static std::unique_ptr<velqua_store::Store> stores[2];
  std::unique_ptr<velqua_store::Store>& s = stores[postgres ? 1 : 0];
  if (!s) {
    const std::string dir = velqua_store_testing::TempDir(postgres ? "cost-pg" : "cost-sqlite");
    s = velqua_store::OpenStore(
        postgres ? velqua_store_testing::PgTestServer::Shared().NewDatabase() : dir + "/calls.db");
    s->PutSwitch({"hq", "", "", ""});
    s->PutRatingPlan(kData + "plan.toml");
    for (const char* file : {"people.csv", "accounts.csv"}) {
      s->PutDirectory(velqua_rating::ReadDirectory(
          velqua_records::ReadWholeFile(kData + file, "directory"), file));
    }
    WriteCalls(*s, "hq", Calls());
  }
  return *s;
}

Report Build(bool postgres, Request r) {
  r.from = "2026-03-01";
  r.to = "2026-03-31";
  return velqua_reports::BuildReport(StoreOf(postgres), r);
}

Request Kind(const std::string& kind) {
  Request r;
  r.kind = kind;
  return r;
}

// A table's rows (and total, last) as the text of the given columns.
std::vector<std::vector<std::string>> Rows(const Table& t, const std::vector<size_t>& columns) {
  std::vector<std::vector<std::string>> rows;
  std::vector<velqua_reports::Row> all;
  velqua_reports::ForEachRow(t, [&](const velqua_reports::Row& row) { all.push_back(row); });
  if (t.total) all.push_back(*t.total);
  for (const auto& row : all) {
    std::vector<std::string> texts;
    for (size_t c : columns) {
      texts.push_back(c < row.size() && c < t.columns.size()
                          ? velqua_reports::CellText(t.columns[c], row[c], true)
                          : "(no column " + std::to_string(c) + ")");
    }
    rows.push_back(texts);
  }
  return rows;
}

using Expected = std::vector<std::vector<std::string>>;

class CostReportTest : public ::testing::TestWithParam<bool> {};

TEST_P(CostReportTest, TablesAddUpTheStoredPrices) {
  Request itemised = Kind("extensions");
  itemised.itemised = "203";
  Request sales = Kind("extensions");
  sales.department = "Sales";
  Request top2 = Kind("destinations");
  top2.top = 2;
  Request by_calls = Kind("destinations");
  by_calls.by = "calls";
  struct Case {
    const char* name;
    Request request;
    size_t table;
    std::vector<size_t> columns;
    Expected rows;
  };
  const Case cases[] = {
      // clang-format off
      {"extensions: calls, talk time, cost, person and department as the month ends", Kind("extensions"), 0, {0, 1, 2, 3, 4, 8, 9}, {{"201", "Ana", "Sales", "4", "3", "0:07:10", "0.60 EUR"}, {"202", "Ben", "Sales", "2", "2", "0:02:00", "2.30 EUR"}, {"203", "Carla", "Sales", "2", "2", "0:03:00", "1.00 EUR"}, {"204", "", "", "1", "1", "0:10:00", "1.00 EUR"}, {"total", "", "", "9", "8", "0:22:10", "4.90 EUR"}}},
      {"extensions of Sales: 203's calls from the 16th only", sales, 0, {0, 3, 8, 9}, {{"201", "4", "0:07:10", "0.60 EUR"}, {"202", "2", "0:02:00", "2.30 EUR"}, {"203", "1", "0:02:30", "0.90 EUR"}, {"total", "7", "0:11:40", "3.80 EUR"}}},
      {"itemised: destination and cost of each call", itemised, 0, {0, 2, 3, 6, 7}, {{"2026-03-10 12:00:00", "912000001", "Spain fixed", "0:00:30", "0.10 EUR"}, {"2026-03-20 12:00:00", "612000002", "Spain mobile", "0:02:30", "0.90 EUR"}, {"total", "", "", "0:03:00", "1.00 EUR"}}},
      {"trunks: the incoming trunk costs nothing", Kind("trunks"), 0, {0, 1, 2, 3}, {{"01", "8", "0:18:50", "4.90 EUR"}, {"02", "1", "0:03:20", "0.00 EUR"}, {"total", "9", "0:22:10", "4.90 EUR"}}},
      {"departments: Carla's calls where she was that day",
       Kind("departments"),
       0,
       {0, 1, 2, 3, 4},
       {{"(none)", "1", "1", "0:10:00", "1.00 EUR"},
        {"Sales", "3", "7", "0:11:40", "3.80 EUR"},
        {"Support", "1", "1", "0:00:30", "0.10 EUR"},
        {"total", "5", "9", "0:22:10", "4.90 EUR"}}},
      {"cost centres",
       Kind("departments"),
       1,
       {0, 1, 2, 4},
       {{"(none)", "(none)", "1", "1.00 EUR"},
        {"CC-1", "Sales", "7", "3.80 EUR"},
        {"CC-2", "Support", "1", "0.10 EUR"},
        {"total", "", "9", "4.90 EUR"}}},
      {"accounts: the client and project of the code", Kind("accounts"), 0, {0, 1, 2, 3, 4, 5}, {{"77", "Acme", "Audit", "1", "0:00:59", "0.10 EUR"}, {"total", "", "", "1", "0:00:59", "0.10 EUR"}}},
      {"destinations by cost, with each one's share", Kind("destinations"), 0, {0, 1, 2, 3, 4, 5}, {{"France", "international", "1", "0:01:01", "2.20 EUR", "44.9 %"}, {"Spain fixed", "national", "4", "0:13:34", "1.50 EUR", "30.6 %"}, {"Spain mobile", "mobile", "2", "0:03:30", "1.20 EUR", "24.5 %"}, {"total", "", "7", "0:18:05", "4.90 EUR", "100.0 %"}}},
      {"the top 2 and the rest as one row",
       top2,
       0,
       {0, 2, 4, 5},
       {{"France", "1", "2.20 EUR", "44.9 %"},
        {"Spain fixed", "4", "1.50 EUR", "30.6 %"},
        {"(others)", "2", "1.20 EUR", "24.5 %"},
        {"total", "7", "4.90 EUR", "100.0 %"}}},
      {"ranked by calls", by_calls, 0, {0, 2, 5}, {{"Spain fixed", "4", "57.1 %"}, {"Spain mobile", "2", "28.6 %"}, {"France", "1", "14.3 %"}, {"total", "7", "100.0 %"}}},
      {"destination classes", Kind("destinations"), 1, {0, 1, 3, 4}, {{"international", "1", "2.20 EUR", "44.9 %"}, {"mobile", "2", "1.20 EUR", "24.5 %"}, {"national", "4", "1.50 EUR", "30.6 %"}, {"total", "7", "4.90 EUR", "100.0 %"}}},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Report r = Build(GetParam(), c.request);
    ASSERT_GT(r.tables.size(), c.table);
    EXPECT_EQ(Rows(r.tables[c.table], c.columns), c.rows);
  }
}

TEST_P(CostReportTest, UnpricedCallsAreNamedInANote) {
  const Report r = Build(GetParam(), Kind("extensions"));
  ASSERT_FALSE(r.notes.empty());
  EXPECT_EQ(r.notes.back().substr(0, 30), "1 call could not be priced (ve");
}

TEST_P(CostReportTest, CompareOfDepartmentsGivesTheChangeInCost) {
  Request r = Kind("compare");
  r.of = "departments";
  const Report report = Build(GetParam(), r);
  const Table* cost = nullptr;
  for (const Table& t : report.tables) {
    if (t.name == "Departments: cost") cost = &t;
  }
  ASSERT_NE(cost, nullptr);
  // February: one call of Ana's, 0.10.
  EXPECT_EQ(Rows(*cost, {0, 1, 2, 3}), (Expected{{"(none)", "1.00 EUR", "0.00 EUR", "1.00 EUR"},
                                                 {"Sales", "3.80 EUR", "0.10 EUR", "3.70 EUR"},
                                                 {"Support", "0.10 EUR", "0.00 EUR", "0.10 EUR"},
                                                 {"total", "4.90 EUR", "0.10 EUR", "4.80 EUR"}}));
}

// February has no call with an account code: its table has no cost column
// at all, and the comparison still sets the month's cost against nothing.
TEST_P(CostReportTest, CompareWithAPeriodWithoutPricesCountsItsCostAsNothing) {
  Request r = Kind("compare");
  r.of = "accounts";
  const Report report = Build(GetParam(), r);
  const Table* cost = nullptr;
  for (const Table& t : report.tables) {
    if (t.name == "Account codes: cost") cost = &t;
  }
  ASSERT_NE(cost, nullptr);
  EXPECT_EQ(Rows(*cost, {0, 1, 2, 3, 4, 5}),
            (Expected{{"77", "Acme", "Audit", "0.10 EUR", "0.00 EUR", "0.10 EUR"},
                      {"total", "", "", "0.10 EUR", "0.00 EUR", "0.10 EUR"}}));
}

TEST_P(CostReportTest, AnUnknownDepartmentIsRefused) {
  Request r = Kind("departments");
  r.department = "Legal";
  try {
    Build(GetParam(), r);
    FAIL() << "no error";
  } catch (const velqua_records::Failure& e) {
    EXPECT_EQ(std::string(e.what()).substr(0, 27), "unknown department 'Legal' ");
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, CostReportTest, ::testing::Values(false, true),
                         [](const auto& p) { return p.param ? "Postgres" : "Sqlite"; });

}  // namespace
}  // namespace velqua_reports_testing
