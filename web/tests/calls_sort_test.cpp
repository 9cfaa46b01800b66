// Every order the Calls view offers, in both directions, against the order
// worked out here from what the store says of each call: the key, those
// without one first (ascending) or last (descending), ties by the call's
// number. The store holds ties in every key, calls without a trunk or a
// duration, calls whose number no tariff has and calls stored before any
// plan (no price at all); pages of two are read one after another.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "call_query.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store::StoredCall;
using velqua_store_testing::Call;

// A key that is either absent or compares as T.
template <typename T>
bool Before(const std::optional<T>& a, const std::optional<T>& b) {
  if (!a || !b) return !a && b;
  return *a < *b;
}
template <typename T>
bool Same(const std::optional<T>& a, const std::optional<T>& b) {
  return a.has_value() == b.has_value() && (!a || *a == *b);
}

// The Calls view's orders: the key's name, and how two calls' keys compare.
struct Order {
  const char* sort;
  std::function<bool(const StoredCall&, const StoredCall&)> less, equal;
};

std::vector<Order> Orders() {
  const auto cost = [](const StoredCall& c) {
    return c.cost ? velqua_web::MillionthsOf(*c.cost) : std::nullopt;
  };
  return {
      {"start", [](auto& a, auto& b) { return Before(a.start, b.start); },
       [](auto& a, auto& b) { return Same(a.start, b.start); }},
      {"duration", [](auto& a, auto& b) { return Before(a.duration, b.duration); },
       [](auto& a, auto& b) { return Same(a.duration, b.duration); }},
      {"extension", [](auto& a, auto& b) { return Before(a.extension, b.extension); },
       [](auto& a, auto& b) { return Same(a.extension, b.extension); }},
      {"number", [](auto& a, auto& b) { return Before(a.dialled, b.dialled); },
       [](auto& a, auto& b) { return Same(a.dialled, b.dialled); }},
      {"trunk", [](auto& a, auto& b) { return Before(a.trunk, b.trunk); },
       [](auto& a, auto& b) { return Same(a.trunk, b.trunk); }},
      {"cost", [=](auto& a, auto& b) { return Before(cost(a), cost(b)); },
       [=](auto& a, auto& b) { return Same(cost(a), cost(b)); }},
  };
}

// The calls ascending in the order: the key, then the call's number.
std::vector<StoredCall> Sorted(std::vector<StoredCall> calls, const Order& order) {
  std::sort(calls.begin(), calls.end(), [&](const StoredCall& a, const StoredCall& b) {
    return order.less(a, b) || (!order.less(b, a) && a.id < b.id);
  });
  return calls;
}

std::vector<int64_t> Ids(const nlohmann::json& page) {
  std::vector<int64_t> ids;
  for (const auto& c : page["calls"]) ids.push_back(c["id"]);
  return ids;
}

class CallsSortTest : public WebTest {
 protected:
  void Fill() {
    const velqua_store::Source source = NewSource("hicom", "serial");
    velqua_store::Record no_trunk = Call(1, "203", "2026-03-09 08:00:00", "", "211");
    velqua_store::Record no_duration = Call(2, "201", "2026-03-09 08:00:00", "01", "0301111");
    no_duration.row.duration = -1;
    store_->Write(source, {no_trunk, no_duration}, std::nullopt);  // before the plan: no price
    store_->PutRatingPlan(VELQUA_SOURCE_DIR "/examples/rating/hicom-plan.toml");
    std::vector<velqua_store::Record> records = {
        Call(3, "202", "2026-03-09 09:00:00", "02", "0301111"),
        Call(4, "201", "2026-03-09 09:00:00", "01", "0301111"),   // same start, duration, cost
        Call(5, "204", "2026-03-09 10:00:00", "03", "00999123"),  // no tariff: no cost
        Call(6, "202", "2026-03-10 11:00:00", "01", "0049891111"),
        Call(7, "203", "2026-03-10 12:00:00", "", "212"),
        Call(8, "201", "2026-03-11 13:00:00", "02", "0049891111")};
    const int32_t durations[] = {60, 60, 300, 60, 5, 900};
    for (size_t i = 0; i < records.size(); ++i) records[i].row.duration = durations[i];
    store_->Write(source, records, std::nullopt);
    store_->ListCalls({}, [&](const StoredCall& c) { calls_.push_back(c); });
    Start();
    ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  }

  // The ids of every page of two, in turn; and whether each said rightly
  // that more follow.
  std::vector<int64_t> Paged(const std::string& query) {
    std::vector<int64_t> ids;
    for (size_t offset = 0; offset <= calls_.size(); offset += 2) {
      const nlohmann::json page =
          client_->Json("/api/calls?limit=2&offset=" + std::to_string(offset) + "&" + query);
      for (int64_t id : Ids(page)) ids.push_back(id);
      EXPECT_EQ(page["more"], offset + 2 < calls_.size()) << "offset " << offset;
    }
    return ids;
  }

  std::vector<StoredCall> calls_;
};

