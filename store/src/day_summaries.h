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
//
// The store's own writers of many rows (a batch of an import or of the
// capture service, velqua rate, retranslate) note the days of a batch
// themselves, once, in the batch's transaction (WriteNotingDays): a
// trigger's look-up for every row written cost more than the writing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace velqua_store {

class Connection;

// The schema step that adds the summaries, their triggers, and sums every
// call already stored (inside the migration's transaction); and the
// indexes of the reports that still read the calls.
void AddDaySummaries(Connection& db);

// Sums the marked days again, in a transaction of its own. Cheap when
// nothing is marked: one read of an empty table.
void RefreshDaySummaries(Connection& db);

// The (switch, day) pairs a batch of calls touches.
class DayMarks {
 public:
  // A call of `switch_id` starting at `start`, the stored local start (a
  // call without one is in no day's sums).
  void Add(int64_t switch_id, std::string_view start);
  const std::set<std::pair<int64_t, std::string>>& days() const { return days_; }

 private:
  std::set<std::pair<int64_t, std::string>> days_;
  std::pair<int64_t, std::string> last_;  // most calls share the day before
};

// Runs `write`, the writes of a batch of about `rows` calls or prices
// inside the caller's transaction; `write` adds to the marks the day of
// every call it writes, changes or deletes (before and after a change).
// On SQLite, a batch of at least 256 rows runs with the triggers' marks
// lifted (dropped, and made again before the transaction ends, so that no
// other writer ever writes without them) and its days are noted after it,
// one row a day. Smaller batches, and PostgreSQL (whose triggers mark once
// a statement), leave the marks to the triggers.
void WriteNotingDays(Connection& db, size_t rows, const std::function<void(DayMarks&)>& write);

}  // namespace velqua_store
