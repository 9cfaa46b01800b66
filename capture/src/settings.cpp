#include "velqua/capture/settings.h"

#include <toml++/toml.h>
#include <filesystem>
#include <initializer_list>
#include <set>

#include "allow_list.h"
#include "velqua/capture/metrics.h"
#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/error_text.h"

namespace velqua_capture {
namespace {

namespace fs = std::filesystem;

const int kBauds[] = {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

// Reads one table of the file, naming the file, the line and the key in
// every error.
class Reader {
 public:
  Reader(const std::string& file, const toml::table& table, std::string path)
      : file_(file), table_(table), path_(std::move(path)) {}

  [[noreturn]] void Fail(const std::string& key, const std::string& what) const {
    const toml::node* node = table_.get(key);
    const auto line = (node != nullptr ? node->source() : table_.source()).begin.line;
    throw SettingsError(file_ + ":" + std::to_string(line) + ": " + Key(key) + ": " + what);
  }

  std::string Key(const std::string& key) const { return path_.empty() ? key : path_ + "." + key; }

  // Every key must be one of `known`: a misspelt key is an error, not a
  // silently ignored setting.
  void OnlyKeys(std::initializer_list<const char*> known, const std::string& of) const {
    for (const auto& [key, node] : table_) {
      bool found = false;
      for (const char* k : known) found = found || key.str() == k;
      if (!found) Fail(std::string(key.str()), "not a key of " + of);
    }
  }

  bool Has(const std::string& key) const { return table_.contains(key); }

  std::string String(const std::string& key, const std::string& fallback, bool required) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) {
      if (required) Fail(key, "missing");
      return fallback;
    }
    if (!node->is_string()) Fail(key, "must be a string");
    return std::string(*node->value<std::string_view>());
  }

  int64_t Integer(const std::string& key, int64_t fallback, int64_t low, int64_t high) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) return fallback;
    if (!node->is_integer()) Fail(key, "must be a whole number");
    const int64_t value = *node->value<int64_t>();
    if (value < low || value > high) {
      Fail(key, std::to_string(value) + " is outside " + std::to_string(low) + ".." +
                    std::to_string(high));
    }
    return value;
  }

  bool Bool(const std::string& key, bool fallback) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) return fallback;
    if (!node->is_boolean()) Fail(key, "must be true or false");
    return *node->value<bool>();
  }

  Millis Duration(const std::string& key, Millis fallback) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) return fallback;
    Millis value{};
    if (node->is_integer() && *node->value<int64_t>() >= 0 &&
        *node->value<int64_t>() < 10LL * 365 * 86400) {
      return std::chrono::seconds(*node->value<int64_t>());
    }
    if (!node->is_string() || !ParseDuration(*node->value<std::string_view>(), &value)) {
      Fail(key, "must be a duration such as \"500ms\", \"2s\", \"60m\", \"24h\" or seconds");
    }
    return value;
  }

  std::vector<std::string> Strings(const std::string& key) const {
    std::vector<std::string> out;
    const toml::node* node = table_.get(key);
    if (node == nullptr) return out;
    const toml::array* array = node->as_array();
    if (array == nullptr) Fail(key, "must be a list of strings");
    for (const toml::node& item : *array) {
      if (!item.is_string()) Fail(key, "must be a list of strings");
      out.emplace_back(*item.value<std::string_view>());
    }
    return out;
  }

  // The tables of an array of tables ([[key]]), each with its path.
  std::vector<Reader> Tables(const std::string& key) const {
    std::vector<Reader> out;
    const toml::node* node = table_.get(key);
    if (node == nullptr) return out;
    const toml::array* array = node->as_array();
    if (array == nullptr || !array->is_array_of_tables())
      Fail(key, "must be [[" + key + "]] tables");
    for (size_t i = 0; i < array->size(); ++i) {
      out.emplace_back(file_, *array->get(i)->as_table(), Key(key) + "[" + std::to_string(i) + "]");
    }
    return out;
  }

  // A subtable ([key]); an empty one when missing.
  Reader Table(const std::string& key) const {
    static const toml::table kEmpty;
    const toml::node* node = table_.get(key);
    if (node == nullptr) return Reader(file_, kEmpty, Key(key));
    if (!node->is_table()) Fail(key, "must be a table");
    return Reader(file_, *node->as_table(), Key(key));
  }

  // A path: relative ones are taken from the configuration file's folder.
  std::string Path(const std::string& key, bool required) const {
    const std::string value = String(key, "", required);
    if (value.empty()) {
      if (required) Fail(key, "must not be empty");
      return value;
    }
    return Resolve(value);
  }

  std::string Resolve(const std::string& value) const {
    if (fs::path(value).is_absolute()) return value;
    return (fs::path(file_).parent_path() / value).lexically_normal().string();
  }

  template <typename T>
  T Choice(const std::string& key, T fallback,
           std::initializer_list<std::pair<const char*, T>> words) const {
    if (!Has(key)) return fallback;
    const std::string value = String(key, "", true);
    std::string list;
    for (const auto& [word, choice] : words) {
      if (value == word) return choice;
      list += (list.empty() ? "" : ", ") + std::string(word);
    }
    Fail(key, "\"" + value + "\" is not one of " + list);
  }

 private:
  const std::string& file_;
  const toml::table& table_;
  std::string path_;
};

