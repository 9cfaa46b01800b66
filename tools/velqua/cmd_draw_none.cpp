// The draw command when velqua_cairo was not available at configure time.
#include <CLI/CLI.hpp>

#include "cli_common.h"
#include "cmd_draw.h"

namespace velqua_cli {

void AddDrawCommand(CLI::App& app, DrawOptions& /*options*/) {
  app.footer(
      "The draw command is not available in this build: the velqua_cairo "
      "surface was absent when it was configured.");
}

int RunDraw(CLI::App& /*app*/, const DrawOptions& /*options*/) {
  throw CliError("this build has no draw command (velqua_cairo was absent)");
}

}  // namespace velqua_cli
