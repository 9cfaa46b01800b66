#include "velqua/records/config_json.h"

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "record_form_json.h"
#include "velqua/enums.h"
#include "velqua/records/common.h"
#include "velqua/records/names.h"

namespace velqua_records {
namespace {

using nlohmann::json;
using velqua::clsCfgConmut;

struct PortInfo {
  const char* name;
  velqua::emPuertoSerial port;
  int16_t first_pin;  // DB25 pin 1 cannot be wired
  int16_t last_pin;   // the pins a profile file carries
};

constexpr std::array<PortInfo, 3> kPorts = {{
    {"rj45", velqua::emPuertoRJ45, 1, 9},
    {"db9", velqua::emPuertoDB9, 1, 9},
    {"db25", velqua::emPuertoDB25, 1, 25},
}};
constexpr int16_t kLastComputerPin = 31;

std::string Quote(const std::string& utf8) { return json(utf8).dump(); }

// ---- writing ----

void WriteFields(const clsCfgConmut& cfg, std::string& out) {
  out += "  \"fields\": {";
  bool first = true;
  for (const velqua::CampoDATO& f : cfg.ListaDATO()) {
    out += first ? "\n" : ",\n";
    first = false;
    out += "    " + Quote(EnumNameOf(EnumKind::kParamDato, f.emParam)) + ": {\"pos\": ";
    out += std::to_string(f.btPos) + ", \"size\": " + std::to_string(f.btTam);
    const char* word = TypeWord(f.emTipo);
    out += ", \"type\": ";
    out += word != nullptr ? Quote(word) : std::to_string(f.emTipo);
    out += "}";
  }
  out += first ? "},\n" : "\n  },\n";
}

void WriteConstants(const clsCfgConmut& cfg, std::string& out) {
  out += "  \"constants\": {";
  bool first = true;
  for (const velqua::CampoCTE& c : cfg.ListaCTE()) {
    out += first ? "\n" : ",\n";
    first = false;
    out += "    " + Quote(EnumNameOf(EnumKind::kParamDatoConstante, c.emParam)) + ": {\"pos\": ";
    out += std::to_string(c.btPos) + ", \"text\": " + Quote(U8(c.cadTexto));
    // The width follows the text unless it was set apart from it.
    if (c.btTam != c.cadTexto.size()) out += ", \"size\": " + std::to_string(c.btTam);
    out += "}";
  }
  out += first ? "},\n" : "\n  },\n";
}

void WriteWiring(const clsCfgConmut& cfg, std::string& out) {
  out += "  \"wiring\": {\n";
  for (size_t p = 0; p < kPorts.size(); ++p) {
    out += "    " + Quote(kPorts[p].name) + ": [";
    bool first = true;
    for (int16_t pin = kPorts[p].first_pin; pin <= kPorts[p].last_pin; ++pin) {
      for (int16_t pc = 1; pc <= kLastComputerPin; ++pc) {
        if (!cfg.PinesConectados(kPorts[p].port, pin, pc)) continue;
        if (!first) out += ", ";
        first = false;
        out += "[" + std::to_string(pin) + ", " + std::to_string(pc) + "]";
      }
    }
    out += p + 1 < kPorts.size() ? "],\n" : "]\n";
  }
  out += "  }\n";
}

// ---- reading ----

std::u16string Text(const json& object, const char* name, const std::string& where,
                    size_t max_size) {
  if (!object.contains(name)) return u"";
  const json& value = object.at(name);
  if (!value.is_string()) FailJson(where + name, "must be a string");
  std::u16string text = U16(value.get<std::string>());
  if (text.size() > max_size) {
    FailJson(where + name,
             std::to_string(text.size()) + " characters, at most " + std::to_string(max_size));
  }
  return text;
}

int64_t Integer(const json& object, const char* name, const std::string& where, int64_t low,
                int64_t high) {
  if (!object.contains(name)) FailJson(where + "." + name, "missing");
  const json& value = object.at(name);
  if (!value.is_number_integer()) FailJson(where + "." + name, "must be an integer");
  const int64_t number = value.get<int64_t>();
  if (number < low || number > high) {
    FailJson(where + "." + name, "must be " + std::to_string(low) + " to " + std::to_string(high));
  }
  return number;
}

int32_t EnumValue(const json& value, EnumKind kind, const std::string& where) {
  int32_t result = 0;
  if (value.is_number_integer()) {
    const int64_t number = value.get<int64_t>();
    if (number < INT32_MIN || number > INT32_MAX) FailJson(where, "out of range");
    return static_cast<int32_t>(number);
  }
  if (!value.is_string() || !EnumValueOf(kind, value.get<std::string>(), &result)) {
    FailJson(where, "unknown name " + value.dump());
  }
  return result;
}

// The translator cuts a field or a mark only while its position plus its size
// stays within 255 (the byte a record keeps for each); past that every record
// fails with an overflow (error 6), so such a configuration is refused here.
void RequireWithinRecord(int64_t pos, int64_t size, const std::string& where) {
  if (pos + size > 255) {
    FailJson(where, "pos " + std::to_string(pos) + " + size " + std::to_string(size) + " = " +
                        std::to_string(pos + size) +
                        ", above 255: no record could be translated (overflow, error 6)");
  }
}

velqua::emTipoDato FieldType(const json& value, const std::string& where) {
  if (value.is_string()) {
    const std::string word = value.get<std::string>();
    if (word == "numeric") return velqua::emValorNumerico;
    if (word == "constant") return velqua::emValorConstante;
    if (word == "string") return velqua::emValorCadena;
  }
  const int32_t type = EnumValue(value, EnumKind::kTipoDato, where);
  if (type < velqua::emValorNumerico || type > velqua::emValorCadena) {
    FailJson(where, "must be \"numeric\", \"constant\" or \"string\"");
  }
  return static_cast<velqua::emTipoDato>(type);
}

void ReadField(const std::string& key_name, const json& field, clsCfgConmut& cfg) {
  const std::string where = "fields." + key_name;
  int32_t key = 0;
  if (!EnumValueOf(EnumKind::kParamDato, key_name, &key) || key <= velqua::emPrimerParamDato ||
      key >= velqua::emUltimoParamDato) {
    FailJson(where, "not a data-field key (emParamFechaDia ... emParamExtensionTransferida)");
  }
  CheckJsonMembers(field, where, {"pos", "size", "type"});
  if (!field.contains("type")) FailJson(where + ".type", "missing");
  cfg.DATOActivo(static_cast<velqua::emParamDato>(key));
  cfg.TipoDatoDATO(FieldType(field.at("type"), where + ".type"));
  const int64_t pos = Integer(field, "pos", where, 1, 255);
  const int64_t size = Integer(field, "size", where, 1, 255);
  RequireWithinRecord(pos, size, where);
  cfg.DATOPos(static_cast<uint8_t>(pos));
  cfg.DATOTam(static_cast<uint8_t>(size));
}

void ReadConstant(const std::string& key_name, const json& constant, clsCfgConmut& cfg) {
  const std::string where = "constants." + key_name;
  int32_t key = 0;
  if (!EnumValueOf(EnumKind::kParamDatoConstante, key_name, &key) ||
      key <= velqua::emPrimerParamDatoConstante || key >= velqua::emUltimoParamDatoConstante) {
    FailJson(where,
             "not a constant key (emDatoCteIdentificadorHorarioMatutinoFecha ... "
             "emDatoCteIdentNoContestada)");
  }
  CheckJsonMembers(constant, where, {"pos", "text", "size"});
  const std::u16string text = Text(constant, "text", where + ".", velqua::kTamTextoCte);
  if (text.empty()) FailJson(where + ".text", "missing or empty");
  cfg.CTEActivo(static_cast<velqua::emParamDatoConstante>(key));
  const int64_t pos = Integer(constant, "pos", where, 1, 255);
  const int64_t size = constant.contains("size") ? Integer(constant, "size", where, 1, 255)
                                                 : static_cast<int64_t>(text.size());
  RequireWithinRecord(pos, size, where);
  cfg.CTEPos(static_cast<uint8_t>(pos));
  cfg.Constante(text);
  if (constant.contains("size")) cfg.CTETam(static_cast<uint8_t>(size));
}

void ReadWiring(const json& wiring, clsCfgConmut& cfg) {
  CheckJsonMembers(wiring, "wiring", {"rj45", "db9", "db25"});
  for (const PortInfo& port : kPorts) {
    if (!wiring.contains(port.name)) continue;
    const std::string where = std::string("wiring.") + port.name;
    const json& pairs = wiring.at(port.name);
    if (!pairs.is_array()) FailJson(where, "must be a list of [switchPin, computerPin]");
    const int16_t first = port.port == velqua::emPuertoDB25 ? 2 : port.first_pin;
    for (size_t i = 0; i < pairs.size(); ++i) {
      const std::string at = where + "[" + std::to_string(i) + "]";
      const json& pair = pairs[i];
      if (!pair.is_array() || pair.size() != 2 || !pair[0].is_number_integer() ||
          !pair[1].is_number_integer()) {
        FailJson(at, "must be [switchPin, computerPin]");
      }
      const int64_t pin = pair[0].get<int64_t>();
      const int64_t pc = pair[1].get<int64_t>();
      if (pin < first || pin > port.last_pin) {
        FailJson(at, "switch pin must be " + std::to_string(first) + " to " +
                         std::to_string(port.last_pin));
      }
      if (pc < 1 || pc > kLastComputerPin) FailJson(at, "computer pin must be 1 to 31");
      cfg.ActivaPin(port.port, static_cast<int16_t>(pin), static_cast<int16_t>(pc));
    }
  }
}

}  // namespace

namespace {

// The whole JSON form; `extra` (members with their trailing ",\n") goes after
// the comments.
std::string WriteForm(const clsCfgConmut& cfg, const std::string& extra) {
  std::string out = "{\n";
  out += "  \"brand\": " + Quote(U8(cfg.Marca())) + ",\n";
  out += "  \"model\": " + Quote(U8(cfg.Modelo())) + ",\n";
  const char* case_name = EnumNameOf(EnumKind::kCaso, cfg.Caso());
  out += "  \"case\": " + (case_name != nullptr ? Quote(case_name) : std::to_string(cfg.Caso())) +
         ",\n";
  out += "  \"separator\": " + Quote(U8(cfg.Separador())) + ",\n";
  out += "  \"comments\": " + Quote(U8(cfg.Comentarios())) + ",\n";
  out += extra;
  WriteFields(cfg, out);
  WriteConstants(cfg, out);
  WriteWiring(cfg, out);
  out += "}\n";
  return out;
}

json Parse(std::string_view json_text) {
  try {
    return json::parse(json_text.begin(), json_text.end());
  } catch (const json::parse_error& e) {
    // nlohmann's message ends with the position; keep only its last clause.
    std::string message = e.what();
    const size_t colon = message.find("parse error");
    throw Failure("not valid JSON: " +
                  (colon == std::string::npos ? message : message.substr(colon)));
  } catch (const json::out_of_range&) {
    // A number no double holds (400 digits, 1e400) fails while parsing.
    throw Failure("not valid JSON: a number too large to read");
  }
}

void ReadForm(const json& root, clsCfgConmut& cfg);

}  // namespace

std::string ConfigToJson(clsCfgConmut& cfg) { return WriteForm(cfg, ""); }

std::string SwitchConfigToJson(clsCfgConmut& cfg, const RecordForm& form,
                               const std::string& delivery) {
  std::string extra;
  if (!delivery.empty()) extra += "  \"delivery\": " + Quote(delivery) + ",\n";
  const std::string records = RecordFormToJson(form);
  if (!records.empty()) extra += "  \"records\": " + records + ",\n";
  return WriteForm(cfg, extra);
}

void ConfigFromJson(std::string_view json_text, clsCfgConmut& cfg) {
  RecordForm form;  // checked, then dropped
  std::string delivery;
  SwitchConfigFromJson(json_text, cfg, &form, &delivery);
}

void SwitchConfigFromJson(std::string_view json_text, clsCfgConmut& cfg, RecordForm* form,
                          std::string* delivery) {
  const json root = Parse(json_text);
  ReadForm(root, cfg);
  *form = root.contains("records") ? RecordFormFromJson(root.at("records")) : RecordForm();
  delivery->clear();
  if (root.contains("delivery")) {
    if (!root.at("delivery").is_string()) FailJson("delivery", "must be a string");
    *delivery = root.at("delivery").get<std::string>();
  }
}

namespace {

void ReadForm(const json& root, clsCfgConmut& cfg) {
  CheckJsonMembers(root, "",
                   {"brand", "model", "case", "separator", "comments", "delivery", "records",
                    "fields", "constants", "wiring"});
  cfg.Marca(Text(root, "brand", "", static_cast<size_t>(velqua::kTamMarca)));
  cfg.Modelo(Text(root, "model", "", static_cast<size_t>(velqua::kTamModelo)));
  if (root.contains("case")) {
    const int32_t handling = EnumValue(root.at("case"), EnumKind::kCaso, "case");
    if (EnumNameOf(EnumKind::kCaso, handling) == nullptr) {
      FailJson("case", "unknown handling case " + std::to_string(handling) + " (known: 0 to 12)");
    }
    cfg.Caso(static_cast<velqua::emCasos>(handling));
  }
  cfg.Separador(Text(root, "separator", "", static_cast<size_t>(cfg.TamMaxSeparador())));
  cfg.Comentarios(Text(root, "comments", "", static_cast<size_t>(cfg.TamMaxComentarios())));
  if (root.contains("fields")) {
    const json& fields = root.at("fields");
    if (!fields.is_object()) FailJson("fields", "must be an object");
    for (auto it = fields.begin(); it != fields.end(); ++it) ReadField(it.key(), *it, cfg);
  }
  if (root.contains("constants")) {
    const json& constants = root.at("constants");
    if (!constants.is_object()) FailJson("constants", "must be an object");
    for (auto it = constants.begin(); it != constants.end(); ++it) {
      ReadConstant(it.key(), *it, cfg);
    }
  }
  if (root.contains("wiring")) ReadWiring(root.at("wiring"), cfg);
  cfg.DATOActivo(velqua::emNoParamDato);
  cfg.CTEActivo(velqua::emNoParamDatoConstante);
  cfg.Modificado(false);
}

}  // namespace
}  // namespace velqua_records
