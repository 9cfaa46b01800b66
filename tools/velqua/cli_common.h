// What the program's commands share with the layer below them: the record
// road's helpers (velqua/records/common.h) under the program's names.
#pragma once

#include "velqua/records/common.h"

namespace velqua_cli {

using namespace velqua_records;  // NOLINT: the program is a thin layer over the records road

// An error of the program itself: main() prints "velqua: " and the message
// on one line and exits with 1.
using CliError = velqua_records::Failure;

}  // namespace velqua_cli
