// A stored call's price, computed from the columns it is stored with, so
// that the import, the capture service and velqua rate (which reads them
// back) price every call from exactly the same values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velqua/rating/plan.h"

namespace velqua_store {

class Connection;

// One row of call_costs.
struct CostRow {
  int64_t source_id = 0, position = 0;
  std::optional<std::string> cost;  // exact decimal text; none: unpriced
  std::string currency, destination, destination_class, band, tariff, tariff_version, reason;
};

// What pricing reads of a stored call: its columns as stored ("" for NULL,
// duration < 0 for NULL), the start as "YYYY-MM-DDTHH:MM[:SS]" local time.
struct StoredForPricing {
  int32_t type = 0, attribute = 0;
  const std::string* start = nullptr;
  int64_t duration = -1;
  const std::string* dialled = nullptr;
  const std::string* trunk = nullptr;
};

// Prices a call of `switch_name` into `out` (keys left as they are).
// Returns false when there is nothing to keep: a call no carrier charges on
// a switch the plan does not rate.
bool PriceStored(velqua_rating::Rater& rater, const std::string& switch_name,
                 const StoredForPricing& call, CostRow& out);

// The upsert of `rows` rows into call_costs, with $1 ... parameters in the
// order of CostRow's members.
std::string UpsertCostsSql(size_t rows);

}  // namespace velqua_store
