// The SQLite engine: one file, WAL journal (readers never wait for the
// writer), a busy timeout (a second writer waits its turn instead of failing),
// and write transactions that take the write lock at once.
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "call_pricing.h"
#include "engines.h"
#include "schema.h"
#include "sql.h"

namespace velqua_store {
namespace {

// How long a writer waits for another one before giving up.
constexpr int kBusyTimeoutMs = 30000;

// The page cache: up to 64 MiB, for the hot pages of the indexes that rows
// are added to one by one. A bulk load appends to the table and the unique
// key only, and SQLite sorts an index to build it in pieces the size of the
// cache: pieces of 4 MiB fit the processor's caches, and the indexes of a
// million calls are built in half the time they take with 64 MiB.
constexpr const char* kCache = "PRAGMA cache_size = -65536; PRAGMA wal_autocheckpoint = 1000";
constexpr const char* kBulkCache = "PRAGMA cache_size = -4096; PRAGMA wal_autocheckpoint = 10000";

// Every price's sort key set from its price, in one pass over the prices.
// (A call without a price has no key: a price removed clears it.)
constexpr const char* kKeysFromPrices =
    "UPDATE call_keys SET cost = n.cost FROM (SELECT call_id, CAST(cost AS NUMERIC) AS cost "
    "FROM call_costs) AS n WHERE call_keys.call_id = n.call_id AND call_keys.cost IS NOT n.cost";

class SqliteRow : public ResultRow {
 public:
  explicit SqliteRow(sqlite3_stmt* stmt) : stmt_(stmt) {}
  bool IsNull(int column) const override {
    return sqlite3_column_type(stmt_, column) == SQLITE_NULL;
  }
  int64_t Int(int column) const override { return sqlite3_column_int64(stmt_, column); }
  std::string Text(int column) const override {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return text == nullptr
               ? std::string()
               : std::string(text, static_cast<size_t>(sqlite3_column_bytes(stmt_, column)));
  }
  void TextInto(int column, std::string& out) const override {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    if (text == nullptr) {
      out.clear();
    } else {
      out.assign(text, static_cast<size_t>(sqlite3_column_bytes(stmt_, column)));
    }
  }

