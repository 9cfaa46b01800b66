// A throwaway PostgreSQL server for the tests: initdb and pg_ctl of the
// Debian `postgresql` package on a temporary folder and a free loopback
// port, trust authentication over TCP 127.0.0.1. initdb refuses to run as
// root, so under root the server runs as the `postgres` system user. A
// server that cannot start is a failure (the exception carries its log):
// the PostgreSQL engine is never silently left untested.
#pragma once

#include <string>

namespace velqua_store_testing {

class PgTestServer {
 public:
  // Makes the cluster and starts it; throws std::runtime_error.
  PgTestServer();
  // Stops the server at once and removes its folder.
  ~PgTestServer();
  PgTestServer(const PgTestServer&) = delete;
  PgTestServer& operator=(const PgTestServer&) = delete;

  // A new empty database on the server, as a store URL.
  std::string NewDatabase();

  // Stops the server (fast shutdown: connections are cut) or starts it
  // again on the same port.
  void Stop();
  void Start();

  int port() const { return port_; }

  // The server shared by the tests of this process, started on first use
  // and stopped at exit.
  static PgTestServer& Shared();

 private:
  std::string dir_;
  int port_ = 0;
  int databases_ = 0;
  bool running_ = false;
};

// A new temporary folder for a test, removed by the test's own cleanup.
std::string TempDir(const std::string& name);

}  // namespace velqua_store_testing
