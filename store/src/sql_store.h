// The store's logic, once for both engines (sql_store.cpp: switches, sources
// and writing; sql_store_read.cpp: reading and retranslation). Statements are
// written in the SQL that SQLite and PostgreSQL share, with $1, $2 ...
// parameters; only the Connection knows its engine.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "call_months.h"
#include "call_pricing.h"
#include "sql.h"
#include "values.h"
#include "velqua/store/store.h"

namespace velqua_store {

class SqlStore : public Store {
 public:
  // Brings the schema up to date and repairs what a dead bulk load left.
  SqlStore(std::unique_ptr<Connection> db, const std::string& name);

  SwitchInfo PutSwitch(const SwitchInfo& info) override;
  std::optional<SwitchInfo> FindSwitch(const std::string& name) override;
  Source OpenSource(const std::string& switch_name, const std::string& source_name,
                    const std::string& kind) override;
  void SetFingerprint(const Source& source, const std::string& fingerprint) override;
  std::vector<Source> FileSources(const std::string& switch_name) override;
  void RenameSource(const Source& source, const std::string& new_name) override;
  WriteResult Write(const Source& source, const std::vector<Record>& records,
                    std::optional<int64_t> checkpoint,
                    const std::function<void()>& before_commit) override;
  std::optional<int64_t> Checkpoint(const Source& source) override;
  std::vector<RawRecord> RecentRecords(const Source& source, int64_t limit,
                                       const std::string& since_utc) override;
  void AddEvent(const Source& source, const Event& event) override;
  void ListCalls(const CallFilter& filter,
                 const std::function<void(const StoredCall&)>& each) override;
  void ListUnrecognised(const std::string& switch_name, int64_t limit,
                        const std::function<void(const StoredUnrecognised&)>& each) override;
  void ListNewestUnrecognised(const std::string& switch_name, int64_t limit,
                              const std::function<void(const StoredUnrecognised&)>& each) override;
  int64_t CountCalls(const std::string& switch_name) override;
  int64_t CountUnrecognised(const std::string& switch_name) override;
  std::vector<StoredRecord> ReadStored(const std::string& switch_name, bool calls, int64_t after_id,
                                       int64_t limit) override;
  int64_t LastStoredId(const std::string& switch_name, bool calls) override;
  RewriteResult Rewrite(const std::string& switch_name, const std::vector<Retranslated>& records,
                        bool dry_run) override;
  PurgeResult Purge(const PurgeFilter& filter, bool dry_run) override;
  void BeginBulk(int64_t records) override;
  void EndBulk() override;
  int64_t PutRatingPlan(const std::string& path) override;
  RateResult Rate(const RatePeriod& period, const std::function<void(int64_t)>& progress) override;
  int64_t PutDirectory(const std::vector<velqua_rating::DirectoryEntry>& entries) override;
  std::vector<velqua_rating::DirectoryEntry> ListDirectory() override;

  // The engine's connection, for the read-only aggregates (aggregates.cpp).
  Connection& connection() { return *db_; }

 private:
  // Rate's batches: the calls `sql` reads after the id `last`, priced and
  // written a batch a transaction, the run's progress noted with each.
  void PriceBatches(const std::string& sql, std::vector<Value>& params, int64_t batch,
                    const std::string& run, int64_t last, RateResult& result,
                    const std::function<void(int64_t)>& progress);
  // Throws MonthsMissing, unless `any_month`, when a call's month has no
  // table yet (call_months.h): the caller adds it outside the transaction.
  WriteResult WriteOnce(const Source& source, const std::vector<Record>& records,
                        std::optional<int64_t> checkpoint,
                        const std::function<void()>& before_commit, bool any_month);
  // Adds the months' tables that the starts of retranslated records need.
  void AddMonths(int64_t switch_id, const std::vector<Retranslated>& records);
  // Which records of a batch to skip: those whose position the source has
  // already, and the repeats of a position within the batch.
  std::vector<bool> Skipped(const Source& source, const std::vector<Record>& records);
  RewriteResult RewriteOnce(int64_t switch_id, const std::string& switch_name,
                            const std::vector<Retranslated>& records);
  // The table of the calls' sources and positions: call_keys on
  // PostgreSQL (its calls are kept by month), calls itself on SQLite.
  const char* Keys() const;
  int64_t Count(const char* table, const std::string& switch_name);
  int64_t SwitchId(const std::string& switch_name);
  const Zone& ZoneOf(int64_t switch_id);
  // The n-th CallValues of a pool, made when the pool is shorter.
  static CallValues& Slot(std::vector<CallValues>& pool, size_t n) {
    if (pool.size() <= n) pool.resize(n + 1);
    return pool[n];
  }

  // Rating (rating_store.cpp): the stored plan, loaded again when its stamp
  // changes (another program stored a new one); false when none is stored.
  bool RefreshPlan();
  // Prices calls of `switch_name` about to be inserted or just updated,
  // their labels resolved in the transaction under way: one CostRow a call
  // (in costs_), or nullptr when the store holds no plan.
  CostRow* PriceCalls(const std::string& switch_name, const CallValues* calls, size_t n);

  // Runs `work` in a write transaction; the cost labels it added are
  // forgotten when it is rolled back (their rows are gone).
  template <typename Work>
  auto Transaction(Work work) {
    try {
      if constexpr (std::is_void_v<decltype(work())>) {
        InTransaction(*db_, work);
        labels_.Commit();
      } else {
        auto result = InTransaction(*db_, work);
        labels_.Commit();
        return result;
      }
    } catch (...) {
      labels_.Forget();
      throw;
    }
  }

  std::unique_ptr<Connection> db_;
  CallMonths months_;
  std::map<int64_t, Zone> zones_;  // by switch id
  std::vector<CallValues> calls_, unrecognised_, updated_;
  std::unique_ptr<velqua_rating::RatingPlan> plan_;
  std::unique_ptr<velqua_rating::Rater> rater_;
  std::string plan_stamp_;
  std::vector<CostRow> costs_;
  CostLabels labels_;
  std::vector<int64_t> updated_ids_;  // the ids of the calls in updated_
};

// The SQL connection behind `store`, for the reads written in SQL; throws
// StoreError for a store that has none.
Connection& ConnectionOf(Store& store);

// "SELECT ... FROM calls c ..." of every column ReadCall reads: a call
// with its source, price and directory names (sql_store_read.cpp).
std::string CallSelectFrom();
StoredCall ReadCall(const ResultRow& row);

// The WHERE clause of a call filter over `calls c`, its parameters appended
// to `params` (sql_store_read.cpp).
std::string CallWhere(const CallFilter& filter, std::vector<Value>* params);

// The conditions (" AND ...") that `column` holds a start within the
// filter's period, its parameters appended to `params` (sql_store_read.cpp).
std::string PeriodWhere(const CallFilter& filter, const std::string& column,
                        std::vector<Value>* params);

// The condition over `directory d` that an extension's entry meets the
// filter's person and department, as CallWhere matches them; its
// parameters appended to `params` (sql_store_read.cpp).
std::string DirectoryEntryMatch(const CallFilter& filter, std::vector<Value>* params);

}  // namespace velqua_store
