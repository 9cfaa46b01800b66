// The program as an administrator runs it on a site: the capture service's
// health (`velqua capture status` and its exit statuses) and its metrics
// scraped over loopback while it captures from an emulated switch; a store
// created unreadable by others; `purge`; `--mask-digits`.
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "capture_test.h"
#include "program_run.h"

namespace velqua_cli {
namespace {

using velqua_capture_test::Child;
using velqua_capture_test::FreePort;
using velqua_capture_test::TempDir;
using velqua_capture_test::WaitFor;

const std::string kExamples = VELQUA_SOURCE_DIR "/examples";

using Result = ProgramRun;

std::string WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

// A configuration: the store and spool in `dir`, the KX-TDA switch connected
// on `port` without a login, metrics on `metrics_port`.
std::string CaptureConfig(const std::string& dir, int port, int metrics_port) {
  return WriteFile(dir + "/capture.toml",
                   "store = \"calls.db\"\nspool = \"spool\"\nmetrics = \"127.0.0.1:" +
                       std::to_string(metrics_port) + "\"\n[[switch]]\nname = \"kx\"\nconfig = \"" +
                       kExamples + "/kx-tda/kx-tda.json\"\n[[switch.source]]\nname = \"lan\"\n" +
                       "kind = \"tcp-connect\"\nhost = \"127.0.0.1\"\nport = " +
                       std::to_string(port) + "\nretry_min = \"100ms\"\n");
}

// The value of the sample `line` starts with ("name{labels} "), or -1.
double Sample(const std::string& text, const std::string& line) {
  const size_t at = text.find("\n" + line);
  return at == std::string::npos ? -1 : std::stod(text.substr(at + 1 + line.size()));
}

// A service capturing from an emulated Panasonic switch, watched as a
// monitoring system watches it, from before its start to after its stop.
TEST(Operations, CaptureStatusAndMetricsFollowTheService) {
  const std::string dir = TempDir("ops-capture");
  const int port = FreePort(), metrics_port = FreePort();
  const std::string config = CaptureConfig(dir, port, metrics_port);

  Result r = Velqua({"capture", "status", "--config", config});
  EXPECT_EQ(r.status, 2) << r.out;
  EXPECT_EQ(r.FirstLine(), "CRITICAL: not running: no status in " + dir + "/spool/status.json");

  Child emulator({velqua_capture_test::EmulatorPath(), "panasonic", "--port", std::to_string(port),
                  "--user", "", "--records", kExamples + "/kx-tda/records.txt", "--rate", "50",
                  "--count", "1000000"});
  ASSERT_NE(emulator.WaitLine("panasonic"), "");
  Child service({VELQUA_PROGRAM, "capture", "--config", config}, dir + "/service.log");

  EXPECT_TRUE(WaitFor([&] {
    return (r = Velqua({"capture", "status", "--config", config})).status == 0;
  })) << r.out;
  EXPECT_EQ(r.FirstLine().rfind("OK: running, pid " + std::to_string(service.pid()), 0), 0u)
      << r.out;
  EXPECT_NE(r.FirstLine().find("; 1 of 1 sources connected"), std::string::npos) << r.out;

  httplib::Client scraper("127.0.0.1", metrics_port);
  const std::string labels = "{stream=\"lan\",source=\"lan\",switch=\"kx\"} ";
  std::string metrics;
  std::string content_type;
  EXPECT_TRUE(WaitFor([&] {
    const httplib::Result got = scraper.Get("/metrics");
    if (!got || got->status != 200) return false;
    metrics = got->body;
    content_type = got->get_header_value("Content-Type");
    return Sample(metrics, "velqua_capture_records_total" + labels) >= 20;
  })) << metrics;
  EXPECT_EQ(content_type, "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_EQ(Sample(metrics, "velqua_capture_connected" + labels), 1);
  EXPECT_GT(Sample(metrics, "velqua_capture_received_bytes_total" + labels), 0);
  EXPECT_GE(Sample(metrics, "velqua_capture_spool_pending_bytes "), 0);
  EXPECT_GT(Sample(metrics, "velqua_capture_start_time_seconds "), 1.7e9);

  emulator.Stop(SIGTERM);  // the switch goes away
  EXPECT_TRUE(WaitFor([&] {
    return (r = Velqua({"capture", "status", "--config", config})).status == 1;
  })) << r.out;
  EXPECT_NE(r.FirstLine().find("; 0 of 1 sources connected"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\n  lan: disconnected since "), std::string::npos) << r.out;
  const httplib::Result after = scraper.Get("/metrics");
  ASSERT_TRUE(after);
  EXPECT_EQ(Sample(after->body, "velqua_capture_connected" + labels), 0);

  EXPECT_EQ(service.Stop(SIGTERM), 0);
  r = Velqua({"capture", "status", "--config", config});
  EXPECT_EQ(r.status, 2) << r.out;
  EXPECT_EQ(r.FirstLine().rfind("CRITICAL: not running: last status written ", 0), 0u) << r.out;
  EXPECT_FALSE(scraper.Get("/metrics"));  // the metrics stop with the service
}

// A configuration with a mistake: the service refuses to start with the
// status systemd is told not to restart on, and the status is UNKNOWN.
TEST(Operations, CaptureConfigurationMistakeIsNotRestartedAndUnknown) {
  const std::string dir = TempDir("ops-bad-config");
  const std::string config =
      WriteFile(dir + "/capture.toml",
                "store = \"calls.db\"\nspool = \"spool\"\nmetrics = \"0.0.0.0:9465\"\n");
  Result r = Velqua({"capture", "--config", config});
  EXPECT_EQ(r.status, 78);
  EXPECT_EQ(r.err, "velqua: " + config +
                       ":3: metrics: \"0.0.0.0:9465\" is not a loopback port: \"9465\", "
                       "\"127.0.0.1:9465\" or \"[::1]:9465\" (the metrics are served to this host "
                       "only)\n");
  r = Velqua({"capture", "status", "--config", config});
  EXPECT_EQ(r.status, 3);
  EXPECT_EQ(r.FirstLine().rfind("UNKNOWN: " + config + ":3: metrics:", 0), 0u) << r.out;
}

// Hicom records on three days, and one line no configuration reads (Hicom
// prints when a call ended: the fourth call started at midnight exactly),
// copied with a modification time of 2026-03-05 (when the import takes them
// as received).
std::string RecordsFile(const std::string& dir) {
  const std::string path = WriteFile(
      dir + "/records.txt", velqua_capture_test::ReadFile(
                                VELQUA_SOURCE_DIR "/tools/velqua/tests/data/hicom-three-days.txt"));
  const timeval times[2] = {{1772668800, 0}, {1772668800, 0}};  // 2026-03-05T00:00:00Z
  ::utimes(path.c_str(), times);
  return path;
}

std::vector<std::string> Import(const std::string& db, const std::string& records) {
  return {"import", "--db", db, "--switch", "hq", "-c", kExamples + "/hicom/hicom.json", records};
}

// On SQLite: the purge's statements are the same on PostgreSQL, whose month
// tables the store's own cases purge.
TEST(Purge, RemovesWhatIsOlderThanTheDayAndNothingComesBack) {
  const std::string dir = TempDir("ops-purge");
  const std::string db = dir + "/calls.db";
  const std::string records = RecordsFile(dir);
  ASSERT_EQ(Velqua(Import(db, records)).status, 0);
  ASSERT_EQ(Velqua({"rate", "--db", db, "--plan", kExamples + "/rating/hicom-plan.toml"}).status,
            0);
  // A reader holding the SQLite file open, as a running capture service
  // does: the purge's own close does not fold the write-ahead log back.
  sqlite3* reader = nullptr;
  ASSERT_EQ(sqlite3_open(db.c_str(), &reader), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(reader, "SELECT COUNT(*) FROM calls", nullptr, nullptr, nullptr),
            SQLITE_OK);

  const struct {
    const char* name;
    std::vector<std::string> args;
    int status;
    std::string out, err;
    size_t calls_left;
  } steps[] = {
      // clang-format off
      {"a dry run counts", {"purge", "--db", db, "--before", "2026-03-10", "--dry-run"}, 0, "would remove 3 calls, 1 unrecognised records and 0 events before 2026-03-10\n", "", 5},
      {"a day that does not exist", {"purge", "--db", db, "--before", "2026-02-30"}, 1, "", "velqua: --before: expected a date YYYY-MM-DD, got '2026-02-30'\n", 5},
      {"an unknown switch", {"purge", "--db", db, "--before", "2026-03-10", "--switch", "branch"}, 1, "", "velqua: database '" + db + "' has no switch 'branch'\n", 5},
      {"calls before the day, by their start; the unrecognised record by when it came", {"purge", "--db", db, "--before", "2026-03-10", "--switch", "hq"}, 0, "removed 3 calls, 1 unrecognised records and 0 events before 2026-03-10 of switch hq\n", "", 2},
      {"again: nothing left to remove", {"purge", "--db", db, "--before", "2026-03-10"}, 0, "removed 0 calls, 0 unrecognised records and 0 events before 2026-03-10\n", "", 2},
      // clang-format on
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.name);
    const Result r = Velqua(step.args);
    EXPECT_EQ(r.status, step.status);
    EXPECT_EQ(r.out, step.out);
    EXPECT_EQ(r.err, step.err);
    const Result calls = Velqua({"calls", "--db", db, "--format", "csv"});
    EXPECT_EQ(static_cast<size_t>(std::count(calls.out.begin(), calls.out.end(), '\n')),
              1 + step.calls_left);
  }
  const Result left = Velqua({"calls", "--db", db, "--format", "jsonl"});
  EXPECT_EQ(left.out.find("0301234567"), std::string::npos);  // raw records went with their calls
  EXPECT_NE(left.out.find("\"start\":\"2026-03-10T00:00:00\""), std::string::npos) << left.out;

  // Importing the file again brings nothing back: the import goes on from
  // where it stopped.
  ASSERT_EQ(Velqua(Import(db, records)).status, 0);
  const Result again = Velqua({"calls", "--db", db, "--format", "csv"});
  EXPECT_EQ(std::count(again.out.begin(), again.out.end(), '\n'), 3);
  // What was removed left the file's bytes too, its log included.
  EXPECT_EQ(velqua_capture_test::ReadFile(db).find("0301234567"), std::string::npos);
  EXPECT_EQ(velqua_capture_test::ReadFile(db + "-wal").find("0301234567"), std::string::npos);
  // The prices of the removed calls went with them: one outgoing call is
  // left, and only outgoing calls are priced.
  int64_t prices = -1;
  sqlite3_exec(
      reader, "SELECT COUNT(*) FROM call_costs",
      [](void* n, int, char** v, char**) {
        *static_cast<int64_t*>(n) = std::stoll(v[0]);
        return 0;
      },
      &prices, nullptr);
  EXPECT_EQ(prices, 1);
  sqlite3_close(reader);
}

// A new store holds who called whom: its file, and the write-ahead log
// beside it, are readable by the owner and the group only.
TEST(Operations, NewStoreIsReadableByOwnerAndGroupOnly) {
  const std::string dir = TempDir("ops-modes");
  const mode_t old = ::umask(022);
  const Result r = Velqua(Import(dir + "/calls.db", RecordsFile(dir)));
  ::umask(old);
  ASSERT_EQ(r.status, 0) << r.err;
  for (const std::string& file : {dir + "/calls.db", dir + "/calls.db-wal"}) {
    SCOPED_TRACE(file);
    struct stat st {};
    if (::stat(file.c_str(), &st) != 0) continue;  // no log left once checkpointed
    EXPECT_EQ(st.st_mode & 0777, 0640u);
  }
}

// --mask-digits hides the end of every dialled number, and nothing else, in
// each output form of translate and calls, the raw records shown included.
TEST(Operations, MaskDigitsHidesTheEndOfDialledNumbersInEveryOutput) {
  const std::string dir = TempDir("ops-mask");
  const std::string db = dir + "/calls.db";
  const std::string records = RecordsFile(dir);
  ASSERT_EQ(Velqua(Import(db, records)).status, 0);
  const std::vector<std::string> translate = {"translate", "-c",   kExamples + "/hicom/hicom.json",
                                              "--year",    "2026", records};
  const std::vector<std::string> calls = {"calls", "--db", db};
  const std::vector<std::string> numbers = {"089123456", "0301234567", "017612345678",
                                            "004312345678", "0891234"};
  for (const auto& base : {translate, calls}) {
    for (const char* format : {"table", "csv", "jsonl", "cdr-csv"}) {
      if (base[0] == "translate" && std::string(format) == "cdr-csv") continue;
      SCOPED_TRACE(base[0] + " " + format);
      std::vector<std::string> plain_args = base;
      plain_args.insert(plain_args.end(), {"--format", format});
      std::vector<std::string> masked_args = plain_args;
      masked_args.insert(masked_args.end(), {"--mask-digits", "4"});
      const Result plain = Velqua(plain_args), masked = Velqua(masked_args);
      ASSERT_EQ(masked.status, 0) << masked.err;
      std::string expected = plain.out;
      for (const std::string& n : numbers) {
        EXPECT_NE(plain.out.find(n), std::string::npos) << n;
        EXPECT_EQ(masked.out.find(n), std::string::npos) << n;
        const std::string hidden = n.substr(0, n.size() - 4) + "XXXX";
        for (size_t at = expected.find(n); at != std::string::npos; at = expected.find(n, at)) {
          expected.replace(at, n.size(), hidden);
        }
      }
      EXPECT_EQ(masked.out, expected);
    }
  }
}

}  // namespace
}  // namespace velqua_cli
