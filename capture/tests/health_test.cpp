// The health `velqua capture status` reports, and its exit status, for each
// state a monitoring system must tell apart.
#include "velqua/capture/health.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace velqua_capture {
namespace {

constexpr int64_t kSecond = 1000000;
constexpr int64_t kNow = 1768813200 * kSecond;  // 2026-01-19T09:00:00Z

// Two switches: a connecting source "lan" (silence 60 min) and a listening
// source "ipo" (silence 10 min) whose streams are named by peer address.
ServiceSettings Settings() {
  ServiceSettings settings;
  SwitchSettings kx;
  kx.name = "kx";
  SourceSettings lan;
  lan.name = "lan";
  lan.silence = std::chrono::minutes(60);
  kx.sources.push_back(lan);
  SwitchSettings ipo;
  ipo.name = "ipo";
  SourceSettings listen;
  listen.name = "ipo";
  listen.kind = SourceKind::kTcpListen;
  listen.silence = std::chrono::minutes(10);
  ipo.sources.push_back(listen);
  settings.switches = {kx, ipo};
  return settings;
}

StreamStatus Stream(const std::string& stream, bool connected, int64_t since_ago_s,
                    int64_t data_ago_s) {
  StreamStatus s;
  s.stream = stream;
  s.source = stream.substr(0, stream.find('/'));
  s.connected = connected;
  s.since_us = kNow - since_ago_s * kSecond;
  s.last_data_us = data_ago_s < 0 ? 0 : kNow - data_ago_s * kSecond;
  return s;
}

ServiceState Running(std::vector<StreamStatus> streams) {
  ServiceState state;
  state.file = "/var/lib/velqua/spool/status.json";
  state.found = state.running = true;
  state.pid = 812;
  state.started_us = kNow - 3600 * kSecond;
  state.written_us = kNow - kSecond;
  state.streams = std::move(streams);
  return state;
}

TEST(CaptureHealth, LevelAndProblemForEachState) {
  ServiceState missing;
  missing.file = "/var/lib/velqua/spool/status.json";
  ServiceState dead = Running({});
  dead.running = false;
  ServiceState hung = Running({Stream("lan", true, 60, 1), Stream("ipo/10.1.0.7", true, 60, 1)});
  hung.written_us = kNow - 30 * kSecond;
  ServiceState never = Running({Stream("lan", true, 60, 1)});
  StreamStatus unseen;
  unseen.stream = unseen.source = "ipo";
  unseen.never_seen = true;
  never.streams.push_back(unseen);
  StreamStatus dropped = Stream("lan", false, 120, 130);
  dropped.last_event = "connection reset by peer";
  StreamStatus refused = Stream("lan", false, 60, -1);
  refused.login_failed = true;
  refused.last_event = "login refused";

  const struct {
    const char* name;
    ServiceState state;
    Health level;
    const char* summary;  // the start of the summary
    std::vector<std::string> problems;
  } cases[] = {
      // clang-format off
      {"no status file", missing, Health::kCritical, "not running: no status in /var/lib/velqua/spool/status.json", {}},
      {"process gone", dead, Health::kCritical, "not running: last status written 2026-01-19T08:59:59Z", {}},
      {"status not rewritten", hung, Health::kCritical, "running, pid 812 since 2026-01-19T08:00:00Z; not responding", {}},
      {"all up", Running({Stream("lan", true, 600, 5), Stream("ipo/10.1.0.7", true, 60, 30)}), Health::kOk,
       "running, pid 812 since 2026-01-19T08:00:00Z; 2 of 2 sources connected", {}},
      {"connected, nothing sent yet, within the silence",
       Running({Stream("lan", true, 60, -1), Stream("ipo/10.1.0.7", true, 60, -1)}), Health::kOk, "running", {}},
      {"a source never connected", never, Health::kWarning,
       "running, pid 812 since 2026-01-19T08:00:00Z; 1 of 2 sources connected", {"ipo: never connected"}},
      {"disconnected, with its reason", Running({dropped, Stream("ipo/10.1.0.7", true, 60, 1)}), Health::kWarning,
       "running, pid 812 since 2026-01-19T08:00:00Z; 1 of 2 sources connected",
       {"lan: disconnected since 2026-01-19T08:58:00Z (connection reset by peer)"}},
      {"silent past its own threshold: connected, and warned of",
       Running({Stream("lan", true, 7200, 3000), Stream("ipo/10.1.0.7", true, 7200, 660)}), Health::kWarning,
       "running, pid 812 since 2026-01-19T08:00:00Z; 2 of 2 sources connected, 1 of them silent longer than its limit",
       {"ipo: silent for 11 minutes (since 2026-01-19T08:49:00Z)"}},
      {"the switch refuses the login", Running({refused, Stream("ipo/10.1.0.7", true, 60, 1)}), Health::kWarning,
       "running", {"lan: login failed since 2026-01-19T08:59:00Z (login refused)"}},
      {"a switch that moved address: its old stream left behind",
       Running({Stream("lan", true, 60, 1), Stream("ipo/10.1.0.7", false, 900, 900), Stream("ipo/10.1.0.8", true, 60, 2)}),
       Health::kOk, "running", {}},
      // clang-format on
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const HealthReport report = AssessHealth(c.state, Settings(), kNow);
    EXPECT_EQ(report.level, c.level);
    EXPECT_EQ(report.summary.rfind(c.summary, 0), 0u) << report.summary;
    EXPECT_EQ(report.problems, c.problems);
  }
}

// A silence under a minute is told in seconds, not as "0 minutes".
TEST(CaptureHealth, AShortSilenceIsToldInSeconds) {
  ServiceSettings settings = Settings();
  settings.switches[1].sources[0].silence = std::chrono::seconds(5);
  const HealthReport report = AssessHealth(
      Running({Stream("lan", true, 60, 1), Stream("ipo/10.1.0.7", true, 600, 42)}), settings, kNow);
  EXPECT_EQ(report.problems,
            std::vector<std::string>{"ipo: silent for 42 seconds (since 2026-01-19T08:59:18Z)"});
}

// A monitoring user (NRPE) may not signal the service's process, which runs
// as another user, but must see it running all the same.
TEST(CaptureHealth, AServiceOfAnotherUserIsSeenRunning) {
  if (::geteuid() != 0) GTEST_SKIP() << "becoming another user needs root";
  char dir[] = "/tmp/velqua-health-XXXXXX";
  ASSERT_NE(::mkdtemp(dir), nullptr);
  ::chmod(dir, 0755);
  ServiceSettings settings;
  settings.spool = dir;
  WriteStatusFile(StatusFilePath(dir), static_cast<int>(::getpid()), NowMicros(), NowMicros(), {},
                  {});
  ::chmod(StatusFilePath(dir).c_str(), 0644);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(2);  // nobody
    const ServiceState state = ReadServiceState(settings);
    ::_exit(state.found && state.running ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace velqua_capture
