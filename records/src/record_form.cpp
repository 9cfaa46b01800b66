#include "velqua/records/record_form.h"

#include <algorithm>

#include "glob.h"

namespace velqua_records {
namespace {

// Appends `text` to *line cut or padded to `width` columns; a text that is cut
// is noted in *outcome.
void Put(std::u16string_view text, int width, std::u16string* line, ShapeOutcome* outcome) {
  const size_t w = static_cast<size_t>(width);
  const size_t n = std::min(text.size(), w);
  if (n < text.size()) {
    const std::u16string_view shaped = Trimmed(text.substr(0, n)), whole = Trimmed(text);
    if (shaped != whole) outcome->cut.emplace_back(shaped, whole);
  }
  line->append(text.data(), n);
  line->append(w - n, u' ');
}

// Appends a whole number of seconds as H:MM:SS right-aligned in `width`
// columns, or `width` blanks when `text` is not such a number or its hours
// do not fit.
void PutSeconds(std::u16string_view text, int width, std::u16string* line) {
  const size_t first = text.find_first_not_of(u' ');
  const size_t last = text.find_last_not_of(u' ');
  const std::u16string_view digits =
      first == std::u16string_view::npos ? u"" : text.substr(first, last - first + 1);
  bool ok = !digits.empty() && digits.size() <= 9;
  long long value = 0;
  for (char16_t c : digits) {
    ok = ok && c >= u'0' && c <= u'9';
    if (ok) value = value * 10 + (c - u'0');
  }
  std::string hours = std::to_string(value / 3600);
  const size_t hour_columns = static_cast<size_t>(width) - 6;
  if (!ok || hours.size() > hour_columns) {
    line->append(static_cast<size_t>(width), u' ');
    return;
  }
  const long long minutes = value / 60 % 60, seconds = value % 60;
  std::string shaped(hour_columns - hours.size(), ' ');
  shaped += hours;
  shaped += ':';
  shaped += static_cast<char>('0' + minutes / 10);
  shaped += static_cast<char>('0' + minutes % 10);
  shaped += ':';
  shaped += static_cast<char>('0' + seconds / 10);
  shaped += static_cast<char>('0' + seconds % 10);
  line->append(shaped.begin(), shaped.end());
}

// Reads the field starting at record[*at] into *field (unquoted), leaving *at
// on its separator or at the end.
void NextField(const DelimitedForm& form, std::u16string_view record, size_t* at,
               std::u16string* field) {
  field->clear();
  size_t i = *at;
  if (form.quote != u'\0' && i < record.size() && record[i] == form.quote) {
    for (++i; i < record.size(); ++i) {
      if (record[i] != form.quote) {
        field->push_back(record[i]);
      } else if (i + 1 < record.size() && record[i + 1] == form.quote) {
        field->push_back(form.quote);
        ++i;
      } else {
        ++i;
        break;
      }
    }
  }
  const size_t end = std::min(record.find(form.separator, i), record.size());
  field->append(record.substr(i, end - i));
  *at = end;
}

}  // namespace

ShapeOutcome ShapeDelimited(const DelimitedForm& form, std::u16string_view record,
                            std::u16string* line) {
  line->clear();
  ShapeOutcome outcome;
  // The fields' texts are kept only when derived fields read them.
  thread_local std::vector<std::u16string> texts;
  const bool keep = !form.derived.empty();
  if (keep) texts.resize(form.fields.size());
  std::u16string field;
  size_t at = 0;
  bool end = false;
  for (size_t i = 0; i < form.fields.size(); ++i) {
    const DelimitedField& declared = form.fields[i];
    if (!end) {
      NextField(form, record, &at, &field);
      ++outcome.fields;
      end = at >= record.size();
      ++at;  // past the separator
    } else {
      field.clear();
      outcome.fewer = true;
    }
    if (keep) texts[i] = field;
    if (declared.width == 0) continue;
    if (declared.seconds) {
      PutSeconds(field, declared.width, line);
    } else {
      Put(field, declared.width, line, &outcome);
    }
    line->push_back(u' ');
  }
  while (!end) {  // fields beyond those declared are only counted
    outcome.more = true;
    NextField(form, record, &at, &field);
    ++outcome.fields;
    end = at >= record.size();
    ++at;
  }
  if (keep) {  // each derived field may read the declared ones and those before it
    thread_local std::vector<std::u16string> values;
    thread_local std::vector<std::u16string_view> views;
    values.resize(form.derived.size());
    views.assign(texts.begin(), texts.end());
    for (size_t i = 0; i < form.derived.size(); ++i) {
      values[i] = form.derived[i].Value(views);
      views.push_back(values[i]);
      Put(values[i], form.derived[i].width, line, &outcome);
      line->push_back(u' ');
    }
    for (const DerivedField& derived : form.derived) derived.Remember(views);
  }
  if (!line->empty()) line->pop_back();  // no blank after the last field
  return outcome;
}

std::vector<int> ShapedColumns(const DelimitedForm& form, int* width) {
  std::vector<int> columns;
  int next = 1;
  for (const DelimitedField& field : form.fields) {
    columns.push_back(next);
    if (field.width > 0) next += field.width + 1;
  }
  for (const DerivedField& field : form.derived) {
    columns.push_back(next);
    next += field.width + 1;
  }
  *width = next > 1 ? next - 2 : 0;
  return columns;
}

std::u16string_view Trimmed(std::u16string_view text) {
  const size_t first = text.find_first_not_of(u' ');
  if (first == std::u16string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

bool MatchesPattern(std::u16string_view pattern, std::u16string_view text) {
  return MatchesGlob(pattern, text);
}

bool RecordForm::IsHeading(std::u16string_view line) const {
  for (const std::u16string& pattern : headings) {
    if (MatchesPattern(pattern, line)) return true;
  }
  return false;
}

void RecordForm::Join(std::u16string_view line, std::u16string* record) const {
  const size_t before = static_cast<size_t>(continuation_column > 0 ? continuation_column - 1 : 0);
  if (record->size() < before) record->resize(before, u' ');
  record->append(line.data(), line.size());
}

std::vector<std::pair<std::string, std::u16string>> CutExtras(const std::vector<ExtraField>& extras,
                                                              std::u16string_view record) {
  std::vector<std::pair<std::string, std::u16string>> out;
  out.reserve(extras.size());
  for (const ExtraField& e : extras) {
    const size_t from = static_cast<size_t>(e.column - 1);
    const std::u16string_view cut =
        from < record.size() ? record.substr(from, static_cast<size_t>(e.width)) : u"";
    out.emplace_back(e.name, std::u16string(Trimmed(cut)));
  }
  return out;
}

void RecordForm::RewriteCounts(std::u16string* record) const {
  for (const SecondsCount& count : seconds_counts) {
    const size_t from = static_cast<size_t>(count.column - 1);
    const size_t width = static_cast<size_t>(count.width);
    if (from >= record->size()) continue;
    const std::u16string_view cut = Trimmed(std::u16string_view(*record).substr(from, width));
    if (cut.size() <= count.mark.size() || cut.substr(0, count.mark.size()) != count.mark) {
      continue;  // a clock, or nothing: left as printed
    }
    std::u16string shaped;
    PutSeconds(cut.substr(count.mark.size()), count.width, &shaped);
    if (record->size() < from + width) record->resize(from + width, u' ');
    record->replace(from, width, shaped);
  }
}

std::string RecordForm::Describe() const {
  std::string text = delimited ? "delimited (" + std::to_string(fields.fields.size()) + " fields)"
                               : "fixed columns";
  if (!fields.derived.empty()) {
    text += " + " + std::to_string(fields.derived.size()) + " by rule";
  }
  if (!headings.empty()) {
    text += " + " + std::to_string(headings.size()) + " heading pattern" +
            (headings.size() == 1 ? "" : "s");
  }
  if (nul_ends_record) text += " + NUL record ends";
  if (!continuation.empty()) text += " + continuation lines";
  if (seven_bit) text += " + 7-bit";
  if (!seconds_counts.empty()) text += " + counts of seconds";
  if (printed_time == PrintedTime::kEnd) text += " + end times";
  if (!extras.empty()) {
    text +=
        " + " + std::to_string(extras.size()) + " extra field" + (extras.size() == 1 ? "" : "s");
  }
  return text;
}

}  // namespace velqua_records
