#include "service_support.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>

#include "velqua/store/store.h"
#include "velqua/texto.h"

namespace velqua_capture_test {

std::string WriteConfig(const std::string& dir, const std::string& store,
                        const std::string& switch_toml, const std::string& sources_toml) {
  const std::string path = dir + "/capture.toml";
  std::ofstream out(path);
  out << "store = \"" << store << "\"\nspool = \"spool\"\nfsync = \"interval\"\n"
      << "[[switch]]\nname = \"pbx\"\n";
  if (switch_toml.find("config =") == std::string::npos) {
    out << "config = \"" << kExamples << "/kx-tda/kx-tda.json\"\n";
  }
  out << switch_toml << "\n" << sources_toml << "\n";
  return path;
}

std::string ListenSource(int port) {
  return "[[switch.source]]\nname = \"ipo\"\nkind = \"tcp-listen\"\nport = " +
         std::to_string(port) + "\n";
}

std::string FollowSource(const std::string& path) {
  return "[[switch.source]]\nname = \"log\"\nkind = \"file-follow\"\npath = \"" + path + "\"\n";
}

std::unique_ptr<Child> Pusher(int port, const std::string& records, const std::string& rate,
                              const std::vector<std::string>& more) {
  std::vector<std::string> args = {EmulatorPath(), "ipoffice", "--port", std::to_string(port),
                                   "--records",    records,    "--rate", rate,
                                   "--retry-ms",   "50"};
  args.insert(args.end(), more.begin(), more.end());
  return std::make_unique<Child>(args);
}

std::unique_ptr<Child> StartService(const std::string& config, const std::string& dir) {
  return std::make_unique<Child>(std::vector<std::string>{VELQUA_CAPTURE_SERVICE, config},
                                 dir + "/service.log");
}

std::vector<std::string> RecordsOf(const std::string& file, const std::vector<std::string>& skip,
                                   bool nul) {
  const std::string bytes = ReadFile(file);
  std::vector<std::string> records;
  std::string piece;
  for (size_t i = 0; i <= bytes.size(); ++i) {
    const char c = i < bytes.size() ? bytes[i] : '\n';
    if (c != '\r' && c != '\n' && (c != '\0' || !nul)) {
      piece.push_back(c);
      continue;
    }
    bool skipped = piece.empty();
    for (const std::string& prefix : skip) skipped = skipped || piece.rfind(prefix, 0) == 0;
    if (!skipped) records.push_back(velqua::AUtf8(velqua::DesdeAnsi(piece)));
    piece.clear();
  }
  std::sort(records.begin(), records.end());
  return records;
}

std::vector<std::string> GenerateRecords(const std::string& path, int64_t count) {
  const std::string command =
      EmulatorPath() + " generate " + std::to_string(count) + " > '" + path + "'";
  if (std::system(command.c_str()) != 0) return {};
  return RecordsOf(path);
}

namespace {

std::vector<std::string> Stored(const std::string& store, bool calls) {
  std::vector<std::string> raw;
  auto s = velqua_store::OpenStore(store);
  for (int64_t after = 0;;) {
    const auto batch = s->ReadStored("pbx", calls, after, 10000);
    if (batch.empty()) break;
    for (const auto& r : batch) raw.push_back(r.raw);
    after = batch.back().id;
  }
  std::sort(raw.begin(), raw.end());
  return raw;
}

}  // namespace

std::vector<std::string> StoredCalls(const std::string& store) { return Stored(store, true); }

std::vector<std::string> StoredUnrecognised(const std::string& store) {
  return Stored(store, false);
}

bool WaitForRecords(const std::string& store, size_t count) {
  return WaitFor(
      [&] {
        try {
          auto s = velqua_store::OpenStore(store);
          return static_cast<size_t>(s->CountCalls("pbx") + s->CountUnrecognised("pbx")) >= count;
        } catch (const std::exception&) {
          return false;  // not made yet
        }
      },
      std::chrono::seconds(60));
}

int64_t SumOfDropped(const std::string& log) {
  int64_t sum = 0;
  for (size_t at = 0; (at = log.find(" re-sent records dropped", at)) != std::string::npos; ++at) {
    size_t start = at;
    while (start > 0 && std::isdigit(static_cast<unsigned char>(log[start - 1]))) --start;
    if (start < at) sum += std::stoll(log.substr(start, at - start));
  }
  return sum;
}

}  // namespace velqua_capture_test
