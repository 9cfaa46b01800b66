// The draft of a layout guess in the JSON form, and its score against a known
// configuration.
#include <memory>

#include "guess_internal.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/names.h"

namespace velqua_records {
namespace {

// The key of the library's field table a datum fills first (its plain call
// type, no transfer phase).
int32_t KeyOf(Datum datum) {
  static const int32_t kKeys[] = {2,  3,  4,  5,  6,  7,  11, 12, 13, 14, 15,
                                  16, 18, 19, 20, 31, 33, 34, 35, 30, 32, 17};
  return kKeys[static_cast<int>(datum)];
}

// Where a column of a shaped line lies: its field's number and the columns
// into that field (0-based), and whether the field is a count of seconds.
struct InField {
  int index = -1, offset = 0, width = 0;
  bool seconds = false;
};

InField Locate(const RecordForm& form, int pos) {
  int width = 0;
  const std::vector<int> columns = ShapedColumns(form.fields, &width);
  for (size_t i = 0; i < columns.size(); ++i) {
    const DelimitedField& field = form.fields.fields[i];
    if (field.width > 0 && pos >= columns[i] && pos < columns[i] + field.width) {
      return {static_cast<int>(i), pos - columns[i], field.width, field.seconds};
    }
  }
  return {};
}

bool SamePlace(const RecordForm& known, int pos, int size, const RecordForm& draft,
               const GuessedField& field) {
  if (known.delimited != draft.delimited) return false;
  if (!known.delimited) return pos == field.pos && size == field.size;
  const InField a = Locate(known, pos), b = Locate(draft, field.pos);
  if (a.index < 0 || a.index != b.index) return false;
  if (a.seconds && b.seconds) return true;  // hours, minutes, seconds of one count
  const bool whole_a = a.offset == 0 && size == a.width;
  const bool whole_b = b.offset == 0 && field.size == b.width;
  return a.offset == b.offset && (size == field.size || (whole_a && whole_b));
}

}  // namespace

std::string GuessToJson(const Guess& guess, const std::string& brand, const std::string& model) {
  velqua::clsCfgConmut cfg;
  cfg.Marca(U16(brand));
  cfg.Modelo(U16(model));
  cfg.Caso(static_cast<velqua::emCasos>(guess.handling_case));
  cfg.Separador(u"\r\n");
  cfg.Comentarios(U16("Draft proposed by velqua config guess from " +
                      std::to_string(guess.samples) +
                      " sample records: check every field with velqua config check."));
  for (const GuessedField& field : guess.fields) {
    if (field.pos < 1 || field.size < 1 || field.pos + field.size > 255) continue;
    // The number out serves trunk-to-trunk calls too: they dial out through
    // the second trunk. Without a trunk-to-trunk mark the draft never reads it.
    const int32_t trunk_to_trunk = 21;
    for (int32_t key :
         {KeyOf(field.datum), field.datum == Datum::kNumberOut ? trunk_to_trunk : 0}) {
      if (key == 0) continue;
      cfg.DATOActivo(static_cast<velqua::emParamDato>(key));
      cfg.TipoDatoDATO(field.numeric ? velqua::emValorNumerico : velqua::emValorCadena);
      cfg.DATOPos(static_cast<uint8_t>(field.pos));
      cfg.DATOTam(static_cast<uint8_t>(field.size));
    }
  }
  for (const GuessedMark& mark : guess.marks) {
    if (mark.pos < 1 || mark.pos + static_cast<int>(mark.text.size()) > 255) continue;
    // An in-transfer mark stands for both directions.
    for (int32_t key : {mark.key, mark.key == 24 ? 25 : mark.key}) {
      cfg.CTEActivo(static_cast<velqua::emParamDatoConstante>(key));
      cfg.CTEPos(static_cast<uint8_t>(mark.pos));
      cfg.Constante(mark.text);
    }
  }
  return SwitchConfigToJson(cfg, guess.form, "");
}

GuessScore ScoreGuess(const Guess& guess, const std::string& known_json) {
  velqua::clsCfgConmut cfg;
  RecordForm form;
  std::string delivery;
  SwitchConfigFromJson(known_json, cfg, &form, &delivery);
  GuessScore score;
  int width = 0;
  const std::vector<int> columns = ShapedColumns(form.fields, &width);
  // Derived fields come last: a field read from their columns is read by rule.
  const int first_derived =
      form.delimited && !form.fields.derived.empty() ? columns[form.fields.fields.size()] : 256;
  for (const velqua::CampoDATO& f : cfg.ListaDATO()) {
    const int32_t key = f.emParam;
    const int pos = f.btPos, size = f.btTam;
    if (pos >= first_derived) {
      ++score.by_rule;
      continue;
    }
    ++score.total;
    Datum datum{};
    bool found = false;
    if (DatumOfKey(key, &datum)) {
      for (const GuessedField& field : guess.fields) {
        found = found || (field.datum == datum && SamePlace(form, pos, size, guess.form, field));
      }
    }
    if (found) {
      ++score.found;
    } else {
      score.missed.push_back(std::string(EnumNameOf(EnumKind::kParamDato, key)) + " " +
                             std::to_string(pos) + "-" + std::to_string(pos + size - 1));
    }
  }
  return score;
}

}  // namespace velqua_records
