// `velqua translate`: call records in, one row of call data per record out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velqua_cli {

struct TranslateOptions {
  std::string config;
  std::vector<std::string> inputs;  // empty or "-": standard input
  std::string format;               // "table", "csv", "jsonl" or "" (by terminal)
  std::string encoding = "windows-1252";
  std::string errors_log;          // ArchivoLlamadasError
  std::string extensions;          // ArchivoListaExtensionesKXTDA
  bool random_extensions = false;  // keep the library's drawn extensions
  int32_t year = 0;                // --year; 0: from each input's modification time
  std::string follow;              // --follow FILE
  std::string output;              // -o FILE; "" = standard output
  int mask_digits = 0;             // --mask-digits N: the last N digits of dialled numbers hidden
};

// The exit status of a run in which some records failed with an error (each
// kept as an unrecognised row carrying it).
constexpr int kExitRecordsFailed = 3;

// The warning for calls whose account code the extension list lacks: their
// extension drawn at random (`drawn`) or left blank.
std::string UnlistedAccountCodes(int64_t calls, bool drawn);

// Adds --random-extensions to a command that translates records.
void AddRandomExtensionsFlag(CLI::App* cmd, bool& flag);

// Adds the subcommand; `run` is set to the code to execute when chosen.
void AddTranslateCommand(CLI::App& app, TranslateOptions& options);

// Runs it; returns the exit status. Throws CliError / velqua::Error.
int RunTranslate(const TranslateOptions& options);

}  // namespace velqua_cli
