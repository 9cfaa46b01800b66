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
    if (!IsDigit(line[i])) continue;
    // A longer run (a dialled number read where a count was expected) stays
    // at the cap: comparisons still order it, and value + 1 cannot overflow.
    value = value > kValueCap / 10 ? kValueCap : value * 10 + (line[i] - u'0');
  }
  return value;
}

bool Has(const Guess& guess, Datum datum) {
  return std::any_of(guess.fields.begin(), guess.fields.end(),
                     [datum](const GuessedField& f) { return f.datum == datum; });
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
  // A clock may follow a count of seconds printed without a blank; a date is
  // never followed by a colon (that is a date running into a time).
  const bool clock = shape.find(u':') != std::u16string_view::npos;
  if (at > 0 && IsDigit(line[at - 1]) && !after_shape && !clock) return false;
  if (!clock && at + shape.size() < line.size() && line[at + shape.size()] == u':') return false;
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
    bool last_date = false;
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
        group.after_date += last_date && at == last_end + 1 && !kShapes[s].date;
        taken = shape.size();
        last_end = at + taken;
        last_date = kShapes[s].date;
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
  // type; the transfer phases of a key hold the same datum. A call from trunk
  // to trunk dials out like an outgoing call: its number is the number out.
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
      {20, Datum::kNumberInternal},    {21, Datum::kNumberOut},
      {22, Datum::kNumberIn},          {28, Datum::kNumberOut},
      {29, Datum::kNumberOut},         {57, Datum::kNumberOut},
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

namespace {

using guess::Has;

// The delimited field to read as a count of seconds next: the duration when
// no clock shape gave one (the first such field), else the ring time when the
// field right after the duration may be one; `seconds` lists the candidates.
size_t NextSeconds(const Guess& guess, const guess::Placed& placed,
                   const std::vector<size_t>& seconds) {
  if (seconds.empty()) return std::string::npos;
  if (!Has(guess, Datum::kDurationMinutes)) return seconds.front();
  if (Has(guess, Datum::kRingMinutes)) return std::string::npos;
  for (const GuessedField& field : guess.fields) {
    if (field.datum != Datum::kDurationMinutes) continue;
    const int index = guess::FieldAt(placed, field.pos);
    const auto next = std::find(seconds.begin(), seconds.end(), static_cast<size_t>(index + 1));
    if (index >= 0 && next != seconds.end()) return *next;
  }
  return std::string::npos;
}

}  // namespace

Guess GuessLayout(const std::vector<std::u16string>& lines) {
  Guess base;
  std::vector<size_t> seconds;
  std::vector<int> titles;
  const std::vector<std::u16string> raw = guess::Frame(lines, &base, &seconds, &titles);
  std::sort(titles.begin(), titles.end());
  base.samples = static_cast<int>(raw.size());
  if (raw.empty()) {
    base.notes.push_back("no record with a digit: nothing to go by");
    return base;
  }
  Guess guess;
  for (;;) {
    guess = base;
    const std::vector<std::u16string> records = guess::ShapeAll(raw, guess.form);
    guess::Placed placed;
    placed.titles = titles;
    guess::DatesAndTimes(records, &guess, &placed);
    const size_t next =
        guess.form.delimited ? NextSeconds(guess, placed, seconds) : std::string::npos;
    if (next != std::string::npos) {
      // Read it as seconds and look again: its columns now show a clock.
      base.form.fields.fields[next].seconds = true;
      base.form.fields.fields[next].width = 9;
      seconds.erase(std::find(seconds.begin(), seconds.end(), next));
      continue;
    }
    guess::TextRuns(records, &guess, &placed);
    break;
  }
  std::stable_sort(guess.fields.begin(), guess.fields.end(),
                   [](const GuessedField& a, const GuessedField& b) { return a.pos < b.pos; });
  return guess;
}

}  // namespace velqua_records
