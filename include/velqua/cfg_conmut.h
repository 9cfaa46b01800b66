// clsCfgConmut, the switch configuration.
//
// One object describes how one telephone switch prints its call records:
// brand, model, handling case, call separator, comments, the data-field and
// constant tables, and the SMDR cable wiring. The class is defined across
// src/model (object, texts, tables), src/files (binary and profile files and
// their errors) and src/wiring (pin model, drawings).
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/enums.h"
#include "velqua/export.h"

namespace velqua {

class Superficie;
class clsTraductor;

// Widths, in 16-bit characters, of the fixed-width texts; longer texts are
// cut to them silently.
constexpr int16_t kTamMarca = 50;
constexpr int16_t kTamModelo = 50;
constexpr int16_t kTamComentarios = 250;
constexpr int16_t kTamSeparador = 10;
constexpr int16_t kTamTextoCte = 20;

// The configuration record; also, field for field, the 660-byte header of
// the version-3 file. Texts always hold exactly their width, padded with
// U+0000.
struct RegCfg {
  emVersionConfiguracion emVersionCfg = emNoVersion;
  std::u16string cadMarca = std::u16string(kTamMarca, u'\0');
  std::u16string cadModelo = std::u16string(kTamModelo, u'\0');
  std::u16string cadComentarios = std::u16string(kTamComentarios, u'\0');
  std::u16string cadSeparador = std::u16string(kTamSeparador, u'\0');
  emCasos emCasoCfg = emNoCaso;
  std::array<int32_t, 10> lnPinesRJ45{};     // [switch pin]: bit k-1 = computer pin k
  std::array<int32_t, 10> lnPinesDB9{};      // as lnPinesRJ45
  std::array<int32_t, 26> lnPinesDB25{};     // as lnPinesRJ45
  std::array<int32_t, 26> lnPinesReserva{};  // carried, never used
  int16_t intDATOCompletos = 0;              // set by the file operations
  int16_t intCTECompletos = 0;               // set by the file operations
};

// One record of the data-field table: where one datum lies in a record line.
struct RegDATO {
  emParamDato emParam = emNoParamDato;
  emTipoDato emTipo = emValorNoDefinido;  // emValorNoDefinido marks a free record
  uint8_t btPos = 0;                      // 1-based start column; 0 = not set
  uint8_t btTam = 0;                      // width in characters; 0 = not set
};

// One record of the constant table: a text that marks a kind of call.
struct RegCTE {
  emParamDatoConstante emParam = emNoParamDatoConstante;
  emTipoDato emTipo = emValorNoDefinido;  // derived: emValorConstante when complete
  uint8_t btPos = 0;
  uint8_t btTam = 0;
  std::u16string cadTexto = std::u16string(kTamTextoCte, u'\0');
};

// The notifications of a configuration (the events hosts know as
// __clsCfgConmut). Delivered synchronously, in registration order, after the
// new value is in place, so a listener that reads the object sees it.
class VELQUA_EXPORT EventosCfgConmut {
 public:
  virtual ~EventosCfgConmut() = default;
  // An effective change of Marca or Modelo, always before its Cambios.
  virtual void CambioNombreConmutador() {}
  // The end of Iniciar and of a successful Abrir or Importar.
  virtual void ConfiguracionCargada() {}
  // Every effective change of the content (texts, case, tables, pins).
  virtual void Cambios() {}
};

class VELQUA_EXPORT clsCfgConmut {
 public:
  // Every member zero, then the reset, which notifies nothing: every text is
  // already empty. Not copyable: listeners and translators hold the object.
  clsCfgConmut();
  clsCfgConmut(const clsCfgConmut&) = delete;
  clsCfgConmut& operator=(const clsCfgConmut&) = delete;

