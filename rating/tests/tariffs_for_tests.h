// The tariffs and the rating plan the rating tests price calls with, in
// tests/data/tariffs: a national carrier in split mode (carrier-a.toml; the
// same in start mode), its price change of 1 February, a second carrier on
// trunks 5-8 (carrier-b.toml), and a hotel's guest tariff with markup and
// surcharge (hotel.toml). Worked sums in the tests refer to their lines.
//
// Carrier A, January 2026: Monday 5 January is a weekday, 6 January and
// 1 January are holidays in the weekend band, 10-11 January a weekend.
// Carrier B, start mode: day 08:00-20:00 every day. The hotel: 25 % markup
// and 0.50 per call on top.
//
// The plan: switch "hq": carrier A (from 1 February at new weekend local
// prices: connect 0.04, 0.01 a minute), carrier B on trunks 5-8 dialled
// with "0"; "branch": carrier A in start mode; "hotel": the guest tariff.
#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "velqua/rating/plan.h"

namespace velqua_rating_test {

// The text of tests/data/tariffs/`name`.
inline std::string TariffText(const std::string& name) {
  std::ifstream in(std::string(VELQUA_RATING_TEST_DATA) + "/tariffs/" + name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline const std::string kCarrierA = TariffText("carrier-a.toml");

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  text.replace(text.find(from), from.size(), to);
  return text;
}

inline velqua_rating::RatingPlan TestPlan() {
  using velqua_rating::LoadTariff;
  using velqua_rating::Tariff;
  return velqua_rating::RatingPlan::Load(
      TariffText("plan.toml"), "plan.toml",
      [](const std::string& file) -> std::shared_ptr<const Tariff> {
        if (file == "a-2026-01") return std::make_shared<Tariff>(LoadTariff(kCarrierA, file));
        if (file == "a-2026-02") {
          return std::make_shared<Tariff>(LoadTariff(
              Replaced(kCarrierA, R"(weekend = { connect = "0.03", per_minute = "0.005")",
                       R"(weekend = { connect = "0.04", per_minute = "0.01")"),
              file));
        }
        if (file == "a-start") {
          return std::make_shared<Tariff>(
              LoadTariff(Replaced(kCarrierA, R"(mode = "split")", R"(mode = "start")"), file));
        }
        if (file == "b")
          return std::make_shared<Tariff>(LoadTariff(TariffText("carrier-b.toml"), file));
        if (file == "hotel")
          return std::make_shared<Tariff>(LoadTariff(TariffText("hotel.toml"), file));
        return nullptr;
      });
}

}  // namespace velqua_rating_test
