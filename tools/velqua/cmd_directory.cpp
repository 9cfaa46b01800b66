#include "cmd_directory.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "cli_common.h"
#include "velqua/rating/directory.h"
#include "velqua/records/text_table.h"
#include "velqua/store/store.h"

namespace velqua_cli {

void AddDirectoryCommand(CLI::App& app, DirectoryOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "directory", "The directory of extensions and account codes kept in the call store");
  cmd->require_subcommand(1);
  CLI::App* import = cmd->add_subcommand(
      "import",
      "Add CSV files of extensions (person, department, cost_centre, from) or account "
      "codes (client, project, from) to the store");
  import->add_option("--db", options.db, "Store: a SQLite file or postgresql://...")->required();
  import->add_option("files", options.files, "CSV files")->required();
  CLI::App* list = cmd->add_subcommand("list", "List the directory");
  list->add_option("--db", options.db, "Store: a SQLite file or postgresql://...")->required();
  list->add_option("-f,--format", options.format, "table or csv (default: table on a terminal)")
      ->check(CLI::IsMember({"table", "csv"}));
}

int RunDirectoryImport(const DirectoryOptions& options) {
  // Every file is read and checked before the store is touched.
  std::vector<velqua_rating::DirectoryEntry> entries;
  for (const auto& file : options.files) {
    auto read = velqua_rating::ReadDirectoryFile(file);
    entries.insert(entries.end(), read.begin(), read.end());
  }
  auto store = velqua_store::OpenStore(options.db, true);
  const int64_t n = store->PutDirectory(entries);
  std::fprintf(stderr, "velqua: %lld directory rows kept in '%s'\n", static_cast<long long>(n),
               options.db.c_str());
  return 0;
}

int RunDirectoryList(const DirectoryOptions& options) {
  auto store = velqua_store::OpenStore(options.db, false);
  const auto entries = store->ListDirectory();
  const bool table =
      options.format == "table" || (options.format.empty() && ::isatty(::fileno(stdout)));
  std::string out;
  velqua_records::AlignedTable aligned(
      {"kind", "key", "from", "person", "department", "cost centre", "client", "project"}, {});
  if (!table) out = "kind,key,from,person,department,cost_centre,client,project\r\n";
  for (const auto& e : entries) {
    std::vector<std::string> cells{
        e.kind == velqua_rating::DirectoryEntry::Kind::kAccount ? "account" : "extension",
        e.key,
        e.from,
        e.person,
        e.department,
        e.cost_centre,
        e.client,
        e.project};
    if (table) {
      aligned.Add(std::move(cells), &out);
      continue;
    }
    for (size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) out += ',';
      AppendCsvField(out, cells[i]);
    }
    out += "\r\n";
  }
  if (table) aligned.Finish(&out);
  if (std::fwrite(out.data(), 1, out.size(), stdout) != out.size() || std::fflush(stdout) != 0) {
    throw CliError("cannot write the output");
  }
  return 0;
}

}  // namespace velqua_cli
