// The fault harness's followed file: records appended at a steady rate while
// the service is killed with SIGKILL; while it is down the file is rotated
// (renamed away, a new one started) or copied and truncated, in turn. The
// store must hold every record once, and no gap.
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <random>
#include <thread>

#include "fault_harness.h"

namespace velqua_capture_test {

int RunFileFaults(const Options& o) {
  namespace fs = std::filesystem;
  const auto begin = std::chrono::steady_clock::now();
  const std::string dir = TempDir("fault-file");
  std::unique_ptr<velqua_store_testing::PgTestServer> server;
  const std::string store = StoreFor(o, dir, &server);
  const std::string config = HarnessConfig(o, dir, store, FollowSource("smdr.log"));
  const std::vector<std::string> expected = GenerateRecords(dir + "/records.txt", o.records);
  const std::string log = dir + "/smdr.log";
  std::mutex file;  // held while the file is rotated
  std::atomic<bool> written{false};
  std::thread writer([&] {
    std::ifstream in(dir + "/records.txt", std::ios::binary);
    const auto start = std::chrono::steady_clock::now();
    int64_t i = 0;
    for (std::string line; std::getline(in, line); ++i) {
      std::this_thread::sleep_until(start + std::chrono::microseconds(i * 1000000 / o.rate));
      std::lock_guard<std::mutex> lock(file);
      std::ofstream(log, std::ios::app | std::ios::binary) << line << '\n';
    }
    written = true;
  });
  auto service = StartService(config, dir);
  // A service that never ran starts at the file as it finds it (the files
  // rotated before are not its business): the first run must have found it.
  WaitFor([&] { return fs::exists(dir + "/spool/follow-log"); });
  std::mt19937_64 random(std::random_device{}());
  const double seconds = static_cast<double>(o.records) / static_cast<double>(o.rate);
  const double slot = 0.9 * seconds / std::max(1, o.kills);
  std::uniform_real_distribution<double> in_slot(0, 0.5 * slot);
  int rotated = 0, truncated = 0;
  for (int i = 0; i < o.kills; ++i) {
    std::this_thread::sleep_until(
        begin + std::chrono::duration<double>(0.05 * seconds + i * slot + in_slot(random)));
    service->Stop(SIGKILL);
    {
      std::lock_guard<std::mutex> lock(file);
      const std::string old = log + "." + std::to_string(i);
      if (!fs::exists(log)) {
        // Renamed away at the last kill, and nothing written since (the
        // writer is done, or slower than the kills on a loaded machine).
      } else if (i % 2 == 0) {
        fs::rename(log, old);
        ++rotated;
      } else {
        fs::copy_file(log, old);
        fs::resize_file(log, 0);
        ++truncated;
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // written while down
    service = StartService(config, dir);
  }
  writer.join();
  WaitForStore(store, expected.size(), std::chrono::seconds(30));
  const int stopped = service->Stop(SIGTERM);
  const std::vector<std::string> calls = StoredCalls(store);
  const std::vector<std::string> unrecognised = StoredUnrecognised(store);
  const auto [lost, duplicated, foreign] = Compare(expected, calls);
  const std::string said = ReadFile(dir + "/service.log");
  const bool gap = said.find("could not be read (bytes unknown)") != std::string::npos;
  const double took =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  std::printf(
      "followed file: records %lld, kills %d (while down: %d rotations, %d copies and "
      "truncations), fsync %s, store %s: stored %zu, lost %lld, duplicated %lld, foreign %lld, "
      "unrecognised %zu, gap %s, %.1f s\n",
      static_cast<long long>(o.records), o.kills, rotated, truncated, o.fsync.c_str(),
      o.store.c_str(), calls.size(), static_cast<long long>(lost),
      static_cast<long long>(duplicated), static_cast<long long>(foreign), unrecognised.size(),
      gap ? "yes" : "no", took);
  const bool ok = written && stopped == 0 && lost == 0 && duplicated == 0 && foreign == 0 &&
                  unrecognised.empty() && !gap;
  if (!ok) std::printf("FAILED: see %s/service.log\n", dir.c_str());
  return ok ? 0 : 1;
}

}  // namespace velqua_capture_test
