// `velqua config show|convert|check|keys`: look at, convert and try out a switch
// configuration.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct ConfigOptions {
  std::string config;   // show, check
  std::string input;    // convert
  std::string output;   // convert
  bool force = false;   // convert: write what the output form cannot hold
  std::string records;  // check
  std::string encoding = "windows-1252";
};

// Adds "config" with its four subcommands.
void AddConfigCommand(CLI::App& app, ConfigOptions& options);

int RunConfigShow(const ConfigOptions& options);
int RunConfigConvert(const ConfigOptions& options);
int RunConfigCheck(const ConfigOptions& options);
// Lists the JSON form's members, cases, field keys and constant keys.
int RunConfigKeys();

}  // namespace velqua_cli