  // ---- Identity, labels, case and change flag ----
  // The reset: version 3, case emCasoEstandar, wiring and texts cleared,
  // active keys 0, every table record freed (kept, and found again by its
  // key), Modificado false. Each text that held a value notifies as its write
  // does; then ConfiguracionCargada. IDCfg is kept.
  void Iniciar();
  // The change flag: set by every effective change, cleared by Iniciar and
  // the file operations; writing it stores any value and notifies nothing.
  bool Modificado() const;
  void Modificado(bool bolM);
  // True when Caso != emNoCaso, Version != emNoVersion, Marca and Modelo non-empty.
  bool HayConfig() const;
  // Host identifier; any value; no notification, Modificado unchanged. Default 0.
  int32_t IDCfg() const;
  void IDCfg(int32_t lnID);
  // Layout version; only the reset and the file operations change it. Default 3.
  emVersionConfiguracion Version() const;
  // "2.0", "3.0", or "No hay versión" for any other version.
  std::u16string NombreVersion() const;
  // Handling case; any 32-bit value is stored. An effective change sets
  // Modificado and notifies Cambios. Default emCasoEstandar.
  emCasos Caso() const;
  void Caso(emCasos emC);
  // Case name of Caso(); the empty text for cases 11 and 12 and values
  // outside the enumeration, which have no name hosts could show.
  std::u16string NombreCaso() const;
  // Case name of emC; changes nothing.
  std::u16string ObtNombreCaso(emCasos emC) const;
  // Fixed-width texts (50, 50, 250, 10 characters): cut silently, read with
  // every U+0000 removed. An effective write sets Modificado and notifies
  // (Marca, Modelo: CambioNombreConmutador then Cambios; others: Cambios).
  std::u16string Marca() const;
  void Marca(const std::u16string& cadM);
  std::u16string Modelo() const;
  void Modelo(const std::u16string& cadM);
  // "Marca, Modelo", or "Desconocido" unless both are non-empty.
  std::u16string NombreConmutador() const;
  std::u16string Comentarios() const;
  void Comentarios(const std::u16string& cadC);
  std::u16string Separador() const;
  void Separador(const std::u16string& cadSep);
  // Ten comma-terminated Windows-1252 codes of Separador, 0 past its end:
  // CR LF gives "13,10,0,0,0,0,0,0,0,0,".
  std::u16string ListaSeparador() const;
  int16_t TamMaxSeparador() const;    // 10
  int16_t TamMaxComentarios() const;  // 250

  // ---- Data-field and constant tables (active-key protocol) ----
  // Active keys: any value; no notification, Modificado unchanged.
  emParamDato DATOActivo() const;
  void DATOActivo(emParamDato emCual);
  emParamDatoConstante CTEActivo() const;
  void CTEActivo(emParamDatoConstante emCual);
  // True when the active key has a complete record: valid key, position and
  // width not 0, type set (HayCTE: valid key, position not 0, text not empty).
  bool HayDATO() const;
  bool HayCTE() const;
  // Reads give the active record's value whatever its type (0 / empty when
  // there is none). Writes take a record when the key has none (a free one
  // first) and, on an effective change, set Modificado and notify Cambios.
  // Error 6 when 32,767 records hold other keys: counts are 16-bit, as in the
  // files. A constant's type is derived after each write, after its Cambios
  // (emValorConstante when complete); Constante also sets CTETam to its length.
  emTipoDato TipoDatoDATO() const;
  void TipoDatoDATO(emTipoDato emCual);
  emTipoDato TipoDatoCTE() const;
  uint8_t DATOPos() const;
  void DATOPos(uint8_t btPos);
  uint8_t CTEPos() const;
  void CTEPos(uint8_t btPos);
  uint8_t DATOTam() const;
  void DATOTam(uint8_t btTam);
  uint8_t CTETam() const;
  void CTETam(uint8_t btTam);
  std::u16string Constante() const;
  void Constante(const std::u16string& cadCte);

  // ---- Cable wiring: per port, a bit set of computer pins per switch pin ----
  // Joins / separates computer pin intPinConectar (1 or less: pin 1) and
  // switch pin intPinVector. Errors, in this order, nothing changed: 6
  // (computer pin >= 32 or -32768); 0x800404B5, source
  // "clsConfig.EstableceEstadoPin" (DB25 switch pin 1, the ground pin); 9
  // (switch pin outside the port's array). An effective change sets
  // Modificado and notifies Cambios once; another port value changes nothing.
  void ActivaPin(emPuertoSerial iemPuerto, int16_t intPinVector, int16_t intPinConectar);
  void DesactivaPin(emPuertoSerial iemPuerto, int16_t intPinVector, int16_t intPinDesconectar);
  // True when switch pin intPinConmut is joined to computer pin intPinPC.
  // Errors 9 (switch pin outside the array) and 6 (element positive and
  // computer pin >= 32 or -32768).
  bool PinesConectados(emPuertoSerial iemPuerto, int16_t intPinConmut, int16_t intPinPC) const;
  // True when a switch pin of the port (1-8 RJ45, 1-9 DB9, 1-25 DB25) is wired.
  bool HayConfiguracionSMDR(emPuertoSerial iemPuerto) const;
  // Clears those pins; Modificado unchanged and nothing notified, so a host
  // that wants the change recorded sets Modificado itself.
  void LimpiaConfiguracionSMDR(emPuertoSerial iemPuerto);

