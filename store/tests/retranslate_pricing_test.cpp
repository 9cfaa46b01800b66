// Translating stored records again prices again what it changes: a call
// whose corrected start falls in another band gets that band's price, a
// record that becomes a call is priced, a call that becomes unrecognised
// loses its price, and a dry run leaves every price as it was.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "sql_store.h"
#include "store_test_support.h"
#include "velqua/store/import.h"

namespace velqua_store {
namespace {

using velqua_store_testing::EditedHicom;
using velqua_store_testing::Engine;
using velqua_store_testing::StoreTest;
using velqua_store_testing::WriteFile;

const std::string kExamples = VELQUA_SOURCE_DIR "/examples/";
// Hicom lines as the example prints them (the time is when the call ended)
// on Monday 9 March 2026: a call ending 08:00:30 after 60 s (started at
// night; the Berlin tariff's day band runs 08:00-18:00), one ending
// 18:00:20 after 40 s (started by day), a national one (one price all day)
// and an incoming one.
const std::string kData = VELQUA_SOURCE_DIR "/store/tests/data/";

class RetranslatePricingTest : public StoreTest {
 protected:
  RetranslatePricingTest()
      : dir_(velqua_store_testing::TempDir(velqua_store_testing::Name() + "-files")) {}
  ~RetranslatePricingTest() override { std::filesystem::remove_all(dir_); }

  // Each call's start, number and price; and how many prices are stored.
  std::vector<std::string> Prices() {
    std::vector<std::string> prices;
    store_->ListCalls({}, [&](const StoredCall& c) {
      prices.push_back(c.start.value_or("") + " " + c.dialled.value_or("") + " " +
                       c.cost.value_or("-") + " " + c.destination.value_or(""));
    });
    int64_t rows = 0;
    dynamic_cast<SqlStore&>(*store_).connection().Run("SELECT count(*) FROM call_costs", {},
                                                      [&](const ResultRow& r) { rows = r.Int(0); });
    prices.push_back(std::to_string(rows) + " prices");
    return prices;
  }

  std::string dir_;
};

TEST_P(RetranslatePricingTest, WhatChangesIsPricedAgain) {
  const std::string plan =
      WriteFile(dir_ + "/plan.toml", "[[tariff]]\nswitch = \"berlin\"\nfile = \"" + kExamples +
                                         "rating/office-de.toml\"\n"
                                         "rewrite = { \"00\" = \"+\", \"0\" = "
                                         "\"+49\" }\n");
  store_->PutRatingPlan(plan);
  const std::pair<std::string, std::string> time_as_start = {"\"time\": \"end\"",
                                                             "\"time\": \"start\""};
  const std::pair<std::string, std::string> no_incoming_mark = {
      "\"emDatoCteIdentEntrante\": {\"pos\": 79, \"text\": \"1\"},", ""};
  const std::string no_incoming = EditedHicom(dir_, "no-incoming", {no_incoming_mark});
  ImportSettings settings;
  settings.switch_name = "berlin";
  settings.config = EditedHicom(dir_, "wrong", {time_as_start, no_incoming_mark});
  settings.year = 2026;
  Importer(*store_, settings).Import({kData + "berlin-day.txt"});
  // The printed time taken as the start: the first call by day (0.05 +
  // 60 s x 0.029/60 = 0.079), the second at night (0.05 + 60 s x 0.015/60
  // = 0.065, half up); the incoming record not a call.
  const std::vector<std::string> before = {
      "2026-03-09T08:00:30 0301234567 0.08 Berlin", "2026-03-09T12:00:00 089123456 0.06 Germany",
      "2026-03-09T18:00:20 0301234567 0.07 Berlin", "3 prices"};
  EXPECT_EQ(Prices(), before);
  struct Step {
    std::string config;
    bool dry_run;
    std::vector<std::string> prices;
  };
  const Step steps[] = {
      // clang-format off
      {kExamples + "hicom/hicom.json", true, before},
      // True starts: the bands swap; the incoming call is priced (at no cost).
      {kExamples + "hicom/hicom.json", false, {"2026-03-09T07:59:30 0301234567 0.07 Berlin", "2026-03-09T11:59:40 089123456 0.06 Germany", "2026-03-09T12:29:00 0301234567 0.00 ", "2026-03-09T17:59:40 0301234567 0.08 Berlin", "4 prices"}},
      // The incoming call unrecognised again: its price goes with it.
      {no_incoming, false, {"2026-03-09T07:59:30 0301234567 0.07 Berlin", "2026-03-09T11:59:40 089123456 0.06 Germany", "2026-03-09T17:59:40 0301234567 0.08 Berlin", "3 prices"}},
      // clang-format on
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.config + (step.dry_run ? " (dry run)" : ""));
    Retranslate(*store_, "berlin", step.config, "", false, step.dry_run);
    EXPECT_EQ(Prices(), step.prices);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, RetranslatePricingTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
