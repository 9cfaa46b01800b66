// Reports' aggregates read from the day summaries (day_summaries.h), when
// the grouping and the span allow: the same rows as from the calls.
#pragma once

#include <optional>
#include <vector>

#include "sql.h"
#include "velqua/store/aggregates.h"

namespace velqua_store {

// CountCallsBy and CostsBy from call_days, after summing the days marked
// since the last read. nullopt when the span asks for the calls themselves,
// or picks a department's extensions for a grouping other than by
// extension or day (the summaries do not hold who made a trunk's calls).
std::optional<std::vector<CallCounts>> CountCallsFromDays(Connection& db, const Span& span,
                                                          CallGroup group);
std::optional<std::vector<CostCounts>> CostsFromDays(Connection& db, const Span& span,
                                                     CostGroup group);

// A row of key, day, currency, decimals, calls, seconds, cost, unpriced,
// outgoing, incoming, internal, unanswered, as both roads select it; and
// the order both return their rows in.
CostCounts CostCountsOf(const ResultRow& r);
void SortCostCounts(std::vector<CostCounts>& rows);

}  // namespace velqua_store
