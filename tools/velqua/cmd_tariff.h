// `velqua tariff check|import-cgrates`: a tariff checked as pricing would
// load it, and a CGRateS tariff plan turned into a tariff.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct TariffOptions {
  std::string file;    // check: the tariff
  std::string folder;  // import-cgrates: the CSV files' folder
  std::string plan, currency = "EUR", output;
};

void AddTariffCommand(CLI::App& app, TariffOptions& options);

int RunTariffCheck(const TariffOptions& options);
int RunTariffImportCgrates(const TariffOptions& options);

}  // namespace velqua_cli
