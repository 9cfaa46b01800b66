// The capture fault harness: N distinct records pushed by an IP Office-style
// emulator (which sends its last records again after every reconnection,
// then stays quiet a moment, as a quiet switch does) while the service is
// killed with SIGKILL and the connection is cut; at the end the store must
// hold exactly the records pushed: none lost, none twice. Prints one line of
// figures; exit status 0 only when nothing was lost or duplicated.
//
// The kills strike in turn: at a random moment under load; right after a
// reconnection (the connection's mark spooled, its re-sent records coming);
// and inside the re-sent part, while the switch is quiet after it. Every
// kill is itself followed by a reconnection, the first after a restart; a
// cut connection is made again at once.
//
//   velqua_capture_fault_harness [--records N] [--kills K] [--cuts C]
//                                [--rate R] [--fsync always|interval|never]
//                                [--quiet-ms Q] [--store sqlite|postgresql]
//                                [--source ipoffice|file]
//
// With `--source file` the records are appended to a followed file instead,
// and while the service is down the file is rotated (renamed away) or copied
// and truncated, in turn (fault_file.cpp).
//
// The test suite runs a short version; scripts/capture_fault_harness.sh
// the long one (doc/reliability.md).
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "fault_harness.h"

namespace velqua_capture_test {

Options Parse(int argc, char** argv) {
  Options o;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string key = argv[i];
    const std::string value = argv[i + 1];
    if (key == "--records") o.records = std::stoll(value);
    if (key == "--kills") o.kills = std::stoi(value);
    if (key == "--cuts") o.cuts = std::stoi(value);
    if (key == "--rate") o.rate = std::stoll(value);
    if (key == "--fsync") o.fsync = value;
    if (key == "--quiet-ms") o.quiet_ms = std::stoi(value);
    if (key == "--store") o.store = value;
    if (key == "--source") o.source = value;
  }
  return o;
}

Compared Compare(const std::vector<std::string>& expected, const std::vector<std::string>& stored) {
  std::map<std::string, int64_t> want, got;
  for (const std::string& r : expected) ++want[r];
  for (const std::string& r : stored) ++got[r];
  Compared c;
  for (const auto& [record, n] : want) {
    const auto it = got.find(record);
    const int64_t have = it == got.end() ? 0 : it->second;
    c.lost += std::max<int64_t>(0, n - have);
    c.duplicated += std::max<int64_t>(0, have - n);
  }
  for (const auto& [record, n] : got) c.foreign += want.count(record) ? 0 : n;
  return c;
}

std::string StoreFor(const Options& o, const std::string& dir,
                     std::unique_ptr<velqua_store_testing::PgTestServer>* server) {
  if (o.store != "postgresql") return dir + "/calls.db";
  *server = std::make_unique<velqua_store_testing::PgTestServer>();
  return (*server)->NewDatabase();
}

std::string HarnessConfig(const Options& o, const std::string& dir, const std::string& store,
                          const std::string& sources) {
  // The re-send rule's horizon reaches well over what the pusher sends
  // again, as doc/capture.md advises: a horizon of exactly the re-send's
  // size misses its oldest record whenever a fragment of a killed read is
  // among the records stored last, and the whole re-send is then new.
  const int64_t horizon = std::max<int64_t>(1000, 2 * Resend(o));
  const std::string config =
      WriteConfig(dir, store, "resend_horizon_records = " + std::to_string(horizon), sources);
  std::string text = ReadFile(config);
  text.replace(text.find("fsync = \"interval\""), 18, "fsync = \"" + o.fsync + "\"");
  std::ofstream(config, std::ios::trunc) << text;
  return config;
}

namespace {

// Where a kill strikes.
enum class Strike { kAnyMoment, kAfterReconnection, kInResentPart };
const char* const kStrikeNames[] = {"any moment", "after a reconnection", "in the re-sent part"};

// The number of connections the pusher has made so far.
size_t Connections(Child& pusher) {
  const std::vector<std::string> said = pusher.lines();
  return static_cast<size_t>(std::count_if(said.begin(), said.end(), [](const std::string& l) {
    return l.rfind("ipoffice: connected", 0) == 0;
  }));
}

}  // namespace

