// The representation of a configuration: clsCfgConmut holds one behind a
// pointer and hands every public operation to it, so its record, tables,
// indexes and listeners can change without changing the public class. The
// contracts of the operations are those of include/velqua/cfg_conmut.h;
// what is only here is commented here. Private to the library: the
// translator reads a configuration through this header (Representacion).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/enums.h"

namespace velqua {

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

class DatosCfgConmut {
 public:
  // ---- The public operations, one for one (contracts in velqua/cfg_conmut.h) ----
  DatosCfgConmut();
  DatosCfgConmut(const DatosCfgConmut&) = delete;
  DatosCfgConmut& operator=(const DatosCfgConmut&) = delete;

  // ---- Identity, labels, case and change flag ----
  void Iniciar();
  bool Modificado() const;
  void Modificado(bool bolM);
  bool HayConfig() const;
  int32_t IDCfg() const;
  void IDCfg(int32_t lnID);
  emVersionConfiguracion Version() const;
  std::u16string NombreVersion() const;
  emCasos Caso() const;
  void Caso(emCasos emC);
  std::u16string NombreCaso() const;
  std::u16string ObtNombreCaso(emCasos emC) const;
  std::u16string Marca() const;
  void Marca(const std::u16string& cadM);
  std::u16string Modelo() const;
  void Modelo(const std::u16string& cadM);
  std::u16string NombreConmutador() const;
  std::u16string Comentarios() const;
  void Comentarios(const std::u16string& cadC);
  std::u16string Separador() const;
  void Separador(const std::u16string& cadSep);
  std::u16string ListaSeparador() const;
  int16_t TamMaxSeparador() const;    // 10
  int16_t TamMaxComentarios() const;  // 250

  // ---- Data-field and constant tables (active-key protocol) ----
  emParamDato DATOActivo() const;
  void DATOActivo(emParamDato emCual);
  emParamDatoConstante CTEActivo() const;
  void CTEActivo(emParamDatoConstante emCual);
  bool HayDATO() const;
  bool HayCTE() const;
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
  void ActivaPin(emPuertoSerial iemPuerto, int16_t intPinVector, int16_t intPinConectar);
  void DesactivaPin(emPuertoSerial iemPuerto, int16_t intPinVector, int16_t intPinDesconectar);
  bool PinesConectados(emPuertoSerial iemPuerto, int16_t intPinConmut, int16_t intPinPC) const;
  bool HayConfiguracionSMDR(emPuertoSerial iemPuerto) const;
  void LimpiaConfiguracionSMDR(emPuertoSerial iemPuerto);

  // ---- Drawings onto the host's surface (surface units, usually twips),
  // with the texts emTextos chooses (emTextosDibujo); the conversion table
  // reads no configuration and is drawn by the free function alone ----
  void DibujaConfiguracionSMDR(emPuertoSerial iemPuerto, Superficie& picDib, int32_t emTextos,
                               float sglPosX, float sglPosY) const;

  // ---- Files: binary (Abrir, GuardarComo) and profile (Importar, Exportar) ----
  void Abrir(const std::u16string& cadArch);
  void GuardarComo(const std::u16string& cadArch);
  void Importar(const std::u16string& cadArch);
  void Exportar(const std::u16string& cadArch);

  // ---- Notifications ----
  void AgregaOyente(EventosCfgConmut* oyente);
  void QuitaOyente(EventosCfgConmut* oyente);

