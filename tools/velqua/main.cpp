// velqua: the command-line program around the Velqua library. It parses the
// arguments (CLI11) and hands the work to the library; see doc/cli.md.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cli_common.h"
#include "cmd_calls.h"
#include "cmd_directory.h"
#include "cmd_rate.h"
#include "cmd_tariff.h"
#ifdef VELQUA_CLI_HAS_CAPTURE
#include "cmd_capture.h"
#endif
#include "cmd_config.h"
#include "cmd_draw.h"
#include "cmd_guess.h"
#include "cmd_import.h"
#include "cmd_purge.h"
#ifdef VELQUA_CLI_HAS_REPORT
#include "cmd_report.h"
#endif
#include "cmd_retranslate.h"
#ifdef VELQUA_CLI_HAS_SERVE
#include "cmd_serve.h"
#endif
#include "cmd_switches.h"
#include "cmd_translate.h"
#include "velqua/error.h"
#include "velqua/records/clock.h"

namespace {

using velqua_cli::CliError;
using velqua_cli::UsageError;

// The hidden --now option: a fixed clock for reproducible output (the
// library falls back to the current date and time for fields a switch does
// not print, and stamps the unrecognised-record log with it).
void InstallFixedClock(const std::string& text) {
  velqua::FechaHora now;
  char extra = 0;
  if (std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d%c", &now.intAnio, &now.intMes, &now.intDia,
                  &now.intHora, &now.intMinuto, &now.intSegundo, &extra) != 6 ||
      now.intMes < 1 || now.intMes > 12 || now.intDia < 1 || now.intDia > 31 || now.intHora < 0 ||
      now.intHora > 23 || now.intMinuto < 0 || now.intMinuto > 59 || now.intSegundo < 0 ||
      now.intSegundo > 59) {
    throw UsageError("--now: expected \"YYYY-MM-DD HH:MM:SS\", got \"" + text + "\"");
  }
  velqua_records::FixProgramNow(now);
}

// "translate, config, draw or switches": the program's commands in the order
// they were added.
std::string CommandNames(CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands([](CLI::App*) { return true; });
  std::string names;
  for (size_t i = 0; i < commands.size(); ++i) {
    if (i > 0) names += i + 1 == commands.size() ? " or " : ", ";
    names += commands[i]->get_name();
  }
  return names;
}

