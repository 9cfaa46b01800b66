// Tariffs refused at load: each names the file, the line at fault and why,
// so that a user can mend the file; nothing half-loaded is ever priced with.
#include <gtest/gtest.h>

#include <string>

#include "tariffs_for_tests.h"

namespace {

using velqua_rating::LoadTariff;
using velqua_rating::TariffError;
using velqua_rating_test::kCarrierA;
using velqua_rating_test::Replaced;

std::string Refusal(const std::string& text) {
  try {
    LoadTariff(text, "carrier.toml");
  } catch (const TariffError& e) {
    return e.what();
  }
  return "(loaded)";
}

struct Case {
  const char* what;
  std::string text;
  const char* refusal;
};

TEST(TariffRefusals, NameFileLineAndReason) {
  // kCarrierA's lines: 5 mode, 7 the first [[band]] (peak), 13 off-peak 00-08, 19 off-peak
  // 19-24, 31 the second holiday, 34 the local peak price, 63 Madrid's prefixes, 68 Spain
  // fixed's.
  const Case cases[] = {
      // clang-format off
      {"syntax", Replaced(kCarrierA, "decimals = 2", "decimals = = 2"), ""},
      {"unknown band in a rate", Replaced(kCarrierA, "\npeak = { connect = \"0.06\"", "\npaek = { connect = \"0.06\""), "carrier.toml:34: unknown band 'paek' in rate 'local'"},
      {"negative price", Replaced(kCarrierA, "per_minute = \"0.02\"", "per_minute = \"-0.02\""), "carrier.toml:34: negative price: 'per_minute' = -0.02"},
      {"float price", Replaced(kCarrierA, "per_minute = \"0.02\"", "per_minute = 0.02"), "carrier.toml:34: 'per_minute' must be quoted decimal text (e.g. \"0.0250\"), not a float"},
      {"seven decimals", Replaced(kCarrierA, "per_minute = \"0.02\"", "per_minute = \"0.0200001\""),
       "carrier.toml:34: 'per_minute' = \"0.0200001\" is not an amount (digits, one point, at "
       "most 6 decimals)"},
      {"overlapping bands", Replaced(kCarrierA, "to = \"08:00\"", "to = \"08:30\""), "carrier.toml:13: band 'offpeak' overlaps band 'peak' (line 7) on Monday at 08:00"},
      {"a weekday hour without a band", Replaced(kCarrierA, "to = \"08:00\"", "to = \"07:00\""), "carrier.toml:7: no band covers Monday at 07:00: every minute of the week needs one"},
      {"holiday in an unknown band", Replaced(kCarrierA, "2026-01-06 = \"weekend\"", "2026-01-06 = \"festivo\""), "carrier.toml:31: holiday 2026-01-06 is in unknown band 'festivo'"},
      {"not a date", Replaced(kCarrierA, "2026-01-06 =", "2026-02-30 ="),
       "carrier.toml:31: '2026-02-30' is not a date (YYYY-MM-DD)"},
      {"duplicate prefix", Replaced(kCarrierA, "[\"+348\", \"+349\"]", "[\"+348\", \"+34 91\"]"), "carrier.toml:68: prefix +3491 is given twice, on line 63 and on line 68"},
      {"unknown key", Replaced(kCarrierA, "from = \"19:00\"", "from = \"19:00\"\nto2 = 1"), "carrier.toml:23: unknown key 'to2' in [[band]]"},
      {"band crossing midnight", Replaced(kCarrierA, "from = \"19:00\"\nto = \"24:00\"", "from = \"19:00\"\nto = \"08:00\""), "carrier.toml:19: band 'offpeak' ends before it starts: write a band that crosses midnight " "as two, one each side of it"},
      {"unknown class", Replaced(kCarrierA, "class = \"mobile\"", "class = \"cell\""), ""},
      {"unknown rate", Replaced(kCarrierA, "rate = \"half\"", "rate = \"halve\""), ""},
      {"a band without a price", Replaced(kCarrierA, "weekend = { connect = \"0.10\", per_minute = \"0.02\", first = 30, increment = 6 }\n", ""), ""},
      {"unknown mode", Replaced(kCarrierA, "mode = \"split\"", "mode = \"spilt\""), "carrier.toml:5: 'mode' is \"start\" or \"split\", not \"spilt\""},
      {"zero increment", Replaced(kCarrierA, "first = 30, increment = 6 }", "first = 30, increment = 0 }"), ""},
      {"negative markup", Replaced(kCarrierA, "mode = \"split\"", "mode = \"split\"\nmarkup_percent = \"-5\""), "carrier.toml:6: negative markup: -5"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string refusal = Refusal(c.text);
    if (*c.refusal != '\0') {
      EXPECT_EQ(refusal, c.refusal);
    } else {
      EXPECT_EQ(refusal.rfind("carrier.toml:", 0), 0u) << refusal;
    }
  }
}

}  // namespace
