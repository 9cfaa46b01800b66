// `velqua rate`: keep a rating plan in the store, price a period's calls
// again, list the calls that could not be priced.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct RateOptions {
  std::string db;
  std::string plan;  // a rating plan to check and keep first, or ""
  std::string from, to, switch_name;
  int64_t batch = 20000;
  bool unpriced = false;  // list the period's unpriced calls instead
  std::string format;     // of that list
  std::string output;
};

void AddRateCommand(CLI::App& app, RateOptions& options);

// Runs it; returns the exit status. Throws CliError, StoreError, TariffError.
int RunRate(const RateOptions& options);

}  // namespace velqua_cli
