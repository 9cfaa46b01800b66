// The PostgreSQL engine through libpq: statements with text parameters, bulk
// writes with COPY, and a lost connection reported as ConnectionLost and
// made again by the next transaction.
#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "call_pricing.h"
#include "engines.h"
#include "libpq.h"
#include "sql.h"

namespace velqua_store {
namespace {

struct ResultFree {
  decltype(&PQclear) clear;
  void operator()(PGresult* r) const { clear(r); }
};
using Result = std::unique_ptr<PGresult, ResultFree>;

class PgRow : public ResultRow {
 public:
  PgRow(const LibPq& pq, const PGresult* result, int row) : pq_(pq), result_(result), row_(row) {}
  bool IsNull(int column) const override { return pq_.PQgetisnull(result_, row_, column) != 0; }
  int64_t Int(int column) const override {
    return std::strtoll(pq_.PQgetvalue(result_, row_, column), nullptr, 10);
  }
  std::string Text(int column) const override {
    return std::string(pq_.PQgetvalue(result_, row_, column),
                       static_cast<size_t>(pq_.PQgetlength(result_, row_, column)));
  }

 private:
  const LibPq& pq_;
  const PGresult* result_;
  int row_;
};

// Appends a value in COPY's text form: NULL as \N, and backslash, tab, CR
// and LF escaped.
void AppendCopyText(std::string& out, const std::string& text) {
  if (text.empty()) {
    out += "\\N";
    return;
  }
  for (char c : text) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out += c;
    }
  }
}

void AppendCopyNumber(std::string& out, int64_t value) {
  if (value < 0) {
    out += "\\N";
  } else {
    out += std::to_string(value);
  }
}

void AppendCommon(std::string& out, const CallValues& v) {
  out += std::to_string(v.switch_id);
  out += '\t';
  out += std::to_string(v.source_id);
  out += '\t';
  out += std::to_string(v.position);
  out += '\t';
  AppendCopyText(out, v.received_utc);
  out += '\t';
  AppendCopyText(out, v.raw);
}

// The parameters as libpq takes them: text, a null pointer for NULL.
struct ParamTexts {
  explicit ParamTexts(const std::vector<Value>& params)
      : texts(params.size()), values(params.size(), nullptr) {
    for (size_t i = 0; i < params.size(); ++i) {
      if (params[i].kind == Value::kNull) continue;
      texts[i] = params[i].kind == Value::kInt ? std::to_string(params[i].number) : params[i].text;
      values[i] = texts[i].c_str();
    }
  }
  ParamTexts(const ParamTexts&) = delete;  // values point into texts
  ParamTexts& operator=(const ParamTexts&) = delete;
  std::vector<std::string> texts;
  std::vector<const char*> values;
};

class PgConnection : public Connection {
 public:
  PgConnection(const std::string& url, const std::string& name)
      : pq_(Pq(name)), url_(url), name_(name) {
    Connect();
  }
  ~PgConnection() override { pq_.PQfinish(conn_); }

  int64_t Run(std::string_view sql, const std::vector<Value>& params, const RowFn& row) override {
    EnsureConnected();
    const ParamTexts texts(params);
    Result result(pq_.PQexecParams(conn_, std::string(sql).c_str(), static_cast<int>(params.size()),
                                   nullptr, texts.values.data(), nullptr, nullptr, 0),
                  ResultFree{pq_.PQclear});
    Check(result.get());
    if (row && pq_.PQresultStatus(result.get()) == PGRES_TUPLES_OK) {
      for (int r = 0; r < pq_.PQntuples(result.get()); ++r) row(PgRow(pq_, result.get(), r));
    }
    const char* changed = pq_.PQcmdTuples(result.get());
    return *changed == '\0' ? 0 : std::strtoll(changed, nullptr, 10);
  }

  // libpq's single-row mode: a result for each row, then the last one,
  // empty, that ends them. Every result is read even after a failure, so
  // that the connection is left idle.
  void Stream(std::string_view sql, const std::vector<Value>& params, const RowFn& row) override {
    EnsureConnected();
    const ParamTexts texts(params);
    if (pq_.PQsendQueryParams(conn_, std::string(sql).c_str(), static_cast<int>(params.size()),
                              nullptr, texts.values.data(), nullptr, nullptr, 0) == 0) {
      Result failed(nullptr, ResultFree{pq_.PQclear});
      Check(failed.get());
    }
    pq_.PQsetSingleRowMode(conn_);
    std::exception_ptr thrown;
    while (PGresult* next = pq_.PQgetResult(conn_)) {
      Result result(next, ResultFree{pq_.PQclear});
      if (thrown) continue;
      try {
        if (pq_.PQresultStatus(next) == PGRES_SINGLE_TUPLE) {
          if (row) row(PgRow(pq_, next, 0));
        } else {
          Check(next);
        }
      } catch (...) {
        thrown = std::current_exception();
      }
    }
    if (thrown) std::rethrow_exception(thrown);
  }