  // ---- Drawings onto the host's surface (surface units, usually twips) ----
  // Draws the cable diagram of one port with its top-left corner at (sglPosX,
  // sglPosY), or a one-line message when the port has no wiring. Reads the
  // wiring only; an exception of the surface propagates, what was drawn stays.
  void DibujaConfiguracionSMDR(emPuertoSerial iemPuerto, Superficie& picDib, float sglPosX = 0,
                               float sglPosY = 0) const;
  // Draws the fixed DB9-to-DB25 conversion table (1350 x 1900 units); it
  // reads nothing of the configuration.
  void DibujaTablaConversionDB9DB25(Superficie& picDib, float sglPosX = 0, float sglPosY = 0) const;

  // ---- Files: binary (Abrir, GuardarComo) and profile (Importar, Exportar) ----
  // Loads a version-3 or version-2 binary file over the reset. Errors, source
  // "clsConfigConmut.Abrir", description ending CR LF " Archivo :" and the
  // name: 0 (blank name), 1501 (missing, or archive bit clear), 1505 (no
  // layout recognised, or a failure while loading). Success: Modificado
  // false, then ConfiguracionCargada.
  void Abrir(const std::u16string& cadArch);
  // Writes the version-3 layout with the complete records. Errors, source
  // "clsConfigConmut.GuardarComo": 1501 (blank name), 1502 (case 0, or brand,
  // model or separator empty). Failures of the file itself are not reported,
  // as hosts expect; Modificado false after, nothing notified.
  void GuardarComo(const std::u16string& cadArch);
  // Reads a profile file, merging its records into the tables (no reset).
  // Error 1504, source "clsConfigConmut.Importar", description: message, the
  // check that failed, the name; what was read before stays. Only case 1 is
  // accepted. Success: Modificado false, then ConfiguracionCargada.
  void Importar(const std::u16string& cadArch);
  // Replaces the profile file by the configuration. Errors, source
  // "clsConfigConmut.Exportar": 1501 (blank name), 1503 (a key not written;
  // keys already written stay). Nothing notified, Modificado unchanged.
  void Exportar(const std::u16string& cadArch);

  // ---- Notifications ----
  // Registers a listener, not owned: it must outlive its registration.
  // nullptr is ignored; a listener registered twice is notified twice.
  void AgregaOyente(EventosCfgConmut* oyente);
  // Removes one registration of the listener; an unknown one is ignored.
  void QuitaOyente(EventosCfgConmut* oyente);

 private:
  // ---- The translator's reads without allocation ----
  // The translator reads Constante and Separador at almost every decision
  // it makes. These give exactly the text those properties return,
  // as a view: of the stored text when its U+0000 are all at the end (the
  // stored form RellenaConNulos makes), otherwise of cadTrabajo, where the
  // text is built. The view lives until the next change of the
  // configuration or of cadTrabajo.
  friend class clsTraductor;
  // The active record (what BuscaDATO / BuscaCTE find for the active key),
  // or nullptr: HayDATO, DATOPos, DATOTam and TipoDatoDATO (HayCTE, CTEPos,
  // CTETam) of one decision from one lookup. Valid until the table grows.
  const RegDATO* RegistroDATOActivo() const;
  const RegCTE* RegistroCTEActivo() const;
  std::u16string_view VistaConstante(std::u16string& cadTrabajo) const;
  std::u16string_view VistaSeparador(std::u16string& cadTrabajo) const;
  static std::u16string_view VistaSinNulos(const std::u16string& cadOrigen,
                                           std::u16string& cadTrabajo);

  // ---- Object and fixed-width texts (src/model/cfg_conmut.cpp, texto_fijo.cpp) ----
  void EstableceValoresIniciales();
  static void RellenaConNulos(std::u16string& cadDestino, const std::u16string& cadOrigen,
                              int16_t intTam);
  static std::u16string QuitaNulos(const std::u16string& cadOrigen);
  static std::u16string ListaCodigos(const std::u16string& cadOrigen, int16_t intCuantos);
  // Writes a fixed-width text property: cut or padded to intTam, compared
  // exactly; when it differs, stores it and sets Modificado. True then.
  bool EscribeTextoFijo(std::u16string& cadMiembro, const std::u16string& cadValor, int16_t intTam);
  void NotificaCambioNombreConmutador();
  void NotificaConfiguracionCargada();
  void NotificaCambios();

