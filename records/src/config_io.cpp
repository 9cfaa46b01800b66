#include "velqua/records/config_io.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

#include "velqua/records/common.h"
#include "velqua/records/config_json.h"

namespace velqua_records {

ConfigFormat ConfigFormatOf(const std::string& path) {
  const std::string ext = LowerExtension(path);
  if (ext == ".cfg") return ConfigFormat::kCfg;
  if (ext == ".ini") return ConfigFormat::kIni;
  if (ext == ".json") return ConfigFormat::kJson;
  throw Failure("configuration '" + path + "': unknown format '" + ext +
                "' (use .cfg, .ini or .json)");
}

SwitchConfig LoadSwitchConfig(const std::string& path) {
  const ConfigFormat format = ConfigFormatOf(path);
  RequireReadableFile(path, "configuration");
  SwitchConfig config{std::make_shared<velqua::clsCfgConmut>(), {}, {}};
  switch (format) {
    case ConfigFormat::kCfg:
      config.cfg->Abrir(U16(path));
      break;
    case ConfigFormat::kIni:
      config.cfg->Importar(U16(path));
      break;
    case ConfigFormat::kJson:
      try {
        SwitchConfigFromJson(ReadWholeFile(path, "configuration"), *config.cfg, &config.form,
                             &config.delivery);
      } catch (const Failure& e) {
        throw Failure("configuration '" + path + "': " + e.what());
      }
      break;
  }
  return config;
}

std::shared_ptr<velqua::clsCfgConmut> LoadConfig(const std::string& path) {
  return LoadSwitchConfig(path).cfg;
}

namespace {

// The first line where two JSON forms differ, as "was -> now".
std::string FirstDifference(const std::string& was, const std::string& now) {
  std::istringstream a(was), b(now);
  std::string la, lb;
  while (true) {
    const bool more_a = static_cast<bool>(std::getline(a, la));
    const bool more_b = static_cast<bool>(std::getline(b, lb));
    if (!more_a && !more_b) return "";
    if (!more_a) la = "(nothing)";
    if (!more_b) lb = "(nothing)";
    if (la != lb || !more_a || !more_b) {
      const auto trim = [](std::string s) { return s.erase(0, s.find_first_not_of(' ')); };
      return trim(la) + " -> " + trim(lb);
    }
  }
}

// A temporary name beside `path`, with the same extension (the library picks
// the form by it).
std::string TemporaryBeside(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  const std::string dir = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  return dir + ".velqua-" + std::to_string(::getpid()) + "-" + base;
}

// Throws Failure naming why `path` cannot be written, if it cannot.
void RequireWritableTarget(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    throw Failure("cannot write '" + path + "': not a regular file");
  }
  const std::string probe = TemporaryBeside(path);
  std::FILE* f = std::fopen(probe.c_str(), "wb");
  if (f == nullptr) throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  std::fclose(f);
  std::remove(probe.c_str());
}

}  // namespace

void SaveConfigChecked(velqua::clsCfgConmut& cfg, const std::string& path, bool force) {
  ConfigFormatOf(path);
  RequireWritableTarget(path);
  const std::string temporary = TemporaryBeside(path);
  struct Remove {
    const std::string& name;
    ~Remove() { std::remove(name.c_str()); }
  } remove{temporary};
  SaveConfig(cfg, temporary);
  std::shared_ptr<velqua::clsCfgConmut> back;
  std::string problem;
  try {
    back = LoadConfig(temporary);
    problem = FirstDifference(ConfigToJson(cfg), ConfigToJson(*back));
  } catch (const Failure& e) {
    problem = std::string("reading it back fails: ") + e.what();
  } catch (const velqua::Error& e) {
    problem = "reading it back fails: " + DescribeError(e);
  }
  // The library's messages name the file it read: name the one promised.
  for (size_t at; (at = problem.find(temporary)) != std::string::npos;) {
    problem.replace(at, temporary.size(), path);
  }
  if (!problem.empty() && !force) {
    throw Failure("'" + path + "' cannot hold this configuration (" + problem +
                  "); nothing written (--force writes it anyway)");
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  }
  if (!problem.empty()) {
    std::fprintf(stderr, "velqua: warning: '%s' does not hold this configuration (%s)\n",
                 path.c_str(), problem.c_str());
  }
}

void SaveSwitchConfigChecked(SwitchConfig& config, const std::string& path, bool force) {
  if (ConfigFormatOf(path) != ConfigFormat::kJson) {
    if (config.form.delimited && !force) {
      throw Failure("'" + path +
                    "' cannot hold this configuration (its records are delimited, and only the "
                    "JSON form can say how to shape them); nothing written (--force writes it "
                    "anyway)");
    }
    SaveConfigChecked(*config.cfg, path, force);
    std::string dropped;
    if (!config.delivery.empty()) dropped = "the delivery";
    if (!config.form.Plain()) {
      dropped += std::string(dropped.empty() ? "" : " and ") + "the record form (" +
                 config.form.Describe() + ")";
    }
    if (!dropped.empty()) {
      std::fprintf(stderr, "velqua: note: '%s' does not keep %s: only the JSON form does\n",
                   path.c_str(), dropped.c_str());
    }
    return;
  }
  RequireWritableTarget(path);
  const std::string temporary = TemporaryBeside(path);
  struct Remove {
    const std::string& name;
    ~Remove() { std::remove(name.c_str()); }
  } remove{temporary};
  const std::string text = SwitchConfigToJson(*config.cfg, config.form, config.delivery);
  {
    std::unique_ptr<std::FILE, FileCloser> f(OpenFile(temporary, "wb", "output"));
    if (std::fwrite(text.data(), 1, text.size(), f.get()) != text.size() ||
        std::fflush(f.get()) != 0) {
      throw Failure("cannot write '" + path + "'");
    }
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  }
}

void SaveConfig(velqua::clsCfgConmut& cfg, const std::string& path) {
  switch (ConfigFormatOf(path)) {
    case ConfigFormat::kCfg:
      cfg.GuardarComo(U16(path));
      break;
    case ConfigFormat::kIni:
      cfg.Exportar(U16(path));
      break;
    case ConfigFormat::kJson: {
      const std::string text = ConfigToJson(cfg);
      std::unique_ptr<std::FILE, FileCloser> f(OpenFile(path, "wb", "output"));
      if (std::fwrite(text.data(), 1, text.size(), f.get()) != text.size() ||
          std::fflush(f.get()) != 0) {
        throw Failure("cannot write '" + path + "'");
      }
      break;
    }
  }
}

}  // namespace velqua_records
