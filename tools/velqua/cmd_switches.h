// `velqua switches`: the bundled switch configurations, so that a user finds
// theirs and names it with `-c NAME`.
#pragma once

namespace CLI {
class App;
}

namespace velqua_cli {

// Adds "switches".
void AddSwitchesCommand(CLI::App& app);

// Lists the bundled switches: name, brand and model, handling case, delivery
// and record form, two lines each. Exit status 1 when none can be found (the
// folders looked in are named).
int RunSwitches();

}  // namespace velqua_cli
