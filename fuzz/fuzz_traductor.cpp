// Fuzz target (3): clsTraductor. The first bytes build a configuration
// (case, separator, data fields and constants with any key, type, position
// and size); the rest are records, split on a byte chosen by the input.
// Every record is written to LlamadaActual and every property is read twice.
// velqua::Error is an allowed outcome; anything else is a finding, and so is
// a broken invariant:
//  - type 0..6 and attribute 0..4 after an intake;
//  - the same property read twice in a row gives the same value or the same
//    error (nothing it depends on changes between the two reads; not
//    Extension in cases 10 and 11, whose fallback is random);
//  - the unrecognised-call log grows by exactly one entry (54 bytes plus the
//    record) when the intake ends with type 0 and a record or buffer, and
//    not at all otherwise; a log in a missing folder is never created.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/velqua.h"

namespace velqua_fuzz_traductor {

// Reads the input byte by byte; 0 once it is exhausted.
class Lector {
 public:
  Lector(const uint8_t* datos, size_t tam) : datos_(datos), tam_(tam) {}
  uint8_t Byte() { return pos_ < tam_ ? datos_[pos_++] : 0; }
  std::string Bytes(size_t n) {
    std::string s;
    while (n-- > 0 && pos_ < tam_) s.push_back(static_cast<char>(datos_[pos_++]));
    return s;
  }
  std::string Resto() { return Bytes(tam_ - pos_); }

