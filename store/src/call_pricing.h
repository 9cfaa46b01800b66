// A stored call's price, computed from the columns it is stored with, so
// that the import, the capture service and velqua rate (which reads them
// back) price every call from exactly the same values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "velqua/rating/plan.h"

namespace velqua_store {

class Connection;

// One row of call_costs: a call's price, keyed by the call's id.
struct CostRow {
  int64_t call_id = 0;              // a call being inserted: set as its row is written
  bool kept = false;                // false: nothing is stored for this call
  std::optional<std::string> cost;  // exact decimal text; none: unpriced
  int64_t label = 0;                // the cost_labels row of its texts; 0: none
  std::string reason;
};

// What a price's label names: the tariff that priced the call, and the
// destination and band it found (indexes into the tariff, -1: none). No
// tariff: no label.
struct LabelKey {
  const velqua_rating::Tariff* tariff = nullptr;
  int32_t destination = -1, band = -1;
  bool operator==(const LabelKey& o) const {
    return tariff == o.tariff && destination == o.destination && band == o.band;
  }
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

// Prices a call of `switch_name` into `out` (its id left as it is; `label`
// to be turned into out.label). Sets out.kept false when there is nothing to
// keep: a call no carrier charges on a switch the plan does not rate.
void PriceStored(velqua_rating::Rater& rater, const std::string& switch_name,
                 const StoredForPricing& call, CostRow& out, LabelKey& label);

// The ids of cost_labels rows: found in memory, else among the stored rows
// (read once), else added in the writer's transaction. Rows added in a
// transaction that is then rolled back are gone: Forget drops what was
// learnt since the last Commit.
class CostLabels {
 public:
  int64_t Id(Connection& db, const LabelKey& key);
  // A new plan: its tariffs are other objects (the stored rows stay known).
  void NewPlan() { by_key_.clear(); }
  void Commit() { added_.clear(); }
  void Forget();

 private:
  struct KeyHash {
    size_t operator()(const LabelKey& k) const {
      return std::hash<const void*>()(k.tariff) ^
             (static_cast<size_t>(static_cast<uint32_t>(k.destination)) * 0x9E3779B97F4A7C15u) ^
             static_cast<size_t>(static_cast<uint32_t>(k.band));
    }
  };
  bool loaded_ = false;
  std::unordered_map<LabelKey, int64_t, KeyHash> by_key_;
  std::unordered_map<std::string, int64_t> by_text_;  // the six texts, joined
  std::vector<std::string> added_;                    // by_text_'s keys added since Commit
};

// The upsert of `rows` prices into call_costs, with $1 ... parameters:
// call id, cost, label, reason.
std::string UpsertCostsSql(size_t rows);

}  // namespace velqua_store
