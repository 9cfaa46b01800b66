// The spreadsheet form (libxlsxwriter): one sheet per table, cells typed as
// a spreadsheet user expects: counts as numbers, durations as times of day
// shown [h]:mm:ss (a day is 1), money as numbers shown with its currency,
// days and times as dates. Sheets are named after their tables, cut to the
// 31 characters a sheet name may have and made unique. A table longer than
// a sheet's 1,048,576 rows is cut there, with a last row saying so.
#include <xlsxwriter.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "velqua/records/common.h"
#include "velqua/reports/output.h"

namespace velqua_reports {
namespace {

struct Formats {
  lxw_format* bold;
  lxw_format* duration;
  lxw_format* date;
  lxw_format* datetime;
};

std::string SheetName(const std::string& name, std::set<std::string>& used) {
  std::string clean;
  for (char c : name) clean += std::string("[]:*?/\\").find(c) == std::string::npos ? c : ' ';
  clean = clean.substr(0, 31);
  std::string unique = clean;
  for (int n = 2; used.count(unique) > 0; ++n) {
    const std::string suffix = " " + std::to_string(n);
    unique = clean.substr(0, 31 - suffix.size()) + suffix;
  }
  used.insert(unique);
  return unique;
}

lxw_datetime DateTimeOf(const std::string& text) {
  lxw_datetime t{};
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &y, &mo, &d, &h, &mi, &s);
  t.year = y;
  t.month = mo;
  t.day = d;
  t.hour = h;
  t.min = mi;
  t.sec = s;
  return t;
}

// The number format of a money column: as many decimals as its values
// carry (the tariff's currency decides them), and its currency.
std::string MoneyFormat(const Table& t, size_t column) {
  size_t decimals = 0;
  const auto measure = [&](const std::vector<Cell>& row) {
    const size_t point = row[column].text.find('.');
    if (!row[column].empty && point != std::string::npos) {
      decimals = std::max(decimals, row[column].text.size() - point - 1);
    }
  };
  ForEachRow(t, measure);
  if (t.total) measure(*t.total);
  return "#,##0" + (decimals > 0 ? "." + std::string(decimals, '0') : "") + " \"" +
         t.columns[column].currency + "\"";
}

void WriteCell(lxw_worksheet* ws, lxw_row_t r, lxw_col_t c, const Column& col, const Cell& cell,
               lxw_format* money, const Formats& f) {
  if (cell.empty) return;
  switch (col.type) {
    case ColumnType::kInteger:
      worksheet_write_number(ws, r, c, static_cast<double>(cell.number), nullptr);
      return;
    case ColumnType::kDuration:
      worksheet_write_number(ws, r, c, static_cast<double>(cell.number) / 86400.0, f.duration);
      return;
    case ColumnType::kMoney:
      worksheet_write_number(ws, r, c, std::strtod(cell.text.c_str(), nullptr), money);
      return;
    case ColumnType::kDate:
    case ColumnType::kDateTime:
      if (cell.text.size() >= 10 && cell.text[4] == '-') {
        lxw_datetime t = DateTimeOf(cell.text);
        worksheet_write_datetime(ws, r, c, &t, col.type == ColumnType::kDate ? f.date : f.datetime);
        return;
      }
      break;
    case ColumnType::kText:
      break;
  }
  worksheet_write_string(ws, r, c, cell.text.c_str(), nullptr);
}

void WriteSheet(lxw_workbook* wb, const Table& t, const std::string& name, const Formats& f) {
  lxw_worksheet* ws = workbook_add_worksheet(wb, name.c_str());
  std::vector<lxw_format*> money(t.columns.size(), nullptr);
  for (size_t i = 0; i < t.columns.size(); ++i) {
    const Column& c = t.columns[i];
    const auto col = static_cast<lxw_col_t>(i);
    worksheet_write_string(ws, 0, col, c.heading.c_str(), f.bold);
    if (c.type == ColumnType::kMoney) {
      money[i] = workbook_add_format(wb);
      format_set_num_format(money[i], MoneyFormat(t, i).c_str());
    }
    worksheet_set_column(ws, col, col, c.type == ColumnType::kDateTime ? 18 : 14, nullptr);
  }
  worksheet_freeze_panes(ws, 1, 0);
  // A sheet holds LXW_ROW_MAX rows: the heading, the rows that fit, and a
  // last row saying how many did not (the total is then left out, as the
  // rows above it would not add up to it).
  const int64_t room = LXW_ROW_MAX - 2;
  const bool cut = RowCount(t) > room;
  lxw_row_t r = 1;
  int64_t left_out = 0;
  ForEachRow(t, [&](const Row& row) {
    if (cut && r > static_cast<lxw_row_t>(room - 1)) {
      ++left_out;
      return;
    }
    for (size_t i = 0; i < row.size(); ++i) {
      WriteCell(ws, r, static_cast<lxw_col_t>(i), t.columns[i], row[i], money[i], f);
    }
    ++r;
  });
  if (cut) {
    const std::string note = std::to_string(left_out) +
                             " more rows than a sheet holds: the CSV and JSON forms list them all";
    worksheet_write_string(ws, r, 0, note.c_str(), f.bold);
  } else if (t.total) {
    for (size_t i = 0; i < t.total->size(); ++i) {
      WriteCell(ws, r, static_cast<lxw_col_t>(i), t.columns[i], (*t.total)[i], money[i], f);
    }
  }
}

}  // namespace

void WriteXlsx(const Report& report, const std::string& path) {
  // Rows go to the file as they are written (in order, as they are here),
  // not held until the workbook is closed: memory stays the same however
  // long a table.
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  lxw_workbook* wb = workbook_new_opt(path.c_str(), &options);
  if (wb == nullptr) throw velqua_records::Failure("cannot write '" + path + "'");
  Formats f{workbook_add_format(wb), workbook_add_format(wb), workbook_add_format(wb),
            workbook_add_format(wb)};
  format_set_bold(f.bold);
  format_set_num_format(f.duration, "[h]:mm:ss");
  format_set_num_format(f.date, "yyyy-mm-dd");
  format_set_num_format(f.datetime, "yyyy-mm-dd hh:mm:ss");
  std::set<std::string> used;
  for (const Table& t : report.tables) WriteSheet(wb, t, SheetName(t.name, used), f);
  std::string title = report.title + ", " + report.from + " to " + report.to;
  lxw_doc_properties properties{};
  properties.title = title.data();  // read only; the member is not const
  workbook_set_properties(wb, &properties);
  const lxw_error error = workbook_close(wb);
  if (error != LXW_NO_ERROR) {
    throw velqua_records::Failure("cannot write '" + path + "': " + lxw_strerror(error));
  }
}

}  // namespace velqua_reports
