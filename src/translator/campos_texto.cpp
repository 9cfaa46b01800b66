// The text properties and their key tables.
#include "platform/mayusculas.h"
#include "translator/motor_traductor.h"
#include "translator/texto_traductor.h"

namespace velqua {
namespace {

constexpr emParamDato N = emNoParamDato;  // a dash of the key tables: no key

// Key tables: one row per call type 0 to 6, one column per
// attribute 0 to 4 (none, start, in transfer, end, unanswered).
using TablaClaves = emParamDato[7][5];

constexpr TablaClaves kMarcacion = {
    {N, N, N, N, N},
    {emParamTelefonoEntrante, emParamTelefonoEntranteInicioTransferida,
     emParamTelefonoEntranteEnTransferencia, emParamTelefonoEntranteFinTransferida,
     emParamTelefonoEntrante},
    {emParamTelefonoSaliente, emParamTelefonoSalienteInicioTransferida,
     emParamTelefonoSalienteEnTransferencia, emParamTelefonoSalienteFinTransferida, N},
    {emParamTelefonoInterExtension, emParamTelefonoInterExtensionInicioTransferida,
     emParamTelefonoInterExtensionEnTransferencia, emParamTelefonoInterExtensionFinTransferida, N},
    {emParamTelefonoInterTroncal, emParamTelefonoInterTroncalInicioTransferida,
     emParamTelefonoInterTroncalEnTransferencia, emParamTelefonoInterTroncalFinTransferida, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
};

constexpr TablaClaves kExtension = {
    {N, N, N, N, N},
    {emParamExtensionEntrante, emParamExtensionEntranteInicioTransferida,
     emParamExtensionEntranteEnTransferencia, emParamExtensionEntranteFinTransferida,
     emParamExtensionEntrante},
    {emParamExtensionSaliente, emParamExtensionSalienteInicioTransferida,
     emParamExtensionSalienteEnTransferencia, emParamExtensionSalienteFinTransferida, N},
    {emParamExtension1InterExtension, emParamExtension1InterExtensionInicioTransferida,
     emParamExtension1InterExtensionEnTransferencia, emParamExtension1InterExtensionFinTransferida,
     N},
    {N, N, N, N, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
};

constexpr TablaClaves kTroncal = {
    {N, N, N, N, N},
    {emParamTroncalEntrante, emParamTroncalEntranteInicioTransferida,
     emParamTroncalEntranteEnTransferencia, emParamTroncalEntranteFinTransferida,
     emParamTroncalEntrante},
    {emParamTroncalSaliente, emParamTroncalSalienteInicioTransferida,
     emParamTroncalSalienteEnTransferencia, emParamTroncalSalienteFinTransferida, N},
    {N, N, N, N, N},
    {emParamTroncal1InterTroncal, emParamTroncal1InterTroncalInicioTransferida,
     emParamTroncal1InterTroncalEnTransferencia, emParamTroncal1InterTroncalFinTransferida, N},
    {emParamTroncalCodigoCuenta, emParamTroncalCodigoCuenta, emParamTroncalCodigoCuenta,
     emParamTroncalCodigoCuenta, emParamTroncalCodigoCuenta},
    {N, N, N, N, N},
};

constexpr TablaClaves kExtensionReceptor = {
    {N, N, N, N, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
    {emParamExtension2InterExtension, emParamExtension2InterExtensionInicioTransferida,
     emParamExtension2InterExtensionEnTransferencia, emParamExtension2InterExtensionFinTransferida,
     N},
    {N, N, N, N, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
};

constexpr TablaClaves kTroncalReceptor = {
    {N, N, N, N, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
    {emParamTroncal2InterTroncal, emParamTroncal2InterTroncalInicioTransferida,
     emParamTroncal2InterTroncalEnTransferencia, emParamTroncal2InterTroncalFinTransferida, N},
    {N, N, N, N, N},
    {N, N, N, N, N},
};

// The key of a table for a type and attribute; none for values outside it.
emParamDato Clave(const TablaClaves& tabla, emTipoLlamadaTraductor emT, emAtributoTraductor emA) {
  if (emT < 0 || emT > 6 || emA < 0 || emA > 4) return N;
  return tabla[emT][emA];
}

}  // namespace

// The field of a key of a table without its blanks, or the empty text when
// there is no key.
std::u16string MotorTraductor::CampoTexto(emParamDato emParamDat) {
  if (emParamDat == N) return std::u16string();
  return std::u16string(traductor::SinBlancos(ExtraeDato(emParamDat)));
}

std::u16string MotorTraductor::Marcacion() {
  std::u16string_view cadCampo;
  if (EsCasoNorstar()) {
    BuscaLineaClave(u"DIGITS DIALED");
    cadCampo = ExtraeDato(emParamTelefonoEntrante);
    if (cadCampo.empty()) cadCampo = ExtraeDato(emParamTelefonoSaliente);
  } else {
    const emParamDato emK = Clave(kMarcacion, emTipoLlamada, emAtributoLlamada);
    if (emK != N) cadCampo = ExtraeDato(emK);
  }
  cadCampo = traductor::SinBlancos(cadCampo);
  DatosCfgConmut& cfg = Cfg();
  const std::u16string_view cadPrefijo = DatosCfgConmut::VistaTexto(
      cfg.SeleccionaCTE(emDatoCteIdentInterExtensionEnTransferencia), cadTrabajo);  // no HayCTE
  if (!cadPrefijo.empty() && plataforma::EmpiezaSinMayusculas(cadCampo, cadPrefijo)) {
    cadCampo.remove_prefix(cadPrefijo.size());
  }
  return std::u16string(cadCampo);
}

std::u16string MotorTraductor::Extension() {
  std::u16string_view cadCampo;
  if (EsCasoNorstar()) {
    BuscaLineaClave(u"--------");
    cadCampo = ExtraeDato(emParamExtensionEntrante);
  } else {
    const emParamDato emK = Clave(kExtension, emTipoLlamada, emAtributoLlamada);
    if (emK != N) cadCampo = ExtraeDato(emK);
    if (emTipoLlamada == emTradSaliente && EsCasoKXTDA()) {
      cadDato.assign(cadCampo);
      ExtensionKXTDA();  // works on cadDato
      traductor::QuitaBlancos(cadDato);
      return cadDato;
    }
  }
  return std::u16string(traductor::SinBlancos(cadCampo));
}

std::u16string MotorTraductor::Troncal() {
  if (EsCasoNorstar()) {
    BuscaLineaClave(u"--------");
    return CampoTexto(emParamTroncalEntrante);
  }
  return CampoTexto(Clave(kTroncal, emTipoLlamada, emAtributoLlamada));
}

// No case rule, and no configuration access when no key applies.
std::u16string MotorTraductor::ExtensionReceptor() {
  return CampoTexto(Clave(kExtensionReceptor, emTipoLlamada, emAtributoLlamada));
}

std::u16string MotorTraductor::TroncalReceptor() {
  return CampoTexto(Clave(kTroncalReceptor, emTipoLlamada, emAtributoLlamada));
}

std::u16string MotorTraductor::CodigoCuenta() {
  if (EsCasoNorstar()) BuscaLineaClave(u"RESTRICTION PASSWORD");
  std::u16string_view cadCampo = ExtraeDato(emParamCodigoCuenta);
  DatosCfgConmut& cfg = Cfg();
  if (emTipoLlamada != emTradCodigoCuenta) {
    const RegCTE* r = cfg.SeleccionaCTE(emDatoCteIdentCodigoCuenta);
    if (!DatosCfgConmut::VistaTexto(r, cadTrabajo).empty()) {
      cadCampo = {};  // marked switches: on marked records only
    }
  }
  if (!cadCampo.empty() && EsCasoKXTDA()) {
    cadDato.assign(cadCampo);
    CodigoCuentaKXTDA();  // works on cadDato
    return cadDato;
  }
  return std::u16string(traductor::SinBlancos(cadCampo));
}

}  // namespace velqua
