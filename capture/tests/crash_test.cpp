// The capture service across crashes: a kill inside a connection's re-sent
// part, events recorded once, a followed file rotated or truncated while the
// service is down, two services on one spool, a refused login.
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "capture_test.h"
#include "service_support.h"

namespace velqua_capture_test {
namespace {

struct StoredEvent {
  std::string kind;
  int64_t count;
  std::string detail;
};

// The events a SQLite store holds, in the order they were written.
std::vector<StoredEvent> StoredEvents(const std::string& store) {
  std::vector<StoredEvent> events;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(store.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, "SELECT kind, count, detail FROM events ORDER BY id", -1, &stmt,
                       nullptr);
    while (stmt != nullptr && sqlite3_step(stmt) == SQLITE_ROW) {
      events.push_back({reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)),
                        sqlite3_column_int64(stmt, 1),
                        reinterpret_cast<const char*>(sqlite3_column_text(stmt, 2))});
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close(db);
  return events;
}

std::vector<StoredEvent> OfKind(const std::vector<StoredEvent>& events, const std::string& kind) {
  std::vector<StoredEvent> out;
  std::copy_if(events.begin(), events.end(), std::back_inserter(out),
               [&](const StoredEvent& e) { return e.kind == kind; });
  return out;
}

size_t LinesStarting(Child& child, const std::string& prefix) {
  const std::vector<std::string> lines = child.lines();
  return static_cast<size_t>(std::count_if(
      lines.begin(), lines.end(), [&](const std::string& l) { return l.rfind(prefix, 0) == 0; }));
}

// A switch that reconnects at once and re-sends its last 100 records, then
// stays quiet (for as long as the test holds it, however slow the machine);
// the service is killed while the connection is in that re-sent part,
// before any new record. After the restart each record is stored once, and
// each event once.
TEST(CaptureCrash, AKillInsideTheResentPartStoresNothingTwice) {
  const std::string dir = TempDir("kill-resent");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 300);
  const std::string hold = dir + "/hold";
  std::ofstream(hold).close();
  auto service = StartService(config, dir);
  auto pusher = Pusher(port, dir + "/records.txt", "0",
                       {"--resend", "100", "--cut-every", "200", "--hold", hold});
  // The cut after 200 records; the connection made again at once re-sends 100.
  const std::chrono::seconds generous(60);
  ASSERT_TRUE(
      WaitFor([&] { return LinesStarting(*pusher, "ipoffice: connected") >= 2; }, generous));
  ASSERT_TRUE(
      WaitFor([&] { return SumOfDropped(ReadFile(dir + "/service.log")) >= 100; }, generous))
      << ReadFile(dir + "/service.log");
  service->Stop(SIGKILL);
  service = StartService(config, dir);
  std::filesystem::remove(hold);  // the switch's next call
  EXPECT_NE(pusher->WaitLine("played", std::chrono::seconds(60)), "");
  EXPECT_TRUE(WaitForRecords(store, records.size())) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), records);

  const std::vector<StoredEvent> events = StoredEvents(store);
  EXPECT_EQ(OfKind(events, "connect").size(), 3u);  // the first, after the cut, after the kill
  const auto dropped = OfKind(events, "resent-dropped");
  ASSERT_EQ(dropped.size(), 2u);
  EXPECT_EQ(dropped[0].count, 100);  // decided again after the kill, recorded once
  EXPECT_GE(dropped[1].count, 98);   // what the third connection re-sent before its new ones
  const auto disconnects = OfKind(events, "disconnect");
  ASSERT_EQ(disconnects.size(), 3u);  // the cut, the kill, the stop
  EXPECT_EQ(disconnects[1].detail, "the service stopped without ending the connection");
}

