// Pass 1 of the layout guess: what frames the records.
#include <algorithm>
#include <map>

#include "guess_internal.h"

namespace velqua_records {
namespace guess {
namespace {

// Separators a delimited record may use, most common first.
constexpr char16_t kSeparators[] = {u',', u';', u'\t', u'|'};
constexpr size_t kMaxWidth = 32;  // a wider text field is cut to this in the shaped line
// What the JSON form takes: heading patterns and delimited fields.
constexpr size_t kMaxHeadings = 100;
constexpr size_t kMaxFields = 1000;

}  // namespace

std::u16string HeadingPattern(Text line) {
  // A heading pushed right (a page number, a date) is matched by its text.
  const size_t first = line.find_first_not_of(u' ');
  const bool indented = first != Text::npos && first >= 10;
  const Text text = indented ? line.substr(first) : line;
  std::u16string pattern = indented ? u"*" : u"";
  // A digit may change from page to page; a printed * or ? is matched by ?.
  for (char16_t c : text.substr(0, 40)) {
    pattern += IsDigit(c) || c == u'*' || c == u'?' ? u'?' : c;
  }
  if (text.size() > 40) pattern += u'*';
  return pattern;
}

namespace {

// Clears bit 7 when the lines look like a 7-bit switch read as 8 bits: bit 7
// is parity then, set on a large share of the bytes of each line it is set on
// (about half of them, or all), and every byte is plain text without it. A
// line with a few bytes over 0x7F among plain ones holds 8-bit letters (a
// caller's name), which clearing would corrupt.
constexpr size_t kParityShare = 5;  // at least one byte in 5 with bit 7 set

bool StripSevenBit(std::vector<std::u16string>* lines) {
  bool any = false;
  for (const std::u16string& line : *lines) {
    size_t high = 0;
    for (char16_t c : line) {
      if (c >= 0x100) return false;
      if (c < 0x80) continue;
      const char16_t low = static_cast<char16_t>(c & 0x7F);
      if (low < 0x20 && low != u'\f' && low != u'\t') return false;
      ++high;
    }
    if (high > 0 && high * kParityShare < line.size()) return false;
    any = any || high > 0;
  }
  if (!any) return false;
  for (std::u16string& line : *lines) {
    for (char16_t& c : line) c = static_cast<char16_t>(c & 0x7F);
  }
  return true;
}

// The number of fields of `line` when split by `separator` (quotes honoured).
size_t FieldCount(Text line, char16_t separator) {
  std::u16string shaped;
  return ShapeDelimited({separator, u'"', {}, {}}, line, &shaped).fields;
}

// The field count a separator gives the records, or 0 when it does not split
// them into records of four fields or more: the count most records share
// (three in five), else, when four in five records have four fields or more
// but their counts differ (a switch that prints more fields in some records
// than in others), the largest count one record in ten reaches.
size_t FieldCountFor(const std::vector<std::u16string>& records, char16_t separator) {
  if (records.empty()) return 0;
  std::map<size_t, size_t> counts;
  for (const std::u16string& record : records) ++counts[FieldCount(record, separator)];
  const auto mode = std::max_element(counts.begin(), counts.end(),
                                     [](auto& a, auto& b) { return a.second < b.second; });
  if (mode->first >= 4 && mode->second * 5 >= records.size() * 3) return mode->first;
  size_t wide = 0;
  for (const auto& [count, n] : counts) wide += count >= 4 ? n : 0;
  if (wide * 5 < records.size() * 4) return 0;
  size_t reached = 0;
  for (auto it = counts.rbegin(); it != counts.rend(); ++it) {
    reached += it->second;
    if (reached * 10 >= records.size()) return it->first;
  }
  return 0;
}

// The separator and field count of delimited records, or none (0).
std::pair<char16_t, size_t> Delimiter(const std::vector<std::u16string>& records) {
  std::pair<char16_t, size_t> best{u'\0', 0};
  for (char16_t separator : kSeparators) {
    const size_t count = FieldCountFor(records, separator);
    if (count >= 4 && count <= kMaxFields && count > best.second) best = {separator, count};
  }
  return best;
}

// The values of field `index` of each record (unquoted, trimmed).
std::vector<std::u16string> FieldValues(const std::vector<std::u16string>& records,
                                        const DelimitedForm& form, size_t index) {
  DelimitedForm one = form;
  for (DelimitedField& field : one.fields) field.width = 0;
  one.fields[index].width = 255;
  std::vector<std::u16string> values;
  std::u16string shaped;
  for (const std::u16string& record : records) {
    ShapeDelimited(one, record, &shaped);
    values.push_back(Trim(shaped));
  }
  return values;
}

bool AllDigits(Text text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

// A field that may be whole seconds: plain numbers, some under a minute, not
// all 0 or 1, not a counter that goes up by one from record to record (a
// record number).
bool IsSeconds(const std::vector<std::u16string>& values) {
  int high = -1, low = 1 << 30, previous = -2;
  size_t other = 0, present = 0;
  bool counter = true, any = false;
  for (const std::u16string& value : values) {
    if (value.empty()) continue;
    ++present;
    // A record whose fields shifted may show something else here.
    if (!AllDigits(value)) {
      ++other;
      continue;
    }
    if (value.size() > 6 || (value.size() > 1 && value[0] == u'0')) return false;
    const int v = Value(value, 0, value.size());
    counter = counter && (previous == -2 || v == previous + 1);
    previous = v;
    high = std::max(high, v);
    low = std::min(low, v);
    any = true;
  }
  return any && other * 5 <= present && high >= 2 && low < 60 && !counter;
}

// Declares the fields of a delimited form: text fields as wide as their
// longest sample (at most 32), fields with no digit and many values (names)
// left out. Fields that may be counts of seconds are listed in *seconds.
DelimitedForm DeclareFields(const std::vector<std::u16string>& records, char16_t separator,
                            size_t count, Guess* guess, std::vector<size_t>* seconds) {
  DelimitedForm form{separator, u'"', std::vector<DelimitedField>(count), {}};
  std::vector<std::vector<std::u16string>> values;
  for (size_t i = 0; i < count; ++i) values.push_back(FieldValues(records, form, i));
  for (size_t i = 0; i < count; ++i) {
    DelimitedField& field = form.fields[i];
    field.name = "field " + std::to_string(i + 1);
    size_t longest = 0, digits = 0;
    std::vector<std::u16string> distinct;
    for (const std::u16string& value : values[i]) {
      longest = std::max(longest, value.size());
      digits += HasDigit(value);
      if (std::find(distinct.begin(), distinct.end(), value) == distinct.end()) {
        distinct.push_back(value);
      }
    }
    if (IsSeconds(values[i])) seconds->push_back(i);
    if (longest > 0 && (digits > 0 || (longest <= 12 && distinct.size() <= 8))) {
      field.width = static_cast<int>(std::min(longest, kMaxWidth));
    }
  }
  // Two counts of seconds side by side, the second never above the first:
  // the first is the whole call with its ringing, the second the talk time.
  const auto listed = [seconds](size_t i) {
    return std::find(seconds->begin(), seconds->end(), i) != seconds->end();
  };
  for (size_t i = 0; i + 1 < count; ++i) {
    if (!listed(i) || !listed(i + 1)) continue;
    bool below = true;
    for (size_t r = 0; r < records.size(); ++r) {
      below = below && Value(values[i + 1][r], 0, values[i + 1][r].size()) <=
                           Value(values[i][r], 0, values[i][r].size());
    }
    if (!below) continue;
    form.fields[i] = {form.fields[i].name, 0, false};
    seconds->erase(std::find(seconds->begin(), seconds->end(), i));
    // The talk time is the duration before any other count of seconds.
    seconds->erase(std::find(seconds->begin(), seconds->end(), i + 1));
    seconds->insert(seconds->begin(), i + 1);
    guess->notes.push_back(form.fields[i].name + " left out: a count of seconds never below " +
                           form.fields[i + 1].name + ", read as the whole call with its ringing");
  }
  return form;
}

}  // namespace

std::vector<std::u16string> Frame(const std::vector<std::u16string>& lines, Guess* guess,
                                  std::vector<size_t>* seconds, std::vector<int>* titles) {
  std::vector<std::u16string> pieces;
  for (const std::u16string& line : lines) {
    Text rest = line;
    guess->form.nul_ends_record = guess->form.nul_ends_record || rest.find(u'\0') != Text::npos;
    for (size_t end; (end = rest.find(u'\0')) != Text::npos; rest.remove_prefix(end + 1)) {
      if (end > 0) pieces.emplace_back(rest.substr(0, end));
    }
    if (!rest.empty()) pieces.emplace_back(rest);
  }
  guess->form.seven_bit = StripSevenBit(&pieces);
  std::vector<std::u16string> records;
  for (std::u16string& piece : pieces) {
    const size_t first = piece.find_first_not_of(u' ');
    if (!HasDigit(piece)) {
      // Column titles start where the fields under them start.
      for (size_t i = 0; i < piece.size(); ++i) {
        const bool letter =
            (piece[i] >= u'A' && piece[i] <= u'Z') || (piece[i] >= u'a' && piece[i] <= u'z');
        if (letter && (i == 0 || piece[i - 1] == u' ')) titles->push_back(static_cast<int>(i) + 1);
      }
      const std::u16string pattern = HeadingPattern(piece);
      auto& headings = guess->form.headings;
      if (headings.size() < kMaxHeadings &&
          std::find(headings.begin(), headings.end(), pattern) == headings.end()) {
        headings.push_back(pattern);
      }
    } else if (first != std::u16string::npos && piece[first] == u'&' && !records.empty()) {
      guess->form.continuation = piece.substr(0, first + 1) + u"*";
      records.back() += u'\x01' + piece;  // joined once the column is known
    } else {
      records.push_back(std::move(piece));
    }
  }
  if (!guess->form.continuation.empty()) {
    // Past the longest record's own text, whether or not it has continuations.
    size_t longest = 0;
    for (const std::u16string& record : records) {
      longest = std::max(longest, std::min(record.find(u'\x01'), record.size()));
    }
    guess->form.continuation_column = static_cast<int>(std::min<size_t>(longest + 2, 255));
    for (std::u16string& record : records) {
      const size_t mark = record.find(u'\x01');
      if (mark == std::u16string::npos) continue;
      const std::u16string more = record.substr(mark + 1);
      record.resize(mark);
      guess->form.Join(more, &record);
    }
  }
  const auto [separator, count] = Delimiter(records);
  if (separator == u'\0') return records;
  guess->form.delimited = true;
  guess->form.continuation.clear();
  guess->form.fields = DeclareFields(records, separator, count, guess, seconds);
  return records;
}

std::vector<std::u16string> ShapeAll(const std::vector<std::u16string>& records,
                                     const RecordForm& form) {
  if (!form.delimited) return records;
  std::vector<std::u16string> shaped(records.size());
  for (size_t i = 0; i < records.size(); ++i) ShapeDelimited(form.fields, records[i], &shaped[i]);
  return shaped;
}

}  // namespace guess
}  // namespace velqua_records
