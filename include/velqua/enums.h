// The ten public enumerations of Velqua.
//
// Names and values are fixed: the configuration files store them as plain
// integers and hosts compare them by value. The enumerations are unscoped and
// 32-bit, so any 32-bit value (in the enumeration or not) can be stored by a
// cast: the setters never validate, and each reader says what an unknown
// value does.
//
// Generated from scripts/enums/enums.txt by scripts/enums/generate.py.
#pragma once

#include <cstdint>

namespace velqua {

// Layout version of a stored configuration (NombreVersion, Abrir, Importar).
enum emVersionConfiguracion : int32_t {
  emNoVersion = 0,
  emVersionActual = 1,
  emVersion2_0 = 2,
  emVersion3_0 = 3,
};

// Handling case of a switch; selects the translator's rules for its records.
enum emCasos : int32_t {
  emNoCaso = 0,
  emCasoEstandar = 1,
  emCasoSamsungNX_820 = 2,
  emCasoNortelMeridian01 = 3,
  emCasoNortelNorstar0x32SMDR6 = 4,
  emCasoEstandarRestaFechasDuracion = 5,
  emCasoEstandarDecimasMinuto = 6,
  emCasoEstandarConSalienteDefecto = 7,
  emCasoEstandarRestaFechasDuracionConSalienteDefecto = 8,
  emCasoEstandarDecimasMinutoConSalienteDefecto = 9,
  emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 = 10,
  emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto = 11,
  emCasoAD_TES = 12,
};

// Kind of a data field or constant; emValorNoDefinido marks a free record.
enum emTipoDato : int32_t {
  emValorNoDefinido = 0,
  emValorNumerico = 1,
  emValorConstante = 2,
  emValorCadena = 3,
};

// Keys of the data-field table; valid keys are 2 to 68, between the markers.
enum emParamDato : int32_t {
  emNoParamDato = 0,
  emPrimerParamDato = 1,
  emParamFechaDia = 2,
  emParamFechaMes = 3,
  emParamFechaAnio = 4,
  emParamFechaHoras = 5,
  emParamFechaMinutos = 6,
  emParamFechaSegundos = 7,
  emParamDuracionDia = 8,
  emParamDuracionMes = 9,
  emParamDuracionAnio = 10,
  emParamDuracionHoras = 11,
  emParamDuracionMinutos = 12,
  emParamDuracionSegundos = 13,
  emParamRingHoras = 14,
  emParamRingMinutos = 15,
  emParamRingSegundos = 16,
  emParamCodigoCuenta = 17,
  emParamTelefonoEntrante = 18,
  emParamTelefonoSaliente = 19,
  emParamTelefonoInterExtension = 20,
  emParamTelefonoInterTroncal = 21,
  emParamTelefonoEntranteInicioTransferida = 22,
  emParamTelefonoEntranteFinTransferida = 23,
  emParamTelefonoSalienteInicioTransferida = 24,
  emParamTelefonoSalienteFinTransferida = 25,
  emParamTelefonoInterExtensionInicioTransferida = 26,
  emParamTelefonoInterExtensionFinTransferida = 27,
  emParamTelefonoInterTroncalInicioTransferida = 28,
  emParamTelefonoInterTroncalFinTransferida = 29,
  emParamTroncalEntrante = 30,
  emParamExtensionEntrante = 31,
  emParamTroncalSaliente = 32,
  emParamExtensionSaliente = 33,
  emParamExtension1InterExtension = 34,
  emParamExtension2InterExtension = 35,
  emParamTroncal1InterTroncal = 36,
  emParamTroncal2InterTroncal = 37,
  emParamTroncalEntranteInicioTransferida = 38,
  emParamExtensionEntranteInicioTransferida = 39,
  emParamTroncalEntranteFinTransferida = 40,
  emParamExtensionEntranteFinTransferida = 41,
  emParamTroncalSalienteInicioTransferida = 42,
  emParamExtensionSalienteInicioTransferida = 43,
  emParamTroncalSalienteFinTransferida = 44,
  emParamExtensionSalienteFinTransferida = 45,
  emParamExtension1InterExtensionInicioTransferida = 46,
  emParamExtension2InterExtensionInicioTransferida = 47,
  emParamExtension1InterExtensionFinTransferida = 48,
  emParamExtension2InterExtensionFinTransferida = 49,
  emParamTroncal1InterTroncalInicioTransferida = 50,
  emParamTroncal2InterTroncalInicioTransferida = 51,
  emParamTroncal1InterTroncalFinTransferida = 52,
  emParamTroncal2InterTroncalFinTransferida = 53,
  emParamTelefonoEntranteEnTransferencia = 54,
  emParamTelefonoSalienteEnTransferencia = 55,
  emParamTelefonoInterExtensionEnTransferencia = 56,
  emParamTelefonoInterTroncalEnTransferencia = 57,
  emParamTroncalEntranteEnTransferencia = 58,
  emParamExtensionEntranteEnTransferencia = 59,
  emParamTroncalSalienteEnTransferencia = 60,
  emParamExtensionSalienteEnTransferencia = 61,
  emParamExtension1InterExtensionEnTransferencia = 62,
  emParamExtension2InterExtensionEnTransferencia = 63,
  emParamTroncal1InterTroncalEnTransferencia = 64,
  emParamTroncal2InterTroncalEnTransferencia = 65,
  emParamTroncalCodigoCuenta = 66,
  emParamTroncalTransferida = 67,
  emParamExtensionTransferida = 68,
  emUltimoParamDato = 69,
};

// Keys of the constant table; valid keys are 2 to 29, between the markers.
// Each names a text that marks a kind of call, a transfer step, an unanswered
// call, an account code or a morning hour (doc/translator.md).
enum emParamDatoConstante : int32_t {
  emNoParamDatoConstante = 0,
  emPrimerParamDatoConstante = 1,
  emDatoCteIdentificadorHorarioMatutinoFecha = 2,
  emDatoCteIdentificadorHorarioMatutinoDuracion = 3,
  emDatoCteIdentEntrante = 4,
  emDatoCteIdentEntranteAND = 5,
  emDatoCteIdentEntranteOR = 6,
  emDatoCteIdentSaliente = 7,
  emDatoCteIdentSalienteAND = 8,
  emDatoCteIdentSalienteOR = 9,
  emDatoCteIdentInterExtension = 10,
  emDatoCteIdentInterExtensionAND = 11,
  emDatoCteIdentInterExtensionOR = 12,
  emDatoCteIdentInterTroncal = 13,
  emDatoCteIdentInterTroncalAND = 14,
  emDatoCteIdentInterTroncalOR = 15,
  emDatoCteIdentEntranteInicioTransferida = 16,
  emDatoCteIdentEntranteFinTransferida = 17,
  emDatoCteIdentSalienteInicioTransferida = 18,
  emDatoCteIdentSalienteFinTransferida = 19,
  emDatoCteIdentInterExtensionInicioTransferida = 20,
  emDatoCteIdentInterExtensionFinTransferida = 21,
  emDatoCteIdentInterTroncalInicioTransferida = 22,
  emDatoCteIdentInterTroncalFinTransferida = 23,
  emDatoCteIdentEntranteEnTransferencia = 24,
  emDatoCteIdentSalienteEnTransferencia = 25,
  emDatoCteIdentInterExtensionEnTransferencia = 26,
  emDatoCteIdentInterTroncalEnTransferencia = 27,
  emDatoCteIdentCodigoCuenta = 28,
  emDatoCteIdentNoContestada = 29,
  emUltimoParamDatoConstante = 30,
};

// Switch-side connector of the SMDR cable; each has its own wiring.
enum emPuertoSerial : int32_t {
  emNoPuerto = 0,
  emPuertoRJ45 = 1,
  emPuertoDB9 = 2,
  emPuertoDB25 = 3,
};

// DB25 pin carrying the signal of each DB9 pin (the drawings print them).
enum emTablaConversionDB9DB25 : int32_t {
  emDB9Pin1 = 8,
  emDB9Pin2 = 3,
  emDB9Pin3 = 2,
  emDB9Pin4 = 20,
  emDB9Pin5 = 7,
  emDB9Pin6 = 6,
  emDB9Pin7 = 4,
  emDB9Pin8 = 5,
  emDB9Pin9 = 22,
};

// Call type detected by the translator. emTradTransferida comes only from the
// keyword lines of the Norstar multi-line record.
enum emTipoLlamadaTraductor : int32_t {
  emTradNoIdentificada = 0,
  emTradEntrante = 1,
  emTradSaliente = 2,
  emTradInterExtension = 3,
  emTradInterTroncal = 4,
  emTradCodigoCuenta = 5,
  emTradTransferida = 6,
};

// Transfer attribute of a call: start, in, end of a transfer, or unanswered.
enum emAtributoTraductor : int32_t {
  emATRNoAtributo = 0,
  emATRIniTR = 1,
  emATREnTR = 2,
  emATRFinTR = 3,
  emATRNoContestada = 4,
};

// Codes of the configuration-file errors; the error number is 0x80040000 plus
// the code. Abrir raises code 0 for an empty name; 1500 and 1506 are never
// raised, and their names stay for hosts that compare against them.
enum emErroresConfig : int32_t {
  emNoErrorConfig = 0,
  emErrorConfigNoHay = 1500,
  emErrorNoHayArchivo = 1501,
  emErrorConfigDatosIncompletos = 1502,
  emErrorConfigExportar = 1503,
  emErrorConfigImportar = 1504,
  emErrorConfigAbrir = 1505,
  emErrorDesconocido = 1506,
};

}  // namespace velqua
