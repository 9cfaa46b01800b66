#include "cmd_capture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "cli_common.h"
#include "velqua/capture/status.h"

namespace velqua_cli {
namespace {

const std::string kDir = std::string(VELQUA_CLI_TEST_TMP) + "/capture-status";

std::string WriteConfig() {
  std::filesystem::create_directories(kDir + "/spool");
  const std::string path = kDir + "/capture.toml";
  std::ofstream(path) << "store = \"calls.db\"\nspool = \"spool\"\n[[switch]]\nname = \"kx\"\n"
                         "config = \"" VELQUA_SOURCE_DIR
                         "/examples/kx-tda/kx-tda.json\"\n"
                         "[[switch.source]]\nname = \"lan\"\nkind = \"tcp-connect\"\n"
                         "host = \"127.0.0.1\"\nport = 2300\n"
                         "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = 5000\n";
  return path;
}

// A service that has stopped left its last status: each stream's line, and
// a configured source never heard from.
TEST(CaptureStatus, ShowsEachStreamAndTheSourcesNeverConnected) {
  const std::string config = WriteConfig();
  velqua_capture::StreamStatus s;
  s.stream = "ipo/10.1.0.7";
  s.source = "ipo";
  s.switch_name = "kx";
  s.connected = true;
  s.since_us = 1768809600000000;  // 2026-01-19T08:00:00Z
  s.bytes = 8160;
  s.connections = 3;
  s.records = 118;
  s.unrecognised = 2;
  s.headings = 4;
  s.resent_dropped = 5;
  s.last_record_us = 1768813200000000;
  velqua_capture::WriteStatusFile(kDir + "/spool/status.json", 0x3FFFFFFF, s.since_us,
                                  s.last_record_us, {s}, {});
  testing::internal::CaptureStdout();
  EXPECT_EQ(RunCaptureStatus({config}), 2);  // CRITICAL: not running
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_EQ(out.substr(0, out.find('\n')),
            "CRITICAL: not running: last status written 2026-01-19T09:00:00Z");
  EXPECT_NE(out.find("ipo/10.1.0.7           kx         connected     2026-01-19T08:00:00Z        "
                     "8160       118       2        4       5       2 2026-01-19T09:00:00Z"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("lan                    kx         never"), std::string::npos) << out;
}

}  // namespace
}  // namespace velqua_cli
