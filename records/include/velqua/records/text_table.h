// A table of text in aligned columns, as `velqua translate` and `velqua
// calls` print it for a terminal.
#pragma once

#include <string>
#include <vector>

namespace velqua_records {

// The first rows are held back to size the columns (each at least as wide as
// its heading); later rows keep those widths, a longer value pushing its own
// line wider. Widths count characters of UTF-8 text. Columns are two blanks
// apart; numbers are right-aligned; no line ends in blanks.
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

 private:
  void Release(std::string* out);
  void Emit(const std::vector<std::string>& cells, std::string* out) const;

  std::vector<std::string> heads_;
  std::vector<bool> right_;
  std::vector<std::vector<std::string>> held_;
  std::vector<size_t> widths_;  // empty until sized
};

}  // namespace velqua_records
