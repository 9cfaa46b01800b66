// Fuzz target (2): clsCfgConmut::Importar on arbitrary profile text.
// velqua::Error is an allowed outcome; anything else is a finding. A file
// that imports is exported and imported again into a new object, which
// must succeed (Exportar writes only what Importar accepts).
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/velqua.h"

namespace velqua_fuzz_importar {

inline bool EnBlanco(const std::u16string& cad) {
  return cad.find_first_not_of(u' ') == std::u16string::npos;
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  const std::string ruta = velqua_fuzz::RutaTemporal("entrada.ini");
  velqua_fuzz::EscribeArchivo(ruta, datos, tam);
  velqua::clsCfgConmut cfg;
  try {
    cfg.Importar(velqua::DesdeUtf8(ruta));
  } catch (const velqua::Error&) {
    return 0;
  }
  static_cast<void>(cfg.NombreConmutador());
  static_cast<void>(cfg.ListaSeparador());
  // Cut to their widths, brand, model or separator may now read blank or
  // empty (a value of 50 blanks before its text): then the export is not
  // importable (Importar refuses a blank brand, model or separator), and
  // there is nothing to check.
  if (EnBlanco(cfg.Marca()) || EnBlanco(cfg.Modelo()) || cfg.Separador().empty()) return 0;
  const std::u16string copia = velqua_fuzz::RutaTemporal16("copia.ini");
  try {
    cfg.Exportar(copia);
  } catch (const velqua::Error&) {
    velqua_fuzz::Hallazgo("Exportar of an imported configuration failed");
  }
  velqua::clsCfgConmut otra;
  try {
    otra.Importar(copia);
  } catch (const velqua::Error&) {
    velqua_fuzz::Hallazgo("an exported configuration does not import again");
  }
  if (otra.Separador() != cfg.Separador() || otra.Caso() != cfg.Caso() ||
      otra.Version() != cfg.Version()) {
    velqua_fuzz::Hallazgo("Exportar then Importar changed the separator, case or version");
  }
  try {
    cfg.GuardarComo(velqua_fuzz::RutaTemporal16("copia.cfg"));
  } catch (const velqua::Error&) {
  }
  return 0;
}

}  // namespace velqua_fuzz_importar
