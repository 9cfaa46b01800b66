// clsTraductor, the call record translator.
//
// Bind a configuration with Conmutador, write each captured record to
// LlamadaActual, then read TipoLlamadaDetectada, Atributo and the field
// properties, which cut their fields out of the record on demand.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/enums.h"
#include "velqua/export.h"

namespace velqua {
namespace plataforma {
struct FechaHora;
}  // namespace plataforma

class VELQUA_EXPORT clsTraductor {
 public:
  // Unbound, all texts empty, type emTradNoIdentificada, attribute
  // emATRNoAtributo. The random generator gets a first seed from the system
  // timer here too, so that even a generator never reseeded at binding does
  // not repeat its extensions from run to run.
  clsTraductor();

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
  // the random generator from the system timer.
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
  // below 12 gets 12 more, the clock's hour too: intended, hosts written
  // against this behaviour rely on it) and one with it maps hour 12 to 0.
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

 private:
  // Detection (deteccion.cpp)
  emTipoLlamadaTraductor TipoSegunConstante(emParamDatoConstante emParamCte);
  void DetectaTipoLlamada();
  void DetectaAtributo();
  // BuscaLinea for the translator's own keywords (no text built a call).
  int16_t BuscaLineaClave(std::u16string_view cadVal);
  int16_t RecorreLineas(std::u16string_view cadSep, std::u16string_view cadVal,
                        std::size_t* intInicio);
  void GuardaLinea(std::u16string_view cadVal, std::size_t intInicio, int16_t intResultado);
  // Field cutting (extraccion.cpp, campos_texto.cpp)
  // The field cut as a view, not copied into cadDato: into cadLinea for a
  // text field, into chrCifras for a numeric one (valid until the next cut
  // or change of cadLinea). cadDato is written only where a rule works on
  // it (cases 10, 11): no operation reads it before writing it, so the
  // results are those of a copy into cadDato.
  std::u16string_view ExtraeDato(emParamDato emParamDat);
  // Inline, defined and used only in src/translator/extraccion.cpp.
  inline std::u16string_view CorteDato(emParamDato emParamDat, bool* bolNumerico);
  int32_t ValorDato(emParamDato emParamDat);
  int32_t DuracionRestaFechas();
  int16_t ObtDia(emParamDato emParamDat);
  int16_t ObtMes(emParamDato emParamDat);
  int16_t ObtAnio(emParamDato emParamDat);
  int16_t ObtHoras(emParamDato emParamDat, bool bolHoraActual);
  int16_t ObtMinutos(emParamDato emParamDat, bool bolHoraActual);
  int16_t ObtSegundos(emParamDato emParamDat, bool bolHoraActual);
  int16_t ObtComponenteHora(emParamDato emParamDat, bool bolHoraActual,
                            int32_t plataforma::FechaHora::*emActual);
  int16_t AplicaMatutino(int16_t intHoras, emParamDatoConstante emMarca);
  int32_t TiempoEnSegundos(emParamDato emHoras, emParamDato emMinutos, emParamDato emSegundos);
  std::u16string CampoTexto(emParamDato emParamDat);
  // Switch-specific rules (casos.cpp)
  // Inline: nearly every read asks them, reading Caso afresh each time.
  bool EsCasoNorstar() const { return Cfg().Caso() == emCasoNortelNorstar0x32SMDR6; }
  bool EsCasoKXTDA() const {
    const emCasos emC = Cfg().Caso();
    return emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 ||
           emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto;
  }
  void DetectaTipoNorstar();
  void DetectaAtributoNorstar();
  void DireccionNorstar(int16_t intCabecera);
  bool SeleccionaLineaNorstar(emParamDato emParamDat) {
    return EsCasoNorstar() && LineaNorstar(emParamDat);
  }
  bool LineaNorstar(emParamDato emParamDat);
  void ExtensionKXTDA();
  void CodigoCuentaKXTDA();
  // Log and extension list (archivos_traductor.cpp)
  void BuscaExtensionKXTDA(const std::u16string& cadCodigo);
  void RegistraLlamadaError();
  double NumeroAleatorio();

  // The bound configuration; error 91 when none. Inline: every field and
  // constant read asks it.
  clsCfgConmut& Cfg() const {
    if (!clsCmt) FaltaConfiguracion();
    return *clsCmt;
  }
  [[noreturn]] static void FaltaConfiguracion();

  // Members.
  std::shared_ptr<clsCfgConmut> clsCmt;
  std::u16string cadLinea;
  std::u16string cadBuffer;
  std::u16string cadDato;
  emTipoLlamadaTraductor emTipoLlamada = emTradNoIdentificada;
  emAtributoTraductor emAtributoLlamada = emATRNoAtributo;
  std::u16string cadArchListaExtensiones;
  std::u16string cadArchLlamadasError;
  // The random-extension generator, seeded at construction and at binding
  // in cases 10 and 11.
  std::mt19937 rndGenerador;
  // Where a constant or separator text holding an inner
  // U+0000 is built for clsCfgConmut::VistaConstante / VistaSeparador.
  std::u16string cadTrabajo;
  // The digits of the numeric field cut last (ExtraeDato).
  char16_t chrCifras[255] = {};
  // The last Duracion of the minutes-and-seconds cases (not 4, 5, 8) with
  // what it was computed from: the case and the three duration records as
  // the model held them. The intake's duration test computes it and the host
  // reads it again; the kept value is used only
  // while cadLinea is unchanged and the case and the three records are
  // equal, so a change to the configuration still counts at once.
  struct DuracionGuardada {
    bool bolVigente = false;
    emCasos emCaso = emCasoEstandar;
    RegDATO udtCampos[3];
    int32_t intValor = 0;
  };
  DuracionGuardada udtDuracion;
  // The lines BuscaLinea found in the current cadBuffer
  // with the separator cadSeparadorLineas (case 4 reads every field from a
  // keyword line, so one record searches the same few keywords many times).
  // Emptied whenever cadBuffer or the configuration is replaced; entries
  // are reused so that their texts keep their storage.
  struct LineaHallada {
    std::u16string cadClave;
    std::size_t intInicio = 0;
    std::size_t intLargo = 0;
    int16_t intResultado = 0;
  };
  static constexpr std::size_t kLineasGuardadas = 16;
  std::vector<LineaHallada> udtLineas;
  std::size_t intLineas = 0;
  std::u16string cadSeparadorLineas;
  // The lines of the same buffer and separator as the scan has cut them so
  // far, in order: start and length in cadBuffer, the place after the line's
  // separator, and whether a separator ended it. A later scan walks them
  // instead of searching for the separator again; a line whose cut failed
  // (error 6) is not kept, so the next scan fails at the same place.
  struct TramoLinea {
    std::size_t intInicio = 0;
    std::size_t intLargo = 0;
    int64_t intSiguiente = 0;
    bool bolSeparador = false;
  };
  std::vector<TramoLinea> udtTramos;
  void OlvidaLineas() {
    intLineas = 0;
    udtTramos.clear();
  }
  const TramoLinea& CorteTramo(std::u16string_view cadSep, int64_t p);
  void OlvidaDuracion() { udtDuracion.bolVigente = false; }
  RegDATO RegistroDuracion(std::size_t k) const;
  bool DuracionIgual(emCasos emC) const;
  void GuardaDuracion(emCasos emC, int32_t intValor);
};

}  // namespace velqua
