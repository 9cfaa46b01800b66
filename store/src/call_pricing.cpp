#include "call_pricing.h"

#include <algorithm>
#include <limits>

#include "sql.h"
#include "velqua/rating/money.h"

namespace velqua_store {
namespace {

// Rows an upsert statement writes: many, so that a batch takes few round
// trips to a server (4 parameters a row, well under PostgreSQL's limit).
// SQLite writes one row a statement instead (sqlite_connection.cpp).
constexpr size_t kRowsPerStatement = 500;
constexpr size_t kColumns = 4;

// A label's texts joined: tariff, version, currency, destination, class, band.
std::string LabelText(const LabelKey& key) {
  const velqua_rating::Tariff& t = *key.tariff;
  std::string text = t.name + '\x1f' + t.version + '\x1f' + t.currency + '\x1f';
  if (key.destination >= 0) {
    const auto& d = t.destinations[static_cast<size_t>(key.destination)];
    text += d.name + '\x1f' + velqua_rating::ClassName(d.klass);
  } else {
    text += '\x1f';
  }
  text += '\x1f';
  if (key.band >= 0) text += t.bands[static_cast<size_t>(key.band)];
  return text;
}

}  // namespace

std::string UpsertCostsSql(size_t rows) {
  std::string sql = "INSERT INTO call_costs (call_id, cost, label, reason) VALUES ";
  for (size_t r = 0; r < rows; ++r) {
    sql += r == 0 ? "(" : ",(";
    for (size_t c = 0; c < kColumns; ++c) {
      sql += (c == 0 ? "$" : ",$") + std::to_string(r * kColumns + c + 1);
    }
    sql += ")";
  }
  return sql +
         " ON CONFLICT (call_id) DO UPDATE SET cost = excluded.cost, label = excluded.label, "
         "reason = excluded.reason";
}

int64_t CostLabels::Id(Connection& db, const LabelKey& key) {
  if (key.tariff == nullptr) return 0;
  const auto known = by_key_.find(key);
  if (known != by_key_.end()) return known->second;
  if (!loaded_) {
    db.Run(
        "SELECT id, tariff, tariff_version, currency, destination, destination_class, band "
        "FROM cost_labels ORDER BY id",
        {}, [&](const ResultRow& r) {
          std::string text = r.Text(1);
          for (int i = 2; i <= 6; ++i) text += '\x1f' + r.Text(i);
          by_text_.emplace(std::move(text), r.Int(0));
        });
    loaded_ = true;
  }
  std::string text = LabelText(key);
  auto found = by_text_.find(text);
  if (found == by_text_.end()) {
    std::vector<Value> params;
    for (size_t at = 0, end = 0; end != std::string::npos; at = end + 1) {
      end = text.find('\x1f', at);
      params.emplace_back(text.substr(at, end == std::string::npos ? end : end - at));
    }
    int64_t id = 0;
    db.Run(
        "INSERT INTO cost_labels (tariff, tariff_version, currency, destination, "
        "destination_class, band) VALUES ($1, $2, $3, $4, $5, $6) RETURNING id",
        params, [&](const ResultRow& r) { id = r.Int(0); });
    added_.push_back(text);
    found = by_text_.emplace(std::move(text), id).first;
  }
  by_key_.emplace(key, found->second);
  return found->second;
}

void CostLabels::Forget() {
  if (added_.empty()) return;
  for (const std::string& text : added_) by_text_.erase(text);
  added_.clear();
  by_key_.clear();  // some of it points at the rows forgotten
}

void PriceStored(velqua_rating::Rater& rater, const std::string& switch_name,
                 const StoredForPricing& call, CostRow& out, LabelKey& label) {
  out.kept = true;
  out.cost.reset();
  out.label = 0;
  out.reason.clear();
  label = LabelKey();
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
  if (rated.entry == nullptr && p.status == velqua_rating::Priced::Status::kFree) {
    out.kept = false;
    return;
  }
  if (c.has_date && !has_time && p.status == velqua_rating::Priced::Status::kPriced) {
    out.reason = "no time";  // a band needs the time of day
    return;
  }
  out.reason = p.reason;
  if (rated.entry != nullptr) {
    const auto& t = *rated.entry->tariff;
    label.tariff = &t;
    label.destination = p.destination;
    label.band = p.band;
    if (p.status != velqua_rating::Priced::Status::kUnpriced) {
      out.cost = velqua_rating::FormatUnits(p.cost, t.decimals);
    }
  } else if (p.status != velqua_rating::Priced::Status::kUnpriced) {
    out.cost = "0";
  }
}

void Connection::UpsertCosts(const CostRow* rows, size_t count) {
  std::vector<Value> params;
  size_t n = 0;
  const auto flush = [&] {
    if (n == 0) return;
    static const std::string full = UpsertCostsSql(kRowsPerStatement);
    Run(n == kRowsPerStatement ? full : UpsertCostsSql(n), params);
    params.clear();
    n = 0;
  };
  for (const CostRow* r = rows; r != rows + count; ++r) {
    if (!r->kept) continue;
    params.emplace_back(r->call_id);
    params.push_back(r->cost ? Value(*r->cost) : Value());
    params.push_back(r->label > 0 ? Value(r->label) : Value());
    params.push_back(Value::TextOrNull(r->reason));
    if (++n == kRowsPerStatement) flush();
  }
  flush();
}

}  // namespace velqua_store
