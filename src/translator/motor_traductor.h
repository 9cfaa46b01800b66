// The translator's state and work: clsTraductor holds one behind a pointer
// and hands every public operation to it. The contracts of the operations
// are those of include/velqua/traductor.h; what is only here is commented
// here. Private to the library.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "model/datos_cfg.h"
#include "velqua/cfg_conmut.h"
#include "velqua/entorno.h"
#include "velqua/enums.h"

namespace velqua {

class MotorTraductor {
 public:
  // ---- The public operations, one for one (contracts in velqua/traductor.h) ----
  explicit MotorTraductor(std::shared_ptr<Entorno> udtEntorno_);
  void EstableceEntorno(std::shared_ptr<Entorno> udtEntorno_);

  // ---- Files, binding and record intake ----
  std::u16string ArchivoListaExtensionesKXTDA() const;
  void ArchivoListaExtensionesKXTDA(const std::u16string& cadArch);
  std::u16string ArchivoLlamadasError() const;
  void ArchivoLlamadasError(const std::u16string& cadArch);
  std::u16string BufferMultiplesLineas() const;
  void BufferMultiplesLineas(const std::u16string& cadB);
  std::u16string LlamadaActual() const;
  void LlamadaActual(const std::u16string& cadL);
  void Conmutador(std::shared_ptr<clsCfgConmut> iclsCmt);
  bool HayLlamada() const;
  bool HayBufferMultiplesLineas() const;
  emTipoLlamadaTraductor TipoLlamadaDetectada() const;
  emAtributoTraductor Atributo() const;

  // ---- Call fields, cut from the record at every read ----
  int16_t Dia();
  int16_t Mes();
  int16_t Anio();
  int32_t Hora();
  int32_t Duracion();
  int32_t Ring();
  std::u16string Marcacion();
  std::u16string Extension();
  std::u16string Troncal();
  std::u16string ExtensionReceptor();
  std::u16string TroncalReceptor();
  std::u16string CodigoCuenta();

  // ---- Constant test and line search ----
  bool HayConstanteLlamada(emParamDatoConstante emParamCte);
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
                            int32_t FechaHora::*emActual);
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
  void BuscaEnLineaDeLista(std::string_view bytes, const std::u16string& cadCodigo);
  void RegistraLlamadaError();
  double NumeroAleatorio();

  // The bound configuration; error 91 when none. Inline: every field and
  // constant read asks it.
  DatosCfgConmut& Cfg() const {
    if (udtCfg == nullptr) FaltaConfiguracion();
    return *udtCfg;
  }
  [[noreturn]] static void FaltaConfiguracion();

  // Members.
  std::shared_ptr<clsCfgConmut> clsCmt;
  std::shared_ptr<Entorno> udtEntorno;  // never nullptr
  DatosCfgConmut* udtCfg = nullptr;     // clsCmt's representation, or nullptr
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
  // U+0000 is built for DatosCfgConmut::VistaTexto / VistaSeparador.
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
