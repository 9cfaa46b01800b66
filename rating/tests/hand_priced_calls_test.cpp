// Calls priced by hand: each row's expected cost is worked out in its
// comment from the tariff lines in tests/data/tariffs (money in EUR; "p"
// peak, "o" off-peak, "w" weekend; s = charged seconds). A row with cost
// nullptr is unpriced; the reason is what the store keeps with it.
#include <gtest/gtest.h>

#include <string>

#include "tariffs_for_tests.h"
#include "velqua/enums.h"
#include "velqua/rating/money.h"

namespace {

using velqua_rating::Priced;

constexpr int32_t kOut = velqua::emTradSaliente;

struct Row {
  const char* sw;
  const char* trunk;
  int32_t type;
  int32_t attribute;
  const char* date;  // "YYYY-MM-DD", "" = not printed
  const char* time;  // "HH:MM:SS"
  int32_t duration;
  const char* dialled;
  const char* cost;    // nullptr = unpriced
  const char* reason;  // of a free or unpriced call, else ""
};

// Monday 2026-01-05; Tuesday 06 and Thursday 01 holidays; Friday 09,
// Saturday 10; Saturday 31 and Sunday 2026-02-01 around the price change.
const Row kRows[] = {
    // --- carrier A (split), local Madrid 60/60: p 0.06 + 0.02/min
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9912345678", "0.08",
     ""},  // 0.06+60*0.02/60
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 61, "9912345678", "0.10",
     ""},  // s=120: 0.06+0.04
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 1, "9912345678", "0.08", ""},  // s=60: 0.06+0.02
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 120, "9912345678", "0.10", ""},  // s=120
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 121, "9912345678", "0.12",
     ""},  // s=180: 0.06+0.06
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 0, "9912345678", "0.00",
     "0 s"},  // no connect fee
    {"hq", "1", kOut, 0, "2026-01-05", "07:00:00", 300, "9912345678", "0.11",
     ""},  // o: 0.06+300*0.01/60
    {"hq", "1", kOut, 0, "2026-01-10", "10:00:00", 600, "9912345678", "0.08",
     ""},  // w: 0.03+600*0.005/60
    {"hq", "1", kOut, 0, "2026-01-06", "10:00:00", 600, "9912345678", "0.08",
     ""},  // holiday in w: as above
    {"hq", "1", kOut, 0, "2026-01-01", "12:00:00", 60, "9912345678", "0.04",
     ""},  // w: 0.03+0.005=0.035 up
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 7200, "9912345678", "2.46",
     ""},  // 0.06+7200*0.02/60
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9 91-234-5678", "0.08",
     ""},  // spaces, dashes
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9#21", nullptr,
     "no tariff for +34#21"},  // the access code goes before any character, not only a digit
    // --- carrier A, national 30/6: p 0.10 + 0.06/min, o 0.03/min
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 30, "9934567890", "0.13",
     ""},  // 0.10+30*0.06/60
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 31, "9934567890", "0.14",
     ""},  // s=36: 0.10+0.036
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 10, "9934567890", "0.13",
     ""},  // s=30 (first block)
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 36, "9934567890", "0.14", ""},  // s=36: 0.136
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 37, "9934567890", "0.14", ""},  // s=42: 0.142
    {"hq", "1", kOut, 0, "2026-01-05", "11:00:00", 95, "9934567890", "0.20", ""},  // s=30+66: 0.196
    {"hq", "1", kOut, 0, "2026-01-05", "21:00:00", 100, "9934567890", "0.15",
     ""},  // o s=102: 0.10+0.051
    // --- carrier A, mobile 1/1: p 0.05 + 0.12/min, minimum 0.15
    {"hq", "1", kOut, 0, "2026-01-05", "09:00:00", 45, "9612345678", "0.15",
     ""},  // 0.05+0.09=0.14 < min
    {"hq", "1", kOut, 0, "2026-01-05", "09:00:00", 1, "9612345678", "0.15", ""},    // 0.052 < min
    {"hq", "1", kOut, 0, "2026-01-05", "09:00:00", 100, "9612345678", "0.25", ""},  // 0.05+0.20
    {"hq", "1", kOut, 0, "2026-01-05", "09:00:00", 61, "9612345678", "0.17", ""},   // 0.05+0.122
    {"hq", "1", kOut, 0, "2026-01-05", "07:30:00", 200, "9612345678", "0.35",
     ""},  // o: 0.05+200*0.09/60
    {"hq", "1", kOut, 0, "2026-01-10", "09:00:00", 200, "9612345678", "0.25",
     ""},  // w: 0.05+200*0.06/60
    {"hq", "1", kOut, 0, "2026-01-05", "09:00:00", 90, "9712345678", "0.23",
     ""},  // +347: 0.05+0.18
    // --- split mode across 19:00 and 08:00: each block in the band it starts in
    {"hq", "1", kOut, 0, "2026-01-05", "18:59:00", 180, "9912345678", "0.10",
     ""},  // 0.06+p0.02+o0.01+o0.01
    {"hq", "1", kOut, 0, "2026-01-05", "18:58:30", 180, "9912345678", "0.11",
     ""},  // 0.06+p.02+p.02+o.01
    {"hq", "1", kOut, 0, "2026-01-05", "18:59:50", 60, "9934567890", "0.15",
     ""},  // .10+p30s .03+o30s .015
    {"hq", "1", kOut, 0, "2026-01-05", "18:59:00", 120, "9612345678", "0.26",
     ""},  // .05+p60s .12+o60s .09
    {"hq", "1", kOut, 0, "2026-01-05", "07:59:00", 120, "9912345678", "0.09",
     ""},  // 0.06+o0.01+p0.02
    {"hq", "1", kOut, 0, "2026-01-05", "18:00:00", 7200, "9912345678", "1.86",
     ""},  // .06+p60min 1.20+o .60
    // --- split across midnight into the weekend / a holiday
    {"hq", "1", kOut, 0, "2026-01-09", "23:58:00", 300, "9912345678", "0.10",
     ""},  // .06+o.01+o.01+w3*.005
    {"hq", "1", kOut, 0, "2026-01-05", "23:59:00", 90, "9934567890", "0.14",
     ""},  // .10+o30s.015+o30s.015+w30s.01
    // --- start mode ("branch"): the band at the start prices the whole call
    {"branch", "1", kOut, 0, "2026-01-05", "18:59:00", 180, "9912345678", "0.12",
     ""},  // p: 0.06+0.06
    {"branch", "1", kOut, 0, "2026-01-05", "18:58:30", 180, "9912345678", "0.12",
     ""},  // p: 0.06+0.06
    {"branch", "1", kOut, 0, "2026-01-05", "18:59:50", 60, "9934567890", "0.16",
     ""},  // p: 0.10+0.06
    {"branch", "1", kOut, 0, "2026-01-05", "18:59:00", 120, "9612345678", "0.29",
     ""},  // p: 0.05+0.24
    {"branch", "1", kOut, 0, "2026-01-05", "19:00:00", 60, "9912345678", "0.07",
     ""},  // o: 0.06+0.01
    {"branch", "1", kOut, 0, "2026-01-09", "23:58:00", 300, "9912345678", "0.11",
     ""},  // o: 0.06+0.05
    // --- international 60/30: 0.25 + 0.45/min, minimum 0.50
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 45, "900442079460000", "0.70",
     ""},  // s=60: .25+.45
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 61, "900442079460000", "0.93",
     ""},  // s=90: .925 up
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 150, "90033123456789", "1.38",
     ""},  // s=150: 1.375 up
    // --- toll-free, emergency, premium
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 300, "9900123456", "0.00", ""},  // free rate: 0
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 120, "112", "0.00", ""},         // emergency: 0
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 45, "091", "0.00", ""},          // emergency: 0
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 130, "9806123456", "3.99",
     ""},  // s=180: .36+3.63
    // --- rounding half up of x.xx5: 0.015/min, 60/60
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9901234567", "0.02", ""},   // 0.015 up
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 180, "9901234567", "0.05", ""},  // 0.045 up
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 120, "9901234567", "0.03", ""},  // 0.030
    // --- unmatched numbers and calls that cannot be priced
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "900991234567", nullptr,
     "no tariff for +991234567"},
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", -1, "9912345678", nullptr, "no duration"},
    {"hq", "1", kOut, 0, "", "10:00:00", 60, "9912345678", nullptr, "no date"},
    {"hq", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "", nullptr, "no dialled number"},
    {"nowhere", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9912345678", nullptr,
     "no tariff for switch nowhere on this date"},
    {"hq", "1", kOut, 0, "2025-12-31", "10:00:00", 60, "9912345678", nullptr,
     "no tariff for switch hq on this date"},  // before the plan's first date
    // --- calls no carrier charges
    {"hq", "1", velqua::emTradEntrante, 0, "2026-01-05", "10:00:00", 300, "912345678", "0.00",
     "incoming"},
    {"hq", "", velqua::emTradInterExtension, 0, "2026-01-05", "10:00:00", 300, "204", "0.00",
     "internal"},
    {"hq", "1", kOut, velqua::emATRNoContestada, "2026-01-05", "10:00:00", 30, "9912345678", "0.00",
     "unanswered"},
    {"nowhere", "1", velqua::emTradEntrante, 0, "2026-01-05", "10:00:00", 30, "912345678", "0.00",
     "incoming"},  // no tariff needed
    // --- account-code and trunk-to-trunk calls are rated as outgoing ones
    {"hq", "1", velqua::emTradCodigoCuenta, 0, "2026-01-05", "11:00:00", 30, "9934567890", "0.13",
     ""},  // national 0.10+0.03
    {"hq", "1", velqua::emTradInterTroncal, 0, "2026-01-05", "10:00:00", 60, "9912345678", "0.08",
     ""},  // local 0.06+0.02
    // --- two carriers: trunks 5-8 on carrier B (start mode, "0" to go out)
    {"hq", "6", kOut, 0, "2026-01-05", "10:00:00", 60, "0912345678", "0.02",
     ""},  // 60*0.024/60=.024
    {"hq", "6", kOut, 0, "2026-01-05", "10:00:00", 125, "0912345678", "0.05",
     ""},  // 125*.024/60=.05
    {"hq", "6", kOut, 0, "2026-01-05", "19:59:00", 100, "0612345678", "0.20",
     ""},  // day s=120*.10/60
    {"hq", "6", kOut, 0, "2026-01-05", "20:00:00", 100, "0612345678", "0.16",
     ""},  // night s=120*.08/60
    {"hq", "6", kOut, 0, "2026-01-05", "10:00:00", 61, "0934567890", "0.07",
     ""},  // .02+61*.05/60=.0708
    {"hq", "6", kOut, 0, "2026-01-05", "10:00:00", 60, "000442079460000", nullptr,
     "no tariff for +442079460000"},  // 0 + 00 44...: B prices no international calls
    {"hq", "05", kOut, 0, "2026-01-05", "10:00:00", 60, "0912345678", "0.02",
     ""},                                                                          // "05" in 5-8: B
    {"hq", "9", kOut, 0, "2026-01-05", "10:00:00", 60, "9912345678", "0.08", ""},  // 9 outside: A
    // --- the price change of 2026-02-01 (the call's start date chooses)
    {"hq", "1", kOut, 0, "2026-01-31", "23:59:00", 60, "9912345678", "0.04", ""},  // old w: .035 up
    {"hq", "1", kOut, 0, "2026-01-31", "23:59:30", 120, "9912345678", "0.04", ""},  // old: .03+.01
    {"hq", "1", kOut, 0, "2026-02-01", "00:00:30", 60, "9912345678", "0.05", ""},  // new w: .04+.01
    {"hq", "1", kOut, 0, "2026-02-01", "00:00:00", 600, "9912345678", "0.14", ""},  // new: .04+.10
    // --- hotel: base, x 1.25, + 0.50
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 60, "9912345678", "0.53",
     ""},  // .02*1.25+.5=.525
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 100, "9612345678", "0.75",
     ""},  // .20*1.25+.5
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 7, "9612345678", "0.52",
     ""},  // .014*1.25+.5=.5175
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 30, "900442079460000", "1.75",
     ""},  // min 1*1.25+.5
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 200, "900442079460000", "2.50",
     ""},  // s=240 1.6*1.25+.5
    {"hotel", "1", kOut, 0, "2026-01-05", "10:00:00", 0, "9912345678", "0.00",
     "0 s"},  // no surcharge
};

