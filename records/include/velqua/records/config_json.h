// The readable JSON form of a switch configuration (doc/cli.md, "JSON form").
//
// It holds the same content as a .cfg file: brand, model, case, separator,
// comments, every complete data field and constant by its key name, and the
// cable wiring per port. The library depends on nothing but the standard
// library, so this conversion lives in the program.
#pragma once

#include <string>
#include <string_view>

#include "velqua/cfg_conmut.h"

namespace velqua_records {

// The JSON text of `cfg` (two-space indent, one field per line, ends with a
// newline). Reads the tables through the active-key protocol and restores the
// active keys afterwards; Modificado is unchanged.
std::string ConfigToJson(velqua::clsCfgConmut& cfg);

// Fills `cfg` (which should be fresh) from a JSON form through the public
// setters, then clears Modificado. Throws Failure naming the member at
// fault, e.g. "fields.emParamFechaDia.size: must be 1 to 255".
void ConfigFromJson(std::string_view json_text, velqua::clsCfgConmut& cfg);

}  // namespace velqua_records
