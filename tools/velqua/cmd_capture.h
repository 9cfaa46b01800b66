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

// The exit status of a configuration with a mistake (EX_CONFIG of
// sysexits.h): the systemd unit does not restart the service on it, as
// starting again cannot help until the file is corrected.
constexpr int kCaptureConfigurationError = 78;

// Runs the service until SIGTERM or SIGINT (0). A configuration with a
// mistake is refused with one line naming the file, line and key
// (kCaptureConfigurationError), and nothing is started; a spool folder that
// cannot be used is 1.
int RunCapture(const CaptureOptions& options);

// Prints the service's health on its first line ("OK: running, ..."), what
// is wrong source by source, then each source of the configuration:
// connected or not and since when, bytes, records, unrecognised, page
// headings, re-sent records dropped, reconnections and the last record's
// time, as the running service (or the last one) wrote them. Returns the
// exit status of a Nagios or Icinga plugin (velqua/capture/health.h): 0
// running with every source up, 1 a source not up, 2 not running, 3 the
// configuration cannot be read.
int RunCaptureStatus(const CaptureOptions& options);

}  // namespace velqua_cli
