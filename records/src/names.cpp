// Names of the library's enumerations, exactly as spelled in
// include/velqua/enums.h: the JSON form of a configuration and the program's
// output name every key, case, type and attribute by its enumeration member.
#include "velqua/records/names.h"

#include <cstddef>

#include "velqua/enums.h"

namespace velqua_records {
namespace {

using namespace velqua;

// Each entry is built from the member itself, so a name can never drift from
// its value.
#define VQ_NAME(member) \
  { member, #member }
constexpr EnumName kNames_emCasos[] = {
    VQ_NAME(emNoCaso),
    VQ_NAME(emCasoEstandar),
    VQ_NAME(emCasoSamsungNX_820),
    VQ_NAME(emCasoNortelMeridian01),
    VQ_NAME(emCasoNortelNorstar0x32SMDR6),
    VQ_NAME(emCasoEstandarRestaFechasDuracion),
    VQ_NAME(emCasoEstandarDecimasMinuto),
    VQ_NAME(emCasoEstandarConSalienteDefecto),
    VQ_NAME(emCasoEstandarRestaFechasDuracionConSalienteDefecto),
    VQ_NAME(emCasoEstandarDecimasMinutoConSalienteDefecto),
    VQ_NAME(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100),
    VQ_NAME(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto),
    VQ_NAME(emCasoAD_TES),
};

constexpr EnumName kNames_emParamDato[] = {
    VQ_NAME(emNoParamDato),
    VQ_NAME(emPrimerParamDato),
    VQ_NAME(emParamFechaDia),
    VQ_NAME(emParamFechaMes),
    VQ_NAME(emParamFechaAnio),
    VQ_NAME(emParamFechaHoras),
    VQ_NAME(emParamFechaMinutos),
    VQ_NAME(emParamFechaSegundos),
    VQ_NAME(emParamDuracionDia),
    VQ_NAME(emParamDuracionMes),
    VQ_NAME(emParamDuracionAnio),
    VQ_NAME(emParamDuracionHoras),
    VQ_NAME(emParamDuracionMinutos),
    VQ_NAME(emParamDuracionSegundos),
    VQ_NAME(emParamRingHoras),
    VQ_NAME(emParamRingMinutos),
    VQ_NAME(emParamRingSegundos),
    VQ_NAME(emParamCodigoCuenta),
    VQ_NAME(emParamTelefonoEntrante),
    VQ_NAME(emParamTelefonoSaliente),
    VQ_NAME(emParamTelefonoInterExtension),
    VQ_NAME(emParamTelefonoInterTroncal),
    VQ_NAME(emParamTelefonoEntranteInicioTransferida),
    VQ_NAME(emParamTelefonoEntranteFinTransferida),
    VQ_NAME(emParamTelefonoSalienteInicioTransferida),
    VQ_NAME(emParamTelefonoSalienteFinTransferida),
    VQ_NAME(emParamTelefonoInterExtensionInicioTransferida),
    VQ_NAME(emParamTelefonoInterExtensionFinTransferida),
    VQ_NAME(emParamTelefonoInterTroncalInicioTransferida),
    VQ_NAME(emParamTelefonoInterTroncalFinTransferida),
    VQ_NAME(emParamTroncalEntrante),
    VQ_NAME(emParamExtensionEntrante),
    VQ_NAME(emParamTroncalSaliente),
    VQ_NAME(emParamExtensionSaliente),
    VQ_NAME(emParamExtension1InterExtension),
    VQ_NAME(emParamExtension2InterExtension),
    VQ_NAME(emParamTroncal1InterTroncal),
    VQ_NAME(emParamTroncal2InterTroncal),
    VQ_NAME(emParamTroncalEntranteInicioTransferida),
    VQ_NAME(emParamExtensionEntranteInicioTransferida),
    VQ_NAME(emParamTroncalEntranteFinTransferida),
    VQ_NAME(emParamExtensionEntranteFinTransferida),
    VQ_NAME(emParamTroncalSalienteInicioTransferida),
    VQ_NAME(emParamExtensionSalienteInicioTransferida),
    VQ_NAME(emParamTroncalSalienteFinTransferida),
    VQ_NAME(emParamExtensionSalienteFinTransferida),
    VQ_NAME(emParamExtension1InterExtensionInicioTransferida),
    VQ_NAME(emParamExtension2InterExtensionInicioTransferida),
    VQ_NAME(emParamExtension1InterExtensionFinTransferida),
    VQ_NAME(emParamExtension2InterExtensionFinTransferida),
    VQ_NAME(emParamTroncal1InterTroncalInicioTransferida),
    VQ_NAME(emParamTroncal2InterTroncalInicioTransferida),
    VQ_NAME(emParamTroncal1InterTroncalFinTransferida),
    VQ_NAME(emParamTroncal2InterTroncalFinTransferida),
    VQ_NAME(emParamTelefonoEntranteEnTransferencia),
    VQ_NAME(emParamTelefonoSalienteEnTransferencia),
    VQ_NAME(emParamTelefonoInterExtensionEnTransferencia),
    VQ_NAME(emParamTelefonoInterTroncalEnTransferencia),
    VQ_NAME(emParamTroncalEntranteEnTransferencia),
    VQ_NAME(emParamExtensionEntranteEnTransferencia),
    VQ_NAME(emParamTroncalSalienteEnTransferencia),
    VQ_NAME(emParamExtensionSalienteEnTransferencia),
    VQ_NAME(emParamExtension1InterExtensionEnTransferencia),
    VQ_NAME(emParamExtension2InterExtensionEnTransferencia),
    VQ_NAME(emParamTroncal1InterTroncalEnTransferencia),
    VQ_NAME(emParamTroncal2InterTroncalEnTransferencia),
    VQ_NAME(emParamTroncalCodigoCuenta),
    VQ_NAME(emParamTroncalTransferida),
    VQ_NAME(emParamExtensionTransferida),
    VQ_NAME(emUltimoParamDato),
};

constexpr EnumName kNames_emParamDatoConstante[] = {
    VQ_NAME(emNoParamDatoConstante),
    VQ_NAME(emPrimerParamDatoConstante),
    VQ_NAME(emDatoCteIdentificadorHorarioMatutinoFecha),
    VQ_NAME(emDatoCteIdentificadorHorarioMatutinoDuracion),
    VQ_NAME(emDatoCteIdentEntrante),
    VQ_NAME(emDatoCteIdentEntranteAND),
    VQ_NAME(emDatoCteIdentEntranteOR),
    VQ_NAME(emDatoCteIdentSaliente),
    VQ_NAME(emDatoCteIdentSalienteAND),
    VQ_NAME(emDatoCteIdentSalienteOR),
    VQ_NAME(emDatoCteIdentInterExtension),
    VQ_NAME(emDatoCteIdentInterExtensionAND),
    VQ_NAME(emDatoCteIdentInterExtensionOR),
    VQ_NAME(emDatoCteIdentInterTroncal),
    VQ_NAME(emDatoCteIdentInterTroncalAND),
    VQ_NAME(emDatoCteIdentInterTroncalOR),
    VQ_NAME(emDatoCteIdentEntranteInicioTransferida),
    VQ_NAME(emDatoCteIdentEntranteFinTransferida),
    VQ_NAME(emDatoCteIdentSalienteInicioTransferida),
    VQ_NAME(emDatoCteIdentSalienteFinTransferida),
    VQ_NAME(emDatoCteIdentInterExtensionInicioTransferida),
    VQ_NAME(emDatoCteIdentInterExtensionFinTransferida),
    VQ_NAME(emDatoCteIdentInterTroncalInicioTransferida),
    VQ_NAME(emDatoCteIdentInterTroncalFinTransferida),
    VQ_NAME(emDatoCteIdentEntranteEnTransferencia),
    VQ_NAME(emDatoCteIdentSalienteEnTransferencia),
    VQ_NAME(emDatoCteIdentInterExtensionEnTransferencia),
    VQ_NAME(emDatoCteIdentInterTroncalEnTransferencia),
    VQ_NAME(emDatoCteIdentCodigoCuenta),
    VQ_NAME(emDatoCteIdentNoContestada),
    VQ_NAME(emUltimoParamDatoConstante),
};

constexpr EnumName kNames_emTipoLlamadaTraductor[] = {
    VQ_NAME(emTradNoIdentificada), VQ_NAME(emTradEntrante),     VQ_NAME(emTradSaliente),
    VQ_NAME(emTradInterExtension), VQ_NAME(emTradInterTroncal), VQ_NAME(emTradCodigoCuenta),
    VQ_NAME(emTradTransferida),
};

constexpr EnumName kNames_emAtributoTraductor[] = {
    VQ_NAME(emATRNoAtributo), VQ_NAME(emATRIniTR),        VQ_NAME(emATREnTR),
    VQ_NAME(emATRFinTR),      VQ_NAME(emATRNoContestada),
};

constexpr EnumName kNames_emTipoDato[] = {
    VQ_NAME(emValorNoDefinido),
    VQ_NAME(emValorNumerico),
    VQ_NAME(emValorConstante),
    VQ_NAME(emValorCadena),
};

#undef VQ_NAME

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
    case EnumKind::kParamDato:
      return Of(kNames_emParamDato);
    case EnumKind::kParamDatoConstante:
      return Of(kNames_emParamDatoConstante);
    case EnumKind::kTipoLlamada:
      return Of(kNames_emTipoLlamadaTraductor);
    case EnumKind::kAtributo:
      return Of(kNames_emAtributoTraductor);
    case EnumKind::kTipoDato:
      return Of(kNames_emTipoDato);
  }
  return Table{nullptr, 0};
}

}  // namespace

