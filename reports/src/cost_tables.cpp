#include "cost_tables.h"

#include <algorithm>

#include "kinds_internal.h"

namespace velqua_reports {

Table TotalsTable(const std::string& name, const std::vector<std::string>& key_columns,
                  const TotalsByKey& totals, const Currencies& currencies,
                  const std::vector<const TotalsByKey::value_type*>& order) {
  Table t{name, {}, {}, {}};
  for (const std::string& k : key_columns) t.columns.push_back(TextColumn(k));
  t.columns.push_back(IntColumn("calls"));
  t.columns.push_back(DurationColumn("talk time"));
  for (Column& c : CostColumns(currencies)) t.columns.push_back(std::move(c));
  const auto row_of = [&](const std::vector<std::string>& key, const Totals& sum) {
    std::vector<Cell> row;
    for (const std::string& k : key) row.push_back(Cell::Text(k));
    row.push_back(Cell::Number(sum.calls));
    row.push_back(Cell::Number(sum.seconds));
    for (Cell& cell : CostCells(currencies, sum.cost)) row.push_back(std::move(cell));
    return row;
  };
  if (order.empty()) {
    for (const auto& [key, sum] : totals) t.rows.push_back(row_of(key, sum));
  } else {
    for (const auto* entry : order) t.rows.push_back(row_of(entry->first, entry->second));
  }
  std::vector<std::string> total_key(key_columns.size());
  if (!total_key.empty()) total_key[0] = "total";
  t.total = row_of(total_key, SumTotals(totals));
  return t;
}

Totals SumTotals(const TotalsByKey& totals) {
  Totals sum;
  for (const auto& [key, t] : totals) sum.Add(t);
  return sum;
}

Chart CostChart(const std::string& what, const TotalsByKey& totals, const Currencies& currencies) {
  const std::string currency = currencies.empty() ? "" : currencies.front().first;
  const auto value = [&](const Totals& t) {
    if (currency.empty()) return (t.seconds + 30) / 60;
    const auto found = t.cost.find(currency);
    return found == t.cost.end() ? int64_t{0} : WholeUnits(found->second);
  };
  std::vector<std::pair<int64_t, std::string>> bars;
  for (const auto& [key, t] : totals) bars.emplace_back(value(t), key.front());
  std::stable_sort(bars.begin(), bars.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  if (bars.size() > 20) bars.resize(20);
  Chart c{Chart::Kind::kBars,
          (currency.empty() ? "Talk time per " : "Cost per ") + what,
          currency.empty() ? "minutes" : currency,
          {},
          {},
          {},
          "",
          {},
          {}};
  for (const auto& [v, label] : bars) {
    c.labels.push_back(label);
    c.values.push_back(v);
  }
  return c;
}

}  // namespace velqua_reports
