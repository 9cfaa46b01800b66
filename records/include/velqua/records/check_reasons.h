// Why a record was left unrecognised, in the words `velqua config check` and
// the layout editor show.
#pragma once

#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/traductor.h"

namespace velqua_records {

// Columns `pos` to the last of `size` as shown to a user: "27-29", or "27"
// for one column.
std::string Columns(int pos, int size);

// Why the translator (bound to `cfg`, holding `record`, a single-line record
// it left unrecognised) gave it no type, one sentence each, in the order the
// translator decides: no digit in the line, the call-type marks tested and
// what was found, the outgoing default's empty fields, or a duration that
// could not be read. Moves the configuration's active keys; changes nothing
// else.
std::vector<std::string> UnrecognisedReasons(velqua::clsCfgConmut& cfg,
                                             velqua::clsTraductor& traductor,
                                             const std::u16string& record);

}  // namespace velqua_records