  // ---- Tables (src/model/tablas.cpp) ----
  int16_t BuscaDATO(int32_t emCual) const;
  int16_t BuscaCTE(int32_t emCual) const;
  int16_t AgregaDATO();
  int16_t AgregaCTE();
  static bool ValidaDATO(const RegDATO& udtD);
  static bool ValidaCTE(const RegCTE& udtC);
  static bool EsClaveDATO(int32_t emCual) {
    return emCual > emPrimerParamDato && emCual < emUltimoParamDato;
  }
  static bool EsClaveCTE(int32_t emCual) {
    return emCual > emPrimerParamDatoConstante && emCual < emUltimoParamDatoConstante;
  }
  // Index of the active record, taken when the key has none (write
  // properties). An index, not a reference: a listener may grow the table.
  int16_t DATOParaEscribir();
  int16_t CTEParaEscribir();
  // Position or width write of the constant table: stored and notified when
  // it changes, then the type derived in every case.
  void EscribeByteCTE(uint8_t RegCTE::*campo, uint8_t btValor);
  // The derived constant type: emValorConstante when complete, else
  // emValorNoDefinido.
  static void DerivaTipoCTE(RegCTE& udtC);
  // Keeps the key -> index maps exact when a record changes key.
  void CambiaClaveDATO(int16_t intIndice, int32_t emNueva);
  void CambiaClaveCTE(int16_t intIndice, int32_t emNueva);
  // Counts of complete records into udtCfg, before GuardarComo and Exportar
  // write the records.
  void CuentaCompletos();

  // ---- Binary file readers (src/files/archivo_cfg.cpp) ----
  void LeeArchivoV3(const std::u16string& cadArch, bool& bolLeido);
  void LeeArchivoV2(const std::u16string& cadArch, bool& bolLeido);

  // ---- Profile form (src/files/perfil.cpp) ----
  static std::u16string DecodificaCodigos(const std::u16string& cadLista);
  static void LeeListaPines(int32_t* lnPines, int16_t intCuantos, const std::u16string& cadLista);
  static void InterpretaDato(const std::u16string& cadValor, RegDATO& udtD, bool& bolOk);
  static void InterpretaConstante(const std::u16string& cadValor, RegCTE& udtC, bool& bolOk);
  static std::u16string ListaPines(const int32_t* lnPines, int16_t intCuantos);
  static std::u16string TextoDato(const RegDATO& udtD);
  static std::u16string TextoConstante(const RegCTE& udtC);

  // ---- File error messages (src/files/errores_archivo.cpp) ----
  static std::u16string ObtMensajeError(int32_t lnCodigo);

  // ---- Pin model (src/wiring/pines.cpp) ----
  void EstableceEstadoPin(emPuertoSerial iemPuerto, int16_t intPinVector, int16_t intPinConectar,
                          bool bolEstado);

  // ---- Members ----
  int32_t lnIDCfg = 0;
  RegCfg udtCfg;
  bool bolModificado = false;
  emParamDato emDATOActivo = emNoParamDato;
  std::vector<RegDATO> udtDATO;  // udtDATO[i - 1] is record i (0: none)
  int16_t intNumDATO = 0;
  emParamDatoConstante emCTEActivo = emNoParamDatoConstante;
  std::vector<RegCTE> udtCTE;  // udtCTE[i - 1] is record i (0: none)
  int16_t intNumCTE = 0;
  std::u16string cadDetalleImportar;