TEST_P(CallsSortTest, EveryOrderInBothDirectionsIsTheKeyThenTheCallsNumber) {
  Fill();
  for (const Order& row : Orders()) {
    const std::vector<StoredCall> sorted = Sorted(calls_, row);
    // The store holds the cases: a tie, and a call without the key where
    // the key can be absent.
    bool tie = false;
    for (size_t i = 1; i < sorted.size(); ++i) tie = tie || row.equal(sorted[i - 1], sorted[i]);
    EXPECT_TRUE(tie) << row.sort << ": no two calls share a key";
    std::vector<int64_t> ascending;
    for (const StoredCall& c : sorted) ascending.push_back(c.id);
    const std::vector<int64_t> descending(ascending.rbegin(), ascending.rend());
    const std::vector<std::pair<std::string, std::vector<int64_t>>> orders = {{"asc", ascending},
                                                                              {"desc", descending}};
    for (const auto& [order, expected] : orders) {
      SCOPED_TRACE(row.sort + (" " + order));
      EXPECT_EQ(Paged(std::string("sort=") + row.sort + "&order=" + order), expected);
    }
  }
  // What the cases rest on: calls without a cost, priced or never priced.
  EXPECT_GE(std::count_if(calls_.begin(), calls_.end(),
                          [](const StoredCall& c) { return !c.cost && c.cost_reason; }),
            1);
  EXPECT_GE(std::count_if(calls_.begin(), calls_.end(),
                          [](const StoredCall& c) { return !c.cost && !c.cost_reason; }),
            1);
}

// More calls than the search sorts apart: a page is walked through its
// order's index, whole or a directory's periods at a time, and must be the
// same page. 14,000 priced calls over fourteen days of March, but one in a
// thousand a day of April (another month's table on PostgreSQL) and one in
// a thousand without a start; Sales is six of the seven extensions (over
// 10,000 calls), one of them only from the sixth day.
TEST_P(CallsSortTest, ManyCallsWalkedInTheOrdersIndexGiveTheSamePages) {
  store_->PutRatingPlan(VELQUA_SOURCE_DIR "/examples/rating/hicom-plan.toml");
  std::vector<velqua_rating::DirectoryEntry> directory;
  for (int e = 200; e < 207; ++e) {
    const std::string key = std::to_string(e);
    directory.push_back(Person(key, "P" + key, e >= 205 ? "Stores" : "Sales"));
  }
  directory.push_back(Person("205", "P205", "Sales", "2026-03-06"));  // Sales from the sixth
  store_->PutDirectory(directory);
  std::vector<velqua_store::Record> records;
  const char* const numbers[] = {"00999123", "0301111", "0049891111", "0301112", "0891234567"};
  for (int i = 0; i < 14000; ++i) {
    char start[32];
    std::snprintf(start, sizeof start, "2026-%02d-%02d %02d:%02d:00", i % 1000 == 998 ? 4 : 3,
                  1 + i / 1000, i % 1000 / 60, i % 60);
    const int trunk = i % 4;
    records.push_back(Call(i + 1, std::to_string(200 + i % 7), start,
                           trunk == 0 ? "" : "0" + std::to_string(trunk), numbers[i % 5]));
    records.back().row.duration = i % 97 == 0 ? -1 : i % 89;
    if (i % 1000 == 999) records.back().row.printed = 0;  // no date, no time
  }
  store_->Write(NewSource("hicom", "serial"), records, std::nullopt);
  std::vector<StoredCall> calls;
  store_->ListCalls({}, [&](const StoredCall& c) { calls.push_back(c); });
  ASSERT_EQ(calls.size(), records.size());
  Start();
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  struct Filter {
    std::string query;
    std::function<bool(const StoredCall&)> keep;
  };
  const auto sales = [](const StoredCall& c) { return c.department == "Sales"; };
  const auto cost = [](const StoredCall& c) {  // -1: none
    return c.cost ? velqua_web::MillionthsOf(*c.cost).value_or(-1) : int64_t{-1};
  };
  const Filter filters[] = {
      {"", [](const StoredCall&) { return true; }},
      {"department=Sales", sales},
      {"department=Sales&from=2026-03-02&to=2026-03-11",
       [&](const StoredCall& c) {
         return sales(c) && c.start && *c.start >= "2026-03-02" && *c.start < "2026-03-12";
       }},
      {"from=2026-03-03&to=2026-03-03",
       [](const StoredCall& c) { return c.start && c.start->rfind("2026-03-03", 0) == 0; }},
      {"min_cost=0.08", [=](const StoredCall& c) { return cost(c) >= 80000; }},
      {"department=Sales&min_cost=0.07&max_cost=0.08",
       [=](const StoredCall& c) { return sales(c) && cost(c) >= 70000 && cost(c) <= 80000; }},
  };
  for (const Order& order : Orders()) {
    const std::vector<StoredCall> sorted = Sorted(calls, order);
    for (const Filter& filter : filters) {
      std::vector<int64_t> ascending;
      for (const StoredCall& c : sorted) {
        if (filter.keep(c)) ascending.push_back(c.id);
      }
      ASSERT_GT(ascending.size(), 100u) << filter.query << ": the store does not hold the case";
      const std::vector<int64_t> descending(ascending.rbegin(), ascending.rend());
      for (const auto& [direction, expected] :
           std::vector<std::pair<std::string, std::vector<int64_t>>>{{"asc", ascending},
                                                                     {"desc", descending}}) {
        for (const size_t offset : {size_t{0}, expected.size() / 2}) {
          SCOPED_TRACE(order.sort + (" " + direction) + " " + filter.query + " from " +
                       std::to_string(offset));
          const nlohmann::json page =
              client_->Json("/api/calls?limit=50&offset=" + std::to_string(offset) +
                            "&sort=" + order.sort + "&order=" + direction + "&" + filter.query);
          const auto first = expected.begin() + static_cast<std::ptrdiff_t>(offset);
          const auto end = expected.begin() +
                           static_cast<std::ptrdiff_t>(std::min(offset + 50, expected.size()));
          EXPECT_EQ(Ids(page), std::vector<int64_t>(first, end));
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, CallsSortTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
