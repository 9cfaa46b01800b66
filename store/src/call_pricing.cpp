#include "call_pricing.h"

#include <algorithm>
#include <limits>

#include "sql.h"
#include "velqua/rating/money.h"

namespace velqua_store {
namespace {

// Rows an upsert statement writes: many, so that a batch takes few round
// trips to a server (10 parameters a row, well under PostgreSQL's limit).
// SQLite writes one row a statement instead (sqlite_connection.cpp).
constexpr size_t kRowsPerStatement = 200;
constexpr size_t kColumns = 10;

}  // namespace

std::string UpsertCostsSql(size_t rows) {
  std::string sql =
      "INSERT INTO call_costs (source_id, position, cost, currency, destination, "
      "destination_class, band, tariff, tariff_version, reason) VALUES ";
  for (size_t r = 0; r < rows; ++r) {
    sql += r == 0 ? "(" : ",(";
    for (size_t c = 0; c < kColumns; ++c) {
      sql += (c == 0 ? "$" : ",$") + std::to_string(r * kColumns + c + 1);
    }
    sql += ")";
  }
  return sql +
         " ON CONFLICT (source_id, position) DO UPDATE SET cost = excluded.cost, "
         "currency = excluded.currency, destination = excluded.destination, "
         "destination_class = excluded.destination_class, band = excluded.band, "
         "tariff = excluded.tariff, tariff_version = excluded.tariff_version, "
         "reason = excluded.reason";
}

namespace {

void Unpriced(CostRow& out, const std::string& reason) {
  out.cost.reset();
  out.reason = reason;
}

}  // namespace

bool PriceStored(velqua_rating::Rater& rater, const std::string& switch_name,
                 const StoredForPricing& call, CostRow& out) {
  out.cost.reset();
  out.currency.clear();
  out.destination.clear();
  out.destination_class.clear();
  out.band.clear();
  out.tariff.clear();
  out.tariff_version.clear();
  out.reason.clear();
  velqua_rating::CallToPrice c;
  c.type = call.type;
  c.attribute = call.attribute;
  // "YYYY-MM-DD", then "THH:MM", then ":SS", as the store writes a start.
  const std::string& start = *call.start;
  const auto number = [&start](size_t at, size_t digits) {
    int value = 0;
    for (size_t i = at; i < at + digits; ++i) value = value * 10 + (start[i] - '0');
    return value;
  };
  const bool has_time = start.size() >= 16;
  c.has_date = start.size() >= 10;
  if (c.has_date) {
    c.year = number(0, 4);
    c.month = number(5, 2);
    c.day = number(8, 2);
  }
  c.time = has_time ? number(11, 2) * 3600 + number(14, 2) * 60 : 0;
  if (start.size() >= 19) c.time += number(17, 2);
  c.duration = call.duration > std::numeric_limits<int32_t>::max()
                   ? std::numeric_limits<int32_t>::max()
                   : static_cast<int32_t>(call.duration);
  c.dialled = *call.dialled;
  const auto rated = rater.Rate(switch_name, *call.trunk, c);
  const auto& p = rated.priced;
  if (rated.entry == nullptr && p.status == velqua_rating::Priced::Status::kFree) return false;
  if (c.has_date && !has_time && p.status == velqua_rating::Priced::Status::kPriced) {
    Unpriced(out, "no time");  // a band needs the time of day
    return true;
  }
  out.reason = p.reason;
  if (rated.entry != nullptr) {
    const auto& t = *rated.entry->tariff;
    out.tariff = t.name;
    out.tariff_version = t.version;
    out.currency = t.currency;
    if (p.destination >= 0) {
      const auto& d = t.destinations[static_cast<size_t>(p.destination)];
      out.destination = d.name;
      out.destination_class = velqua_rating::ClassName(d.klass);
    }
    if (p.band >= 0) out.band = t.bands[static_cast<size_t>(p.band)];
    if (p.status != velqua_rating::Priced::Status::kUnpriced) {
      out.cost = velqua_rating::FormatUnits(p.cost, t.decimals);
    }
  } else if (p.status != velqua_rating::Priced::Status::kUnpriced) {
    out.cost = "0";
  }
  return true;
}

void Connection::UpsertCosts(const CostRow* rows, size_t count) {
  const std::string full = UpsertCostsSql(kRowsPerStatement);
  std::vector<Value> params;
  for (size_t first = 0; first < count; first += kRowsPerStatement) {
    const size_t n = std::min(kRowsPerStatement, count - first);
    params.clear();
    params.reserve(n * kColumns);
    for (const CostRow* r = rows + first; r != rows + first + n; ++r) {
      params.emplace_back(r->source_id);
      params.emplace_back(r->position);
      params.push_back(r->cost ? Value(*r->cost) : Value());
      for (const std::string* text : {&r->currency, &r->destination, &r->destination_class,
                                      &r->band, &r->tariff, &r->tariff_version, &r->reason}) {
        params.push_back(Value::TextOrNull(*text));
      }
    }
    Run(n == kRowsPerStatement ? full : UpsertCostsSql(n), params);
  }
}

}  // namespace velqua_store
