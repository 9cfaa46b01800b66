// `velqua purge`: removes the calls, raw records and events older than a day
// from the call store (retention periods).
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct PurgeOptions {
  std::string db;
  std::string before;       // YYYY-MM-DD: what is older than this day goes
  std::string switch_name;  // "": every switch
  bool dry_run = false;     // count only
};

void AddPurgeCommand(CLI::App& app, PurgeOptions& options);

// Purges (or counts, with --dry-run) and prints what went; 0, or throws
// CliError / StoreError (1).
int RunPurge(const PurgeOptions& options);

}  // namespace velqua_cli