bool ValidName(const std::string& name) {
  if (name.empty() || name.size() > 64) return false;
  for (char c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.') {
      return false;
    }
  }
  return true;
}

std::string Name(const Reader& r, std::set<std::string>* seen, const char* what) {
  const std::string name = r.String("name", "", true);
  if (!ValidName(name)) {
    r.Fail("name", "\"" + name + "\" must be 1 to 64 letters, digits, '-', '_' or '.'");
  }
  if (!seen->insert(name).second)
    r.Fail("name", std::string("a second ") + what + " named \"" + name + "\"");
  return name;
}

void ReadLogin(const Reader& r, SourceSettings* s) {
  for (const Reader& step : r.Tables("login")) {
    step.OnlyKeys({"expect", "send", "timeout"}, "a login step");
    LoginStep l;
    l.expect = step.String("expect", "", false);
    l.send = step.String("send", "", false);
    l.timeout = step.Duration("timeout", l.timeout);
    if (l.expect.size() > 256) step.Fail("expect", "longer than 256 bytes");
    s->login.push_back(l);
  }
}

void ReadAllowList(const Reader& r, SourceSettings* s) {
  s->allow = r.Strings("allow");
  for (const std::string& peer : s->allow) {
    if (!AllowList::Valid(peer)) {
      r.Fail("allow", "\"" + peer + "\" is not an address or a network (10.1.0.0/16)");
    }
  }
}

SourceSettings ReadSource(const Reader& r, std::set<std::string>* names) {
  SourceSettings s;
  s.name = Name(r, names, "source");
  s.kind = r.Choice<SourceKind>("kind", SourceKind::kTcpConnect,
                                {{"serial", SourceKind::kSerial},
                                 {"tcp-connect", SourceKind::kTcpConnect},
                                 {"tcp-listen", SourceKind::kTcpListen},
                                 {"file-follow", SourceKind::kFileFollow}});
  if (!r.Has("kind")) r.Fail("kind", "missing (serial, tcp-connect, tcp-listen or file-follow)");
  s.retry_min = r.Duration("retry_min", s.retry_min);
  s.retry_max = r.Duration("retry_max", s.retry_max);
  if (s.retry_min.count() <= 0 || s.retry_max < s.retry_min) {
    r.Fail("retry_max", "retry_min must be above zero and retry_max at least retry_min");
  }
  s.silence = r.Duration("silence_warning", s.silence);
  switch (s.kind) {
    case SourceKind::kSerial: {
      r.OnlyKeys({"name", "kind", "device", "baud", "data_bits", "parity", "stop_bits",
                  "flow_control", "retry_min", "retry_max", "silence_warning"},
                 "a serial source");
      s.device = r.Path("device", true);
      s.baud = static_cast<int>(r.Integer("baud", s.baud, 300, 115200));
      bool listed = false;
      for (int b : kBauds) listed = listed || b == s.baud;
      if (!listed)
        r.Fail("baud", std::to_string(s.baud) + " is not a standard rate (300 to 115200)");
      s.data_bits = static_cast<int>(r.Integer("data_bits", s.data_bits, 7, 8));
      s.parity = r.Choice<Parity>("parity", Parity::kNone,
                                  {{"none", Parity::kNone},
                                   {"even", Parity::kEven},
                                   {"odd", Parity::kOdd},
                                   {"mark", Parity::kMark},
                                   {"space", Parity::kSpace}});
      s.stop_bits = static_cast<int>(r.Integer("stop_bits", s.stop_bits, 1, 2));
      s.flow = r.Choice<FlowControl>("flow_control", FlowControl::kNone,
                                     {{"none", FlowControl::kNone},
                                      {"rts-cts", FlowControl::kRtsCts},
                                      {"xon-xoff", FlowControl::kXonXoff}});
      break;
    }
    case SourceKind::kTcpConnect:
      r.OnlyKeys({"name", "kind", "host", "port", "login", "login_failure", "retry_min",
                  "retry_max", "silence_warning"},
                 "a tcp-connect source");
      s.host = r.String("host", "", true);
      if (s.host.empty()) r.Fail("host", "must not be empty");
      if (!r.Has("port")) r.Fail("port", "missing");
      s.port = static_cast<int>(r.Integer("port", 0, 1, 65535));
      ReadLogin(r, &s);
      if (r.Has("login_failure")) s.login_failure = r.Strings("login_failure");
      break;
    case SourceKind::kTcpListen:
      r.OnlyKeys({"name", "kind", "bind", "port", "allow", "silence_warning"},
                 "a tcp-listen source");
      s.bind = r.String("bind", s.bind, false);
      {
        asio::error_code ec;
        asio::ip::make_address(s.bind, ec);
        if (ec) r.Fail("bind", "\"" + s.bind + "\" is not an address");
      }
      if (!r.Has("port")) r.Fail("port", "missing");
      s.port = static_cast<int>(r.Integer("port", 0, 1, 65535));
      ReadAllowList(r, &s);
      break;
    case SourceKind::kFileFollow:
      r.OnlyKeys({"name", "kind", "path", "rotated", "silence_warning"}, "a file-follow source");
      s.path = r.Path("path", true);
      s.rotated = r.Path("rotated", false);
      break;
  }
  return s;
}

