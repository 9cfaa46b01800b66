// The texts of a report's cells, shared by every form.
#include "velqua/reports/report.h"

#include <cinttypes>
#include <cstdio>

namespace velqua_reports {

std::string DurationText(int64_t seconds) {
  const bool negative = seconds < 0;
  const uint64_t s = negative ? 0 - static_cast<uint64_t>(seconds) : static_cast<uint64_t>(seconds);
  char text[40];
  std::snprintf(text, sizeof text, "%s%" PRIu64 ":%02" PRIu64 ":%02" PRIu64, negative ? "-" : "",
                s / 3600, s / 60 % 60, s % 60);
  return text;
}

std::string CellText(const Column& column, const Cell& cell, bool readable) {
  if (cell.empty) return "";
  switch (column.type) {
    case ColumnType::kInteger:
      return std::to_string(cell.number);
    case ColumnType::kDuration:
      return DurationText(cell.number);
    case ColumnType::kMoney:
      return column.currency.empty() ? cell.text : cell.text + " " + column.currency;
    case ColumnType::kDateTime:
      if (readable && cell.text.size() > 10 && cell.text[10] == 'T') {
        return cell.text.substr(0, 10) + " " + cell.text.substr(11);
      }
      return cell.text;
    case ColumnType::kText:
    case ColumnType::kDate:
      break;
  }
  return cell.text;
}

}  // namespace velqua_reports
