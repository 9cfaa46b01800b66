// The capture service across crashes: a kill inside a connection's re-sent
// part, events recorded once, a followed file rotated or truncated while the
// service is down, two services on one spool, a refused login.
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

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

const std::string kListen = "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = ";

// A switch that reconnects at once and re-sends its last 100 records, then
// stays quiet; the service is killed while the connection is in that
// re-sent part, before any new record. After the restart each record is
// stored once, and each event once.
TEST(CaptureCrash, AKillInsideTheResentPartStoresNothingTwice) {
  const std::string dir = TempDir("kill-resent");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", kListen + std::to_string(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 300);
  auto service = StartService(config, dir);
  Child pusher({EmulatorPath(), "ipoffice", "--port", std::to_string(port), "--records",
                dir + "/records.txt", "--rate", "0", "--resend", "100", "--cut-every", "200",
                "--quiet-ms", "2500", "--retry-ms", "50"});
  // The cut after 200 records; the connection made again at once re-sends 100.
  ASSERT_TRUE(WaitFor([&] { return LinesStarting(pusher, "ipoffice: connected") >= 2; }));
  ASSERT_TRUE(WaitFor([&] {
    return ReadFile(dir + "/service.log").find("100 re-sent records dropped") != std::string::npos;
  })) << ReadFile(dir + "/service.log");
  service->Stop(SIGKILL);
  service = StartService(config, dir);
  EXPECT_NE(pusher.WaitLine("played"), "");
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

}  // namespace
}  // namespace velqua_capture_test
