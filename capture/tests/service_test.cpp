// The capture service end to end: each kind of source against its emulator,
// into a real store, exactly once; stopping, restarting, a torn spool tail,
// a full disk, a reload. (A bad configuration: the program's own case, which
// runs `velqua capture` itself.)
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <fstream>

#include "capture_test.h"
#include "pg_test_server.h"
#include "service_support.h"
#include "velqua/capture/spool.h"
#include "velqua/capture/status.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_reader.h"
#include "velqua/texto.h"

namespace velqua_capture_test {
namespace {

const std::string kKxRecords = kExamples + "/kx-tda/records.txt";
const std::string kSamsung = kExamples + "/samsung-officeserv";
const std::string kHeadings =
    "[switch.framing]\npage_headings = ['*Date*Time*', "
    "'----------------------------------------*', '*===='"
    "]\n";
const std::vector<std::string> kHeadingLines = {"  Date", "-----"};

// The calls of a multi-line (Norstar) records file, each joined as the
// service joins them.
std::vector<std::string> NorstarCalls() {
  const std::u16string separator =
      velqua_records::LoadConfig(kExamples + "/norstar/norstar.json")->Separador();
  velqua_records::CallGatherer gatherer(separator);
  std::vector<std::string> calls;
  std::ifstream in(kExamples + "/norstar/records.txt", std::ios::binary);
  std::u16string call;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && gatherer.Add(velqua::DesdeAnsi(line), &call)) {
      calls.push_back(velqua::AUtf8(call));
    }
  }
  if (gatherer.Finish(&call)) calls.push_back(velqua::AUtf8(call));
  std::sort(calls.begin(), calls.end());
  return calls;
}

std::vector<std::string> Joined(std::vector<std::string> a, const std::vector<std::string>& b) {
  a.insert(a.end(), b.begin(), b.end());
  std::sort(a.begin(), a.end());
  return a;
}

