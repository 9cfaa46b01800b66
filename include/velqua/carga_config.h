// Loading a switch configuration the way the velqua program does, for C++
// hosts. It is part of the shared and static libraries hosts link (libvelqua,
// find_package(velqua) or pkg-config velqua), not of the core target alone:
// the readable JSON form and the bundled switches belong to the layers around
// the core.
#pragma once

#include <memory>
#include <string>

#include "velqua/cfg_conmut.h"
#include "velqua/error.h"
#include "velqua/export.h"

namespace velqua {

// A new configuration read from `cadNombre`: a file by its extension (.json,
// the readable JSON form; .cfg, Abrir; .ini, Importar), or a bundled
// switch's name ("hicom", "kx-tda": a name that is not a file and has neither
// a folder nor an extension), looked for in $VELQUA_EXAMPLES, then the
// installed data folder. Modificado is false; no listener is registered.
// What only the JSON form holds (delimited records, page headings) is not
// part of a clsCfgConmut: a host whose switch needs it translates through the
// C interface's velqua_translation_*, which applies it.
// Throws velqua::Error: the library's own error for a file it refuses, and
// error 5 (source "Velqua") for a missing file, an unknown name or extension
// or a JSON form in error, with an English description naming the file and
// the fault (e.g. "configuration 'x.json': fields.emParamFechaDia.size: must
// be 1 to 255").
VELQUA_EXPORT std::shared_ptr<clsCfgConmut> CargaConfiguracion(const std::u16string& cadNombre);

}  // namespace velqua