// The query indexes of a SQLite store the service writes, by name, and
// whether it has its calls table yet.
struct Schema {
  bool calls = false;
  std::vector<std::string> indexes;
};
Schema SchemaOf(const std::string& store) {
  Schema schema;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(store.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(
        db, "SELECT type, name FROM sqlite_master WHERE tbl_name IN ('calls', 'call_keys')", -1,
        &stmt, nullptr);
    while (stmt != nullptr && sqlite3_step(stmt) == SQLITE_ROW) {
      const std::string type = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
      const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 1));
      if (type == "table" && name == "calls") schema.calls = true;
      if (type == "index" && name.rfind("call", 0) == 0) schema.indexes.push_back(name);
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close(db);
  std::sort(schema.indexes.begin(), schema.indexes.end());
  return schema;
}

// A backlog far larger than the store (a file of 40,000 records found at
// start) is loaded as an import loads: the store's query indexes are down
// while it is stored. A kill in the middle leaves them down; the next start
// builds them again and stores the rest, each record once, and the indexes
// are all back once the backlog is stored.
TEST(CaptureCrash, ABacklogLoadedInBulkSurvivesAKill) {
  const std::string dir = TempDir("bulk");
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", FollowSource("smdr.log"));
  const std::vector<std::string> records = GenerateRecords(dir + "/smdr.log", 40000);
  const std::vector<std::string> indexes = {
      "call_keys_cost", "calls_account_code", "calls_callback",        "calls_dialled",
      "calls_duration", "calls_extension",    "calls_extension_start", "calls_missed_start",
      "calls_start",    "calls_trunk",        "calls_trunk_held",      "calls_trunk_start"};
  auto service = StartService(config, dir);
  const std::chrono::seconds generous(60);
  ASSERT_TRUE(WaitFor(
      [&] {
        const Schema now = SchemaOf(store);
        return now.calls && now.indexes.empty();
      },
      generous))
      << "the backlog was not loaded in bulk: " << ReadFile(dir + "/service.log");
  service->Stop(SIGKILL);
  service = StartService(config, dir);
  EXPECT_TRUE(WaitForRecords(store, records.size())) << ReadFile(dir + "/service.log");
  EXPECT_TRUE(WaitFor([&] { return SchemaOf(store).indexes == indexes; }, generous));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), records);
  EXPECT_EQ(SchemaOf(store).indexes, indexes);
}

