#include "velqua/records/config_io.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

#include "velqua/records/bundled.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/error_text.h"

namespace velqua_records {

ConfigFormat ConfigFormatOf(const std::string& path) {
  const std::string ext = LowerExtension(path);
  if (ext == ".cfg") return ConfigFormat::kCfg;
  if (ext == ".ini") return ConfigFormat::kIni;
  if (ext == ".json") return ConfigFormat::kJson;
  throw Failure("configuration '" + path + "': unknown format '" + ext +
                "' (use .cfg, .ini or .json)");
}

SwitchConfig LoadSwitchConfig(const std::string& name_or_path) {
  const std::string path = ResolveConfig(name_or_path);
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

std::shared_ptr<velqua::clsCfgConmut> LoadConfig(const std::string& name_or_path) {
  return LoadSwitchConfig(name_or_path).cfg;
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

// A temporary file name beside a target, with the same extension (the
// library picks the form by it); the file, if any, is removed with the object
// unless it has been renamed onto the target.
class TemporaryBeside {
 public:
  explicit TemporaryBeside(const std::string& path) : target_(path) {
    const size_t slash = path.find_last_of('/');
    const std::string dir = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    name_ = dir + ".velqua-" + std::to_string(::getpid()) + "-" + base;
  }
  TemporaryBeside(const TemporaryBeside&) = delete;
  TemporaryBeside& operator=(const TemporaryBeside&) = delete;
  ~TemporaryBeside() { std::remove(name_.c_str()); }

  const std::string& name() const { return name_; }

  // Puts the temporary in the target's place; throws Failure naming the target.
  void RenameOntoTarget() const {
    if (std::rename(name_.c_str(), target_.c_str()) != 0) {
      throw Failure("cannot write '" + target_ + "': " + std::strerror(errno));
    }
  }

 private:
  std::string target_;
  std::string name_;
};

// Writes `text` as the whole of `path`; throws Failure naming `path`.
void WriteText(const std::string& path, const std::string& text) {
  std::unique_ptr<std::FILE, FileCloser> f(OpenFile(path, "wb", "output"));
  if (std::fwrite(text.data(), 1, text.size(), f.get()) != text.size() ||
      std::fflush(f.get()) != 0) {
    throw Failure("cannot write '" + path + "'");
  }
}

// Throws Failure naming why `path` cannot be written, if it cannot.
void RequireWritableTarget(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    throw Failure("cannot write '" + path + "': not a regular file");
  }
  const TemporaryBeside probe(path);
  std::FILE* f = std::fopen(probe.name().c_str(), "wb");
  if (f == nullptr) throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  std::fclose(f);
}

}  // namespace

void SaveConfigChecked(velqua::clsCfgConmut& cfg, const std::string& path, bool force) {
  ConfigFormatOf(path);
  RequireWritableTarget(path);
  const TemporaryBeside temporary(path);
  SaveConfig(cfg, temporary.name());
  std::shared_ptr<velqua::clsCfgConmut> back;
  std::string problem;
  try {
    back = LoadConfig(temporary.name());
    problem = FirstDifference(ConfigToJson(cfg), ConfigToJson(*back));
  } catch (const Failure& e) {
    problem = std::string("reading it back fails: ") + e.what();
  } catch (const velqua::Error& e) {
    problem = "reading it back fails: " + ErrorText(e);
  }
  // The library's messages name the file it read: name the one promised.
  for (size_t at; (at = problem.find(temporary.name())) != std::string::npos;) {
    problem.replace(at, temporary.name().size(), path);
  }
  if (!problem.empty() && !force) {
    throw Failure("'" + path + "' cannot hold this configuration (" + problem +
                  "); nothing written (--force writes it anyway)");
  }
  temporary.RenameOntoTarget();
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
    if (!config.form.Plain() || config.form.printed_time != PrintedTime::kUnstated) {
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
  const TemporaryBeside temporary(path);
  const std::string text = SwitchConfigToJson(*config.cfg, config.form, config.delivery);
  WriteText(temporary.name(), text);
  temporary.RenameOntoTarget();
}

void SaveConfig(velqua::clsCfgConmut& cfg, const std::string& path) {
  switch (ConfigFormatOf(path)) {
    case ConfigFormat::kCfg:
      cfg.GuardarComo(U16(path));
      break;
    case ConfigFormat::kIni:
      cfg.Exportar(U16(path));
      break;
    case ConfigFormat::kJson:
      WriteText(path, ConfigToJson(cfg));
      break;
  }
}

}  // namespace velqua_records
