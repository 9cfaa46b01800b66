// Each kind of source against the emulator of a switch that delivers that
// way, on loopback and pseudo-terminals: every byte arrives, in order, and
// lost connections and devices come back.
#include <gtest/gtest.h>
#include <signal.h>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

#include "capture_test.h"
#include "velqua/capture/source.h"

namespace velqua_capture {
namespace {

using velqua_capture_test::Child;
using velqua_capture_test::Diff;
using velqua_capture_test::EmulatorPath;
using velqua_capture_test::WaitFor;

const std::string kRecords = std::string(VELQUA_SOURCE_DIR) + "/examples/kx-tda/records.txt";

// What the emulator sends for a records file: its lines, each ended by CR LF.
std::string Played(const std::string& file, const std::string& end = "\r\n") {
  std::ifstream in(file);
  std::string line, out;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) out += line + end;
  }
  return out;
}

// Records what a source reports.
class Recorder : public SourceEvents {
 public:
  void Connected(const std::string& stream, const std::string&) override {
    std::lock_guard<std::mutex> lock(mutex_);
    ++connects_[stream];
  }
  void Received(const std::string& stream, std::string_view bytes) override {
    std::lock_guard<std::mutex> lock(mutex_);
    data_[stream].append(bytes.data(), bytes.size());
  }
  void Disconnected(const std::string& stream, const std::string& reason) override {
    std::lock_guard<std::mutex> lock(mutex_);
    log_ += "disconnected " + stream + ": " + reason + "\n";
  }
  bool Held() const override { return false; }
  void Log(const std::string& line) override {
    std::lock_guard<std::mutex> lock(mutex_);
    log_ += line + "\n";
  }
  std::string data(const std::string& stream) {
    std::lock_guard<std::mutex> lock(mutex_);
    return data_[stream];
  }
  int connects(const std::string& stream) {
    std::lock_guard<std::mutex> lock(mutex_);
    return connects_[stream];
  }
  std::string log() {
    std::lock_guard<std::mutex> lock(mutex_);
    return log_;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, std::string> data_;
  std::map<std::string, int> connects_;
  std::string log_;
};

// A source running on its own io_context thread.
class Running {
 public:
  Running(const SourceSettings& s, const SwitchSettings& sw, const std::string& state_dir = "")
      : guard_(io_.get_executor()) {
    source_ = MakeSource(io_, s, sw, state_dir, recorder);
    source_->Start();
    thread_ = std::thread([this] { io_.run(); });
  }
  ~Running() {
    asio::post(io_, [this] { source_->Stop("test over"); });
    guard_.reset();
    thread_.join();
  }
  Recorder recorder;

