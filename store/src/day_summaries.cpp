#include "day_summaries.h"

#include <date/date.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "schema.h"
#include "sql.h"

namespace velqua_store {
namespace {

bool IsPostgres(const Connection& db) { return std::strcmp(db.engine(), "postgresql") == 0; }

constexpr const char* kTables = R"(
CREATE TABLE call_days (
  kind {text} NOT NULL,
  day {text} NOT NULL,
  switch_id BIGINT NOT NULL,
  item {text} NOT NULL,
  class {text} NOT NULL,
  currency {text} NOT NULL,
  decimals INTEGER NOT NULL,
  calls BIGINT NOT NULL,
  seconds BIGINT NOT NULL,
  cost BIGINT NOT NULL,
  unpriced BIGINT NOT NULL,
  outgoing BIGINT NOT NULL,
  incoming BIGINT NOT NULL,
  internal BIGINT NOT NULL,
  unanswered BIGINT NOT NULL,
  PRIMARY KEY (kind, day, switch_id, item, class, currency, decimals)
){without_rowid};
CREATE TABLE call_days_stale (
  switch_id BIGINT NOT NULL,
  day {text} NOT NULL{stale_key}
){without_rowid}
)";

// SQLite marks row by row. The trigger's condition looks the mark up and
// the trigger runs only when it is missing: most rows find their day
// marked, and a condition costs a row far less than running a trigger.
// (Not INSERT OR IGNORE: a statement's own conflict clause would replace
// the trigger's.)
std::string SqliteMarkCall(const char* name, const char* event, const char* row) {
  const std::string r = row, day = "substr(" + r + ".start, 1, 10)";
  return std::string("CREATE TRIGGER ") + name + " AFTER " + event + " ON calls WHEN " + r +
         ".start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s WHERE s.switch_id "
         "= " +
         r + ".switch_id AND s.day = " + day + ") BEGIN INSERT INTO call_days_stale VALUES (" + r +
         ".switch_id, " + day + "); END;";
}
std::string SqliteMarkCost(const char* name, const char* event, const char* row) {
  const std::string r = row, call = " FROM calls c WHERE c.id = " + r + ".call_id";
  return std::string("CREATE TRIGGER ") + name + " AFTER " + event +
         " ON call_costs WHEN EXISTS (SELECT 1" + call +
         " AND c.start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s WHERE "
         "s.switch_id = c.switch_id AND s.day = substr(c.start, 1, 10))) BEGIN INSERT INTO "
         "call_days_stale SELECT c.switch_id, substr(c.start, 1, 10)" +
         call + "; END;";
}
std::string SqliteTriggers() {
  return SqliteMarkCall("calls_mark_insert", "INSERT", "NEW") +
         SqliteMarkCall("calls_mark_update_old", "UPDATE", "OLD") +
         SqliteMarkCall("calls_mark_update", "UPDATE", "NEW") +
         SqliteMarkCall("calls_mark_delete", "DELETE", "OLD") +
         SqliteMarkCost("call_costs_mark_insert", "INSERT", "NEW") +
         SqliteMarkCost("call_costs_mark_update", "UPDATE", "NEW") +
         SqliteMarkCost("call_costs_mark_delete", "DELETE", "OLD");
}

// PostgreSQL marks once per statement, from the rows it changed (a COPY of
// a bulk load included). Its marks have no unique key: an import writes
// through two connections and commits their batches in order, and a key
// would make one batch wait on the other's uncommitted mark of the same
// day for ever. A day may then be marked twice; the refresher takes each
// day once.
constexpr const char* kPostgresTriggers = R"(
CREATE FUNCTION calls_mark_days() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP <> 'DELETE' THEN
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT switch_id, substr(start, 1, 10) FROM new_rows n
      WHERE start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = n.switch_id AND s.day = substr(n.start, 1, 10));
  END IF;
  IF TG_OP <> 'INSERT' THEN
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT switch_id, substr(start, 1, 10) FROM old_rows o
      WHERE start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = o.switch_id AND s.day = substr(o.start, 1, 10));
  END IF;
  RETURN NULL;
