// A draft configuration proposed from sample records alone, for a switch that
// no configuration describes yet: where the date, the time of day, the
// duration, the ring time, the numbers, the extension and the trunk stand,
// whether the records are delimited, and which printed marks tell incoming
// from outgoing calls. Each proposal carries its evidence (how many samples
// agree); what the samples do not show is left out rather than invented.
// `velqua config guess` prints it; the user reviews it with `config check`.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velqua/records/record_form.h"

namespace velqua_records {

// What a proposed field holds; a datum may fill several keys of the library
// (the number of incoming, outgoing and internal calls in one column).
enum class Datum {
  kDay,
  kMonth,
  kYear,
  kHour,
  kMinute,
  kSecond,
  kDurationHours,
  kDurationMinutes,
  kDurationSeconds,
  kRingHours,
  kRingMinutes,
  kRingSeconds,
  kNumberIn,        // the caller's number of an incoming call
  kNumberOut,       // the number dialled on an outgoing call
  kNumberInternal,  // the extension dialled on an internal call
  kExtensionIn,
  kExtensionOut,
  kExtensionInternal,  // the calling extension of an internal call
  kCalledExtension,    // the called extension of an internal call
  kTrunkIn,
  kTrunkOut,
  kAccountCode,
};

// The English words of a datum ("date day", "number dialled (outgoing)").
const char* DatumWords(Datum datum);

// The datum a key of the library's field table (emParamDato) holds, whatever
// its transfer phase; false for keys no proposal fills (start/end date keys
// of cases 5 and 8, trunk-to-trunk calls).
bool DatumOfKey(int32_t key, Datum* datum);

struct GuessedField {
  Datum datum;
  int pos = 0;  // 1-based column of the (shaped) line
  int size = 0;
  bool numeric = true;  // numeric (digits kept) or string
  int agree = 0;        // samples that show it
  std::string evidence;
};

struct GuessedMark {
  int32_t key = 0;  // emParamDatoConstante
  int pos = 0;
  std::u16string text;
  int agree = 0;
  std::string evidence;
};

struct Guess {
  int samples = 0;  // records looked at (page headings and blank lines excluded)
  RecordForm form;  // delimited records and page headings, when seen
  std::vector<GuessedField> fields;
  std::vector<GuessedMark> marks;
  int32_t handling_case = 1;       // 7 (outgoing by default) when no direction mark is seen
  std::vector<std::string> notes;  // what could not be told, and why
};

// Proposes a layout from sample lines (decoded, without line ends). Lines
// without any digit are taken as page headings and proposed as patterns.
Guess GuessLayout(const std::vector<std::u16string>& lines);

// The draft in the JSON form (config_json.h), with `brand` and `model`, the
// evidence summed up in the comments; SwitchConfigToJson's text.
std::string GuessToJson(const Guess& guess, const std::string& brand, const std::string& model);

// How a draft compares with a known configuration of the same switch: the
// known configuration's data fields the draft holds exactly (same datum, same
// position and width). For delimited records a position is the field's
// number and the columns within it, and a datum filling a whole field in
// both counts whatever width each declares (the width of a whole field is a
// choice, not something the samples show).
struct GuessScore {
  int found = 0;
  int total = 0;
  int by_rule = 0;  // fields the known configuration reads by rule: no guess finds them
  std::vector<std::string> missed;  // "emParamFechaDia 4-5", ...
};
GuessScore ScoreGuess(const Guess& guess, const std::string& known_json);

}  // namespace velqua_records
