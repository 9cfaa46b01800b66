// Running the service as an operator does: a wrong password, a second
// service started on the same spool, a stop while the switch is sending.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "capture_test.h"
#include "service_support.h"
#include "velqua/capture/settings.h"
#include "velqua/capture/status.h"
#include "velqua/store/store.h"

namespace velqua_capture_test {
namespace {

const std::string kKxRecords = kExamples + "/kx-tda/records.txt";

// The waits of the log's "reconnecting in N ms" lines, in order.
std::vector<int64_t> Waits(const std::string& log) {
  std::vector<int64_t> waits;
  const std::regex wait("reconnecting in ([0-9]+) ms");
  for (auto it = std::sregex_iterator(log.begin(), log.end(), wait); it != std::sregex_iterator();
       ++it) {
    waits.push_back(std::stoll((*it)[1]));
  }
  return waits;
}

// The bytes the operating system holds unread for the established TCP
// connections whose local port is `port` (on 127.0.0.1), from /proc/net/tcp.
int64_t HeldForPort(int port) {
  std::ifstream in("/proc/net/tcp");
  std::string line;
  std::getline(in, line);  // the heading
  int64_t held = 0;
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    std::string slot, local, remote, state, queues;
    fields >> slot >> local >> remote >> state >> queues;
    const size_t colon = local.find(':');
    if (colon == std::string::npos || state != "01" || queues.find(':') == std::string::npos) {
      continue;
    }
    if (std::stoi(local.substr(colon + 1), nullptr, 16) != port) continue;
    held += std::stoll(queues.substr(queues.find(':') + 1), nullptr, 16);
  }
  return held;
}

// A refused login is a failure: logged, shown in the status, retried with
// growing waits, and the refusal is never stored as a record.
TEST(CaptureOperation, AWrongPasswordIsALoginFailure) {
  const std::string dir = TempDir("login-failed");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(
      dir, store, "",
      "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\nhost = \"127.0.0.1\"\n"
      "port = " +
          std::to_string(port) +
          "\nretry_min = \"50ms\"\nretry_max = \"400ms\"\n"
          "[[switch.source.login]]\nexpect = \"login: \"\nsend = \"SMDR\\r\\n\"\n"
          "[[switch.source.login]]\nexpect = \"Password: \"\nsend = \"WRONG\\r\\n\"\n");
  Child pbx({EmulatorPath(), "panasonic", "--port", std::to_string(port), "--records", kKxRecords,
             "--rate", "0"});
  ASSERT_NE(pbx.WaitLine("panasonic: listening"), "");
  auto service = StartService(config, dir);
  const std::string refused = "login failed: the switch answered \"Login incorrect\"";
  ASSERT_TRUE(WaitFor([&] { return Waits(ReadFile(dir + "/service.log")).size() >= 6; }))
      << ReadFile(dir + "/service.log");
  const velqua_capture::ServiceState state =
      velqua_capture::ReadServiceState(velqua_capture::LoadSettings(config));
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  const std::string log = ReadFile(dir + "/service.log");
  EXPECT_NE(log.find(refused), std::string::npos) << log;
  EXPECT_EQ(log.find("logged in"), std::string::npos) << log;
  // 50 ms doubling to 400 ms, each within 20%.
  const std::vector<int64_t> waits = Waits(log);
  const int64_t expected[] = {50, 100, 200, 400, 400, 400};
  for (size_t i = 0; i < 6; ++i) {
    SCOPED_TRACE(i);
    EXPECT_GE(waits[i], expected[i] * 8 / 10);
    EXPECT_LE(waits[i], expected[i] * 12 / 10);
  }
  ASSERT_EQ(state.streams.size(), 1u);
  EXPECT_TRUE(state.streams[0].login_failed);
  EXPECT_FALSE(state.streams[0].connected);
  EXPECT_EQ(velqua_store::OpenStore(store)->CountUnrecognised(""), 0);
}

// Two services on one spool would write the same segment: the second one
// says who holds it and exits.
TEST(CaptureOperation, ASecondServiceOnTheSameSpoolExits) {
  const std::string dir = TempDir("two");
  const std::string config = WriteConfig(dir, dir + "/calls.db", "", ListenSource(FreePort()));
  auto first = StartService(config, dir);
  ASSERT_TRUE(WaitForText(dir + "/service.log", "listening"));
  Child second({VELQUA_CAPTURE_SERVICE, config}, dir + "/second.log");
  EXPECT_EQ(second.Stop(0), 1);
  EXPECT_NE(ReadFile(dir + "/second.log")
                .find("spool " + dir + "/spool in use by pid " + std::to_string(first->pid())),
            std::string::npos)
      << ReadFile(dir + "/second.log");
  EXPECT_EQ(first->Stop(SIGTERM), 0);
}

// A stop while the switch's bytes wait in the operating system (the
// service was not reading them: its disk refused writes) spools them before
// closing: a switch that never sends them again loses nothing.
TEST(CaptureOperation, AStopSpoolsWhatTheSystemHolds) {
  const std::string dir = TempDir("drain");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 400);
  auto service = StartService(config, dir);
  ASSERT_TRUE(WaitForText(dir + "/service.log", "listening"));
  rlimit full{}, saved{};
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, nullptr, &saved), 0);
  full = saved;
  full.rlim_cur = 16;  // below the spool's size: not even the connection's mark is written
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, &full, nullptr), 0);
  auto pusher = Pusher(port, dir + "/records.txt", "0", {"--resend", "0"});
  // All of it in the system's buffers: the service holds, and does not read.
  // (Its log cannot be written meanwhile: the limit holds for it too.)
  ASSERT_NE(pusher->WaitLine("played"), "");
  ASSERT_TRUE(WaitFor([&] { return HeldForPort(port) > 0; }, std::chrono::seconds(60)));
  ASSERT_EQ(::prlimit(service->pid(), RLIMIT_FSIZE, &saved, nullptr), 0);
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  service = StartService(config, dir);  // stores what the stop spooled and did not store
  EXPECT_TRUE(WaitFor([&] {
    const std::string log = ReadFile(dir + "/service.log");
    return log.find("listening") != log.rfind("listening");
  }));
  EXPECT_TRUE(WaitForRecords(store, records.size())) << ReadFile(dir + "/service.log");
  EXPECT_EQ(service->Stop(SIGTERM), 0);
  EXPECT_EQ(StoredCalls(store), records);
}

