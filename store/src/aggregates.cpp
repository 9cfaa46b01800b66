// The aggregates of reports, in the SQL both engines share; the few
// expressions they spell differently (seconds since 1970, the weekday) come
// from Dialect. Grouped rows are sorted here by their key's bytes, so that
// both engines give them in one order.
#include "velqua/store/aggregates.h"

#include <date/date.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>

#include "day_summary_reads.h"
#include "line_sweep.h"
#include "sql_store.h"

namespace velqua_store {
namespace {

struct Dialect {
  bool pg = false;
  explicit Dialect(Connection& db) : pg(std::string(db.engine()) == "postgresql") {}

  // Seconds since 1970-01-01T00:00 of a stored local time, as if it were UTC.
  std::string Epoch(const std::string& column) const {
    return pg ? "CAST(extract(epoch FROM CAST(" + column + " AS timestamp)) AS bigint)"
              : "CAST(strftime('%s', " + column + ") AS INTEGER)";
  }
  // The text of a stored local time `seconds` later, with its seconds: an
  // upper bound on the texts of the starts up to `seconds` - 60 later (with
  // or without their seconds), so that an index on the start is read from
  // one bound to the other rather than to its end.
  std::string TextAfter(const std::string& column, const std::string& seconds) const {
    return pg ? "to_char(CAST(" + column + " AS timestamp) + (" + seconds +
                    ") * interval '1 second', 'YYYY-MM-DD\"T\"HH24:MI:SS')"
              : "strftime('%Y-%m-%dT%H:%M:%S', " + column + ", '+' || (" + seconds +
                    ") || ' seconds')";
  }
  std::string Weekday(const std::string& column) const {
    return pg ? "CAST(CAST(extract(dow FROM CAST(" + column + " AS timestamp)) AS integer) AS text)"
              : "strftime('%w', " + column + ")";
  }
};

// Days since 1970 of the "YYYY-MM-DD" that `text` starts with.
int64_t DayOf(const std::string& text) {
  int y = 0;
  unsigned m = 0, d = 0;
  if (std::sscanf(text.c_str(), "%d-%u-%u", &y, &m, &d) != 3) return 0;
  return date::sys_days{date::year{y} / date::month{m} / date::day{d}}.time_since_epoch().count();
}

// The first day of the month after that of a day since 1970.
int64_t NextMonth(int64_t day) {
  const date::year_month_day ymd{date::sys_days{date::days{day}}};
  const date::year_month next = date::year_month{ymd.year(), ymd.month()} + date::months{1};
  return date::sys_days{next / date::day{1}}.time_since_epoch().count();
}

// "YYYY-MM-DD" of a day since 1970.
std::string DayText(int64_t day) { return date::format("%F", date::sys_days{date::days{day}}); }

// Whether SQLite should read the whole table rather than the span through
// the index on the start: when the span covers more than a quarter of the
// days the store's calls span. Reading a large share of the calls through
// the index costs a random read per call, several times the sequential
// read of the whole table (PostgreSQL's planner weighs this itself, from
// its statistics).
bool ScanWhole(Connection& db, const Dialect& d, const Span& span) {
  if (d.pg) return false;
  int64_t first = 0, last = 0;
  db.Run("SELECT (SELECT min(start) FROM calls), (SELECT max(start) FROM calls)", {},
         [&](const ResultRow& r) {
           if (r.IsNull(0)) return;
           first = DayOf(r.Text(0));
           last = DayOf(r.Text(1));
         });
  const int64_t stored = last - first + 1, asked = DayOf(span.to_next) - DayOf(span.from);
  return last > 0 && asked * 4 > stored;
}

// The condition that a call is one of the span's extensions on its days.
std::string ExtensionsWhere(const std::vector<ExtensionDays>& only, std::vector<Value>* params) {
  if (only.empty()) return " AND 1 = 0";
  const auto next = [params](const std::string& value) {
    params->push_back(value);
    return "$" + std::to_string(params->size());
  };
  std::string sql;
  for (const ExtensionDays& e : only) {
    sql += sql.empty() ? " AND ((" : " OR (";
    sql += "c.extension = " + next(e.extension);
    if (!e.from.empty()) sql += " AND c.start >= " + next(e.from);
    if (!e.to_next.empty()) sql += " AND c.start < " + next(e.to_next);
    sql += ")";
  }
  return sql + ")";
}

// The WHERE clause of a span, its parameters appended to `params`. SQLite
// reads the span through the index on the start unless `scan` (a unary +
// keeps its planner off an index).
std::string SpanWhere(const Span& span, std::vector<Value>* params, bool scan = false) {
  params->push_back(span.from);
  params->push_back(span.to_next);
  std::string sql =
      scan ? " WHERE +c.start >= $1 AND +c.start < $2" : " WHERE c.start >= $1 AND c.start < $2";
  if (!span.switch_name.empty()) {
    params->push_back(span.switch_name);
    sql += " AND c.switch_id = (SELECT id FROM switches WHERE name = $3)";
  }
  if (span.extensions) sql += ExtensionsWhere(*span.extensions, params);
  return sql;
}

// The group's key expression and the condition it adds to the WHERE clause.
std::pair<std::string, std::string> GroupKey(const Dialect& d, CallGroup group) {
  const std::string timed = " AND length(c.start) >= 16";
  switch (group) {
    case CallGroup::kExtension:
      return {"coalesce(c.extension, '')", ""};
    case CallGroup::kTrunk:
      return {"c.trunk", " AND c.trunk IS NOT NULL"};
    case CallGroup::kDay:
      return {"substr(c.start, 1, 10)", ""};
    case CallGroup::kHour:
      return {"substr(c.start, 12, 2)", timed};
    case CallGroup::kWeekdayHour:
      return {d.Weekday("c.start") + " || ' ' || substr(c.start, 12, 2)", timed};
  }
  return {"''", ""};
}

template <typename Row>
void SortByKey(std::vector<Row>* rows) {
  std::sort(rows->begin(), rows->end(), [](const Row& a, const Row& b) { return a.key < b.key; });
}

constexpr const char* kMissed = " AND c.type = 1 AND c.attribute = 4";

// The condition "never called back" on a missed call `c`; its window is
// parameter $n.
std::string NotCalledBack(const Dialect& d, size_t n) {
  const std::string window = "$" + std::to_string(n);
  return " AND c.dialled IS NOT NULL AND NOT EXISTS (SELECT 1 FROM calls o"
         " WHERE o.switch_id = c.switch_id AND o.type IN (2, 5) AND o.dialled = c.dialled"
         " AND o.start >= c.start AND o.start < " +
         d.TextAfter("c.start", window + " + 60") + " AND " + d.Epoch("o.start") +
         " <= " + d.Epoch("c.start") + " + " + window + ")";
}

}  // namespace

std::vector<CallCounts> CountCallsBy(Store& store, const Span& span, CallGroup group) {
  Connection& db = ConnectionOf(store);
  if (auto summed = CountCallsFromDays(db, span, group)) return std::move(*summed);
  const auto [key, extra] = GroupKey(Dialect(db), group);
  std::vector<Value> params;
  const std::string where = SpanWhere(span, &params, ScanWhole(db, Dialect(db), span));
  std::vector<CallCounts> rows;
  db.Run("SELECT " + key +
             ", count(*), coalesce(sum(c.duration), 0),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type IN (2, 5) THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type = 1 THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type = 3 THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute = 4 THEN 1 ELSE 0 END) FROM calls c" +
             where + extra + " GROUP BY " + key,
         params, [&](const ResultRow& r) {
           rows.push_back({r.Text(0), r.Int(1), r.Int(2), r.Int(3), r.Int(4), r.Int(5), r.Int(6)});
         });
  SortByKey(&rows);
  return rows;
}

std::vector<MissedCounts> CountMissedBy(Store& store, const Span& span, CallGroup group) {
  Connection& db = ConnectionOf(store);
  const Dialect dialect(db);
  const auto [key, extra] = GroupKey(dialect, group);
  std::vector<Value> params;
  const std::string where =
      SpanWhere(span, &params) + extra + kMissed;  // calls_missed_start holds them
  // One read of the missed calls (a few in a hundred), grouped here: the
  // engine grouping them and ranking their ring times by window took a
  // sort each, ten times the read for a year. A group's ring times are
  // kept as how many calls rang each number of seconds, so that memory
  // follows the ring times that occur, not the calls of the period.
  struct Group {
    MissedCounts counts;
    std::map<int64_t, int64_t> rings;  // seconds -> calls
  };
  std::map<std::string, Group> groups;
  std::string read_key;
  db.Stream("SELECT " + key + ", c.ring FROM calls c" + where, params, [&](const ResultRow& r) {
    r.TextInto(0, read_key);
    auto found = groups.find(read_key);
    if (found == groups.end()) found = groups.emplace(read_key, Group()).first;
    Group& g = found->second;
    ++g.counts.missed;
    if (r.IsNull(1)) return;
    ++g.rings[r.Int(1)];
    ++g.counts.ring_calls;
    g.counts.ring_seconds += r.Int(1);
  });
  std::vector<MissedCounts> rows;
  for (auto& [name, g] : groups) {
    MissedCounts m = g.counts;
    m.key = name;
    // The 90th percentile by nearest rank: the ring time at rank ceil(0.9 n).
    const int64_t rank = (9 * m.ring_calls + 9) / 10;
    int64_t seen = 0;
    for (const auto& [seconds, calls] : g.rings) {
      seen += calls;
      if (seen >= rank) {
        m.ring_p90 = seconds;
        break;
      }
    }
    rows.push_back(std::move(m));
  }
  SortByKey(&rows);
  return rows;
}

void ForEachMissedNotCalledBack(Store& store, const Span& span, int64_t callback_seconds,
                                const std::function<void(const MissedCall&)>& visit) {
  Connection& db = ConnectionOf(store);
  std::vector<Value> params;
  std::string where = SpanWhere(span, &params) + kMissed;
  params.emplace_back(callback_seconds);
  where += NotCalledBack(Dialect(db), params.size());
  // The engine orders them (its sort spills to disk when it must), so that
  // none is held here: the columns compare by their bytes on both engines.
  MissedCall call;
  db.Stream(
      "SELECT c.start, coalesce(c.extension, ''), c.dialled, coalesce(c.ring, -1)"
      " FROM calls c" +
          where + " ORDER BY 1, 2, 3",
      params, [&](const ResultRow& r) {
        r.TextInto(0, call.start);
        r.TextInto(1, call.extension);
        r.TextInto(2, call.number);
        call.ring = r.Int(3);
        visit(call);
      });
}

std::vector<MissedCall> MissedNotCalledBack(Store& store, const Span& span,
                                            int64_t callback_seconds) {
  std::vector<MissedCall> rows;
  ForEachMissedNotCalledBack(store, span, callback_seconds,
                             [&](const MissedCall& m) { rows.push_back(m); });
  return rows;
}

std::vector<ChannelSlot> ChannelsInUse(Store& store, const Span& span) {
  Connection& db = ConnectionOf(store);
  const Dialect d(db);
  const std::string length = "coalesce(c.ring, 0) + coalesce(c.duration, 0)";
  // The calls in order of their start, read from calls_trunk_held alone (no
  // sort), into one sweep: the database sorting every start and end of a
  // year would cost many times the read. SQLite is asked a day at a time
  // (a short range keeps its planner on that index). PostgreSQL is asked a
  // month at a time, each query one month's table, planned once a month:
  // and without the tests of the start's shape and the call's length,
  // which the program makes instead, since its planner cannot estimate
  // them and, guessing few calls, sorted a month's table rather than read
  // its index in order.
  const std::string shaped = d.pg ? "" : " AND length(c.start) >= 16 AND " + length + " > 0";
  LineSweep sweep;
  std::string start;
  Span part = span;
  for (int64_t n = DayOf(span.from), last = DayOf(span.to_next); n < last;) {
    const int64_t next = std::min(last, d.pg ? NextMonth(n) : n + 1);
    part.from = DayText(n);
    part.to_next = DayText(next);
    n = next;
    std::vector<Value> params;
    db.Stream("SELECT c.start, " + length + " FROM calls c" + SpanWhere(part, &params) +
                  " AND c.trunk IS NOT NULL" + shaped + " ORDER BY c.start" +
                  (d.pg ? " NULLS FIRST" : ""),
              params, [&](const ResultRow& r) {
                const int64_t held = r.Int(1);
                if (held <= 0) return;
                r.TextInto(0, start);
                const int64_t second = start.size() >= 16 ? SecondsOf(start) : -1;
                if (second >= 0) sweep.Add(second, held);
              });
  }
  return sweep.Finish();
}

std::vector<CostCounts> CostsBy(Store& store, const Span& span, CostGroup group) {
  Connection& db = ConnectionOf(store);
  if (auto summed = CostsFromDays(db, span, group)) return std::move(*summed);
  const Dialect d(db);
  std::string key = "coalesce(c.extension, '')", day = "''", extra;
  if (group == CostGroup::kTrunk) {
    key = "c.trunk";
    extra = " AND c.trunk IS NOT NULL";
  } else if (group == CostGroup::kAccountDay) {
    key = "c.account_code";
    extra = " AND c.account_code IS NOT NULL";
  } else if (group == CostGroup::kDestination) {
    key = "l.destination";
    day = "l.destination_class";
    extra = " AND l.destination <> ''";
  }
  if (group == CostGroup::kExtensionDay || group == CostGroup::kAccountDay) {
    day = "substr(c.start, 1, 10)";
  }
  // A price is exact decimal text: its digits without the point are its
  // units, and the digits after the point its decimals.
  const std::string point = d.pg ? "strpos(k.cost, '.')" : "instr(k.cost, '.')";
  const std::string decimals =
      "CASE WHEN " + point + " > 0 THEN length(k.cost) - " + point + " ELSE 0 END";
  std::vector<Value> params;
  const std::string where = SpanWhere(span, &params, ScanWhole(db, d, span)) + extra;
  std::vector<CostCounts> rows;
  db.Run("SELECT " + key + ", " + day + ", coalesce(l.currency, ''), " + decimals +
             ", count(*), coalesce(sum(c.duration), 0),"
             " coalesce(sum(CAST(replace(k.cost, '.', '') AS BIGINT)), 0),"
             " sum(CASE WHEN k.call_id IS NOT NULL AND k.cost IS NULL THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type IN (2, 5) THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type = 1 THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute <> 4 AND c.type = 3 THEN 1 ELSE 0 END),"
             " sum(CASE WHEN c.attribute = 4 THEN 1 ELSE 0 END)"
             " FROM calls c LEFT JOIN call_costs k ON k.call_id = c.id"
             " LEFT JOIN cost_labels l ON l.id = k.label" +
             where + " GROUP BY 1, 2, 3, 4",
         params, [&](const ResultRow& r) { rows.push_back(CostCountsOf(r)); });
  SortCostCounts(rows);
  return rows;
}

std::vector<std::string> SwitchNames(Store& store) {
  std::vector<std::string> names;
  ConnectionOf(store).Run("SELECT name FROM switches", {},
                          [&](const ResultRow& r) { names.push_back(r.Text(0)); });
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace velqua_store
