#include "costs.h"

#include <algorithm>

#include "velqua/rating/money.h"

namespace velqua_reports {
namespace {

int64_t Scale(int64_t units, int32_t from, int32_t to) {
  for (int32_t i = from; i < to; ++i) units *= 10;
  return units;
}

}  // namespace

void AddMoney(Amounts& to, const velqua_store::Money& money) {
  if (money.currency.empty()) return;
  Amount& a = to[money.currency];
  const int32_t decimals = std::max(a.decimals, money.decimals);
  a.units = Scale(a.units, a.decimals, decimals) + Scale(money.units, money.decimals, decimals);
  a.decimals = decimals;
}

void AddAmounts(Amounts& to, const Amounts& from) {
  for (const auto& [currency, amount] : from) {
    AddMoney(to, {currency, amount.decimals, amount.units});
  }
}

Currencies CurrenciesOf(const std::vector<const Amounts*>& sums) {
  std::map<std::string, int32_t> found;
  for (const Amounts* sum : sums) {
    for (const auto& [currency, amount] : *sum) {
      int32_t& decimals = found[currency];
      decimals = std::max(decimals, amount.decimals);
    }
  }
  return Currencies(found.begin(), found.end());
}

std::vector<Column> CostColumns(const Currencies& currencies) {
  std::vector<Column> columns;
  for (const auto& c : currencies) {
    columns.push_back(
        {currencies.size() == 1 ? "cost" : "cost " + c.first, ColumnType::kMoney, c.first});
  }
  return columns;
}

std::vector<Cell> CostCells(const Currencies& currencies, const Amounts& sum) {
  std::vector<Cell> cells;
  for (const auto& [currency, decimals] : currencies) {
    const auto found = sum.find(currency);
    const int64_t units =
        found == sum.end() ? 0 : Scale(found->second.units, found->second.decimals, decimals);
    cells.push_back(Cell::Text(velqua_rating::FormatUnits(units, decimals)));
  }
  return cells;
}

int64_t UnitsOf(const std::string& text, int32_t decimals) {
  const bool negative = !text.empty() && text[0] == '-';
  int64_t units = 0;
  int32_t after = -1;  // digits after the point so far; -1 before it
  for (size_t i = negative ? 1 : 0; i < text.size(); ++i) {
    if (text[i] == '.') {
      after = 0;
    } else if (after < decimals) {
      units = units * 10 + (text[i] - '0');
      if (after >= 0) ++after;
    }
  }
  units = Scale(units, std::max(after, 0), decimals);
  return negative ? -units : units;
}

void Totals::Add(const Totals& other) {
  calls += other.calls;
  seconds += other.seconds;
  unpriced += other.unpriced;
  AddAmounts(cost, other.cost);
}

void Totals::Add(const velqua_store::CostCounts& row) {
  calls += row.calls;
  seconds += row.seconds;
  unpriced += row.unpriced;
  AddMoney(cost, row.cost);
}

std::vector<velqua_store::CallCounts> CountsOf(const std::vector<velqua_store::CostCounts>& rows) {
  std::vector<velqua_store::CallCounts> counts;
  for (const velqua_store::CostCounts& r : rows) {
    if (counts.empty() || counts.back().key != r.key) counts.push_back({r.key, 0, 0, 0, 0, 0, 0});
    velqua_store::CallCounts& c = counts.back();
    c.calls += r.calls;
    c.seconds += r.seconds;
    c.outgoing += r.outgoing;
    c.incoming += r.incoming;
    c.internal += r.internal;
    c.unanswered += r.unanswered;
  }
  return counts;
}

std::string UnpricedNote(int64_t unpriced) {
  if (unpriced == 0) return "";
  return std::to_string(unpriced) + (unpriced == 1 ? " call" : " calls") +
         " could not be priced (velqua rate --unpriced lists them): their cost is not counted";
}

int64_t WholeUnits(const Amount& amount) {
  int64_t one = 1;
  for (int32_t i = 0; i < amount.decimals; ++i) one *= 10;
  const int64_t half = one / 2;
  return amount.units >= 0 ? (amount.units + half) / one : -((-amount.units + half) / one);
}

}  // namespace velqua_reports