// The switch's extension list kept in the store is the one the service
// translates with when its settings name none; one they name replaces it.
// A call whose account code the list lacks is stored with the code and no
// extension, and the log says so.
TEST(CaptureOperation, TheExtensionListKeptWithTheSwitchIsUsed) {
  struct Case {
    const char* what;
    std::string switch_toml;
    std::string extensions;  // of the account-code calls, by start; "-": none
    std::string kept;
  } cases[] = {
      {"the kept list", "", "301 - - - 301", "1234;301\r\n"},
      {"a list in the settings", "extensions = \"" + kExamples + "/kx-tda/extensions.txt\"\n",
       "201 206 208 - 201", ReadFile(kExamples + "/kx-tda/extensions.txt")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string dir = TempDir("extensions");
    const std::string store = dir + "/calls.db";
    velqua_store::OpenStore(store)->PutSwitch({"pbx", "", "", "", "1234;301\r\n"});
    std::ofstream(dir + "/smdr.log", std::ios::binary) << ReadFile(kKxRecords);
    const std::string config =
        WriteConfig(dir, store, c.switch_toml, FollowSource(dir + "/smdr.log"));
    auto service = StartService(config, dir);
    EXPECT_TRUE(WaitForRecords(store, RecordsOf(kKxRecords).size()))
        << ReadFile(dir + "/service.log");
    EXPECT_EQ(service->Stop(SIGTERM), 0);
    std::string extensions;
    auto s = velqua_store::OpenStore(store);
    s->ListCalls({}, [&](const velqua_store::StoredCall& call) {
      if (call.account_code)
        extensions += (extensions.empty() ? "" : " ") + call.extension.value_or("-");
    });
    EXPECT_EQ(extensions, c.extensions);
    EXPECT_EQ(s->FindSwitch("pbx")->extension_list, c.kept);
    EXPECT_NE(ReadFile(dir + "/service.log")
                  .find("has account code 9999, missing from the extension list: extension left "
                        "blank, account code kept"),
              std::string::npos)
        << ReadFile(dir + "/service.log");
  }
}

}  // namespace
}  // namespace velqua_capture_test
