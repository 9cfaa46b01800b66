// Loading and saving a switch configuration by the file's extension:
// .cfg (binary, Abrir / GuardarComo), .ini (profile, Importar /
// Exportar) or .json (the program's readable form, config_json.h).
#pragma once

#include <memory>
#include <string>

#include "velqua/cfg_conmut.h"
#include "velqua/records/record_form.h"

namespace velqua_records {

enum class ConfigFormat { kCfg, kIni, kJson };

// The format named by the extension; throws Failure for any other.
ConfigFormat ConfigFormatOf(const std::string& path);

// A switch's configuration with what only the JSON form holds: the record
// form (delimited records, page headings, record ends) and how the switch
// delivers its records.
struct SwitchConfig {
  std::shared_ptr<velqua::clsCfgConmut> cfg;
  RecordForm form;       // plain for .cfg and .ini
  std::string delivery;  // "" when not said
};

// Loads a configuration with its record form, from a file or a bundled
// switch's name (ResolveConfig, bundled.h): every layer that takes a
// configuration takes a name too. A missing file, an unknown name or
// extension throws Failure; a file the library refuses throws velqua::Error.
SwitchConfig LoadSwitchConfig(const std::string& name_or_path);

// The configuration alone, as LoadSwitchConfig reads it: the record form is
// dropped, so delimited records would be read by column. Readers of records
// use LoadSwitchConfig.
std::shared_ptr<velqua::clsCfgConmut> LoadConfig(const std::string& name_or_path);

// Saves `cfg` in the format of the extension (velqua::Error or Failure).
// The library's file writes fail silently by design: prefer SaveConfigChecked.
void SaveConfig(velqua::clsCfgConmut& cfg, const std::string& path);

// Saves `cfg` as SaveConfig does, then reads the file back and compares it with
// `cfg`: a file that is missing, unreadable or different (a form that cannot
// hold the configuration, such as a profile file for a case other than 1) is
// refused with the first difference and the path, and nothing is left at
// `path`; with `force` it is written anyway, with a warning on stderr. Written
// beside `path` first and renamed, so a failure never leaves half a file.
void SaveConfigChecked(velqua::clsCfgConmut& cfg, const std::string& path, bool force);

// SaveConfigChecked for a configuration with its record form and delivery: the
// JSON form keeps them; a .cfg or .ini cannot, so delimited records are
// refused there like any other difference (the file would read them by
// column), while headings and the delivery are dropped with a note on stderr
// (headings are then counted unrecognised records, nothing is lost).
void SaveSwitchConfigChecked(SwitchConfig& config, const std::string& path, bool force);

}  // namespace velqua_records
