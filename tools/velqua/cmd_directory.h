// `velqua directory import|list`: the directory of people, departments,
// cost centres, clients and projects kept in the store.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velqua_cli {

struct DirectoryOptions {
  std::string db;
  std::vector<std::string> files;  // import: CSV files
  std::string format;              // list: table or csv
};

void AddDirectoryCommand(CLI::App& app, DirectoryOptions& options);

// Runs `directory import` or `directory list`; returns the exit status.
int RunDirectoryImport(const DirectoryOptions& options);
int RunDirectoryList(const DirectoryOptions& options);

}  // namespace velqua_cli
