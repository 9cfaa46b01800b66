#include "day_summaries.h"

#include <date/date.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "day_sums_all.h"
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
constexpr const char* kSqliteTriggerNames[] = {"calls_mark_insert",      "calls_mark_update_old",
                                               "calls_mark_update",      "calls_mark_delete",
                                               "call_costs_mark_insert", "call_costs_mark_update",
                                               "call_costs_mark_delete"};
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

// Sums every call again. SQLite reads the calls once and sums them here:
// five grouped passes in the engine cost several times one read. PostgreSQL
// groups in the server, so that a large store is not sent over whole.
void SumAll(Connection& db) {
  if (!IsPostgres(db)) {
    SumEveryCall(db);
    return;
  }
  db.Run("DELETE FROM call_days");
  for (const Grouping& g : kGroupings) db.Run(SumInto(true, g, ""));
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

// Below this many rows a batch leaves its marks to the triggers: lifting
// them means dropping and making seven triggers, and every statement of the
// connection prepared again.
constexpr size_t kRowsToLift = 256;

}  // namespace

void DayMarks::Add(int64_t switch_id, std::string_view start) {
  if (start.empty()) return;
  const std::string_view day = start.substr(0, 10);
  if (switch_id == last_.first && day == last_.second) return;
  last_.first = switch_id;
  last_.second.assign(day);
  days_.insert(last_);
}

void WriteNotingDays(Connection& db, size_t rows, const std::function<void(DayMarks&)>& write) {
  DayMarks marks;
  if (IsPostgres(db) || rows < kRowsToLift) {
    write(marks);
    return;
  }
  std::string drop;
  for (const char* name : kSqliteTriggerNames) drop += std::string("DROP TRIGGER ") + name + ";";
  db.Script(drop);
  write(marks);
  for (const auto& [switch_id, day] : marks.days()) {
    db.Run("INSERT INTO call_days_stale VALUES ($1, $2) ON CONFLICT DO NOTHING", {switch_id, day});
  }
  db.Script(SqliteTriggers());
}

void AddDaySummaries(Connection& db) {
  const bool pg = IsPostgres(db);
  db.Script(WithTypes(pg, kTables));
  db.Script(pg ? std::string(kPostgresTriggers) : SqliteTriggers());
  SumAll(db);
  db.Script(BaseQueryIndexes(pg));  // those of the reports that still read calls
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
