#include "cmd_purge.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "velqua/store/store.h"

namespace velqua_cli {

void AddPurgeCommand(CLI::App& app, PurgeOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "purge", "Remove the calls and records older than a day from the call store (retention)");
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--before", options.before,
                  "YYYY-MM-DD: calls that started before this day (the switch's local date) and "
                  "records received before it go")
      ->required();
  cmd->add_option("--switch", options.switch_name, "Only the calls and records of this switch");
  cmd->add_flag("--dry-run", options.dry_run, "Count what would go; remove nothing");
}

int RunPurge(const PurgeOptions& options) {
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  const velqua_store::PurgeResult r =
      store->Purge({options.before, options.switch_name}, options.dry_run);
  std::printf("%s %lld calls, %lld unrecognised records and %lld events before %s%s%s\n",
              options.dry_run ? "would remove" : "removed", static_cast<long long>(r.calls),
              static_cast<long long>(r.unrecognised), static_cast<long long>(r.events),
              options.before.c_str(), options.switch_name.empty() ? "" : " of switch ",
              options.switch_name.c_str());
  return 0;
}

}  // namespace velqua_cli
