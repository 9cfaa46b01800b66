#include "editor_files.h"

#include <sodium.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <memory>

#include "api.h"
#include "velqua/records/common.h"
#include "velqua/superficie_cairo.h"
#include "velqua/texto.h"
#include "velqua/textos_dibujo.h"

namespace velqua_web {
namespace {

constexpr size_t kBundledSamples = 500;

// Whether `text` is well-formed UTF-8 (overlong forms and surrogates aside).
bool IsUtf8(const std::string& text) {
  for (size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    const size_t extra = c < 0x80         ? 0
                         : (c >> 5) == 6  ? 1
                         : (c >> 4) == 14 ? 2
                         : (c >> 3) == 30 ? 3
                                          : 9;
    if (extra == 9 || i + extra >= text.size()) return false;
    for (size_t k = 1; k <= extra; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) >> 6) != 2) return false;
    }
    i += extra + 1;
  }
  return true;
}

// The lines of `text`, without their line ends, as UTF-8: a record file
// that is not UTF-8 is read as Windows-1252, as the program reads records by
// default; empty lines dropped.
void AppendLines(const std::string& raw, std::vector<std::string>& lines) {
  const std::string text = IsUtf8(raw) ? raw : velqua::AUtf8(velqua::DesdeAnsi(raw));
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(line);
    start = end + 1;
  }
}

std::filesystem::path ConfigsFolder() {
  if (const char* dir = std::getenv("VELQUA_CONFIGS"); dir != nullptr && *dir != '\0') return dir;
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0') {
    return std::filesystem::path(data) / "velqua" / "configs";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home != nullptr ? home : ".") / ".local/share/velqua/configs";
}

}  // namespace

std::string EncodeBase64(const std::string& bytes) {
  std::string text(sodium_base64_encoded_len(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(text.data(), text.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                    bytes.size(), sodium_base64_VARIANT_ORIGINAL);
  text.resize(text.size() - 1);  // the terminating NUL
  return text;
}

std::string DecodeBase64(const std::string& text) {
  std::string bytes(text.size(), '\0');
  size_t size = 0;
  if (sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                        text.size(), nullptr, &size, nullptr,
                        sodium_base64_VARIANT_ORIGINAL) != 0) {
    throw ApiError(400, "member 'data': not base64");
  }
  bytes.resize(size);
  return bytes;
}

std::string WiringSvg(const velqua::clsCfgConmut& cfg, const std::string& port) {
  velqua::emPuertoSerial which;
  if (port == "rj45") {
    which = velqua::emPuertoRJ45;
  } else if (port == "db9") {
    which = velqua::emPuertoDB9;
  } else if (port == "db25") {
    which = velqua::emPuertoDB25;
  } else {
    throw ApiError(400, "member 'port': rj45, db9 or db25, not '" + port + "'");
  }
  velqua::SuperficieCairo surface;
  velqua::DibujaConfiguracionSMDR(cfg, which, surface, velqua::emTextosIngles);
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() /
      ("velqua-wiring-" + std::to_string(::getpid()) + "-" +
       std::to_string(reinterpret_cast<uintptr_t>(&surface)) + ".svg");
  surface.Guarda(path.string());
  std::string svg;
  try {
    svg = velqua_records::ReadWholeFile(path.string(), "drawing");
  } catch (...) {
    std::filesystem::remove(path);
    throw;
  }
  std::filesystem::remove(path);
  return svg;
}

std::vector<std::string> BundledSamples(const std::string& config_path) {
  const std::filesystem::path records =
      std::filesystem::path(config_path).parent_path() / "records.txt";
  std::vector<std::string> lines;
  if (!std::filesystem::is_regular_file(records)) return lines;
  AppendLines(velqua_records::ReadWholeFile(records.string(), "records"), lines);
  if (lines.size() > kBundledSamples) lines.resize(kBundledSamples);
  return lines;
}

std::vector<std::string> StoredSamples(velqua_store::Store& store, const std::string& name,
                                       int64_t last) {
  // Ids are shared by all switches: look back over a window that grows
  // until it holds `last` of this switch's calls or reaches the first id.
  const int64_t newest = store.LastStoredId(name, true);
  std::deque<std::string> calls;
  for (int64_t window = last; newest > 0; window *= 4) {
    calls.clear();
    int64_t after = std::max<int64_t>(0, newest - window);
    const int64_t first = after;
    for (;;) {
      const auto batch = store.ReadStored(name, true, after, 1000);
      if (batch.empty()) break;
      for (const auto& record : batch) {
        calls.push_back(record.raw);
        if (static_cast<int64_t>(calls.size()) > last) calls.pop_front();
      }
      after = batch.back().id;
    }
    if (static_cast<int64_t>(calls.size()) >= last || first == 0) break;
  }
  std::vector<std::string> lines;
  for (const std::string& raw : calls) AppendLines(raw, lines);
  store.ListNewestUnrecognised(name, last, [&](const velqua_store::StoredUnrecognised& record) {
    AppendLines(record.raw, lines);
  });
  return lines;
}

std::string StoreConfigFile(const std::string& switch_name, const std::string& json) {
  const std::filesystem::path folder = ConfigsFolder();
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  std::string file;
  for (char c : switch_name) {
    const bool plain =
        std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == '.';
    file += plain ? c : '_';
  }
  const std::filesystem::path path = folder / (file + ".json");
  const std::filesystem::path temporary = folder / ("." + file + ".json.new");
  {
    std::unique_ptr<std::FILE, velqua_records::FileCloser> f(
        velqua_records::OpenFile(temporary.string(), "wb", "configuration"));
    if (std::fwrite(json.data(), 1, json.size(), f.get()) != json.size() ||
        std::fflush(f.get()) != 0) {
      throw velqua_records::Failure("cannot write '" + temporary.string() + "'");
    }
  }
  std::filesystem::rename(temporary, path, error);
  if (error) {
    std::filesystem::remove(temporary);
    throw velqua_records::Failure("cannot write '" + path.string() + "': " + error.message());
  }
  return path.string();
}

}  // namespace velqua_web