END
$body$;
CREATE FUNCTION call_costs_mark_days() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP <> 'DELETE' THEN
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT c.switch_id, substr(c.start, 1, 10) FROM new_rows k
      JOIN calls c ON c.id = k.call_id
      WHERE c.start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = c.switch_id AND s.day = substr(c.start, 1, 10));
  ELSE
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT c.switch_id, substr(c.start, 1, 10) FROM old_rows k
      JOIN calls c ON c.id = k.call_id
      WHERE c.start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = c.switch_id AND s.day = substr(c.start, 1, 10));
  END IF;
  RETURN NULL;
END
$body$;
CREATE TRIGGER calls_mark_insert AFTER INSERT ON calls REFERENCING NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_mark_days();
CREATE TRIGGER calls_mark_update AFTER UPDATE ON calls
  REFERENCING OLD TABLE AS old_rows NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_mark_days();
CREATE TRIGGER calls_mark_delete AFTER DELETE ON calls REFERENCING OLD TABLE AS old_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_mark_days();
CREATE TRIGGER call_costs_mark_insert AFTER INSERT ON call_costs
  REFERENCING NEW TABLE AS new_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_mark_days();
CREATE TRIGGER call_costs_mark_update AFTER UPDATE ON call_costs
  REFERENCING NEW TABLE AS new_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_mark_days();
CREATE TRIGGER call_costs_mark_delete AFTER DELETE ON call_costs
  REFERENCING OLD TABLE AS old_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_mark_days()
)";

std::string WithTypes(bool pg, std::string sql) {
  const std::pair<std::string, std::string> keys[] = {
      {"{text}", pg ? "TEXT COLLATE \"C\"" : "TEXT"},
      {"{without_rowid}", pg ? "" : " WITHOUT ROWID"},
      {"{stale_key}", pg ? "" : ",\n  PRIMARY KEY (switch_id, day)"}};
  for (const auto& [key, value] : keys) {
    for (size_t at = sql.find(key); at != std::string::npos; at = sql.find(key, at)) {
      sql.replace(at, key.size(), value);
    }
  }
  return sql;
}

// One kind of summed row: its key columns and the condition on its calls.
struct Grouping {
  const char* kind;
  const char* item;
  const char* cls;
  const char* where;
  bool priced;  // with the calls' prices (the hours count calls alone)
};

constexpr Grouping kGroupings[] = {
    {"e", "coalesce(c.extension, '')", "''", "", true},
    {"t", "c.trunk", "''", " AND c.trunk IS NOT NULL", true},
    {"a", "c.account_code", "''", " AND c.account_code IS NOT NULL", true},
    {"d", "l.destination", "l.destination_class", " AND l.destination <> ''", true},
    {"h", "substr(c.start, 12, 2)", "''", " AND length(c.start) >= 16", false},
};

