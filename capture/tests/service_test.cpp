// The capture service end to end: each kind of source against its emulator,
// into a real store, exactly once; stopping, restarting, a torn spool tail,
// a full disk, a bad configuration, a reload.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "capture_test.h"
#include "service_support.h"
#include "velqua/capture/spool.h"
#include "velqua/capture/status.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_reader.h"
#include "velqua/texto.h"

namespace velqua_capture_test {
namespace {

const std::string kKxRecords = kExamples + "/kx-tda/records.txt";
const std::string kHeadings =
    "[switch.framing]\npage_headings = ['^\\s*Date\\s+Time', '^-{40,}', '====\\s*$']\n";
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
      {"Panasonic TCP port with a login",
       {"panasonic", "--port", "{port}", "--records", kKxRecords, "--rate", "0"},
       true,
       kHeadings,
       "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
       "port = {port}\n[[switch.source.login]]\nexpect = \"login: \"\nsend = \"SMDR\\r\\n\"\n"
       "[[switch.source.login]]\nexpect = \"Password: \"\nsend = \"PCCSMDR\\r\\n\"\n",
       RecordsOf(kKxRecords, kHeadingLines)},
      {"one byte at a time",
       {"panasonic", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--one-byte",
        "--user", ""},
       true,
       kHeadings,
       "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
       "port = {port}\n",
       RecordsOf(kKxRecords, kHeadingLines)},
      {"Samsung: NUL-ended records and form-feed headings",
       {"samsung", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--page-lines",
        "10"},
       true,
       kHeadings + "record_end = \"nul\"\nstrip_controls = true\n",
       "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
       "port = {port}\n",
       RecordsOf(kKxRecords, kHeadingLines)},
      {"IP Office pushing, cut every 7 records, re-sending 3",
       {"ipoffice", "--port", "{port}", "--records", kKxRecords, "--rate", "0", "--resend", "3",
        "--cut-every", "7", "--retry-ms", "50"},
       false,
       kHeadings,
       "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = {port}\n",
       RecordsOf(kKxRecords, kHeadingLines)},
      {"Norstar multi-line calls pushed, the last one complete when quiet",
       {"ipoffice", "--port", "{port}", "--records", kExamples + "/norstar/records.txt", "--rate",
        "0", "--resend", "0"},
       false,
       "config = \"" + kExamples +
           "/norstar/norstar.json\"\n[switch.framing]\n"
           "idle_flush = \"300ms\"\n",
       "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = {port}\n",
       NorstarCalls()},
      {"serial port through a pseudo-terminal",
       {"serial", "--link", "{path}", "--records", kKxRecords, "--rate", "0"},
       true,
       kHeadings,
       "[[switch.source]]\nname = \"com1\"\nkind = \"serial\"\ndevice = \"{path}\"\n",
       RecordsOf(kKxRecords, kHeadingLines)},
      {"a followed file",
       {"file", "-o", "{path}", "--records", kKxRecords, "--rate", "100", "--rotate-every", "20"},
       false,
       kHeadings,
       "[[switch.source]]\nname = \"log\"\nkind = \"file-follow\"\npath = \"{path}\"\n",
       RecordsOf(kKxRecords, kHeadingLines)},
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

}  // namespace
}  // namespace velqua_capture_test
