#include "cmd_retranslate.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "cli_common.h"
#include "cmd_translate.h"
#include "velqua/records/bundled.h"
#include "velqua/store/import.h"

namespace velqua_cli {

void AddRetranslateCommand(CLI::App& app, RetranslateOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "retranslate",
      "Translate a switch's stored records (calls and unrecognised) again with a corrected "
      "configuration; only what changes is rewritten");
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--switch", options.switch_name, "The switch whose records to translate")
      ->required();
  cmd->add_option("-c,--config", options.config,
                  "The corrected configuration, or a bundled switch's name")
      ->required();
  cmd->add_option("--extensions", options.extensions,
                  "KX-TDA account code to extension list (ArchivoListaExtensionesKXTDA)");
  AddRandomExtensionsFlag(cmd, options.random_extensions);
  cmd->add_flag("-n,--dry-run", options.dry_run,
                "Say what would change (records moved between calls and unrecognised, calls "
                "updated and in which columns) and write nothing");
}

int RunRetranslate(const RetranslateOptions& options) {
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  const velqua_store::RewriteResult r = velqua_store::Retranslate(
      *store, options.switch_name, ResolveConfig(options.config),
      options.extensions.empty() ? BundledExtensionList(options.config) : options.extensions,
      options.random_extensions, options.dry_run);
  const long long total = r.unchanged + r.updated + r.recognised + r.unrecognised;
  std::fprintf(stderr,
               "velqua: %s %lld records of switch '%s' in '%s'%s: %lld updated, %lld "
               "newly recognised, %lld no longer recognised, %lld unchanged%s\n",
               options.dry_run ? "retranslating" : "retranslated", total,
               options.switch_name.c_str(), store->name().c_str(),
               options.dry_run ? " would give" : "", static_cast<long long>(r.updated),
               static_cast<long long>(r.recognised), static_cast<long long>(r.unrecognised),
               static_cast<long long>(r.unchanged),
               options.dry_run ? " (dry run: nothing written)" : "");
  if (!r.changed.empty()) {
    std::string columns;
    for (const auto& [column, n] : r.changed) {
      columns += (columns.empty() ? "" : ", ") + column + " " + std::to_string(n);
    }
    std::fprintf(stderr, "velqua: calls updated, by column: %s\n", columns.c_str());
  }
  return 0;
}

}  // namespace velqua_cli
