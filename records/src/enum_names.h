// The member names of the enumerations the records layer looks up by
// name, each entry written from one member, so a name never drifts from its
// value.
// Generated from scripts/enums/enums.txt by scripts/enums/generate.py.
#pragma once

#include <cstddef>

#include "velqua/enums.h"
#include "velqua/records/names.h"

namespace velqua_records {
namespace {

// clang-format off
constexpr EnumName kNames_emCasos[] = {
    {velqua::emNoCaso, "emNoCaso"},
    {velqua::emCasoEstandar, "emCasoEstandar"},
    {velqua::emCasoSamsungNX_820, "emCasoSamsungNX_820"},
    {velqua::emCasoNortelMeridian01, "emCasoNortelMeridian01"},
    {velqua::emCasoNortelNorstar0x32SMDR6, "emCasoNortelNorstar0x32SMDR6"},
    {velqua::emCasoEstandarRestaFechasDuracion, "emCasoEstandarRestaFechasDuracion"},
    {velqua::emCasoEstandarDecimasMinuto, "emCasoEstandarDecimasMinuto"},
    {velqua::emCasoEstandarConSalienteDefecto, "emCasoEstandarConSalienteDefecto"},
    {velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto, "emCasoEstandarRestaFechasDuracionConSalienteDefecto"},
    {velqua::emCasoEstandarDecimasMinutoConSalienteDefecto, "emCasoEstandarDecimasMinutoConSalienteDefecto"},
    {velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100, "emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100"},
    {velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto, "emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto"},
    {velqua::emCasoAD_TES, "emCasoAD_TES"},
};

constexpr EnumName kNames_emTipoDato[] = {
    {velqua::emValorNoDefinido, "emValorNoDefinido"},
    {velqua::emValorNumerico, "emValorNumerico"},
    {velqua::emValorConstante, "emValorConstante"},
    {velqua::emValorCadena, "emValorCadena"},
};

constexpr EnumName kNames_emParamDato[] = {
    {velqua::emNoParamDato, "emNoParamDato"},
    {velqua::emPrimerParamDato, "emPrimerParamDato"},
    {velqua::emParamFechaDia, "emParamFechaDia"},
    {velqua::emParamFechaMes, "emParamFechaMes"},
    {velqua::emParamFechaAnio, "emParamFechaAnio"},
    {velqua::emParamFechaHoras, "emParamFechaHoras"},
    {velqua::emParamFechaMinutos, "emParamFechaMinutos"},
    {velqua::emParamFechaSegundos, "emParamFechaSegundos"},
    {velqua::emParamDuracionDia, "emParamDuracionDia"},
    {velqua::emParamDuracionMes, "emParamDuracionMes"},
    {velqua::emParamDuracionAnio, "emParamDuracionAnio"},
    {velqua::emParamDuracionHoras, "emParamDuracionHoras"},
    {velqua::emParamDuracionMinutos, "emParamDuracionMinutos"},
    {velqua::emParamDuracionSegundos, "emParamDuracionSegundos"},
    {velqua::emParamRingHoras, "emParamRingHoras"},
    {velqua::emParamRingMinutos, "emParamRingMinutos"},
    {velqua::emParamRingSegundos, "emParamRingSegundos"},
    {velqua::emParamCodigoCuenta, "emParamCodigoCuenta"},
    {velqua::emParamTelefonoEntrante, "emParamTelefonoEntrante"},
    {velqua::emParamTelefonoSaliente, "emParamTelefonoSaliente"},
    {velqua::emParamTelefonoInterExtension, "emParamTelefonoInterExtension"},
    {velqua::emParamTelefonoInterTroncal, "emParamTelefonoInterTroncal"},
    {velqua::emParamTelefonoEntranteInicioTransferida, "emParamTelefonoEntranteInicioTransferida"},
    {velqua::emParamTelefonoEntranteFinTransferida, "emParamTelefonoEntranteFinTransferida"},
    {velqua::emParamTelefonoSalienteInicioTransferida, "emParamTelefonoSalienteInicioTransferida"},
    {velqua::emParamTelefonoSalienteFinTransferida, "emParamTelefonoSalienteFinTransferida"},
    {velqua::emParamTelefonoInterExtensionInicioTransferida, "emParamTelefonoInterExtensionInicioTransferida"},
    {velqua::emParamTelefonoInterExtensionFinTransferida, "emParamTelefonoInterExtensionFinTransferida"},
    {velqua::emParamTelefonoInterTroncalInicioTransferida, "emParamTelefonoInterTroncalInicioTransferida"},
    {velqua::emParamTelefonoInterTroncalFinTransferida, "emParamTelefonoInterTroncalFinTransferida"},
    {velqua::emParamTroncalEntrante, "emParamTroncalEntrante"},
    {velqua::emParamExtensionEntrante, "emParamExtensionEntrante"},
    {velqua::emParamTroncalSaliente, "emParamTroncalSaliente"},
    {velqua::emParamExtensionSaliente, "emParamExtensionSaliente"},
    {velqua::emParamExtension1InterExtension, "emParamExtension1InterExtension"},
    {velqua::emParamExtension2InterExtension, "emParamExtension2InterExtension"},
    {velqua::emParamTroncal1InterTroncal, "emParamTroncal1InterTroncal"},
    {velqua::emParamTroncal2InterTroncal, "emParamTroncal2InterTroncal"},
    {velqua::emParamTroncalEntranteInicioTransferida, "emParamTroncalEntranteInicioTransferida"},
    {velqua::emParamExtensionEntranteInicioTransferida, "emParamExtensionEntranteInicioTransferida"},
    {velqua::emParamTroncalEntranteFinTransferida, "emParamTroncalEntranteFinTransferida"},
    {velqua::emParamExtensionEntranteFinTransferida, "emParamExtensionEntranteFinTransferida"},
    {velqua::emParamTroncalSalienteInicioTransferida, "emParamTroncalSalienteInicioTransferida"},
    {velqua::emParamExtensionSalienteInicioTransferida, "emParamExtensionSalienteInicioTransferida"},
    {velqua::emParamTroncalSalienteFinTransferida, "emParamTroncalSalienteFinTransferida"},
    {velqua::emParamExtensionSalienteFinTransferida, "emParamExtensionSalienteFinTransferida"},
    {velqua::emParamExtension1InterExtensionInicioTransferida, "emParamExtension1InterExtensionInicioTransferida"},
    {velqua::emParamExtension2InterExtensionInicioTransferida, "emParamExtension2InterExtensionInicioTransferida"},
    {velqua::emParamExtension1InterExtensionFinTransferida, "emParamExtension1InterExtensionFinTransferida"},
    {velqua::emParamExtension2InterExtensionFinTransferida, "emParamExtension2InterExtensionFinTransferida"},
    {velqua::emParamTroncal1InterTroncalInicioTransferida, "emParamTroncal1InterTroncalInicioTransferida"},
    {velqua::emParamTroncal2InterTroncalInicioTransferida, "emParamTroncal2InterTroncalInicioTransferida"},
    {velqua::emParamTroncal1InterTroncalFinTransferida, "emParamTroncal1InterTroncalFinTransferida"},
    {velqua::emParamTroncal2InterTroncalFinTransferida, "emParamTroncal2InterTroncalFinTransferida"},
    {velqua::emParamTelefonoEntranteEnTransferencia, "emParamTelefonoEntranteEnTransferencia"},
    {velqua::emParamTelefonoSalienteEnTransferencia, "emParamTelefonoSalienteEnTransferencia"},
    {velqua::emParamTelefonoInterExtensionEnTransferencia, "emParamTelefonoInterExtensionEnTransferencia"},
    {velqua::emParamTelefonoInterTroncalEnTransferencia, "emParamTelefonoInterTroncalEnTransferencia"},
    {velqua::emParamTroncalEntranteEnTransferencia, "emParamTroncalEntranteEnTransferencia"},
    {velqua::emParamExtensionEntranteEnTransferencia, "emParamExtensionEntranteEnTransferencia"},
    {velqua::emParamTroncalSalienteEnTransferencia, "emParamTroncalSalienteEnTransferencia"},
    {velqua::emParamExtensionSalienteEnTransferencia, "emParamExtensionSalienteEnTransferencia"},
    {velqua::emParamExtension1InterExtensionEnTransferencia, "emParamExtension1InterExtensionEnTransferencia"},
    {velqua::emParamExtension2InterExtensionEnTransferencia, "emParamExtension2InterExtensionEnTransferencia"},
    {velqua::emParamTroncal1InterTroncalEnTransferencia, "emParamTroncal1InterTroncalEnTransferencia"},
    {velqua::emParamTroncal2InterTroncalEnTransferencia, "emParamTroncal2InterTroncalEnTransferencia"},
    {velqua::emParamTroncalCodigoCuenta, "emParamTroncalCodigoCuenta"},
    {velqua::emParamTroncalTransferida, "emParamTroncalTransferida"},
    {velqua::emParamExtensionTransferida, "emParamExtensionTransferida"},
    {velqua::emUltimoParamDato, "emUltimoParamDato"},
};

constexpr EnumName kNames_emParamDatoConstante[] = {
    {velqua::emNoParamDatoConstante, "emNoParamDatoConstante"},
    {velqua::emPrimerParamDatoConstante, "emPrimerParamDatoConstante"},
    {velqua::emDatoCteIdentificadorHorarioMatutinoFecha, "emDatoCteIdentificadorHorarioMatutinoFecha"},
    {velqua::emDatoCteIdentificadorHorarioMatutinoDuracion, "emDatoCteIdentificadorHorarioMatutinoDuracion"},
    {velqua::emDatoCteIdentEntrante, "emDatoCteIdentEntrante"},
    {velqua::emDatoCteIdentEntranteAND, "emDatoCteIdentEntranteAND"},
    {velqua::emDatoCteIdentEntranteOR, "emDatoCteIdentEntranteOR"},
    {velqua::emDatoCteIdentSaliente, "emDatoCteIdentSaliente"},
    {velqua::emDatoCteIdentSalienteAND, "emDatoCteIdentSalienteAND"},
    {velqua::emDatoCteIdentSalienteOR, "emDatoCteIdentSalienteOR"},
    {velqua::emDatoCteIdentInterExtension, "emDatoCteIdentInterExtension"},
    {velqua::emDatoCteIdentInterExtensionAND, "emDatoCteIdentInterExtensionAND"},
    {velqua::emDatoCteIdentInterExtensionOR, "emDatoCteIdentInterExtensionOR"},
    {velqua::emDatoCteIdentInterTroncal, "emDatoCteIdentInterTroncal"},
    {velqua::emDatoCteIdentInterTroncalAND, "emDatoCteIdentInterTroncalAND"},
    {velqua::emDatoCteIdentInterTroncalOR, "emDatoCteIdentInterTroncalOR"},
    {velqua::emDatoCteIdentEntranteInicioTransferida, "emDatoCteIdentEntranteInicioTransferida"},
    {velqua::emDatoCteIdentEntranteFinTransferida, "emDatoCteIdentEntranteFinTransferida"},
    {velqua::emDatoCteIdentSalienteInicioTransferida, "emDatoCteIdentSalienteInicioTransferida"},
    {velqua::emDatoCteIdentSalienteFinTransferida, "emDatoCteIdentSalienteFinTransferida"},
    {velqua::emDatoCteIdentInterExtensionInicioTransferida, "emDatoCteIdentInterExtensionInicioTransferida"},
    {velqua::emDatoCteIdentInterExtensionFinTransferida, "emDatoCteIdentInterExtensionFinTransferida"},
    {velqua::emDatoCteIdentInterTroncalInicioTransferida, "emDatoCteIdentInterTroncalInicioTransferida"},
    {velqua::emDatoCteIdentInterTroncalFinTransferida, "emDatoCteIdentInterTroncalFinTransferida"},
    {velqua::emDatoCteIdentEntranteEnTransferencia, "emDatoCteIdentEntranteEnTransferencia"},
    {velqua::emDatoCteIdentSalienteEnTransferencia, "emDatoCteIdentSalienteEnTransferencia"},
    {velqua::emDatoCteIdentInterExtensionEnTransferencia, "emDatoCteIdentInterExtensionEnTransferencia"},
    {velqua::emDatoCteIdentInterTroncalEnTransferencia, "emDatoCteIdentInterTroncalEnTransferencia"},
    {velqua::emDatoCteIdentCodigoCuenta, "emDatoCteIdentCodigoCuenta"},
    {velqua::emDatoCteIdentNoContestada, "emDatoCteIdentNoContestada"},
    {velqua::emUltimoParamDatoConstante, "emUltimoParamDatoConstante"},
};

constexpr EnumName kNames_emTipoLlamadaTraductor[] = {
    {velqua::emTradNoIdentificada, "emTradNoIdentificada"},
    {velqua::emTradEntrante, "emTradEntrante"},
    {velqua::emTradSaliente, "emTradSaliente"},
    {velqua::emTradInterExtension, "emTradInterExtension"},
    {velqua::emTradInterTroncal, "emTradInterTroncal"},
    {velqua::emTradCodigoCuenta, "emTradCodigoCuenta"},
    {velqua::emTradTransferida, "emTradTransferida"},
};

constexpr EnumName kNames_emAtributoTraductor[] = {
    {velqua::emATRNoAtributo, "emATRNoAtributo"},
    {velqua::emATRIniTR, "emATRIniTR"},
    {velqua::emATREnTR, "emATREnTR"},
    {velqua::emATRFinTR, "emATRFinTR"},
    {velqua::emATRNoContestada, "emATRNoContestada"},
};

// clang-format on

struct Table {
  const EnumName* entries;
  size_t count;
};

template <size_t N>
constexpr Table Of(const EnumName (&entries)[N]) {
  return Table{entries, N};
}

Table TableOf(EnumKind kind) {
  switch (kind) {
    case EnumKind::kCaso:
      return Of(kNames_emCasos);
    case EnumKind::kTipoDato:
      return Of(kNames_emTipoDato);
    case EnumKind::kParamDato:
      return Of(kNames_emParamDato);
    case EnumKind::kParamDatoConstante:
      return Of(kNames_emParamDatoConstante);
    case EnumKind::kTipoLlamada:
      return Of(kNames_emTipoLlamadaTraductor);
    case EnumKind::kAtributo:
      return Of(kNames_emAtributoTraductor);
  }
  return Table{nullptr, 0};
}

}  // namespace
}  // namespace velqua_records
