// `velqua import`: record files into the call store.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velqua_cli {

struct ImportOptions {
  std::string db;
  std::string switch_name;
  std::string config;
  std::vector<std::string> files;
  std::string extensions;
  std::string encoding = "windows-1252";
  std::string time_zone;
  std::string source;  // the name of the one file's source, instead of its path
  int32_t year = 0;
  int64_t batch = 20000;
  bool quiet = false;
  bool random_extensions = false;
};

void AddImportCommand(CLI::App& app, ImportOptions& options);

// Runs it; returns the exit status (3 when the library failed on some
// records, kept as unrecognised). Throws CliError / StoreError / velqua::Error.
int RunImport(const ImportOptions& options);

}  // namespace velqua_cli
