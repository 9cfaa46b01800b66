// Exportar and Importar, the profile form of a configuration, and
// the value forms (code lists, wiring lists, data-field and constant values).
// Profile access goes through basConmuta (LeeValorINI, EscribeValorINI).
#include <string>

#include "errors/errores_runtime.h"
#include "files/bas_conmuta.h"
#include "files/errores_archivo.h"
#include "files/numerico.h"
#include "files/perfil_ini.h"
#include "files/recorte.h"
#include "model/datos_cfg.h"
#include "platform/archivos.h"
#include "velqua/texto.h"

namespace velqua {
namespace {

// Section names of the profile file (doc/formats/perfil.md).
constexpr const char16_t* kSecConmutador = u"Conmutador";
constexpr const char16_t* kSecPuertos = u"Puertos";
constexpr const char16_t* kSecDatos = u"Datos";
constexpr const char16_t* kSecConstantes = u"Constantes";

// Counts of the wiring lists: entries 1 to N (entry 0 is never exported).
constexpr int16_t kPinesRJ45 = 9;
constexpr int16_t kPinesDB9 = 9;
constexpr int16_t kPinesDB25 = 25;

// Detail lines of the five header checks of Importar.
constexpr const char16_t* kDetalleVersion = u"La versión no es correcta.";
constexpr const char16_t* kDetalleMarca =
    u"No se encontro una marca para la configuración del conmutador.";
constexpr const char16_t* kDetalleModelo =
    u"No se encontro un modelo para la configuración del conmutador.";
constexpr const char16_t* kDetalleCaso = u"El caso de la configuración no esta soportado.";
constexpr const char16_t* kDetalleSeparador = u"No hay un separador de llamadas definido.";

// Shortest decimal form, "-" before a negative number.
std::u16string Decimal(int64_t v) { return DesdeAnsi(std::to_string(v)); }

// The token rule shared by the four value readers: a
// token runs from the current position to the next ","; the position moves
// past that ",", or past the end when there is none.
class Tokens {
 public:
  explicit Tokens(const std::u16string& cadValor) : valor_(cadValor) {}
  // The next token; false when the position is already past the end.
  bool Siguiente(std::u16string& cadToken) {
    if (pos_ >= valor_.size()) return false;
    size_t coma = valor_.find(u',', pos_);
    if (coma == std::u16string::npos) coma = valor_.size();
    cadToken = valor_.substr(pos_, coma - pos_);
    pos_ = coma + 1;
    return true;
  }
  // The value from the current position on (empty past the end).
  std::u16string Resto() const {
    return pos_ < valor_.size() ? valor_.substr(pos_) : std::u16string();
  }

