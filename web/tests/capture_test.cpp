// The Capture view's data: each capture service's sources as its status
// file and configuration give them, with the problems `velqua capture
// status` reports, read by the capture layer as the program wires it.
#include <unistd.h>

#include <filesystem>

#include "velqua/capture/status.h"
#include "velqua/capture/status_report.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

constexpr int64_t kMinute = 60 * 1000000LL;

class CaptureTest : public WebTest {
 protected:
  // Beside the test's SQLite store, which goes with its folder.
  CaptureTest() : dir_(std::filesystem::path(url_).parent_path().string() + "/capture") {
    std::filesystem::create_directories(dir_);
  }

  // A service of four sources on one switch; its status file written as the
  // running service writes it, by process `pid`.
  std::string WriteService(int pid) {
    std::string text =
        velqua_store_testing::ReadFile(VELQUA_SOURCE_DIR "/web/tests/data/capture.toml");
    for (const auto& [name, value] :
         {std::pair<std::string, std::string>{"{dir}", dir_}, {"{source}", VELQUA_SOURCE_DIR}}) {
      for (size_t at; (at = text.find(name)) != std::string::npos;) {
        text.replace(at, name.size(), value);
      }
    }
    const std::string config = velqua_store_testing::WriteFile(dir_ + "/capture.toml", text);
    std::filesystem::create_directories(dir_ + "/spool");
    const int64_t now = velqua_capture::NowMicros();
    velqua_capture::StreamStatus quiet;
    quiet.stream = quiet.source = "quiet-log";
    quiet.switch_name = "hq";
    quiet.connected = true;
    quiet.since_us = now - 60 * kMinute;
    quiet.last_data_us = quiet.last_record_us = now - 20 * kMinute;
    quiet.connections = 1;
    quiet.records = 7;
    velqua_capture::StreamStatus busy = quiet;
    busy.source = "busy";
    busy.stream = "busy/10.0.0.5";
    busy.last_data_us = busy.last_record_us = now - kMinute;
    busy.connections = 3;
    busy.records = 42;
    busy.unrecognised = 2;
    busy.resent_dropped = 5;
    velqua_capture::StreamStatus down = quiet;
    down.stream = down.source = "down";
    down.connected = false;
    down.last_event = "connection refused";
    velqua_capture::WriteStatusFile(dir_ + "/spool/status.json", pid, now - 60 * kMinute, now,
                                    {quiet, busy, down}, {});
    return config;
  }

  // The server, told of `configs`, reading them with the capture layer.
  void StartWith(const std::vector<std::string>& configs) {
    Start(true, [&](velqua_web::ServeOptions& o) {
      o.capture = configs;
      o.capture_status = [](const std::string& config) {
        return velqua_capture::CaptureStatusJson(config, velqua_capture::NowMicros());
      };
    });
    ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  }

  std::string dir_;
};

TEST_P(CaptureTest, EachSourceShowsItsStateCountsAndWhyItIsNotUp) {
  StartWith({WriteService(static_cast<int>(::getpid()))});
  const nlohmann::json status = client_->Json("/api/capture");
  ASSERT_TRUE(status["available"].get<bool>());
  ASSERT_EQ(status["services"].size(), 1u);
  const nlohmann::json& service = status["services"][0];
  EXPECT_EQ(service["health"], "WARNING");
  EXPECT_TRUE(service["running"].get<bool>());
  // The silent source is connected: up, and warned of on its own.
  EXPECT_NE(service["summary"].get<std::string>().find(
                "; 2 of 4 sources connected, 1 of them silent longer than its limit"),
            std::string::npos)
      << service["summary"];
  EXPECT_EQ(service["sources"], nlohmann::json({{"total", 4}, {"connected", 2}, {"silent", 1}}));
  const nlohmann::json& sources = service["switches"][0]["sources"];
  ASSERT_EQ(sources.size(), 4u);
  struct Row {
    std::string name, problem_start, state;
    bool silent;
    int64_t records, reconnections, resent_dropped;
  };
  const Row rows[] = {
      {"quiet-log", "silent for 20 minutes", "connected", true, 7, 0, 0},
      {"busy", "", "connected", false, 42, 2, 5},
      {"down", "disconnected since", "disconnected", false, 7, 0, 0},
      {"unseen", "never connected", "never", false, 0, 0, 0},
  };
  for (size_t i = 0; i < 4; ++i) {
    const Row& row = rows[i];
    SCOPED_TRACE(row.name);
    const nlohmann::json& s = sources[i];
    EXPECT_EQ(s["name"], row.name);
    EXPECT_EQ(s["problem"].get<std::string>().rfind(row.problem_start, 0), 0u) << s["problem"];
    EXPECT_EQ(s["problem"].get<std::string>().empty(), row.problem_start.empty());
    EXPECT_EQ(s["silent"].get<bool>(), row.silent);
    ASSERT_EQ(s["streams"].size(), 1u);
    const nlohmann::json& stream = s["streams"][0];
    EXPECT_EQ(stream["state"], row.state);
    EXPECT_EQ(stream["records"], row.records);
    EXPECT_EQ(stream["reconnections"], row.reconnections);
    EXPECT_EQ(stream["resent_dropped"], row.resent_dropped);
  }
  EXPECT_EQ(sources[1]["streams"][0]["stream"], "busy/10.0.0.5");
  EXPECT_NE(sources[2]["problem"].get<std::string>().find("(connection refused)"),
            std::string::npos);
  EXPECT_EQ(sources[0]["silence_s"], 600);
}

TEST_P(CaptureTest, AStoppedServiceOrABadConfigurationIsSaidSoAndTheOthersStillShow) {
  const std::string stopped = WriteService(99999999);  // no such process
  const std::string missing = dir_ + "/no-such-capture.toml";
  StartWith({stopped, missing});
  const nlohmann::json services = client_->Json("/api/capture")["services"];
  ASSERT_EQ(services.size(), 2u);
  EXPECT_EQ(services[0]["health"], "CRITICAL");
  EXPECT_FALSE(services[0]["running"].get<bool>());
  // Its last status said two sources were connected: none is, now.
  EXPECT_EQ(services[0]["sources"]["connected"], 0);
  EXPECT_EQ(services[0]["summary"].get<std::string>().rfind("not running: ", 0), 0u);
  for (const auto& source : services[0]["switches"][0]["sources"]) {
    SCOPED_TRACE(source["name"].get<std::string>());
    EXPECT_EQ(source["problem"], "service not running");
    EXPECT_FALSE(source["silent"].get<bool>());
  }
  EXPECT_EQ(services[1]["health"], "UNKNOWN");
  EXPECT_NE(services[1]["summary"].get<std::string>().find("no-such-capture.toml"),
            std::string::npos)
      << services[1]["summary"];
  EXPECT_TRUE(services[1]["switches"].empty());
}

TEST_P(CaptureTest, WithoutCaptureServicesTheViewIsEmptyAndNeedsASession) {
  Start();
  EXPECT_EQ(client_->Send("GET", "/api/capture")->status, 401);
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  const nlohmann::json status = client_->Json("/api/capture");
  EXPECT_FALSE(status["available"].get<bool>());
  EXPECT_TRUE(status["services"].empty());
}

// The status comes from files, not the store: one engine is enough.
INSTANTIATE_TEST_SUITE_P(Engines, CaptureTest, ::testing::Values(Engine::kSqlite),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_web_testing
