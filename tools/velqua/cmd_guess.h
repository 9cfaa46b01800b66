// `velqua config guess`: a draft configuration from sample records.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace velqua_cli {

struct GuessOptions {
  std::string records;
  std::string brand = "Unknown";
  std::string model = "draft";
  std::string encoding = "windows-1252";
  std::string output;   // "" = standard output
  std::string compare;  // a known configuration to score the draft against
};

// Adds "guess" under the "config" command `config`.
void AddGuessCommand(CLI::App& config, GuessOptions& options);

// Writes the draft (JSON form) to the output and each proposal with its
// evidence to stderr; with `compare`, prints instead how many of that
// configuration's fields the draft found exactly. Exit status 0.
int RunConfigGuess(const GuessOptions& options);

}  // namespace velqua_cli
