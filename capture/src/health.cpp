#include "velqua/capture/health.h"

#include <algorithm>
#include <map>

namespace velqua_capture {
namespace {

// How long, in whole minutes, or in seconds under a minute (a limit of a
// few seconds would otherwise read "silent for 0 minutes").
std::string Minutes(int64_t micros) {
  const int64_t minutes = micros / 60000000, seconds = micros / 1000000;
  if (minutes == 0) return seconds == 1 ? "1 second" : std::to_string(seconds) + " seconds";
  return minutes == 1 ? "1 minute" : std::to_string(minutes) + " minutes";
}

// Why the source is not up, or "" when it is.
std::string StreamsProblem(const std::vector<const StreamStatus*>& streams, int64_t silence_us,
                           int64_t now_us) {
  std::string problem;
  for (const StreamStatus* s : streams) {
    if (s->never_seen) return "never connected";
    if (!s->connected) {
      problem = std::string(ConnectionState(*s)) + " since " + IsoTime(s->since_us);
      if (!s->last_event.empty()) problem += " (" + s->last_event + ")";
      continue;
    }
    const int64_t quiet = now_us - QuietSinceMicros(*s);
    if (silence_us <= 0 || quiet <= silence_us) return "";
    problem = "silent for " + Minutes(quiet) + " (since " + IsoTime(QuietSinceMicros(*s)) + ")";
  }
  return problem;
}

}  // namespace

int64_t SilenceMicros(const SourceSettings& source) {
  return std::chrono::duration_cast<std::chrono::microseconds>(source.silence).count();
}

int64_t QuietSinceMicros(const StreamStatus& s) {
  return s.last_data_us > s.since_us ? s.last_data_us : s.since_us;
}

std::string SourceProblem(const ServiceState& state, const SourceSettings& source, int64_t now_us) {
  std::vector<const StreamStatus*> streams;
  for (const StreamStatus& s : state.streams) {
    if (s.source == source.name) streams.push_back(&s);
  }
  return StreamsProblem(streams, SilenceMicros(source), now_us);
}

const char* HealthWord(Health health) {
  switch (health) {
    case Health::kOk:
      return "OK";
    case Health::kWarning:
      return "WARNING";
    case Health::kCritical:
      return "CRITICAL";
    case Health::kUnknown:
      break;
  }
  return "UNKNOWN";
}

HealthReport AssessHealth(const ServiceState& state, const ServiceSettings& settings,
                          int64_t now_us) {
  HealthReport report;
  if (!state.found) {
    report.level = Health::kCritical;
    report.summary = "not running: no status in " + state.file;
    return report;
  }
  if (!state.running) {
    report.level = Health::kCritical;
    report.summary = "not running: last status written " + IsoTime(state.written_us);
    return report;
  }
  report.summary =
      "running, pid " + std::to_string(state.pid) + " since " + IsoTime(state.started_us);
  if (now_us - state.written_us > kStatusStaleMicros) {
    report.level = Health::kCritical;
    report.summary += "; not responding: status last written " + IsoTime(state.written_us);
    return report;
  }
  std::map<std::string, std::vector<const StreamStatus*>> by_source;
  for (const StreamStatus& s : state.streams) by_source[s.source].push_back(&s);
  int sources = 0, connected = 0, silent = 0;
  for (const SwitchSettings& sw : settings.switches) {
    for (const SourceSettings& source : sw.sources) {
      ++sources;
      const std::vector<const StreamStatus*>& streams = by_source[source.name];
      const std::string problem = StreamsProblem(streams, SilenceMicros(source), now_us);
      const bool linked = std::any_of(streams.begin(), streams.end(),
                                      [](const StreamStatus* s) { return s->connected; });
      connected += linked ? 1 : 0;
      if (problem.empty()) continue;
      silent += linked ? 1 : 0;
      report.problems.push_back(source.name + ": " + problem);
      report.level = Health::kWarning;
    }
  }
  report.summary +=
      "; " + std::to_string(connected) + " of " + std::to_string(sources) + " sources connected";
  if (silent > 0) {
    report.summary += ", " + std::to_string(silent) + " of them silent longer than " +
                      (silent == 1 ? "its limit" : "their limits");
  }
  return report;
}

}  // namespace velqua_capture
