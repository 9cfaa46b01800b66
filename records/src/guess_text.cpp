// Pass 3 of the layout guess: the runs of text between the dates and times.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>

#include "guess_internal.h"

namespace velqua_records {
namespace guess {
namespace {

// A column group: the runs of text that start (or, right-aligned, end) at
// one column, one value per record ("" where a record has none).
struct Group {
  int start = 0, end = 0;      // the field's columns once bounded
  int first = 1000, last = 0;  // the runs' own extent
  bool right = false;          // right-aligned: its runs end at one column
  bool uniform = true;         // every run as long: its alignment is open
  std::vector<std::u16string> values;
  int count = 0;
};

// The call type or attribute a printed mark means (upper case), or 0.
int32_t MarkKey(std::u16string_view value) {
  std::string word;
  for (char16_t c : value) {
    word += static_cast<char>(c < 0x80 ? std::toupper(static_cast<unsigned char>(c)) : '?');
  }
  static const std::map<std::string, int32_t> kMarks = {
      {"I", 4},    {"IN", 4},   {"PIN", 4}, {"IVIN", 4},       {"<I>", 4},
      {"O", 7},    {"OUT", 7},  {"POT", 7}, {"IVOT", 7},       {"ICM", 10},
      {"EXT", 10}, {"INT", 10}, {"NA", 29}, {"NO ANSWER", 29}, {"TR", 24},
  };
  const auto it = kMarks.find(word);
  return it == kMarks.end() ? 0 : it->second;
}

// The runs of non-blank text of `line` outside placed columns, as
// (first column, last column), 1-based.
std::vector<std::pair<int, int>> Runs(std::u16string_view line, const Placed& placed) {
  std::vector<std::pair<int, int>> runs;
  int begin = 0;
  for (int col = 1; col <= static_cast<int>(line.size()) + 1; ++col) {
    const bool text = col <= static_cast<int>(line.size()) &&
                      line[static_cast<size_t>(col) - 1] != u' ' && !placed.Taken(col);
    if (text && begin == 0) begin = col;
    if (!text && begin != 0) {
      runs.push_back({begin, col - 1});
      begin = 0;
    }
  }
  return runs;
}

std::vector<Group> FixedGroups(const std::vector<std::u16string>& records, const Placed& placed) {
  std::map<int, int> starts, ends;
  std::vector<std::vector<std::pair<int, int>>> runs(records.size());
  for (size_t i = 0; i < records.size(); ++i) {
    if (!placed.record_lines[i]) continue;
    runs[i] = Runs(records[i], placed);
    for (const auto& [first, last] : runs[i]) ++starts[first], ++ends[last];
  }
  std::map<std::pair<bool, int>, Group> groups;  // (right-aligned, column)
  for (size_t i = 0; i < records.size(); ++i) {
    for (const auto& [first, last] : runs[i]) {
      // Numbers of equal length say nothing of their alignment: short
      // numbers in fixed columns (trunks, extensions) are printed right-aligned.
      const std::u16string_view run =
          std::u16string_view(records[i])
              .substr(static_cast<size_t>(first) - 1, static_cast<size_t>(last - first + 1));
      const bool digits = run.size() <= 5 && std::all_of(run.begin(), run.end(), IsDigit);
      const bool right = ends[last] > starts[first] || (ends[last] == starts[first] && digits);
      Group& group = groups[{right, right ? last : first}];
      group.right = right;
      group.values.resize(records.size());
      group.values[i] =
          records[i].substr(static_cast<size_t>(first) - 1, static_cast<size_t>(last - first + 1));
      if (group.count > 0 && (first != group.first || last != group.last)) group.uniform = false;
      group.first = std::min(group.first, first);
      group.last = std::max(group.last, last);
      ++group.count;
    }
  }
  std::vector<Group> out;
  for (auto& entry : groups) {
    if (entry.second.count >= 2 || records.size() < 3) out.push_back(std::move(entry.second));
  }
  return out;
}

bool BlankColumn(const std::vector<std::u16string>& records, const Placed& placed, int col) {
  for (size_t i = 0; i < records.size(); ++i) {
    const std::u16string& r = records[i];
    if (placed.record_lines[i] && col >= 1 && col <= static_cast<int>(r.size()) &&
        r[static_cast<size_t>(col) - 1] != u' ') {
      return false;
    }
  }
  return true;
}

// A left-aligned group's field reaches from its first column to the column
// before what stands after it, less the blank between them; a right-aligned
// one from the column after the field before it (plus that blank) to its last
// column. Where page headings print column titles, a title starting in the
// blank stretch after a field's text ends the field there.
void Bound(const std::vector<std::u16string>& records, const Placed& placed,
           std::vector<Group>* groups) {
  const auto next_start = [&](const Group& group) {
    int after = 1000;
    for (const auto& [a, b] : placed.spans) {
      if (a > group.last) after = std::min(after, a);
    }
    for (const Group& other : *groups) {
      if (other.first > group.last) after = std::min(after, other.first);
    }
    return after;
  };
  // Runs all of one length fit either alignment: a column title starting over
  // them, or a blank stretch after them and none before, makes them left-aligned.
  for (Group& group : *groups) {
    if (!group.right || !group.uniform) continue;
    int before = 0;
    for (const auto& [a, b] : placed.spans) {
      if (b < group.first) before = std::max(before, b);
    }
    for (const Group& other : *groups) {
      if (other.last < group.first) before = std::max(before, other.last);
    }
    const bool titled =
        std::find(placed.titles.begin(), placed.titles.end(), group.first) != placed.titles.end();
    group.right = !titled && !(next_start(group) - group.last >= 4 && group.first - before <= 2);
  }
  for (Group& group : *groups) {
    if (group.right) continue;
    group.start = group.first;
    const int after = next_start(group);
    int end = after == 1000 ? group.last : after - 1;
    for (int title : placed.titles) {
      if (title > group.last + 1 && (title <= end || after == 1000)) {
        end = title - 1;
        break;
      }
    }
    if (end > group.last && BlankColumn(records, placed, end)) --end;
    group.end = std::max(end, group.last);
  }
  for (Group& group : *groups) {
    if (!group.right) continue;
    int before = 0;
    for (const auto& [a, b] : placed.spans) {
      if (b < group.first) before = std::max(before, b);
    }
    for (const Group& other : *groups) {
      const int other_end = other.right ? other.last : other.end;
      if (other.last < group.first) before = std::max(before, std::min(other_end, group.first - 1));
    }
    group.start = before + 1;
    if (group.start < group.first && BlankColumn(records, placed, group.start)) ++group.start;
    group.end = group.last;
  }
}

struct Digits {
  std::u16string prefix;  // what stands before the first digit
  size_t digits = 0;
  bool plain = false;  // digits (and * # +) only after the prefix
};

Digits Split(std::u16string_view value) {
  Digits d;
  size_t i = 0;
  while (i < value.size() && !IsDigit(value[i])) ++i;
  d.prefix = value.substr(0, i);
  d.plain = i < value.size();
  for (; i < value.size(); ++i) {
    if (IsDigit(value[i])) {
      ++d.digits;
    } else if (value[i] != u'*' && value[i] != u'#' && value[i] != u'+') {
      d.plain = false;
    }
  }
  return d;
}

std::string Evidence(int agree, size_t samples, const std::string& what) {
  return std::to_string(agree) + " of " + std::to_string(samples) + " records " + what;
}

void AddField(Guess* guess, Datum datum, int pos, int size, bool numeric, int agree,
              const std::string& evidence) {
  if (size < 1 || pos + size > 255) return;
  guess->fields.push_back({datum, pos, size, numeric, agree, evidence});
}

void AddMark(Guess* guess, int32_t key, int pos, std::u16string text, int agree,
             const std::string& evidence) {
  for (GuessedMark& mark : guess->marks) {
    if (mark.key == key && mark.text == text) return;
    // A second text for the same role is its alternative (OR) mark.
    if (mark.key == key && (key == 4 || key == 7 || key == 10)) key += 2;
  }
  if (pos + static_cast<int>(text.size()) > 256) return;
  guess->marks.push_back({key, pos, std::move(text), agree, evidence});
}

// What a group's values are.
struct Profile {
  int present = 0, marks = 0, numbers = 0, shorts = 0, zeros = 0, trunk_prefix = 0,
      extension_prefix = 0;
  std::map<std::u16string, int> mark_values;  // mark text -> records
  std::map<std::u16string, int> prefixes;     // a mark before the digits -> records
  bool lettered = false;                      // shorts with a letter before them
  bool counter = true;                        // values going up by one: a record number
  std::vector<std::u16string> distinct;       // the short numbers seen
};

Profile Study(const Group& group, bool fixed) {
  Profile p;
  int previous = -2;
  for (const std::u16string& raw : group.values) {
    const std::u16string value = Trim(raw);
    if (value.empty()) continue;
    ++p.present;
    if (MarkKey(value) != 0) {
      ++p.marks;
      ++p.mark_values[value];
      continue;
    }
    const Digits d = Split(value);
    if (!d.prefix.empty() && MarkKey(d.prefix) != 0) ++p.prefixes[d.prefix];
    // A letter or two before the digits name a device (T001005, DN201, E23):
    // a trunk or an extension, however many digits follow.
    const bool device = !d.prefix.empty() && d.prefix.size() <= 2 && d.digits <= 7 &&
                        std::all_of(d.prefix.begin(), d.prefix.end(), [](char16_t c) {
                          return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
                        });
    if (d.digits >= 6 && d.plain && !device) {
      ++p.numbers;
    } else if (d.digits >= (fixed ? 1u : 2u) && d.plain && d.prefix.size() <= 4) {
      ++p.shorts;
      const int v = Value(value, d.prefix.size(), d.digits);
      p.counter = p.counter && (previous == -2 || v == previous + 1);
      previous = v;
      if (std::find(p.distinct.begin(), p.distinct.end(), value) == p.distinct.end()) {
        p.distinct.push_back(value);
      }
      const char16_t lead = value[d.prefix.size()];
      p.zeros += lead == u'0';
      p.trunk_prefix += d.prefix == u"T";
      p.extension_prefix +=
          d.prefix == u"E" || d.prefix == u"DN" || d.prefix == u"V" || d.prefix == u"Ext.";
      p.lettered = p.lettered || !d.prefix.empty();
    }
  }
  return p;
}

using Found = std::vector<std::pair<const Group*, Profile>>;

// The columns a mark of `key` printed before the digits takes, or 0.
int MarkBefore(const Group& group, const Profile& p, int32_t key, size_t samples, Guess* guess) {
  for (const auto& [prefix, n] : p.prefixes) {
    if (MarkKey(prefix) != key) continue;
    AddMark(guess, key, group.first, prefix, n,
            Evidence(n, samples,
                     "print \"" + std::string(prefix.begin(), prefix.end()) +
                         "\" before the digits at column " + std::to_string(group.first)));
    return static_cast<int>(prefix.size());
  }
  return 0;
}

// The caller's number is the first column of long numbers; the number dialled
// the second when there are two, else the same one.
void AssignNumbers(const Found& numbers, size_t samples, Guess* guess) {
  if (numbers.empty()) {
    guess->notes.push_back("no number: no column where most records print six digits or more");
    return;
  }
  const auto& [first, p] = numbers.front();
  const auto& [second, q] = numbers.size() > 1 ? numbers[1] : numbers.front();
  const int in = MarkBefore(*first, p, 4, samples, guess);
  const int internal = MarkBefore(*second, q, 10, samples, guess);
  const auto why = [samples](const Group& g, const Profile& pr, const char* what) {
    return Evidence(pr.numbers, samples,
                    "print six digits or more at column " + std::to_string(g.start) + what);
  };
  const int size1 = first->end - first->start + 1, size2 = second->end - second->start + 1;
  AddField(guess, Datum::kNumberIn, first->start + in, size1 - in, false, p.numbers,
           why(*first, p, numbers.size() > 1 ? ", the first such column" : ""));
  AddField(guess, Datum::kNumberOut, second->start, size2, false, q.numbers,
           why(*second, q, numbers.size() > 1 ? ", the second such column" : ""));
  AddField(guess, Datum::kNumberInternal, second->start + internal, size2 - internal, false,
           q.numbers, why(*second, q, ""));
  AddField(guess, Datum::kCalledExtension, second->start + internal, size2 - internal, false,
           q.numbers, why(*second, q, ": the extension an internal call dialled"));
}

// The extension is the column of short numbers with the most different
// values; the trunk the one whose numbers start with 0 (or T), else the other
// column of short numbers. Records with a from and a to number but no
// column of extensions: the extension is the from side of outgoing and
// internal calls and the to side of incoming ones.
void AssignShorts(const Found& numbers, const Found& extensions, const Found& trunks,
                  size_t samples, Guess* guess) {
  const auto most = [](const Found& found, const Group* besides) {
    auto best = found.end();
    for (auto it = found.begin(); it != found.end(); ++it) {
      if (it->first == besides) continue;
      if (best == found.end() || it->second.distinct.size() > best->second.distinct.size()) {
        best = it;
      }
    }
    return best;
  };
  const auto add = [guess, samples](const Group& g, const Profile& p, Datum d, const char* what) {
    AddField(guess, d, g.start, g.end - g.start + 1, p.lettered, p.shorts,
             Evidence(p.shorts, samples,
                      "print a short number at column " + std::to_string(g.start) + what));
  };
  // Two columns of devices, trunks and extensions mixed, are the two ends of
  // the call: the originating end is the extension of an outgoing or
  // internal call and the trunk of an incoming one; the terminating end the
  // other way round.
  Found ends;
  for (const Found* found : {&extensions, &trunks}) {
    for (const auto& entry : *found) {
      if (entry.second.trunk_prefix > 0 && entry.second.extension_prefix > 0) ends.push_back(entry);
    }
  }
  std::sort(ends.begin(), ends.end(),
            [](const auto& a, const auto& b) { return a.first->start < b.first->start; });
  if (ends.size() >= 2) {
    auto& fields = guess->fields;  // the called extension is the terminating end, not the number
    fields.erase(
        std::remove_if(fields.begin(), fields.end(),
                       [](const GuessedField& f) { return f.datum == Datum::kCalledExtension; }),
        fields.end());
    const auto& [from, p] = ends[0];
    const auto& [to, q] = ends[1];
    for (Datum d : {Datum::kExtensionOut, Datum::kExtensionInternal, Datum::kTrunkIn}) {
      add(*from, p, d, ", the originating end (trunks and extensions mixed)");
    }
    for (Datum d : {Datum::kExtensionIn, Datum::kCalledExtension, Datum::kTrunkOut}) {
      add(*to, q, d, ", the terminating end (trunks and extensions mixed)");
    }
    return;
  }
  const auto extension = most(extensions, nullptr);
  if (extension != extensions.end()) {
    for (Datum d : {Datum::kExtensionIn, Datum::kExtensionOut, Datum::kExtensionInternal}) {
      add(*extension->first, extension->second, d, ", the most varied such column");
    }
  } else if (numbers.size() >= 2) {
    const auto& [from, p] = numbers[0];
    const auto& [to, q] = numbers[1];
    const std::string why = Evidence(p.present, samples, "print a from and a to number");
    AddField(guess, Datum::kExtensionOut, from->start, from->end - from->start + 1, false,
             p.present, why + ": the extension of an outgoing call calls from it");
    AddField(guess, Datum::kExtensionInternal, from->start, from->end - from->start + 1, false,
             p.present, why);
    AddField(guess, Datum::kExtensionIn, to->start, to->end - to->start + 1, false, q.present,
             why + ": the extension of an incoming call is called at it");
  } else {
    guess->notes.push_back("no extension: no column of short numbers");
  }
  auto trunk = most(trunks, nullptr);
  const bool marked = trunk != trunks.end();
  const Found& from = marked ? trunks : extensions;
  if (!marked) trunk = extensions.end();
  if (!marked && extension != extensions.end()) {
    // Else the other column of short numbers nearest the extension.
    const auto distance = [&extension](const Group* g) {
      return std::abs(g->start - extension->first->start);
    };
    for (auto it = extensions.begin(); it != extensions.end(); ++it) {
      if (it == extension) continue;
      if (trunk == from.end() || distance(it->first) < distance(trunk->first)) trunk = it;
    }
  }
  if (trunk == from.end()) {
    guess->notes.push_back("no trunk: no second column of short numbers");
    return;
  }
  for (Datum d : {Datum::kTrunkIn, Datum::kTrunkOut}) {
    add(*trunk->first, trunk->second, d,
        marked ? " starting with 0 or T" : ", the column of short numbers nearest the extension");
  }
}

void Classify(const std::vector<Group>& groups, size_t samples, bool fixed, Guess* guess) {
  std::vector<std::pair<const Group*, Profile>> numbers, extensions, trunks, sparse;
  // A record number, when there is one, is the first number of the record,
  // before its date.
  int date = 1000;
  for (const GuessedField& field : guess->fields) {
    if (field.datum == Datum::kDay) date = field.pos;
  }
  bool leftmost = true;
  for (const Group& group : groups) {
    Profile p = Study(group, fixed);
    p.counter = p.counter && leftmost && group.start < date;
    leftmost = leftmost && p.shorts + p.numbers == 0;
    for (const auto& [text, n] : p.mark_values) {
      AddMark(guess, MarkKey(text), group.first, text, n,
              Evidence(n, samples,
                       "print \"" + std::string(text.begin(), text.end()) + "\" at column " +
                           std::to_string(group.first)));
    }
    const int data = p.present - p.marks;
    if (data <= 0) continue;
    // A column of long numbers that also holds short ones (an extension
    // called) is a column of numbers.
    if (p.numbers > 0 && (p.numbers + p.shorts) * 2 > data) {
      numbers.push_back({&group, p});
    } else if (p.shorts * 2 > data && !(p.counter && p.shorts > 2) &&
               !(p.distinct.size() == 1 && p.shorts >= 3)) {  // one value throughout: a constant
      const bool trunk = p.zeros * 2 > p.shorts || p.trunk_prefix * 2 > p.shorts;
      (trunk ? trunks : extensions).push_back({&group, p});
    }
    if (static_cast<size_t>(data) * 2 < samples) sparse.push_back({&group, p});
  }
  const auto by_column = [](const auto& a, const auto& b) {
    return a.first->start < b.first->start;
  };
  std::sort(numbers.begin(), numbers.end(), by_column);
  std::sort(extensions.begin(), extensions.end(), by_column);
  AssignNumbers(numbers, samples, guess);
  AssignShorts(numbers, extensions, trunks, samples, guess);
  for (const auto& [group, p] : sparse) {
    if (numbers.empty() || group->start <= numbers.front().first->start) continue;
    AddField(guess, Datum::kAccountCode, group->start, group->end - group->start + 1, false,
             p.present - p.marks,
             Evidence(p.present - p.marks, samples,
                      "print digits at column " + std::to_string(group->start) +
                          ", right of the number, and most records none"));
    break;
  }
  bool in = false, out = false;
  for (const GuessedMark& mark : guess->marks) {
    in = in || mark.key == 4 || mark.key == 6;
    out = out || mark.key == 7 || mark.key == 9;
  }
  guess->handling_case = in && out ? 1 : 7;
  if (!(in && out)) {
    guess->notes.push_back(
        "no mark of both incoming and outgoing calls: case 7, a record with a "
        "number, an extension and a trunk is outgoing by default");
  }
}

}  // namespace

void TextRuns(const std::vector<std::u16string>& records, Guess* guess, Placed* placed) {
  std::vector<Group> groups;
  if (guess->form.delimited) {
    for (size_t f = 0; f < placed->delimited_fields.size(); ++f) {
      const auto [col, width] = placed->delimited_fields[f];
      if (width == 0 || placed->Taken(col)) continue;
      Group group;
      group.start = group.first = col;
      group.end = group.last = col + width - 1;
      for (size_t i = 0; i < records.size(); ++i) {
        const std::u16string& r = records[i];
        std::u16string value =
            r.size() >= static_cast<size_t>(col)
                ? r.substr(static_cast<size_t>(col) - 1, static_cast<size_t>(width))
                : u"";
        while (!value.empty() && value.back() == u' ') value.pop_back();
        group.count += !value.empty() && placed->record_lines[i];
        group.values.push_back(placed->record_lines[i] ? value : u"");
      }
      if (group.count > 0) groups.push_back(std::move(group));
    }
  } else {
    groups = FixedGroups(records, *placed);
    Bound(records, *placed, &groups);
    std::sort(groups.begin(), groups.end(),
              [](const Group& a, const Group& b) { return a.start < b.start; });
  }
  int lines = 0;
  for (bool is : placed->record_lines) lines += is;
  for (size_t i = 0; i < records.size(); ++i) {
    if (placed->record_lines[i]) continue;
    const std::u16string pattern = HeadingPattern(records[i]);
    auto& headings = guess->form.headings;
    if (headings.size() < 100 &&
        std::find(headings.begin(), headings.end(), pattern) == headings.end()) {
      headings.push_back(pattern);
    }
  }
  const size_t samples = static_cast<size_t>(std::max(lines, 1));
  Classify(groups, samples, !guess->form.delimited, guess);
}

}  // namespace guess
}  // namespace velqua_records