TEST(CaptureService, EachKindOfSourceStoresEveryRecordOnce) {
  const struct {
    const char* name;
    std::vector<std::string> emulator;  // {port}, {path} replaced
    bool emulator_first;                // a server the service connects to
    std::string switch_toml, source_toml;
    std::vector<std::string> expected;
  } rows[] = {
      // clang-format off
      {"Panasonic TCP port with a login, cut every 11 records", {"panasonic", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--cut-every", "11"}, true, kHeadings, "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n" "port = {port}\nretry_min = \"50ms\"\n[[switch.source.login]]\nexpect = \"login: \"\nsend = " "\"SMDR\\r\\n\"\n" "[[switch.source.login]]\nexpect = \"Password: \"\nsend = \"PCCSMDR\\r\\n\"\n", RecordsOf(kKxRecords)},
      {"Samsung: NUL-ended records and form-feed headings",
       {"samsung", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--page-lines",
        "100"},
       true,
       kHeadings + "record_end = \"nul\"\nstrip_controls = true\n",
       "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
       "port = {port}\n",
       Joined(RecordsOf(kKxRecords),  // and the emulator's form-feed heading, stripped
              {"STN  CO  DIAL NUMBER               DATE   TIME  DURATION" + std::string(56, '=')})},
      {"IP Office pushing, cut every 7 records, re-sending 3", {"ipoffice", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--resend", "3", "--cut-every", "7", "--retry-ms", "50"}, false, kHeadings, "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = {port}\n", RecordsOf(kKxRecords)},
      {"Norstar multi-line calls pushed, the last one complete when quiet", {"ipoffice", "--port", "{port}", "--records", kExamples + "/norstar/records.txt", "--rate", "0", "--resend", "0"}, false, "config = \"" + kExamples + "/norstar/norstar.json\"\n[switch.framing]\n" "idle_flush = \"300ms\"\n", "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = {port}\n", NorstarCalls()},
      {"Samsung OfficeServ: its configuration's NUL record ends and page headings", {"file", "-o", "{path}", "--records", kSamsung + "/records.txt", "--rate", "0"}, false, "config = \"" + kSamsung + "/samsung-officeserv.json\"\n", FollowSource("{path}"), RecordsOf(kSamsung + "/records.txt", {}, true)},
      {"serial port through a pseudo-terminal", {"serial", "--link", "{path}", "--records", kKxRecords, "--rate", "0"}, true, kHeadings, "[[switch.source]]\nname = \"com1\"\nkind = \"serial\"\ndevice = \"{path}\"\n", RecordsOf(kKxRecords)},
      {"a followed file", {"file", "-o", "{path}", "--records", kKxRecords, "--rate", "100", "--rotate-every", "20"}, false, kHeadings, FollowSource("{path}"), RecordsOf(kKxRecords)},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string dir = TempDir("service");
    const std::string port = std::to_string(FreePort());
    const std::string path = dir + "/device";
    auto fill = [&](std::string text) {
      for (const auto& [key, value] :
           {std::pair<std::string, std::string>{"{port}", port}, {"{path}", path}}) {
        for (size_t at; (at = text.find(key)) != std::string::npos;)
          text.replace(at, key.size(), value);
      }
      return text;
    };
    std::vector<std::string> args = {EmulatorPath()};
    for (const std::string& a : row.emulator) args.push_back(fill(a));
    const std::string store = dir + "/calls.db";
    const std::string config = WriteConfig(dir, store, row.switch_toml, fill(row.source_toml));
    std::unique_ptr<Child> emulator;
    if (row.emulator_first) {
      emulator = std::make_unique<Child>(args);
      ASSERT_NE(emulator->WaitLine(row.emulator[0]), "");
    }
    auto service = StartService(config, dir);
    if (!row.emulator_first) emulator = std::make_unique<Child>(args);
    EXPECT_TRUE(WaitForRecords(store, row.expected.size())) << ReadFile(dir + "/service.log");
    EXPECT_EQ(service->Stop(SIGTERM), 0);
    EXPECT_EQ(Joined(StoredCalls(store), StoredUnrecognised(store)), row.expected);
  }
}

// A switch that cannot be reached is named in the log by host and port, so
// that the administrator sees which address to check.
TEST(CaptureService, AnUnreachableSwitchIsNamedByHostAndPort) {
  const std::string dir = TempDir("unreachable");
  const std::string port = std::to_string(FreePort());  // nothing listens there
  const std::string config = WriteConfig(
      dir, dir + "/calls.db", kHeadings,
      "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
      "port = " +
          port + "\nretry_min = \"50ms\"\n");
  auto service = StartService(config, dir);
  EXPECT_TRUE(WaitForText(dir + "/service.log", "cannot connect to 127.0.0.1:" + port + ": "));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
}

// A serial device that goes away and comes back, a followed file truncated
// and written again while the service was stopped, a peer not allowed.
TEST(CaptureService, SourcesComeBackAndStrangersAreRefused) {
  const std::string dir = TempDir("come-back");
  const std::string store = dir + "/calls.db";
  const int port = FreePort();
  const std::string config =
      WriteConfig(dir, store, kHeadings,
                  "[[switch.source]]\nname = \"com1\"\nkind = \"serial\"\ndevice = \"" + dir +
                      "/tty\"\nretry_min = \"50ms\"\n" + FollowSource(dir + "/smdr.log") +
                      ListenSource(port) + "allow = [\"10.0.0.0/8\"]\n");
  // 55 distinct records: 20 by the serial port, 30 after it comes back, 5 by the file.
  const std::vector<std::string> all = GenerateRecords(dir + "/all.txt", 55);
  auto write = [&](const std::string& name, size_t from, size_t to) {
    std::ofstream out(dir + "/" + name);
    for (size_t i = from; i < to; ++i) out << all[i] << "\r\n";
  };
  write("serial1.txt", 0, 20);
  write("serial2.txt", 20, 50);
  auto serial_port = [&](const std::string& records) {
    return std::make_unique<Child>(std::vector<std::string>{EmulatorPath(), "serial", "--link",
                                                            dir + "/tty", "--records",
                                                            dir + "/" + records, "--rate", "0"});
  };
  auto emulator = serial_port("serial1.txt");
  auto service = StartService(config, dir);
  std::ofstream(dir + "/smdr.log") << all[50] << "\r\n" << all[51] << "\r\n";
  EXPECT_TRUE(WaitForRecords(store, 22));
  emulator.reset();  // unplugged
  EXPECT_TRUE(WaitForText(dir + "/service.log", "com1: disconnected: device lost"));
  emulator = serial_port("serial2.txt");
  auto stranger = Pusher(port, kKxRecords, "0");
  EXPECT_TRUE(WaitForRecords(store, 52));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  std::ofstream(dir + "/smdr.log", std::ios::trunc) << all[52] << "\r\n";  // truncated while down
  service = StartService(config, dir);
  std::ofstream(dir + "/smdr.log", std::ios::app) << all[53] << "\r\n" << all[54];
  EXPECT_TRUE(WaitForRecords(store, 55)) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), all);
  EXPECT_NE(ReadFile(dir + "/service.log").find("refused 127.0.0.1"), std::string::npos);
}

// A restart goes on from the checkpoints; a spool tail torn while the
// service was down is cut, logged, and costs no record.
TEST(CaptureService, ARestartWithATornSpoolTailStoresNothingTwice) {
  const std::string dir = TempDir("restart");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, kHeadings, ListenSource(port));
  const std::vector<std::string> first = GenerateRecords(dir + "/first.txt", 200);
  const std::vector<std::string> second = GenerateRecords(dir + "/second.txt", 300);
  {
    auto service = StartService(config, dir);
    auto pusher = Pusher(port, dir + "/first.txt", "0");
    EXPECT_TRUE(WaitForRecords(store, first.size()));
    EXPECT_EQ(service->Stop(SIGTERM), 0);
  }
  const auto segments = velqua_capture::ListSegments(dir + "/spool");
  ASSERT_FALSE(segments.empty());
  std::ofstream(segments.back().second, std::ios::app) << std::string(23, '\x5a');
  auto service = StartService(config, dir);
  // The second file repeats the first one's records and adds 100 more: the
  // pusher's first 200 are dropped as re-sent, the rest stored.
  auto pusher = Pusher(port, dir + "/second.txt", "0");
  EXPECT_TRUE(WaitForRecords(store, second.size()));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), second);
  const std::string log = ReadFile(dir + "/service.log");
  EXPECT_NE(log.find("torn tail cut: 23 bytes"), std::string::npos) << log;
  EXPECT_EQ(SumOfDropped(log), 200) << log;
}

