// `velqua capture`: runs the capture service in the foreground, and
// `velqua capture status` shows what each of its sources is doing.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct CaptureOptions {
  std::string config;  // the service's TOML configuration
};

// Adds "capture" and its "status" subcommand.
void AddCaptureCommand(CLI::App& app, CaptureOptions& options);

// Runs the service until SIGTERM or SIGINT (0). A configuration with a
// mistake is refused with one line naming the file, line and key (1), and
// nothing is started.
int RunCapture(const CaptureOptions& options);

// Prints each source of the configuration: connected or not and since when,
// bytes, records, unrecognised, page headings, re-sent records dropped,
// reconnections and the last record's time, as the running service (or the
// last one) wrote them.
int RunCaptureStatus(const CaptureOptions& options);

}  // namespace velqua_cli
