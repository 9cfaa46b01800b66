// serve.toml: the server's options, as the command line's --config names it.
#include <toml++/toml.h>

#include <limits>

#include "velqua/web/server.h"

namespace velqua_web {
namespace {

void ReadText(const toml::table& t, const char* key, std::string& out, const std::string& path) {
  if (const toml::node* n = t.get(key)) {
    if (!n->is_string()) throw ServeError(path + ": '" + key + "' must be a text");
    out = *n->value<std::string>();
  }
}

void ReadCount(const toml::table& t, const char* key, int64_t low, int64_t high, int64_t& out,
               const std::string& path) {
  if (const toml::node* n = t.get(key)) {
    const std::optional<int64_t> v = n->is_integer() ? n->value<int64_t>() : std::nullopt;
    if (!v || *v < low || *v > high) {
      throw ServeError(path + ": '" + key + "' must be an integer from " + std::to_string(low) +
                       " to " + std::to_string(high));
    }
    out = *v;
  }
}

// A list of texts; relative paths are taken from the folder of `path`.
void ReadPaths(const toml::table& t, const char* key, std::vector<std::string>& out,
               const std::string& path) {
  const toml::node* n = t.get(key);
  if (n == nullptr) return;
  const toml::array* list = n->as_array();
  if (list == nullptr) throw ServeError(path + ": '" + key + "' must be a list of file names");
  const size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  out.clear();
  for (const toml::node& item : *list) {
    const std::optional<std::string> v = item.value<std::string>();
    if (!item.is_string() || v->empty()) {
      throw ServeError(path + ": '" + key + "' must be a list of file names");
    }
    out.push_back(v->front() == '/' ? *v : folder + *v);
  }
}

}  // namespace

void LoadServeConfig(const std::string& path, ServeOptions& o) {
  toml::table t;
  try {
    t = toml::parse_file(path);
  } catch (const toml::parse_error& e) {
    throw ServeError(path + ":" + std::to_string(e.source().begin.line) + ": " +
                     std::string(e.description()));
  }
  static const char* const kKeys[] = {"listen",          "tls_cert",    "tls_key", "body_limit",
                                      "session_minutes", "connections", "threads", "capture"};
  for (const auto& [key, node] : t) {
    bool known = false;
    for (const char* k : kKeys) known = known || key.str() == k;
    if (!known) throw ServeError(path + ": unknown key '" + std::string(key.str()) + "'");
  }
  ReadText(t, "listen", o.listen, path);
  ReadText(t, "tls_cert", o.tls_cert, path);
  ReadText(t, "tls_key", o.tls_key, path);
  ReadCount(t, "body_limit", 1024, int64_t{1} << 30, o.body_limit, path);
  ReadCount(t, "session_minutes", 1, 60 * 24 * 30, o.session_minutes, path);
  ReadCount(t, "connections", 1, 64, o.connections, path);
  ReadCount(t, "threads", 4, 1024, o.threads, path);
  ReadPaths(t, "capture", o.capture, path);
}

void SplitListen(const std::string& listen, std::string* host, int* port) {
  const size_t colon = listen.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == listen.size()) {
    throw ServeError("listen address '" + listen + "': use host:port, e.g. 127.0.0.1:8080");
  }
  std::string h = listen.substr(0, colon);
  if (h.front() == '[' && h.back() == ']') h = h.substr(1, h.size() - 2);
  const std::string digits = listen.substr(colon + 1);
  int64_t p = 0;
  for (char c : digits) {
    if (c < '0' || c > '9' || p > 65535) {
      throw ServeError("listen address '" + listen + "': the port is a number from 0 to 65535");
    }
    p = p * 10 + (c - '0');
  }
  if (p > 65535) {
    throw ServeError("listen address '" + listen + "': the port is a number from 0 to 65535");
  }
  *host = h;
  *port = static_cast<int>(p);
}

bool IsLoopback(const std::string& host) {
  return host == "localhost" || host == "::1" || host.rfind("127.", 0) == 0;
}

}  // namespace velqua_web
