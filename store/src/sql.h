// What the store asks of a database engine: statements with $1, $2 ...
// parameters, transactions, and the bulk writes of calls and unrecognised
// records. SqlStore (sql_store.h) holds the logic once for both engines.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "values.h"
#include "velqua/store/store.h"

namespace velqua_store {

struct CostRow;

// A statement parameter: NULL, an integer or a text.
struct Value {
  enum Kind { kNull, kInt, kText } kind = kNull;
  int64_t number = 0;
  std::string text;

  Value() = default;
  Value(int64_t n) : kind(kInt), number(n) {}  // NOLINT: parameters read as plain values
  Value(int32_t n) : kind(kInt), number(n) {}  // NOLINT
  Value(std::string t) : kind(kText), text(std::move(t)) {}  // NOLINT
  Value(const char* t) : kind(kText), text(t) {}             // NOLINT
  // A text, or NULL when empty.
  static Value TextOrNull(std::string t) { return t.empty() ? Value() : Value(std::move(t)); }
};

// One row of a result; columns by 0-based index.
class ResultRow {
 public:
  virtual ~ResultRow() = default;
  virtual bool IsNull(int column) const = 0;
  virtual int64_t Int(int column) const = 0;
  virtual std::string Text(int column) const = 0;
  // The same into `out`, "" for NULL, reusing its storage (a loop over many
  // rows then allocates nothing).
  virtual void TextInto(int column, std::string& out) const {
    out = IsNull(column) ? std::string() : Text(column);
  }
};

using RowFn = std::function<void(const ResultRow&)>;

// A unique key was violated: another writer stored the same record between
// our check and our write. The transaction is lost; the batch is retried.
class UniqueViolation : public StoreError {
 public:
  using StoreError::StoreError;
};

class Connection {
 public:
  virtual ~Connection() = default;

  // Runs one statement; `row` gets each result row. Returns the number of
  // rows it changed. Throws StoreError, ConnectionLost or UniqueViolation.
  virtual int64_t Run(std::string_view sql, const std::vector<Value>& params = {},
                      const RowFn& row = nullptr) = 0;
  // As Run, for a query whose rows may be many (a year's calls): each row
  // is handed to `row` as the engine sends it, none held before, so that
  // memory stays the same however many there are. `row` must not use this
  // connection; after a failure, or an exception thrown by `row`, the
  // connection is ready for the next statement.
  virtual void Stream(std::string_view sql, const std::vector<Value>& params, const RowFn& row) {
    Run(sql, params, row);
  }
  // Runs statements separated by ';' (no parameters).
  virtual void Script(const std::string& sql) = 0;

  // A write transaction (SQLite takes the write lock at once).
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  // Never throws: a failed rollback leaves the transaction to the server.
  virtual void Rollback() noexcept = 0;

  // Appends rows[0, n) to `calls` or to `unrecognised` (bulk: COPY in
  // PostgreSQL). With `costs` (one a call), each call's price, if kept, is
  // written with the call, keyed by the id the call gets (set in its
  // CostRow): the same transaction, no second pass over the calls.
  virtual void InsertCalls(const CallValues* rows, size_t n, CostRow* costs) = 0;
  virtual void InsertUnrecognised(const CallValues* rows, size_t n) = 0;
  // Writes the kept prices of stored calls (insert, or replace the price a
  // call had): by default multi-row upserts through Run (call_pricing.cpp).
  virtual void UpsertCosts(const CostRow* rows, size_t n);

  // After the schema is up to date: puts back what a bulk load that died
  // left undone (SQLite: its query indexes), unless one is running now.
  virtual void Repair() {}
  // A bulk load of about `records` records into a store of `stored` calls
  // begins or ends (SQLite drops its query indexes for a load larger than
  // what is stored, and builds them again at the end).
  virtual void BeginBulk(int64_t /*stored*/, int64_t /*records*/) {}
  // Pricing `calls` of the `stored` again begins (SQLite drops the index of
  // the price's order when they are many, and EndBulk builds it again).
  virtual void BeginBulkPricing(int64_t /*stored*/, int64_t /*calls*/) {}
  // Whether BeginBulkPricing weighs its counts: each is a read of the calls,
  // not made for an engine that would do nothing with them.
  virtual bool WeighsBulkPricing() const { return false; }
  virtual void EndBulk() {}

  // The schema's flavour of this engine: "sqlite" or "postgresql".
  virtual const char* engine() const = 0;
};

// Runs `work` in a write transaction of `db`: committed when it returns (its
// result is returned), rolled back when it throws.
template <typename Work>
auto InTransaction(Connection& db, Work work) {
  db.Begin();
  try {
    if constexpr (std::is_void_v<decltype(work())>) {
      work();
      db.Commit();
    } else {
      auto result = work();
      db.Commit();
      return result;
    }
  } catch (...) {
    db.Rollback();
    throw;
  }
}

}  // namespace velqua_store