  // ---- The translator's reads without allocation ----
  // The translator's selection: the key becomes the active key (the host
  // reads the key a translator used last) and the key's record is returned,
  // or nullptr: HayDATO, DATOPos, DATOTam and TipoDatoDATO (HayCTE, CTEPos,
  // CTETam, Constante) of one decision from one lookup, valid until the
  // table grows. The record is found by the key given, never by reading the
  // active key back, so translators on other threads sharing this
  // configuration and selecting other keys meanwhile cannot change what
  // this one reads. The tables are only read.
  const RegDATO* SeleccionaDATO(emParamDato emCual);
  const RegCTE* SeleccionaCTE(emParamDatoConstante emCual);
  // The translator reads Constante and Separador at almost every decision
  // it makes. These give exactly the text those properties return (empty
  // for no record), as a view: of the stored text when its U+0000 are all at
  // the end (the stored form RellenaConNulos makes), otherwise of
  // cadTrabajo, where the text is built. The view lives until the next
  // change of the configuration or of cadTrabajo.
  static std::u16string_view VistaTexto(const RegCTE* r, std::u16string& cadTrabajo);
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
  // The active keys are atomic: translators sharing this configuration on
  // several threads write them while they read (relaxed order: nothing is
  // published through them).
  std::atomic<emParamDato> emDATOActivo{emNoParamDato};
  std::vector<RegDATO> udtDATO;  // udtDATO[i - 1] is record i (0: none)
  int16_t intNumDATO = 0;
  std::atomic<emParamDatoConstante> emCTEActivo{emNoParamDatoConstante};
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

inline emCasos DatosCfgConmut::Caso() const { return udtCfg.emCasoCfg; }

inline int16_t DatosCfgConmut::BuscaDATO(int32_t emCual) const {
  return EsClaveDATO(emCual) ? intIndiceDATO[static_cast<size_t>(emCual)] : int16_t{0};
}

inline int16_t DatosCfgConmut::BuscaCTE(int32_t emCual) const {
  return EsClaveCTE(emCual) ? intIndiceCTE[static_cast<size_t>(emCual)] : int16_t{0};
}

inline bool DatosCfgConmut::ValidaDATO(const RegDATO& udtD) {
  return udtD.btPos != 0 && udtD.btTam != 0 && EsClaveDATO(udtD.emParam) &&
         udtD.emTipo != emValorNoDefinido;
}

inline bool DatosCfgConmut::ValidaCTE(const RegCTE& udtC) {
  if (udtC.btPos == 0 || !EsClaveCTE(udtC.emParam) || udtC.emTipo == emValorNoDefinido) {
    return false;
  }
  for (char16_t c : udtC.cadTexto) {
    if (c != u'\0') return true;  // text not empty once U+0000 are removed
  }
  return false;
}

inline emParamDato DatosCfgConmut::DATOActivo() const {
  return emDATOActivo.load(std::memory_order_relaxed);
}
inline void DatosCfgConmut::DATOActivo(emParamDato emCual) {
  emDATOActivo.store(emCual, std::memory_order_relaxed);
}

inline bool DatosCfgConmut::HayDATO() const {
  const int16_t i = BuscaDATO(DATOActivo());
  return i != 0 && ValidaDATO(udtDATO[static_cast<size_t>(i - 1)]);
}

inline emTipoDato DatosCfgConmut::TipoDatoDATO() const {
  const int16_t i = BuscaDATO(DATOActivo());
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].emTipo : emValorNoDefinido;
}

inline uint8_t DatosCfgConmut::DATOPos() const {
  const int16_t i = BuscaDATO(DATOActivo());
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].btPos : uint8_t{0};
}

inline uint8_t DatosCfgConmut::DATOTam() const {
  const int16_t i = BuscaDATO(DATOActivo());
  return i != 0 ? udtDATO[static_cast<size_t>(i - 1)].btTam : uint8_t{0};
}

inline emParamDatoConstante DatosCfgConmut::CTEActivo() const {
  return emCTEActivo.load(std::memory_order_relaxed);
}
inline void DatosCfgConmut::CTEActivo(emParamDatoConstante emCual) {
  emCTEActivo.store(emCual, std::memory_order_relaxed);
}

inline bool DatosCfgConmut::HayCTE() const {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 && ValidaCTE(udtCTE[static_cast<size_t>(i - 1)]);
}

inline emTipoDato DatosCfgConmut::TipoDatoCTE() const {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].emTipo : emValorNoDefinido;
}

inline uint8_t DatosCfgConmut::CTEPos() const {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].btPos : uint8_t{0};
}

inline uint8_t DatosCfgConmut::CTETam() const {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 ? udtCTE[static_cast<size_t>(i - 1)].btTam : uint8_t{0};
}

inline const RegDATO* DatosCfgConmut::SeleccionaDATO(emParamDato emCual) {
  DATOActivo(emCual);
  const int16_t i = BuscaDATO(emCual);
  return i != 0 ? &udtDATO[static_cast<size_t>(i - 1)] : nullptr;
}

inline const RegCTE* DatosCfgConmut::SeleccionaCTE(emParamDatoConstante emCual) {
  CTEActivo(emCual);
  const int16_t i = BuscaCTE(emCual);
  return i != 0 ? &udtCTE[static_cast<size_t>(i - 1)] : nullptr;
}

inline std::u16string_view DatosCfgConmut::VistaSinNulos(const std::u16string& cadOrigen,
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

inline std::u16string_view DatosCfgConmut::VistaTexto(const RegCTE* r, std::u16string& cadTrabajo) {
  return r != nullptr ? VistaSinNulos(r->cadTexto, cadTrabajo) : std::u16string_view();
}

inline std::u16string_view DatosCfgConmut::VistaSeparador(std::u16string& cadTrabajo) const {
  return VistaSinNulos(udtCfg.cadSeparador, cadTrabajo);
}

}  // namespace velqua
