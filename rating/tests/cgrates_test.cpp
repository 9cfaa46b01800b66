// A CGRateS tariff plan imported: the TOML it gives loads and prices calls
// as the plan would; what cannot be carried over is refused by name.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "velqua/rating/cgrates.h"
#include "velqua/rating/money.h"
#include "velqua/rating/pricing.h"

namespace {

const std::string kPlan = VELQUA_RATING_TEST_DATA "/cgrates";

int64_t CostOf(const velqua_rating::Tariff& t, const char* number, int day, int time, int seconds) {
  velqua_rating::CallToPrice call;
  call.type = 2;
  call.year = 2026;
  call.month = 1;
  call.day = day;
  call.time = time;
  call.duration = seconds;
  const auto priced = velqua_rating::Price(t, call, number);
  EXPECT_EQ(priced.status, velqua_rating::Priced::Status::kPriced) << priced.reason;
  return priced.cost;
}

// Per process: the tests run as processes side by side, each its own copy.
std::string Scratch() {
  return std::filesystem::temp_directory_path() /
         ("velqua-cgrates-test-" + std::to_string(::getpid()));
}

// A copy of the test plan with `from` replaced by `to` in `file`.
std::string PlanWith(const char* file, const std::string& from, const std::string& to) {
  const std::string dir = Scratch();
  std::filesystem::remove_all(dir);
  std::filesystem::copy(kPlan, dir);
  const std::string path = dir + "/" + file;
  std::ifstream in(path);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  in.close();
  text.replace(text.find(from), from.size(), to);
  std::ofstream(path) << text;
  return dir;
}

void ExpectRefused(const std::string& folder, const std::string& refusal) {
  velqua_rating::CgratesImport options;
  options.folder = folder;
  try {
    velqua_rating::ImportCgrates(options);
    ADD_FAILURE() << "imported";
  } catch (const velqua_rating::TariffError& e) {
    const std::string what = e.what();
    EXPECT_EQ(what.substr(what.size() - std::min(what.size(), refusal.size())), refusal);
  }
}

TEST(Cgrates, ImportedPlanPricesAsItsRatesSay) {
  velqua_rating::CgratesImport options;
  options.folder = kPlan;
  const auto tariff = velqua_rating::LoadTariff(velqua_rating::ImportCgrates(options), "rp.toml");
  EXPECT_EQ(tariff.name, "RP_OFFICE");
  struct Case {
    const char* number;
    int day, time, seconds;
    const char* cost;
  };
  // Monday 5 January 2026; Tuesday 6 (TM_EPIPHANY, off-peak prices); Saturday 10.
  const Case cases[] = {
      {"+34912345678", 5, 36000, 61, "0.10"},   // peak 60/60: .06 + 120 s x .02/60
      {"+34912345678", 5, 72000, 61, "0.08"},   // off-peak: .06 + 120 s x .01/60
      {"+34912345678", 5, 3600, 61, "0.08"},    // 01:00: still Sunday 00:00 TM_WEEKEND
      {"+34912345678", 6, 36000, 61, "0.08"},   // Epiphany: off-peak
      {"+34912345678", 10, 36000, 61, "0.08"},  // Saturday: off-peak
      {"+34934567890", 5, 36000, 37, "0.14"},   // 30/6 at .06/min: .10 + 42 s x .001 = .142
      {"+34612345678", 5, 36000, 45, "0.14"},   // 1/1 at .12/min: .05 + .09
      {"+442079460000", 5, 36000, 61, "0.93"},  // 30/30 at .45/min: .25 + 90 s x .0075 = .925
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.number) + " day " + std::to_string(c.day));
    EXPECT_EQ(velqua_rating::FormatUnits(CostOf(tariff, c.number, c.day, c.time, c.seconds), 2),
              c.cost);
  }
}

