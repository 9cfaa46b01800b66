// `velqua retranslate`: translate a switch's stored records again with a
// corrected configuration.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct RetranslateOptions {
  std::string db;
  std::string switch_name;
  std::string config;
  std::string extensions;
  bool random_extensions = false;
  bool dry_run = false;  // say what would change, write nothing
};

void AddRetranslateCommand(CLI::App& app, RetranslateOptions& options);

// Runs it and prints the counts; returns the exit status. Throws CliError /
// StoreError / velqua::Error.
int RunRetranslate(const RetranslateOptions& options);

}  // namespace velqua_cli