// A followed file changed while the service was stopped: its unread tail is
// read first wherever rotation put it; when it is gone the gap is recorded.
// A folder whose name makes it a candidate (smdr.log.d) is no rotated file:
// it is passed over, never opened as a connection.
TEST(CaptureCrash, AFileRotatedOrTruncatedWhileStoppedIsReadToItsEnd) {
  namespace fs = std::filesystem;
  using Change = std::function<void(const std::string& dir)>;
  auto move_to = [](const std::string& to) {
    return [to](const std::string& dir) {
      fs::create_directories(fs::path(dir + "/" + to).parent_path());
      fs::rename(dir + "/smdr.log", dir + "/" + to);
    };
  };
  const struct {
    const char* name;
    std::string rotated;  // the source's `rotated` setting
    Change change;        // after the old file got its last records, before the new one starts
    bool lost;            // the old file's last records cannot be found
  } rows[] = {
      {"renamed to smdr.log.1", "", move_to("smdr.log.1"), false},
      {"renamed to smdr.log-20260101", "", move_to("smdr.log-20260101"), false},
      {"moved where the rotated pattern says", "archive/smdr-*.log", move_to("archive/smdr-1.log"),
       false},
      {"copied, then truncated", "",
       [](const std::string& dir) {
         fs::copy_file(dir + "/smdr.log", dir + "/smdr.log.0");
         fs::resize_file(dir + "/smdr.log", 0);
       },
       false},
      // A copy holding only what the last run read: the renamed file is the one
      // read on.
      {"renamed, beside a copy made before its last records", "",
       [](const std::string& dir) {
         const std::string text = ReadFile(dir + "/smdr.log");
         size_t read = 0;
         for (int i = 0; i < 10; ++i) read = text.find("\r\n", read) + 2;
         std::ofstream(dir + "/smdr.log.0", std::ios::binary) << text.substr(0, read);
         fs::rename(dir + "/smdr.log", dir + "/smdr.log.1");
       },
       false},
      {"renamed and removed", "", [](const std::string& dir) { fs::remove(dir + "/smdr.log"); },
       true},
      {"truncated without a copy", "",
       [](const std::string& dir) { fs::resize_file(dir + "/smdr.log", 0); }, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string dir = TempDir("rotated");
    const std::string store = dir + "/calls.db";
    const std::string config =
        WriteConfig(dir, store, "",
                    FollowSource("smdr.log") +
                        (row.rotated.empty() ? "" : "rotated = \"" + row.rotated + "\"\n"));
    const std::vector<std::string> all = GenerateRecords(dir + "/all.txt", 16);
    auto append = [&](size_t from, size_t to) {
      std::ofstream out(dir + "/smdr.log", std::ios::app);
      for (size_t i = from; i < to; ++i) out << all[i] << "\r\n";
    };
    append(0, 10);
    auto service = StartService(config, dir);
    ASSERT_TRUE(WaitForRecords(store, 10)) << ReadFile(dir + "/service.log");
    ASSERT_EQ(service->Stop(SIGTERM), 0);
    append(10, 13);  // written after the service stopped
    fs::create_directory(dir + "/smdr.log.d");
    row.change(dir);
    append(13, 16);  // the new file
    std::vector<std::string> expected = all;
    if (row.lost) expected.erase(expected.begin() + 10, expected.begin() + 13);
    service = StartService(config, dir);
    EXPECT_TRUE(WaitForRecords(store, expected.size())) << ReadFile(dir + "/service.log");
    EXPECT_EQ(service->Stop(SIGTERM), 0);
    EXPECT_EQ(StoredCalls(store), expected);
    const auto gaps = OfKind(StoredEvents(store), "gap");
    EXPECT_EQ(gaps.size(), row.lost ? 1u : 0u);
    const std::string log = ReadFile(dir + "/service.log");
    EXPECT_EQ(log.find("smdr.log.d"), std::string::npos) << log;
    EXPECT_EQ(log.find("was not found: what was written to it after that could not be read") !=
                  std::string::npos,
              row.lost)
        << log;
  }
}

// A run that found its followed file empty and was killed before reading
// anything knows the file by its inode alone. While it is down, records are
// written, the file copied and truncated, more written, the file renamed
// away and a new one started: each record is read once, the copy's too,
// and no gap is recorded.
TEST(CaptureCrash, AFileTheLastRunReadNothingOfIsReadWhole) {
  namespace fs = std::filesystem;
  const std::string dir = TempDir("read-nothing");
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", FollowSource("smdr.log"));
  const std::vector<std::string> all = GenerateRecords(dir + "/all.txt", 15);
  auto append = [&](size_t from, size_t to) {
    std::ofstream out(dir + "/smdr.log", std::ios::app);
    for (size_t i = from; i < to; ++i) out << all[i] << "\r\n";
  };
  std::ofstream(dir + "/smdr.log").close();
  auto service = StartService(config, dir);
  ASSERT_TRUE(WaitFor([&] { return fs::exists(dir + "/spool/follow-log"); }))
      << ReadFile(dir + "/service.log");
  service->Stop(SIGKILL);
  append(0, 5);
  fs::copy_file(dir + "/smdr.log", dir + "/smdr.log.2");
  fs::resize_file(dir + "/smdr.log", 0);
  append(5, 10);
  fs::rename(dir + "/smdr.log", dir + "/smdr.log.1");
  append(10, 15);
  service = StartService(config, dir);
  EXPECT_TRUE(WaitForRecords(store, all.size())) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), all);
  EXPECT_TRUE(OfKind(StoredEvents(store), "gap").empty());
}

}  // namespace
}  // namespace velqua_capture_test