// A disk that refuses writes (a file-size limit set on the running service)
// holds the bytes in memory; when there is room again every record is stored.
TEST(CaptureService, AFullDiskHoldsAndCatchesUp) {
  const std::string dir = TempDir("full");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, kHeadings, ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 400);
  auto service = StartService(config, dir);
  ASSERT_TRUE(WaitForText(dir + "/service.log", "listening"));
  rlimit full{}, saved{};
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, nullptr, &saved), 0);
  full = saved;
  full.rlim_cur = 8192;
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, &full, nullptr), 0);
  auto pusher = Pusher(port, dir + "/records.txt", "400");
  EXPECT_TRUE(WaitForText(dir + "/service.log", "holding what sources send"));
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, &saved, nullptr), 0);
  EXPECT_TRUE(WaitForRecords(store, records.size())) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), records);
  EXPECT_NE(ReadFile(dir + "/service.log").find("writing again"), std::string::npos);
}

// SIGHUP: a new source starts, the others keep their connections; a file
// with a mistake is refused and the running settings kept; a source taken
// out of the file stops.
TEST(CaptureService, ReloadStartsNewSourcesAndRefusesMistakes) {
  const std::string dir = TempDir("reload");
  const int port = FreePort();
  const int second_port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, kHeadings, ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 60);
  auto service = StartService(config, dir);
  ASSERT_TRUE(WaitForText(dir + "/service.log", "listening"));
  auto pusher = Pusher(port, dir + "/records.txt", "20");
  WriteConfig(dir, store, kHeadings,
              ListenSource(port) +
                  "[[switch.source]]\nname = \"second\"\n"
                  "kind = \"tcp-listen\"\nport = " +
                  std::to_string(second_port));
  ::kill(service->pid(), SIGHUP);
  EXPECT_TRUE(WaitForText(dir + "/service.log", "0 source(s) stopped, 1 started"));
  auto other = Pusher(second_port, kKxRecords, "0");
  std::ofstream(config, std::ios::app) << "nonsense = 1\n";
  ::kill(service->pid(), SIGHUP);
  EXPECT_TRUE(WaitForText(dir + "/service.log", "reload refused"));
  const std::vector<std::string> kx = RecordsOf(kKxRecords, kHeadingLines);
  // The calls, and the two page headings kept as unrecognised records.
  EXPECT_TRUE(WaitForRecords(store, records.size() + kx.size() + 2))
      << ReadFile(dir + "/service.log");
  // A source no longer in the file stops.
  WriteConfig(dir, store, kHeadings, ListenSource(port));
  ::kill(service->pid(), SIGHUP);
  EXPECT_TRUE(WaitForText(dir + "/service.log", ": 1 source(s) stopped, 0 started"));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), Joined(records, kx));
  const std::string log = ReadFile(dir + "/service.log");
  EXPECT_EQ(log.find("ipo/127.0.0.1: disconnected: configuration reloaded"), std::string::npos);
}

// PostgreSQL stopped under a running service and started again: the records
// wait in the spool meanwhile and are all stored once it is back.
TEST(CaptureService, APostgresStoppedAndStartedAgainLosesNothing) {
  velqua_store_testing::PgTestServer server;
  const std::string url = server.NewDatabase();
  const std::string dir = TempDir("postgres");
  const int port = FreePort();
  const std::string config = WriteConfig(dir, url, kHeadings, ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 300);
  auto service = StartService(config, dir);
  auto pusher = Pusher(port, dir + "/records.txt", "150");
  EXPECT_TRUE(WaitForRecords(url, 50));
  server.Stop();
  EXPECT_TRUE(WaitForText(dir + "/service.log", "store unavailable"));
  EXPECT_NE(pusher->WaitLine("played"), "");  // everything sent while the store was down
  server.Start();
  EXPECT_TRUE(WaitForRecords(url, records.size())) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(url), records);
  EXPECT_NE(ReadFile(dir + "/service.log").find("store available again"), std::string::npos);
}

}  // namespace
}  // namespace velqua_capture_test