 private:
  sqlite3_stmt* stmt_;
};

struct StatementCloser {
  void operator()(sqlite3_stmt* stmt) const { sqlite3_finalize(stmt); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

class SqliteConnection : public Connection {
 public:
  SqliteConnection(const std::string& path, const std::string& name)
      : name_(name), bulk_lock_path_(path + "-bulk") {
    // SQLite counts every allocation under a process-wide lock unless told
    // not to before it starts; a seventh of a bulk load went there. When
    // SQLite is already started (by the host), this does nothing.
    static const int unused = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    (void)unused;
    const int rc =
        sqlite3_open_v2(path.c_str(), &db_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
      const std::string why = db_ != nullptr ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
      sqlite3_close(db_);
      db_ = nullptr;
      throw StoreError("database '" + name_ + "' cannot be opened or created: " + why);
    }
    // NOMUTEX: a Store is used by one thread at a time, so the connection
    // needs no lock of its own around every call.
    sqlite3_extended_result_codes(db_, 1);
    sqlite3_busy_timeout(db_, kBusyTimeoutMs);
    // WAL survives a crash without a rollback journal and lets readers run
    // beside the writer; NORMAL syncs at checkpoints, which WAL keeps safe.
    // The page cache (64 MiB at most) keeps the indexes' hot pages. A file
    // that cannot take them (a full disk) fails the open: the connection is
    // closed here, since no destructor runs for it (a service retrying an
    // open every second would otherwise lose memory each time).
    try {
      Script(std::string("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;") + kCache);
    } catch (...) {
      sqlite3_close(db_);
      db_ = nullptr;
      throw;
    }
  }
  ~SqliteConnection() override {
    if (bulk_lock_ >= 0) ::close(bulk_lock_);
    statements_.clear();
    sqlite3_close(db_);
  }

  int64_t Run(std::string_view sql, const std::vector<Value>& params, const RowFn& row) override {
    sqlite3_stmt* stmt = Prepare(sql);
    const std::vector<int>& at = ParameterIndexes(stmt, params.size());
    for (size_t i = 0; i < params.size(); ++i) {
      if (at[i] != 0) Bind(stmt, at[i], params[i]);  // 0: a parameter the statement does not use
    }
    Step(stmt, row);
    return sqlite3_changes64(db_);
  }

  void Script(const std::string& sql) override {
    char* message = nullptr;
    const int rc = sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
      const std::string why = message != nullptr ? message : sqlite3_errstr(rc);
      sqlite3_free(message);
      Fail(rc, why);
    }
  }

  void Begin() override { Run("BEGIN IMMEDIATE", {}, nullptr); }
  void Commit() override { Run("COMMIT", {}, nullptr); }
  void Rollback() noexcept override {
    if (sqlite3_get_autocommit(db_) == 0) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
  }

  void InsertCalls(const CallValues* rows, size_t n, CostRow* costs) override {
    sqlite3_stmt* stmt = Prepare(
        "INSERT INTO calls (switch_id, source_id, position, received_utc, raw, type, attribute, "
        "start, start_utc, duration, ring, dialled, extension, trunk, receiving_extension, "
        "receiving_trunk, account_code, extension_random, ended, ended_utc, date_received, "
        "switch_charge, extras, line) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const CallValues* v = rows; v != rows + n; ++v) {
      BindCommon(stmt, *v);
      sqlite3_bind_int(stmt, 6, v->type);
      sqlite3_bind_int(stmt, 7, v->attribute);
      BindText(stmt, 8, v->start);
      BindText(stmt, 9, v->start_utc);
      BindCount(stmt, 10, v->duration);
      BindCount(stmt, 11, v->ring);
      for (int i = 0; i < 6; ++i) BindText(stmt, 12 + i, v->texts[static_cast<size_t>(i)]);
      sqlite3_bind_int(stmt, 18, v->extension_random ? 1 : 0);
      BindText(stmt, 19, v->ended);
      BindText(stmt, 20, v->ended_utc);
      sqlite3_bind_int(stmt, 21, v->date_received ? 1 : 0);
      BindText(stmt, 22, v->switch_charge);
      BindText(stmt, 23, v->extras);
      BindCount(stmt, 24, v->line);
      Step(stmt, nullptr);
      // The call's id is its row id: its keys and its price are appended
      // right after it, the keys with the price's sort key already set.
      const int64_t id = sqlite3_last_insert_rowid(db_);
      CostRow* cost = costs != nullptr && costs[v - rows].kept ? &costs[v - rows] : nullptr;
      if (cost != nullptr) cost->call_id = id;
      InsertKeys(id, v->start, cost);
      if (cost != nullptr) WritePrice(*cost);
    }
  }

  // One row a statement: SQLite looks "$n" parameters up by name, so a
  // statement of many rows costs time growing with the square of their number.
  void UpsertCosts(const CostRow* rows, size_t n) override {
    for (const CostRow* r = rows; r != rows + n; ++r) {
      if (!r->kept) continue;
      WritePrice(*r);
      if (!keys_later_) WritePriceKey(*r);
    }
  }

  void InsertUnrecognised(const CallValues* rows, size_t n) override {
    sqlite3_stmt* stmt = Prepare(
        "INSERT INTO unrecognised (switch_id, source_id, position, received_utc, raw, reason, "
        "line) VALUES (?, ?, ?, ?, ?, ?, ?)");
    for (const CallValues* v = rows; v != rows + n; ++v) {
      BindCommon(stmt, *v);
      BindText(stmt, 6, v->reason);
      BindCount(stmt, 7, v->line);
      Step(stmt, nullptr);
    }
  }

  const char* engine() const override { return "sqlite"; }

  // A bulk load holds an exclusive lock on "<database>-bulk" while its
  // query indexes are down (the lock goes with the process, however it
  // ends). Free, the lock means no load is running: missing indexes are
  // those of a load that died, and are built again (those present are left
  // as they are).
  // The price's index missing also means its keys may lag their prices
  // (a bulk pricing that died): they are set again from the prices first.
  void Repair() override {
    const int lock = TakeBulkLock();
    if (lock < 0) return;
    bool indexed = false;
    Run("SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = 'call_keys_cost'", {},
        [&](const ResultRow&) { indexed = true; });
    if (!indexed) Script(kKeysFromPrices);
    Script(QueryIndexes());
    ReleaseBulkLock(lock);
  }

  // Building an index once from all its rows (a sort) costs a fraction of
  // adding the rows to it one by one, when the load is at least as large as
  // the table: then the query indexes are dropped until EndBulk.
  void BeginBulk(int64_t stored, int64_t records) override {
    if (records <= stored || bulk_lock_ >= 0) return;
    bulk_lock_ = TakeBulkLock();
    if (bulk_lock_ < 0) return;  // another load is running: add rows one by one
    std::string drop;
    for (const char* const* index = QueryIndexNames(); *index != nullptr; ++index) {
      drop += std::string("DROP INDEX IF EXISTS ") + *index + ";";
    }
    Script(drop + kBulkCache);
  }
  // Pricing a call moves its entry in the index of the price's order, to a
  // place of its own: pricing half the store or more, the index is built
  // once at the end instead, under the bulk lock.
  // The keys themselves are then set from the prices in one pass at the
  // end, not a statement a price (until then they follow the prices as they
  // were: so does the price's order of a search meanwhile).
  void BeginBulkPricing(int64_t stored, int64_t calls) override {
    if (2 * calls < stored || calls == 0 || bulk_lock_ >= 0) return;
    bulk_lock_ = TakeBulkLock();
    if (bulk_lock_ < 0) return;
    Script("DROP INDEX IF EXISTS call_keys_cost");
    keys_later_ = true;
  }
  bool WeighsBulkPricing() const override { return true; }
  void EndBulk() override {
    if (bulk_lock_ < 0) return;
    if (keys_later_) Script(kKeysFromPrices);
    keys_later_ = false;
    Script(QueryIndexes() + ";" + kCache);
    ReleaseBulkLock(bulk_lock_);
    bulk_lock_ = -1;
  }

 private:
  // The bulk lock, taken without waiting; -1 when another process holds it
  // (or the lock file cannot be made: then no bulk load either). The file
  // lives only while its lock is held: a lock taken on a file its holder
  // has just removed is no lock, and is taken again on the file now there.
  int TakeBulkLock() const {
    for (int tries = 0; tries < 8; ++tries) {
      const int fd = ::open(bulk_lock_path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
      if (fd < 0) return -1;
      if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        return -1;
      }
      struct stat held {
      }, named{};
      if (::fstat(fd, &held) == 0 && ::stat(bulk_lock_path_.c_str(), &named) == 0 &&
          held.st_ino == named.st_ino && held.st_dev == named.st_dev) {
        return fd;
      }
      ::close(fd);
    }
    return -1;
  }
  // Removes the lock's file while still holding it, then lets it go, so
  // that no empty file stays beside the database.
  void ReleaseBulkLock(int fd) const {
    ::unlink(bulk_lock_path_.c_str());
    ::close(fd);
  }

  void InsertKeys(int64_t call_id, const std::string& start, const CostRow* cost) {
    if (new_keys_ == nullptr) {
      new_keys_ =
          Prepare("INSERT INTO call_keys (call_id, start, cost) VALUES (?, ?, CAST(? AS NUMERIC))");
    }
    sqlite3_bind_int64(new_keys_, 1, call_id);
    BindText(new_keys_, 2, start);
    if (cost != nullptr && cost->cost) BindText(new_keys_, 3, *cost->cost);
    Step(new_keys_, nullptr);
  }

  void WritePrice(const CostRow& r) {
    if (costs_ == nullptr) costs_ = Prepare(UpsertCostsSql(1));
    sqlite3_bind_int64(costs_, 1, r.call_id);
    if (r.cost) BindText(costs_, 2, *r.cost);
    if (r.label > 0) sqlite3_bind_int64(costs_, 3, r.label);
    BindText(costs_, 4, r.reason);
    Step(costs_, nullptr);
  }

  // The price's sort key, in the call's keys (left as it is when the price
  // has not changed).
  void WritePriceKey(const CostRow& r) {
    if (keys_ == nullptr) {
      keys_ = Prepare(
          "UPDATE call_keys SET cost = CAST(?1 AS NUMERIC) WHERE call_id = ?2 AND "
          "cost IS NOT CAST(?1 AS NUMERIC)");
    }
    if (r.cost) BindText(keys_, 1, *r.cost);
    sqlite3_bind_int64(keys_, 2, r.call_id);
    Step(keys_, nullptr);
  }

  [[noreturn]] void Fail(int rc, const std::string& why) const {
    const std::string message = "database '" + name_ + "': " + why;
    if (rc == SQLITE_CONSTRAINT_UNIQUE || rc == SQLITE_CONSTRAINT_PRIMARYKEY) {
      throw UniqueViolation(message);
    }
    throw StoreError(message);
  }

  sqlite3_stmt* Prepare(std::string_view sql) {
    auto found = statements_.find(std::string(sql));
    if (found != statements_.end()) return found->second.get();
    sqlite3_stmt* stmt = nullptr;
    const int rc = sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
    if (rc != SQLITE_OK) Fail(rc, sqlite3_errmsg(db_));
    statements_.emplace(std::string(sql), Statement(stmt));
    return stmt;
  }

  // Where "$1" ... "$n" are bound in a statement (0: not used), looked up
  // by name once a statement rather than at every run.
  const std::vector<int>& ParameterIndexes(sqlite3_stmt* stmt, size_t n) {
    std::vector<int>& at = parameter_indexes_[stmt];
    for (size_t i = at.size(); i < n; ++i) {
      at.push_back(sqlite3_bind_parameter_index(stmt, ("$" + std::to_string(i + 1)).c_str()));
    }
    return at;
  }

  // Runs a bound statement to its end and resets it for the next use.
  void Step(sqlite3_stmt* stmt, const RowFn& row) {
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
      if (row) row(SqliteRow(stmt));
    }
    sqlite3_reset(stmt);
    sqlite3_clear_bindings(stmt);
    if (rc != SQLITE_DONE) Fail(rc, sqlite3_errmsg(db_));
  }

