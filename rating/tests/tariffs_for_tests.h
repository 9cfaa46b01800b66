// The tariffs and the rating plan the rating tests price calls with: a
// national carrier in split mode (and the same in start mode), its price
// change of 1 February, a second carrier on trunks 5-8, and a hotel's guest
// tariff with markup and surcharge. Worked sums in the tests refer to the
// lines commented here.
#pragma once

#include <memory>
#include <string>

#include "velqua/rating/plan.h"

namespace velqua_rating_test {

// Carrier A, January 2026: Monday 5 January is a weekday, 6 January and
// 1 January are holidays in the weekend band, 10-11 January a weekend.
inline const char* const kCarrierA = R"(name = "Carrier A"
version = "2026-01"
currency = "EUR"
decimals = 2
mode = "split"

[[band]]
name = "peak"
days = "mon-fri"
from = "08:00"
to = "19:00"

[[band]]
name = "offpeak"
days = "mon-fri"
from = "00:00"
to = "08:00"

[[band]]
name = "offpeak"
days = "mon-fri"
from = "19:00"
to = "24:00"

[[band]]
name = "weekend"
days = ["sat", "sun"]

[holidays]
2026-01-01 = "weekend"
2026-01-06 = "weekend"

[rate.local]
peak = { connect = "0.06", per_minute = "0.02", first = 60, increment = 60 }
offpeak = { connect = "0.06", per_minute = "0.01", first = 60, increment = 60 }
weekend = { connect = "0.03", per_minute = "0.005", first = 60, increment = 60 }

[rate.national]
peak = { connect = "0.10", per_minute = "0.06", first = 30, increment = 6 }
offpeak = { connect = "0.10", per_minute = "0.03", first = 30, increment = 6 }
weekend = { connect = "0.10", per_minute = "0.02", first = 30, increment = 6 }

[rate.mobile]
peak = { connect = "0.05", per_minute = "0.12", first = 1, increment = 1, minimum = "0.15" }
offpeak = { connect = "0.05", per_minute = "0.09", first = 1, increment = 1, minimum = "0.15" }
weekend = { connect = "0.05", per_minute = "0.06", first = 1, increment = 1, minimum = "0.15" }

[rate.international]
all = { connect = "0.25", per_minute = "0.45", first = 60, increment = 30, minimum = "0.50" }

[rate.premium]
all = { connect = "0.36", per_minute = "1.21" }

[rate.free]
all = { per_minute = "0" }

[rate.half]
all = { per_minute = "0.015" }

[[destination]]
name = "Madrid"
class = "local"
prefixes = ["+3491"]

[[destination]]
name = "Spain fixed"
class = "national"
prefixes = ["+348", "+349"]

[[destination]]
name = "Spain mobile"
class = "mobile"
prefixes = ["+346", "+347"]

[[destination]]
name = "Spain toll-free"
class = "toll-free"
rate = "free"
prefixes = ["+34900", "+34800"]

[[destination]]
name = "Emergency"
class = "emergency"
rate = "free"
prefixes = ["+34112", "+34091"]

[[destination]]
name = "Premium"
class = "premium"
prefixes = ["+34803", "+34806", "+34807"]

[[destination]]
name = "Information lines"
class = "national"
rate = "half"
prefixes = ["+34901"]

[[destination]]
name = "United Kingdom"
class = "international"
prefixes = ["+44"]

[[destination]]
name = "France"
class = "international"
prefixes = ["+33"]
)";

// Carrier B on trunks 5-8, start mode: day 08:00-20:00 every day.
inline const char* const kCarrierB = R"(name = "Carrier B"
currency = "EUR"
mode = "start"

[[band]]
name = "day"
days = "mon-sun"
from = "08:00"
to = "20:00"

[[band]]
name = "night"
days = "mon-sun"
to = "08:00"

[[band]]
name = "night"
days = "mon-sun"
from = "20:00"

[rate.local]
all = { per_minute = "0.024", first = 1, increment = 1 }

[rate.national]
all = { connect = "0.02", per_minute = "0.05", first = 60, increment = 1 }

[rate.mobile]
day = { per_minute = "0.10", first = 30, increment = 30 }
night = { per_minute = "0.08", first = 30, increment = 30 }

[[destination]]
name = "Madrid"
class = "local"
prefixes = ["+3491"]

[[destination]]
name = "Spain fixed"
class = "national"
prefixes = ["+348", "+349"]

[[destination]]
name = "Spain mobile"
class = "mobile"
prefixes = ["+346", "+347"]
)";

// A hotel's guest tariff: 25 % markup and 0.50 per call on top.
inline const char* const kHotel = R"(name = "Guest calls"
currency = "EUR"
mode = "start"
markup_percent = "25"
surcharge = "0.50"

[[band]]
name = "any"
days = "mon-sun"

[rate.local]
all = { per_minute = "0.02" }

[rate.mobile]
all = { per_minute = "0.12", first = 1, increment = 1 }

[rate.international]
all = { per_minute = "0.40", minimum = "1.00" }

[[destination]]
name = "Madrid"
class = "local"
prefixes = ["+3491"]

[[destination]]
name = "Spain mobile"
class = "mobile"
prefixes = ["+346", "+347"]

[[destination]]
name = "United Kingdom"
class = "international"
prefixes = ["+44"]
)";

// Switch "hq": carrier A (from 1 February at new weekend local prices:
// connect 0.04, 0.01 a minute), carrier B on trunks 5-8 dialled with "0";
// "branch": carrier A in start mode; "hotel": the guest tariff.
inline const char* const kPlan = R"([[tariff]]
switch = "hq"
from = 2026-01-01
file = "a-2026-01"
access_codes = ["9"]
rewrite = { "00" = "+", "" = "+34" }

[[tariff]]
switch = "hq"
from = 2026-02-01
file = "a-2026-02"
access_codes = ["9"]
rewrite = { "00" = "+", "" = "+34" }

[[tariff]]
switch = "hq"
trunks = ["5-8"]
from = 2026-01-01
file = "b"
access_codes = ["0"]
rewrite = { "00" = "+", "" = "+34" }

[[tariff]]
switch = "branch"
file = "a-start"
access_codes = ["9"]
rewrite = { "00" = "+", "" = "+34" }

[[tariff]]
switch = "hotel"
file = "hotel"
access_codes = ["9"]
rewrite = { "00" = "+", "" = "+34" }
)";

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  text.replace(text.find(from), from.size(), to);
  return text;
}

inline velqua_rating::RatingPlan TestPlan() {
  using velqua_rating::LoadTariff;
  using velqua_rating::Tariff;
  return velqua_rating::RatingPlan::Load(
      kPlan, "plan.toml", [](const std::string& file) -> std::shared_ptr<const Tariff> {
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
        if (file == "b") return std::make_shared<Tariff>(LoadTariff(kCarrierB, file));
        if (file == "hotel") return std::make_shared<Tariff>(LoadTariff(kHotel, file));
        return nullptr;
      });
}

}  // namespace velqua_rating_test
