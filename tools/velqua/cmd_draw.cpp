// The draw command on velqua_cairo: the library draws the cable and the table onto a
// SuperficieCairo, which writes PNG, SVG or PDF by the output's extension.
#include <CLI/CLI.hpp>
#include <memory>

#include "cli_common.h"
#include "cmd_draw.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/config_io.h"
#include "velqua/superficie_cairo.h"
#include "velqua/textos_dibujo.h"

namespace velqua_cli {
namespace {

void RequireImageName(const std::string& path) {
  const std::string ext = LowerExtension(path);
  if (ext != ".png" && ext != ".svg" && ext != ".pdf") {
    throw CliError("output '" + path + "': unknown image format '" + ext +
                   "' (use .png, .svg or .pdf)");
  }
}

velqua::emPuertoSerial PortOf(const std::string& name) {
  if (name == "rj45") return velqua::emPuertoRJ45;
  if (name == "db25") return velqua::emPuertoDB25;
  return velqua::emPuertoDB9;
}

}  // namespace

void AddDrawCommand(CLI::App& app, DrawOptions& options) {
  CLI::App* draw = app.add_subcommand("draw", "Draw the cable diagram or the DB9/DB25 table");
  draw->require_subcommand(1);
  CLI::App* cable = draw->add_subcommand("cable", "Draw the SMDR cable wiring of one port");
  cable
      ->add_option("-c,--config", options.config,
                   "Configuration (.cfg, .ini or .json), or a bundled switch's name")
      ->required();
  cable->add_option("--port", options.port, "Switch-side connector")
      ->check(CLI::IsMember({"rj45", "db9", "db25"}))
      ->capture_default_str();
  cable->add_option("-o,--output", options.output, "Image to write (.png, .svg or .pdf)")
      ->required();
  CLI::App* table = draw->add_subcommand("table", "Draw the DB9 to DB25 conversion table");
  table->add_option("-o,--output", options.output, "Image to write (.png, .svg or .pdf)")
      ->required();
  for (CLI::App* cmd : {cable, table}) {
    cmd->add_option("--scale", options.scale,
                    "Size of the saved picture against the drawing's own (a 96-dpi screen): "
                    "PNG rendered at that size, SVG and PDF scaled as vectors")
        ->check(CLI::Range(1, 16))
        ->capture_default_str();
    cmd->add_flag("--english", options.english,
                  "English texts, and the signal name beside each computer DB9 pin (default: "
                  "the library's own texts)");
  }
}

int RunDraw(CLI::App& app, const DrawOptions& options) {
  RequireImageName(options.output);
  velqua::SuperficieCairo surface;
  surface.Escala(options.scale);
  CLI::App* draw = app.get_subcommand("draw");
  const velqua::emTextosDibujo texts =
      options.english ? velqua::emTextosIngles : velqua::emTextosBiblioteca;
  if (draw->got_subcommand("cable")) {
    std::shared_ptr<velqua::clsCfgConmut> cfg = LoadConfig(options.config);
    velqua::DibujaConfiguracionSMDR(*cfg, PortOf(options.port), surface, texts);
  } else {
    velqua::DibujaTablaConversionDB9DB25(surface, texts);
  }
  surface.Guarda(options.output);
  return 0;
}

}  // namespace velqua_cli
