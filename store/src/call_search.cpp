// A page of calls for the web page's search. A search by person or
// department first reads the directory: the extensions whose entry matched
// and the days it was in force. Each such extension and period is then a
// range of the index on the extension and start, read only as far as the
// page needs, instead of looking up every call's directory entry.
#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

#include "page_calls.h"
#include "sql_store.h"
#include "velqua/store/browse.h"

namespace velqua_store {
namespace {

const char* SortColumn(CallSort sort) {
  switch (sort) {
    case CallSort::kDuration:
      return "c.duration";
    case CallSort::kExtension:
      return "c.extension";
    case CallSort::kDialled:
      return "c.dialled";
    case CallSort::kTrunk:
      return "c.trunk";
    case CallSort::kCost:
      return "s.cost";  // the price as a number, in the call's keys
    case CallSort::kStart:
      break;
  }
  return "c.start";
}

// The order's tie-break: the call's id, in the price's order as the keys'
// index holds it.
const char* TieColumn(CallSort sort) { return sort == CallSort::kCost ? "s.call_id" : "c.id"; }

// An amount in millionths as decimal text ("-1.250000").
std::string Decimal(int64_t millionths) {
  const uint64_t size =
      millionths < 0 ? 0 - static_cast<uint64_t>(millionths) : static_cast<uint64_t>(millionths);
  std::string fraction = std::to_string(size % 1000000);
  fraction.insert(0, 6 - fraction.size(), '0');
  return (millionths < 0 ? "-" : "") + std::to_string(size / 1000000) + "." + fraction;
}

// The calls a page is read from: in the price's order, through the calls'
// keys (`s`), whose index holds that order; `index` names the index to read
// through ("" = the planner's choice).
// On PostgreSQL, walking the keys' index, each key's call is looked up by
// its id and start: the start names the one month's table that holds it,
// where the id alone asks every month's index. (The branch for a call
// without a start is skipped for every key that has one.)
std::string CallsFrom(CallSort sort, const std::string& index, bool months) {
  if (months && index == "call_keys_cost") {
    return " FROM call_keys s CROSS JOIN LATERAL (SELECT * FROM calls c WHERE c.id = s.call_id "
           "AND c.start = s.start UNION ALL SELECT * FROM calls c WHERE c.id = s.call_id AND "
           "s.start IS NULL AND c.start IS NULL OFFSET 0) AS c";
  }
  const std::string road = index.empty() || months ? "" : " INDEXED BY " + index;
  if (sort != CallSort::kCost) return " FROM calls c" + road;
  if (index == "call_keys_cost")
    return " FROM call_keys s" + road + " CROSS JOIN calls c ON c.id = s.call_id";
  return " FROM calls c" + road + " JOIN call_keys s ON s.call_id = c.id";
}

// The filter and, in the cost's order, its period and cost bounds also on
// the keys the order's index holds, the cost a millionth wider (the exact
// comparison stays in the filter): a page of calls above an amount,
// cheapest first, then starts at the amount in the index rather than
// walking every cheaper call, and calls of other days are passed over in
// the index.
std::string WhereFor(const CallQuery& q, const CallFilter& filter, std::vector<Value>* params) {
  std::string sql = CallWhere(filter, params);
  if (q.sort != CallSort::kCost) return sql;
  sql += PeriodWhere(filter, "s.start", params);
  if (filter.min_cost) {
    params->push_back(Decimal(*filter.min_cost - 1));
    sql += " AND s.cost >= $" + std::to_string(params->size());
  }
  if (filter.max_cost) {
    params->push_back(Decimal(*filter.max_cost + 1));
    sql += " AND s.cost <= $" + std::to_string(params->size());
  }
  return sql;
}

// Beyond this many extension periods the search asks the directory per call
// instead: one query may join only so many parts.
constexpr size_t kMostPeriods = 200;

// The calls of an extension whose directory entry matched: from the day
// `from` ("" = before its first dated entry, calls without a start too) up
// to the day before `to_next` ("" = still in force).
struct Period {
  std::string extension, from, to_next;
};

// The periods in which each extension's entry in force (the latest from
// day not after the call's day, else the undated one) meets the filter.
std::vector<Period> MatchingPeriods(Connection& db, const CallFilter& filter) {
  std::vector<Value> params;
  const std::string match = DirectoryEntryMatch(filter, &params);
  std::map<std::string, std::vector<std::pair<std::string, bool>>> entries;
  db.Run("SELECT d.entry_key, d.from_day, CASE WHEN " + match +
             " THEN 1 ELSE 0 END FROM directory d WHERE d.kind = 'extension' AND d.entry_key IN "
             "(SELECT d.entry_key FROM directory d WHERE d.kind = 'extension' AND " +
             match + ")",
         params,
         [&](const ResultRow& r) { entries[r.Text(0)].emplace_back(r.Text(1), r.Int(2) != 0); });
  std::vector<Period> periods;
  for (auto& [extension, days] : entries) {
    std::sort(days.begin(), days.end());
    for (size_t i = 0; i < days.size(); ++i) {
      if (!days[i].second) continue;
      const std::string to_next = i + 1 < days.size() ? days[i + 1].first : "";
      if (!periods.empty() && periods.back().extension == extension &&
          periods.back().to_next == days[i].first) {
        periods.back().to_next = to_next;  // the same match, a day later
      } else {
        periods.push_back({extension, days[i].first, to_next});
      }
    }
  }
  return periods;
}

// The WHERE condition of a period over `calls c`. A call without a start
// falls under the undated entry alone.
std::string PeriodCondition(const Period& p, bool without_start, std::vector<Value>* params) {
  const auto next = [params](const std::string& value) {
    params->push_back(value);
    return "$" + std::to_string(params->size());
  };
  std::string sql = "c.extension = " + next(p.extension);
  if (without_start) return sql + " AND c.start IS NULL";
  if (!p.from.empty()) sql += " AND c.start >= " + next(p.from);
  if (!p.to_next.empty()) sql += " AND c.start < " + next(p.to_next);
  return sql;
}

// The ids of the page's calls, in the page's order: each period's first
// calls in that order through the index, then the best of them.
PageIds PageIdsByPeriods(Connection& db, const CallQuery& q, const std::vector<Period>& periods) {
  CallFilter rest = q.filter;
  rest.person.clear();
  rest.department.clear();
  const std::string order = q.descending ? " DESC" : " ASC";
  const std::string nulls = q.descending ? " NULLS LAST" : " NULLS FIRST";
  const std::string sort = SortColumn(q.sort);
  const std::string wanted = std::to_string(q.offset + q.limit + 1);
  std::vector<Value> params;
  std::string parts;
  const auto add = [&](const Period& p, bool without_start) {
    const std::string where = WhereFor(q, rest, &params);
    parts += std::string(parts.empty() ? "" : " UNION ALL ") +
             "SELECT * FROM (SELECT c.id AS id, c.start AS start, " + sort + " AS sort_key" +
             CallsFrom(q.sort, "", false) + " LEFT JOIN call_costs k ON k.call_id = c.id" + where +
             " AND " + PeriodCondition(p, without_start, &params) + " ORDER BY " + sort + order +
             nulls + ", " + TieColumn(q.sort) + order + " LIMIT " + wanted + ") AS p" +
             std::to_string(params.size());
  };
  for (const Period& p : periods) {
    add(p, false);
    if (p.from.empty() && !p.to_next.empty()) add(p, true);
  }
  params.emplace_back(q.limit + 1);
  std::string sql = "SELECT u.id, u.start FROM (" + parts + ") AS u ORDER BY u.sort_key" + order +
                    nulls + ", u.id" + order + " LIMIT $" + std::to_string(params.size());
  params.emplace_back(q.offset);
  sql += " OFFSET $" + std::to_string(params.size());
  PageIds page;
  db.Run(sql, params, Collect(&page));
  return page;
}

constexpr int64_t kFew = 10000;

// Whether the calls that `where` picks are kFew or fewer (counted no further).
bool Few(Connection& db, const std::string& where, const std::vector<Value>& params) {
  int64_t count = 0;
  db.Run("SELECT count(*) FROM (SELECT 1 FROM calls c" + where + " LIMIT " +
             std::to_string(kFew + 1) + ") AS n",
         params, [&](const ResultRow& r) { count = r.Int(0); });
  return count <= kFew;
}

// The index listing the calls in the page's order, by its name.
const char* SortIndex(CallSort sort) {
  switch (sort) {
    case CallSort::kDuration:
      return "calls_duration";
    case CallSort::kExtension:
      return "calls_extension";
    case CallSort::kDialled:
      return "calls_dialled";
    case CallSort::kTrunk:
      return "calls_trunk";
    case CallSort::kCost:
      return "call_keys_cost";
    case CallSort::kStart:
      break;
  }
  return "calls_start";
}

// Whether the search's indexes are there (a backlog being loaded in bulk
// drops them until its end), on SQLite.
bool IndexesReady(Connection& db, CallSort sort) {
  if (std::strcmp(db.engine(), "sqlite") != 0) return false;
  int64_t indexes = 0;
  db.Run(
      "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name IN "
      "('calls_dialled', 'calls_start', $1)",
      {std::string(SortIndex(sort))}, [&](const ResultRow& r) { indexes = r.Int(0); });
  return indexes == (sort == CallSort::kStart || sort == CallSort::kDialled ? 2 : 3);
}

// The filter as the calls' own columns narrow it: the directory and the
// price are left to the query that reads the page.
CallFilter CallColumnsOf(const CallFilter& f) {
  CallFilter columns = f;
  columns.person.clear();
  columns.department.clear();
  columns.min_cost.reset();
  columns.max_cost.reset();
  columns.unpriced = false;
  return columns;
}

// The index SQLite should read the page through, by its name ("" = its planner's
// choice; it keeps no statistics of how many calls a filter picks).
// A number prefix few calls have: the index on the number, then sort them.
// Otherwise, in an order other than the start's: few calls picked by the
// filters are found through their own index and sorted; many are walked in
// the page's order through the order's index until the page is full (with
// more than kFew picked, a page of 50 is a few thousand entries away even
// in ten million calls). In the start's order, a prefix many calls have is
// found walking the calls newest first. PostgreSQL's planner weighs all
// this itself, from its statistics, but for the price's order: it cannot
// see that the keys' start names a call's month, so it is told to walk the
// keys when many calls are picked.
std::string Road(Connection& db, const CallQuery& q) {
  const CallFilter& f = q.filter;
  const bool keys_walk = std::strcmp(db.engine(), "postgresql") == 0 && q.sort == CallSort::kCost;
  if (!keys_walk && !IndexesReady(db, q.sort)) return "";
  if (!f.number_prefix.empty()) {
    CallFilter prefix;
    prefix.number_prefix = f.number_prefix;
    std::vector<Value> params;
    const std::string where = CallWhere(prefix, &params);
    if (Few(db, where, params)) return "calls_dialled";
  }
  if (q.sort == CallSort::kStart) {
    const bool narrower = !f.extension.empty() || !f.trunk.empty() || !f.account_code.empty();
    return !f.number_prefix.empty() && !narrower ? "calls_start" : "";
  }
  std::vector<Value> params;
  const std::string where = CallWhere(CallColumnsOf(f), &params);
  return Few(db, where, params) ? "" : SortIndex(q.sort);
}

// The ids of the page's calls: those `where` lets through, read through the
// index `road` ("" = the planner's choice), in the page's order (ties by id, the calls
// without the key first going up), one more than the page to tell whether
// another follows.
PageIds OrderedPage(Connection& db, const CallQuery& q, const std::string& road,
                    const std::string& where, std::vector<Value> params) {
  const std::string order = q.descending ? " DESC" : " ASC";
  const std::string nulls = q.descending ? " NULLS LAST" : " NULLS FIRST";
  const bool months = std::strcmp(db.engine(), "postgresql") == 0;
  std::string sql = "SELECT c.id, c.start" + CallsFrom(q.sort, road, months) +
                    " LEFT JOIN call_costs k ON k.call_id = c.id" + where + " ORDER BY " +
                    SortColumn(q.sort) + order + nulls + ", " + TieColumn(q.sort) + order;
  params.emplace_back(q.limit + 1);
  sql += " LIMIT $" + std::to_string(params.size());
  params.emplace_back(q.offset);
  sql += " OFFSET $" + std::to_string(params.size());
  PageIds page;
  db.Run(sql, params, Collect(&page));
  return page;
}

// The ids of the page's calls in one query, each call's directory entry
// looked up as it is met. Only the ids and the order's key are read (and
// sorted) for the calls passed over: their names and prices are read for
// the page alone.
PageIds PageIdsByScan(Connection& db, const CallQuery& q) {
  std::vector<Value> params;
  const std::string where = WhereFor(q, q.filter, &params);
  return OrderedPage(db, q, Road(db, q), where, std::move(params));
}

// The page of a directory search as one walk through the order's index,
// each entry checked against the extensions' periods, rather than each
// period's calls read apart and merged. On SQLite, in an order other than
// the start's and when the periods hold many calls (empty otherwise). On
// PostgreSQL always: its planner weighs the roads itself (but the keys'
// walk in the price's order, as Road tells it), and one query over the
// months' tables is planned once rather than once a period.
std::optional<PageIds> PageIdsByPeriodsInOrder(Connection& db, const CallQuery& q,
                                               const std::vector<Period>& periods) {
  const bool postgres = std::strcmp(db.engine(), "postgresql") == 0;
  if (!postgres && (q.sort == CallSort::kStart || !IndexesReady(db, q.sort))) return std::nullopt;
  CallFilter rest = q.filter;
  rest.person.clear();
  rest.department.clear();
  const auto in_periods = [&](std::vector<Value>* params) {
    std::string any;
    for (const Period& p : periods) {
      any += (any.empty() ? "(" : " OR (") + PeriodCondition(p, false, params) + ")";
      if (p.from.empty() && !p.to_next.empty()) {
        any += " OR (" + PeriodCondition(p, true, params) + ")";
      }
    }
    return " AND (" + any + ")";
  };
  std::vector<Value> params;
  std::string where;
  std::string road;  // on PostgreSQL the planner's, but for the keys' walk
  if (!postgres || q.sort == CallSort::kCost) {
    where = CallWhere(CallColumnsOf(rest), &params) + in_periods(&params);
    const bool few = Few(db, where, params);
    if (few && !postgres) return std::nullopt;
    if (!few) road = SortIndex(q.sort);
    params.clear();
  }
  where = WhereFor(q, rest, &params);
  where += in_periods(&params);
  return OrderedPage(db, q, road, where, std::move(params));
}

}  // namespace

CallPage SearchCalls(Store& store, const CallQuery& q) {
  Connection& db = ConnectionOf(store);
  CallPage page;
  if (q.filter.person.empty() && q.filter.department.empty()) {
    page.calls = CallsOfIds(db, PageIdsByScan(db, q));
  } else {
    const std::vector<Period> periods = MatchingPeriods(db, q.filter);
    if (periods.size() > kMostPeriods) {
      page.calls = CallsOfIds(db, PageIdsByScan(db, q));
    } else if (!periods.empty()) {
      std::optional<PageIds> ids = PageIdsByPeriodsInOrder(db, q, periods);
      page.calls = CallsOfIds(db, ids ? *ids : PageIdsByPeriods(db, q, periods));
    }
  }
  if (static_cast<int64_t>(page.calls.size()) > q.limit) {
    page.more = true;
    page.calls.pop_back();
  }
  return page;
}

}  // namespace velqua_store
