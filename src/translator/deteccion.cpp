// Constant test, line search, call type and attribute detection.
#include <algorithm>
#include <string_view>

#include "errors/errores_runtime.h"
#include "platform/mayusculas.h"
#include "translator/motor_traductor.h"

namespace velqua {
namespace {

// The identifying constants of one role: the plain mark, the AND mark that
// must accompany it when defined, and the OR mark that stands in for it.
struct MarcasRol {
  emParamDatoConstante emPlana;
  emParamDatoConstante emY;
  emParamDatoConstante emO;
};

// Detection order: incoming, outgoing, extension to extension, trunk to trunk.
constexpr MarcasRol kRoles[] = {
    {emDatoCteIdentEntrante, emDatoCteIdentEntranteAND, emDatoCteIdentEntranteOR},
    {emDatoCteIdentSaliente, emDatoCteIdentSalienteAND, emDatoCteIdentSalienteOR},
    {emDatoCteIdentInterExtension, emDatoCteIdentInterExtensionAND, emDatoCteIdentInterExtensionOR},
    {emDatoCteIdentInterTroncal, emDatoCteIdentInterTroncalAND, emDatoCteIdentInterTroncalOR},
};

// Attribute constants per call type 1 to 4, in the order they are tested:
// start, end, in transfer, unanswered (unanswered: incoming calls only).
struct MarcaAtributo {
  emParamDatoConstante emCte;
  emAtributoTraductor emAtr;
};

constexpr MarcaAtributo kAtributos[4][4] = {
    {{emDatoCteIdentEntranteInicioTransferida, emATRIniTR},
     {emDatoCteIdentEntranteFinTransferida, emATRFinTR},
     {emDatoCteIdentEntranteEnTransferencia, emATREnTR},
     {emDatoCteIdentNoContestada, emATRNoContestada}},
    {{emDatoCteIdentSalienteInicioTransferida, emATRIniTR},
     {emDatoCteIdentSalienteFinTransferida, emATRFinTR},
     {emDatoCteIdentSalienteEnTransferencia, emATREnTR},
     {emNoParamDatoConstante, emATRNoAtributo}},
    {{emDatoCteIdentInterExtensionInicioTransferida, emATRIniTR},
     {emDatoCteIdentInterExtensionFinTransferida, emATRFinTR},
     {emDatoCteIdentInterExtensionEnTransferencia, emATREnTR},
     {emNoParamDatoConstante, emATRNoAtributo}},
    {{emDatoCteIdentInterTroncalInicioTransferida, emATRIniTR},
     {emDatoCteIdentInterTroncalFinTransferida, emATRFinTR},
     {emDatoCteIdentInterTroncalEnTransferencia, emATREnTR},
     {emNoParamDatoConstante, emATRNoAtributo}},
};

bool TieneDigito(std::u16string_view cad) {
  return std::any_of(cad.begin(), cad.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

bool EsCasoSalienteDefecto(emCasos emC) {
  return emC == emCasoEstandarConSalienteDefecto ||
         emC == emCasoEstandarRestaFechasDuracionConSalienteDefecto ||
         emC == emCasoEstandarDecimasMinutoConSalienteDefecto ||
         emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto;
}

}  // namespace

bool MotorTraductor::HayConstanteLlamada(emParamDatoConstante emParamCte) {
  if (cadLinea.empty()) return false;
  // HayCTE, CTEPos, CTETam and Constante, read from the one record.
  const RegCTE* r = Cfg().SeleccionaCTE(emParamCte);
  if (r == nullptr || !DatosCfgConmut::ValidaCTE(*r)) return false;
  const uint8_t btPos = r->btPos;
  const uint8_t btTam = r->btTam;
  const std::size_t fin = std::size_t{btPos} + btTam;
  if (fin > 255) SumaByte(btPos, btTam);        // error 6
  if (fin - 1 > cadLinea.size()) return false;  // never a cut-off slice
  const std::u16string_view trozo = std::u16string_view(cadLinea).substr(btPos - 1u, btTam);
  return plataforma::IgualesSinMayusculas(trozo,
                                          DatosCfgConmut::VistaSinNulos(r->cadTexto, cadTrabajo));
}

emTipoLlamadaTraductor MotorTraductor::TipoSegunConstante(emParamDatoConstante emParamCte) {
  if (!HayConstanteLlamada(emParamCte)) return emTradNoIdentificada;
  if (emParamCte >= emDatoCteIdentEntrante && emParamCte <= emDatoCteIdentEntranteOR) {
    return emTradEntrante;
  }
  if (emParamCte >= emDatoCteIdentSaliente && emParamCte <= emDatoCteIdentSalienteOR) {
    return emTradSaliente;
  }
  if (emParamCte >= emDatoCteIdentInterExtension && emParamCte <= emDatoCteIdentInterExtensionOR) {
    return emTradInterExtension;
  }
  if (emParamCte >= emDatoCteIdentInterTroncal && emParamCte <= emDatoCteIdentInterTroncalOR) {
    return emTradInterTroncal;
  }
  if (emParamCte == emDatoCteIdentCodigoCuenta) return emTradCodigoCuenta;
  return emTradNoIdentificada;
}

void MotorTraductor::DetectaTipoLlamada() {
  if (EsCasoNorstar()) {
    DetectaTipoNorstar();
    return;
  }
  emTipoLlamada = emTradNoIdentificada;
  if (!TieneDigito(cadLinea)) return;
  DatosCfgConmut& cfg = Cfg();
  for (const MarcasRol& rol : kRoles) {
    emTipoLlamadaTraductor t = TipoSegunConstante(rol.emPlana);
    if (t != emTradNoIdentificada) {
      const RegCTE* r = cfg.SeleccionaCTE(rol.emY);
      if (r != nullptr && DatosCfgConmut::ValidaCTE(*r)) {
        t = TipoSegunConstante(rol.emY);  // the AND mark must accompany it
      }
    } else {
      t = TipoSegunConstante(rol.emO);  // tried only when the plain mark is absent
    }
    emTipoLlamada = t;
    if (t != emTradNoIdentificada) break;
  }
  if (emTipoLlamada == emTradNoIdentificada && EsCasoSalienteDefecto(cfg.Caso())) {
    bool bolDatos = !ExtraeDato(emParamTelefonoSaliente).empty();
    if (bolDatos) bolDatos = !ExtraeDato(emParamExtensionSaliente).empty();
    if (bolDatos) bolDatos = !ExtraeDato(emParamTroncalSaliente).empty();
    if (bolDatos) emTipoLlamada = emTradSaliente;
  }
  if (TipoSegunConstante(emDatoCteIdentCodigoCuenta) == emTradCodigoCuenta) {
    emTipoLlamada = emTradCodigoCuenta;
  }
}

void MotorTraductor::DetectaAtributo() {
  if (EsCasoNorstar()) {
    DetectaAtributoNorstar();
    return;
  }
  emAtributoLlamada = emATRNoAtributo;
  if (emTipoLlamada < emTradEntrante || emTipoLlamada > emTradInterTroncal) return;
  for (const MarcaAtributo& m : kAtributos[emTipoLlamada - 1]) {
    if (m.emCte == emNoParamDatoConstante) break;
    if (HayConstanteLlamada(m.emCte)) {
      emAtributoLlamada = m.emAtr;
      return;
    }
  }
}

// Positions are 1-based and 16-bit: any position of the scan beyond 32767
// fails with error 6. An empty separator is treated as absent, so the rest
// of the buffer is one line and the scan always ends (doc/translator.md).
// A keyword already searched in this buffer with this separator gives the
// line and place found then (udtLineas): the same result without the scan.
int16_t MotorTraductor::BuscaLinea(const std::u16string& cadVal) { return BuscaLineaClave(cadVal); }

int16_t MotorTraductor::BuscaLineaClave(std::u16string_view cadVal) {
  OlvidaDuracion();
  cadLinea.clear();
  if (!clsCmt) return 0;
  const std::u16string_view cadSep = udtCfg->VistaSeparador(cadTrabajo);
  if (cadSep != cadSeparadorLineas) {
    OlvidaLineas();
    cadSeparadorLineas.assign(cadSep);
  }
  for (std::size_t k = 0; k < intLineas; ++k) {
    const LineaHallada& h = udtLineas[k];
    if (h.cadClave == cadVal) {
      cadLinea.assign(cadBuffer, h.intInicio, h.intLargo);
      return h.intResultado;
    }
  }
  std::size_t intInicio = 0;
  const int16_t intResultado = RecorreLineas(cadSep, cadVal, &intInicio);
  GuardaLinea(cadVal, intInicio, intResultado);
  return intResultado;
}

// The scan of BuscaLinea: leaves cadLinea at the line found (or empty) and
// *intInicio at its start in cadBuffer. The k-th line is udtTramos[k] once
// some scan of this buffer has cut it.
int16_t MotorTraductor::RecorreLineas(std::u16string_view cadSep, std::u16string_view cadVal,
                                      std::size_t* intInicio) {
  int16_t intResultado = 0;
  const std::u16string_view buffer(cadBuffer);
  int64_t p = 1;
  std::size_t k = 0;
  while (p <= static_cast<int64_t>(buffer.size())) {
    const TramoLinea& t = k < udtTramos.size() ? udtTramos[k] : CorteTramo(cadSep, p);
    ++k;
    const std::u16string_view linea = buffer.substr(t.intInicio, t.intLargo);
    p = t.intSiguiente;
    if (!linea.empty() &&
        plataforma::BuscaSinMayusculas(linea, cadVal) != std::u16string_view::npos) {
      cadLinea.assign(linea);
      *intInicio = t.intInicio;
      intResultado = static_cast<int16_t>(p);
    } else {
      cadLinea.clear();
    }
    if (t.bolSeparador && !cadLinea.empty()) break;
  }
  return intResultado;
}

// Cuts the line that starts at place p (the next after udtTramos' last),
// keeps it and gives it back. Error 6 when a place passes 32767.
const MotorTraductor::TramoLinea& MotorTraductor::CorteTramo(std::u16string_view cadSep,
                                                             int64_t p) {
  const std::u16string_view buffer(cadBuffer);
  const std::size_t e0 = cadSep.empty() ? std::u16string_view::npos
                                        : plataforma::BuscaSinMayusculas(
                                              buffer, cadSep, static_cast<std::size_t>(p - 1));
  const bool bolSepHallado = e0 != std::u16string_view::npos;
  const int64_t e = AEntero16(bolSepHallado ? static_cast<int64_t>(e0) + 1
                                            : static_cast<int64_t>(buffer.size()) + 1);
  TramoLinea t;
  t.intInicio = static_cast<std::size_t>(p - 1);
  t.intLargo = static_cast<std::size_t>(e - p);
  t.intSiguiente = AEntero16(e + static_cast<int64_t>(cadSep.size()));
  t.bolSeparador = bolSepHallado;
  udtTramos.push_back(t);
  return udtTramos.back();
}

void MotorTraductor::GuardaLinea(std::u16string_view cadVal, std::size_t intInicio,
                                 int16_t intResultado) {
  if (intLineas == kLineasGuardadas) return;
  if (udtLineas.size() == intLineas) udtLineas.emplace_back();
  LineaHallada& h = udtLineas[intLineas++];
  h.cadClave.assign(cadVal);
  h.intInicio = intInicio;
  h.intLargo = cadLinea.size();
  h.intResultado = intResultado;
}

}  // namespace velqua
