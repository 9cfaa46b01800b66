#include "velqua/capture/metrics.h"

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

namespace velqua_capture {
namespace {

// A label value: backslash, double quote and line feed escaped.
std::string Label(const std::string& value) {
  std::string out;
  for (char c : value) {
    if (c == '\\' || c == '"') out += '\\';
    out += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return out;
}

// Microseconds (or milliseconds, scale 1000) as exact decimal seconds.
std::string Seconds(int64_t units, int64_t per_second) {
  const int digits = per_second == 1000000 ? 6 : 3;
  char text[48];
  std::snprintf(text, sizeof text, "%lld.%0*lld", static_cast<long long>(units / per_second),
                digits, static_cast<long long>(units % per_second));
  return text;
}

class Writer {
 public:
  // Starts a metric: its help and type lines.
  void Metric(const char* name, const char* type, const char* help) {
    name_ = name;
    out_ += std::string("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
  }
  void Sample(const std::string& labels, const std::string& value) {
    out_ += name_;
    if (!labels.empty()) out_ += '{' + labels + '}';
    out_ += ' ' + value + '\n';
  }
  std::string& text() { return out_; }

 private:
  std::string name_;
  std::string out_;
};

struct StreamMetric {
  const char* name;
  const char* type;
  const char* help;
  std::string (*value)(const StreamStatus&);
};

std::string Count(int64_t n) { return std::to_string(n); }
std::string Moment(int64_t us) { return us == 0 ? "0" : Seconds(us, 1000000); }

const StreamMetric kStreamMetrics[] = {
    {"velqua_capture_connected", "gauge", "1 while the stream's source is connected, else 0.",
     [](const StreamStatus& s) { return Count(s.connected ? 1 : 0); }},
    {"velqua_capture_login_failed", "gauge",
     "1 while the switch refuses the login (retried with growing waits), else 0.",
     [](const StreamStatus& s) { return Count(s.login_failed ? 1 : 0); }},
    {"velqua_capture_received_bytes_total", "counter", "Bytes received from the switch.",
     [](const StreamStatus& s) { return Count(s.bytes); }},
    {"velqua_capture_records_total", "counter", "Records stored as calls.",
     [](const StreamStatus& s) { return Count(s.records); }},
    {"velqua_capture_unrecognised_total", "counter",
     "Records stored as unrecognised (page headings apart).",
     [](const StreamStatus& s) { return Count(s.unrecognised); }},
    {"velqua_capture_page_headings_total", "counter", "Page headings skipped.",
     [](const StreamStatus& s) { return Count(s.headings); }},
    {"velqua_capture_resent_dropped_total", "counter",
     "Records the switch sent again after a reconnection, dropped.",
     [](const StreamStatus& s) { return Count(s.resent_dropped); }},
    {"velqua_capture_connections_total", "counter", "Connections (or device openings) made.",
     [](const StreamStatus& s) { return Count(s.connections); }},
    {"velqua_capture_last_data_timestamp_seconds", "gauge",
     "When the last byte was received (0: never), seconds since 1970 UTC.",
     [](const StreamStatus& s) { return Moment(s.last_data_us); }},
    {"velqua_capture_last_record_timestamp_seconds", "gauge",
     "When the last record stored was received (0: never), seconds since 1970 UTC.",
     [](const StreamStatus& s) { return Moment(s.last_record_us); }},
};

}  // namespace

bool ParseMetricsAddress(std::string_view text, std::string* host, int* port) {
  std::string_view port_text = text;
  *host = "127.0.0.1";
  const size_t colon = text.rfind(':');
  if (colon != std::string_view::npos) {
    const std::string_view name = text.substr(0, colon);
    if (name == "[::1]") {
      *host = "::1";
    } else if (name != "127.0.0.1" && name != "localhost") {
      return false;
    }
    port_text = text.substr(colon + 1);
  }
  if (port_text.empty() || port_text.size() > 5) return false;
  int value = 0;
  for (char c : port_text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + (c - '0');
  }
  if (value < 1 || value > 65535) return false;
  *port = value;
  return true;
}

std::string MetricsText(const MetricsInput& input) {
  std::vector<StreamStatus> streams = input.streams;
  std::set<std::string> seen;
  for (const StreamStatus& s : streams) seen.insert(s.source);
  for (const auto& [source, switch_name] : input.sources) {
    if (seen.count(source) != 0) continue;
    StreamStatus never;
    never.stream = never.source = source;
    never.switch_name = switch_name;
    streams.push_back(never);
  }
  Writer w;
  for (const StreamMetric& m : kStreamMetrics) {
    w.Metric(m.name, m.type, m.help);
    for (const StreamStatus& s : streams) {
      w.Sample("stream=\"" + Label(s.stream) + "\",source=\"" + Label(s.source) + "\",switch=\"" +
                   Label(s.switch_name) + '"',
               m.value(s));
    }
  }
  w.Metric("velqua_capture_spool_pending_bytes", "gauge",
           "Bytes in the spool the store side has not read yet.");
  w.Sample("", Count(input.progress.pending_bytes));
  w.Metric("velqua_capture_store_lag_seconds", "gauge",
           "Time since the store side last had everything spooled stored (0 while it has).");
  const int64_t caught_up =
      input.progress.caught_up_us != 0 ? input.progress.caught_up_us : input.started_us;
  const int64_t lag = input.now_us - caught_up;
  w.Sample("", Seconds(lag > 1000000 ? lag : 0, 1000000));
  w.Metric("velqua_capture_store_latency_seconds", "gauge",
           "From a byte received to its record committed in the store, over the records stored "
           "since the start: median, 99th percentile and maximum.");
  w.Sample("quantile=\"0.5\"", Seconds(input.latency.p50_ms, 1000));
  w.Sample("quantile=\"0.99\"", Seconds(input.latency.p99_ms, 1000));
  w.Sample("quantile=\"1\"", Seconds(input.latency.max_ms, 1000));
  w.Metric("velqua_capture_start_time_seconds", "gauge",
           "When the service started, seconds since 1970 UTC.");
  w.Sample("", Moment(input.started_us));
  return std::move(w.text());
}

class MetricsServer::Impl {
 public:
  Impl(const StatusBoard& board, int64_t started_us) : board_(board), started_us_(started_us) {
    server_.Get("/metrics", [this](const httplib::Request&, httplib::Response& response) {
      response.set_content(Render(), "text/plain; version=0.0.4; charset=utf-8");
    });
  }

  void Listen(const std::string& host, int port) {
    port_ = port == 0 ? server_.bind_to_any_port(host) : port;
    if (port_ < 0 || (port != 0 && !server_.bind_to_port(host, port))) {
      throw std::runtime_error("metrics: cannot listen on " + host + " port " +
                               std::to_string(port) + " (in use?)");
    }
    thread_ = std::thread([this] {
      server_.listen_after_bind();
      ended_ = true;
    });
    // Until it runs, a stop would not reach it (and the join would wait
    // for ever): a service stopped at once still ends.
    while (!server_.is_running() && !ended_) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  ~Impl() {
    server_.stop();
    if (thread_.joinable()) thread_.join();
  }

  void Configure(std::vector<std::pair<std::string, std::string>> sources) {
    std::lock_guard<std::mutex> lock(mutex_);
    sources_ = std::move(sources);
  }

  int port() const { return port_; }

 private:
  std::string Render() {
    MetricsInput input;
    input.started_us = started_us_;
    input.now_us = NowMicros();
    {
      std::lock_guard<std::mutex> lock(mutex_);
      input.sources = sources_;
    }
    input.streams = board_.Snapshot();
    input.latency = board_.latency();
    input.progress = board_.progress();
    return MetricsText(input);
  }

  const StatusBoard& board_;
  const int64_t started_us_;
  httplib::Server server_;
  std::thread thread_;
  std::atomic<bool> ended_{false};
  int port_ = 0;
  std::mutex mutex_;
  std::vector<std::pair<std::string, std::string>> sources_;
};

MetricsServer::MetricsServer(const std::string& host, int port, const StatusBoard& board,
                             int64_t started_us)
    : impl_(std::make_unique<Impl>(board, started_us)) {
  impl_->Listen(host, port);
}

MetricsServer::~MetricsServer() = default;

void MetricsServer::Configure(std::vector<std::pair<std::string, std::string>> sources) {
  impl_->Configure(std::move(sources));
}

int MetricsServer::port() const { return impl_->port(); }

}  // namespace velqua_capture
