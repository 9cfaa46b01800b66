// Costs summed by department, destination or extension for the dashboard,
// from CostsBy: the store's day summaries when they can answer (a month
// read as a few thousand rows, not its calls), else the calls.
#include <algorithm>
#include <map>
#include <tuple>

#include "sql_store.h"
#include "velqua/rating/money.h"
#include "velqua/store/browse.h"

namespace velqua_store {
namespace {

// Each extension's departments over time: the entry in force on a day is
// the one of the latest from day not after it, else the undated one.
class Departments {
 public:
  explicit Departments(Connection& db) {
    db.Run("SELECT entry_key, from_day, department FROM directory WHERE kind = 'extension'", {},
           [&](const ResultRow& r) {
             entries_[r.Text(0)].emplace_back(r.Text(1), r.IsNull(2) ? "" : r.Text(2));
           });
    for (auto& [extension, days] : entries_) std::sort(days.begin(), days.end());
  }

  // "" when the directory has no entry of it then, or one without a department.
  std::string Of(const std::string& extension, const std::string& day) const {
    const auto found = entries_.find(extension);
    if (found == entries_.end()) return "";
    std::string department;
    for (const auto& [from, name] : found->second) {
      if (!from.empty() && from > day) break;
      department = name;
    }
    return department;
  }

 private:
  std::map<std::string, std::vector<std::pair<std::string, std::string>>> entries_;
};

CostGroup GroupOf(CostKey by) {
  switch (by) {
    case CostKey::kDepartment:
      return CostGroup::kExtensionDay;
    case CostKey::kDestination:
      return CostGroup::kDestination;
    case CostKey::kExtension:
    case CostKey::kAll:
      break;
  }
  return CostGroup::kExtension;
}

// A group's priced calls and their cost in millionths; the sum keeps as
// many decimals as its most precise price.
struct Sum {
  int64_t calls = 0, micro = 0;
  int32_t decimals = 0;
};

}  // namespace

std::vector<CostTotal> SumCostBy(Store& store, const Span& span, CostKey by) {
  std::optional<Departments> departments;
  if (by == CostKey::kDepartment) departments.emplace(ConnectionOf(store));
  std::map<std::pair<std::string, std::string>, Sum> sums;
  for (const CostCounts& c : CostsBy(store, span, GroupOf(by))) {
    const int64_t priced = c.calls - c.unpriced;
    // Calls kept without a currency cost nothing: no tariff priced them.
    if (c.cost.currency.empty() || priced == 0) continue;
    const std::string key = by == CostKey::kAll          ? ""
                            : by == CostKey::kDepartment ? departments->Of(c.key, c.day)
                                                         : c.key;
    Sum& sum = sums[{key, c.cost.currency}];
    int64_t scale = 1;
    for (int32_t i = c.cost.decimals; i < 6; ++i) scale *= 10;
    sum.calls += priced;
    sum.micro += c.cost.units * scale;
    sum.decimals = std::max(sum.decimals, c.cost.decimals);
  }
  std::vector<std::tuple<int64_t, std::string, std::string, Sum>> rows;
  for (const auto& [k, v] : sums) rows.emplace_back(v.micro, k.first, k.second, v);
  std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
    return std::tie(std::get<0>(b), std::get<1>(a), std::get<2>(a)) <
           std::tie(std::get<0>(a), std::get<1>(b), std::get<2>(b));
  });
  std::vector<CostTotal> out;
  for (const auto& [micro, key, currency, sum] : rows) {
    int64_t scale = 1;
    for (int32_t i = sum.decimals; i < 6; ++i) scale *= 10;
    out.push_back(
        {key, currency, sum.calls, velqua_rating::FormatUnits(micro / scale, sum.decimals)});
  }
  return out;
}

}  // namespace velqua_store
