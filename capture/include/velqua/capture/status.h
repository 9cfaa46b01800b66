// What the service knows about each stream, shared by its two threads, and
// the status file (status.json in the spool folder) that `velqua capture
// status` reads while the service runs.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "velqua/capture/settings.h"

namespace velqua_capture {

struct StreamStatus {
  std::string stream;  // "source" or "source/peer-address"
  std::string source;
  std::string switch_name;
  bool connected = false;
  bool login_failed = false;  // the switch refused the login; retried with growing waits
  int64_t since_us = 0;       // connected (or disconnected) since, microseconds since 1970 UTC
  int64_t bytes = 0;
  int64_t connections = 0;  // reconnections = connections - 1
  int64_t records = 0;      // stored as calls
  int64_t unrecognised = 0;
  int64_t headings = 0;        // page headings skipped
  int64_t resent_dropped = 0;  // re-sent records dropped
  int64_t last_record_us = 0;
  int64_t last_data_us = 0;
  std::string last_event;   // the last disconnection's reason, a login failure, ...
  bool never_seen = false;  // a configured source the status file does not name
};

// From a byte received to its record committed in the store: how long,
// for the records stored so far (milliseconds, in 1 ms steps up to 10 s).
struct Latency {
  int64_t count = 0;
  int64_t p50_ms = 0, p99_ms = 0, max_ms = 0;
};

int64_t NowMicros();  // below

// How far the store side is behind the spool: bytes spooled that it has not
// read yet, and when it last had read everything and stored what it could.
struct StoreProgress {
  int64_t pending_bytes = 0;
  int64_t caught_up_us = 0;  // 0: not yet since the start
};

// The counts of every stream, updated under one lock.
class StatusBoard {
 public:
  // Adds the times from a byte received to its record committed.
  void Committed(const std::vector<int64_t>& micros) {
    std::lock_guard<std::mutex> lock(mutex_);
    for (int64_t us : micros) {
      const int64_t ms = us < 0 ? 0 : us / 1000;
      ++latency_[static_cast<size_t>(ms < kLatencySlots - 1 ? ms : kLatencySlots - 1)];
      max_ms_ = ms > max_ms_ ? ms : max_ms_;
    }
  }
  Latency latency() const;

  // The store side read the spool up to `read_end` of `spool_end`; it was
  // caught up (and stored what it had) when `caught_up`.
  void Progress(int64_t spool_end, int64_t read_end, bool caught_up) {
    std::lock_guard<std::mutex> lock(mutex_);
    progress_.pending_bytes = spool_end > read_end ? spool_end - read_end : 0;
    if (caught_up) progress_.caught_up_us = NowMicros();
  }
  StoreProgress progress() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return progress_;
  }

  // Runs `change` on the stream's status (created on first use) under the lock.
  template <typename Change>
  void Update(const std::string& stream, Change change) {
    std::lock_guard<std::mutex> lock(mutex_);
    StreamStatus& s = streams_[stream];
    s.stream = stream;
    change(s);
  }
  std::vector<StreamStatus> Snapshot() const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<StreamStatus> out;
    for (const auto& [name, s] : streams_) out.push_back(s);
    return out;
  }

 private:
  static constexpr int64_t kLatencySlots = 10001;
  mutable std::mutex mutex_;
  std::map<std::string, StreamStatus> streams_;
  std::vector<int64_t> latency_ = std::vector<int64_t>(kLatencySlots);
  int64_t max_ms_ = 0;
  StoreProgress progress_;
};

// Writes the status file (replaced whole, so a reader never sees half of it).
void WriteStatusFile(const std::string& path, int pid, int64_t started_us, int64_t now_us,
                     const std::vector<StreamStatus>& streams, const Latency& latency);

// Reads a status file; false when it is missing or unreadable.
bool ReadStatusFile(const std::string& path, int* pid, int64_t* started_us, int64_t* written_us,
                    std::vector<StreamStatus>* streams);

// The status file of the service whose spool folder is `spool`.
std::string StatusFilePath(const std::string& spool);

// A service as its status file shows it (`velqua capture status`).
struct ServiceState {
  std::string file;      // the status file
  bool found = false;    // it could be read
  bool running = false;  // the process that wrote it is alive
  int pid = 0;
  int64_t started_us = 0, written_us = 0;
  // The streams it names, then each configured source it does not name
  // (never_seen), in the configuration's order.
  std::vector<StreamStatus> streams;
};
ServiceState ReadServiceState(const ServiceSettings& settings);

// "connected", "login failed" or "disconnected".
const char* ConnectionState(const StreamStatus& s);

// Microseconds since 1970 UTC now, and their ISO 8601 UTC form
// ("2026-01-19T08:02:11Z"; "-" for 0).
int64_t NowMicros();
std::string IsoTime(int64_t micros);

}  // namespace velqua_capture
