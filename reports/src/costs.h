// Money in reports: the stored prices of calls summed per group and
// currency, exactly (integers of the currency's smallest unit), and shown
// as one cost column per currency the period's prices have.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "velqua/reports/report.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {

// A sum of money: units of 10^-decimals of a currency.
struct Amount {
  int32_t decimals = 0;
  int64_t units = 0;
};

// Sums by currency code.
using Amounts = std::map<std::string, Amount>;

// Adds `units` of 10^-decimals to the sum of `currency`, keeping the more
// decimals of the two. A currency "" (calls without a price) adds nothing.
void AddMoney(Amounts& to, const velqua_store::Money& money);
void AddAmounts(Amounts& to, const Amounts& from);

// The currencies of a report with the most decimals its sums have; empty
// when nothing of the period was priced (the report then has no cost).
using Currencies = std::vector<std::pair<std::string, int32_t>>;
Currencies CurrenciesOf(const std::vector<const Amounts*>& sums);

// A money column for each currency: "cost" when there is one.
std::vector<Column> CostColumns(const Currencies& currencies);
// The cells of a sum in those columns, exact decimals with every currency's
// decimals ("0.00" for a currency the sum does not have).
std::vector<Cell> CostCells(const Currencies& currencies, const Amounts& sum);

// An exact decimal text ("-12.3") as units of 10^-decimals (-1230 for 2).
int64_t UnitsOf(const std::string& text, int32_t decimals);

// What the calls of one group add up to: how many, talk time, cost, and
// how many the rating plan could not price.
struct Totals {
  int64_t calls = 0, seconds = 0, unpriced = 0;
  Amounts cost;
  void Add(const Totals& other);
  void Add(const velqua_store::CostCounts& row);
};

// The call counts of cost rows (sorted by key) merged by key, in key
// order: one pass of the calls gives both.
std::vector<velqua_store::CallCounts> CountsOf(const std::vector<velqua_store::CostCounts>& rows);

// The note of a report whose calls include some the rating plan could not
// price ("" when none): their cost is not in the sums.
std::string UnpricedNote(int64_t unpriced);

// A whole number of the currency's units, rounded half away from zero: a
// chart's bar (charts draw whole numbers).
int64_t WholeUnits(const Amount& amount);

}  // namespace velqua_reports
