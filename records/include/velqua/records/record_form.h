// The record form of a switch: how its printed lines become records before the
// library reads them. Three things the column layout of a configuration cannot
// say:
//
// - Delimited records. Switches that print comma-separated records (IP Office,
//   Asterisk, 3CX, ...) place a datum by its field number, not by its column.
//   Each record is shaped into a fixed-column line: every declared field gets
//   its own columns (cut or padded with blanks to its width, then one blank),
//   in order, and the configuration's columns address that shaped line. The
//   library and the .cfg and .ini forms stay as they are.
// - Page headings. Printer output repeats column titles and rules at the top
//   of every page; a line matching one of the heading patterns is not a record:
//   it is counted apart, never translated, never logged as unrecognised.
// - Record ends. A switch that ends each record with a NUL byte rather than a
//   line end (Samsung OfficeServ) has each line cut at its NULs.
// - Continuation lines. Switches of the Meridian family print a call's caller
//   ID or account code on following lines that start with "&": such a line
//   is joined to the record before it at a fixed column, so that the
//   configuration addresses its fields there.
// - 7-bit lines. A port read with 8 data bits from a switch that sends 7 bits
//   and parity has bit 7 set on some bytes; it is cleared before decoding.
//
// The JSON form declares it under "records" (doc/cli.md, "Record form"); the
// binary and profile forms cannot hold it, so a configuration read from them
// has the plain form: fixed columns, no headings, line ends only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velqua/records/call_times.h"
#include "velqua/records/record_rules.h"

namespace velqua_records {

// One field of a delimited record and the columns it gets in the shaped line.
struct DelimitedField {
  std::string name;  // what the field holds, for people (config check); may be ""
  // Columns in the shaped line, 0 to 255; 0 carries the field nowhere (a field
  // no configuration reads).
  int width = 0;
  // The field is a whole number of seconds, shaped as hours:minutes:seconds
  // right-aligned in its width (at least 7: "H:MM:SS"), so that the duration
  // and ring fields of the configuration can cut hours, minutes and seconds. A
  // text that is not plain digits (after blanks), or whose hours do not fit,
  // is shaped blank: the record then reads no duration rather than a wrong one.
  bool seconds = false;
};

struct DelimitedForm {
  char16_t separator = u',';
  char16_t quote = u'"';  // u'\0': fields are never quoted
  std::vector<DelimitedField> fields;
  // Fields read by rule (record_rules.h), shaped after the declared ones; a
  // rule's part names a declared field by its index, or the derived field
  // d < this one's by fields.size() + d.
  std::vector<DerivedField> derived;
};

// What shaping one delimited record found.
struct ShapeOutcome {
  size_t fields = 0;   // fields in the record (1 for an empty record)
  bool fewer = false;  // fewer fields than declared: the missing ones are blank
  bool more = false;   // more fields than declared: the extra ones are ignored
  // The fields longer than their columns: the text shaped (cut, blanks
  // trimmed) and the whole text (blanks trimmed), so that a value read from
  // those columns is given whole. Empty for most records.
  std::vector<std::pair<std::u16string, std::u16string>> cut;
};

// Shapes `record` into the fixed-column line of `form`, replacing *line. A
// field opening with the quote character is quoted: separators inside it are
// text, a doubled quote is one quote, and text after its closing quote up to
// the next separator is kept; an unclosed quote runs to the end of the record.
// An unquoted field is taken as it stands, blanks included. The derived
// fields follow the declared ones, each in its width, one blank apart.
ShapeOutcome ShapeDelimited(const DelimitedForm& form, std::u16string_view record,
                            std::u16string* line);

// The first column of each declared field, then of each derived field, in the
// shaped line (1-based), and the shaped line's width; a field of width 0
// starts where the next one does.
std::vector<int> ShapedColumns(const DelimitedForm& form, int* width);

// The text of `text` that a value read from its columns holds: blanks trimmed
// from both ends.
std::u16string_view Trimmed(std::u16string_view text);

// Whether `text` matches `pattern` as a whole: `*` matches any run of
// characters (none included), `?` any one character, every other character
// itself, letter case exact.
bool MatchesPattern(std::u16string_view pattern, std::u16string_view text);

// A field of the records beyond the call data the library reads, kept with
// the call: the switch's own charge for it, its metering pulses, the
// caller's name, the switch's call ID. Its text is cut from its columns of
// the record (of the shaped line, for delimited records), blanks trimmed.
struct ExtraField {
  // Lower-case letters, digits and '_', starting with a letter. "charge" is
  // the switch's charge for the call, shown beside Velqua's price.
  std::string name;
  int column = 1;  // first column, 1-based
  int width = 1;   // 1 to 255
};

// The extra fields of `record`: each name with its text ("" when the record
// is too short to hold it).
std::vector<std::pair<std::string, std::u16string>> CutExtras(const std::vector<ExtraField>& extras,
                                                              std::u16string_view record);

// The reason a page heading is kept with, among the unrecognised records:
// whoever reads a switch's output (import, capture, retranslate) keeps
// every line it sent, and headings are told apart by this reason.
constexpr const char* kPageHeadingReason = "page heading";

// Columns of a fixed-column record that print a clock or, on sites that
// choose it, a count of seconds after a mark (Mitel's elapsed time "S=226"):
// such a count is rewritten as hours:minutes:seconds right-aligned in the same
// columns, so that one configuration's duration fields read both. A count
// that is not plain digits, or whose hours do not fit, leaves the columns
// blank: the record has no duration rather than a wrong one.
struct SecondsCount {
  int column = 1;       // first column, 1-based
  int width = 8;        // 7 to 255: "H:MM:SS" needs 7
  std::u16string mark;  // printed right before the digits, 1 to 255 characters
};

struct RecordForm {
  bool delimited = false;  // records are delimited: shape them with `fields`
  DelimitedForm fields;
  std::vector<std::u16string> headings;  // patterns of page-heading lines
  bool nul_ends_record = false;          // a NUL byte ends a record, as a line end does
  std::u16string continuation;           // pattern of a continuation line; "" = none
  int continuation_column = 0;           // its first column in the joined record (1-255)
  bool seven_bit = false;                // clear bit 7 of every byte before decoding
  PrintedTime printed_time = PrintedTime::kUnstated;  // the call's start or its end
  std::vector<ExtraField> extras;                     // kept with each call, by name
  std::vector<SecondsCount> seconds_counts;           // fixed-column records only

  // Whether `line` (decoded, without its line end) is a page heading.
  bool IsHeading(std::u16string_view line) const;
  // Nothing beyond plain fixed-column lines (whatever time they print).
  bool Plain() const {
    return !delimited && headings.empty() && !nul_ends_record && continuation.empty() &&
           !seven_bit && seconds_counts.empty();
  }
  // Rewrites the counts of seconds of `record` (fixed columns) in place.
  void RewriteCounts(std::u16string* record) const;
  // Whether `line` continues the record before it.
  bool IsContinuation(std::u16string_view line) const {
    return !continuation.empty() && MatchesPattern(continuation, line);
  }
  // Appends a continuation line to `record` at continuation_column (after
  // blanks up to it; right after a record already reaching it).
  void Join(std::u16string_view line, std::u16string* record) const;
  // "fixed columns", "delimited (35 fields)", with "+ 2 heading patterns",
  // "+ NUL record ends", "+ continuation lines", "+ 7-bit", "+ counts of
  // seconds" and "+ end times"
  // as they apply:
  // how `velqua switches` shows it.
  std::string Describe() const;
};

}  // namespace velqua_records
