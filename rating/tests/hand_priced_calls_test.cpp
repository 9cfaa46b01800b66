// Calls priced by hand: each row of data/hand_priced_calls.txt carries its
// expected cost and the sum that gives it from the tariff lines in
// data/tariffs. A row "unpriced" has no cost; the reason is what the store
// keeps with it.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tariffs_for_tests.h"
#include "velqua/enums.h"
#include "velqua/rating/money.h"

namespace {

using velqua_rating::Priced;

// The fields of a row, split at '|' and trimmed: switch, trunk, type,
// attribute, date ("" = not printed), time, duration, dialled, cost, reason,
// worked sum.
std::vector<std::vector<std::string>> Rows() {
  std::ifstream in(VELQUA_RATING_TEST_DATA "/hand_priced_calls.txt");
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> fields;
    for (size_t at = 0;;) {
      const size_t bar = line.find('|', at);
      std::string field = line.substr(at, bar == std::string::npos ? bar : bar - at);
      field.erase(0, field.find_first_not_of(' '));
      field.erase(field.find_last_not_of(' ') + 1);
      fields.push_back(field);
      if (bar == std::string::npos) break;
      at = bar + 1;
    }
    rows.push_back(fields);
  }
  return rows;
}

velqua_rating::CallToPrice CallOf(const std::vector<std::string>& row) {
  const std::map<std::string, int32_t> words = {
      {"out", velqua::emTradSaliente},          {"in", velqua::emTradEntrante},
      {"ext", velqua::emTradInterExtension},    {"trunks", velqua::emTradInterTroncal},
      {"acct", velqua::emTradCodigoCuenta},     {"-", 0},
      {"unanswered", velqua::emATRNoContestada}};
  velqua_rating::CallToPrice call;
  call.type = words.at(row[2]);
  call.attribute = words.at(row[3]);
  const std::string& date = row[4];
  call.has_date = !date.empty();
  if (call.has_date) {
    call.year = std::stoi(date.substr(0, 4));
    call.month = std::stoi(date.substr(5, 2));
    call.day = std::stoi(date.substr(8, 2));
  }
  const std::string& time = row[5];
  call.time = std::stoi(time.substr(0, 2)) * 3600 + std::stoi(time.substr(3, 2)) * 60 +
              std::stoi(time.substr(6, 2));
  call.duration = std::stoi(row[6]);
  call.dialled = row[7];
  return call;
}

TEST(HandPricedCalls, EveryRowCostsWhatItsWorkedSumSays) {
  const std::vector<std::vector<std::string>> rows = Rows();
  ASSERT_GE(rows.size(), 60u) << "the table holds at least 60 calls";
  const auto plan = velqua_rating_test::TestPlan();
  velqua_rating::Rater rater(plan);
  for (const std::vector<std::string>& row : rows) {
    ASSERT_EQ(row.size(), 11u) << row[0];
    SCOPED_TRACE(row[0] + " " + row[4] + " " + row[5] + " " + row[6] + " s " + row[7] + ": " +
                 row[10]);
    const auto rated = rater.Rate(row[0], row[1], CallOf(row));
    if (row[8] == "unpriced") {
      EXPECT_EQ(rated.priced.status, Priced::Status::kUnpriced);
      EXPECT_EQ(rated.priced.reason, row[9]);
      continue;
    }
    ASSERT_NE(rated.priced.status, Priced::Status::kUnpriced) << rated.priced.reason;
    const int32_t decimals = rated.entry != nullptr ? rated.entry->tariff->decimals : 2;
    EXPECT_EQ(velqua_rating::FormatUnits(rated.priced.cost, decimals), row[8]);
    EXPECT_EQ(rated.priced.reason, row[9]);
  }
}

}  // namespace
