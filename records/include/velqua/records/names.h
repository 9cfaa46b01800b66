// Names of the library's enumerations (include/velqua/enums.h), spelled
// exactly as their members: the JSON form of a configuration and the output
// of the program use them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velqua_records {

struct EnumName {
  int32_t value;
  const char* name;
};

enum class EnumKind {
  kCaso,                // emCasos
  kParamDato,           // emParamDato
  kParamDatoConstante,  // emParamDatoConstante
  kTipoLlamada,         // emTipoLlamadaTraductor
  kAtributo,            // emAtributoTraductor
  kTipoDato,            // emTipoDato
};

// The member name of `value`, e.g. "emParamFechaDia"; nullptr when the
// enumeration has no member of that value.
const char* EnumNameOf(EnumKind kind, int32_t value);

// The value of the member spelled `name` (exact spelling); false when none.
bool EnumValueOf(EnumKind kind, std::string_view name, int32_t* value);

// The JSON form's word for an emTipoDato value ("numeric", "constant",
// "string"); nullptr for emValorNoDefinido and values outside the enumeration.
const char* TypeWord(int32_t tipo);

// The English word of a call type (emTipoLlamadaTraductor: "unrecognised",
// "incoming", "outgoing", "internal", "trunk-to-trunk", "account-code",
// "transferred") and of a transfer attribute (emAtributoTraductor: "none",
// "transfer-start", "in-transfer", "transfer-end", "unanswered"); "" for a
// value outside the enumeration. Rows, the store and reports use them.
const char* CallTypeWord(int32_t type);
const char* AttributeWord(int32_t attribute);

// What a handling case (kCaso), a data-field key (kParamDato) or a constant key
// (kParamDatoConstante) means, in English, for `velqua config keys`; "" for a
// marker member (emPrimerParamDato ...) or a value without a member.
std::string KeyDescription(EnumKind kind, int32_t value);

// A handling case in a few words, for lists (`velqua switches`): "standard",
// "Norstar multi-line calls", ...; "unknown case" for a number that is none.
const char* CaseBrief(int32_t handling);

}  // namespace velqua_records
