// The aggregates that the day summaries can give: the same rows, in the
// same order, as the GROUP BY over the calls would, read from call_days.
#include "day_summary_reads.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "day_summaries.h"

namespace velqua_store {
namespace {

// The summary rows of `kind` in the span: WHERE clause over `call_days d`,
// its parameters appended to `params`. `by_extension`: the rows' item is an
// extension, so that a department's extensions and days can pick them.
std::optional<std::string> DaysWhere(const Span& span, const char* kind, bool by_extension,
                                     std::vector<Value>* params) {
  if (span.extensions && !by_extension) return std::nullopt;
  const auto next = [params](const std::string& value) {
    params->push_back(value);
    return "$" + std::to_string(params->size());
  };
  std::string sql = std::string(" WHERE d.kind = '") + kind + "' AND d.day >= " + next(span.from) +
                    " AND d.day < " + next(span.to_next);
  if (!span.switch_name.empty()) {
    sql +=
        " AND d.switch_id = (SELECT id FROM switches WHERE name = " + next(span.switch_name) + ")";
  }
  if (!span.extensions) return sql;
  if (span.extensions->empty()) return sql + " AND 1 = 0";
  std::string any;
  for (const ExtensionDays& e : *span.extensions) {
    any += any.empty() ? " AND ((" : " OR (";
    any += "d.item = " + next(e.extension);
    if (!e.from.empty()) any += " AND d.day >= " + next(e.from);
    if (!e.to_next.empty()) any += " AND d.day < " + next(e.to_next);
    any += ")";
  }
  return sql + any + ")";
}

bool IsPostgres(const Connection& db) { return std::strcmp(db.engine(), "postgresql") == 0; }

// Sums the days noted since the last read. False when that cannot be done
// now (a store opened by a user who may only read it, a writer holding
// SQLite's lock past its timeout): the caller reads the calls instead,
// slower and just as right.
bool Refreshed(Connection& db) {
  try {
    RefreshDaySummaries(db);
    return true;
  } catch (const ConnectionLost&) {
    throw;
  } catch (const StoreError&) {
    return false;
  }
}

constexpr const char* kCounts =
    "sum(d.calls), sum(d.seconds), sum(d.outgoing), sum(d.incoming), sum(d.internal), "
    "sum(d.unanswered)";

}  // namespace

std::optional<std::vector<CallCounts>> CountCallsFromDays(Connection& db, const Span& span,
                                                          CallGroup group) {
  if (span.from_calls) return std::nullopt;
  const char* kind = "e";
  std::string key = "d.item";
  switch (group) {
    case CallGroup::kExtension:
      break;
    case CallGroup::kDay:
      key = "d.day";
      break;
    case CallGroup::kTrunk:
      kind = "t";
      break;
    case CallGroup::kHour:
      kind = "h";
      break;
    case CallGroup::kWeekdayHour:
      kind = "h";
      key =
          (IsPostgres(db)
               ? std::string("CAST(CAST(extract(dow FROM CAST(d.day AS date)) AS integer) AS text)")
               : std::string("strftime('%w', d.day)")) +
          " || ' ' || d.item";
      break;
  }
  std::vector<Value> params;
  const auto where = DaysWhere(span, kind, *kind == 'e', &params);
  if (!where || !Refreshed(db)) return std::nullopt;
  std::vector<CallCounts> rows;
  db.Run("SELECT " + key + ", " + kCounts + " FROM call_days d" + *where + " GROUP BY " + key,
         params, [&](const ResultRow& r) {
           rows.push_back({r.Text(0), r.Int(1), r.Int(2), r.Int(3), r.Int(4), r.Int(5), r.Int(6)});
         });
  std::sort(rows.begin(), rows.end(),
            [](const CallCounts& a, const CallCounts& b) { return a.key < b.key; });
  return rows;
}

std::optional<std::vector<CostCounts>> CostsFromDays(Connection& db, const Span& span,
                                                     CostGroup group) {
  if (span.from_calls) return std::nullopt;
  const char* kind = "e";
  std::string day = "''";
  switch (group) {
    case CostGroup::kExtension:
      break;
    case CostGroup::kExtensionDay:
      day = "d.day";
      break;
    case CostGroup::kTrunk:
      kind = "t";
      break;
    case CostGroup::kAccountDay:
      kind = "a";
      day = "d.day";
      break;
    case CostGroup::kDestination:
      kind = "d";
      day = "d.class";
      break;
  }
  std::vector<Value> params;
  const auto where = DaysWhere(span, kind, *kind == 'e', &params);
  if (!where || !Refreshed(db)) return std::nullopt;
  std::vector<CostCounts> rows;
  db.Run("SELECT d.item, " + day + ", d.currency, d.decimals, sum(d.calls), sum(d.seconds), " +
             "sum(d.cost), sum(d.unpriced), sum(d.outgoing), sum(d.incoming), sum(d.internal), " +
             "sum(d.unanswered) FROM call_days d" + *where + " GROUP BY 1, 2, 3, 4",
         params, [&](const ResultRow& r) { rows.push_back(CostCountsOf(r)); });
  SortCostCounts(rows);
  return rows;
}

CostCounts CostCountsOf(const ResultRow& r) {
  CostCounts c;
  c.key = r.Text(0);
  c.day = r.Text(1);
  c.cost = {r.Text(2), static_cast<int32_t>(r.Int(3)), r.Int(6)};
  c.calls = r.Int(4);
  c.seconds = r.Int(5);
  c.unpriced = r.Int(7);
  c.outgoing = r.Int(8);
  c.incoming = r.Int(9);
  c.internal = r.Int(10);
  c.unanswered = r.Int(11);
  return c;
}

void SortCostCounts(std::vector<CostCounts>& rows) {
  std::sort(rows.begin(), rows.end(), [](const CostCounts& a, const CostCounts& b) {
    return std::tie(a.key, a.day, a.cost.currency, a.cost.decimals) <
           std::tie(b.key, b.day, b.cost.currency, b.cost.decimals);
  });
}

}  // namespace velqua_store
