// A report: a title, the period it covers and the switches of the store,
// one or more tables of typed columns, and charts. Every output
// form (output.h) is drawn from this one value, so the numbers of a PDF,
// a spreadsheet and a CSV file are always the same numbers.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velqua_reports {

enum class ColumnType {
  kText,
  kInteger,   // Cell::number
  kDuration,  // Cell::number, seconds; shown h:mm:ss
  kMoney,     // Cell::text, exact decimal ("-12.30") in Column::currency
  kDate,      // Cell::text, "YYYY-MM-DD"
  kDateTime,  // Cell::text, "YYYY-MM-DDTHH:MM[:SS]"
};

struct Column {
  std::string heading;
  ColumnType type = ColumnType::kText;
  std::string currency;  // kMoney only: "EUR"
};

// A value of a table. `empty`: nothing to show (no ring time printed).
struct Cell {
  std::string text;
  int64_t number = 0;
  bool empty = false;

  static Cell Text(std::string t) { return {std::move(t), 0, false}; }
  static Cell Number(int64_t n) { return {"", n, false}; }
  static Cell Empty() { return {"", 0, true}; }
};

using Row = std::vector<Cell>;

// Rows kept in an unnamed temporary file rather than in memory: a list as
// long as its period (a year's missed calls). Written once, then read back
// in order as often as a form needs, so that a report's memory stays the
// same however long the list. The file is gone when the last copy of the
// table holding it is.
class RowFile {
 public:
  // In $TMPDIR, else /tmp. Throws velqua_records::Failure when no file can
  // be made there.
  RowFile();
  ~RowFile();
  RowFile(const RowFile&) = delete;
  RowFile& operator=(const RowFile&) = delete;

  // Throws velqua_records::Failure when the file cannot be written (a full
  // disk): a report is never written with rows missing.
  void Append(const Row& row);
  int64_t size() const { return rows_; }
  // Each row in the order appended; `visit`'s row is valid during its call.
  void ForEach(const std::function<void(const Row&)>& visit) const;

 private:
  std::FILE* file_ = nullptr;
  int64_t rows_ = 0;
};

struct Table {
  std::string name;  // "Trunks": a heading, a sheet's name, a CSV section
  std::vector<Column> columns;
  std::vector<Row> rows;
  // A last row of totals, shown apart (bold, ruled) where the form allows.
  std::optional<Row> total;
  // Rows after `rows`, kept on disk: a list that grows with the period.
  std::shared_ptr<RowFile> more = nullptr;
  // A list to search rather than to read through (the missed calls never
  // called back): a PDF shows the first 2,000 rows of `more` and says how
  // many more there are. Otherwise (an itemised bill) it shows them all.
  bool cut_in_print = false;
};

// Every row of a table, `rows` then `more`'s, and how many there are.
void ForEachRow(const Table& table, const std::function<void(const Row&)>& visit);
int64_t RowCount(const Table& table);

// A chart drawn from numbers of the report. kLine and kArea: one value per
// label on the horizontal axis; kArea also draws `limit` as a line across
// (the lines a user has). kHeatmap: `grid` rows (row_labels) by columns
// (labels), each cell shaded by its value. kBars: one bar per label.
struct Chart {
  enum class Kind { kLine, kArea, kBars, kHeatmap } kind = Kind::kLine;
  std::string title;
  std::string value_label;  // what the vertical axis counts ("calls")
  std::vector<std::string> labels;
  std::vector<int64_t> values;
  std::optional<int64_t> limit;
  std::string limit_label;  // "8 lines"
  std::vector<std::string> row_labels;
  std::vector<std::vector<int64_t>> grid;
};

struct Report {
  std::string kind;                   // "trunks"
  std::string title;                  // "Trunks"
  std::string from, to;               // the period's first and last day, "YYYY-MM-DD"
  std::vector<std::string> switches;  // the switches it covers
  std::vector<std::string> notes;     // lines shown under the title ("8 lines stated")
  std::vector<Table> tables;
  std::vector<Chart> charts;
};

// "1:02:03" for 3723 seconds; "-0:00:05" for -5.
std::string DurationText(int64_t seconds);

// A cell as text in a column: integers as digits, durations h:mm:ss, money
// as its decimal and the currency ("12.30 EUR"), the rest as is; "" when
// empty. Dates and times as stored ("2026-03-09T08:03:12" with a space
// instead of the T when `readable`).
std::string CellText(const Column& column, const Cell& cell, bool readable);

}  // namespace velqua_reports
