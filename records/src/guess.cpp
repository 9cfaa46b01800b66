// Proposing a layout from sample records. The samples are read in three
// passes: what frames them (delimited fields, NUL ends, 7-bit bytes, lines
// without digits that are page headings), the shapes of dates and times
// column by column, then the runs of text left between them, grouped by the
// column they start or end at and told apart by what they hold.
#include "velqua/records/guess.h"

#include <algorithm>
#include <map>

#include "guess_internal.h"

namespace velqua_records {
namespace guess {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool HasDigit(Text line) { return std::any_of(line.begin(), line.end(), IsDigit); }

int Value(Text line, size_t at, size_t n) {
  int value = 0;
  for (size_t i = at; i < at + n && i < line.size(); ++i) {
    if (IsDigit(line[i])) value = value * 10 + (line[i] - u'0');
  }
  return value;
}

namespace {

struct Shape {
  const char16_t* text;
  bool date;
};

// Longest first: at each column the first shape that fits is taken.
constexpr Shape kShapes[] = {
    {u"9999/99/99", true}, {u"9999-99-99", true}, {u"99/99/9999", true}, {u"99.99.9999", true},
    {u"99/99/99", true},   {u"99.99.99", true},   {u"99-99-99", true},   {u"99:99:99.9", false},
    {u"99:99:99", false},  {u"99:99'99", false},  {u"9:99:99", false},   {u"99/99", true},
    {u"99:99", false},     {u"9'99", false},
};

// Whether `shape` (9 = a digit, other characters themselves) stands at
// line[at], not preceded by a digit unless a shape ends there (switches that
// print fields without blanks between them run a date into a time).
bool ShapeAt(Text line, size_t at, std::u16string_view shape, bool after_shape) {
  if (at + shape.size() > line.size()) return false;
  if (at > 0 && IsDigit(line[at - 1]) && !after_shape) return false;
  for (size_t i = 0; i < shape.size(); ++i) {
    if (shape[i] == u'9' ? !IsDigit(line[at + i]) : line[at + i] != shape[i]) return false;
  }
  return true;
}

}  // namespace

std::vector<ShapeGroup> FindShapes(const std::vector<std::u16string>& lines) {
  std::map<std::pair<int, int>, ShapeGroup> groups;  // (column, shape) -> lines
  for (size_t n = 0; n < lines.size(); ++n) {
    const Text line = lines[n];
    size_t last_end = 0;
    for (size_t at = 0; at < line.size();) {
      size_t taken = 1;
      for (size_t s = 0; s < std::size(kShapes); ++s) {
        const std::u16string_view shape = kShapes[s].text;
        if (!ShapeAt(line, at, shape, at > 0 && at == last_end)) continue;
        ShapeGroup& group = groups[{static_cast<int>(at) + 1, static_cast<int>(s)}];
        group.col = static_cast<int>(at) + 1;
        group.shape = shape;
        group.date = kShapes[s].date;
        group.lines.push_back(static_cast<int>(n));
        taken = shape.size();
        last_end = at + taken;
        break;
      }
      at += taken;
    }
  }
  std::vector<ShapeGroup> out;
  for (auto& entry : groups) out.push_back(std::move(entry.second));
  return out;
}

}  // namespace guess

const char* DatumWords(Datum datum) {
  static const char* const kWords[] = {
      "date day",           "date month",        "date year",
      "time hours",         "time minutes",      "time seconds",
      "duration hours",     "duration minutes",  "duration seconds",
      "ring hours",         "ring minutes",      "ring seconds",
      "number (incoming)",  "number (outgoing)", "number (internal)",
      "extension (in)",     "extension (out)",   "extension (internal, calling)",
      "extension (called)", "trunk (in)",        "trunk (out)",
      "account code",
  };
  return kWords[static_cast<int>(datum)];
}

bool DatumOfKey(int32_t key, Datum* datum) {
  // Keys 2-17 in order, then the number, extension and trunk keys by call
  // type; the transfer phases of a key hold the same datum.
  static const Datum kFirst[] = {
      Datum::kDay,           Datum::kMonth,           Datum::kYear,
      Datum::kHour,          Datum::kMinute,          Datum::kSecond,
      Datum::kDay,           Datum::kMonth,           Datum::kYear,
      Datum::kDurationHours, Datum::kDurationMinutes, Datum::kDurationSeconds,
      Datum::kRingHours,     Datum::kRingMinutes,     Datum::kRingSeconds,
      Datum::kAccountCode,
  };
  if (key >= 8 && key <= 10) return false;  // the end date of cases 5 and 8
  if (key >= 2 && key <= 17) {
    *datum = kFirst[key - 2];
    return true;
  }
  static const std::map<int32_t, Datum> kByKey = {
      {18, Datum::kNumberIn},          {19, Datum::kNumberOut},
      {20, Datum::kNumberInternal},    {22, Datum::kNumberIn},
      {23, Datum::kNumberIn},          {24, Datum::kNumberOut},
      {25, Datum::kNumberOut},         {26, Datum::kNumberInternal},
      {27, Datum::kNumberInternal},    {54, Datum::kNumberIn},
      {55, Datum::kNumberOut},         {56, Datum::kNumberInternal},
      {30, Datum::kTrunkIn},           {31, Datum::kExtensionIn},
      {32, Datum::kTrunkOut},          {33, Datum::kExtensionOut},
      {34, Datum::kExtensionInternal}, {35, Datum::kCalledExtension},
      {38, Datum::kTrunkIn},           {39, Datum::kExtensionIn},
      {40, Datum::kTrunkIn},           {41, Datum::kExtensionIn},
      {42, Datum::kTrunkOut},          {43, Datum::kExtensionOut},
      {44, Datum::kTrunkOut},          {45, Datum::kExtensionOut},
      {46, Datum::kExtensionInternal}, {47, Datum::kCalledExtension},
      {48, Datum::kExtensionInternal}, {49, Datum::kCalledExtension},
      {58, Datum::kTrunkIn},           {59, Datum::kExtensionIn},
      {60, Datum::kTrunkOut},          {61, Datum::kExtensionOut},
      {62, Datum::kExtensionInternal}, {63, Datum::kCalledExtension},
  };
  const auto it = kByKey.find(key);
  if (it == kByKey.end()) return false;
  *datum = it->second;
  return true;
}

Guess GuessLayout(const std::vector<std::u16string>& lines) {
  Guess guess;
  std::vector<std::u16string> records = guess::Frame(lines, &guess);
  guess.samples = static_cast<int>(records.size());
  if (records.empty()) {
    guess.notes.push_back("no record with a digit: nothing to go by");
    return guess;
  }
  guess::Placed placed;
  guess::DatesAndTimes(records, &guess, &placed);
  guess::TextRuns(records, &guess, &placed);
  std::stable_sort(guess.fields.begin(), guess.fields.end(),
                   [](const GuessedField& a, const GuessedField& b) { return a.pos < b.pos; });
  return guess;
}

}  // namespace velqua_records