TEST(Cgrates, WhatCannotBeCarriedOverIsRefusedByName) {
  struct Case {
    const char* file;
    const char* from;
    const char* to;
    const char* refusal;  // the end of the message
  };
  const Case cases[] = {
      // clang-format off
      {"DestinationRates.csv", "DR_PEAK,DST_LOCAL,RT_LOCAL_PEAK,*middle",
       "DR_PEAK,DST_LOCAL,RT_LOCAL_PEAK,*up",
       "DestinationRates.csv:2: rounding *up cannot be carried over (Velqua rounds half up, "
       "*middle)"},
      {"Rates.csv", "RT_NATIONAL,0,0.001,1s,6s,30s", "RT_NATIONAL,0,0.0005,1s,6s,30s",
       "Rates.csv:5: rate RT_NATIONAL: a price that changes after the first block cannot be "
       "carried over (Velqua charges one price a minute)"},
      {"Timings.csv", "TM_EPIPHANY,2026,1,6,*any", "TM_EPIPHANY,*any,1,6,*any",
       "Timings.csv:5: timing TM_EPIPHANY: recurring months or days cannot be carried over "
       "(Velqua's holidays are dated days; its bands weekly)"},
      {"DestinationRates.csv", "DR_OFF,DST_UK,RT_UK,*middle,2,0,", "DR_OFF,DST_UK,RT_UK,*middle,2,1.5,", "DestinationRates.csv:9: a maximum cost per call cannot be carried over"},
      {"RatingPlans.csv", "RP_OFFICE,DR_OFF,TM_WEEKEND,10", "RP_OFFICE,DR_OFF,TM_WEEKEND,10\nRP_HOTEL,DR_OFF,TM_WEEKEND,10", "RatingPlans.csv: 2 rating plans: name the one to import"},
      // clang-format on
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    ExpectRefused(PlanWith(c.file, c.from, c.to), c.refusal);
  }
  std::filesystem::remove_all(Scratch());
}

// Weights are compared as the decimal text they are: two weights a double
// would make equal (and so refuse as a tie) or order the other way choose
// the heavier rate; equal values written differently are a tie.
TEST(Cgrates, WeightsCompareExactly) {
  struct Case {
    const char* peak_weight;  // DR_PEAK in TM_PEAK: local peak 61 s costs 0.10
    const char* off_weight;   // DR_OFF in TM_PEAK: 0.08
    const char* cost;         // or the refusal's end
  };
  const Case cases[] = {
      // clang-format off
      {"9007199254740993", "9007199254740992", "0.10"},  // 2^53 + 1: one double
      {"9007199254740992", "9007199254740993", "0.08"},
      {"0.30000000000000001", "0.3", "0.10"},  // one double
      {"100000000000000000000000000001", "100000000000000000000000000000", "0.10"},
      {"-0.5", "0", "0.08"},
      {"+007.25", "7.2500001", "0.08"},
      {"10.50", "10.5", "DestinationRates.csv:6: destination DST_LOCAL has two rates of the same weight in timing " "TM_PEAK"},
      {"-0", "0.000", "DestinationRates.csv:6: destination DST_LOCAL has two rates of the same weight in timing " "TM_PEAK"},
      {"1e3", "10", "RatingPlans.csv:2: weight '1e3' is not a decimal number"},
      {"10", ".", "RatingPlans.csv:3: weight '.' is not a decimal number"},
      // clang-format on
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.peak_weight) + " against " + c.off_weight);
    const std::string folder = PlanWith("RatingPlans.csv", "RP_OFFICE,DR_PEAK,TM_PEAK,10",
                                        std::string("RP_OFFICE,DR_PEAK,TM_PEAK,") + c.peak_weight +
                                            "\nRP_OFFICE,DR_OFF,TM_PEAK," + c.off_weight);
    if (std::string(c.cost).size() > 4) {
      ExpectRefused(folder, c.cost);
      continue;
    }
    velqua_rating::CgratesImport options;
    options.folder = folder;
    const auto tariff = velqua_rating::LoadTariff(velqua_rating::ImportCgrates(options), "rp.toml");
    EXPECT_EQ(velqua_rating::FormatUnits(CostOf(tariff, "+34912345678", 5, 36000, 61), 2), c.cost);
  }
  std::filesystem::remove_all(Scratch());
}

}  // namespace
