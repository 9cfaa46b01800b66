// clsCfgConmut, the switch configuration.
//
// One object describes how one telephone switch prints its call records:
// brand, model, handling case, call separator, comments, the data-field and
// constant tables, and the SMDR cable wiring. The object holds its state
// behind a pointer: the layout of the class never changes with it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velqua/enums.h"
#include "velqua/export.h"

namespace velqua {

class DatosCfgConmut;
class Superficie;

// Widths, in 16-bit characters, of the fixed-width texts; longer texts are
// cut to them silently.
constexpr int16_t kTamMarca = 50;
constexpr int16_t kTamModelo = 50;
constexpr int16_t kTamComentarios = 250;
constexpr int16_t kTamSeparador = 10;
constexpr int16_t kTamTextoCte = 20;

// A complete data field, as ListaDATO gives it.
struct CampoDATO {
  emParamDato emParam = emNoParamDato;
  emTipoDato emTipo = emValorNoDefinido;
  uint8_t btPos = 0;  // 1-based start column
  uint8_t btTam = 0;  // width in characters
};

// A complete constant, as ListaCTE gives it; cadTexto as Constante reads it.
struct CampoCTE {
  emParamDatoConstante emParam = emNoParamDatoConstante;
  uint8_t btPos = 0;
  uint8_t btTam = 0;
  std::u16string cadTexto;
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
  // model or separator empty). Once those checks pass it never fails: a file
  // that cannot be written is not reported; Modificado false after, nothing
  // notified.
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

  // ---- The complete records, read only ----
  // Every complete data field (HayDATO would be true for its key), in key
  // order; the active keys are left as they are and nothing is notified.
  std::vector<CampoDATO> ListaDATO() const;
  // Every complete constant (HayCTE would be true for its key), in key order.
  std::vector<CampoCTE> ListaCTE() const;

  ~clsCfgConmut();
  // The representation, which only the library itself can use: its type is
  // defined inside the library, where the translator reads it.
  DatosCfgConmut& Representacion() { return *udtDatos; }
  const DatosCfgConmut& Representacion() const { return *udtDatos; }

 private:
  std::unique_ptr<DatosCfgConmut> udtDatos;
};

}  // namespace velqua
