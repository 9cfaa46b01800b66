// Part 1.1: public enumerations and error codes.
#include <gtest/gtest.h>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;

TEST(Part1_1, VersionAndCaseMembersHaveTheirValues) {
  EXPECT_EQ(emNoVersion, 0);
  EXPECT_EQ(emVersionActual, 1);
  EXPECT_EQ(emVersion2_0, 2);
  EXPECT_EQ(emVersion3_0, 3);
  const int32_t casos[] = {emNoCaso,
                           emCasoEstandar,
                           emCasoSamsungNX_820,
                           emCasoNortelMeridian01,
                           emCasoNortelNorstar0x32SMDR6,
                           emCasoEstandarRestaFechasDuracion,
                           emCasoEstandarDecimasMinuto,
                           emCasoEstandarConSalienteDefecto,
                           emCasoEstandarRestaFechasDuracionConSalienteDefecto,
                           emCasoEstandarDecimasMinutoConSalienteDefecto,
                           emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100,
                           emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto,
                           emCasoAD_TES};
  for (int32_t i = 0; i < 13; ++i) EXPECT_EQ(casos[i], i);
}

TEST(Part1_1, TipoDatoPuertoTipoLlamadaAndAtributoMembersHaveTheirValues) {
  EXPECT_EQ(emValorNoDefinido, 0);
  EXPECT_EQ(emValorNumerico, 1);
  EXPECT_EQ(emValorConstante, 2);
  EXPECT_EQ(emValorCadena, 3);
  EXPECT_EQ(emNoPuerto, 0);
  EXPECT_EQ(emPuertoRJ45, 1);
  EXPECT_EQ(emPuertoDB9, 2);
  EXPECT_EQ(emPuertoDB25, 3);
  const int32_t tipos[] = {emTradNoIdentificada, emTradEntrante,     emTradSaliente,
                           emTradInterExtension, emTradInterTroncal, emTradCodigoCuenta,
                           emTradTransferida};
  for (int32_t i = 0; i < 7; ++i) EXPECT_EQ(tipos[i], i);
  const int32_t atributos[] = {emATRNoAtributo, emATRIniTR, emATREnTR, emATRFinTR,
                               emATRNoContestada};
  for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(atributos[i], i);
}

TEST(Part1_1, ParamDatoRunsFrom0To69InOrder) {
  const int32_t claves[] = {
      emNoParamDato,
      emPrimerParamDato,
      emParamFechaDia,
      emParamFechaMes,
      emParamFechaAnio,
      emParamFechaHoras,
      emParamFechaMinutos,
      emParamFechaSegundos,
      emParamDuracionDia,
      emParamDuracionMes,
      emParamDuracionAnio,
      emParamDuracionHoras,
      emParamDuracionMinutos,
      emParamDuracionSegundos,
      emParamRingHoras,
      emParamRingMinutos,
      emParamRingSegundos,
      emParamCodigoCuenta,
      emParamTelefonoEntrante,
      emParamTelefonoSaliente,
      emParamTelefonoInterExtension,
      emParamTelefonoInterTroncal,
      emParamTelefonoEntranteInicioTransferida,
      emParamTelefonoEntranteFinTransferida,
      emParamTelefonoSalienteInicioTransferida,
      emParamTelefonoSalienteFinTransferida,
      emParamTelefonoInterExtensionInicioTransferida,
      emParamTelefonoInterExtensionFinTransferida,
      emParamTelefonoInterTroncalInicioTransferida,
      emParamTelefonoInterTroncalFinTransferida,
      emParamTroncalEntrante,
      emParamExtensionEntrante,
      emParamTroncalSaliente,
      emParamExtensionSaliente,
      emParamExtension1InterExtension,
      emParamExtension2InterExtension,
      emParamTroncal1InterTroncal,
      emParamTroncal2InterTroncal,
      emParamTroncalEntranteInicioTransferida,
      emParamExtensionEntranteInicioTransferida,
      emParamTroncalEntranteFinTransferida,
      emParamExtensionEntranteFinTransferida,
      emParamTroncalSalienteInicioTransferida,
      emParamExtensionSalienteInicioTransferida,
      emParamTroncalSalienteFinTransferida,
      emParamExtensionSalienteFinTransferida,
      emParamExtension1InterExtensionInicioTransferida,
      emParamExtension2InterExtensionInicioTransferida,
      emParamExtension1InterExtensionFinTransferida,
      emParamExtension2InterExtensionFinTransferida,
      emParamTroncal1InterTroncalInicioTransferida,
      emParamTroncal2InterTroncalInicioTransferida,
      emParamTroncal1InterTroncalFinTransferida,
      emParamTroncal2InterTroncalFinTransferida,
      emParamTelefonoEntranteEnTransferencia,
      emParamTelefonoSalienteEnTransferencia,
      emParamTelefonoInterExtensionEnTransferencia,
      emParamTelefonoInterTroncalEnTransferencia,
      emParamTroncalEntranteEnTransferencia,
      emParamExtensionEntranteEnTransferencia,
      emParamTroncalSalienteEnTransferencia,
      emParamExtensionSalienteEnTransferencia,
      emParamExtension1InterExtensionEnTransferencia,
      emParamExtension2InterExtensionEnTransferencia,
      emParamTroncal1InterTroncalEnTransferencia,
      emParamTroncal2InterTroncalEnTransferencia,
      emParamTroncalCodigoCuenta,
      emParamTroncalTransferida,
      emParamExtensionTransferida,
      emUltimoParamDato,
  };
  ASSERT_EQ(std::size(claves), 70u);
  for (int32_t i = 0; i < 70; ++i) EXPECT_EQ(claves[i], i) << "index " << i;
}

