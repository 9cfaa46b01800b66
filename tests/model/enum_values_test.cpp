// The numbers of the public enumerations: hosts and saved files store them.
#include <vector>

#include "support/velqua_test.h"

namespace {

using namespace velqua;

#define D(name) emParam##name
#define C(name) emDatoCte##name

TEST(EnumValues, EachEnumerationRunsFromItsFirstNumberInDeclarationOrder) {
  // clang-format off
  const struct { const char* name; int32_t first; std::vector<int32_t> values; } rows[] = {
      {"version", 0, {emNoVersion, emVersionActual, emVersion2_0, emVersion3_0}},
      {"case", 0, {emNoCaso, emCasoEstandar, emCasoSamsungNX_820, emCasoNortelMeridian01,
        emCasoNortelNorstar0x32SMDR6, emCasoEstandarRestaFechasDuracion,
        emCasoEstandarDecimasMinuto, emCasoEstandarConSalienteDefecto,
        emCasoEstandarRestaFechasDuracionConSalienteDefecto,
        emCasoEstandarDecimasMinutoConSalienteDefecto,
        emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100,
        emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto, emCasoAD_TES}},
      {"value type", 0, {emValorNoDefinido, emValorNumerico, emValorConstante, emValorCadena}},
      {"port", 0, {emNoPuerto, emPuertoRJ45, emPuertoDB9, emPuertoDB25}},
      {"call type", 0, {emTradNoIdentificada, emTradEntrante, emTradSaliente, emTradInterExtension,
        emTradInterTroncal, emTradCodigoCuenta, emTradTransferida}},
      {"attribute", 0, {emATRNoAtributo, emATRIniTR, emATREnTR, emATRFinTR, emATRNoContestada}},
      {"data-field key", 0, {emNoParamDato, emPrimerParamDato,
        D(FechaDia), D(FechaMes), D(FechaAnio), D(FechaHoras), D(FechaMinutos), D(FechaSegundos),
        D(DuracionDia), D(DuracionMes), D(DuracionAnio), D(DuracionHoras), D(DuracionMinutos),
        D(DuracionSegundos), D(RingHoras), D(RingMinutos), D(RingSegundos), D(CodigoCuenta),
        D(TelefonoEntrante), D(TelefonoSaliente), D(TelefonoInterExtension),
        D(TelefonoInterTroncal), D(TelefonoEntranteInicioTransferida),
        D(TelefonoEntranteFinTransferida), D(TelefonoSalienteInicioTransferida),
        D(TelefonoSalienteFinTransferida), D(TelefonoInterExtensionInicioTransferida),
        D(TelefonoInterExtensionFinTransferida), D(TelefonoInterTroncalInicioTransferida),
        D(TelefonoInterTroncalFinTransferida), D(TroncalEntrante), D(ExtensionEntrante),
        D(TroncalSaliente), D(ExtensionSaliente), D(Extension1InterExtension),
        D(Extension2InterExtension), D(Troncal1InterTroncal), D(Troncal2InterTroncal),
        D(TroncalEntranteInicioTransferida), D(ExtensionEntranteInicioTransferida),
        D(TroncalEntranteFinTransferida), D(ExtensionEntranteFinTransferida),
        D(TroncalSalienteInicioTransferida), D(ExtensionSalienteInicioTransferida),
        D(TroncalSalienteFinTransferida), D(ExtensionSalienteFinTransferida),
        D(Extension1InterExtensionInicioTransferida),
        D(Extension2InterExtensionInicioTransferida), D(Extension1InterExtensionFinTransferida),
        D(Extension2InterExtensionFinTransferida), D(Troncal1InterTroncalInicioTransferida),
        D(Troncal2InterTroncalInicioTransferida), D(Troncal1InterTroncalFinTransferida),
        D(Troncal2InterTroncalFinTransferida), D(TelefonoEntranteEnTransferencia),
        D(TelefonoSalienteEnTransferencia), D(TelefonoInterExtensionEnTransferencia),
        D(TelefonoInterTroncalEnTransferencia), D(TroncalEntranteEnTransferencia),
        D(ExtensionEntranteEnTransferencia), D(TroncalSalienteEnTransferencia),
        D(ExtensionSalienteEnTransferencia), D(Extension1InterExtensionEnTransferencia),
        D(Extension2InterExtensionEnTransferencia), D(Troncal1InterTroncalEnTransferencia),
        D(Troncal2InterTroncalEnTransferencia), D(TroncalCodigoCuenta), D(TroncalTransferida),
        D(ExtensionTransferida), emUltimoParamDato}},
      {"constant key", 0, {emNoParamDatoConstante, emPrimerParamDatoConstante,
        C(IdentificadorHorarioMatutinoFecha), C(IdentificadorHorarioMatutinoDuracion),
        C(IdentEntrante), C(IdentEntranteAND), C(IdentEntranteOR), C(IdentSaliente),
        C(IdentSalienteAND), C(IdentSalienteOR), C(IdentInterExtension),
        C(IdentInterExtensionAND), C(IdentInterExtensionOR), C(IdentInterTroncal),
        C(IdentInterTroncalAND), C(IdentInterTroncalOR), C(IdentEntranteInicioTransferida),
        C(IdentEntranteFinTransferida), C(IdentSalienteInicioTransferida),
        C(IdentSalienteFinTransferida), C(IdentInterExtensionInicioTransferida),
        C(IdentInterExtensionFinTransferida), C(IdentInterTroncalInicioTransferida),
        C(IdentInterTroncalFinTransferida), C(IdentEntranteEnTransferencia),
        C(IdentSalienteEnTransferencia), C(IdentInterExtensionEnTransferencia),
        C(IdentInterTroncalEnTransferencia), C(IdentCodigoCuenta), C(IdentNoContestada),
        emUltimoParamDatoConstante}},
      {"file error", 1500, {emErrorConfigNoHay, emErrorNoHayArchivo, emErrorConfigDatosIncompletos,
        emErrorConfigExportar, emErrorConfigImportar, emErrorConfigAbrir, emErrorDesconocido}}};
  // clang-format on
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (size_t i = 0; i < row.values.size(); ++i) {
      EXPECT_EQ(row.values[i], row.first + static_cast<int32_t>(i)) << "position " << i;
    }
  }
  EXPECT_EQ(emNoErrorConfig, 0);
}

TEST(EnumValues, Db9PinsNameTheirDb25Pin) {
  const int32_t db25[] = {8, 3, 2, 20, 7, 6, 4, 5, 22};
  const int32_t db9[] = {emDB9Pin1, emDB9Pin2, emDB9Pin3, emDB9Pin4, emDB9Pin5,
                         emDB9Pin6, emDB9Pin7, emDB9Pin8, emDB9Pin9};
  for (size_t i = 0; i < 9; ++i) EXPECT_EQ(db9[i], db25[i]) << "DB9 pin " << i + 1;
}

}  // namespace