// The INSERT of one grouping's rows from the calls that `where` selects.
std::string SumInto(bool pg, const Grouping& g, const std::string& where) {
  // A price is exact decimal text: its digits without the point are its
  // units, and the digits after the point its decimals.
  const std::string point = pg ? "strpos(k.cost, '.')" : "instr(k.cost, '.')";
  const std::string money = g.priced ? "coalesce(l.currency, ''), CASE WHEN " + point +
                                           " > 0 THEN length(k.cost) - " + point + " ELSE 0 END"
                                     : std::string("'', 0");
  const std::string cost =
      g.priced ? "coalesce(sum(CAST(replace(k.cost, '.', '') AS BIGINT)), 0),"
                 " sum(CASE WHEN k.call_id IS NOT NULL AND k.cost IS NULL THEN 1 ELSE 0 END)"
               : "0, 0";
  return std::string("INSERT INTO call_days SELECT '") + g.kind +
         "', substr(c.start, 1, 10), c.switch_id, " + g.item + ", " + g.cls + ", " + money +
         ", count(*), coalesce(sum(c.duration), 0), " + cost +
         ", sum(CASE WHEN c.attribute <> 4 AND c.type IN (2, 5) THEN 1 ELSE 0 END),"
         " sum(CASE WHEN c.attribute <> 4 AND c.type = 1 THEN 1 ELSE 0 END),"
         " sum(CASE WHEN c.attribute <> 4 AND c.type = 3 THEN 1 ELSE 0 END),"
         " sum(CASE WHEN c.attribute = 4 THEN 1 ELSE 0 END) FROM calls c" +
         (g.priced ? " LEFT JOIN call_costs k ON k.call_id = c.id"
                     " LEFT JOIN cost_labels l ON l.id = k.label"
                   : "") +
         " WHERE c.start IS NOT NULL" + where + g.where + " GROUP BY 1, 2, 3, 4, 5, 6, 7";
}

// A summary row's key and sums, as SumInto groups and sums them.
using DayKey = std::tuple<char, std::string, int64_t, std::string, std::string, std::string,
                          int64_t>;  // kind, day, switch, item, class, currency, decimals
struct DaySums {
  int64_t calls = 0, seconds = 0, cost = 0, unpriced = 0;
  int64_t outgoing = 0, incoming = 0, internal = 0, unanswered = 0;
};

// One call (a row of kEveryCall) added to the sums of the groupings it
// belongs to, with the same rules as SumInto's SQL.
void AddCall(const ResultRow& r, std::map<DayKey, DaySums>& sums) {
  const std::string day = r.Text(0);
  const int64_t switch_id = r.Int(1);
  const bool priced = !r.IsNull(12), has_cost = !r.IsNull(13);
  std::string cost_text = has_cost ? r.Text(13) : std::string();
  const size_t point = cost_text.find('.');
  const int64_t decimals =
      point == std::string::npos ? 0 : static_cast<int64_t>(cost_text.size() - point - 1);
  if (point != std::string::npos) cost_text.erase(point, 1);
  const int64_t cost = has_cost && !cost_text.empty() ? std::stoll(cost_text) : 0;
  const std::string currency = r.IsNull(14) ? std::string() : r.Text(14);
  const bool has_attribute = !r.IsNull(11), typed = has_attribute && !r.IsNull(10);
  const int64_t type = typed ? r.Int(10) : 0, attribute = has_attribute ? r.Int(11) : 0;
  auto add = [&](char kind, const std::string& item, const std::string& cls, bool with_price) {
    DaySums& s = sums[DayKey{kind, day, switch_id, item, cls, with_price ? currency : "",
                             with_price ? decimals : 0}];
    ++s.calls;
    if (!r.IsNull(9)) s.seconds += r.Int(9);
    if (with_price) {
      s.cost += cost;
      if (priced && !has_cost) ++s.unpriced;
    }
    if (has_attribute && attribute == 4) {
      ++s.unanswered;
    } else if (!typed) {
      return;
    } else if (type == 2 || type == 5) {
      ++s.outgoing;
    } else if (type == 1) {
      ++s.incoming;
    } else if (type == 3) {
      ++s.internal;
    }
  };
  add('e', r.Text(2), "", true);
  if (!r.IsNull(3)) add('t', r.Text(3), "", true);
  if (!r.IsNull(4)) add('a', r.Text(4), "", true);
  if (!r.IsNull(5) && !r.Text(5).empty()) add('d', r.Text(5), r.Text(6), true);
  if (r.Int(8) >= 16) add('h', r.Text(7), "", false);
}

