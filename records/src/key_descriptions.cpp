// English descriptions of the keys of the JSON form (velqua config keys).
// The data-field keys are built from a datum, a call type and a transfer
// phase, so their descriptions are built the same way from the parts of the
// member's name; cases and constants are listed one by one.
#include <string>
#include <string_view>

#include "velqua/enums.h"
#include "velqua/records/names.h"

namespace velqua_records {
namespace {

struct Part {
  const char* name;
  const char* words;
};

// Longest first where one name begins another ("Troncal1" before "Troncal").
constexpr Part kData[] = {
    {"Telefono", "dialled number"},
    {"Extension1", "calling extension"},
    {"Extension2", "receiving extension"},
    {"Extension", "extension"},
    {"Troncal1", "calling trunk"},
    {"Troncal2", "receiving trunk"},
    {"Troncal", "trunk"},
};

constexpr Part kCallTypes[] = {
    {"Entrante", "an incoming call"},
    {"Saliente", "an outgoing call"},
    {"InterExtension", "an extension-to-extension call"},
    {"InterTroncal", "a trunk-to-trunk call"},
    {"CodigoCuenta", "an account-code call"},
    {"Transferida", "a transferred call"},
};

constexpr Part kPhases[] = {
    {"InicioTransferida", ", at the start of a transfer"},
    {"FinTransferida", ", at the end of a transfer"},
    {"EnTransferencia", ", during a transfer"},
    {"", ""},
};

// Removes `prefix` from the front of `text`; false when it is not there.
bool Take(std::string_view& text, std::string_view prefix) {
  if (text.substr(0, prefix.size()) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

template <size_t N>
const Part* TakeOne(std::string_view& text, const Part (&parts)[N]) {
  for (const Part& part : parts) {
    if (Take(text, part.name)) return &part;
  }
  return nullptr;
}

// "Dia" ... "Segundos" after "Fecha", "Duracion" or "Ring".
std::string TimePart(std::string_view rest) {
  constexpr Part kUnits[] = {{"Dia", "day"},     {"Mes", "month"},       {"Anio", "year"},
                             {"Horas", "hours"}, {"Minutos", "minutes"}, {"Segundos", "seconds"}};
  const Part* unit = TakeOne(rest, kUnits);
  return unit != nullptr && rest.empty() ? unit->words : "";
}

std::string DataFieldDescription(std::string_view name) {
  if (!Take(name, "emParam")) return "";
  if (Take(name, "Fecha")) {
    const std::string unit = TimePart(name);
    return unit.empty() ? "" : "date and time of the call: " + unit + " (the start in cases 5, 8)";
  }
  if (Take(name, "Duracion")) {
    const std::string unit = TimePart(name);
    if (unit.empty()) return "";
    if (unit == "day" || unit == "month" || unit == "year")
      return "end date of the call: " + unit + " (cases 5, 8; unused elsewhere)";
    return "duration: " + unit + " (the end time in cases 5, 8" +
           (unit == "seconds" ? "; tenths of a minute in cases 6, 9)" : ")");
  }
  if (Take(name, "Ring")) {
    const std::string unit = TimePart(name);
    return unit.empty() ? "" : "ring time: " + unit;
  }
  if (name == "CodigoCuenta") return "account code";
  const Part* datum = TakeOne(name, kData);
  const Part* type = datum != nullptr ? TakeOne(name, kCallTypes) : nullptr;
  const Part* phase = type != nullptr ? TakeOne(name, kPhases) : nullptr;
  if (phase == nullptr || !name.empty()) return "";
  // On an incoming call the number column holds the caller's number.
  const bool caller =
      std::string_view(datum->name) == "Telefono" && std::string_view(type->name) == "Entrante";
  return std::string(caller ? "calling number" : datum->words) + " of " + type->words +
         phase->words;
}

struct Described {
  int32_t value;
  const char* words;
  const char* brief = nullptr;  // a few words, for lists (cases only)
};

constexpr Described kCases[] = {
    {velqua::emNoCaso, "no case defined: nothing is translated", "no case"},
    {velqua::emCasoEstandar, "standard single-line records", "standard"},
    {velqua::emCasoSamsungNX_820, "Samsung NX-820", "Samsung NX-820"},
    {velqua::emCasoNortelMeridian01,
     "Nortel Meridian: a call keeps its type even when its duration cannot be read",
     "Meridian: no duration kept"},
    {velqua::emCasoNortelNorstar0x32SMDR6,
     "Nortel Norstar multi-line records: the lines of one call joined with the separator, "
     "the type read from keyword lines",
     "Norstar multi-line calls"},
    {velqua::emCasoEstandarRestaFechasDuracion,
     "standard, duration = end date-time minus start date-time", "duration from start and end"},
    {velqua::emCasoEstandarDecimasMinuto,
     "standard, the duration's seconds column printed as tenths of a minute",
     "duration in tenths of a minute"},
    {velqua::emCasoEstandarConSalienteDefecto,
     "standard, a record without a mark is outgoing when it has a number, extension and trunk",
     "outgoing by default"},
    {velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto, "cases 5 and 7 together",
     "start and end, outgoing by default"},
    {velqua::emCasoEstandarDecimasMinutoConSalienteDefecto,
     "case 7 with tenths of a minute in the duration's seconds column",
     "tenths of a minute, outgoing by default"},
    {velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100,
     "Panasonic KX-TDA100/200: an account code printed in place of the extension, mapped "
     "back through the extension list",
     "account code in place of the extension"},
    {velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto,
     "case 10 with outgoing by default (as case 7)", "account code, outgoing by default"},
    {velqua::emCasoAD_TES, "AD TES: standard records, no rule of its own", "no rule of its own"},
};

constexpr Described kConstants[] = {
    {velqua::emDatoCteIdentificadorHorarioMatutinoFecha,
     "morning mark of the call's time (a 12-hour clock, e.g. \"AM\")"},
    {velqua::emDatoCteIdentificadorHorarioMatutinoDuracion,
     "morning mark of the end time (cases 5, 8)"},
    {velqua::emDatoCteIdentCodigoCuenta,
     "marks an account-code record; overrides every other type"},
    {velqua::emDatoCteIdentNoContestada,
     "marks an unanswered incoming call (kept even without a readable duration)"},
    {velqua::emDatoCteIdentInterExtensionEnTransferencia,
     "marks an extension-to-extension call during a transfer; also the prefix removed from "
     "dialled numbers"},
};

// The identifying marks: "emDatoCteIdent" + call type + AND / OR / phase.
std::string MarkDescription(std::string_view name) {
  if (!Take(name, "emDatoCteIdent")) return "";
  const Part* type = TakeOne(name, kCallTypes);
  if (type == nullptr) return "";
  const std::string call = type->words;
  if (name.empty()) return "marks " + call;
  if (name == "AND") return "second mark that " + call + " must carry with the first";
  if (name == "OR") return "alternative mark of " + call + ", tried when the first is absent";
  if (name == "InicioTransferida") return "marks the start of a transfer on " + call;
  if (name == "FinTransferida") return "marks the end of a transfer on " + call;
  if (name == "EnTransferencia") return "marks " + call + " during a transfer";
  return "";
}

template <size_t N>
const char* Find(const Described (&table)[N], int32_t value) {
  for (const Described& d : table) {
    if (d.value == value) return d.words;
  }
  return nullptr;
}

}  // namespace

const char* CaseBrief(int32_t handling) {
  for (const Described& d : kCases) {
    if (d.value == handling) return d.brief;
  }
  return "unknown case";
}

std::string KeyDescription(EnumKind kind, int32_t value) {
  const char* name = EnumNameOf(kind, value);
  switch (kind) {
    case EnumKind::kCaso: {
      const char* words = Find(kCases, value);
      return words != nullptr ? words : "";
    }
    case EnumKind::kParamDato:
      return name != nullptr ? DataFieldDescription(name) : "";
    case EnumKind::kParamDatoConstante: {
      const char* words = Find(kConstants, value);
      if (words != nullptr) return words;
      return name != nullptr ? MarkDescription(name) : "";
    }
    default:
      return "";
  }
}

}  // namespace velqua_records