  static void Bind(sqlite3_stmt* stmt, int at, const Value& value) {
    switch (value.kind) {
      case Value::kNull:
        sqlite3_bind_null(stmt, at);
        break;
      case Value::kInt:
        sqlite3_bind_int64(stmt, at, value.number);
        break;
      case Value::kText:
        sqlite3_bind_text(stmt, at, value.text.data(), static_cast<int>(value.text.size()),
                          SQLITE_STATIC);
        break;
    }
  }
  static void BindText(sqlite3_stmt* stmt, int at, const std::string& text) {
    if (text.empty()) {
      sqlite3_bind_null(stmt, at);
    } else {
      sqlite3_bind_text(stmt, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }
  }
  static void BindCount(sqlite3_stmt* stmt, int at, int64_t value) {
    if (value < 0) {
      sqlite3_bind_null(stmt, at);
    } else {
      sqlite3_bind_int64(stmt, at, value);
    }
  }
  static void BindCommon(sqlite3_stmt* stmt, const CallValues& v) {
    sqlite3_bind_int64(stmt, 1, v.switch_id);
    sqlite3_bind_int64(stmt, 2, v.source_id);
    sqlite3_bind_int64(stmt, 3, v.position);
    BindText(stmt, 4, v.received_utc);
    sqlite3_bind_text(stmt, 5, v.raw.data(), static_cast<int>(v.raw.size()), SQLITE_STATIC);
  }

  std::string name_;
  std::string bulk_lock_path_;
  int bulk_lock_ = -1;
  sqlite3* db_ = nullptr;
  std::unordered_map<std::string, Statement> statements_;
  std::unordered_map<sqlite3_stmt*, std::vector<int>> parameter_indexes_;
  sqlite3_stmt* costs_ = nullptr;     // the upsert of one price, held in statements_
  sqlite3_stmt* keys_ = nullptr;      // the update of its sort key, held there too
  sqlite3_stmt* new_keys_ = nullptr;  // the keys of a call stored, held there too
  bool keys_later_ = false;           // the price keys set at EndBulk
};

}  // namespace

std::unique_ptr<Connection> ConnectSqlite(const std::string& path, const std::string& name) {
  return std::make_unique<SqliteConnection>(path, name);
}

}  // namespace velqua_store