  void Script(const std::string& sql) override {
    EnsureConnected();
    Result result(pq_.PQexec(conn_, sql.c_str()), ResultFree{pq_.PQclear});
    Check(result.get());
  }

  void Begin() override {
    EnsureConnected();
    Result result(pq_.PQexec(conn_, "BEGIN"), ResultFree{pq_.PQclear});
    Check(result.get());
    in_transaction_ = true;
  }
  void Commit() override {
    in_transaction_ = false;
    Result result(pq_.PQexec(conn_, "COMMIT"), ResultFree{pq_.PQclear});
    Check(result.get());
  }
  void Rollback() noexcept override {
    in_transaction_ = false;
    if (pq_.PQstatus(conn_) == CONNECTION_OK && pq_.PQtransactionStatus(conn_) != PQTRANS_IDLE) {
      pq_.PQclear(pq_.PQexec(conn_, "ROLLBACK"));
    }
  }

  void InsertCalls(const CallValues* rows, size_t n, CostRow* costs) override {
    if (n == 0) return;
    // Priced calls are given their ids first, from the column's own
    // sequence, so that their prices can be copied after them.
    if (costs != nullptr) TakeCallIds(costs, n);
    Copy(costs != nullptr
             ? "COPY calls (id, switch_id, source_id, position, received_utc, raw, type, "
               "attribute, start, start_utc, duration, ring, dialled, extension, trunk, "
               "receiving_extension, receiving_trunk, account_code, extension_random, ended, "
               "ended_utc, date_received, switch_charge, extras, line) FROM STDIN"
             : "COPY calls (switch_id, source_id, position, received_utc, raw, type, attribute, "
               "start, start_utc, duration, ring, dialled, extension, trunk, receiving_extension, "
               "receiving_trunk, account_code, extension_random, ended, ended_utc, date_received, "
               "switch_charge, extras, line) FROM STDIN",
         rows, n, [rows, costs](std::string& out, const CallValues& v) {
           if (costs != nullptr) {
             out += std::to_string(costs[&v - rows].call_id);
             out += '\t';
           }
           AppendCommon(out, v);
           out += '\t';
           out += std::to_string(v.type);
           out += '\t';
           out += std::to_string(v.attribute);
           out += '\t';
           AppendCopyText(out, v.start);
           out += '\t';
           AppendCopyText(out, v.start_utc);
           out += '\t';
           AppendCopyNumber(out, v.duration);
           out += '\t';
           AppendCopyNumber(out, v.ring);
           for (const std::string& text : v.texts) {
             out += '\t';
             AppendCopyText(out, text);
           }
           out += v.extension_random ? "\t1\t" : "\t0\t";
           AppendCopyText(out, v.ended);
           out += '\t';
           AppendCopyText(out, v.ended_utc);
           out += v.date_received ? "\t1\t" : "\t0\t";
           AppendCopyText(out, v.switch_charge);
           out += '\t';
           AppendCopyText(out, v.extras);
           out += '\t';
           AppendCopyNumber(out, v.line);
           out += '\n';
         });
    if (costs == nullptr) return;
    Copy("COPY call_costs (call_id, cost, label, reason) FROM STDIN", costs, n,
         [](std::string& out, const CostRow& r) {
           if (!r.kept) return;
           out += std::to_string(r.call_id);
           out += '\t';
           AppendCopyText(out, r.cost ? *r.cost : std::string());
           out += '\t';
           AppendCopyNumber(out, r.label > 0 ? r.label : -1);
           out += '\t';
           AppendCopyText(out, r.reason);
           out += '\n';
         });
  }

  void InsertUnrecognised(const CallValues* rows, size_t n) override {
    if (n == 0) return;
    Copy(
        "COPY unrecognised (switch_id, source_id, position, received_utc, raw, reason, line) "
        "FROM STDIN",
        rows, n, [](std::string& out, const CallValues& v) {
          AppendCommon(out, v);
          out += '\t';
          AppendCopyText(out, v.reason);
          out += '\t';
          AppendCopyNumber(out, v.line);
          out += '\n';
        });
  }

