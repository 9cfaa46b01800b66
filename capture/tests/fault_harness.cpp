// The capture fault harness: N distinct records pushed by an IP Office-style
// emulator (which sends its last records again after every reconnection)
// while the service is killed with SIGKILL at random moments and the
// connection is cut; at the end the store must hold exactly the records
// pushed: none lost, none twice. Prints one line of figures; exit status 0
// only when nothing was lost or duplicated.
//
//   velqua_capture_fault_harness [--records N] [--kills K] [--cuts C]
//                                [--rate R] [--fsync always|interval|never]
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

#include "service_support.h"

namespace velqua_capture_test {
namespace {

struct Options {
  int64_t records = 10000;
  int kills = 5;
  int cuts = 5;
  int64_t rate = 1000;
  std::string fsync = "always";
};

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
  }
  return o;
}

// How many times each record occurs.
std::map<std::string, int64_t> Counts(const std::vector<std::string>& records) {
  std::map<std::string, int64_t> counts;
  for (const std::string& r : records) ++counts[r];
  return counts;
}

int64_t SumOfDropped(const std::string& log) {
  int64_t sum = 0;
  for (size_t at = 0; (at = log.find(" re-sent records dropped", at)) != std::string::npos; ++at) {
    size_t start = at;
    while (start > 0 && std::isdigit(static_cast<unsigned char>(log[start - 1]))) --start;
    sum += std::stoll(log.substr(start, at - start));
  }
  return sum;
}

int Run(const Options& o) {
  const auto begin = std::chrono::steady_clock::now();
  const std::string dir = TempDir("fault-harness");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(
      dir, store, "",
      "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = " + std::to_string(port));
  {  // the fsync policy under test
    std::string text = ReadFile(config);
    text.replace(text.find("fsync = \"interval\""), 18, "fsync = \"" + o.fsync + "\"");
    std::ofstream(config, std::ios::trunc) << text;
  }
  const std::vector<std::string> expected = GenerateRecords(dir + "/records.txt", o.records);
  // The pusher sends again what the last 0.2 s carried: more than a killed
  // service can have taken from the socket without writing it to the spool.
  const int64_t resend = std::max<int64_t>(50, o.rate / 5);
  auto service = StartService(config, dir);
  Child pusher({EmulatorPath(), "ipoffice", "--port", std::to_string(port), "--records",
                dir + "/records.txt", "--rate", std::to_string(o.rate), "--resend",
                std::to_string(resend), "--cut-every", std::to_string(o.records / (o.cuts + 1)),
                "--retry-ms", "20"});
  // Kills at random moments while the records are sent.
  std::mt19937_64 random(std::random_device{}());
  const double seconds = static_cast<double>(o.records) / static_cast<double>(o.rate);
  std::vector<double> kills;
  std::uniform_real_distribution<double> when(0.05 * seconds, 0.95 * seconds);
  for (int i = 0; i < o.kills; ++i) kills.push_back(when(random));
  std::sort(kills.begin(), kills.end());
  std::uniform_int_distribution<int> pause_ms(0, 300);
  for (double at : kills) {
    std::this_thread::sleep_until(begin + std::chrono::duration<double>(at));
    service->Stop(SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(pause_ms(random)));
    service = StartService(config, dir);
  }
  const bool played =
      !pusher.WaitLine("played", std::chrono::seconds(120 + 2 * static_cast<int>(seconds))).empty();
  WaitForRecords(store, expected.size());
  const int stopped = service->Stop(SIGTERM);

  const std::vector<std::string> calls = StoredCalls(store);
  const std::vector<std::string> unrecognised = StoredUnrecognised(store);
  const auto want = Counts(expected);
  const auto got = Counts(calls);
  int64_t lost = 0, duplicated = 0, foreign = 0;
  for (const auto& [record, n] : want) {
    const auto it = got.find(record);
    const int64_t have = it == got.end() ? 0 : it->second;
    lost += std::max<int64_t>(0, n - have);
    duplicated += std::max<int64_t>(0, have - n);
  }
  for (const auto& [record, n] : got) foreign += want.count(record) ? 0 : n;
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
      "records %lld, kills %d, cuts %d, fsync %s: stored %zu, lost %lld, duplicated %lld, "
      "foreign %lld, unrecognised %zu (fragments of a killed read %lld), re-sent dropped %lld, "
      "%.1f s\n",
      static_cast<long long>(o.records), o.kills, cuts, o.fsync.c_str(), calls.size(),
      static_cast<long long>(lost), static_cast<long long>(duplicated),
      static_cast<long long>(foreign), unrecognised.size(), static_cast<long long>(fragments),
      static_cast<long long>(SumOfDropped(ReadFile(dir + "/service.log"))), took);
  const bool ok = played && stopped == 0 && lost == 0 && duplicated == 0 && foreign == 0 &&
                  fragments == static_cast<int64_t>(unrecognised.size()) && cuts >= o.cuts;
  if (!ok) std::printf("FAILED: see %s/service.log\n", dir.c_str());
  return ok ? 0 : 1;
}

}  // namespace
}  // namespace velqua_capture_test

int main(int argc, char** argv) {
  return velqua_capture_test::Run(velqua_capture_test::Parse(argc, argv));
}
