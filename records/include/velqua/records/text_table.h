// A table of text in aligned columns, as `velqua translate` and `velqua
// calls` print it for a terminal.
#pragma once

#include <string>
#include <vector>

namespace velqua_records {

// The first rows are held back to size the columns (each at least as wide as
// its heading); later rows keep those widths, a longer value pushing its own
// line wider. Widths count characters of UTF-8 text. Columns are two blanks
// apart; numbers are right-aligned; no line ends in blanks. Control
// characters in a cell are shown as escapes (AppendVisible, common.h): a
// table is meant for a terminal, and its cells hold what a switch sent.
class AlignedTable {
 public:
  static constexpr size_t kSizingRows = 200;

  // One heading per column, and which columns are right-aligned.
  AlignedTable(std::vector<std::string> heads, std::vector<bool> right);

  // A row of one cell per column: appended to *out once the columns are
  // sized, held back until then.
  void Add(std::vector<std::string> cells, std::string* out);
  // Appends what is still held back (the headings at least).
  void Finish(std::string* out);
  // As Finish, for a live source whose rows must come out now: the widths
  // are then at least `live_widths` (set by the caller: what its columns
  // usually hold), so that the few rows seen so far do not size the table
  // for good and later rows keep to the columns.
  void Flush(std::string* out);
  void LiveWidths(std::vector<size_t> widths) { live_widths_ = std::move(widths); }

 private:
  void Release(std::string* out, bool live);
  void Emit(const std::vector<std::string>& cells, std::string* out) const;

  std::vector<std::string> heads_;
  std::vector<bool> right_;
  std::vector<std::vector<std::string>> held_;
  std::vector<size_t> widths_;  // empty until sized
  std::vector<size_t> live_widths_;
};

}  // namespace velqua_records