 private:
  const std::u16string& valor_;
  size_t pos_ = 0;
};

// The four leading fields of a data-field or constant value: each a 32-bit
// integer, a missing or non-numeric token reading as 0. Checks stop at the
// first refusal, so a later token is not even converted.
struct Campos {
  int32_t lnParam = 0;
  int32_t lnTipo = 0;
  int32_t lnPos = 0;
  int32_t lnTam = 0;
};

bool LeeCampos(Tokens& t, int32_t lnClaveMaxima, Campos& c) {
  std::u16string tk[4];
  for (std::u16string& s : tk) {
    if (!t.Siguiente(s) || !archivos::EsNumerico(s)) s = u"0";
  }
  c.lnParam = archivos::ValorEntero32(tk[0]);
  if (c.lnParam < 2 || c.lnParam > lnClaveMaxima) return false;
  c.lnTipo = archivos::ValorEntero32(tk[1]);
  if (c.lnTipo < 1 || c.lnTipo > 3) return false;
  c.lnPos = archivos::ValorEntero32(tk[2]);
  if (c.lnPos < 1 || c.lnPos > 255) return false;
  c.lnTam = archivos::ValorEntero32(tk[3]);
  return c.lnTam >= 1 && c.lnTam <= 255;
}

// A refused check of Importar (not a runtime failure, but raised alike).
struct Rechazo {};

}  // namespace

// ---- value forms ----

std::u16string DatosCfgConmut::DecodificaCodigos(const std::u16string& cadLista) {
  std::u16string r;
  std::u16string tk;
  Tokens t(cadLista);
  while (t.Siguiente(tk)) {
    if (tk.size() >= 4 || !archivos::EsNumerico(tk)) continue;
    const int32_t v = archivos::ValorEntero32(tk);  // at most 3 characters: no overflow
    if (v >= 0 && v <= 254) r.push_back(CaracterAnsi(static_cast<unsigned char>(v)));
  }
  return r;
}

void DatosCfgConmut::LeeListaPines(int32_t* lnPines, int16_t intCuantos,
                                   const std::u16string& cadLista) {
  Tokens t(cadLista);
  std::u16string tk;
  for (int16_t i = 1; i <= intCuantos; ++i) {
    if (!t.Siguiente(tk) || !archivos::EsNumerico(tk) || tk.size() >= 11) tk = u"0";
    lnPines[i] = archivos::ValorEntero32(tk);  // ten digits beyond 32 bits: error 6
  }
}

void DatosCfgConmut::InterpretaDato(const std::u16string& cadValor, RegDATO& udtD, bool& bolOk) {
  bolOk = false;
  Tokens t(cadValor);
  Campos c;
  if (!LeeCampos(t, emUltimoParamDato - 1, c)) return;
  udtD.emParam = static_cast<emParamDato>(c.lnParam);
  udtD.emTipo = static_cast<emTipoDato>(c.lnTipo);
  udtD.btPos = static_cast<uint8_t>(c.lnPos);
  udtD.btTam = static_cast<uint8_t>(c.lnTam);
  bolOk = true;
}

void DatosCfgConmut::InterpretaConstante(const std::u16string& cadValor, RegCTE& udtC,
                                         bool& bolOk) {
  bolOk = false;
  Tokens t(cadValor);
  Campos c;
  if (!LeeCampos(t, emUltimoParamDatoConstante - 1, c)) return;
  udtC.emParam = static_cast<emParamDatoConstante>(c.lnParam);
  udtC.emTipo = static_cast<emTipoDato>(c.lnTipo);
  udtC.btPos = static_cast<uint8_t>(c.lnPos);
  udtC.btTam = static_cast<uint8_t>(c.lnTam);
  // a = 1-based position of the first "$(" plus 2 (2 when none); b = that of
  // the first ")" minus 1 (-1 when none); the codes are positions a to b.
  const std::u16string resto = t.Resto();
  const size_t abre = resto.find(u"$(");
  const size_t cierra = resto.find(u')');
  const int64_t a = (abre == std::u16string::npos ? 0 : static_cast<int64_t>(abre) + 1) + 2;
  const int64_t b = (cierra == std::u16string::npos ? 0 : static_cast<int64_t>(cierra) + 1) - 1;
  if (b < 0 || a >= b) return;
  const std::u16string codigos =
      resto.substr(static_cast<size_t>(a - 1), static_cast<size_t>(b - a + 1));
  RellenaConNulos(udtC.cadTexto, DecodificaCodigos(codigos), kTamTextoCte);
  bolOk = true;
}

std::u16string DatosCfgConmut::ListaPines(const int32_t* lnPines, int16_t intCuantos) {
  std::u16string r;
  for (int16_t i = 1; i <= intCuantos; ++i) r += Decimal(lnPines[i]) + u",";
  return r;
}

std::u16string DatosCfgConmut::TextoDato(const RegDATO& udtD) {
  return Decimal(udtD.emParam) + u"," + Decimal(udtD.emTipo) + u"," + Decimal(udtD.btPos) + u"," +
         Decimal(udtD.btTam) + u",";
}

std::u16string DatosCfgConmut::TextoConstante(const RegCTE& udtC) {
  return Decimal(udtC.emParam) + u"," + Decimal(udtC.emTipo) + u"," + Decimal(udtC.btPos) + u"," +
         Decimal(udtC.btTam) + u",$(" + ListaCodigos(udtC.cadTexto, kTamTextoCte) + u")";
}

// ---- Exportar ----

void DatosCfgConmut::Exportar(const std::u16string& cadArch) {
  if (archivos::Recorta(cadArch).empty()) {
    archivos::LanzaErrorConfig(emErrorNoHayArchivo, archivos::kFuenteExportar,
                               ObtMensajeError(emErrorNoHayArchivo));
  }
  // The name as the platform functions see it (Windows-1252, ended by a
  // U+0000 as a C string), so the file deleted is the file then written.
  plataforma::BorraArchivo(DesdeAnsi(AAnsi(basConmuta::CortaEnNulo(cadArch))));  // failure ignored

  bool bolFallo = false;
  try {
    const auto escribe = [&](const char16_t* cadSec, const std::u16string& cadClave,
                             const std::u16string& cadValor) {
      if (!basConmuta::EscribeValorINI(cadArch, cadSec, cadClave, cadValor)) throw Rechazo{};
    };
    std::u16string comentarios = Comentarios();
    for (char16_t& ch : comentarios) {
      if (ch == u'\r' || ch == u'\n') ch = u' ';
    }
    escribe(kSecConmutador, u"Version", Decimal(udtCfg.emVersionCfg));
    escribe(kSecConmutador, u"Marca", Marca());
    escribe(kSecConmutador, u"Modelo", Modelo());
    escribe(kSecConmutador, u"Caso", Decimal(udtCfg.emCasoCfg));
    escribe(kSecConmutador, u"Separador", ListaCodigos(Separador(), kTamSeparador));
    escribe(kSecConmutador, u"Comentarios", comentarios);
    escribe(kSecPuertos, u"RJ45", ListaPines(udtCfg.lnPinesRJ45.data(), kPinesRJ45));
    escribe(kSecPuertos, u"DB9", ListaPines(udtCfg.lnPinesDB9.data(), kPinesDB9));
    escribe(kSecPuertos, u"DB25", ListaPines(udtCfg.lnPinesDB25.data(), kPinesDB25));
    CuentaCompletos();
    int16_t k = 1;
    for (const RegDATO& r : udtDATO) {
      if (k > udtCfg.intDATOCompletos) break;
      if (!ValidaDATO(r)) continue;
      escribe(kSecDatos, u"Dato" + Decimal(k), TextoDato(r));
      k = AEntero16(k + 1);
    }
    k = 1;
    for (const RegCTE& r : udtCTE) {
      if (k > udtCfg.intCTECompletos) break;
      if (!ValidaCTE(r)) continue;
      escribe(kSecConstantes, u"Constante" + Decimal(k), TextoConstante(r));
      k = AEntero16(k + 1);
    }
  } catch (...) {  // a refused write or any runtime failure
    bolFallo = true;
  }
  if (bolFallo) {
    archivos::LanzaErrorConfig(emErrorConfigExportar, archivos::kFuenteExportar,
                               ObtMensajeError(emErrorConfigExportar));
  }
}

// ---- Importar ----

void DatosCfgConmut::Importar(const std::u16string& cadArch) {
  // One parse of the file for all the key reads of this operation.
  perfil::SesionLecturaPerfil sesion;
  const auto lee = [&](const char16_t* cadSec, const std::u16string& cadClave) {
    return basConmuta::LeeValorINI(cadArch, cadSec, cadClave);
  };
  const auto exige = [](bool bolCondicion) {
    if (!bolCondicion) throw Rechazo{};
  };
  bool bolFallo = false;
  try {
    std::u16string v = lee(kSecConmutador, u"Version");
    cadDetalleImportar = kDetalleVersion;
    exige(archivos::EsNumerico(v));
    const int32_t lnVersion = archivos::ValorEntero32(v);
    exige(lnVersion >= 1 && lnVersion <= 3);
    udtCfg.emVersionCfg = static_cast<emVersionConfiguracion>(lnVersion);

    v = lee(kSecConmutador, u"Marca");
    cadDetalleImportar = kDetalleMarca;
    exige(!archivos::Recorta(v).empty());
    RellenaConNulos(udtCfg.cadMarca, v, kTamMarca);

    v = lee(kSecConmutador, u"Modelo");
    cadDetalleImportar = kDetalleModelo;
    exige(!archivos::Recorta(v).empty());
    RellenaConNulos(udtCfg.cadModelo, v, kTamModelo);

    v = lee(kSecConmutador, u"Caso");
    cadDetalleImportar = kDetalleCaso;
    exige(archivos::EsNumerico(v) && archivos::ValorEntero32(v) == emCasoEstandar);
    udtCfg.emCasoCfg = emCasoEstandar;

    v = lee(kSecConmutador, u"Separador");
    cadDetalleImportar = kDetalleSeparador;
    const std::u16string d = DecodificaCodigos(v);
    exige(!QuitaNulos(d).empty());
    RellenaConNulos(udtCfg.cadSeparador, d, kTamSeparador);

    RellenaConNulos(udtCfg.cadComentarios, lee(kSecConmutador, u"Comentarios"), kTamComentarios);

    LeeListaPines(udtCfg.lnPinesRJ45.data(), kPinesRJ45, lee(kSecPuertos, u"RJ45"));
    LeeListaPines(udtCfg.lnPinesDB9.data(), kPinesDB9, lee(kSecPuertos, u"DB9"));
    LeeListaPines(udtCfg.lnPinesDB25.data(), kPinesDB25, lee(kSecPuertos, u"DB25"));

    // The numbered keys; the 16-bit counter overflows (error 6, so 1504)
    // when it has to go past 32767, that is after 32767 non-empty keys.
    // Intended: the tables count records in 16 bits, so such a file is
    // refused whole rather than loaded in part.
    for (int16_t k = 1;; k = AEntero16(k + 1)) {
      v = lee(kSecDatos, u"Dato" + Decimal(k));
      if (v.empty()) break;
      RegDATO r;
      bool bolOk = false;
      InterpretaDato(v, r, bolOk);
      if (!bolOk) continue;  // refused values are skipped
      DATOActivo(r.emParam);
      TipoDatoDATO(r.emTipo);
      DATOPos(r.btPos);
      DATOTam(r.btTam);
    }
    for (int16_t k = 1;; k = AEntero16(k + 1)) {
      v = lee(kSecConstantes, u"Constante" + Decimal(k));
      if (v.empty()) break;
      RegCTE r;
      bool bolOk = false;
      InterpretaConstante(v, r, bolOk);
      if (!bolOk) continue;  // type and width tested, not applied
      CTEActivo(r.emParam);
      CTEPos(r.btPos);
      Constante(r.cadTexto);
    }
  } catch (...) {  // a refused check or any runtime failure
    bolFallo = true;
  }
  if (bolFallo) {
    archivos::LanzaErrorConfig(
        emErrorConfigImportar, archivos::kFuenteImportar,
        archivos::DescripcionConDetalle(ObtMensajeError(emErrorConfigImportar), cadDetalleImportar,
                                        cadArch));
  }
  bolModificado = false;
  NotificaConfiguracionCargada();
}

}  // namespace velqua
