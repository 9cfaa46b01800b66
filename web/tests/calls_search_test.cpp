// The Calls view's search by the directory (person, department, as in force
// on the call's day) and by cost (exact), against what the store says of
// each call, and its spreadsheet export, on both engines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <set>

#include "call_query.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store::StoredCall;
using velqua_store_testing::Call;

class CallsSearchTest : public WebTest {
 protected:
  // Priced calls of four extensions; 204 moves from Support to Finance on
  // March 10th; one number has no tariff.
  void Fill() {
    store_->PutRatingPlan(VELQUA_SOURCE_DIR "/examples/rating/hicom-plan.toml");
    store_->PutDirectory({Person("201", "Anna Weber", "Sales"),
                          Person("202", "Jonas WEBER", "Sales"),
                          Person("203", "Lena 100%", "Support"), Person("204", "Paul", "Support"),
                          Person("204", "Paul", "Finance", "2026-03-10")});
    const velqua_store::Source source = NewSource("hicom", "serial");
    std::vector<velqua_store::Record> records = {
        Call(1, "201", "2026-03-09 09:10:00", "01", "0301111"),
        Call(2, "202", "2026-03-09 09:40:00", "02", "0049301234"),
        Call(3, "203", "2026-03-09 10:00:00", "01", "0891234567"),
        Call(4, "204", "2026-03-09 10:30:00", "03", "0301112"),
        Call(5, "204", "2026-03-10 11:00:00", "01", "00999123"),
        Call(6, "204", "2026-03-11 12:00:00", "01", "0049891111"),
        Call(7, "205", "2026-03-11 13:00:00", "01", "0301113")};
    const int32_t durations[] = {42, 600, 3600, 5, 60, 1800, 120};
    for (size_t i = 0; i < records.size(); ++i) records[i].row.duration = durations[i];
    store_->Write(source, records, std::nullopt);
    store_->ListCalls({}, [&](const StoredCall& c) { calls_.push_back(c); });
    Start();
    ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  }