velqua_rating::CallToPrice CallOf(const Row& row) {
  velqua_rating::CallToPrice call;
  call.type = row.type;
  call.attribute = row.attribute;
  const std::string date = row.date;
  call.has_date = !date.empty();
  if (call.has_date) {
    call.year = std::stoi(date.substr(0, 4));
    call.month = std::stoi(date.substr(5, 2));
    call.day = std::stoi(date.substr(8, 2));
  }
  const std::string time = row.time;
  call.time = std::stoi(time.substr(0, 2)) * 3600 + std::stoi(time.substr(3, 2)) * 60 +
              std::stoi(time.substr(6, 2));
  call.duration = row.duration;
  call.dialled = row.dialled;
  return call;
}

TEST(HandPricedCalls, EveryRowCostsWhatItsWorkedSumSays) {
  static_assert(sizeof(kRows) / sizeof(kRows[0]) >= 60, "the table holds at least 60 calls");
  const auto plan = velqua_rating_test::TestPlan();
  velqua_rating::Rater rater(plan);
  int row_number = 0;
  for (const Row& row : kRows) {
    SCOPED_TRACE("row " + std::to_string(++row_number) + ": " + row.sw + " " + row.date + " " +
                 row.time + " " + std::to_string(row.duration) + " s " + row.dialled);
    const auto rated = rater.Rate(row.sw, row.trunk, CallOf(row));
    if (row.cost == nullptr) {
      EXPECT_EQ(rated.priced.status, Priced::Status::kUnpriced);
      EXPECT_EQ(rated.priced.reason, row.reason);
      continue;
    }
    ASSERT_NE(rated.priced.status, Priced::Status::kUnpriced) << rated.priced.reason;
    const int32_t decimals = rated.entry != nullptr ? rated.entry->tariff->decimals : 2;
    EXPECT_EQ(velqua_rating::FormatUnits(rated.priced.cost, decimals), row.cost);
    EXPECT_EQ(rated.priced.reason, row.reason);
  }
}

}  // namespace