int Run(int argc, char** argv) {
  CLI::App app{"velqua: translate the call records a telephone switch prints on its SMDR port"};
  app.name("velqua");
  app.set_version_flag("--version", "velqua " VELQUA_VERSION);
  app.require_subcommand(0, 1);
  std::string now;
  app.add_option("--now", now, "Fixed current date and time (for tests)")->group("");
  app.add_flag("--verbose", velqua_cli::Verbose(),
               "Show a library error with its number, source and the library's own text");
  app.fallthrough();  // --verbose after the command too

  velqua_cli::TranslateOptions translate;
  velqua_cli::AddTranslateCommand(app, translate);
  velqua_cli::ImportOptions import;
  velqua_cli::AddImportCommand(app, import);
  velqua_cli::CallsOptions calls;
  velqua_cli::AddCallsCommand(app, calls);
  velqua_cli::RateOptions rate;
  velqua_cli::AddRateCommand(app, rate);
  velqua_cli::DirectoryOptions directory;
  velqua_cli::AddDirectoryCommand(app, directory);
  velqua_cli::TariffOptions tariff;
  velqua_cli::AddTariffCommand(app, tariff);
  velqua_cli::RetranslateOptions retranslate;
  velqua_cli::AddRetranslateCommand(app, retranslate);
  velqua_cli::PurgeOptions purge;
  velqua_cli::AddPurgeCommand(app, purge);
#ifdef VELQUA_CLI_HAS_REPORT
  velqua_cli::ReportOptions report;
  velqua_cli::AddReportCommand(app, report);
#endif
  velqua_cli::ConfigOptions config;
  velqua_cli::AddConfigCommand(app, config);
  velqua_cli::GuessOptions guess;
  velqua_cli::AddGuessCommand(*app.get_subcommand("config"), guess);
  velqua_cli::AddSwitchesCommand(app);
  velqua_cli::DrawOptions draw;
  velqua_cli::AddDrawCommand(app, draw);
#ifdef VELQUA_CLI_HAS_CAPTURE
  velqua_cli::CaptureOptions capture;
  velqua_cli::AddCaptureCommand(app, capture);
#endif
#ifdef VELQUA_CLI_HAS_SERVE
  velqua_cli::ServeOptions serve;
  velqua_cli::AddServeCommand(app, serve);
  velqua_cli::UserOptions user;
  velqua_cli::AddUserCommand(app, user);
#endif

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    // One line, naming what is wrong; help stays one --help away.
    std::fprintf(stderr, "velqua: %s (see velqua --help)\n", e.what());
    return 2;
  }

  if (app.get_subcommands().empty()) {
    std::fprintf(stderr, "velqua: a command is required: %s (see velqua --help)\n",
                 CommandNames(app).c_str());
    return 2;
  }
  if (!now.empty()) InstallFixedClock(now);
  if (app.got_subcommand("translate")) return velqua_cli::RunTranslate(translate);
  if (app.got_subcommand("import")) return velqua_cli::RunImport(import);
  if (app.got_subcommand("calls")) return velqua_cli::RunCalls(calls);
  if (app.got_subcommand("rate")) return velqua_cli::RunRate(rate);
  if (CLI::App* cmd = app.get_subcommand("tariff"); cmd->parsed()) {
    return cmd->got_subcommand("check") ? velqua_cli::RunTariffCheck(tariff)
                                        : velqua_cli::RunTariffImportCgrates(tariff);
  }
  if (CLI::App* cmd = app.get_subcommand("directory"); cmd->parsed()) {
    return cmd->got_subcommand("import") ? velqua_cli::RunDirectoryImport(directory)
                                         : velqua_cli::RunDirectoryList(directory);
  }
  if (app.got_subcommand("retranslate")) return velqua_cli::RunRetranslate(retranslate);
  if (app.got_subcommand("purge")) return velqua_cli::RunPurge(purge);
  if (app.got_subcommand("switches")) return velqua_cli::RunSwitches();
#ifdef VELQUA_CLI_HAS_REPORT
  if (app.got_subcommand("report")) return velqua_cli::RunReport(report);
#endif
#ifdef VELQUA_CLI_HAS_CAPTURE
  if (CLI::App* cmd = app.get_subcommand("capture"); cmd->parsed()) {
    return cmd->got_subcommand("status") ? velqua_cli::RunCaptureStatus(capture)
                                         : velqua_cli::RunCapture(capture);
  }
#endif
#ifdef VELQUA_CLI_HAS_SERVE
  if (app.got_subcommand("serve")) return velqua_cli::RunServe(serve);
  if (CLI::App* cmd = app.get_subcommand("user"); cmd->parsed()) {
    if (cmd->got_subcommand("add")) return velqua_cli::RunUserAdd(user);
    if (cmd->got_subcommand("list")) return velqua_cli::RunUserList(user);
    return velqua_cli::RunUserRemove(user);
  }
#endif
  if (CLI::App* cmd = app.get_subcommand("config"); cmd->parsed()) {
    if (cmd->got_subcommand("guess")) return velqua_cli::RunConfigGuess(guess);
    if (cmd->got_subcommand("show")) return velqua_cli::RunConfigShow(config);
    if (cmd->got_subcommand("convert")) return velqua_cli::RunConfigConvert(config);
    if (cmd->got_subcommand("keys")) return velqua_cli::RunConfigKeys();
    return velqua_cli::RunConfigCheck(config);
  }
  return velqua_cli::RunDraw(app, draw);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const velqua::Error& e) {
    std::fprintf(stderr, "velqua: %s\n", velqua_cli::ShowError(e).c_str());
  } catch (const UsageError& e) {
    std::fprintf(stderr, "velqua: %s (see velqua --help)\n", e.what());
    return 2;
  } catch (const CliError& e) {
    std::fprintf(stderr, "velqua: %s\n", e.what());
  } catch (const std::exception& e) {
    std::fprintf(stderr, "velqua: unexpected error: %s\n", e.what());
  }
  return 1;
}
