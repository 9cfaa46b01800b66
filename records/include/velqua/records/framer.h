// Framing a live byte stream into records: where each record ends (line
// ends, NUL, STX...ETX), which bytes a switch's line adds that are no part of
// a record (bit 7 of a 7-bit line read as 8 bits, form feeds and other control
// bytes), and which records are page headings a printer repeats rather than
// calls. The capture service frames every connection this way; the bytes come
// in pieces of any size and each record keeps the position of its first byte.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velqua_records {

// What ends a record on the line.
enum class RecordEnd {
  kLine,    // CR, LF or CR LF (a CR LF split across two pieces counts once)
  kCr,      // CR only; an LF is kept in the record (or stripped as a control byte)
  kLf,      // LF only; a CR before it is dropped with it, a CR elsewhere is kept
  kCrLf,    // CR LF only; a lone CR or LF is kept in the record
  kNul,     // a NUL byte (Samsung OfficeServ)
  kStxEtx,  // a record starts at STX and ends at ETX
};

// The spelling of each RecordEnd in configurations ("line", "cr", "lf",
// "crlf", "nul", "stx-etx"); false for any other word.
bool RecordEndOf(std::string_view word, RecordEnd* end);

// Whether `text` matches `pattern` as a whole: `*` any run of bytes (none
// included), `?` any one byte, every other byte itself. Time grows with the
// product of the two lengths at worst; no recursion.
bool MatchesHeading(std::string_view pattern, std::string_view text);

// The length of the leading part of `bytes` that holds only whole records:
// up to and including the last byte that ends a record (0 when none does).
// A reader that must not cut a record in two (a followed file) hands over
// that much and keeps the rest for later.
size_t WholeRecordsSize(std::string_view bytes, RecordEnd end);

struct FramingSettings {
  RecordEnd end = RecordEnd::kLine;
  // A NUL byte ends a record too, as the line ends of `end` do (a switch that
  // ends records with NUL and page headings with line ends). Default: off.
  bool nul_ends_record = false;
  // Clears bit 7 of every byte before anything else, so that a CR sent with
  // its parity bit set (0x8D) still ends a record. Default: off.
  bool strip_bit7 = false;
  // Removes control bytes (below 0x20 but TAB, and DEL) from a record once it
  // is framed: form feeds, stray NULs, XON/XOFF. Default: off.
  bool strip_controls = false;
  // Patterns of page headings, matched against a whole record (after
  // stripping): `*` matches any run of bytes (none included), `?` any one
  // byte, every other byte itself, letter case exact; e.g. "*Date*Time*Ext*"
  // or "-----*". The same form as the headings of a configuration's JSON
  // form. Default: none.
  std::vector<std::string> page_headings;
};

struct RecordForm;

// The framing of a switch's line: `settings` as the service was told, with
// what the switch's record form needs before any record is framed: a form
// whose records end at a NUL ends them there on the line too, and a 7-bit
// form clears bit 7 first, so that a CR sent with its parity bit set still
// ends a record. The form's page headings are matched after decoding, not here.
FramingSettings FramingFor(const RecordForm& form, FramingSettings settings);

// Splits the bytes of one connection into records. Empty records (a blank
// line, two NULs in a row, a record of control bytes only) carry nothing and
// are not given. A record never grows past kMaxRecord bytes: the excess
// starts a new record, so a line that never ends cannot take all memory.
class Framer {
 public:
  static constexpr size_t kMaxRecord = 32000;

  struct Record {
    std::string_view bytes;  // the record without its end, stripped as set
    int64_t position;        // the position of its first byte on the line
    bool heading;            // matched a page-heading pattern
  };
  using Emit = std::function<void(const Record&)>;

  // Throws Failure naming a page-heading pattern that is empty, longer than
  // 255 bytes, or made of `*` alone (it would match every record).
  explicit Framer(const FramingSettings& settings);
  Framer(const Framer&) = delete;
  Framer& operator=(const Framer&) = delete;

  // Frames `bytes`, whose first byte stands at `position` (the next byte at
  // position + 1, ...); calls `emit` for each record completed, in order.
  // Positions need not follow on from the previous piece.
  void Feed(std::string_view bytes, int64_t position, const Emit& emit);

  // Ends the record open, if any: the line went quiet or the connection
  // ended, and a last record without its end is given as it is.
  void Flush(const Emit& emit);

  // The position of the first byte of the record open, or -1 when none is:
  // everything fed before that position has been given.
  int64_t OpenPosition() const { return open_position_; }

  // Whether `record` matches one of the page-heading patterns.
  bool IsHeading(std::string_view record) const;

 private:
  void Byte(unsigned char c, int64_t position, const Emit& emit);
  void Append(unsigned char c, int64_t position, const Emit& emit);
  void End(const Emit& emit);

  FramingSettings settings_;
  std::string record_;
  std::string stripped_;
  int64_t open_position_ = -1;
  bool after_cr_ = false;  // the last byte was a CR that may end the record
  bool in_frame_ = false;  // STX...ETX: inside a frame
};

}  // namespace velqua_records
