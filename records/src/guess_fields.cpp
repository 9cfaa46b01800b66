// Passes 2 and 3 of the layout guess: dates and times, then the text runs.
#include <algorithm>
#include <map>

#include "guess_internal.h"

namespace velqua_records {
namespace guess {

bool Placed::Taken(int col) const {
  return std::any_of(spans.begin(), spans.end(),
                     [col](const auto& s) { return col >= s.first && col <= s.second; });
}

int FieldAt(const Placed& placed, int col) {
  for (size_t i = 0; i < placed.delimited_fields.size(); ++i) {
    const auto [first, width] = placed.delimited_fields[i];
    if (width > 0 && col >= first && col < first + width) return static_cast<int>(i);
  }
  return -1;
}

namespace {

std::string Evidence(size_t agree, size_t samples, const std::string& what) {
  return std::to_string(agree) + " of " + std::to_string(samples) + " records " + what;
}

std::string Utf8(std::u16string_view text) {
  std::string out;
  for (char16_t c : text) out += c < 0x80 ? static_cast<char>(c) : '?';
  return out;
}

void Mark(const std::vector<int>& lines, Placed* placed) {
  for (int line : lines) placed->record_lines[static_cast<size_t>(line)] = true;
}

void Add(Guess* guess, Placed* placed, Datum datum, int pos, int size, size_t agree,
         const std::string& evidence) {
  guess->fields.push_back({datum, pos, size, true, static_cast<int>(agree), evidence});
  placed->spans.push_back({pos, pos + size - 1});
}

int Threshold(size_t samples, int percent) {
  return std::max(1, static_cast<int>((samples * static_cast<size_t>(percent) + 99) / 100));
}

// The date: the most common date shape, its order told by values above 12.
void PlaceDate(const std::vector<std::u16string>& records, const std::vector<ShapeGroup>& shapes,
               Guess* guess, Placed* placed) {
  const ShapeGroup* best = nullptr;
  for (const ShapeGroup& group : shapes) {
    if (group.date && (best == nullptr || group.lines.size() > best->lines.size())) best = &group;
  }
  if (best == nullptr || static_cast<int>(best->lines.size()) < Threshold(records.size(), 40)) {
    guess->notes.push_back("no date: no date shape in enough records");
    return;
  }
  Mark(best->lines, placed);
  const std::u16string_view shape = best->shape;
  const int c = best->col;
  const size_t n = best->lines.size();
  const std::string what = "show " + Utf8(shape) + " at column " + std::to_string(c);
  if (shape.substr(0, 4) == u"9999") {
    Add(guess, placed, Datum::kYear, c, 4, n, Evidence(n, records.size(), what));
    Add(guess, placed, Datum::kMonth, c + 5, 2, n, Evidence(n, records.size(), what));
    Add(guess, placed, Datum::kDay, c + 8, 2, n, Evidence(n, records.size(), what));
  } else {
    bool first_day = false, second_day = false;
    for (int line : best->lines) {
      first_day = first_day ||
                  Value(records[static_cast<size_t>(line)], static_cast<size_t>(c - 1), 2) > 12;
      second_day = second_day ||
                   Value(records[static_cast<size_t>(line)], static_cast<size_t>(c + 2), 2) > 12;
    }
    const bool day_first = first_day || (!second_day && shape[2] == u'.');
    const std::string order = first_day    ? "; a first part above 12: day first"
                              : second_day ? "; a second part above 12: month first"
                                           : (day_first ? "; dots: day first (no part above 12)"
                                                        : "; month first (no part above 12)");
    const std::string because = Evidence(n, records.size(), what + order);
    Add(guess, placed, day_first ? Datum::kDay : Datum::kMonth, c, 2, n, because);
    Add(guess, placed, day_first ? Datum::kMonth : Datum::kDay, c + 3, 2, n, because);
    if (shape.size() > 5) {
      Add(guess, placed, Datum::kYear, c + 6, shape.size() == 10 ? 4 : 2, n, because);
    } else {
      guess->notes.push_back("no year: the date prints day and month only");
    }
  }
}

// The share of a time group's records whose hours are 00.
double ZeroHours(const std::vector<std::u16string>& records, const ShapeGroup& group) {
  size_t zero = 0;
  for (int line : group.lines) {
    zero +=
        records[static_cast<size_t>(line)].substr(static_cast<size_t>(group.col) - 1, 2) == u"00";
  }
  return static_cast<double>(zero) / static_cast<double>(group.lines.size());
}

bool Overlaps(const Placed& placed, const ShapeGroup& group) {
  for (int col = group.col; col < group.col + static_cast<int>(group.shape.size()); ++col) {
    if (placed.Taken(col)) return true;
  }
  return false;
}

// Hours, minutes and seconds of a duration or ring group; inside a delimited
// field of seconds, the columns that field was shaped into.
void AddClock(const ShapeGroup& group, const Placed& placed, Datum hours, Guess* guess, Placed* out,
              const std::string& evidence) {
  Mark(group.lines, out);
  const size_t n = group.lines.size();
  const Datum minutes = static_cast<Datum>(static_cast<int>(hours) + 1);
  const Datum seconds = static_cast<Datum>(static_cast<int>(hours) + 2);
  for (size_t i = 0; i < placed.delimited_fields.size(); ++i) {
    const auto [fc, width] = placed.delimited_fields[i];
    if (!placed.seconds_fields[i] || group.col < fc || group.col >= fc + width) continue;
    Add(guess, out, hours, fc, width - 6, n, evidence);
    Add(guess, out, minutes, fc + width - 5, 2, n, evidence);
    Add(guess, out, seconds, fc + width - 2, 2, n, evidence);
    return;
  }
  const std::u16string_view shape = group.shape;
  if (shape == u"9'99") {
    Add(guess, out, minutes, group.col, 1, n, evidence);
    Add(guess, out, seconds, group.col + 2, 2, n, evidence);
  } else if (shape == u"99:99") {
    Add(guess, out, minutes, group.col, 2, n, evidence);
    Add(guess, out, seconds, group.col + 3, 2, n, evidence);
  } else {
    const int h = shape[1] == u':' ? 1 : 2;  // "9:99:99"
    Add(guess, out, hours, group.col, h, n, evidence);
    Add(guess, out, minutes, group.col + h + 1, 2, n, evidence);
    Add(guess, out, seconds, group.col + h + 4, 2, n, evidence);
  }
}

// The lines whose delimited field at `col` holds exactly `width` digits, or
// none when another record holds something else there.
std::vector<int> DigitLines(const std::vector<std::u16string>& records, int col, int width) {
  std::vector<int> lines;
  for (size_t i = 0; i < records.size(); ++i) {
    const std::u16string_view r = records[i];
    const std::u16string_view field =
        r.size() >= static_cast<size_t>(col)
            ? r.substr(static_cast<size_t>(col) - 1, static_cast<size_t>(width))
            : std::u16string_view();
    if (field.find_first_not_of(u' ') == std::u16string_view::npos) continue;
    if (field.size() != static_cast<size_t>(width) ||
        !std::all_of(field.begin(), field.end(), IsDigit)) {
      return {};
    }
    lines.push_back(static_cast<int>(i));
  }
  return lines;
}

// A delimited field of six bare digits valid as HHMMSS in the records.
struct Clock {
  int col = 0;
  size_t lines = 0, zero = 0;  // records that print it, those whose hours are 00
  std::string because;
};

// Of the HHMMSS fields, the time of day is the one whose hours are 00 in the
// fewest records (the leftmost of equals): a call's duration is mostly under
// an hour, its time of day is not, and a switch prints the time before the
// duration. With one such field, it is the time when its hours are mostly
// not 00, else the duration. The next field is the duration.
void PlaceClocks(const std::vector<Clock>& clocks, Guess* guess, Placed* placed) {
  size_t time = clocks.size();
  if (!Has(*guess, Datum::kHour)) {
    for (size_t i = 0; i < clocks.size(); ++i) {
      if (time == clocks.size() ||
          clocks[i].zero * clocks[time].lines < clocks[time].zero * clocks[i].lines) {
        time = i;
      }
    }
    if (clocks.size() == 1 && clocks[0].zero * 2 >= clocks[0].lines) time = clocks.size();
  }
  bool duration = Has(*guess, Datum::kDurationHours);
  for (size_t i = 0; i < clocks.size(); ++i) {
    const Clock& c = clocks[i];
    if (i != time && duration) continue;
    const Datum hours = i == time ? Datum::kHour : Datum::kDurationHours;
    duration = duration || i != time;
    const std::string what =
        c.because + (i == time ? " (HHMMSS, the fewest hours 00)" : " (HHMMSS)");
    Add(guess, placed, hours, c.col, 2, c.lines, what);
    Add(guess, placed, static_cast<Datum>(static_cast<int>(hours) + 1), c.col + 2, 2, c.lines,
        what);
    Add(guess, placed, static_cast<Datum>(static_cast<int>(hours) + 2), c.col + 4, 2, c.lines,
        what);
  }
}

// Delimited fields printed as bare digits: a date of 8 (YYYYMMDD, MMDDYYYY or
// DDMMYYYY) and clocks of 6 (HHMMSS), the time of day and the duration.
void CompactFields(const std::vector<std::u16string>& records, Guess* guess, Placed* placed) {
  const size_t samples = records.size();
  std::vector<Clock> clocks;
  for (const auto& [col, width] : placed->delimited_fields) {
    if (width != 8 && width != 6) continue;
    const std::vector<int> lines = DigitLines(records, col, width);
    if (static_cast<int>(lines.size()) < Threshold(samples, 40)) continue;
    bool ymd = width == 8, dmy_year = width == 8, day_first = false, month_first = false;
    bool clock = width == 6;
    size_t zero = 0;
    for (int line : lines) {
      const std::u16string_view r = records[static_cast<size_t>(line)];
      const size_t c = static_cast<size_t>(col) - 1;
      const int y4 = Value(r, c, 4), m = Value(r, c + 4, 2), d = Value(r, c + 6, 2);
      ymd = ymd && y4 >= 1990 && y4 <= 2099 && m >= 1 && m <= 12 && d >= 1 && d <= 31;
      const int year = Value(r, c + 4, 4);
      dmy_year = dmy_year && year >= 1990 && year <= 2099;
      day_first = day_first || Value(r, c, 2) > 12;
      month_first = month_first || Value(r, c + 2, 2) > 12;
      clock = clock && Value(r, c, 2) < 24 && Value(r, c + 2, 2) < 60 && Value(r, c + 4, 2) < 60;
      zero += r.substr(c, 2) == u"00";
    }
    const std::string because = Evidence(
        lines.size(), samples,
        "print " + std::to_string(width) + " digits in the field at column " + std::to_string(col));
    const size_t n = lines.size();
    if (width == 8 && !Has(*guess, Datum::kDay) && (ymd || dmy_year)) {
      Mark(lines, placed);
      if (ymd) {
        Add(guess, placed, Datum::kYear, col, 4, n, because + " (YYYYMMDD)");
        Add(guess, placed, Datum::kMonth, col + 4, 2, n, because + " (YYYYMMDD)");
        Add(guess, placed, Datum::kDay, col + 6, 2, n, because + " (YYYYMMDD)");
      } else {
        const bool dmy = day_first && !month_first;
        Add(guess, placed, dmy ? Datum::kDay : Datum::kMonth, col, 2, n, because);
        Add(guess, placed, dmy ? Datum::kMonth : Datum::kDay, col + 2, 2, n, because);
        Add(guess, placed, Datum::kYear, col + 4, 4, n, because);
      }
    } else if (clock) {
      Mark(lines, placed);
      clocks.push_back({col, n, zero, because});
    }
  }
  PlaceClocks(clocks, guess, placed);
}

// A time of day printed as hhmm without a colon: four digits standing alone
// at one column in nearly every record, valid as hours and minutes, hours
// not mostly 00; the leftmost such column.
bool CompactTime(const std::vector<std::u16string>& records, Guess* guess, Placed* placed) {
  std::map<int, std::vector<int>> columns;
  for (size_t i = 0; i < records.size(); ++i) {
    const std::u16string_view r = records[i];
    for (size_t at = 0; at + 4 <= r.size(); ++at) {
      const bool alone =
          (at == 0 || r[at - 1] == u' ') && (at + 4 == r.size() || r[at + 4] == u' ');
      if (!alone || !std::all_of(r.begin() + static_cast<std::ptrdiff_t>(at),
                                 r.begin() + static_cast<std::ptrdiff_t>(at + 4), IsDigit)) {
        continue;
      }
      if (Value(r, at, 2) < 24 && Value(r, at + 2, 2) < 60) {
        columns[static_cast<int>(at) + 1].push_back(static_cast<int>(i));
      }
    }
  }
  for (const auto& [col, lines] : columns) {
    if (lines.size() * 5 < records.size() * 4 || placed->Taken(col)) continue;
    size_t zero = 0;
    for (int line : lines)
      zero += Value(records[static_cast<size_t>(line)], static_cast<size_t>(col - 1), 2) == 0;
    if (zero * 2 >= lines.size()) continue;
    Mark(lines, placed);
    const std::string because =
        Evidence(lines.size(), records.size(),
                 "print four digits alone at column " + std::to_string(col) + ", valid as hhmm");
    Add(guess, placed, Datum::kHour, col, 2, lines.size(), because);
    Add(guess, placed, Datum::kMinute, col + 2, 2, lines.size(), because);
    guess->notes.push_back("no seconds: the time prints hours and minutes only");
    return true;
  }
  return false;
}

// Whether most of a group's lines are records (they show the time of day or
// the date): a clock printed in a page heading is not a duration.
bool OnRecords(const ShapeGroup& group, const std::vector<int>& base) {
  if (base.empty()) return true;
  size_t in = 0;
  for (int line : group.lines) in += std::binary_search(base.begin(), base.end(), line);
  return in * 5 >= group.lines.size() * 4;
}

}  // namespace

void DatesAndTimes(const std::vector<std::u16string>& records, Guess* guess, Placed* placed) {
  if (guess->form.delimited) {
    int width = 0;
    const std::vector<int> columns = ShapedColumns(guess->form.fields, &width);
    for (size_t i = 0; i < columns.size(); ++i) {
      placed->delimited_fields.push_back({columns[i], guess->form.fields.fields[i].width});
      placed->seconds_fields.push_back(guess->form.fields.fields[i].seconds);
    }
  }
  placed->record_lines.assign(records.size(), false);
  CompactFields(records, guess, placed);
  const std::vector<ShapeGroup> shapes = FindShapes(records);
  if (!Has(*guess, Datum::kDay)) PlaceDate(records, shapes, guess, placed);
  const size_t samples = records.size();
  const ShapeGroup* time = nullptr;
  for (const ShapeGroup& group : shapes) {
    if (Has(*guess, Datum::kHour)) break;
    if (group.date || Overlaps(*placed, group) ||
        static_cast<int>(group.lines.size()) < Threshold(samples, 40) ||
        (group.shape != u"99:99:99" && group.shape != u"99:99") ||
        ZeroHours(records, group) >= 0.5) {
      continue;
    }
    if (time == nullptr || group.col < time->col) time = &group;
  }
  if (time != nullptr) {
    Mark(time->lines, placed);
    const int c = time->col;
    const size_t n = time->lines.size();
    const std::string because = Evidence(
        n, samples,
        "show " + Utf8(time->shape) + " at column " + std::to_string(c) + ", hours other than 00");
    Add(guess, placed, Datum::kHour, c, 2, n, because);
    Add(guess, placed, Datum::kMinute, c + 3, 2, n, because);
    if (time->shape.size() == 8) {
      Add(guess, placed, Datum::kSecond, c + 6, 2, n, because);
    } else {
      guess->notes.push_back("no seconds: the time prints hours and minutes only");
    }
    const size_t after = static_cast<size_t>(c - 1) + time->shape.size();
    size_t marked = 0;
    for (int line : time->lines) {
      const std::u16string_view mark =
          std::u16string_view(records[static_cast<size_t>(line)]).substr(after, 2);
      marked += mark == u"AM" || mark == u"PM";
    }
    if (marked * 2 >= n) {
      const int col = static_cast<int>(after) + 1;
      guess->marks.push_back({2, col, u"AM", static_cast<int>(marked),
                              Evidence(marked, samples, "end the time with AM or PM")});
      placed->spans.push_back({col, col + 1});
    }
  } else if (!Has(*guess, Datum::kHour) && !CompactTime(records, guess, placed)) {
    guess->notes.push_back("no time of day: no hh:mm with hours other than 00 in enough records");
  }
  std::vector<int> base;
  for (size_t i = 0; i < placed->record_lines.size(); ++i) {
    if (placed->record_lines[i]) base.push_back(static_cast<int>(i));
  }
  // Duration, then ring time: the leftmost clock shapes still free.
  for (const Datum hours : {Datum::kDurationHours, Datum::kRingHours}) {
    const bool duration = hours == Datum::kDurationHours;
    if (Has(*guess, hours)) continue;
    const ShapeGroup* found = nullptr;
    for (const ShapeGroup& group : shapes) {
      if (group.date || group.after_date * 2 >= static_cast<int>(group.lines.size()) ||
          Overlaps(*placed, group) || !OnRecords(group, base) ||
          static_cast<int>(group.lines.size()) < Threshold(samples, duration ? 40 : 15) ||
          (duration && (group.shape == u"99:99" || group.shape == u"9'99"))) {
        continue;
      }
      found = &group;
      break;
    }
    if (found == nullptr) {
      guess->notes.push_back(duration ? "no duration: no clock shape in enough records"
                                      : "no ring time: no further clock shape");
      continue;
    }
    AddClock(*found, *placed, hours, guess, placed,
             Evidence(found->lines.size(), samples,
                      "show " + Utf8(found->shape) + " at column " + std::to_string(found->col)));
  }
}

}  // namespace guess
}  // namespace velqua_records
