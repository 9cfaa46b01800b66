// What the store's tests share: a fixture parameterised by engine that opens
// a new empty store for each test (a file in a temporary folder, or a new
// database on the shared throwaway PostgreSQL server), and records made
// from a few values.
#pragma once

#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "pg_test_server.h"
#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace velqua_store_testing {

enum class Engine { kSqlite, kPostgres };

inline std::string EngineName(const ::testing::TestParamInfo<Engine>& info) {
  return info.param == Engine::kSqlite ? "Sqlite" : "Postgres";
}

// Both engines, each test of a suite instantiated with them run on each.
inline auto BothEngines() { return ::testing::Values(Engine::kSqlite, Engine::kPostgres); }

// The running test's name, fit for a folder.
inline std::string Name() {
  const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test->test_suite_name()) + "-" + test->name();
  for (char& c : name) {
    if (c == '/') c = '-';
  }
  return name;
}

// A new empty store's URL for the running test.
inline std::string NewStoreUrl(Engine engine) {
  if (engine == Engine::kPostgres) return PgTestServer::Shared().NewDatabase();
  return TempDir(Name()) + "/calls.db";
}

class StoreTest : public ::testing::TestWithParam<Engine> {
 protected:
  StoreTest() : url_(NewStoreUrl(GetParam())), store_(velqua_store::OpenStore(url_)) {}
  ~StoreTest() override {
    store_.reset();
    if (GetParam() == Engine::kSqlite) std::filesystem::remove_all(TempDir(Name()));
  }

  // A switch put in the store (no time zone) and one of its sources.
  velqua_store::Source NewSource(const std::string& switch_name, const std::string& source) {
    store_->PutSwitch({switch_name, "", "", ""});
    return store_->OpenSource(switch_name, source, "capture");
  }

  std::string url_;
  std::unique_ptr<velqua_store::Store> store_;
};

// An outgoing call (by default) at `position`: extension, start
// "YYYY-MM-DD HH:MM:SS", trunk, dialled number, account code and call type.
inline velqua_store::Record Call(int64_t position, const std::string& extension,
                                 const std::string& start, const std::string& trunk = "01",
                                 const std::string& dialled = "5551234",
                                 const std::string& account = "", int32_t type = 2) {
  velqua_store::Record r;
  r.position = position;
  r.raw = start + " " + extension + " " + trunk + " " + dialled;
  r.received_utc = "2026-03-10T00:00:00Z";
  velqua_records::Row& row = r.row;
  row.type = type;
  row.has_fields = true;
  std::sscanf(start.c_str(), "%d-%d-%d", &row.year, &row.month, &row.day);
  int h = 0, m = 0, s = 0;
  std::sscanf(start.c_str() + 11, "%d:%d:%d", &h, &m, &s);
  row.time = h * 3600 + m * 60 + s;
  row.duration = 42;
  row.extension = velqua_records::U16(extension);
  row.trunk = velqua_records::U16(trunk);
  row.dialled = velqua_records::U16(dialled);
  row.account_code = velqua_records::U16(account);
  return r;
}

// A record no configuration recognised.
inline velqua_store::Record Unrecognised(int64_t position, const std::string& raw) {
  velqua_store::Record r;
  r.position = position;
  r.raw = raw;
  r.received_utc = "2026-03-10T00:00:00Z";
  return r;
}

// Runs `sql` (statements ended by ';') on the store's database through a
// connection of its own, as another program would; whether it succeeded.
inline bool RunSql(Engine engine, const std::string& url, const std::string& sql) {
  if (engine == Engine::kSqlite) {
    sqlite3* db = nullptr;
    const bool ok = sqlite3_open(url.c_str(), &db) == SQLITE_OK &&
                    sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    EXPECT_TRUE(ok) << sqlite3_errmsg(db);
    sqlite3_close(db);
    return ok;
  }
  PGconn* db = PQconnectdb(url.c_str());
  PGresult* r = PQexec(db, sql.c_str());
  const bool ok = PQresultStatus(r) == PGRES_COMMAND_OK || PQresultStatus(r) == PGRES_TUPLES_OK;
  EXPECT_TRUE(ok) << PQerrorMessage(db);
  PQclear(r);
  PQfinish(db);
  return ok;
}

// Sets the stored schema back to `version` after running `sql` on it.
inline void Downgrade(Engine engine, const std::string& url, const std::string& sql, int version) {
  RunSql(engine, url,
         sql +
             (engine == Engine::kSqlite ? "PRAGMA user_version = "
                                        : "DELETE FROM schema_migrations WHERE version > ") +
             std::to_string(version));
}

// The record as received at `utc`.
inline velqua_store::Record At(const std::string& utc, velqua_store::Record r) {
  r.received_utc = utc;
  return r;
}

// A file's bytes ("" when it cannot be read).
inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// SQL of data/older/ that takes a store back to an older version.
inline std::string OlderSql(const std::string& name) {
  const std::string sql = ReadFile(VELQUA_SOURCE_DIR "/store/tests/data/older/" + name + ".sql");
  EXPECT_FALSE(sql.empty()) << name << ".sql";
  return sql;
}

// What takes the day summaries away (and what later versions added), for a
// store of an older version.
inline std::string WithoutDaySummaries(Engine engine) {
  return OlderSql(std::string("without-day-summaries.") +
                  (engine == Engine::kSqlite ? "sqlite" : "postgresql"));
}

// Writes `text` as the whole of a file; its path back.
inline std::string WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

// The bundled hicom configuration with each `from` replaced by its `to`,
// written as `dir`/`name`.json; its path back.
inline std::string EditedHicom(const std::string& dir, const std::string& name,
                               const std::vector<std::pair<std::string, std::string>>& edits) {
  std::string json = ReadFile(VELQUA_SOURCE_DIR "/examples/hicom/hicom.json");
  for (const auto& [from, to] : edits) {
    const size_t at = json.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) json.replace(at, from.size(), to);
  }
  return WriteFile(dir + "/" + name + ".json", json);
}

}  // namespace velqua_store_testing