int RunPusher(const Options& o) {
  const auto begin = std::chrono::steady_clock::now();
  const std::string dir = TempDir("fault-harness");
  const int port = FreePort();
  std::unique_ptr<velqua_store_testing::PgTestServer> server;
  const std::string store = StoreFor(o, dir, &server);
  const std::string config = HarnessConfig(o, dir, store, ListenSource(port));
  const std::vector<std::string> expected = GenerateRecords(dir + "/records.txt", o.records);
  const int64_t resend = Resend(o);
  auto service = StartService(config, dir);
  Child pusher({EmulatorPath(), "ipoffice", "--port", std::to_string(port), "--records",
                dir + "/records.txt", "--rate", std::to_string(o.rate), "--resend",
                std::to_string(resend), "--cut-every", std::to_string(o.records / (o.cuts + 1)),
                "--retry-ms", "20", "--quiet-ms", std::to_string(o.quiet_ms)});
  // One kill in each slot of the run, the kinds in turn.
  std::mt19937_64 random(std::random_device{}());
  const double seconds = static_cast<double>(o.records) / static_cast<double>(o.rate);
  const double slot = 0.9 * seconds / std::max(1, o.kills);
  std::uniform_real_distribution<double> in_slot(0, 0.5 * slot);
  std::uniform_int_distribution<int> pause_ms(0, 300);
  std::uniform_int_distribution<int> after_connect_ms(0, 20);
  std::uniform_int_distribution<int> in_quiet_ms(20, std::max(21, o.quiet_ms - 20));
  int struck[3] = {0, 0, 0};
  int kills = 0;
  for (int i = 0; i < o.kills; ++i) {
    const auto strike = static_cast<Strike>(i % 3);
    std::this_thread::sleep_until(
        begin + std::chrono::duration<double>(0.05 * seconds + i * slot + in_slot(random)));
    if (strike != Strike::kAnyMoment) {
      // The next connection the pusher makes; the restart after the last
      // kill made one already when no cut comes first.
      const size_t seen = Connections(pusher);
      const bool reconnected = WaitFor([&] { return Connections(pusher) > seen; },
                                       std::chrono::milliseconds(static_cast<int>(slot * 500)));
      if (!reconnected) {
        // None came: make one (a kill of its own), and strike after it.
        service->Stop(SIGKILL);
        ++kills;
        service = StartService(config, dir);
        WaitFor([&] { return Connections(pusher) > seen; });
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(
          strike == Strike::kAfterReconnection ? after_connect_ms(random) : in_quiet_ms(random)));
    }
    service->Stop(SIGKILL);
    ++kills;
    ++struck[static_cast<int>(strike)];
    std::this_thread::sleep_for(std::chrono::milliseconds(pause_ms(random)));
    service = StartService(config, dir);
  }
  const bool played =
      !pusher.WaitLine("played", std::chrono::seconds(120 + 2 * static_cast<int>(seconds))).empty();
  // However long the service takes to store what it spooled (a slow build,
  // a loaded machine), as long as it goes on storing.
  const int64_t held = WaitForStore(store, expected.size(), std::chrono::seconds(30));
  const int stopped = service->Stop(SIGTERM);

  const std::vector<std::string> calls = StoredCalls(store);
  const std::vector<std::string> unrecognised = StoredUnrecognised(store);
  const auto [lost, duplicated, foreign] = Compare(expected, calls);
  // A record the service was reading when it was killed is kept as the
  // fragment it had (an unrecognised record); the pusher's re-send brings it
  // whole. Anything else unrecognised is a fault.
  int64_t fragments = 0;
  for (const std::string& u : unrecognised) {
    bool fragment = false;
    for (const std::string& e : expected) fragment = fragment || e.rfind(u, 0) == 0;
    fragments += fragment;
  }
  const std::vector<std::string> said = pusher.lines();
  const int cuts = static_cast<int>(std::count(said.begin(), said.end(), "cut"));
  const double took =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  std::printf(
      "records %lld, kills %d (%d at %s, %d %s, %d %s), cuts %d, fsync %s, store %s: stored %zu, "
      "lost %lld, duplicated %lld, "
      "foreign %lld, unrecognised %zu (fragments of a killed read %lld), re-sent dropped %lld, "
      "%.1f s\n",
      static_cast<long long>(o.records), kills, struck[0], kStrikeNames[0], struck[1],
      kStrikeNames[1], struck[2], kStrikeNames[2], cuts, o.fsync.c_str(), o.store.c_str(),
      calls.size(), static_cast<long long>(lost), static_cast<long long>(duplicated),
      static_cast<long long>(foreign), unrecognised.size(), static_cast<long long>(fragments),
      static_cast<long long>(SumOfDropped(ReadFile(dir + "/service.log"))), took);
  const bool ok = played && stopped == 0 && lost == 0 && duplicated == 0 && foreign == 0 &&
                  fragments == static_cast<int64_t>(unrecognised.size()) && cuts >= o.cuts &&
                  kills >= o.kills;
  if (!ok) {
    if (!played) std::printf("the pusher did not play all its records\n");
    if (held < static_cast<int64_t>(expected.size())) {
      std::printf("the store held %lld records, unchanged for 30 s, when the service was stopped\n",
                  static_cast<long long>(held));
    }
    for (const std::string& line :
         Explain(RecordsInOrder(dir + "/records.txt"), calls, PushedConnections(said))) {
      std::printf("%s\n", line.c_str());
    }
    std::printf("FAILED: see %s/service.log\n", dir.c_str());
  }
  return ok ? 0 : 1;
}

}  // namespace velqua_capture_test

int main(int argc, char** argv) {
  const velqua_capture_test::Options o = velqua_capture_test::Parse(argc, argv);
  return o.source == "file" ? velqua_capture_test::RunFileFaults(o)
                            : velqua_capture_test::RunPusher(o);
}
