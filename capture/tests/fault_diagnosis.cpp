// What the fault harness says when a run fails: which records are missing,
// and where the pusher last sent them. A record the pusher sent on a
// connection that broke, and that the next connection did not send again,
// was never read by the killed service (the operating system had taken it
// from the pusher; a kill throws such bytes away): a switch's re-send must
// reach back over what the service had not read yet. A missing record the
// pusher sent again, or sent on a connection that never broke, was lost by
// the service itself.
#include <algorithm>
#include <fstream>
#include <set>
#include <thread>

#include "fault_harness.h"
#include "velqua/store/store.h"

namespace velqua_capture_test {

int64_t Resend(const Options& o) { return std::max<int64_t>(200, o.rate); }

std::vector<Pushed> PushedConnections(const std::vector<std::string>& said) {
  const std::string connected = "ipoffice: connected, re-sending ";
  const std::string ended = "ipoffice: connection ended after record ";
  std::vector<Pushed> connections;
  int64_t last = 0;  // the last new record sent so far
  for (const std::string& line : said) {
    if (line.rfind(connected, 0) == 0) {
      const int64_t resent = std::stoll(line.substr(connected.size()));
      connections.push_back({last - resent + 1, last, false});
    } else if (line.rfind(ended, 0) == 0 && !connections.empty()) {
      last = std::stoll(line.substr(ended.size()));
      connections.back().last = last;
      connections.back().broke = true;
    } else if (line.rfind("played ", 0) == 0 && !connections.empty()) {
      last = std::stoll(line.substr(7));
      connections.back().last = last;
    }
  }
  return connections;
}

std::vector<std::string> Explain(const std::vector<std::string>& in_order,
                                 const std::vector<std::string>& stored,
                                 const std::vector<Pushed>& connections) {
  const std::set<std::string> have(stored.begin(), stored.end());
  // Runs of missing records, numbered from 1 as the pusher counts them.
  std::vector<std::pair<int64_t, int64_t>> runs;
  for (size_t i = 0; i < in_order.size(); ++i) {
    if (have.count(in_order[i])) continue;
    const auto n = static_cast<int64_t>(i + 1);
    if (!runs.empty() && runs.back().second == n - 1) {
      runs.back().second = n;
    } else {
      runs.emplace_back(n, n);
    }
  }
  std::vector<std::string> said;
  for (const auto& [first, last] : runs) {
    std::string line = "records " + std::to_string(first) + "-" + std::to_string(last) + " (" +
                       std::to_string(last - first + 1) + ") missing: ";
    // The last connection that carried the run's first record.
    size_t at = connections.size();
    for (size_t c = 0; c < connections.size(); ++c) {
      if (connections[c].first <= first && first <= connections[c].last) at = c;
    }
    if (at == connections.size()) {
      said.push_back(line + "the pusher never sent them");
      continue;
    }
    const Pushed& c = connections[at];
    line += "last sent on connection " + std::to_string(at + 1) + " (records " +
            std::to_string(c.first) + "-" + std::to_string(c.last) + ")";
    if (c.broke && at + 1 < connections.size()) {
      line += ", which broke; connection " + std::to_string(at + 2) + " re-sent from record " +
              std::to_string(connections[at + 1].first) +
              " on: not read by the service before the connection broke (a killed service "
              "loses what it had not read yet), and older than the pusher's re-send";
    } else if (c.broke) {
      line += ", which broke, and the pusher did not connect again";
    } else {
      line += ", which the pusher never saw break: lost by the service";
    }
    said.push_back(line);
  }
  return said;
}

std::vector<std::string> RecordsInOrder(const std::string& path) {
  std::vector<std::string> records;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) records.push_back(line);
  }
  return records;
}

int64_t WaitForStore(const std::string& store, size_t count, std::chrono::seconds stall) {
  using Clock = std::chrono::steady_clock;
  int64_t held = -1;
  auto moved = Clock::now();
  for (;;) {
    int64_t now_held = held;
    try {
      auto s = velqua_store::OpenStore(store);
      now_held = s->CountCalls("pbx") + s->CountUnrecognised("pbx");
    } catch (const std::exception&) {
      // not made yet, or busy: asked again
    }
    if (now_held >= static_cast<int64_t>(count)) return now_held;
    if (now_held != held) {
      held = now_held;
      moved = Clock::now();
    } else if (Clock::now() - moved > stall) {
      return held;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
}

}  // namespace velqua_capture_test
