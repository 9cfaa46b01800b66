// What the program's commands share with the layer below them: the record
// road's helpers (velqua/records/common.h) under the program's names.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "velqua/records/common.h"
#include "velqua/texto.h"

namespace velqua_cli {

using namespace velqua_records;  // NOLINT: the program is a thin layer over the records road

// An error of the program itself: main() prints "velqua: " and the message
// on one line and exits with 1.
using CliError = velqua_records::Failure;

// The --encoding option of the commands that read records.
inline void AddEncodingOption(CLI::App* cmd, std::string& encoding) {
  cmd->add_option("--encoding", encoding, "Encoding of the records")
      ->check(CLI::IsMember({"windows-1252", "utf-8"}))
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
