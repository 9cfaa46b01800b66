// What the layout editor asks of the record road: a configuration's files as
// bytes, sample records translated as `velqua translate` prints them with the
// reason for every row left unrecognised, a draft guessed from samples, and
// the catalogue of keys and cases the page offers. The page holds no layout
// rule of its own: every answer it shows comes from here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/records/config_io.h"
#include "velqua/records/row_writer.h"
#include "velqua/records/translation.h"

namespace velqua_records {

// The configuration as the file `velqua config convert` writes in `format`,
// byte for byte: the JSON form with its record form and delivery, the binary
// .cfg or the profile .ini. A form that cannot hold the whole configuration
// (delimited records in a .cfg, a case other than 1 in a .ini) is refused
// with Failure naming the first difference, as convert refuses it without
// --force. Leaves the configuration unchanged (Modificado included).
std::string ConfigBytes(SwitchConfig& config, ConfigFormat format);

// A configuration from the bytes of a file in `format` (an upload), read as
// LoadSwitchConfig reads the file. Throws Failure for JSON at fault and
// velqua::Error for a .cfg or .ini the library refuses.
SwitchConfig ConfigFromBytes(std::string_view bytes, ConfigFormat format);

// How one row of a preview came out.
enum class RowStatus {
  kTranslated,
  kUnrecognised,  // no call type: the reasons say which marks were tested
  kDamaged,       // a type, but fields that cannot be a call's (hour 27)
  kFailed,        // the library failed on the record
};

// "translated", "unrecognised", "damaged", "failed".
const char* RowStatusWord(RowStatus status);

struct PreviewRow {
  int64_t sample = 0;  // 0-based index of the sample line the record starts on
  RowStatus status = RowStatus::kTranslated;
  std::string line;                  // the row as translate prints it
  std::string record;                // the record as translated (shaped when delimited)
  std::vector<std::string> reasons;  // why a row is not translated, one sentence each
};

struct Preview {
  std::vector<std::string> header;  // the output form's heading lines (none for JSON Lines)
  std::vector<PreviewRow> rows;     // one per record, in order
  Counts counts;
};

// Translates sample lines (UTF-8, without line ends) with `config` as
// `velqua translate --format FORMAT --year YEAR` prints them: page headings
// skipped, delimited records shaped, the lines of a multi-line call gathered
// into one row. An unrecognised row carries the reasons `velqua config check`
// gives; a damaged or failed one its error. `year` is the year of records
// whose switch prints none (0: this year). The configuration is read, never
// changed, apart from its active keys.
Preview PreviewSamples(const SwitchConfig& config, const std::vector<std::string>& lines,
                       RowFormat format, int32_t year);

// The draft `velqua config guess` writes for sample lines (UTF-8, empty lines
// skipped, at most the first 5,000 looked at), in the JSON form.
std::string GuessFromSamples(const std::vector<std::string>& lines, const std::string& brand,
                             const std::string& model);

// Every handling case, data-field key, constant key and value type with its
// English meaning, as a JSON object: {"cases": [{"value", "name",
// "description"}...], "fields": [...], "constants": [...], "types": [...]},
// in the library's order.
std::string EditorCatalogJson();

}  // namespace velqua_records
