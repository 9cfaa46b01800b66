#include "velqua/capture/status_report.h"

#include <nlohmann/json.hpp>

#include "velqua/capture/health.h"
#include "velqua/capture/settings.h"
#include "velqua/capture/status.h"

namespace velqua_capture {
namespace {

std::string Utc(int64_t micros) { return micros == 0 ? "" : IsoTime(micros); }

const char* KindWord(SourceKind kind) {
  switch (kind) {
    case SourceKind::kSerial:
      return "serial";
    case SourceKind::kTcpConnect:
      return "tcp-connect";
    case SourceKind::kTcpListen:
      return "tcp-listen";
    case SourceKind::kFileFollow:
      break;
  }
  return "file-follow";
}

nlohmann::json StreamJson(const StreamStatus& s) {
  if (s.never_seen) {
    return {
        {"stream", s.stream}, {"state", "never"},      {"since_utc", ""},     {"bytes", 0},
        {"records", 0},       {"unrecognised", 0},     {"headings", 0},       {"resent_dropped", 0},
        {"reconnections", 0}, {"last_record_utc", ""}, {"last_data_utc", ""}, {"last_event", ""}};
  }
  return {{"stream", s.stream},
          {"state", ConnectionState(s)},
          {"since_utc", Utc(s.since_us)},
          {"bytes", s.bytes},
          {"records", s.records},
          {"unrecognised", s.unrecognised},
          {"headings", s.headings},
          {"resent_dropped", s.resent_dropped},
          {"reconnections", s.connections > 0 ? s.connections - 1 : 0},
          {"last_record_utc", Utc(s.last_record_us)},
          {"last_data_utc", Utc(s.last_data_us)},
          {"last_event", s.last_event}};
}

// Whether every connected stream of the source has been quiet longer than
// its silence limit (and at least one is connected).
bool Silent(const ServiceState& state, const SourceSettings& source, int64_t now_us) {
  const int64_t limit = SilenceMicros(source);
  bool connected = false;
  for (const StreamStatus& s : state.streams) {
    if (s.source != source.name || !s.connected) continue;
    connected = true;
    if (limit <= 0 || now_us - QuietSinceMicros(s) <= limit) return false;
  }
  return connected;
}

nlohmann::json SourceJson(const ServiceState& state, const SourceSettings& source, int64_t now_us) {
  nlohmann::json streams = nlohmann::json::array();
  for (const StreamStatus& s : state.streams) {
    if (s.source == source.name) streams.push_back(StreamJson(s));
  }
  const bool running = state.running;
  return {{"name", source.name},
          {"kind", KindWord(source.kind)},
          {"silence_s", SilenceMicros(source) / 1000000},
          {"problem", running ? SourceProblem(state, source, now_us) : "service not running"},
          {"silent", running && Silent(state, source, now_us)},
          {"streams", streams}};
}

}  // namespace

std::string CaptureStatusJson(const std::string& config_path, int64_t now_us) {
  nlohmann::json j = {{"config", config_path},
                      {"problems", nlohmann::json::array()},
                      {"running", false},
                      {"pid", 0},
                      {"started_utc", ""},
                      {"written_utc", ""},
                      {"switches", nlohmann::json::array()}};
  ServiceSettings settings;
  try {
    settings = LoadSettings(config_path);
  } catch (const SettingsError& e) {
    j["health"] = HealthWord(Health::kUnknown);
    j["summary"] = e.what();
    return j.dump();
  }
  const ServiceState state = ReadServiceState(settings);
  const HealthReport health = AssessHealth(state, settings, now_us);
  j["health"] = HealthWord(health.level);
  j["summary"] = health.summary;
  j["problems"] = health.problems;
  j["running"] = state.running;
  j["pid"] = state.pid;
  j["started_utc"] = Utc(state.started_us);
  j["written_utc"] = Utc(state.written_us);
  for (const SwitchSettings& sw : settings.switches) {
    nlohmann::json sources = nlohmann::json::array();
    for (const SourceSettings& source : sw.sources)
      sources.push_back(SourceJson(state, source, now_us));
    j["switches"].push_back({{"name", sw.name}, {"sources", sources}});
  }
  return j.dump();
}

}  // namespace velqua_capture
