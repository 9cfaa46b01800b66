#include "velqua/capture/status.h"

#include <signal.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace velqua_capture {

int64_t NowMicros() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::string IsoTime(int64_t micros) {
  if (micros == 0) return "-";
  return velqua_store::UtcText(static_cast<std::time_t>(micros / 1000000));
}

Latency StatusBoard::latency() const {
  std::lock_guard<std::mutex> lock(mutex_);
  Latency l;
  for (int64_t n : latency_) l.count += n;
  int64_t seen = 0;
  for (size_t ms = 0; ms < latency_.size(); ++ms) {
    if (seen < (l.count + 1) / 2 && seen + latency_[ms] >= (l.count + 1) / 2) {
      l.p50_ms = static_cast<int64_t>(ms);
    }
    if (seen < (l.count * 99 + 99) / 100 && seen + latency_[ms] >= (l.count * 99 + 99) / 100) {
      l.p99_ms = static_cast<int64_t>(ms);
    }
    seen += latency_[ms];
  }
  l.max_ms = max_ms_;
  return l;
}

void WriteStatusFile(const std::string& path, int pid, int64_t started_us, int64_t now_us,
                     const std::vector<StreamStatus>& streams, const Latency& latency) {
  nlohmann::json j;
  j["latency_ms"] = {{"count", latency.count},
                     {"p50", latency.p50_ms},
                     {"p99", latency.p99_ms},
                     {"max", latency.max_ms}};
  j["pid"] = pid;
  j["started_us"] = started_us;
  j["written_us"] = now_us;
  j["streams"] = nlohmann::json::array();
  for (const StreamStatus& s : streams) {
    j["streams"].push_back({{"stream", s.stream},
                            {"source", s.source},
                            {"switch", s.switch_name},
                            {"connected", s.connected},
                            {"login_failed", s.login_failed},
                            {"since_us", s.since_us},
                            {"bytes", s.bytes},
                            {"connections", s.connections},
                            {"records", s.records},
                            {"unrecognised", s.unrecognised},
                            {"headings", s.headings},
                            {"resent_dropped", s.resent_dropped},
                            {"last_record_us", s.last_record_us},
                            {"last_data_us", s.last_data_us},
                            {"last_event", s.last_event}});
  }
  velqua_records::ReplaceFileText(path, j.dump(1) + '\n');  // else the next write tries again
}

bool ReadStatusFile(const std::string& path, int* pid, int64_t* started_us, int64_t* written_us,
                    std::vector<StreamStatus>* streams) {
  std::ifstream in(path);
  if (!in) return false;
  try {
    const nlohmann::json j = nlohmann::json::parse(in);
    *pid = j.at("pid").get<int>();
    *started_us = j.at("started_us").get<int64_t>();
    *written_us = j.at("written_us").get<int64_t>();
    streams->clear();
    for (const auto& e : j.at("streams")) {
      StreamStatus s;
      s.stream = e.at("stream").get<std::string>();
      s.source = e.at("source").get<std::string>();
      s.switch_name = e.at("switch").get<std::string>();
      s.connected = e.at("connected").get<bool>();
      s.login_failed = e.value("login_failed", false);
      s.since_us = e.at("since_us").get<int64_t>();
      s.bytes = e.at("bytes").get<int64_t>();
      s.connections = e.at("connections").get<int64_t>();
      s.records = e.at("records").get<int64_t>();
      s.unrecognised = e.at("unrecognised").get<int64_t>();
      s.headings = e.at("headings").get<int64_t>();
      s.resent_dropped = e.at("resent_dropped").get<int64_t>();
      s.last_record_us = e.at("last_record_us").get<int64_t>();
      s.last_data_us = e.at("last_data_us").get<int64_t>();
      s.last_event = e.at("last_event").get<std::string>();
      streams->push_back(s);
    }
  } catch (const nlohmann::json::exception&) {
    return false;
  }
  return true;
}

std::string StatusFilePath(const std::string& spool) { return spool + "/status.json"; }

ServiceState ReadServiceState(const ServiceSettings& settings) {
  ServiceState state;
  state.file = StatusFilePath(settings.spool);
  state.found =
      ReadStatusFile(state.file, &state.pid, &state.started_us, &state.written_us, &state.streams);
  // A process of another user (the service's own) may not be signalled by
  // a monitoring user, but is there all the same.
  state.running = state.found && (::kill(state.pid, 0) == 0 || errno == EPERM);
  std::set<std::string> named;
  for (const StreamStatus& s : state.streams) named.insert(s.source);
  for (const SwitchSettings& sw : settings.switches) {
    for (const SourceSettings& source : sw.sources) {
      if (named.count(source.name) != 0) continue;
      StreamStatus never;
      never.stream = never.source = source.name;
      never.switch_name = sw.name;
      never.never_seen = true;
      state.streams.push_back(never);
    }
  }
  return state;
}

const char* ConnectionState(const StreamStatus& s) {
  if (s.connected) return "connected";
  return s.login_failed ? "login failed" : "disconnected";
}

}  // namespace velqua_capture
