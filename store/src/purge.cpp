// Retention: removing what is older than a day (Store::Purge).
#include <date/date.h>

#include <cstring>

#include "sql_store.h"
#include "velqua/records/common.h"

namespace velqua_store {
namespace {

// "YYYY-MM-DD", a day that exists.
bool IsDay(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (i != 4 && i != 7 && (text[i] < '0' || text[i] > '9')) return false;
  }
  const date::year_month_day day{date::year{std::stoi(text.substr(0, 4))},
                                 date::month{static_cast<unsigned>(std::stoi(text.substr(5, 2)))},
                                 date::day{static_cast<unsigned>(std::stoi(text.substr(8, 2)))}};
  return day.ok();
}

// The tables' conditions, $1 the day and $2 the switch id (0: every switch).
// Start times and received times are ISO 8601 texts, so a text comparison
// with the day is a comparison of moments.
constexpr const char* kCalls =
    " FROM calls WHERE ($2 = 0 OR switch_id = $2) AND "
    "((start IS NOT NULL AND start < $1) OR (start IS NULL AND received_utc < $1))";
constexpr const char* kUnrecognised =
    " FROM unrecognised WHERE ($2 = 0 OR switch_id = $2) AND received_utc < $1";
constexpr const char* kEvents = " FROM events WHERE ($2 = 0 OR switch_id = $2) AND at_utc < $1";

}  // namespace

PurgeResult SqlStore::Purge(const PurgeFilter& filter, bool dry_run) {
  if (!IsDay(filter.before)) {
    throw velqua_records::Failure("--before: expected a date YYYY-MM-DD, got '" + filter.before +
                                  "'");
  }
  const int64_t switch_id = filter.switch_name.empty() ? 0 : SwitchId(filter.switch_name);
  const std::vector<Value> params{filter.before, switch_id};
  PurgeResult result;
  if (dry_run) {
    const auto count = [&](const char* from, int64_t* n) {
      db_->Run(std::string("SELECT COUNT(*)") + from, params,
               [&](const ResultRow& r) { *n = r.Int(0); });
    };
    count(kCalls, &result.calls);
    count(kUnrecognised, &result.unrecognised);
    count(kEvents, &result.events);
    return result;
  }
  const bool sqlite = std::strcmp(db_->engine(), "sqlite") == 0;
  if (sqlite) db_->Script("PRAGMA secure_delete = ON");
  InTransaction(*db_, [&] {
    // A call's price goes with it: it names where the call went.
    db_->Run(std::string("DELETE FROM call_costs WHERE call_id IN (SELECT id") + kCalls + ")",
             params);
    result.calls = db_->Run(std::string("DELETE") + kCalls, params);
    result.unrecognised = db_->Run(std::string("DELETE") + kUnrecognised, params);
    result.events = db_->Run(std::string("DELETE") + kEvents, params);
  });
  if (sqlite) db_->Script("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA secure_delete = OFF");
  return result;
}

}  // namespace velqua_store
