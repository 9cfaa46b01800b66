#include "cmd_capture.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <vector>

#include "cli_common.h"
#include "velqua/capture/health.h"
#include "velqua/capture/log.h"
#include "velqua/capture/service.h"
#include "velqua/capture/settings.h"
#include "velqua/capture/status.h"

namespace velqua_cli {
namespace {

using velqua_capture::StreamStatus;

std::string Since(const StreamStatus& s) { return velqua_capture::IsoTime(s.since_us); }

void PrintRow(const std::vector<std::string>& cells) {
  static const int kWidths[] = {-22, -10, -13, -21, 10, 9, 7, 8, 7, 7, -21};
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    char cell[64];
    std::snprintf(cell, sizeof cell, "%*s ", kWidths[i], cells[i].c_str());
    line += cell;
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  std::printf("%s\n", line.c_str());
}

}  // namespace

void AddCaptureCommand(CLI::App& app, CaptureOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "capture", "Capture records live from switches into the store (runs until SIGTERM)");
  cmd->add_option("--config", options.config, "The service's configuration (TOML)");
  cmd->require_subcommand(0, 1);
  CLI::App* status = cmd->add_subcommand(
      "status",
      "Show the service's health and each source; exit status as a monitoring plugin: 0 OK, "
      "1 WARNING (a source not connected or silent), 2 CRITICAL (not running), 3 UNKNOWN");
  status->add_option("--config", options.config, "The service's configuration (TOML)")->required();
}

int RunCapture(const CaptureOptions& options) {
  if (options.config.empty()) throw CliError("capture: --config FILE is required");
  velqua_capture::ServiceSettings settings;
  try {
    settings = velqua_capture::LoadSettings(options.config);
  } catch (const velqua_capture::SettingsError& e) {
    std::fprintf(stderr, "velqua: %s\n", e.what());
    return kCaptureConfigurationError;
  }
  velqua_capture::Logger log;
  velqua_capture::Service service(std::move(settings), log);
  return service.Run();
}

int RunCaptureStatus(const CaptureOptions& options) {
  using velqua_capture::Health;
  velqua_capture::ServiceSettings settings;
  try {
    settings = velqua_capture::LoadSettings(options.config);
  } catch (const velqua_capture::SettingsError& e) {
    std::printf("UNKNOWN: %s\n", e.what());
    return static_cast<int>(Health::kUnknown);
  }
  const velqua_capture::ServiceState state = velqua_capture::ReadServiceState(settings);
  const velqua_capture::HealthReport health =
      velqua_capture::AssessHealth(state, settings, velqua_capture::NowMicros());
  std::printf("%s: %s\n", velqua_capture::HealthWord(health.level), health.summary.c_str());
  for (const std::string& problem : health.problems) std::printf("  %s\n", problem.c_str());
  PrintRow({"source", "switch", "state", "since", "bytes", "records", "unrec", "headings", "resent",
            "reconn", "last record"});
  for (const StreamStatus& s : state.streams) {
    if (s.never_seen) {
      PrintRow({s.stream, s.switch_name, "never", "-", "0", "0", "0", "0", "0", "0", "-"});
      continue;
    }
    PrintRow({s.stream, s.switch_name, velqua_capture::ConnectionState(s), Since(s),
              std::to_string(s.bytes), std::to_string(s.records), std::to_string(s.unrecognised),
              std::to_string(s.headings), std::to_string(s.resent_dropped),
              std::to_string(s.connections > 0 ? s.connections - 1 : 0),
              velqua_capture::IsoTime(s.last_record_us)});
  }
  return static_cast<int>(health.level);
}

}  // namespace velqua_cli
