// Tables of calls, talk time and cost by a key of one or more texts: what
// the departments, accounts and destinations reports are made of.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "costs.h"
#include "velqua/reports/report.h"

namespace velqua_reports {

// Totals by key (each key's texts, in order).
using TotalsByKey = std::map<std::vector<std::string>, Totals>;

// The table `name`: the key columns, then calls, talk time and a cost
// column per currency, a row a key in `order` (default: key order), and the
// total of every key in `totals`.
Table TotalsTable(const std::string& name, const std::vector<std::string>& key_columns,
                  const TotalsByKey& totals, const Currencies& currencies,
                  const std::vector<const TotalsByKey::value_type*>& order = {});

// Every key's totals summed.
Totals SumTotals(const TotalsByKey& totals);

// A bar chart of the 20 keys (their first text) with the most cost in the
// report's first currency (whole units), or, with nothing priced, the most
// talk time (minutes).
Chart CostChart(const std::string& what, const TotalsByKey& totals, const Currencies& currencies);

}  // namespace velqua_reports