 private:
  asio::io_context io_;
  asio::executor_work_guard<asio::io_context::executor_type> guard_;
  std::shared_ptr<Source> source_;
  std::thread thread_;
};

SourceSettings Source(SourceKind kind, int port = 0) {
  SourceSettings s;
  s.name = "src";
  s.kind = kind;
  s.host = "127.0.0.1";
  s.port = port;
  s.retry_min = Millis(50);
  s.retry_max = Millis(200);
  return s;
}

TEST(TcpConnectSource, LogsInAndReadsEveryByteInPiecesOrOneAtATimeAcrossCuts) {
  const struct {
    const char* name;
    std::vector<std::string> options;
    int min_connects;
  } rows[] = {
      {"whole records", {}, 1},
      {"one byte at a time", {"--one-byte"}, 1},
      {"cut every 7 records", {"--cut-every", "7"}, 5},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const int port = velqua_capture_test::FreePort();
    std::vector<std::string> args = {EmulatorPath(), "panasonic", "--port", std::to_string(port),
                                     "--records",    kRecords,    "--rate", "0"};
    args.insert(args.end(), row.options.begin(), row.options.end());
    Child emulator(args);
    ASSERT_NE(emulator.WaitLine("panasonic: listening"), "");
    SourceSettings s = Source(SourceKind::kTcpConnect, port);
    s.login = {{"login: ", "SMDR\r\n", Millis(5000)}, {"Password: ", "PCCSMDR\r\n", Millis(5000)}};
    Running running(s, {});
    const std::string expected = Played(kRecords);
    EXPECT_TRUE(WaitFor([&] { return running.recorder.data("src").size() >= expected.size(); }));
    EXPECT_EQ(Diff(running.recorder.data("src"), expected), "");
    EXPECT_GE(running.recorder.connects("src"), row.min_connects) << running.recorder.log();
  }
}

TEST(TcpListenSource, EachAllowedPeerIsAStreamAndOthersAreRefused) {
  const struct {
    const char* name;
    std::vector<std::string> allow;
    bool admitted;
  } rows[] = {
      {"no allow list", {}, true},
      {"its address allowed", {"127.0.0.1"}, true},
      {"its network allowed", {"127.0.0.0/8"}, true},
      {"another network only", {"10.0.0.0/8", "192.0.2.1"}, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const int port = velqua_capture_test::FreePort();
    SourceSettings s = Source(SourceKind::kTcpListen, port);
    s.allow = row.allow;
    Running running(s, {});
    ASSERT_TRUE(
        WaitFor([&] { return running.recorder.log().find("listening") != std::string::npos; }));
    Child pusher({EmulatorPath(), "ipoffice", "--port", std::to_string(port), "--records", kRecords,
                  "--rate", "0", "--resend", "0", "--retry-ms", "50"});
    if (row.admitted) {
      const std::string expected = Played(kRecords);
      EXPECT_TRUE(WaitFor(
          [&] { return running.recorder.data("src/127.0.0.1").size() >= expected.size(); }));
      EXPECT_EQ(Diff(running.recorder.data("src/127.0.0.1"), expected), "");
    } else {
      EXPECT_TRUE(WaitFor(
          [&] { return running.recorder.log().find("refused 127.0.0.1") != std::string::npos; }));
      EXPECT_EQ(running.recorder.connects("src/127.0.0.1"), 0);
    }
  }
}

// A pusher that re-sends its last records after every reconnection: the
// source hands over everything it is sent, re-sent records included (the
// re-send rule is the pipeline's business).
TEST(TcpListenSource, AReconnectingPusherIsReadAgainEachTime) {
  const int port = velqua_capture_test::FreePort();
  Running running(Source(SourceKind::kTcpListen, port), {});
  ASSERT_TRUE(
      WaitFor([&] { return running.recorder.log().find("listening") != std::string::npos; }));
  Child pusher({EmulatorPath(), "ipoffice", "--port", std::to_string(port), "--records", kRecords,
                "--rate", "0", "--resend", "2", "--cut-every", "10", "--retry-ms", "50"});
  ASSERT_NE(pusher.WaitLine("played"), "");
  // 32 records, cut after 10, 20 and 30: three reconnections, two re-sent each.
  const size_t expected = Played(kRecords).size();
  EXPECT_TRUE(WaitFor([&] { return running.recorder.connects("src/127.0.0.1") == 4; }));
  const std::string data = running.recorder.data("src/127.0.0.1");
  EXPECT_GT(data.size(), expected);
  std::ifstream in(kRecords);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    EXPECT_NE(data.find(line), std::string::npos) << line;
  }
}

TEST(SerialSource, ReadsAPseudoTerminalAndComesBackWhenTheDeviceReturns) {
  const std::string dir = velqua_capture_test::TempDir("serial");
  const std::string link = dir + "/ttySMDR";
  SourceSettings s = Source(SourceKind::kSerial);
  s.device = link;
  s.baud = 1200;
  s.parity = Parity::kEven;  // a pseudo-terminal refuses 7 data bits
  const std::string expected = Played(kRecords);
  auto emulator = std::make_unique<Child>(std::vector<std::string>{
      EmulatorPath(), "serial", "--link", link, "--records", kRecords, "--rate", "0"});
  ASSERT_NE(emulator->WaitLine("serial:"), "");
  Running running(s, {});
  EXPECT_TRUE(WaitFor([&] { return running.recorder.data("src").size() >= expected.size(); }))
      << running.recorder.log();
  emulator.reset();  // the device goes away
  EXPECT_TRUE(WaitFor([&] {
    return running.recorder.log().find("disconnected src: device lost") != std::string::npos;
  }));
  emulator = std::make_unique<Child>(std::vector<std::string>{EmulatorPath(), "serial", "--link",
                                                              link, "--records", kRecords, "--rate",
                                                              "0", "--one-byte"});
  EXPECT_TRUE(WaitFor([&] { return running.recorder.data("src").size() >= 2 * expected.size(); }));
  EXPECT_EQ(Diff(running.recorder.data("src"), expected + expected), "");
  EXPECT_EQ(running.recorder.connects("src"), 2);
}

TEST(FileFollowSource, FollowsRotationsAndTruncationsAndGoesOnWhereItStopped) {
  const std::string dir = velqua_capture_test::TempDir("follow");
  const std::string file = dir + "/smdr.log";
  SourceSettings s = Source(SourceKind::kFileFollow);
  s.path = file;
  SwitchSettings sw;
  sw.idle_flush = Millis(300);
  const std::string expected = Played(kRecords);
  {
    Running running(s, sw, dir);
    Child writer({EmulatorPath(), "file", "-o", file, "--records", kRecords, "--rate", "20",
                  "--rotate-every", "9"});
    EXPECT_NE(writer.WaitLine("played"), "");
    EXPECT_TRUE(WaitFor([&] { return running.recorder.data("src").size() >= expected.size(); }));
    EXPECT_EQ(Diff(running.recorder.data("src"), expected), "");
    EXPECT_NE(running.recorder.log().find("disconnected src: rotated"), std::string::npos);
    // Truncated and written again, with a last line left without its end.
    std::ofstream(file, std::ios::trunc) << "new 1\r\nnew 2";
    EXPECT_TRUE(WaitFor([&] {
      return running.recorder.data("src") == expected + "new 1\r\nnew 2";
    })) << running.recorder.data("src");
    EXPECT_NE(running.recorder.log().find("disconnected src: truncated"), std::string::npos);
  }
  std::ofstream(file, std::ios::app) << "\r\nnew 3\r\n";
  Running again(s, sw, dir);
  EXPECT_TRUE(WaitFor([&] { return again.recorder.data("src") == "\r\nnew 3\r\n"; }))
      << again.recorder.data("src");
}

}  // namespace
}  // namespace velqua_capture
