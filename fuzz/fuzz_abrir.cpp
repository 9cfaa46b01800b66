// Fuzz target (1): clsCfgConmut::Abrir on arbitrary bytes, both
// layouts: version 3 (660-byte header and records) and version 2 (exactly
// 786 bytes). velqua::Error is an allowed outcome; anything else is a finding.
// A file that loads is saved again with GuardarComo and, when its case is one
// that version 3 accepts (1 to 11), must open again with the same labels.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/velqua.h"

namespace velqua_fuzz_abrir {

// Every label, table entry and wiring test of a loaded configuration.
inline void LeeTodo(velqua::clsCfgConmut& cfg) {
  static_cast<void>(cfg.HayConfig());
  static_cast<void>(cfg.NombreVersion());
  static_cast<void>(cfg.NombreCaso());
  static_cast<void>(cfg.NombreConmutador());
  static_cast<void>(cfg.Comentarios());
  static_cast<void>(cfg.ListaSeparador());
  for (int32_t k = -1; k <= 70; ++k) {
    cfg.DATOActivo(static_cast<velqua::emParamDato>(k));
    static_cast<void>(cfg.HayDATO());
    static_cast<void>(cfg.DATOPos());
    static_cast<void>(cfg.DATOTam());
    static_cast<void>(cfg.TipoDatoDATO());
  }
  for (int32_t k = -1; k <= 31; ++k) {
    cfg.CTEActivo(static_cast<velqua::emParamDatoConstante>(k));
    static_cast<void>(cfg.HayCTE());
    static_cast<void>(cfg.CTEPos());
    static_cast<void>(cfg.CTETam());
    static_cast<void>(cfg.Constante());
  }
  for (int32_t p = velqua::emPuertoRJ45; p <= velqua::emPuertoDB25; ++p) {
    static_cast<void>(cfg.HayConfiguracionSMDR(static_cast<velqua::emPuertoSerial>(p)));
  }
}

// Saves a loaded configuration and opens the copy again.
inline void GuardaYReabre(velqua::clsCfgConmut& cfg) {
  const std::u16string copia = velqua_fuzz::RutaTemporal16("copia.cfg");
  try {
    cfg.GuardarComo(copia);
  } catch (const velqua::Error&) {
    return;  // 1502: case 0 or an empty brand, model or separator (a version-2 file)
  }
  if (cfg.Caso() < velqua::emCasoEstandar || cfg.Caso() > 11) return;
  velqua::clsCfgConmut otra;
  try {
    otra.Abrir(copia);
  } catch (const velqua::Error&) {
    velqua_fuzz::Hallazgo("a configuration saved by GuardarComo does not open again");
  }
  if (otra.Marca() != cfg.Marca() || otra.Modelo() != cfg.Modelo() ||
      otra.Separador() != cfg.Separador() || otra.Comentarios() != cfg.Comentarios() ||
      otra.Caso() != cfg.Caso()) {
    velqua_fuzz::Hallazgo("GuardarComo then Abrir changed the labels or the case");
  }
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  const std::string ruta = velqua_fuzz::RutaTemporal("entrada.cfg");
  velqua_fuzz::EscribeArchivo(ruta, datos, tam);
  velqua::clsCfgConmut cfg;
  try {
    cfg.Abrir(velqua::DesdeUtf8(ruta));
  } catch (const velqua::Error&) {
    return 0;
  }
  LeeTodo(cfg);
  GuardaYReabre(cfg);
  return 0;
}

}  // namespace velqua_fuzz_abrir
