#include "cmd_switches.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "cli_common.h"
#include "velqua/records/bundled.h"
#include "velqua/records/config_io.h"
#include "velqua/records/names.h"

namespace velqua_cli {

void AddSwitchesCommand(CLI::App& app) {
  app.add_subcommand("switches",
                     "List the bundled switch configurations (use a name with -c NAME)");
}

int RunSwitches() {
  const std::vector<BundledSwitch> switches = ListBundledSwitches();
  if (switches.empty()) {
    std::string folders;
    for (const std::string& folder : ExamplesFolders()) folders += " '" + folder + "'";
    throw CliError("no bundled switches found (looked in" + folders +
                   "; set VELQUA_EXAMPLES to the examples folder)");
  }
  for (const BundledSwitch& bundled : switches) {
    try {
      const SwitchConfig config = LoadSwitchConfig(bundled.config);
      const std::string brand = U8(config.cfg->Marca()) + " " + U8(config.cfg->Modelo());
      std::printf("%-19s %s\n", bundled.name.c_str(), brand.c_str());
      std::printf("%-19s case %d (%s); %s\n", "", config.cfg->Caso(), CaseBrief(config.cfg->Caso()),
                  config.form.Describe().c_str());
      std::printf("%-19s %s\n", "",
                  config.delivery.empty() ? "delivery not said" : config.delivery.c_str());
    } catch (const Failure& e) {
      std::printf("%-19s cannot be read: %s\n", bundled.name.c_str(), e.what());
    } catch (const velqua::Error& e) {
      std::printf("%-19s cannot be read: %s\n", bundled.name.c_str(), ShowError(e).c_str());
    }
  }
  return 0;
}

}  // namespace velqua_cli