TEST(Part1_1, ParamDatoConstanteRunsFrom0To30InOrder) {
  const int32_t claves[] = {emNoParamDatoConstante,
                            emPrimerParamDatoConstante,
                            emDatoCteIdentificadorHorarioMatutinoFecha,
                            emDatoCteIdentificadorHorarioMatutinoDuracion,
                            emDatoCteIdentEntrante,
                            emDatoCteIdentEntranteAND,
                            emDatoCteIdentEntranteOR,
                            emDatoCteIdentSaliente,
                            emDatoCteIdentSalienteAND,
                            emDatoCteIdentSalienteOR,
                            emDatoCteIdentInterExtension,
                            emDatoCteIdentInterExtensionAND,
                            emDatoCteIdentInterExtensionOR,
                            emDatoCteIdentInterTroncal,
                            emDatoCteIdentInterTroncalAND,
                            emDatoCteIdentInterTroncalOR,
                            emDatoCteIdentEntranteInicioTransferida,
                            emDatoCteIdentEntranteFinTransferida,
                            emDatoCteIdentSalienteInicioTransferida,
                            emDatoCteIdentSalienteFinTransferida,
                            emDatoCteIdentInterExtensionInicioTransferida,
                            emDatoCteIdentInterExtensionFinTransferida,
                            emDatoCteIdentInterTroncalInicioTransferida,
                            emDatoCteIdentInterTroncalFinTransferida,
                            emDatoCteIdentEntranteEnTransferencia,
                            emDatoCteIdentSalienteEnTransferencia,
                            emDatoCteIdentInterExtensionEnTransferencia,
                            emDatoCteIdentInterTroncalEnTransferencia,
                            emDatoCteIdentCodigoCuenta,
                            emDatoCteIdentNoContestada,
                            emUltimoParamDatoConstante};
  ASSERT_EQ(std::size(claves), 31u);
  for (int32_t i = 0; i < 31; ++i) EXPECT_EQ(claves[i], i) << "index " << i;
}

TEST(Part1_1, ConversionTableGivesTheDb25PinOfEachDb9Pin) {
  EXPECT_EQ(emDB9Pin1, 8);
  EXPECT_EQ(emDB9Pin2, 3);
  EXPECT_EQ(emDB9Pin3, 2);
  EXPECT_EQ(emDB9Pin4, 20);
  EXPECT_EQ(emDB9Pin5, 7);
  EXPECT_EQ(emDB9Pin6, 6);
  EXPECT_EQ(emDB9Pin7, 4);
  EXPECT_EQ(emDB9Pin8, 5);
  EXPECT_EQ(emDB9Pin9, 22);
}

TEST(Part1_1, ErroresConfigCodes) {
  EXPECT_EQ(emNoErrorConfig, 0);
  EXPECT_EQ(emErrorConfigNoHay, 1500);
  EXPECT_EQ(emErrorNoHayArchivo, 1501);
  EXPECT_EQ(emErrorConfigDatosIncompletos, 1502);
  EXPECT_EQ(emErrorConfigExportar, 1503);
  EXPECT_EQ(emErrorConfigImportar, 1504);
  EXPECT_EQ(emErrorConfigAbrir, 1505);
  EXPECT_EQ(emErrorDesconocido, 1506);
}

TEST(Part1_1, Code1505ReachesTheCallerAs0x800405E1) {
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigAbrir), static_cast<int32_t>(0x800405E1u));
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigAbrir), -2147219999);
  EXPECT_EQ(NumeroErrorObjeto(0), -2147221504);
  EXPECT_EQ(NumeroErrorObjeto(emErrorNoHayArchivo), -2147220003);
}

TEST(Part1_1, Db25PinErrorHasNumber0x800404B5) {
  clsCfgConmut cfg;
  EXPECT_VELQUA_ERROR(cfg.ActivaPin(emPuertoDB25, 1, 2), static_cast<int32_t>(0x800404B5u),
                      u"clsConfig.EstableceEstadoPin",
                      u"No se permite conectar el PIN #1 del puerto DB25.");
  EXPECT_EQ(NumeroErrorObjeto(kCodigoErrorPinDB25), -2147220299);
}

TEST(Part1_1, ValuesOutsideAnEnumerationAreStoredUnchanged) {
  clsCfgConmut cfg;
  cfg.Caso(static_cast<emCasos>(99));
  EXPECT_EQ(cfg.Caso(), 99);
  cfg.DATOActivo(static_cast<emParamDato>(69));
  EXPECT_EQ(cfg.DATOActivo(), 69);
  cfg.CTEActivo(static_cast<emParamDatoConstante>(-7));
  EXPECT_EQ(cfg.CTEActivo(), -7);
}

TEST(Part1_1, ErrorCarriesNumberSourceDescriptionAndUtf8What) {
  const Error e(6, u"Velqua", u"Desbordamiento ñ");
  EXPECT_EQ(e.Number(), 6);
  EXPECT_EQ(e.Source(), u"Velqua");
  EXPECT_EQ(e.Description(), u"Desbordamiento ñ");
  EXPECT_STREQ(e.what(), "Desbordamiento \xC3\xB1");
}

}  // namespace
