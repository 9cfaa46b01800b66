// The calls summed per switch and day, kept beside the calls so that a
// report of a month or a year reads a few thousand summed rows rather than
// millions of calls.
//
// call_days holds, for each switch and day of the calls' local start, the
// calls grouped five ways (kind): 'e' by extension, 't' by trunk, 'a' by
// account code, 'd' by destination and its class, 'h' by hour; each group
// split by the currency and decimals of its prices, with what CostsBy
// counts (calls, talk time, cost, unpriced, the kinds of call).
//
// Never out of step with the calls: triggers on calls and call_costs mark
// the (switch, day) of every row written, changed or deleted in
// call_days_stale, in the transaction that changes it; RefreshDaySummaries
// sums the marked days again from the calls. Every reader refreshes before
// it reads, and the writers that change many days at once (a bulk load,
// velqua rate, retranslate) refresh at their end so that the next report
// finds nothing to do.
#pragma once

#include <string>

namespace velqua_store {

class Connection;

// The schema step that adds the summaries, their triggers, and sums every
// call already stored (inside the migration's transaction); and the
// indexes of the reports that still read the calls.
void AddDaySummaries(Connection& db);

// Sums the marked days again, in a transaction of its own. Cheap when
// nothing is marked: one read of an empty table.
void RefreshDaySummaries(Connection& db);

}  // namespace velqua_store
