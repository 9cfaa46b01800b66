// Import of a tariff plan kept in CGRateS's CSV form (Destinations.csv,
// Rates.csv, DestinationRates.csv, Timings.csv, RatingPlans.csv in one
// folder), so that a user who has one need not retype it. The result is the
// TOML text of a Velqua tariff (doc/rating.md); what Velqua cannot price the
// same way is refused by name, never approximated.
#pragma once

#include <string>

#include "velqua/rating/tariff.h"

namespace velqua_rating {

struct CgratesImport {
  std::string folder;  // holding the five files
  std::string plan;    // the RatingPlans Id; "" = the only one
  std::string currency = "EUR";
  int32_t decimals = 2;
};

// The tariff's TOML text, which LoadTariff accepts. Throws TariffError
// "<file>:<line>: <reason>" naming what cannot be carried over: a price
// that changes after the first block, a rounding other than half up
// (*middle), a maximum cost, a timing on chosen months or days of the
// month, a destination without a rate in some timing, and the like.
std::string ImportCgrates(const CgratesImport& options);

}  // namespace velqua_rating
