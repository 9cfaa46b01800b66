// What the fault harness's two scenarios share: its options, the store it
// writes to, and the comparison of what was sent with what was stored.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pg_test_server.h"
#include "service_support.h"

namespace velqua_capture_test {

struct Options {
  int64_t records = 10000;
  int kills = 5;
  int cuts = 5;
  int64_t rate = 1000;
  std::string fsync = "always";
  int quiet_ms = 300;
  std::string store = "sqlite";
  std::string source = "ipoffice";
};

Options Parse(int argc, char** argv);

// Records sent and not stored, stored more than sent, stored and never sent.
struct Compared {
  int64_t lost = 0, duplicated = 0, foreign = 0;
};
Compared Compare(const std::vector<std::string>& expected, const std::vector<std::string>& stored);

// The store of the run: a SQLite file in `dir`, or a database on a
// PostgreSQL server started for the run (kept in *server).
std::string StoreFor(const Options& o, const std::string& dir,
                     std::unique_ptr<velqua_store_testing::PgTestServer>* server);

// The service's configuration for the run, with the fsync policy under test.
std::string HarnessConfig(const Options& o, const std::string& dir, const std::string& store,
                          const std::string& sources);

int RunPusher(const Options& o);
int RunFileFaults(const Options& o);

}  // namespace velqua_capture_test