const char* EnumNameOf(EnumKind kind, int32_t value) {
  const Table table = TableOf(kind);
  for (size_t i = 0; i < table.count; ++i) {
    if (table.entries[i].value == value) return table.entries[i].name;
  }
  return nullptr;
}

bool EnumValueOf(EnumKind kind, std::string_view name, int32_t* value) {
  const Table table = TableOf(kind);
  for (size_t i = 0; i < table.count; ++i) {
    if (name == table.entries[i].name) {
      *value = table.entries[i].value;
      return true;
    }
  }
  return false;
}

const char* TypeWord(int32_t tipo) {
  switch (tipo) {
    case velqua::emValorNumerico:
      return "numeric";
    case velqua::emValorConstante:
      return "constant";
    case velqua::emValorCadena:
      return "string";
    default:
      return nullptr;
  }
}

const char* CallTypeWord(int32_t type) {
  static const char* const kWords[] = {"unrecognised",   "incoming",     "outgoing",   "internal",
                                       "trunk-to-trunk", "account-code", "transferred"};
  return type >= 0 && type < 7 ? kWords[type] : "";
}

const char* AttributeWord(int32_t attribute) {
  static const char* const kWords[] = {"none", "transfer-start", "in-transfer", "transfer-end",
                                       "unanswered"};
  return attribute >= 0 && attribute < 5 ? kWords[attribute] : "";
}

}  // namespace velqua_records