  const char* engine() const override { return "postgresql"; }

 private:
  void Connect() {
    pq_.PQfinish(conn_);
    conn_ = pq_.PQconnectdb(url_.c_str());
    if (pq_.PQstatus(conn_) != CONNECTION_OK) {
      const std::string why = FirstLine(conn_);
      pq_.PQfinish(conn_);
      conn_ = nullptr;
      throw ConnectionLost("database '" + name_ + "': cannot connect: " + why);
    }
    pq_.PQsetNoticeProcessor(
        conn_, [](void*, const char*) {}, nullptr);  // "already exists, skipping" and the like
    Result result(pq_.PQexec(conn_, "SET client_encoding = 'UTF8'"), ResultFree{pq_.PQclear});
    Check(result.get());
  }

  // A connection lost between transactions is made again; one lost inside a
  // transaction has lost the transaction, which the caller rolls back.
  void EnsureConnected() {
    if (pq_.PQstatus(conn_) == CONNECTION_OK) return;
    if (in_transaction_) throw ConnectionLost("database '" + name_ + "': connection lost");
    Connect();
  }

  std::string FirstLine(PGconn* conn) const {
    std::string message = pq_.PQerrorMessage(conn);
    const size_t end = message.find('\n');
    if (end != std::string::npos) message.resize(end);
    return message.empty() ? "unknown error" : message;
  }

  void Check(const PGresult* result) {
    const ExecStatusType status = pq_.PQresultStatus(result);
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK || status == PGRES_COPY_IN) {
      return;
    }
    const std::string message = "database '" + name_ + "': " + FirstLine(conn_);
    if (pq_.PQstatus(conn_) != CONNECTION_OK) throw ConnectionLost(message);
    const char* state = pq_.PQresultErrorField(result, PG_DIAG_SQLSTATE);
    if (state != nullptr && std::strcmp(state, "23505") == 0) throw UniqueViolation(message);
    throw StoreError(message);
  }

  // Sets the call ids of n prices, in increasing order, from the sequence
  // of calls.id.
  void TakeCallIds(CostRow* costs, size_t n) {
    std::vector<int64_t> ids;
    ids.reserve(n);
    Run("SELECT nextval(pg_get_serial_sequence('calls', 'id')) FROM generate_series(1, $1)",
        {static_cast<int64_t>(n)}, [&](const ResultRow& r) { ids.push_back(r.Int(0)); });
    if (ids.size() != n) throw StoreError("database '" + name_ + "': no ids for the calls");
    std::sort(ids.begin(), ids.end());
    for (size_t i = 0; i < n; ++i) costs[i].call_id = ids[i];
  }

  // Sends rows through COPY ... FROM STDIN in blocks of about 256 KiB.
  template <typename Row, typename Format>
  void Copy(const char* sql, const Row* rows, size_t n, Format format) {
    Result start(pq_.PQexec(conn_, sql), ResultFree{pq_.PQclear});
    Check(start.get());
    std::string block;
    block.reserve(kBlock + 4096);
    bool sent = true;
    for (size_t i = 0; i < n; ++i) {
      format(block, rows[i]);
      if (block.size() >= kBlock) {
        sent = pq_.PQputCopyData(conn_, block.data(), static_cast<int>(block.size())) == 1;
        block.clear();
        if (!sent) break;
      }
    }
    if (sent && !block.empty()) {
      sent = pq_.PQputCopyData(conn_, block.data(), static_cast<int>(block.size())) == 1;
    }
    pq_.PQputCopyEnd(conn_, sent ? nullptr : "the client could not send the rows");
    Result end(pq_.PQgetResult(conn_), ResultFree{pq_.PQclear});
    while (PGresult* more = pq_.PQgetResult(conn_)) pq_.PQclear(more);
    Check(end.get());
  }

  static constexpr size_t kBlock = 256 * 1024;
  const LibPq& pq_;
  std::string url_;
  std::string name_;
  PGconn* conn_ = nullptr;
  bool in_transaction_ = false;
};

}  // namespace

std::unique_ptr<Connection> ConnectPostgres(const std::string& url, const std::string& name) {
  return std::make_unique<PgConnection>(url, name);
}

}  // namespace velqua_store
