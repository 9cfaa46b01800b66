// clsTraductor, the call record translator.
//
// Bind a configuration with Conmutador, write each captured record to
// LlamadaActual, then read TipoLlamadaDetectada, Atributo and the field
// properties, which cut their fields out of the record on demand. The object
// holds its state behind a pointer: the layout of the class never changes
// with it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velqua/cfg_conmut.h"
#include "velqua/entorno.h"
#include "velqua/enums.h"
#include "velqua/export.h"

namespace velqua {
class MotorTraductor;

class VELQUA_EXPORT clsTraductor {
 public:
  // Unbound, all texts empty, type emTradNoIdentificada, attribute
  // emATRNoAtributo, in the real environment (EntornoSistema). The random
  // generator gets a first seed from the environment here too, so that even
  // a generator never reseeded at binding does not repeat its extensions
  // from run to run.
  clsTraductor();
  // The same in environment udtEntorno (nullptr: the real one), whose clock,
  // seed and files every operation then uses. The environment may be shared
  // with translators on other threads.
  explicit clsTraductor(std::shared_ptr<Entorno> udtEntorno);
  // Changes the environment from the next operation on (nullptr: the real
  // one); the generator keeps its state until the next seeding.
  void EstableceEntorno(std::shared_ptr<Entorno> udtEntorno);

  // ---- Files, binding and record intake ----
  // The extension list of cases 10 and 11 (lines "code;extension", or
  // "code,extension"); no check, no file access here; read at each lookup.
  std::u16string ArchivoListaExtensionesKXTDA() const;
  void ArchivoListaExtensionesKXTDA(const std::u16string& cadArch);
  // The unrecognised-call log, appended to with a timestamp; the empty text
  // turns logging off. Neither file ever makes an operation fail.
  std::u16string ArchivoLlamadasError() const;
  void ArchivoLlamadasError(const std::u16string& cadArch);
  // The multi-line buffer; a write triggers nothing.
  std::u16string BufferMultiplesLineas() const;
  void BufferMultiplesLineas(const std::u16string& cadB);
  // Read: the empty text when unbound; the buffer in case 4; else the line.
  std::u16string LlamadaActual() const;
  // Write: stores the record (into the buffer in case 4), detects type and
  // attribute, then, except for account-code records, reads the duration:
  // -1 makes the record unrecognised (not in case 3, nor for an unanswered
  // incoming call), and an unrecognised record is logged. Unbound: only sets
  // the type to emTradNoIdentificada. Error 6 of the duration passes through.
  void LlamadaActual(const std::u16string& cadL);
  // Binds (or, with nullptr, unbinds) a configuration. Cases 10 and 11 seed
  // the random generator from the environment (Entorno::Semilla).
  void Conmutador(std::shared_ptr<clsCfgConmut> iclsCmt);
  // True when the current line is not empty.
  bool HayLlamada() const;
  // True when the multi-line buffer is not empty.
  bool HayBufferMultiplesLineas() const;
  // The type and attribute of the record written last.
  emTipoLlamadaTraductor TipoLlamadaDetectada() const;
  emAtributoTraductor Atributo() const;

  // ---- Call fields, cut from the record at every read ----
  // Keys follow the detected type and attribute; the configuration's
  // DATOActivo / CTEActivo are left at the last key read. Errors: 91 when
  // unbound; 6 when a field's position plus width passes 255, or a composed
  // time passes 32 bits.
  // Day 1-31, month 1-12, year (1 or 2 digits get the current century); a
  // field missing or out of range gives today's component.
  int16_t Dia();
  int16_t Mes();
  int16_t Anio();
  // Seconds from midnight; a missing component takes the clock's. With a
  // morning mark defined, a line without the mark is an afternoon (an hour
  // below 12 gets 12 more, the clock's hour too: intended, a line without
  // the mark is an afternoon line whatever gave its hour) and one with it
  // maps hour 12 to 0.
  int32_t Hora();
  // Seconds (the hours field is optional); -1 when minutes or seconds are
  // unreadable. Cases 5, 8: end minus start date-time; case 6: seconds x 6.
  int32_t Duracion();
  // Ring time in seconds, read as Duracion's fields are; -1 when unreadable.
  int32_t Ring();
  // Dialled or calling number, trimmed, without the prefix of constant 26.
  std::u16string Marcacion();
  // Extension, trimmed. Cases 10, 11, outgoing: "*code" becomes the list's
  // extension for code, or a random four-digit one.
  std::u16string Extension();
  // Trunk, trimmed.
  std::u16string Troncal();
  // Receiving extension (extension-to-extension calls) or trunk
  // (trunk-to-trunk calls), trimmed; the empty text for other types.
  std::u16string ExtensionReceptor();
  std::u16string TroncalReceptor();
  // Account code, trimmed; empty off account-code records when the switch
  // has an account-code mark. Cases 10, 11: what follows a leading "*", or "".
  std::u16string CodigoCuenta();

  // ---- Constant test and line search ----
  // Does the current line carry constant emParamCte at its column, the whole
  // width (case ignored)? False on an empty line; error 91 when unbound, 6
  // when its position plus width passes 255. Leaves CTEActivo at emParamCte.
  bool HayConstanteLlamada(emParamDatoConstante emParamCte);
  // Selects the first line of the buffer containing cadVal (case ignored)
  // as the current line; returns the position just past its separator (a
  // later line gives more), or 0 with the line empty. Error 6 past 32767.
  int16_t BuscaLinea(const std::u16string& cadVal);

  ~clsTraductor();
  clsTraductor(clsTraductor&&) noexcept;
  clsTraductor& operator=(clsTraductor&&) noexcept;
  clsTraductor(const clsTraductor&) = delete;
  clsTraductor& operator=(const clsTraductor&) = delete;

 private:
  std::unique_ptr<MotorTraductor> udtMotor;
};

}  // namespace velqua
