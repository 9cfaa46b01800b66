// The capture service's configuration: a TOML file naming the store, the
// spool folder, and each switch with its configuration, framing and sources
// (doc/capture.md, "Configuration"). Every value is checked on loading, so a
// service that starts has nothing left to refuse.
#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/capture/spool.h"
#include "velqua/records/framer.h"

namespace velqua_capture {

using Millis = std::chrono::milliseconds;

// A configuration the service refuses: "FILE:LINE: KEY: what is wrong".
class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One step of a login script: wait until `expect` has been received (an
// empty one matches at once), then send `send`.
struct LoginStep {
  std::string expect;
  std::string send;
  Millis timeout{10000};  // default 10 s
};

enum class SourceKind { kSerial, kTcpConnect, kTcpListen, kFileFollow };

enum class Parity { kNone, kEven, kOdd, kMark, kSpace };
enum class FlowControl { kNone, kRtsCts, kXonXoff };

struct SourceSettings {
  std::string name;  // unique in the service; letters, digits, '-', '_', '.'
  SourceKind kind = SourceKind::kTcpConnect;
  // serial: the device and its line (defaults 9600 8N1, no flow control);
  // DTR is held on.
  std::string device;
  int baud = 9600;
  int data_bits = 8;
  Parity parity = Parity::kNone;
  int stop_bits = 1;
  FlowControl flow = FlowControl::kNone;
  // tcp-connect: where the switch listens, and the login script.
  std::string host;
  int port = 0;
  std::vector<LoginStep> login;
  // What the switch answers a refused login with (tcp-connect with a login).
  std::vector<std::string> login_failure = {"Login incorrect", "Invalid"};
  // tcp-listen: the address and port to listen on (default 127.0.0.1), and
  // the peers allowed (addresses or networks such as 10.1.0.0/16; empty: any).
  std::string bind = "127.0.0.1";
  std::vector<std::string> allow;
  // file-follow: the file another program appends to, and where its
  // rotated files go when not beside it with names starting with its own
  // (a pattern of `*` and `?`, such as "archive/smdr-*.log"; "": none).
  std::string path;
  std::string rotated;
  // Reconnection (and serial reopening) waits from retry_min, doubling up
  // to retry_max, with jitter. Defaults 1 s and 60 s.
  Millis retry_min{1000};
  Millis retry_max{60000};
  // A warning when nothing comes for this long. Default: the service's.
  Millis silence{0};
};

struct SwitchSettings {
  std::string name;        // the switch's name in the store; unique in the service
  std::string config;      // its configuration (.cfg, .ini or .json), resolved path
  std::string extensions;  // the account code to extension list, or ""
  std::string time_zone;   // e.g. "Europe/Madrid", or "" (local time only)
  bool utf8 = false;       // records in UTF-8 rather than Windows-1252
  velqua_records::FramingSettings framing;
  Millis idle_flush{2000};  // a record left open this long is complete
  // The re-send rule's horizon: the last this-many records of the source,
  // no older than resend_age before the connection. Defaults 1,000 and 24 h.
  int64_t resend_records = 1000;
  Millis resend_age{24 * 3600 * 1000};
  std::vector<SourceSettings> sources;
};

struct ServiceSettings {
  std::string file;   // the configuration file these came from
  std::string store;  // a store location (sqlite:FILE, FILE, postgresql://...)
  std::string spool;  // the spool folder, resolved path
  FsyncPolicy fsync = FsyncPolicy::kAlways;
  Millis fsync_interval{1000};     // with fsync = "interval"
  Millis silence{60 * 60 * 1000};  // default silence warning: 60 min
  // Prometheus metrics (metrics.h): the loopback address and port to serve
  // /metrics on; port 0 (the default) serves none.
  std::string metrics_host = "127.0.0.1";
  int metrics_port = 0;
  std::vector<SwitchSettings> switches;
};

// Reads and checks the configuration file at `path`; relative paths in it
// are taken from the file's folder. Loads each switch's configuration to
// check it. Throws SettingsError naming the file, the line and the key.
ServiceSettings LoadSettings(const std::string& path);

// The same from the text of a configuration file called `path`.
ServiceSettings ParseSettings(std::string_view text, const std::string& path);

// A duration as written in the file: "500ms", "2s", "60m", "24h", "1d", or
// a whole number of seconds; false when `text` is none of these.
bool ParseDuration(std::string_view text, Millis* out);

// The source and switch a stream of the spool belongs to: the source's name
// before any "/" (a listening source's peers are "name/address").
std::string_view SourceOfStream(std::string_view stream);

}  // namespace velqua_capture
