// The bundled national plan (examples/rating), as doc/rating.md shows it:
// it loads, and prices a call from each of its classes as its comments say.
#include <gtest/gtest.h>

#include <string>

#include "velqua/enums.h"
#include "velqua/rating/money.h"
#include "velqua/rating/plan.h"

namespace {

TEST(ExampleTariff, BundledPlanPricesEachClass) {
  const auto plan = velqua_rating::RatingPlan::LoadFile(std::string(VELQUA_SOURCE_DIR) +
                                                        "/examples/rating/plan.toml");
  velqua_rating::Rater rater(plan);
  struct Case {
    const char* dialled;
    const char* time;
    int32_t duration;
    const char* cost;
    const char* destination;
  };
  // Thursday 2026-01-08.
  const Case cases[] = {
      {"9915550123", "10:00", 90, "0.09", "Madrid"},             // .06+90*.018/60=.087
      {"9934001122", "21:00", 30, "0.11", "Spain, geographic"},  // s=60 .09+.0175=.1075
      {"9612345678", "10:00", 30, "0.15", "Spain, mobile"},      // .10+30*.09/60=.145
      {"9612345678", "10:00", 1, "0.10", "Spain, mobile"},       // .10+1*.09/60=.1015
      {"9900100200", "10:00", 600, "0.00", "Spain, freephone"},
      {"112", "03:00", 60, "0.00", "Emergency and public services"},
      {"900493012345678", "10:00", 31, "0.34", "European Union"},     // s=60 .15+.19
      {"9001212555010", "10:00", 45, "0.39", "North America"},        // s=60 .15+.24
      {"900819012345678", "10:00", 20, "1.20", "Rest of the world"},  // s=60 .25+.95
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.dialled);
    velqua_rating::CallToPrice call;
    call.type = velqua::emTradSaliente;
    call.year = 2026;
    call.month = 1;
    call.day = 8;
    call.time = std::stoi(std::string(c.time).substr(0, 2)) * 3600 +
                std::stoi(std::string(c.time).substr(3, 2)) * 60;
    call.duration = c.duration;
    call.dialled = c.dialled;
    const auto rated = rater.Rate("hq", "1", call);
    ASSERT_NE(rated.entry, nullptr);
    ASSERT_GE(rated.priced.destination, 0) << rated.priced.reason;
    EXPECT_EQ(rated.entry->tariff->destinations[static_cast<size_t>(rated.priced.destination)].name,
              c.destination);
    EXPECT_EQ(velqua_rating::FormatUnits(rated.priced.cost, 2), c.cost);
  }
}

}  // namespace
