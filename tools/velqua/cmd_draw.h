// `velqua draw cable|table`: the cable diagram and the DB9 to DB25
// conversion table as PNG, SVG or PDF, through velqua_cairo.
// When velqua_cairo is absent at configure time the program is built
// without this command (cmd_draw_none.cpp) and its help says so.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct DrawOptions {
  std::string config;
  std::string port = "db9";
  std::string output;
  double scale = 3;      // the saved picture against the drawing's own size
  bool english = false;  // English texts and signal names, not the library's texts
};

void AddDrawCommand(CLI::App& app, DrawOptions& options);

// Runs the draw subcommand that was parsed; returns the exit status.
int RunDraw(CLI::App& app, const DrawOptions& options);

}  // namespace velqua_cli