  std::vector<int64_t> Expected(const std::function<bool(const StoredCall&)>& keep) const {
    std::vector<int64_t> ids;
    for (const StoredCall& c : calls_) {
      if (keep(c)) ids.push_back(c.id);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
  }

  std::vector<int64_t> Found(const std::string& query) {
    std::vector<int64_t> ids;
    const nlohmann::json page = client_->Json("/api/calls?limit=1000&" + query);
    for (const auto& c : page["calls"]) {
      ids.push_back(c["id"]);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
  }

  std::vector<StoredCall> calls_;
};

int64_t Millionths(const StoredCall& c) { return *velqua_web::MillionthsOf(*c.cost); }

// Each search picks what the store says of each call: by person (its
// name's wildcards taken as text), department (as in force on the call's
// day: the directory's periods read apart and merged), number prefix
// (through its index), period and cost (exact, to the millionth). Each page,
// in each order, is the unfiltered order's calls that the filter picks, and
// says whether more follow.
TEST_P(CallsSearchTest, SearchesPageInEveryOrderAsTheUnfilteredList) {
  Fill();
  // A cost one call has exactly: the range of that one amount finds it.
  std::string some_cost;
  for (const StoredCall& c : calls_) {
    if (c.cost && *c.cost != "0" && some_cost.empty()) some_cost = *c.cost;
  }
  ASSERT_FALSE(some_cost.empty()) << "no call was priced";
  const int64_t exact = *velqua_web::MillionthsOf(some_cost);
  const auto in = [](const StoredCall& c, const char* department) {
    return c.department && *c.department == department;
  };
  struct Row {
    std::string filter;
    std::function<bool(const StoredCall&)> keep;
    size_t at_least;
  };
  const Row rows[] = {
      {"person=weber",
       [](const StoredCall& c) { return c.extension == "201" || c.extension == "202"; }, 2},
      {"person=100%25", [](const StoredCall& c) { return c.person && *c.person == "Lena 100%"; },
       1},
      {"person=_", [](const StoredCall&) { return false; }, 0},
      {"department=Sales", [&](const StoredCall& c) { return in(c, "Sales"); }, 2},
      {"department=Finance", [&](const StoredCall& c) { return in(c, "Finance"); }, 1},
      {"department=Support&extension=204",
       [&](const StoredCall& c) { return in(c, "Support") && c.extension == "204"; }, 1},
      {"department=Finance&min_cost=0",
       [&](const StoredCall& c) { return in(c, "Finance") && c.cost.has_value(); }, 1},
      {"number=0301",
       [](const StoredCall& c) { return c.dialled && c.dialled->rfind("0301", 0) == 0; }, 1},
      {"person=paul&from=2026-03-10&to=2026-03-10",
       [](const StoredCall& c) { return c.start && c.start->rfind("2026-03-10", 0) == 0; }, 1},
      {"min_cost=0", [](const StoredCall& c) { return c.cost.has_value(); }, 3},
      {"min_cost=0.10", [](const StoredCall& c) { return c.cost && Millionths(c) >= 100000; }, 1},
      {"max_cost=0.1", [](const StoredCall& c) { return c.cost && Millionths(c) <= 100000; }, 1},
      {"min_cost=" + some_cost + "&max_cost=" + some_cost,
       [&](const StoredCall& c) { return c.cost && Millionths(c) == exact; }, 1},
      {"min_cost=" + some_cost + "1",  // a millionth-range above it (or more)
       [&](const StoredCall& c) {
         return c.cost && Millionths(c) >= *velqua_web::MillionthsOf(some_cost + "1");
       },
       0},
  };
  const char* const orders[] = {"sort=start&order=desc",    "sort=start&order=asc",
                                "sort=duration&order=desc", "sort=cost&order=desc",
                                "sort=cost&order=asc",      "sort=number&order=asc"};
  for (const Row& row : rows) {
    for (const char* order : orders) {
      SCOPED_TRACE(row.filter + "&" + order);
      std::vector<int64_t> expected;
      const nlohmann::json all = client_->Json(std::string("/api/calls?limit=1000&") + order);
      for (const auto& c : all["calls"]) {
        const int64_t id = c["id"];
        const auto call = std::find_if(calls_.begin(), calls_.end(),
                                       [&](const StoredCall& s) { return s.id == id; });
        ASSERT_NE(call, calls_.end());
        if (row.keep(*call)) expected.push_back(id);
      }
      EXPECT_GE(expected.size(), row.at_least) << "the store does not hold the case";
      std::vector<int64_t> paged;
      for (size_t offset = 0; offset == 0 || offset < expected.size(); ++offset) {
        const nlohmann::json page = client_->Json(
            "/api/calls?limit=1&offset=" + std::to_string(offset) + "&" + row.filter + "&" + order);
        for (const auto& c : page["calls"]) paged.push_back(c["id"]);
        EXPECT_EQ(page["more"], offset + 1 < expected.size());
      }
      EXPECT_EQ(paged, expected);
    }
  }
}

// More matching extensions than one query joins: the per-call road, with
// the same answer.
TEST_P(CallsSearchTest, ADepartmentOfHundredsOfExtensionsIsSearchedToo) {
  std::vector<velqua_rating::DirectoryEntry> entries;
  for (int e = 1000; e < 1250; ++e) entries.push_back(Person(std::to_string(e), "X", "Big"));
  entries.push_back(Person("201", "Anna Weber", "Big"));
  store_->PutDirectory(entries);
  const velqua_store::Source source = NewSource("hicom", "serial");
  store_->Write(source,
                {Call(1, "201", "2026-03-09 09:10:00", "01", "0301111"),
                 Call(2, "1249", "2026-03-09 09:20:00", "01", "0301111"),
                 Call(3, "202", "2026-03-09 09:30:00", "01", "0301111")},
                std::nullopt);
  store_->ListCalls({}, [&](const StoredCall& c) { calls_.push_back(c); });
  Start();
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  EXPECT_EQ(Found("department=Big"), Expected([](const StoredCall& c) {
              return c.extension == "201" || c.extension == "1249";
            }));
}

// The dashboard's month of costs by department (as in force on each call's
// day), by destination and in all, against the calls' own prices.
TEST_P(CallsSearchTest, DashboardCostsAreTheSumsOfTheMonthsPrices) {
  Fill();
  const nlohmann::json d = client_->Json("/api/dashboard?day=2026-03-10");
  using Sums = std::map<std::pair<std::string, std::string>, std::pair<int64_t, int64_t>>;
  Sums departments, destinations, all;
  for (const StoredCall& c : calls_) {
    if (!c.cost || !c.currency || c.currency->empty()) continue;
    for (auto [sums, key] :
         {std::pair{&departments, c.department.value_or("")},
          std::pair{&destinations, c.destination.value_or("")}, std::pair{&all, std::string()}}) {
      auto& [calls, millionths] = (*sums)[{key, *c.currency}];
      ++calls;
      millionths += Millionths(c);
    }
  }
  ASSERT_GE(departments.size(), 2u) << "the store does not hold the case";
  const auto read = [](const nlohmann::json& list, bool keyed) {
    Sums sums;
    for (const auto& row : list) {
      auto& sum = sums[{keyed ? row["key"].get<std::string>() : "", row["currency"]}];
      sum = {keyed ? row["calls"].get<int64_t>() : 0,
             *velqua_web::MillionthsOf(row["cost"].get<std::string>())};
    }
    return sums;
  };
  EXPECT_EQ(read(d["departments"], true), departments);
  EXPECT_EQ(read(d["top_destinations"], true), destinations);
  for (auto& [key, sum] : all) sum.first = 0;
  EXPECT_EQ(read(d["month"]["cost"], false), all);
}

// A page's calls are read a few hundred at a time: an export of more holds
// every one, in the page's order; so many calls with one number prefix are
// found walking the calls in that order.
TEST_P(CallsSearchTest, AnExportOfThousandsOfCallsHoldsEachInOrder) {
  std::vector<velqua_store::Record> records;
  for (int i = 0; i < 10050; ++i) {
    char start[32];
    std::snprintf(start, sizeof start, "2026-03-09 %02d:%02d:%02d", i / 3600, i / 60 % 60, i % 60);
    records.push_back(Call(i + 1, std::to_string(200 + i % 7), start, "01", "0301111"));
  }
  store_->Write(NewSource("hicom", "serial"), records, std::nullopt);
  Start();
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  const auto r = client_->Send("GET", "/api/calls/export.csv?number=030&sort=start&order=desc");
  ASSERT_TRUE(r);
  std::vector<std::string> starts;
  for (size_t at = r->body.find("\r\n") + 2; at < r->body.size();
       at = r->body.find("\r\n", at) + 2) {
    starts.push_back(r->body.substr(at, r->body.find(',', at) - at));
  }
  ASSERT_EQ(starts.size(), records.size());
  EXPECT_TRUE(std::is_sorted(starts.rbegin(), starts.rend()));
  EXPECT_EQ(std::set<std::string>(starts.begin(), starts.end()).size(), records.size());
}

TEST_P(CallsSearchTest, AMalformedAmountIsRefusedAndTheSpreadsheetIsOne) {
  Fill();
  const auto r = client_->Send("GET", "/api/calls?min_cost=1.1234567");
  EXPECT_EQ(r->status, 400);
  EXPECT_NE(r->body.find("parameter 'min_cost'"), std::string::npos) << r->body;
  const auto sheet = client_->Send("GET", "/api/calls/export.xlsx?department=Sales");
  ASSERT_EQ(sheet->status, 200) << sheet->body;
  EXPECT_EQ(sheet->get_header_value("Content-Disposition"), "attachment; filename=\"calls.xlsx\"");
  EXPECT_EQ(sheet->body.rfind(std::string("PK\x03\x04", 4), 0), 0u);
  EXPECT_EQ(client_->Send("GET", "/api/calls/export.xlsx?max_cost=x")->status, 400);
}

TEST(MillionthsOf, ReadsAmountsExactly) {
  struct Row {
    std::string text;
    std::optional<int64_t> millionths;
  };
  const Row rows[] = {
      // clang-format off
      {"0", 0}, {"12", 12000000}, {"0.5", 500000}, {"-1.25", -1250000}, {"0.000001", 1},
      {"999999999999.999999", 999999999999999999},
      {"", std::nullopt}, {"-", std::nullopt}, {".5", std::nullopt}, {"1,5", std::nullopt},
      {" 1", std::nullopt}, {"1.0000001", std::nullopt},
      // clang-format on
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(velqua_web::MillionthsOf(row.text), row.millionths);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, CallsSearchTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
