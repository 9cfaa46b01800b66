#include "cmd_tariff.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "cli_common.h"
#include "velqua/rating/cgrates.h"
#include "velqua/rating/tariff.h"

namespace velqua_cli {

void AddTariffCommand(CLI::App& app, TariffOptions& options) {
  CLI::App* cmd = app.add_subcommand("tariff", "Check a tariff, or make one from a CGRateS plan");
  cmd->require_subcommand(1);
  CLI::App* check = cmd->add_subcommand("check", "Load a tariff as pricing would, and sum it up");
  check->add_option("file", options.file, "The tariff (TOML)")->required();
  CLI::App* import = cmd->add_subcommand(
      "import-cgrates", "Turn a CGRateS tariff plan (its five CSV files) into a tariff");
  import
      ->add_option("folder", options.folder,
                   "Folder of Destinations.csv, Rates.csv, DestinationRates.csv, Timings.csv "
                   "and RatingPlans.csv")
      ->required();
  import->add_option("--plan", options.plan, "The RatingPlans Id (default: the only one)");
  import->add_option("--currency", options.currency, "The plan's currency")->capture_default_str();
  import->add_option("-o,--output", options.output, "The tariff to write")->required();
}

int RunTariffCheck(const TariffOptions& options) {
  const auto t = velqua_rating::LoadTariffFile(options.file);
  std::printf(
      "%s%s%s: %s, %s mode, %zu bands, %zu holidays, %zu rates, %zu destinations, %zu "
      "prefixes\n",
      t.name.c_str(), t.version.empty() ? "" : " ", t.version.c_str(), t.currency.c_str(),
      t.mode == velqua_rating::Tariff::Mode::kSplit ? "split" : "start", t.bands.size(),
      t.holidays.size(), t.rates.size(), t.destinations.size(), t.prefixes.size());
  return 0;
}

int RunTariffImportCgrates(const TariffOptions& options) {
  velqua_rating::CgratesImport import;
  import.folder = options.folder;
  import.plan = options.plan;
  import.currency = options.currency;
  const std::string text = velqua_rating::ImportCgrates(import);
  std::unique_ptr<std::FILE, FileCloser> file(OpenFile(options.output, "wb", "output"));
  if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size() ||
      std::fclose(file.release()) != 0) {
    throw CliError("cannot write output '" + options.output + "'");
  }
  std::fprintf(stderr, "velqua: tariff '%s' written (set each destination's class)\n",
               options.output.c_str());
  return 0;
}

}  // namespace velqua_cli
