// Browsing queries for the web page, in the SQL both engines share.
#include "velqua/store/browse.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "sql_store.h"
#include "velqua/rating/money.h"

namespace velqua_store {
namespace {

Connection& ConnectionOf(Store& store) {
  auto* sql = dynamic_cast<SqlStore*>(&store);
  if (sql == nullptr) throw StoreError("database '" + store.name() + "': no SQL engine");
  return sql->connection();
}

// The directory's department of a call's extension as in force on its
// start (the same rule as the listing's).
const char* kDepartment =
    "(SELECT d.department FROM directory d WHERE d.kind = 'extension' AND d.entry_key = "
    "c.extension AND (d.from_day = '' OR d.from_day <= substr(c.start, 1, 10)) ORDER BY "
    "d.from_day DESC LIMIT 1)";

// Decimal text in millionths; a stored cost always reads.
int64_t Micro(const std::string& text) {
  int64_t micro = 0;
  const bool negative = !text.empty() && text[0] == '-';
  if (!velqua_rating::ParseMicro(negative ? text.substr(1) : text, micro)) {
    throw StoreError("a stored cost is not a decimal: '" + text + "'");
  }
  return negative ? -micro : micro;
}

}  // namespace

std::optional<StoredCall> CallById(Store& store, int64_t id) {
  std::optional<StoredCall> found;
  ConnectionOf(store).Run(CallSelectFrom() + " WHERE c.id = $1", {id},
                          [&](const ResultRow& r) { found = ReadCall(r); });
  return found;
}

ArrivalMark LatestArrival(Store& store) {
  ArrivalMark mark;
  ConnectionOf(store).Run("SELECT (SELECT max(id) FROM calls), (SELECT max(id) FROM unrecognised)",
                          {}, [&](const ResultRow& r) {
                            mark.call = r.IsNull(0) ? 0 : r.Int(0);
                            mark.unrecognised = r.IsNull(1) ? 0 : r.Int(1);
                          });
  return mark;
}

Arrivals ArrivedAfter(Store& store, const ArrivalMark& mark, int64_t limit) {
  Connection& db = ConnectionOf(store);
  Arrivals a;
  a.mark = mark;
  db.Run(CallSelectFrom() + " WHERE c.id > $1 ORDER BY c.id LIMIT $2", {mark.call, limit},
         [&](const ResultRow& r) {
           a.calls.push_back(ReadCall(r));
           a.mark.call = a.calls.back().id;
         });
  db.Run(
      "SELECT u.id, w.name, s.name, u.position, u.received_utc, u.reason, u.raw "
      "FROM unrecognised u JOIN switches w ON w.id = u.switch_id "
      "JOIN sources s ON s.id = u.source_id WHERE u.id > $1 ORDER BY u.id LIMIT $2",
      {mark.unrecognised, limit}, [&](const ResultRow& r) {
        a.unrecognised.push_back(
            {r.Int(0), {r.Text(1), r.Text(2), r.Int(3), r.Text(4), r.Text(5), r.Text(6)}});
        a.mark.unrecognised = r.Int(0);
      });
  return a;
}

std::vector<CostTotal> SumCostBy(Store& store, const Span& span, CostKey by) {
  const std::string key = by == CostKey::kDepartment    ? kDepartment
                          : by == CostKey::kDestination ? "NULLIF(l.destination, '')"
                          : by == CostKey::kExtension   ? "c.extension"
                                                        : "''";
  std::vector<Value> params = {span.from, span.to_next};
  std::string sql = "SELECT " + key +
                    ", NULLIF(l.currency, ''), k.cost FROM calls c JOIN call_costs k ON "
                    "k.call_id = c.id LEFT JOIN cost_labels l ON l.id = k.label WHERE c.start >= "
                    "$1 AND c.start < $2 AND k.cost IS NOT NULL";
  if (!span.switch_name.empty()) {
    params.emplace_back(span.switch_name);
    sql += " AND c.switch_id = (SELECT id FROM switches WHERE name = $3)";
  }
  // Summed here, exactly, in millionths: the engines would sum the texts as
  // binary floating point.
  // The sum keeps as many decimals as its most precise cost.
  struct Sum {
    int64_t calls = 0, micro = 0;
    int32_t decimals = 0;
  };
  std::map<std::pair<std::string, std::string>, Sum> sums;
  ConnectionOf(store).Run(sql, params, [&](const ResultRow& r) {
    Sum& sum = sums[{r.IsNull(0) ? "" : r.Text(0), r.IsNull(1) ? "" : r.Text(1)}];
    const std::string cost = r.Text(2);
    const size_t point = cost.find('.');
    if (point != std::string::npos) {
      sum.decimals = std::max(sum.decimals, static_cast<int32_t>(cost.size() - point - 1));
    }
    ++sum.calls;
    sum.micro += Micro(cost);
  });
  std::vector<std::tuple<int64_t, std::string, std::string, int64_t, int32_t>> rows;
  for (const auto& [k, v] : sums)
    rows.emplace_back(v.micro, k.first, k.second, v.calls, v.decimals);
  std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
    return std::get<0>(a) != std::get<0>(b) ? std::get<0>(a) > std::get<0>(b)
                                            : std::get<1>(a) < std::get<1>(b);
  });
  std::vector<CostTotal> out;
  for (const auto& [micro, k, currency, calls, decimals] : rows) {
    int64_t scale = 1;
    for (int32_t i = decimals; i < 6; ++i) scale *= 10;
    out.push_back({k, currency, calls, velqua_rating::FormatUnits(micro / scale, decimals)});
  }
  return out;
}

std::vector<RatingFile> RatingFiles(Store& store) {
  std::vector<RatingFile> files;
  ConnectionOf(store).Run(
      "SELECT name, kind, content, loaded_utc FROM rating_files ORDER BY kind, name", {},
      [&](const ResultRow& r) {
        files.push_back({r.Text(0), r.Text(1), r.Text(2), r.Text(3)});
      });
  return files;
}

std::string LatestCallDay(Store& store) {
  std::string day;
  ConnectionOf(store).Run("SELECT max(start) FROM calls", {}, [&](const ResultRow& r) {
    if (!r.IsNull(0)) day = r.Text(0).substr(0, 10);
  });
  return day;
}

}  // namespace velqua_store
