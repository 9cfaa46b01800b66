// The metrics' address setting and their text form, line by line as
// Prometheus parses it. Served over loopback: tools/velqua/tests.
#include "velqua/capture/metrics.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace velqua_capture {
namespace {

TEST(CaptureMetrics, AddressIsALoopbackPort) {
  const struct {
    const char* text;
    bool ok;
    const char* host;
    int port;
  } cases[] = {
      {"9465", true, "127.0.0.1", 9465},
      {"127.0.0.1:9465", true, "127.0.0.1", 9465},
      {"localhost:80", true, "127.0.0.1", 80},
      {"[::1]:65535", true, "::1", 65535},
      {"0.0.0.0:9465", false, "", 0},   // every address: not this host only
      {"10.1.0.7:9465", false, "", 0},  // another interface
      {"[::]:9465", false, "", 0},
      {"127.0.0.1:0", false, "", 0},
      {"127.0.0.1:65536", false, "", 0},
      {"127.0.0.1:", false, "", 0},
      {"port", false, "", 0},
      {"99999999999", false, "", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::string host;
    int port = 0;
    EXPECT_EQ(ParseMetricsAddress(c.text, &host, &port), c.ok);
    if (!c.ok) continue;
    EXPECT_EQ(host, c.host);
    EXPECT_EQ(port, c.port);
  }
}

TEST(CaptureMetrics, TextFormatWithEveryStreamAndTheSourcesNotSeen) {
  MetricsInput input;
  input.started_us = 1768809600000000;             // 2026-01-19T08:00:00Z
  input.now_us = 1768813200500000;                 // an hour later
  input.progress.caught_up_us = 1768813190000000;  // 10.5 s behind
  input.progress.pending_bytes = 4096;
  input.latency = {120, 4, 37, 1250};
  input.sources = {{"lan", "kx"}, {"ipo", "ip \"office\""}};
  StreamStatus s;
  s.stream = "lan";
  s.source = "lan";
  s.switch_name = "kx";
  s.connected = true;
  s.bytes = 8160;
  s.records = 118;
  s.unrecognised = 2;
  s.last_record_us = 1768813200123456;
  input.streams = {s};
  const std::string text = MetricsText(input);

  // Every line is a comment (HELP or TYPE) or a sample: name, labels, value.
  const std::regex comment(R"(# (HELP|TYPE) velqua_capture_[a-z_]+ .+)");
  const std::regex sample(
      R"(velqua_capture_[a-z_]+(\{([a-z_]+="([^"\\]|\\.)*",?)+\})? -?[0-9]+(\.[0-9]+)?)");
  std::istringstream lines(text);
  int samples = 0;
  for (std::string line; std::getline(lines, line);) {
    SCOPED_TRACE(line);
    EXPECT_TRUE(std::regex_match(line, comment) || std::regex_match(line, sample));
    samples += line[0] != '#';
  }
  EXPECT_EQ(samples, 10 * 2 + 1 + 1 + 3 + 1);  // 10 per stream, 2 streams, then the service's
  for (const char* expected : {
           "velqua_capture_records_total{stream=\"lan\",source=\"lan\",switch=\"kx\"} 118\n",
           "velqua_capture_connected{stream=\"lan\",source=\"lan\",switch=\"kx\"} 1\n",
           "velqua_capture_received_bytes_total{stream=\"lan\",source=\"lan\",switch=\"kx\"} "
           "8160\n",
           "velqua_capture_last_record_timestamp_seconds{stream=\"lan\",source=\"lan\","
           "switch=\"kx\"} 1768813200.123456\n",
           // a source nothing came from yet: disconnected, its switch's name escaped
           "velqua_capture_connected{stream=\"ipo\",source=\"ipo\",switch=\"ip \\\"office\\\"\"} "
           "0\n",
           "velqua_capture_spool_pending_bytes 4096\n",
           "velqua_capture_store_lag_seconds 10.500000\n",
           "velqua_capture_store_latency_seconds{quantile=\"0.99\"} 0.037\n",
           "velqua_capture_store_latency_seconds{quantile=\"1\"} 1.250\n",
           "# TYPE velqua_capture_records_total counter\n",
           "# TYPE velqua_capture_connected gauge\n",
       }) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected << "\nin:\n" << text;
  }
}

}  // namespace
}  // namespace velqua_capture
