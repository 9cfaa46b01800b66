// The service's health as a monitoring system wants it (`velqua capture
// status`): one level with the exit status Nagios and Icinga plugins use, a
// one-line summary, and what is wrong, source by source.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velqua/capture/settings.h"
#include "velqua/capture/status.h"

namespace velqua_capture {

// The plugin exit statuses: 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN.
enum class Health { kOk = 0, kWarning = 1, kCritical = 2, kUnknown = 3 };

// "OK", "WARNING", "CRITICAL" or "UNKNOWN".
const char* HealthWord(Health health);

struct HealthReport {
  Health level = Health::kOk;
  std::string
      summary;  // "running, pid 812 since ...; 2 of 2 sources connected, 1 of them silent ..."
  std::vector<std::string> problems;  // one line per source that is not up
};

// A status file rewritten less recently than this belongs to a service that
// no longer works, alive or not (it is rewritten every second).
constexpr int64_t kStatusStaleMicros = 10 * 1000000;

// CRITICAL when the service is not running (no status file, its process
// gone, or its status not rewritten for kStatusStaleMicros); WARNING when a
// configured source is not up: never connected, disconnected, or silent for
// longer than its silence_warning; else OK. A source is up when one of its
// streams (a listening source has one per switch address) is connected and
// has sent something within its silence_warning, or connected within it.
// The summary counts the sources connected and, of those, the ones silent
// longer than their silence_warning: a silent source is connected, not down.
HealthReport AssessHealth(const ServiceState& state, const ServiceSettings& settings,
                          int64_t now_us);

// Why one configured source is not up ("never connected", "disconnected
// since ...", "silent for 75 minutes (since ...)"), or "" when it is up, by
// the rule AssessHealth applies to each source.
std::string SourceProblem(const ServiceState& state, const SourceSettings& source, int64_t now_us);

// A source's silence limit in microseconds (0: none).
int64_t SilenceMicros(const SourceSettings& source);

// Since when a stream has been quiet: its last byte, or its connection when
// nothing came yet.
int64_t QuietSinceMicros(const StreamStatus& s);

}  // namespace velqua_capture
