// Rating in the store: the plan and its tariffs kept as texts, each call
// priced as it is written, and periods priced again (velqua rate).
#include <fstream>
#include <map>
#include <sstream>

#include "call_pricing.h"
#include "day_summaries.h"
#include "sql_store.h"

namespace velqua_store {
namespace {

std::string ReadText(const std::string& path, const char* what) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw velqua_rating::TariffError(std::string("cannot read ") + what + " '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string Folder(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

}  // namespace

int64_t SqlStore::PutRatingPlan(const std::string& path) {
  const std::string plan_text = ReadText(path, "rating plan");
  std::map<std::string, std::string> tariffs;  // as the plan names them
  // Loading checks everything; only then is the store touched.
  velqua_rating::RatingPlan::Load(plan_text, path, [&](const std::string& file) {
    const std::string full = !file.empty() && file[0] == '/' ? file : Folder(path) + file;
    const std::string text = ReadText(full, "tariff");
    tariffs[file] = text;
    return std::make_shared<const velqua_rating::Tariff>(velqua_rating::LoadTariff(text, full));
  });
  std::string all = plan_text;
  for (const auto& [name, text] : tariffs) all += '\0' + name + '\0' + text;
  const std::string stamp = Fnv1aHex(all);
  InTransaction(*db_, [&] {
    db_->Run("DELETE FROM rating_files");
    db_->Run(
        "INSERT INTO rating_files (name, kind, content, stamp, loaded_utc) "
        "VALUES ($1, 'plan', $2, $3, $4)",
        {path, plan_text, stamp, UtcNow()});
    for (const auto& [name, text] : tariffs) {
      db_->Run(
          "INSERT INTO rating_files (name, kind, content, stamp, loaded_utc) "
          "VALUES ($1, 'tariff', $2, $3, $4)",
          {name, text, stamp, UtcNow()});
    }
  });
  return static_cast<int64_t>(tariffs.size());
}

bool SqlStore::RefreshPlan() {
  std::string stamp;
  db_->Run("SELECT stamp FROM rating_files WHERE kind = 'plan'", {},
           [&](const ResultRow& r) { stamp = r.Text(0); });
  if (stamp == plan_stamp_) return rater_ != nullptr;
  rater_.reset();
  plan_.reset();
  labels_.NewPlan();
  plan_stamp_ = stamp;
  if (stamp.empty()) return false;
  std::string name, text;
  std::map<std::string, std::string> tariffs;
  db_->Run("SELECT name, kind, content FROM rating_files", {}, [&](const ResultRow& r) {
    if (r.Text(1) == "plan") {
      name = r.Text(0);
      text = r.Text(2);
    } else {
      tariffs[r.Text(0)] = r.Text(2);
    }
  });
  plan_ = std::make_unique<velqua_rating::RatingPlan>(velqua_rating::RatingPlan::Load(
      text, name, [&](const std::string& file) -> std::shared_ptr<const velqua_rating::Tariff> {
        const auto found = tariffs.find(file);
        if (found == tariffs.end()) return nullptr;
        return std::make_shared<const velqua_rating::Tariff>(
            velqua_rating::LoadTariff(found->second, file));
      }));
  rater_ = std::make_unique<velqua_rating::Rater>(*plan_);
  return true;
}

CostRow* SqlStore::PriceCalls(const std::string& switch_name, const CallValues* calls, size_t n) {
  if (n == 0 || !RefreshPlan()) return nullptr;
  // costs_ is a pool: its rows' strings keep their storage batch after batch.
  if (costs_.size() < n) costs_.resize(n);
  LabelKey label;
  for (size_t i = 0; i < n; ++i) {
    const CallValues& v = calls[i];
    const StoredForPricing stored{v.type,     v.attribute, &v.start,
                                  v.duration, &v.texts[0], &v.texts[2]};
    CostRow& row = costs_[i];
    PriceStored(*rater_, switch_name, stored, row, label);
    row.label = labels_.Id(*db_, label);
  }
  return costs_.data();
}

RateResult SqlStore::Rate(const RatePeriod& period, const std::function<void(int64_t)>& progress) {
  if (!RefreshPlan()) {
    throw StoreError("database '" + name() + "' holds no rating plan: give one with --plan");
  }
  CallFilter filter;
  filter.from = period.from;
  filter.to = period.to;
  filter.switch_name = period.switch_name;
  std::vector<Value> params{int64_t{0}};
  const int64_t batch = period.batch > 0 ? period.batch : 20000;
  const std::string sql =
      "SELECT c.id, w.name, c.type, c.attribute, c.start, c.duration, c.dialled, c.trunk, "
      "c.switch_id FROM calls c JOIN switches w ON w.id = c.switch_id" +
      CallWhere(filter, &params) + " AND c.id > $1 ORDER BY c.id LIMIT " + std::to_string(batch);
  const std::string run =
      period.from + '|' + period.to + '|' + period.switch_name + '|' + plan_stamp_;
  RateResult result;
  int64_t last = 0;
  db_->Run("SELECT last_id FROM rating_progress WHERE run = $1", {run}, [&](const ResultRow& r) {
    last = r.Int(0);
    result.resumed = true;
  });
  if (db_->WeighsBulkPricing()) {
    std::vector<Value> count_params;
    int64_t calls = 0;
    db_->Run("SELECT count(*) FROM calls c" + CallWhere(filter, &count_params), count_params,
             [&](const ResultRow& r) { calls = r.Int(0); });
    db_->BeginBulkPricing(CountCalls(""), calls);
  }
  try {
    PriceBatches(sql, params, batch, run, last, result, progress);
  } catch (...) {
    db_->EndBulk();
    throw;
  }
  db_->EndBulk();
  db_->Run("DELETE FROM rating_progress WHERE run = $1", {run});
  RefreshDaySummaries(*db_);  // the days priced again, summed again now
  return result;
}

void SqlStore::PriceBatches(const std::string& sql, std::vector<Value>& params, int64_t batch,
                            const std::string& run, int64_t last, RateResult& result,
                            const std::function<void(int64_t)>& progress) {
  int64_t total = 0;
  std::string switch_name, start, dialled, trunk;
  std::vector<LabelKey> keys;
  DayMarks days;  // those of the batch read
  for (;;) {
    params[0] = Value(last);
    days = DayMarks();
    size_t read = 0;
    db_->Run(sql, params, [&](const ResultRow& r) {
      last = r.Int(0);
      r.TextInto(1, switch_name);
      r.TextInto(4, start);
      r.TextInto(6, dialled);
      r.TextInto(7, trunk);
      const StoredForPricing stored{static_cast<int32_t>(r.Int(2)),
                                    static_cast<int32_t>(r.Int(3)),
                                    &start,
                                    r.IsNull(5) ? -1 : r.Int(5),
                                    &dialled,
                                    &trunk};
      if (read == costs_.size()) costs_.emplace_back();
      if (read == keys.size()) keys.emplace_back();
      days.Add(r.Int(8), start);
      CostRow& cost = costs_[read];
      PriceStored(*rater_, switch_name, stored, cost, keys[read]);
      cost.call_id = last;
      ++read;
      if (!cost.kept) return;
      (cost.cost ? (cost.reason.empty() ? result.priced : result.free) : result.unpriced) += 1;
    });
    if (read == 0) break;
    Transaction([&] {
      for (size_t i = 0; i < read; ++i) costs_[i].label = labels_.Id(*db_, keys[i]);
      WriteNotingDays(*db_, read, [&](DayMarks& marks) {
        marks = std::move(days);
        db_->UpsertCosts(costs_.data(), read);
      });
      db_->Run(
          "INSERT INTO rating_progress (run, last_id) VALUES ($1, $2) "
          "ON CONFLICT (run) DO UPDATE SET last_id = excluded.last_id",
          {run, last});
    });
    total += static_cast<int64_t>(read);
    if (progress) progress(total);
    if (static_cast<int64_t>(read) < batch) break;
  }
}

int64_t SqlStore::PutDirectory(const std::vector<velqua_rating::DirectoryEntry>& entries) {
  InTransaction(*db_, [&] {
    for (const auto& e : entries) {
      const bool account = e.kind == velqua_rating::DirectoryEntry::Kind::kAccount;
      db_->Run(
          "INSERT INTO directory (kind, entry_key, from_day, person, department, cost_centre, "
          "client, project) VALUES ($1, $2, $3, $4, $5, $6, $7, $8) "
          "ON CONFLICT (kind, entry_key, from_day) DO UPDATE SET person = excluded.person, "
          "department = excluded.department, cost_centre = excluded.cost_centre, "
          "client = excluded.client, project = excluded.project",
          {account ? "account" : "extension", e.key, e.from, Value::TextOrNull(e.person),
           Value::TextOrNull(e.department), Value::TextOrNull(e.cost_centre),
           Value::TextOrNull(e.client), Value::TextOrNull(e.project)});
    }
  });
  return static_cast<int64_t>(entries.size());
}

std::vector<velqua_rating::DirectoryEntry> SqlStore::ListDirectory() {
  std::vector<velqua_rating::DirectoryEntry> entries;
  db_->Run(
      "SELECT kind, entry_key, from_day, person, department, cost_centre, client, project "
      "FROM directory ORDER BY kind DESC, entry_key, from_day",
      {}, [&](const ResultRow& r) {
        velqua_rating::DirectoryEntry e;
        e.kind = r.Text(0) == "account" ? velqua_rating::DirectoryEntry::Kind::kAccount
                                        : velqua_rating::DirectoryEntry::Kind::kExtension;
        e.key = r.Text(1);
        e.from = r.Text(2);
        std::string* texts[] = {&e.person, &e.department, &e.cost_centre, &e.client, &e.project};
        for (int i = 0; i < 5; ++i) *texts[i] = r.IsNull(3 + i) ? "" : r.Text(3 + i);
        entries.push_back(std::move(e));
      });
  return entries;
}

}  // namespace velqua_store