void ReadFraming(const Reader& r, SwitchSettings* s) {
  r.OnlyKeys({"record_end", "strip_bit7", "strip_controls", "page_headings", "idle_flush"},
             "[switch.framing]");
  if (r.Has("record_end") &&
      !velqua_records::RecordEndOf(r.String("record_end", "", true), &s->framing.end)) {
    r.Fail("record_end", "must be one of line, cr, lf, crlf, nul, stx-etx");
  }
  s->framing.strip_bit7 = r.Bool("strip_bit7", false);
  s->framing.strip_controls = r.Bool("strip_controls", false);
  s->framing.page_headings = r.Strings("page_headings");
  s->idle_flush = r.Duration("idle_flush", s->idle_flush);
  if (s->idle_flush.count() <= 0) r.Fail("idle_flush", "must be above zero");
  try {
    velqua_records::Framer check(s->framing);
  } catch (const velqua_records::Failure& e) {
    r.Fail("page_headings", e.what());
  }
}

// Loads the switch's configuration and extension list as the service will.
void CheckSwitchFiles(const Reader& r, const SwitchSettings& s) {
  try {
    velqua_records::LoadConfig(s.config);
  } catch (const velqua_records::Failure& e) {
    r.Fail("config", e.what());
  } catch (const velqua::Error& e) {
    r.Fail("config", "'" + s.config + "': " + velqua_records::ErrorText(e));
  }
  if (!s.extensions.empty()) {
    try {
      velqua_records::RequireReadableFile(s.extensions, "extension list");
    } catch (const velqua_records::Failure& e) {
      r.Fail("extensions", e.what());
    }
  }
  if (!s.time_zone.empty() && s.time_zone != "UTC" && fs::is_directory("/usr/share/zoneinfo") &&
      (s.time_zone.find("..") != std::string::npos ||
       !fs::is_regular_file("/usr/share/zoneinfo/" + s.time_zone))) {
    r.Fail("time_zone", "\"" + s.time_zone + "\" is not a time zone (such as Europe/Madrid)");
  }
}

