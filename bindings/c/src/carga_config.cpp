// velqua::CargaConfiguracion (velqua/carga_config.h): the records road's
// loader, with its refusals turned into the one exception type C++ hosts
// catch.
#include "velqua/carga_config.h"

#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/texto.h"
#include "velqua/velqua_c.h"

namespace velqua {

std::shared_ptr<clsCfgConmut> CargaConfiguracion(const std::u16string& cadNombre) {
  try {
    return velqua_records::LoadConfig(AUtf8(cadNombre));
  } catch (const velqua_records::Failure& e) {
    throw Error(VELQUA_ERROR_ARGUMENTO, u"Velqua", DesdeUtf8(e.what()));
  }
}

}  // namespace velqua
