// The passes of GuessLayout (guess.cpp), shared by its three source files.
// Private to velqua_records.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velqua/records/guess.h"
#include "velqua/records/record_form.h"

namespace velqua_records {
namespace guess {

using Text = std::u16string_view;

bool IsDigit(char16_t c);
bool HasDigit(Text line);
// The value of the digits of line[at, at + n), at most kValueCap.
constexpr int kValueCap = 999999999;
int Value(Text line, size_t at, size_t n);
// `text` without the blanks at both ends, as a value read from columns is
// (Trimmed, record_form.h).
inline std::u16string Trim(Text text) { return std::u16string(Trimmed(text)); }
// Whether a datum has been placed already.
bool Has(const Guess& guess, Datum datum);

// A page-heading pattern for `line`: its first 40 characters (from its text
// when it starts far right), digits matching any character (dates and page
// numbers change), "*" for what is cut.
std::u16string HeadingPattern(Text line);

// The lines at which one date or time shape stands at one column.
struct ShapeGroup {
  int col = 0;  // 1-based
  std::u16string_view shape;
  bool date = false;
  std::vector<int> lines;  // indexes into the records
  int after_date = 0;      // lines where a date stands right before it (a date and time)
};

// Every shape of every record, grouped by column and shape.
std::vector<ShapeGroup> FindShapes(const std::vector<std::u16string>& lines);

// Columns already given to a datum (1-based, inclusive), and the fields of a
// delimited record as shaped (first column and width; none when fixed).
struct Placed {
  std::vector<std::pair<int, int>> spans;
  std::vector<std::pair<int, int>> delimited_fields;
  std::vector<bool> seconds_fields;  // of delimited_fields
  std::vector<bool> record_lines;    // the records that show a placed date or clock
  std::vector<int> titles;           // where the words of page headings start (1-based)
  bool Taken(int col) const;
};

// Pass 1 (guess_frame.cpp): the records the samples hold; notes the record
// form in guess->form. Delimited fields that may hold counts of seconds are
// listed in *seconds (they are declared as text until a pass needs them).
std::vector<std::u16string> Frame(const std::vector<std::u16string>& lines, Guess* guess,
                                  std::vector<size_t>* seconds, std::vector<int>* titles);

// The records shaped by a delimited form (as they are when fixed).
std::vector<std::u16string> ShapeAll(const std::vector<std::u16string>& records,
                                     const RecordForm& form);

// The field of a delimited form a column lies in, or -1.
int FieldAt(const Placed& placed, int col);

// Pass 2 (guess_fields.cpp): date, time of day, duration, ring time.
void DatesAndTimes(const std::vector<std::u16string>& records, Guess* guess, Placed* placed);

// Pass 3 (guess_fields.cpp): numbers, extensions, trunks, account codes and
// the marks of the call types.
void TextRuns(const std::vector<std::u16string>& records, Guess* guess, Placed* placed);

}  // namespace guess
}  // namespace velqua_records