constexpr const char* kEveryCall =
    "SELECT substr(c.start, 1, 10), c.switch_id, coalesce(c.extension, ''), c.trunk, "
    "c.account_code, l.destination, l.destination_class, substr(c.start, 12, 2), "
    "length(c.start), c.duration, c.type, c.attribute, k.call_id, k.cost, l.currency "
    "FROM calls c LEFT JOIN call_costs k ON k.call_id = c.id "
    "LEFT JOIN cost_labels l ON l.id = k.label WHERE c.start IS NOT NULL";

// Sums every call again. SQLite reads the calls once and sums them here:
// five grouped passes in the engine cost several times one read. PostgreSQL
// groups in the server, so that a large store is not sent over whole.
void SumAll(Connection& db) {
  db.Run("DELETE FROM call_days");
  if (IsPostgres(db)) {
    for (const Grouping& g : kGroupings) db.Run(SumInto(true, g, ""));
    return;
  }
  std::map<DayKey, DaySums> sums;
  db.Run(kEveryCall, {}, [&](const ResultRow& r) { AddCall(r, sums); });
  for (const auto& [key, s] : sums) {
    const auto& [kind, day, switch_id, item, cls, currency, decimals] = key;
    db.Run(
        "INSERT INTO call_days VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, "
        "$13, $14, $15)",
        {std::string(1, kind), day, switch_id, item, cls, currency, decimals, s.calls, s.seconds,
         s.cost, s.unpriced, s.outgoing, s.incoming, s.internal, s.unanswered});
  }
}

std::string NextDay(const std::string& day) {
  int y = 0;
  unsigned m = 0, d = 0;
  if (std::sscanf(day.c_str(), "%d-%u-%u", &y, &m, &d) != 3) return day + "~";
  const date::year_month_day next{date::sys_days{date::year{y} / date::month{m} / date::day{d}} +
                                  date::days{1}};
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(next.year()),
                static_cast<unsigned>(next.month()), static_cast<unsigned>(next.day()));
  return text;
}

// Sums one switch's day again. A day that is no date (never written by the
// store) is summed by its text.
void SumDay(Connection& db, int64_t switch_id, const std::string& day) {
  db.Run(
      "DELETE FROM call_days WHERE kind IN ('a', 'd', 'e', 'h', 't') AND day = $1 AND "
      "switch_id = $2",
      {day, switch_id});
  for (const Grouping& g : kGroupings) {
    db.Run(SumInto(IsPostgres(db), g,
                   " AND c.start >= $1 AND c.start < $2 AND c.switch_id = $3 AND "
                   "substr(c.start, 1, 10) = $1"),
           {day, NextDay(day), switch_id});
  }
}

// Past this many marked days, one pass over every call is quicker than a
// read of each day through the index on the start.
constexpr size_t kWholeAfter = 60;

}  // namespace

void AddDaySummaries(Connection& db) {
  const bool pg = IsPostgres(db);
  db.Script(WithTypes(pg, kTables));
  db.Script(pg ? std::string(kPostgresTriggers) : SqliteTriggers());
  SumAll(db);
  db.Script(QueryIndexes(pg));  // those of the reports that still read calls
}

void RefreshDaySummaries(Connection& db) {
  const bool pg = IsPostgres(db);
  bool any = false;
  db.Run("SELECT 1 FROM call_days_stale LIMIT 1", {}, [&](const ResultRow&) { any = true; });
  if (!any) return;
  InTransaction(db, [&] {
    // One refresher at a time; a writer's mark made while this one runs
    // stays for the next (the marks are taken before the calls are read).
    if (pg) db.Run("SELECT pg_advisory_xact_lock(7263522)");
    std::set<std::pair<int64_t, std::string>> days;
    db.Run("DELETE FROM call_days_stale RETURNING switch_id, day", {},
           [&](const ResultRow& r) { days.emplace(r.Int(0), r.Text(1)); });
    if (days.size() > kWholeAfter) {
      SumAll(db);
      return;
    }
    for (const auto& [switch_id, day] : days) SumDay(db, switch_id, day);
  });
}

}  // namespace velqua_store