  // An exact index from valid key to record (0 = none), so
  // BuscaDATO / BuscaCTE do no linear scan. A valid key has at most one record.
  std::array<int16_t, emUltimoParamDato> intIndiceDATO{};
  std::array<int16_t, emUltimoParamDatoConstante> intIndiceCTE{};
  std::vector<EventosCfgConmut*> oyentes;
};

// ---- Inline table reads ----
// The translator asks these for every field and constant it reads, so they
// are defined here where the compiler can inline them (src/model/tablas.cpp
// has the rest of the tables).

inline emCasos clsCfgConmut::Caso() const { return udtCfg.emCasoCfg; }

inline int16_t clsCfgConmut::BuscaDATO(int32_t emCual) const {
  return EsClaveDATO(emCual) ? intIndiceDATO[static_cast<size_t>(emCual)] : int16_t{0};
}

inline int16_t clsCfgConmut::BuscaCTE(int32_t emCual) const {
  return EsClaveCTE(emCual) ? intIndiceCTE[static_cast<size_t>(emCual)] : int16_t{0};
}

inline bool clsCfgConmut::ValidaDATO(const RegDATO& udtD) {
  return udtD.btPos != 0 && udtD.btTam != 0 && EsClaveDATO(udtD.emParam) &&
         udtD.emTipo != emValorNoDefinido;
}

inline bool clsCfgConmut::ValidaCTE(const RegCTE& udtC) {
  if (udtC.btPos == 0 || !EsClaveCTE(udtC.emParam) || udtC.emTipo == emValorNoDefinido) {
    return false;
  }
  for (char16_t c : udtC.cadTexto) {
    if (c != u'\0') return true;  // text not empty once U+0000 are removed
  }
  return false;
}

inline emParamDato clsCfgConmut::DATOActivo() const { return emDATOActivo; }
inline void clsCfgConmut::DATOActivo(emParamDato emCual) { emDATOActivo = emCual; }

inline bool clsCfgConmut::HayDATO() const {
  const int16_t i = BuscaDATO(emDATOActivo);
  return i != 0 && ValidaDATO(udtDATO[static_cast<size_t>(i - 1)]);
}

inline emTipoDato clsCfgConmut::TipoDatoDATO() const {
  const int16_t i = BuscaDATO(emDATOActivo);
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].emTipo : emValorNoDefinido;
}

inline uint8_t clsCfgConmut::DATOPos() const {
  const int16_t i = BuscaDATO(emDATOActivo);
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].btPos : uint8_t{0};
}

inline uint8_t clsCfgConmut::DATOTam() const {
  const int16_t i = BuscaDATO(emDATOActivo);
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].btTam : uint8_t{0};
}

inline emParamDatoConstante clsCfgConmut::CTEActivo() const { return emCTEActivo; }
inline void clsCfgConmut::CTEActivo(emParamDatoConstante emCual) { emCTEActivo = emCual; }

inline bool clsCfgConmut::HayCTE() const {
  const int16_t i = BuscaCTE(emCTEActivo);
  return i != 0 && ValidaCTE(udtCTE[static_cast<size_t>(i - 1)]);
}

inline emTipoDato clsCfgConmut::TipoDatoCTE() const {
  const int16_t i = BuscaCTE(emCTEActivo);
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].emTipo : emValorNoDefinido;
}

inline uint8_t clsCfgConmut::CTEPos() const {
  const int16_t i = BuscaCTE(emCTEActivo);
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].btPos : uint8_t{0};
}

inline uint8_t clsCfgConmut::CTETam() const {
  const int16_t i = BuscaCTE(emCTEActivo);
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].btTam : uint8_t{0};
}

inline const RegDATO* clsCfgConmut::RegistroDATOActivo() const {
  const int16_t i = BuscaDATO(emDATOActivo);
  return i != 0 ? &udtDATO[static_cast<size_t>(i - 1)] : nullptr;
}

inline const RegCTE* clsCfgConmut::RegistroCTEActivo() const {
  const int16_t i = BuscaCTE(emCTEActivo);
  return i != 0 ? &udtCTE[static_cast<size_t>(i - 1)] : nullptr;
}

inline std::u16string_view clsCfgConmut::VistaSinNulos(const std::u16string& cadOrigen,
                                                       std::u16string& cadTrabajo) {
  // The text up to its first U+0000 (a few characters), then one compare
  // of the rest with zeros: the stored texts are at most 20 wide here.
  static constexpr char16_t kCeros[kTamTextoCte] = {};
  const std::size_t t = cadOrigen.size();
  std::size_t n = 0;
  while (n < t && cadOrigen[n] != u'\0') ++n;
  const std::size_t resto = t - n;
  if (resto <= static_cast<std::size_t>(kTamTextoCte) &&
      std::memcmp(cadOrigen.data() + n, kCeros, resto * sizeof(char16_t)) == 0) {
    return std::u16string_view(cadOrigen.data(), n);
  }
  cadTrabajo = QuitaNulos(cadOrigen);  // a U+0000 inside the text (or a wider text)
  return cadTrabajo;
}

inline std::u16string_view clsCfgConmut::VistaConstante(std::u16string& cadTrabajo) const {
  const RegCTE* r = RegistroCTEActivo();
  return r != nullptr ? VistaSinNulos(r->cadTexto, cadTrabajo) : std::u16string_view();
}

inline std::u16string_view clsCfgConmut::VistaSeparador(std::u16string& cadTrabajo) const {
  return VistaSinNulos(udtCfg.cadSeparador, cadTrabajo);
}

}  // namespace velqua
