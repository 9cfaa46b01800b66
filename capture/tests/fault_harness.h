// What the fault harness's two scenarios share: its options, the store it
// writes to, and the comparison of what was sent with what was stored.
#pragma once

#include <chrono>
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

// The records the pusher sends again after each reconnection: those of the
// last second, at least 200. A killed service loses what it had not read
// from its socket yet, and the re-send is what brings it back: it must
// reach back over the service's longest lag (the spooling of a slow build
// on a loaded machine), not only over its usual one.
int64_t Resend(const Options& o);

// One connection of the pusher, as it told it: the records it carried, the
// re-sent ones included (numbered from 1 in the pusher's order), and
// whether it broke (a cut, or the service gone).
struct Pushed {
  int64_t first = 0, last = 0;
  bool broke = false;
};
std::vector<Pushed> PushedConnections(const std::vector<std::string>& said);

// One line for each run of records missing from `stored` (`in_order` is what
// was pushed, in order): where they were last sent, and whether the service
// had them to lose.
std::vector<std::string> Explain(const std::vector<std::string>& in_order,
                                 const std::vector<std::string>& stored,
                                 const std::vector<Pushed>& connections);

// The lines of a records file, in order.
std::vector<std::string> RecordsInOrder(const std::string& path);

// Waits until the store holds `count` records (calls and unrecognised),
// however long that takes while the count still grows; gives up once it
// has not moved for `stall`. Returns the count it last saw.
int64_t WaitForStore(const std::string& store, size_t count, std::chrono::seconds stall);

int RunPusher(const Options& o);
int RunFileFaults(const Options& o);

}  // namespace velqua_capture_test