 private:
  const uint8_t* datos_;
  size_t tam_;
  size_t pos_ = 0;
};

inline std::shared_ptr<velqua::clsCfgConmut> Configuracion(Lector& in) {
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  cfg->Caso(static_cast<velqua::emCasos>(in.Byte() % 13));
  cfg->Separador(velqua::DesdeAnsi(in.Bytes(in.Byte() % 4)));
  const int intDatos = in.Byte() % 32;
  for (int i = 0; i < intDatos; ++i) {
    cfg->DATOActivo(static_cast<velqua::emParamDato>(in.Byte() % 70));
    cfg->TipoDatoDATO(static_cast<velqua::emTipoDato>(in.Byte() % 4));
    cfg->DATOPos(in.Byte());
    cfg->DATOTam(in.Byte());
  }
  const int intCtes = in.Byte() % 16;
  for (int i = 0; i < intCtes; ++i) {
    cfg->CTEActivo(static_cast<velqua::emParamDatoConstante>(in.Byte() % 31));
    cfg->CTEPos(in.Byte());
    const uint8_t btTam = in.Byte();
    cfg->Constante(velqua::DesdeAnsi(in.Bytes(in.Byte() % 8)));
    if (btTam & 1) cfg->CTETam(static_cast<uint8_t>(btTam >> 1));  // a width unlike the text's
  }
  return cfg;
}

// A value or the number of the error that replaced it.
template <typename T>
struct Resultado {
  T valor{};
  int32_t error = 0;
  bool operator==(const Resultado& o) const { return valor == o.valor && error == o.error; }
};

template <typename F>
auto Lee(F leer) -> Resultado<decltype(leer())> {
  Resultado<decltype(leer())> r;
  try {
    r.valor = leer();
  } catch (const velqua::Error& e) {
    r.error = e.Number();
  }
  return r;
}

// Reads a property twice; both reads must agree.
template <typename F>
void LeeDosVeces(F leer, const char* nombre, bool bolAleatorio = false) {
  const auto a = Lee(leer);
  const auto b = Lee(leer);
  if (!bolAleatorio && !(a == b)) {
    std::fprintf(stderr, "property %s: %d then %d\n", nombre, a.error, b.error);
    velqua_fuzz::Hallazgo("a property read twice gave two values");
  }
}

inline void LeePropiedades(velqua::clsTraductor& trad, bool bolKXTDA) {
  using velqua::clsTraductor;
  LeeDosVeces([&] { return trad.Dia(); }, "Dia");
  LeeDosVeces([&] { return trad.Mes(); }, "Mes");
  LeeDosVeces([&] { return trad.Anio(); }, "Anio");
  LeeDosVeces([&] { return trad.Hora(); }, "Hora");
  LeeDosVeces([&] { return trad.Duracion(); }, "Duracion");
  LeeDosVeces([&] { return trad.Ring(); }, "Ring");
  LeeDosVeces([&] { return trad.Marcacion(); }, "Marcacion");
  LeeDosVeces([&] { return trad.Extension(); }, "Extension", bolKXTDA);
  LeeDosVeces([&] { return trad.Troncal(); }, "Troncal");
  LeeDosVeces([&] { return trad.ExtensionReceptor(); }, "ExtensionReceptor");
  LeeDosVeces([&] { return trad.TroncalReceptor(); }, "TroncalReceptor");
  LeeDosVeces([&] { return trad.CodigoCuenta(); }, "CodigoCuenta");
  for (int32_t k = 0; k <= 30; ++k) {
    const auto emK = static_cast<velqua::emParamDatoConstante>(k);
    static_cast<void>(Lee([&] { return trad.HayConstanteLlamada(emK); }));
  }
  static_cast<void>(Lee([&] { return trad.BuscaLinea(u"--------"); }));
  static_cast<void>(Lee([&] { return trad.BuscaLinea(u"CALL RELEASED"); }));
  static_cast<void>(trad.LlamadaActual());
  static_cast<void>(trad.HayLlamada());
  static_cast<void>(trad.HayBufferMultiplesLineas());
}

inline uintmax_t Tamano(const std::string& ruta) {
  std::error_code ec;
  const uintmax_t n = std::filesystem::file_size(ruta, ec);
  return ec ? 0 : n;
}

// One record through the intake, the invariants, then every property.
inline void Traduce(velqua::clsTraductor& trad, const velqua::clsCfgConmut& cfg,
                    const std::string& registro, const std::string& rutaLog, bool bolLogValido) {
  const uintmax_t antes = Tamano(rutaLog);
  bool bolFallo = false;
  try {
    trad.LlamadaActual(velqua::DesdeAnsi(registro));
  } catch (const velqua::Error&) {
    bolFallo = true;  // overflow (6) while detecting or reading the duration
  }
  const int32_t tipo = trad.TipoLlamadaDetectada();
  const int32_t atributo = trad.Atributo();
  if (tipo < 0 || tipo > 6 || atributo < 0 || atributo > 4) {
    velqua_fuzz::Hallazgo("type or attribute out of its enumeration");
  }
  if (bolLogValido && !bolFallo) {
    const bool bolEntrada = tipo == velqua::emTradNoIdentificada &&
                            (trad.HayLlamada() || trad.HayBufferMultiplesLineas());
    const uintmax_t esperado = bolEntrada ? 54 + registro.size() : 0;
    if (Tamano(rutaLog) - antes != esperado) {
      velqua_fuzz::Hallazgo("the log did not grow by exactly one entry (or grew for nothing)");
    }
  }
  const velqua::emCasos emC = cfg.Caso();
  LeePropiedades(trad, emC == 10 || emC == 11);
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  Lector in(datos, tam);
  std::shared_ptr<velqua::clsCfgConmut> cfg = Configuracion(in);
  const uint8_t btOpciones = in.Byte();
  const char chCorte = static_cast<char>(in.Byte());
  const std::string resto = in.Resto();

  velqua::clsTraductor trad(velqua_fuzz::EntornoFijo());
  const std::string rutaLog = (btOpciones & 4) ? velqua_fuzz::RutaTemporal("no-existe/log.txt")
                                               : velqua_fuzz::RutaTemporal("log.txt");
  std::error_code ec;
  std::filesystem::remove(rutaLog, ec);
  const bool bolLog = (btOpciones & 2) != 0;
  if (bolLog) trad.ArchivoLlamadasError(velqua::DesdeUtf8(rutaLog));
  if (btOpciones & 8) trad.BufferMultiplesLineas(u"x");
  trad.Conmutador(cfg);

  size_t ini = 0;
  bool bolPrimero = true;
  int intRegistros = 0;
  while (ini <= resto.size() && intRegistros++ < 64) {
    size_t fin = resto.find(chCorte, ini);
    if (fin == std::string::npos) fin = resto.size();
    const std::string registro = resto.substr(ini, fin - ini);
    if (bolPrimero && (btOpciones & 1)) {
      // The first record doubles as the extension list (cases 10 and 11).
      const std::string rutaLista = velqua_fuzz::RutaTemporal("lista.txt");
      velqua_fuzz::EscribeArchivo(rutaLista, reinterpret_cast<const uint8_t*>(registro.data()),
                                  registro.size());
      trad.ArchivoListaExtensionesKXTDA(velqua::DesdeUtf8(rutaLista));
    }
    bolPrimero = false;
    Traduce(trad, *cfg, registro, rutaLog, bolLog && !(btOpciones & 4));
    ini = fin + 1;
  }
  if ((btOpciones & 4) && std::filesystem::exists(rutaLog, ec)) {
    velqua_fuzz::Hallazgo("a log file was created in a folder that does not exist");
  }
  trad.Conmutador(nullptr);
  trad.LlamadaActual(u"1");
  return 0;
}

}  // namespace velqua_fuzz_traductor
