// velqua serve: the web page and its JSON API over a call store. One
// process, one port; the page is built into the program, so nothing else is
// installed or fetched.
//
// Who may see what: while the store has no users the server only listens
// on a loopback address and whoever reaches it acts as an administrator;
// once one user exists, every request needs a login. Viewers read; admins
// also change the directory, tariffs and configurations.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velqua/records/common.h"

namespace velqua_web {

// A failure of the server's set-up (a bad address or configuration, a port
// taken, a refused non-loopback address): one line naming what is wrong.
class ServeError : public velqua_records::Failure {
 public:
  using Failure::Failure;
};

struct ServeOptions {
  std::string db;                         // the store's URL, as OpenStore takes it
  std::string listen = "127.0.0.1:8080";  // host:port; port 0 = any free port
  std::string tls_cert, tls_key;          // PEM files; both or neither (HTTPS)
  int64_t body_limit = 1 << 20;           // bytes of a request body; larger: 413
  int64_t session_minutes = 480;          // a session ends after this long unused
  int64_t connections = 4;                // store connections the requests share
  int64_t threads = 64;                   // requests served at once (live pages hold one each)
  // The capture services whose status the Capture view shows: their
  // configuration files, and what reads a service's status as JSON from its
  // configuration (the program gives the capture layer's reader; unset:
  // the view says capture status is not available).
  std::vector<std::string> capture;
  std::function<std::string(const std::string& config)> capture_status;
};

// Reads a serve configuration (TOML) into `options`: listen, tls_cert,
// tls_key, body_limit, session_minutes, connections, threads, capture (a
// list of capture configurations, relative to the file's folder); keys it does
// not set keep their value. Throws ServeError naming the file, and the key
// or line, on a file that cannot be read, a malformed file, an unknown key
// or a value of the wrong kind or out of range.
void LoadServeConfig(const std::string& path, ServeOptions& options);

// Splits "host:port" ("[::1]:8080" for IPv6). Throws ServeError.
void SplitListen(const std::string& listen, std::string* host, int* port);

// Whether the host is a loopback address (127.0.0.0/8, ::1, "localhost").
bool IsLoopback(const std::string& host);

class Server {
 public:
  // Opens the store (which must exist) and binds the address. Throws
  // ServeError when the address is not loopback and the store has no users,
  // when the address cannot be bound, or when TLS files do not load;
  // StoreError when the store cannot be opened.
  explicit Server(const ServeOptions& options);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // The port bound (the one chosen when the options asked for 0).
  int port() const;
  // The page's address, e.g. "http://127.0.0.1:8080/".
  std::string url() const;

  // Serves until Stop() (from another thread or a signal handler's thread).
  void Run();
  void Stop();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace velqua_web
