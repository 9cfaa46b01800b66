#include "cmd_import.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>

#include "cli_common.h"
#include "cmd_translate.h"
#include "velqua/records/bundled.h"
#include "velqua/store/import.h"

namespace velqua_cli {
namespace {

using Clock = std::chrono::steady_clock;

// "1,234,567"
std::string Grouped(int64_t n) {
  std::string digits = std::to_string(n);
  for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<size_t>(at), ",");
  }
  return digits;
}

// One line on a terminal, rewritten in place at most five times a second.
class Progress {
 public:
  void Show(const velqua_store::ImportProgress& p) {
    const Clock::time_point now = Clock::now();
    if (now - shown_ < std::chrono::milliseconds(200)) return;
    shown_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    std::fprintf(
        stderr, "\rvelqua: %s  %3lld%%  %s records  %s records/s\x1b[K", p.file.c_str(),
        static_cast<long long>(p.size > 0 ? 100 * p.offset / p.size : 100),
        Grouped(p.records).c_str(),
        Grouped(seconds > 0 ? static_cast<int64_t>(static_cast<double>(p.records) / seconds) : 0)
            .c_str());
    shown_any_ = true;
  }
  void End() {
    if (shown_any_) std::fprintf(stderr, "\r\x1b[K");
  }

 private:
  Clock::time_point start_ = Clock::now();
  Clock::time_point shown_{};
  bool shown_any_ = false;
};

}  // namespace

void AddImportCommand(CLI::App& app, ImportOptions& options) {
  CLI::App* cmd =
      app.add_subcommand("import",
                         "Load call record files into the call store (importing a file again adds "
                         "nothing; an import that stopped goes on where it stopped)");
  cmd->add_option("--db", options.db,
                  "Store: a SQLite file (calls.db, sqlite:calls.db, created if missing) or "
                  "postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--switch", options.switch_name, "Name of the switch the records come from")
      ->required();
  cmd->add_option("-c,--config", options.config,
                  "Switch configuration (.cfg, .ini or .json), or a bundled switch's name")
      ->required();
  cmd->add_option("files", options.files,
                  "Record files, imported in order; a file is known by its first bytes, whatever "
                  "its name ('-': standard input, named with --source)")
      ->required();
  cmd->add_option("--extensions", options.extensions,
                  "KX-TDA account code to extension list (ArchivoListaExtensionesKXTDA)");
  AddEncodingOption(cmd, options.encoding);
  cmd->add_option("--time-zone", options.time_zone,
                  "The switch's time zone (IANA name, e.g. Europe/Madrid): start times are also "
                  "stored in UTC (default: the one stored for the switch, if any)");
  cmd->add_option("--year", options.year,
                  "Year the records were received in, for switches that print no year "
                  "(default: each file's modification time)")
      ->check(CLI::Range(1, 9999));
  cmd->add_option("--source", options.source,
                  "Name the file's source (one file only; default: its absolute path), e.g. to "
                  "import a file moved since under its first name");
  cmd->add_option("--batch", options.batch, "Records written a transaction")
      ->check(CLI::Range(int64_t{1}, int64_t{10000000}))
      ->capture_default_str();
  cmd->add_flag("-q,--quiet", options.quiet, "No progress, only the summary line");
  AddRandomExtensionsFlag(cmd, options.random_extensions);
}

int RunImport(const ImportOptions& options) {
  if (!options.source.empty() && options.files.size() != 1) {
    throw CliError("--source names the source of one file: give one file");
  }
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db);
  velqua_store::ImportSettings settings;
  settings.switch_name = options.switch_name;
  settings.config = ResolveConfig(options.config);
  settings.extensions =
      options.extensions.empty() ? BundledExtensionList(options.config) : options.extensions;
  settings.random_extensions = options.random_extensions;
  settings.utf8 = options.encoding == "utf-8";
  settings.time_zone = options.time_zone;
  settings.year = options.year;
  settings.source = options.source;
  settings.batch = static_cast<size_t>(options.batch);
  const std::vector<std::unique_ptr<velqua_store::Store>> more =
      velqua_store::OpenMoreWriters(options.db);
  std::vector<velqua_store::Store*> writers;
  for (const auto& writer : more) writers.push_back(writer.get());
  velqua_store::Importer importer(*store, settings, writers);
  Progress progress;
  const bool show = !options.quiet && ::isatty(::fileno(stderr));
  velqua_store::ImportResult result;
  try {
    result = importer.Import(options.files, [&](const velqua_store::ImportProgress& p) {
      if (show) progress.Show(p);
    });
  } catch (...) {
    progress.End();
    throw;
  }
  progress.End();
  for (const std::string& note : result.notes) std::fprintf(stderr, "velqua: %s\n", note.c_str());
  const velqua_store::WriteResult& w = result.written;
  std::string notes;
  if (result.headings > 0) notes += ", " + std::to_string(result.headings) + " page headings";
  if (result.failed > 0) notes += ", " + std::to_string(result.failed) + " failed with an error";
  if (result.damaged > 0) notes += ", " + std::to_string(result.damaged) + " damaged";
  if (!notes.empty()) notes = " (" + notes.substr(2) + ")";
  std::fprintf(stderr,
               "velqua: imported %lld record%s from %lld file%s into '%s': %lld calls, %lld "
               "unrecognised%s, %lld already stored\n",
               static_cast<long long>(result.read), result.read == 1 ? "" : "s",
               static_cast<long long>(result.files), result.files == 1 ? "" : "s",
               store->name().c_str(), static_cast<long long>(w.calls),
               static_cast<long long>(w.unrecognised), notes.c_str(),
               static_cast<long long>(w.duplicates));
  if (result.unlisted > 0) {
    std::fprintf(stderr, "velqua: %s\n",
                 UnlistedAccountCodes(result.unlisted, options.random_extensions).c_str());
  }
  return result.failed + result.damaged > 0 ? kExitRecordsFailed : 0;
}

}  // namespace velqua_cli
