// destinations: where the calls went, by the destinations of the tariffs
// that priced them: the top N by cost, talk time or calls (the rest summed
// as one row), and the share of each destination class.
#include <algorithm>

#include "cost_tables.h"
#include "kinds_internal.h"

namespace velqua_reports {
namespace {

// What destinations are ranked by: the report's first currency's units,
// the talk time or the calls.
int64_t Measure(const Totals& t, const std::string& by, const Currencies& currencies) {
  if (by == "calls") return t.calls;
  if (by == "minutes" || currencies.empty()) return t.seconds;
  const auto found = t.cost.find(currencies.front().first);
  if (found == t.cost.end()) return 0;
  int64_t units = found->second.units;
  for (int32_t d = found->second.decimals; d < currencies.front().second; ++d) units *= 10;
  return units;
}

// "12.3 %": `part` of `whole` in tenths of a percent, rounded half up.
std::string Share(int64_t part, int64_t whole) {
  if (whole <= 0) return "";
  const int64_t tenths = (part * 2000 + whole) / (2 * whole);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " %";
}

void AddShares(Table& t, const std::vector<int64_t>& parts, int64_t whole, const std::string& by) {
  t.columns.push_back(TextColumn("share of " + by));
  for (size_t i = 0; i < t.rows.size(); ++i)
    t.rows[i].push_back(Cell::Text(Share(parts[i], whole)));
  t.total->push_back(Cell::Text(Share(whole, whole)));
}

}  // namespace

void BuildDestinations(velqua_store::Store& store, const Request& request, Report& report) {
  TotalsByKey destinations, classes;
  for (const auto& row : velqua_store::CostsBy(store, SpanFor(store, request),
                                               velqua_store::CostGroup::kDestination)) {
    Totals t;
    t.Add(row);
    destinations[{row.key, row.day}].Add(t);
    classes[{row.day}].Add(t);
  }
  const Totals all = SumTotals(destinations);
  const Currencies currencies = CurrenciesOf({&all.cost});
  const std::string by = request.by == "cost" && currencies.empty() ? "minutes" : request.by;
  std::vector<const TotalsByKey::value_type*> order;
  for (const auto& entry : destinations) order.push_back(&entry);
  std::stable_sort(order.begin(), order.end(), [&](const auto* a, const auto* b) {
    return Measure(a->second, by, currencies) > Measure(b->second, by, currencies);
  });
  // The destinations past the top N, as one row, so that the table adds up.
  TotalsByKey shown;
  const size_t top = static_cast<size_t>(request.top);
  for (size_t i = 0; i < order.size() && i < top; ++i) shown.insert(*order[i]);
  Chart chart = CostChart("destination", shown, currencies);
  TotalsByKey others;
  for (size_t i = top; i < order.size(); ++i) others[{"(others)", ""}].Add(order[i]->second);
  order.resize(std::min(order.size(), top));
  for (const auto& entry : others) order.push_back(&entry);
  shown.insert(others.begin(), others.end());
  const int64_t whole = Measure(all, by, currencies);
  Table t = TotalsTable("Destinations", {"destination", "class"}, shown, currencies, order);
  std::vector<int64_t> parts;
  for (const auto* entry : order) parts.push_back(Measure(entry->second, by, currencies));
  AddShares(t, parts, whole, by);
  report.tables.push_back(std::move(t));
  Table c = TotalsTable("Destination classes", {"class"}, classes, currencies);
  parts.clear();
  for (const auto& [key, totals] : classes) parts.push_back(Measure(totals, by, currencies));
  AddShares(c, parts, whole, by);
  report.tables.push_back(std::move(c));
  report.notes.push_back("Ranked by " + by + "; the top " + std::to_string(request.top) +
                         " destinations");
  report.charts.push_back(std::move(chart));
  const std::string note = UnpricedNote(all.unpriced);
  if (!note.empty()) report.notes.push_back(note);
}

}  // namespace velqua_reports
