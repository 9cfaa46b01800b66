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
#include "velqua/records/record_form.h"

namespace velqua_records {

// The JSON text of `cfg` (two-space indent, one field per line, ends with a
// newline). Reads the tables through the active-key protocol and restores the
// active keys afterwards; Modificado is unchanged.
std::string ConfigToJson(velqua::clsCfgConmut& cfg);

// Fills `cfg` (which should be fresh) from a JSON form through the public
// setters, then clears Modificado. Throws Failure naming the member at
// fault, e.g. "fields.emParamFechaDia.size: must be 1 to 255". The members
// beyond the library's configuration ("records", "delivery") are checked
// and dropped: SwitchConfigFromJson keeps them.
void ConfigFromJson(std::string_view json_text, velqua::clsCfgConmut& cfg);

// As ConfigFromJson, and also reads the record form ("records", record_form.h;
// the plain form when absent) into *form and the free text saying how the
// switch delivers its records ("delivery", e.g. "serial 9600 8N1; TCP 2300")
// into *delivery ("" when absent).
void SwitchConfigFromJson(std::string_view json_text, velqua::clsCfgConmut& cfg, RecordForm* form,
                          std::string* delivery);

// The JSON text of `cfg` with its delivery and record form after the
// comments (each left out when empty or plain); ConfigToJson otherwise.
std::string SwitchConfigToJson(velqua::clsCfgConmut& cfg, const RecordForm& form,
                               const std::string& delivery);

}  // namespace velqua_records
