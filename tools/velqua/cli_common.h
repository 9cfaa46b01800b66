// What the program's commands share with the layer below them: the record
// road's helpers (velqua/records/common.h) under the program's names.
#pragma once

#include <CLI/CLI.hpp>
#include <cctype>
#include <map>
#include <string>
#include <string_view>

#include "velqua/records/common.h"
#include "velqua/records/error_text.h"
#include "velqua/texto.h"

namespace velqua_cli {

using namespace velqua_records;  // NOLINT: the program is a thin layer over the records road

// An error of the program itself: main() prints "velqua: " and the message
// on one line and exits with 1.
using CliError = velqua_records::Failure;

// A bad command line that only the command could judge (an option that
// excludes another, a value checked against others): main() prints it as a
// CliError and exits with 2, as for every other bad command line.
class UsageError : public CliError {
 public:
  using CliError::CliError;
};

// The --verbose option: a library error is shown with its number, source and
// the library's own description after its English line, and `config show`
// adds the library's own name of the handling case.
inline bool& Verbose() {
  static bool verbose = false;
  return verbose;
}

// A library error as the user sees it: English, or in full with --verbose.
inline std::string ShowError(const velqua::Error& error) {
  return Verbose() ? DescribeError(error) : ErrorText(error);
}

// The encodings --encoding accepts, by name: Windows-1252 (the library's code
// page; "latin1", "iso-8859-1" and "cp1252" are taken as it, since switches
// that say Latin-1 print its printable characters, which Windows-1252 reads
// alike) and UTF-8.
inline const std::map<std::string, std::string>& EncodingNames() {
  static const std::map<std::string, std::string> names = {{"windows-1252", "windows-1252"},
                                                           {"cp1252", "windows-1252"},
                                                           {"latin1", "windows-1252"},
                                                           {"latin-1", "windows-1252"},
                                                           {"iso-8859-1", "windows-1252"},
                                                           {"utf-8", "utf-8"},
                                                           {"utf8", "utf-8"}};
  return names;
}

// The --encoding option of the commands that read records.
inline void AddEncodingOption(CLI::App* cmd, std::string& encoding) {
  cmd->add_option("--encoding", encoding,
                  "Encoding of the records: windows-1252 (also latin1) or utf-8")
      ->transform(CLI::Validator(
          [](std::string& name) {
            std::string lower = name;
            for (char& c : lower)
              c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            const auto known = EncodingNames().find(lower);
            if (known == EncodingNames().end()) {
              return "unknown encoding '" + name + "': use windows-1252 (or latin1) or utf-8";
            }
            name = known->second;
            return std::string();
          },
          "ENCODING"))
      ->capture_default_str();
}

// The --mask-digits option of the commands that print dialled numbers.
inline void AddMaskDigitsOption(CLI::App* cmd, int& digits) {
  cmd->add_option("--mask-digits", digits,
                  "Hide the last N digits of dialled numbers (as X), in the rows and in the "
                  "raw records shown")
      ->check(CLI::Range(0, 64));
}

// A line of records in the text the library reads, from the --encoding given.
inline std::u16string DecodeLine(std::string_view line, const std::string& encoding) {
  return encoding == "utf-8" ? velqua::DesdeUtf8(line) : velqua::DesdeAnsi(line);
}

}  // namespace velqua_cli
