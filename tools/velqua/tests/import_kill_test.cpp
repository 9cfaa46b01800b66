// `velqua import` killed midway (SIGKILL, a real child process) and run
// again stores every record exactly once, on both engines; a SQLite store
// whose bulk load died gets its query indexes back when next opened.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "store_test_support.h"

extern char** environ;

namespace velqua_cli {
namespace {

using velqua_store_testing::Engine;

// Enough that the import runs for a good part of a second on a fast machine.
constexpr int kRecords = 200000;

// Hicom long-format records, all different, one in a hundred unrecognised;
// returns each record's byte offset.
std::vector<int64_t> WriteRecords(const std::string& path) {
  std::ofstream out(path, std::ios::binary);
  std::vector<int64_t> offsets;
  int64_t offset = 0;
  char line[128];
  for (int i = 0; i < kRecords; ++i) {
    const int minute = i % 1440, day = 1 + i / 1440 % 28;
    if (i % 100 == 99) {
      std::snprintf(line, sizeof line, "Hicom 150 E Office  -  call charge printout %d\r\n", i);
    } else {
      std::snprintf(line, sizeof line,
                    "%02d.03.26 %02d:%02d:%02d %3d %6d       00:%02d:%02d %-20s%12s %2d\r\n", day,
                    minute / 60, minute % 60, i % 60, 1 + i % 40, 100 + i % 400, i % 60, i % 59,
                    ("0891" + std::to_string(i)).c_str(), "1.20", 2);
    }
    offsets.push_back(offset);
    out << line;
    offset += static_cast<int64_t>(std::string(line).size());
  }
  return offsets;
}

pid_t StartImport(const std::string& db, const std::string& file, const std::string& log) {
  std::vector<std::string> args = {
      VELQUA_PROGRAM, "import", "--db",    db,
      "--switch",     "hq",     "-c",      VELQUA_SOURCE_DIR "/examples/hicom/hicom.json",
      "--year",       "2026",   "--batch", "500",
      "--source",     "big",    file};
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 2, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  pid_t pid = 0;
  EXPECT_EQ(posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

// The checkpoint of the import's source once a batch is committed, 0 before.
// Read only: a write would wait for the import's writer, which holds the
// database's one write lock nearly all the time, and see the checkpoint only
// once the import has ended.
int64_t Checkpoint(velqua_store::Store& store, const std::string& db, Engine engine) {
  if (engine != Engine::kSqlite) {
    if (!store.FindSwitch("hq")) return 0;
    return store.OpenSource("hq", "big", "file").checkpoint.value_or(0);
  }
  sqlite3* handle = nullptr;
  int64_t checkpoint = 0;
  if (sqlite3_open_v2(db.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(handle, "SELECT checkpoint FROM sources WHERE name = 'big'", -1, &stmt,
                           nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
      checkpoint = sqlite3_column_int64(stmt, 0);
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close(handle);
  return checkpoint;
}

std::string ReadLog(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

int SqliteIndexes(const std::string& path) {
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  sqlite3_stmt* stmt = nullptr;
  sqlite3_prepare_v2(
      db,
      "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND tbl_name IN ('calls', "
      "'call_keys')",
      -1, &stmt, nullptr);
  sqlite3_step(stmt);
  const int n = sqlite3_column_int(stmt, 0);
  sqlite3_finalize(stmt);
  sqlite3_close(db);
  return n;
}

class ImportKill : public ::testing::TestWithParam<Engine> {};

TEST_P(ImportKill, AnImportKilledMidwayAndRunAgainStoresEveryRecordOnce) {
  const std::string dir = velqua_store_testing::TempDir(velqua_store_testing::Name());
  const std::string file = dir + "/records.txt", log = dir + "/import.log";
  const std::vector<int64_t> offsets = WriteRecords(file);
  const std::string db = GetParam() == Engine::kSqlite
                             ? dir + "/calls.db"
                             : velqua_store_testing::PgTestServer::Shared().NewDatabase();
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(db);

  const pid_t first = StartImport(db, file, log);
  int status = 0;
  pid_t ended = 0;
  while (Checkpoint(*store, db, GetParam()) == 0 &&
         (ended = ::waitpid(first, &status, WNOHANG)) == 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  if (ended == 0) {
    ::kill(first, SIGKILL);
    ::waitpid(first, &status, 0);
  }
  ASSERT_TRUE(WIFSIGNALED(status)) << "the import ended before it was killed: " << ReadLog(log);
  const int64_t stopped_at = Checkpoint(*store, db, GetParam());
  EXPECT_GT(stopped_at, 0);
  EXPECT_LT(stopped_at, offsets.back());
  if (GetParam() == Engine::kSqlite) {
    store = velqua_store::OpenStore(db);  // no load runs now: the indexes are built again
    // Eight for the queries, four for the search's orders, one for the
    // unique origin.
    EXPECT_EQ(SqliteIndexes(db), 13);
  }

  const pid_t second = StartImport(db, file, log);
  ::waitpid(second, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << ReadLog(log);
  std::vector<int64_t> stored;
  for (const velqua_store::RawRecord& r :
       store->RecentRecords(store->OpenSource("hq", "big", "file"), 0, "")) {
    stored.push_back(r.position);
  }
  EXPECT_EQ(stored, offsets);  // each record once, none lost
  EXPECT_EQ(store->CountUnrecognised("hq"), kRecords / 100);
  if (GetParam() == Engine::kSqlite) {
    EXPECT_EQ(SqliteIndexes(db), 13);
  }
  store.reset();
  std::filesystem::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Engines, ImportKill, ::testing::Values(Engine::kSqlite, Engine::kPostgres),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_cli
