// Every kind of report on a generated month, on SQLite and on PostgreSQL:
// its numbers match what the test works out from the generated calls, and
// the CSV of each report is the same bytes from both engines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "generated_month.h"
#include "pg_test_server.h"
#include "test_support.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/output.h"

namespace velqua_reports_testing {
namespace {

using velqua_reports::Report;
using velqua_reports::Request;
using velqua_reports::Table;

constexpr int64_t kMarch1 = 20513, kApril1 = 20544;
constexpr int64_t kDay = 86400;

const std::vector<GenCall>& Month() {
  static const std::vector<GenCall> calls = GenerateMonth(3000, 2026);
  return calls;
}

// One store of each engine holding the month, made once for the suite.
velqua_store::Store& StoreOf(bool postgres) {
  static std::unique_ptr<velqua_store::Store> stores[2];
  std::unique_ptr<velqua_store::Store>& s = stores[postgres ? 1 : 0];
  if (!s) {
    const std::string url = postgres ? velqua_store_testing::PgTestServer::Shared().NewDatabase()
                                     : velqua_store_testing::TempDir("reports-month") + "/calls.db";
    s = velqua_store::OpenStore(url);
    WriteCalls(*s, "hq", Month());
  }
  return *s;
}

Report Build(bool postgres, const std::string& kind, const std::string& of = "") {
  Request r;
  r.kind = kind;
  r.from = "2026-03-01";
  r.to = "2026-03-31";
  r.lines = 4;
  r.of = of;
  return velqua_reports::BuildReport(StoreOf(postgres), r);
}

const Table& TableNamed(const Report& r, const std::string& name) {
  for (const Table& t : r.tables) {
    if (t.name == name) return t;
  }
  throw std::runtime_error("no table " + name);
}

int64_t P90(std::vector<int64_t> rings) {
  std::sort(rings.begin(), rings.end());
  return rings[(9 * rings.size() + 9) / 10 - 1];
}

void ExpectCounts(const Table& t, const std::map<std::string, Counts>& expected) {
  ASSERT_EQ(t.rows.size(), expected.size());
  for (const auto& row : t.rows) {
    SCOPED_TRACE(t.name + " " + row[0].text);
    const Counts& c = expected.at(row[0].text);
    EXPECT_EQ(row[1].number, c.calls);
    EXPECT_EQ(row[2].number, c.outgoing);
    EXPECT_EQ(row[3].number, c.incoming);
    EXPECT_EQ(row[4].number, c.internal);
    EXPECT_EQ(row[5].number, c.unanswered);
    EXPECT_EQ(row[6].number, c.seconds);
  }
}

class MonthReportTest : public ::testing::TestWithParam<bool> {
 protected:
  Expected expected_ = Expect(Month(), kMarch1, kApril1, kDay);
};

TEST_P(MonthReportTest, ExtensionsCountEachKindOfCall) {
  const Report r = Build(GetParam(), "extensions");
  ExpectCounts(r.tables.at(0), expected_.by_extension);
  EXPECT_EQ(r.switches, std::vector<std::string>{"hq"});
}

TEST_P(MonthReportTest, TrafficCountsEveryDayAndEveryHourOfTheWeek) {
  const Report r = Build(GetParam(), "traffic");
  const Table& days = TableNamed(r, "Calls per day");
  ASSERT_EQ(days.rows.size(), 31u);  // every day, those without calls too
  Table listed = days;
  listed.rows.clear();
  for (const auto& row : days.rows) {
    if (expected_.by_day.count(row[0].text) > 0) listed.rows.push_back(row);
  }
  ExpectCounts(listed, expected_.by_day);
  const Table& heat = TableNamed(r, "Calls by hour and weekday");
  for (int h = 0; h < 24; ++h) {
    for (int w = 0; w < 7; ++w) {
      SCOPED_TRACE("hour " + std::to_string(h) + " weekday " + std::to_string(w));
      EXPECT_EQ(heat.rows[static_cast<size_t>(h)][static_cast<size_t>(w + 1)].number,
                expected_.weekday_hour[w][h]);
    }
  }
}

TEST_P(MonthReportTest, TrunksCountCallsAndTheLinesInUseEveryHalfHour) {
  const Report r = Build(GetParam(), "trunks");
  const Table& trunks = TableNamed(r, "Trunks");
  ASSERT_EQ(trunks.rows.size(), expected_.by_trunk.size());
  for (const auto& row : trunks.rows) {
    SCOPED_TRACE(row[0].text);
    EXPECT_EQ(row[1].number, expected_.by_trunk.at(row[0].text).calls);
    EXPECT_EQ(row[2].number, expected_.by_trunk.at(row[0].text).seconds);
  }
  const std::vector<int64_t>& lines = r.charts.at(0).values;
  ASSERT_EQ(lines.size(), expected_.lines_in_use.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    ASSERT_EQ(lines[i], expected_.lines_in_use[i]) << "half hour " << i;
  }
  const int64_t most =
      *std::max_element(expected_.lines_in_use.begin(), expected_.lines_in_use.end());
  EXPECT_EQ(TableNamed(r, "Busiest half hours").rows.at(0)[1].number, most);
  const auto full = std::count_if(expected_.lines_in_use.begin(), expected_.lines_in_use.end(),
                                  [](int64_t n) { return n >= 4; });
  EXPECT_EQ(r.notes.at(1), "Half hours with all 4 lines in use: " + std::to_string(full));
}

TEST_P(MonthReportTest, MissedCallsTheirRingAndThoseNeverCalledBack) {
  const Report r = Build(GetParam(), "missed");
  for (const auto& [name, expected] :
       {std::pair{"Missed calls by extension", expected_.missed_by_extension},
        std::pair{"Missed calls by hour", expected_.missed_by_hour}}) {
    int64_t never = 0;
    for (const auto& row : TableNamed(r, name).rows) {
      SCOPED_TRACE(std::string(name) + " " + row[0].text);
      const auto it = expected.find(row[0].text);
      if (it == expected.end()) {
        EXPECT_EQ(row[1].number, 0);  // an hour without missed calls
        continue;
      }
      const Missed& m = it->second;
      EXPECT_EQ(row[1].number, m.missed);
      int64_t sum = 0;
      for (int64_t ring : m.rings) sum += ring;
      const int64_t n = static_cast<int64_t>(m.rings.size());
      EXPECT_EQ(row[2].number, (2 * sum + n) / (2 * n));
      EXPECT_EQ(row[3].number, P90(m.rings));
      EXPECT_EQ(row[4].number, m.not_called_back);
      never += m.not_called_back;
    }
    EXPECT_EQ(velqua_reports::RowCount(TableNamed(r, "Missed calls never called back")), never);
  }
  // The list, read back from where it is kept: in order of start, then
  // extension, then number, and as many per extension as counted.
  std::map<std::string, int64_t> listed;
  std::vector<std::string> order;
  velqua_reports::ForEachRow(
      TableNamed(r, "Missed calls never called back"), [&](const velqua_reports::Row& row) {
        ++listed[row[1].text];
        order.push_back(row[0].text + '\n' + row[1].text + '\n' + row[2].text);
      });
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
  for (const auto& [extension, m] : expected_.missed_by_extension) {
    SCOPED_TRACE("listed for " + extension);
    EXPECT_EQ(listed[extension], m.not_called_back);
  }
}

TEST_P(MonthReportTest, CompareSetsTheMonthAgainstTheDaysBefore) {
  const Report r = Build(GetParam(), "compare", "extensions");
  const Expected before = Expect(Month(), kMarch1 - 31, kMarch1, kDay);
  const Table& t = TableNamed(r, "Extensions: calls");
  ASSERT_FALSE(t.rows.empty());
  for (const auto& row : t.rows) {
    SCOPED_TRACE(row[0].text);
    const int64_t now = expected_.by_extension[row[0].text].calls;
    const int64_t then =
        before.by_extension.count(row[0].text) > 0 ? before.by_extension.at(row[0].text).calls : 0;
    EXPECT_EQ(row[1].number, now);
    EXPECT_EQ(row[2].number, then);
    EXPECT_EQ(row[3].number, now - then);
  }
}

TEST(MonthReportEngines, EveryReportIsTheSameCsvFromBothEngines) {
  for (const char* kind : {"extensions", "trunks", "missed", "traffic", "compare"}) {
    SCOPED_TRACE(kind);
    const std::string sqlite = Text(velqua_reports::WriteCsv, Build(false, kind));
    EXPECT_EQ(sqlite, Text(velqua_reports::WriteCsv, Build(true, kind)));
    EXPECT_GT(sqlite.size(), 200u);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, MonthReportTest, ::testing::Values(false, true),
                         [](const auto& p) { return p.param ? "Postgres" : "Sqlite"; });

}  // namespace
}  // namespace velqua_reports_testing
