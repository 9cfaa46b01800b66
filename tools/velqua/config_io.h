// Loading and saving a switch configuration by the file's extension:
// .cfg (binary, Abrir / GuardarComo), .ini (profile, Importar /
// Exportar) or .json (the program's readable form, config_json.h).
#pragma once

#include <memory>
#include <string>

#include "velqua/cfg_conmut.h"

namespace velqua_cli {

enum class ConfigFormat { kCfg, kIni, kJson };

// The format named by the extension; throws CliError for any other.
ConfigFormat ConfigFormatOf(const std::string& path);

// Loads a configuration. A missing file or unknown extension throws
// CliError; a file the library refuses throws velqua::Error.
std::shared_ptr<velqua::clsCfgConmut> LoadConfig(const std::string& path);

// Saves `cfg` in the format of the extension (velqua::Error or CliError).
void SaveConfig(velqua::clsCfgConmut& cfg, const std::string& path);

}  // namespace velqua_cli
