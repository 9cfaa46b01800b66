// Why a record was left unrecognised, told in the order the
// translator decides: a line without a digit is never classified; then the
// call-type marks, role by role; then, in the cases with an outgoing default,
// the three outgoing fields; last, a type found but a duration that could not
// be read (the translator turns such a record into an unrecognised one).
#include "velqua/records/check_reasons.h"

#include <string>

#include "velqua/records/common.h"
#include "velqua/records/names.h"

namespace velqua_records {

std::string Columns(int pos, int size) {
  return std::to_string(pos) + (size > 1 ? "-" + std::to_string(pos + size - 1) : "");
}

namespace {

using velqua::clsCfgConmut;
using velqua::emParamDato;
using velqua::emParamDatoConstante;

struct Role {
  const char* word;
  emParamDatoConstante plain, also, instead;  // the plain, AND and OR marks
};

constexpr Role kRoles[] = {
    {"incoming", velqua::emDatoCteIdentEntrante, velqua::emDatoCteIdentEntranteAND,
     velqua::emDatoCteIdentEntranteOR},
    {"outgoing", velqua::emDatoCteIdentSaliente, velqua::emDatoCteIdentSalienteAND,
     velqua::emDatoCteIdentSalienteOR},
    {"extension-to-extension", velqua::emDatoCteIdentInterExtension,
     velqua::emDatoCteIdentInterExtensionAND, velqua::emDatoCteIdentInterExtensionOR},
    {"trunk-to-trunk", velqua::emDatoCteIdentInterTroncal, velqua::emDatoCteIdentInterTroncalAND,
     velqua::emDatoCteIdentInterTroncalOR},
};

using Reasons = std::vector<std::string>;

// `"text" at 27-29` for a defined constant, "" for an undefined one.
std::string MarkText(clsCfgConmut& cfg, emParamDatoConstante key) {
  cfg.CTEActivo(key);
  if (!cfg.HayCTE()) return "";
  return "\"" + U8(cfg.Constante()) + "\" at " + Columns(cfg.CTEPos(), cfg.CTETam());
}

// What a data field cuts from the record: `minutes [61-62] "at"`, or that it is
// not defined or lies beyond the line.
std::string FieldText(clsCfgConmut& cfg, emParamDato key, const std::u16string& record) {
  cfg.DATOActivo(key);
  std::string label = EnumNameOf(EnumKind::kParamDato, key);
  if (!cfg.HayDATO()) return label + " (not defined)";
  const size_t start = static_cast<size_t>(cfg.DATOPos() - 1);
  label += " [" + Columns(cfg.DATOPos(), cfg.DATOTam()) + "] ";
  if (start >= record.size()) return label + "(beyond the end of the line)";
  return label + "\"" + U8(record.substr(start, cfg.DATOTam())) + "\"";
}

// Whether the role's marks give it its type, as the translator tests them: a
// plain mark with a defined AND mark needs both; the OR mark stands in only
// when the plain one is absent. Prints what was tested.
bool RoleMatches(const Role& role, clsCfgConmut& cfg, velqua::clsTraductor& traductor,
                 Reasons& why) {
  const std::string plain = MarkText(cfg, role.plain), also = MarkText(cfg, role.also),
                    instead = MarkText(cfg, role.instead);
  if (plain.empty() && instead.empty()) {
    why.push_back(std::string(role.word) + ": no mark defined");
    return false;
  }
  const bool has_plain = !plain.empty() && traductor.HayConstanteLlamada(role.plain);
  if (has_plain) {
    if (also.empty() || traductor.HayConstanteLlamada(role.also)) return true;
    why.push_back(std::string(role.word) + ": mark " + plain + " found, but not its companion " +
                  also);
    return false;
  }
  if (!instead.empty() && traductor.HayConstanteLlamada(role.instead)) return true;
  const std::string tried = plain.empty() || instead.empty()
                                ? "mark " + plain + instead + " not found"
                                : "neither mark " + plain + " nor " + instead + " found";
  why.push_back(std::string(role.word) + ": " + tried);
  return false;
}

// Whether a field cuts nothing, as the outgoing default tests it: a numeric
// field keeps only its digits, a text field its characters, blanks included.
bool FieldIsEmpty(clsCfgConmut& cfg, emParamDato key, const std::u16string& record) {
  cfg.DATOActivo(key);
  if (!cfg.HayDATO()) return true;
  const size_t start = static_cast<size_t>(cfg.DATOPos() - 1);
  if (start >= record.size()) return true;
  const std::u16string cut = record.substr(start, cfg.DATOTam());
  if (cfg.TipoDatoDATO() != velqua::emValorNumerico) return cut.empty();
  return cut.find_first_of(u"0123456789") == std::u16string::npos;
}

bool HasOutgoingDefault(int32_t caso) {
  return caso == velqua::emCasoEstandarConSalienteDefecto ||
         caso == velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto ||
         caso == velqua::emCasoEstandarDecimasMinutoConSalienteDefecto ||
         caso == velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto;
}

void ExplainDuration(clsCfgConmut& cfg, const std::u16string& record, const char* type,
                     Reasons& why) {
  const int32_t caso = cfg.Caso();
  if (caso == velqua::emCasoEstandarRestaFechasDuracion ||
      caso == velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto) {
    why.push_back(std::string("the record is ") + type +
                  ", but its end date-time minus its start could not be read or is negative");
    return;
  }
  why.push_back(std::string("the record is ") + type +
                ", but its duration could not be read: minutes and seconds must both be numbers: " +
                FieldText(cfg, velqua::emParamDuracionMinutos, record) + ", " +
                FieldText(cfg, velqua::emParamDuracionSegundos, record));
}

}  // namespace

std::vector<std::string> UnrecognisedReasons(clsCfgConmut& cfg, velqua::clsTraductor& traductor,
                                             const std::u16string& record) {
  Reasons why;
  if (record.find_first_of(u"0123456789") == std::u16string::npos) {
    why.push_back("the line holds no digit, and a line without a digit is never classified");
    return why;
  }
  for (const Role& role : kRoles) {
    if (RoleMatches(role, cfg, traductor, why)) {
      ExplainDuration(cfg, record, role.word, why);
      return why;
    }
  }
  if (!HasOutgoingDefault(cfg.Caso())) {
    why.push_back("no call-type mark was found, and this case has no outgoing default");
    return why;
  }
  std::string empty;
  for (emParamDato key : {velqua::emParamTelefonoSaliente, velqua::emParamExtensionSaliente,
                          velqua::emParamTroncalSaliente}) {
    if (FieldIsEmpty(cfg, key, record))
      empty += (empty.empty() ? "" : ", ") + FieldText(cfg, key, record);
  }
  if (!empty.empty()) {
    why.push_back(
        "not outgoing by default: the outgoing number, extension and trunk must all be "
        "present; empty: " +
        empty);
    return why;
  }
  ExplainDuration(cfg, record, "outgoing by default", why);
  return why;
}

}  // namespace velqua_records