SwitchSettings ReadSwitch(const Reader& r, std::set<std::string>* switches,
                          std::set<std::string>* sources) {
  r.OnlyKeys({"name", "config", "extensions", "time_zone", "encoding", "framing",
              "resend_horizon_records", "resend_horizon_age", "source"},
             "a [[switch]]");
  SwitchSettings s;
  s.name = Name(r, switches, "switch");
  // A bundled switch's name (no folder, no extension) is taken as it is; a
  // file name is from the settings file's folder, as every other path.
  s.config = r.Path("config", true);
  const std::string given = r.String("config", "", true);
  if (given.find('/') == std::string::npos && velqua_records::LowerExtension(given).empty() &&
      !fs::exists(s.config)) {
    s.config = given;
  }
  s.extensions = r.Path("extensions", false);
  s.time_zone = r.String("time_zone", "", false);
  s.utf8 = r.Choice<bool>("encoding", false, {{"windows-1252", false}, {"utf-8", true}});
  ReadFraming(r.Table("framing"), &s);
  s.resend_records = r.Integer("resend_horizon_records", s.resend_records, 0, 1000000);
  s.resend_age = r.Duration("resend_horizon_age", s.resend_age);
  for (const Reader& source : r.Tables("source")) s.sources.push_back(ReadSource(source, sources));
  if (s.sources.empty()) r.Fail("source", "a switch needs at least one [[switch.source]]");
  CheckSwitchFiles(r, s);
  return s;
}

}  // namespace

bool ParseDuration(std::string_view text, Millis* out) {
  static const std::pair<const char*, int64_t> kUnits[] = {
      {"ms", 1}, {"s", 1000}, {"m", 60000}, {"h", 3600000}, {"d", 86400000}};
  size_t i = 0;
  int64_t number = 0;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9' && number < 1000000000) {
    number = number * 10 + (text[i++] - '0');
  }
  if (i == 0) return false;
  const std::string_view unit = text.substr(i);
  for (const auto& [name, scale] : kUnits) {
    if (unit == name || (unit.empty() && scale == 1000)) {
      *out = Millis(number * scale);
      return true;
    }
  }
  return false;
}

std::string_view SourceOfStream(std::string_view stream) {
  return stream.substr(0, stream.find('/'));
}

ServiceSettings ParseSettings(std::string_view text, const std::string& path) {
  toml::table root;
  try {
    root = toml::parse(text, path);
  } catch (const toml::parse_error& e) {
    throw SettingsError(path + ":" + std::to_string(e.source().begin.line) + ": " +
                        std::string(e.description()));
  }
  const Reader r(path, root, "");
  r.OnlyKeys({"store", "spool", "fsync", "fsync_interval", "silence_warning", "metrics", "switch"},
             "the service's configuration");
  ServiceSettings s;
  s.file = path;
  s.store = r.String("store", "", true);
  if (s.store.empty()) r.Fail("store", "must not be empty");
  if (s.store.rfind("postgresql://", 0) != 0 && s.store.rfind("postgres://", 0) != 0) {
    const bool prefixed = s.store.rfind("sqlite:", 0) == 0;
    s.store = "sqlite:" + r.Resolve(prefixed ? s.store.substr(7) : s.store);
  }
  s.spool = r.Path("spool", true);
  s.fsync = r.Choice<FsyncPolicy>("fsync", FsyncPolicy::kAlways,
                                  {{"always", FsyncPolicy::kAlways},
                                   {"interval", FsyncPolicy::kInterval},
                                   {"never", FsyncPolicy::kNever}});
  s.fsync_interval = r.Duration("fsync_interval", s.fsync_interval);
  s.silence = r.Duration("silence_warning", s.silence);
  if (const std::string metrics = r.String("metrics", "", false); !metrics.empty()) {
    if (!ParseMetricsAddress(metrics, &s.metrics_host, &s.metrics_port)) {
      r.Fail("metrics",
             "\"" + metrics +
                 "\" is not a loopback port: \"9465\", \"127.0.0.1:9465\" or \"[::1]:9465\" (the "
                 "metrics are served to this host only)");
    }
  }
  std::set<std::string> switches;
  std::set<std::string> sources;
  for (const Reader& sw : r.Tables("switch"))
    s.switches.push_back(ReadSwitch(sw, &switches, &sources));
  if (s.switches.empty()) r.Fail("switch", "no [[switch]]: nothing to capture");
  for (SwitchSettings& sw : s.switches) {
    for (SourceSettings& source : sw.sources) {
      if (source.silence.count() == 0) source.silence = s.silence;
    }
  }
  return s;
}

ServiceSettings LoadSettings(const std::string& path) {
  std::string text;
  try {
    text = velqua_records::ReadWholeFile(path, "capture configuration");
  } catch (const velqua_records::Failure& e) {
    throw SettingsError(e.what());
  }
  return ParseSettings(text, path);
}

}  // namespace velqua_capture
