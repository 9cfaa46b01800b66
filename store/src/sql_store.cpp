#include "sql_store.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <unordered_set>

#include "day_summaries.h"
#include "schema.h"

namespace velqua_store {
namespace {

// Tries of a batch that met another writer's copy of the same records.
constexpr int kWriteTries = 3;

// Thrown inside a batch's transaction: these months need their tables.
struct MonthsMissing {
  std::vector<std::string> months;
};

}  // namespace

SqlStore::SqlStore(std::unique_ptr<Connection> db, const std::string& name)
    : Store(name), db_(std::move(db)), months_(*db_) {
  Migrate(*db_, name);
  db_->Repair();
}

const char* SqlStore::Keys() const {
  return std::strcmp(db_->engine(), "postgresql") == 0 ? "call_keys" : "calls";
}

SwitchInfo SqlStore::PutSwitch(const SwitchInfo& info) {
  Zone check(info.time_zone);  // an unknown zone is refused here
  db_->Run(
      "INSERT INTO switches (name, config_path, config_hash, time_zone, updated_utc, "
      "extension_list) VALUES ($1, $2, $3, $4, $5, $6) ON CONFLICT (name) DO UPDATE SET "
      "config_path = excluded.config_path, config_hash = excluded.config_hash, "
      "time_zone = CASE WHEN excluded.time_zone = '' THEN switches.time_zone "
      "ELSE excluded.time_zone END, updated_utc = excluded.updated_utc, "
      "extension_list = CASE WHEN excluded.extension_list = '' THEN switches.extension_list "
      "ELSE excluded.extension_list END",
      {info.name, info.config_path, info.config_hash, info.time_zone, UtcNow(),
       info.extension_list});
  zones_.clear();
  return *FindSwitch(info.name);
}

std::optional<SwitchInfo> SqlStore::FindSwitch(const std::string& name) {
  std::optional<SwitchInfo> found;
  db_->Run(
      "SELECT name, config_path, config_hash, time_zone, extension_list FROM switches "
      "WHERE name = $1",
      {name}, [&](const ResultRow& r) {
        found = SwitchInfo{r.Text(0), r.Text(1), r.Text(2), r.Text(3), r.Text(4)};
      });
  return found;
}

int64_t SqlStore::SwitchId(const std::string& switch_name) {
  int64_t id = 0;
  db_->Run("SELECT id FROM switches WHERE name = $1", {switch_name},
           [&](const ResultRow& r) { id = r.Int(0); });
  if (id == 0) throw StoreError("database '" + name() + "' has no switch '" + switch_name + "'");
  return id;
}

Source SqlStore::OpenSource(const std::string& switch_name, const std::string& source_name,
                            const std::string& kind) {
  const int64_t switch_id = SwitchId(switch_name);
  db_->Run(
      "INSERT INTO sources (switch_id, name, kind) VALUES ($1, $2, $3) "
      "ON CONFLICT (switch_id, name) DO NOTHING",
      {switch_id, source_name, kind});
  Source source{0, switch_id, switch_name, source_name, kind, std::nullopt, ""};
  db_->Run(
      "SELECT id, kind, checkpoint, fingerprint FROM sources WHERE switch_id = $1 AND name = $2",
      {switch_id, source_name}, [&](const ResultRow& r) {
        source.id = r.Int(0);
        source.kind = r.Text(1);
        if (!r.IsNull(2)) source.checkpoint = r.Int(2);
        source.fingerprint = r.Text(3);
      });
  return source;
}

void SqlStore::SetFingerprint(const Source& source, const std::string& fingerprint) {
  db_->Run("UPDATE sources SET fingerprint = $2 WHERE id = $1", {source.id, fingerprint});
}

std::vector<Source> SqlStore::FileSources(const std::string& switch_name) {
  const int64_t switch_id = SwitchId(switch_name);
  std::vector<Source> sources;
  db_->Run(
      "SELECT id, name, checkpoint, fingerprint FROM sources WHERE switch_id = $1 "
      "AND kind = 'file' AND fingerprint <> '' ORDER BY id",
      {switch_id}, [&](const ResultRow& r) {
        Source source{r.Int(0), switch_id, switch_name, r.Text(1), "file", std::nullopt, r.Text(3)};
        if (!r.IsNull(2)) source.checkpoint = r.Int(2);
        sources.push_back(std::move(source));
      });
  return sources;
}

void SqlStore::RenameSource(const Source& source, const std::string& new_name) {
  bool taken = false;
  db_->Run("SELECT 1 FROM sources WHERE switch_id = $1 AND name = $2", {source.switch_id, new_name},
           [&](const ResultRow&) { taken = true; });
  if (taken) {
    throw StoreError("database '" + name() + "': switch '" + source.switch_name +
                     "' already has a source named '" + new_name + "'");
  }
  db_->Run("UPDATE sources SET name = $2 WHERE id = $1", {source.id, new_name});
}

WriteResult SqlStore::Write(const Source& source, const std::vector<Record>& records,
                            std::optional<int64_t> checkpoint,
                            const std::function<void()>& before_commit) {
  // A month added by another writer meanwhile is used; one that cannot be
  // added at once leaves its calls in calls_other for now.
  bool any_month = false;
  for (int attempt = 1;; ++attempt) {
    try {
      return Transaction(
          [&] { return WriteOnce(source, records, checkpoint, before_commit, any_month); });
    } catch (const MonthsMissing& missing) {
      months_.Add(missing.months);
      any_month = true;
      --attempt;
    } catch (const UniqueViolation&) {
      if (attempt == kWriteTries) throw;  // the other writer's copies are seen on the next try
    }
  }
}

std::optional<int64_t> SqlStore::Checkpoint(const Source& source) {
  std::optional<int64_t> checkpoint;
  db_->Run("SELECT checkpoint FROM sources WHERE id = $1", {source.id}, [&](const ResultRow& r) {
    if (!r.IsNull(0)) checkpoint = r.Int(0);
  });
  return checkpoint;
}

std::vector<RawRecord> SqlStore::RecentRecords(const Source& source, int64_t limit,
                                               const std::string& since_utc) {
  const int64_t n = limit > 0 ? limit : std::numeric_limits<int64_t>::max();
  std::vector<RawRecord> records;
  // Each table gives its own latest first, so neither is read past the
  // limit. PostgreSQL finds a source's calls through their keys (its calls
  // are kept by month, not by source).
  const std::string latest_calls =
      std::strcmp(Keys(), "call_keys") == 0
          ? "SELECT c.position, c.raw, c.received_utc FROM call_keys k JOIN calls c "
            "ON c.id = k.call_id WHERE k.source_id = $1 AND c.received_utc >= $2 "
            "ORDER BY k.position DESC LIMIT $3"
          : "SELECT position, raw, received_utc FROM calls WHERE source_id = $1 "
            "AND received_utc >= $2 ORDER BY position DESC LIMIT $3";
  db_->Run(
      "SELECT position, raw, received_utc FROM ("
      "SELECT * FROM (" +
          latest_calls +
          ") AS c UNION ALL "
          "SELECT * FROM (SELECT position, raw, received_utc FROM unrecognised WHERE source_id = "
          "$1 "
          "AND received_utc >= $2 ORDER BY position DESC LIMIT $3) AS u) AS r "
          "ORDER BY position DESC LIMIT $3",
      {source.id, since_utc, n}, [&](const ResultRow& r) {
        records.push_back(RawRecord{r.Int(0), r.Text(1), r.Text(2)});
      });
  std::reverse(records.begin(), records.end());
  return records;
}

void SqlStore::AddEvent(const Source& source, const Event& event) {
  db_->Run(
      "INSERT INTO events (switch_id, source_id, at_utc, kind, count, detail) "
      "VALUES ($1, $2, $3, $4, $5, $6)",
      {source.switch_id, source.id, event.at_utc.empty() ? UtcNow() : event.at_utc, event.kind,
       event.count, event.detail});
}

void SqlStore::BeginBulk(int64_t records) { db_->BeginBulk(CountCalls(""), records); }

void SqlStore::EndBulk() {
  db_->EndBulk();
  RefreshDaySummaries(*db_);  // a load's days are summed once, at its end
}

const Zone& SqlStore::ZoneOf(int64_t switch_id) {
  auto found = zones_.find(switch_id);
  if (found != zones_.end()) return found->second;
  std::string name;
  db_->Run("SELECT time_zone FROM switches WHERE id = $1", {switch_id},
           [&](const ResultRow& r) { name = r.Text(0); });
  return zones_.emplace(switch_id, Zone(name)).first->second;
}

std::vector<bool> SqlStore::Skipped(const Source& source, const std::vector<Record>& records) {
  std::vector<bool> skip(records.size(), false);
  if (records.empty()) return skip;
  const auto [low, high] =
      std::minmax_element(records.begin(), records.end(),
                          [](const Record& a, const Record& b) { return a.position < b.position; });
  std::vector<int64_t> stored;
  db_->Run(std::string("SELECT position FROM ") + Keys() +
               " WHERE source_id = $1 AND position BETWEEN $2 AND $3 "
               "UNION ALL SELECT position FROM unrecognised WHERE source_id = $1 "
               "AND position BETWEEN $2 AND $3",
           {source.id, low->position, high->position},
           [&](const ResultRow& r) { stored.push_back(r.Int(0)); });
  // The usual batch, new records in the order of their positions, needs no
  // set: no position can repeat.
  bool increasing = true;
  for (size_t i = 1; increasing && i < records.size(); ++i) {
    increasing = records[i - 1].position < records[i].position;
  }
  if (increasing && stored.empty()) return skip;
  std::unordered_set<int64_t> seen(stored.begin(), stored.end());
  for (size_t i = 0; i < records.size(); ++i) skip[i] = !seen.insert(records[i].position).second;
  return skip;
}

WriteResult SqlStore::WriteOnce(const Source& source, const std::vector<Record>& records,
                                std::optional<int64_t> checkpoint,
                                const std::function<void()>& before_commit, bool any_month) {
  const std::vector<bool> skip = Skipped(source, records);
  const Zone& zone = ZoneOf(source.switch_id);
  WriteResult result;
  size_t n_calls = 0, n_unrecognised = 0;
  for (size_t i = 0; i < records.size(); ++i) {
    const Record& record = records[i];
    if (skip[i]) {
      ++result.duplicates;
      continue;
    }
    const bool call = record.row.has_fields;
    CallValues& v = call ? Slot(calls_, n_calls++) : Slot(unrecognised_, n_unrecognised++);
    v.Fill(source.switch_id, source.id, record, zone);
  }
  if (!any_month) {
    std::vector<std::string> missing = months_.Missing(calls_.data(), n_calls);
    if (!missing.empty()) throw MonthsMissing{std::move(missing)};
  }
  CostRow* costs = PriceCalls(source.switch_name, calls_.data(), n_calls);
  WriteNotingDays(*db_, n_calls, [&](DayMarks& marks) {
    for (size_t i = 0; i < n_calls; ++i) marks.Add(source.switch_id, calls_[i].start);
    db_->InsertCalls(calls_.data(), n_calls, costs);
  });
  db_->InsertUnrecognised(unrecognised_.data(), n_unrecognised);
  if (before_commit) before_commit();
  if (checkpoint) {
    db_->Run("UPDATE sources SET checkpoint = $2 WHERE id = $1", {source.id, *checkpoint});
  }
  result.calls = static_cast<int64_t>(n_calls);
  result.unrecognised = static_cast<int64_t>(n_unrecognised);
  return result;
}

Connection& ConnectionOf(Store& store) {
  auto* sql = dynamic_cast<SqlStore*>(&store);
  if (sql == nullptr) throw StoreError("database '" + store.name() + "': no SQL engine");
  return sql->connection();
}

}  // namespace velqua_store
