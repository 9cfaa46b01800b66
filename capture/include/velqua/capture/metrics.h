// Prometheus metrics of the capture service: GET /metrics on a loopback
// port, in the text format Prometheus scrapes (doc/capture.md, "Metrics").
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velqua/capture/status.h"

namespace velqua_capture {

// The `metrics` setting: "9465" (on 127.0.0.1), "127.0.0.1:9465",
// "localhost:9465" or "[::1]:9465". False for any other address (the
// metrics name switches and sources: they stay on this host) or a port
// outside 1..65535.
bool ParseMetricsAddress(std::string_view text, std::string* host, int* port);

// What the metrics show beside the streams' counts.
struct MetricsInput {
  int64_t started_us = 0;
  int64_t now_us = 0;
  // The configured sources (source, switch): those no stream has come from
  // yet are shown disconnected.
  std::vector<std::pair<std::string, std::string>> sources;
  std::vector<StreamStatus> streams;
  Latency latency;
  StoreProgress progress;
};

// The metrics in the Prometheus text format (version 0.0.4).
std::string MetricsText(const MetricsInput& input);

// Serves MetricsText on its own thread until destroyed.
class MetricsServer {
 public:
  // Listens on host:port (port 0: a free port, see port()). Throws
  // std::runtime_error when the address cannot be bound.
  MetricsServer(const std::string& host, int port, const StatusBoard& board, int64_t started_us);
  ~MetricsServer();
  MetricsServer(const MetricsServer&) = delete;
  MetricsServer& operator=(const MetricsServer&) = delete;

  // The configured sources, (source, switch), at start and after a reload.
  void Configure(std::vector<std::pair<std::string, std::string>> sources);
  int port() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace velqua_capture
