// `velqua calls`: list the calls of the store.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct CallsOptions {
  std::string db;
  std::string from, to;  // days, YYYY-MM-DD, both included
  std::string switch_name, extension, trunk, type, number, account;
  int64_t limit = 0;
  int64_t min_duration = -1;  // seconds; -1: any
  std::string format;         // table, csv, jsonl, cdr-csv; "": table on a terminal, else csv
  std::string output;         // -o FILE; "" = standard output
  bool unrecognised = false;  // list the unrecognised records instead
  int mask_digits = 0;        // --mask-digits N: the last N digits of dialled numbers hidden
};

void AddCallsCommand(CLI::App& app, CallsOptions& options);

// Runs it; returns the exit status. Throws CliError / StoreError.
int RunCalls(const CallsOptions& options);

}  // namespace velqua_cli
