// The cable pin model — three arrays of 32-bit bit sets, one per
// switch port type; bit k-1 of element j joins switch pin j to computer pin k.
#include <cstdint>

#include "errors/errores_runtime.h"
#include "model/datos_cfg.h"
#include "velqua/error.h"

namespace velqua {
namespace {

// The mask of computer pin intPin: 1 doubled intPin - 1 times with 32-bit signed
// overflow checking; pin 1 or less gives 1; 32 or more fails with error 6.
// -32768 also fails: intPin - 1 overflows the 16-bit parameter type.
int32_t MascaraPin(int16_t intPin) {
  if (intPin == INT16_MIN || intPin >= 32) LanzaDesbordamiento();
  if (intPin <= 1) return 1;
  return int32_t{1} << (intPin - 1);
}

// The port's array and its last index, or nullptr for another port value.
template <typename Cfg, typename Elem>
Elem* ArregloPuerto(Cfg& udtCfg, emPuertoSerial iemPuerto, int16_t& intUltimo) {
  switch (iemPuerto) {
    case emPuertoRJ45:
      intUltimo = 9;
      return udtCfg.lnPinesRJ45.data();
    case emPuertoDB9:
      intUltimo = 9;
      return udtCfg.lnPinesDB9.data();
    case emPuertoDB25:
      intUltimo = 25;
      return udtCfg.lnPinesDB25.data();
    default:
      intUltimo = -1;
      return nullptr;
  }
}

}  // namespace

void DatosCfgConmut::EstableceEstadoPin(emPuertoSerial iemPuerto, int16_t intPinVector,
                                        int16_t intPinConectar, bool bolEstado) {
  const int32_t mascara = MascaraPin(intPinConectar);  // before the port is looked at
  if (iemPuerto == emPuertoDB25 && intPinVector == 1) {
    throw Error(NumeroErrorObjeto(kCodigoErrorPinDB25), u"clsConfig.EstableceEstadoPin",
                u"No se permite conectar el PIN #1 del puerto DB25.");
  }
  int16_t ultimo = 0;
  int32_t* pines = ArregloPuerto<RegCfg, int32_t>(udtCfg, iemPuerto, ultimo);
  // Another port value touches no array and gives no change signal: every
  // path signals only a real change of a stored element.
  if (pines == nullptr) return;
  if (intPinVector < 0 || intPinVector > ultimo) LanzaIndiceFueraDeIntervalo();
  int32_t& elemento = pines[intPinVector];
  const int32_t nuevo = bolEstado ? (elemento | mascara) : (elemento & ~mascara);
  if (nuevo == elemento) return;
  elemento = nuevo;
  bolModificado = true;
  NotificaCambios();
}

void DatosCfgConmut::ActivaPin(emPuertoSerial iemPuerto, int16_t intPinVector,
                               int16_t intPinConectar) {
  EstableceEstadoPin(iemPuerto, intPinVector, intPinConectar, true);
}

void DatosCfgConmut::DesactivaPin(emPuertoSerial iemPuerto, int16_t intPinVector,
                                  int16_t intPinDesconectar) {
  EstableceEstadoPin(iemPuerto, intPinVector, intPinDesconectar, false);
}

bool DatosCfgConmut::PinesConectados(emPuertoSerial iemPuerto, int16_t intPinConmut,
                                     int16_t intPinPC) const {
  int16_t ultimo = 0;
  const int32_t* pines = ArregloPuerto<const RegCfg, const int32_t>(udtCfg, iemPuerto, ultimo);
  if (pines == nullptr) return false;
  if (intPinConmut < 0 || intPinConmut > ultimo) LanzaIndiceFueraDeIntervalo();
  const int32_t elemento = pines[intPinConmut];
  if (elemento <= 0) return false;  // no mask is computed
  return (elemento & MascaraPin(intPinPC)) != 0;
}

bool DatosCfgConmut::HayConfiguracionSMDR(emPuertoSerial iemPuerto) const {
  int16_t ultimo = 0;
  const int32_t* pines = ArregloPuerto<const RegCfg, const int32_t>(udtCfg, iemPuerto, ultimo);
  if (pines == nullptr) return false;
  if (iemPuerto == emPuertoRJ45) ultimo = 8;  // RJ45 pin 9 is not examined
  for (int16_t k = 1; k <= ultimo; ++k) {
    if (pines[k] != 0) return true;
  }
  return false;
}

void DatosCfgConmut::LimpiaConfiguracionSMDR(emPuertoSerial iemPuerto) {
  int16_t ultimo = 0;
  int32_t* pines = ArregloPuerto<RegCfg, int32_t>(udtCfg, iemPuerto, ultimo);
  if (pines == nullptr) return;
  if (iemPuerto == emPuertoRJ45) ultimo = 8;  // RJ45 pin 9 keeps its value
  for (int16_t k = 1; k <= ultimo; ++k) pines[k] = 0;
  // Modificado unchanged and no event: a host that wants the clearing
  // recorded sets Modificado itself.
}

}  // namespace velqua
