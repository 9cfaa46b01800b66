// The builders of each kind (kind_*.cpp). Each fills the tables, notes and
// charts of a report whose title, period and switches are already set.
#pragma once

#include "velqua/reports/kinds.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {

void BuildTrunks(velqua_store::Store& store, const Request& request, Report& report);
void BuildMissed(velqua_store::Store& store, const Request& request, Report& report);
void BuildTraffic(velqua_store::Store& store, const Request& request, Report& report);
void BuildExtensions(velqua_store::Store& store, const Request& request, Report& report);
void BuildItemised(velqua_store::Store& store, const Request& request, Report& report);
void BuildCompare(velqua_store::Store& store, const Request& request, Report& report);
void BuildDepartments(velqua_store::Store& store, const Request& request, Report& report);
void BuildAccounts(velqua_store::Store& store, const Request& request, Report& report);
void BuildDestinations(velqua_store::Store& store, const Request& request, Report& report);

// The store's span of the request: its days, its switch, and with
// --department the days each extension belonged to the department.
velqua_store::Span SpanFor(velqua_store::Store& store, const Request& request);

// Column makers.
inline Column TextColumn(std::string heading) {
  return {std::move(heading), ColumnType::kText, ""};
}
inline Column IntColumn(std::string heading) {
  return {std::move(heading), ColumnType::kInteger, ""};
}
inline Column DurationColumn(std::string heading) {
  return {std::move(heading), ColumnType::kDuration, ""};
}

// The average of `sum` over `n`, rounded half up to a whole number; empty
// when n is 0.
inline Cell AverageCell(int64_t sum, int64_t n) {
  return n == 0 ? Cell::Empty() : Cell::Number((2 * sum + n) / (2 * n));
}

// The columns of call counts after the key column, a row of them, and the
// sum of a grouping's rows (traffic and extensions).
std::vector<Column> CountColumns(Column key);
std::vector<Cell> CountCells(Cell key, const velqua_store::CallCounts& counts);
velqua_store::CallCounts SumCounts(const std::vector<velqua_store::CallCounts>& rows);

}  // namespace velqua_reports
