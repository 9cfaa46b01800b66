#include "config_io.h"

#include <memory>

#include "cli_common.h"
#include "config_json.h"

namespace velqua_cli {

ConfigFormat ConfigFormatOf(const std::string& path) {
  const std::string ext = LowerExtension(path);
  if (ext == ".cfg") return ConfigFormat::kCfg;
  if (ext == ".ini") return ConfigFormat::kIni;
  if (ext == ".json") return ConfigFormat::kJson;
  throw CliError("configuration '" + path + "': unknown format '" + ext +
                 "' (use .cfg, .ini or .json)");
}

std::shared_ptr<velqua::clsCfgConmut> LoadConfig(const std::string& path) {
  const ConfigFormat format = ConfigFormatOf(path);
  RequireReadableFile(path, "configuration");
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  switch (format) {
    case ConfigFormat::kCfg:
      cfg->Abrir(U16(path));
      break;
    case ConfigFormat::kIni:
      cfg->Importar(U16(path));
      break;
    case ConfigFormat::kJson:
      try {
        ConfigFromJson(ReadWholeFile(path, "configuration"), *cfg);
      } catch (const CliError& e) {
        throw CliError("configuration '" + path + "': " + e.what());
      }
      break;
  }
  return cfg;
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
        throw CliError("cannot write '" + path + "'");
      }
      break;
    }
  }
}

}  // namespace velqua_cli
