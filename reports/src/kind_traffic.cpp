// traffic: calls per day, and calls by hour of the day and day of the week.
#include <cstdio>
#include <map>

#include "kinds_internal.h"
#include "period.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {
namespace {

constexpr const char* kWeekdays[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};

std::vector<Cell> CountsRow(Cell key, const velqua_store::CallCounts& c) {
  return {std::move(key),           Cell::Number(c.calls),    Cell::Number(c.outgoing),
          Cell::Number(c.incoming), Cell::Number(c.internal), Cell::Number(c.unanswered),
          Cell::Number(c.seconds)};
}

void Add(velqua_store::CallCounts& sum, const velqua_store::CallCounts& c) {
  sum.calls += c.calls;
  sum.outgoing += c.outgoing;
  sum.incoming += c.incoming;
  sum.internal += c.internal;
  sum.unanswered += c.unanswered;
  sum.seconds += c.seconds;
}

}  // namespace

// The columns of call counts, after the key column (shared with extensions).
std::vector<Column> CountColumns(Column key) {
  return {std::move(key),
          IntColumn("calls"),
          IntColumn("outgoing"),
          IntColumn("incoming"),
          IntColumn("internal"),
          IntColumn("unanswered"),
          DurationColumn("talk time")};
}

std::vector<Cell> CountCells(Cell key, const velqua_store::CallCounts& c) {
  return CountsRow(std::move(key), c);
}

velqua_store::CallCounts SumCounts(const std::vector<velqua_store::CallCounts>& rows) {
  velqua_store::CallCounts sum;
  for (const auto& c : rows) Add(sum, c);
  return sum;
}

void BuildTraffic(velqua_store::Store& store, const Request& request, Report& report) {
  using velqua_store::CallGroup;
  const velqua_store::Span span = SpanFor(store, request);
  const auto per_day = velqua_store::CountCallsBy(store, span, CallGroup::kDay);
  std::map<std::string, velqua_store::CallCounts> days;
  for (const auto& c : per_day) days[c.key] = c;
  Table daily{"Calls per day", CountColumns({"day", ColumnType::kDate, ""}), {}, {}};
  Chart line{Chart::Kind::kLine, "Calls per day", "calls", {}, {}, {}, "", {}, {}};
  const int64_t end = DayNumber(span.to_next, "--to");
  for (int64_t d = DayNumber(span.from, "--from"); d < end; ++d) {
    const std::string day = DayText(d);
    daily.rows.push_back(CountsRow(Cell::Text(day), days[day]));
    line.labels.push_back(day);
    line.values.push_back(days[day].calls);
  }
  daily.total = CountsRow(Cell::Text("total"), SumCounts(per_day));
  report.tables.push_back(std::move(daily));

  // Keys "w HH", w from Sunday 0: rows by hour, columns Monday first.
  std::vector<std::vector<int64_t>> grid(24, std::vector<int64_t>(7, 0));
  for (const auto& c : velqua_store::CountCallsBy(store, span, CallGroup::kWeekdayHour)) {
    const int sunday_first = c.key[0] - '0';
    const int hour = std::stoi(c.key.substr(2));
    grid[static_cast<size_t>(hour)][static_cast<size_t>((sunday_first + 6) % 7)] = c.calls;
  }
  Table heat{"Calls by hour and weekday", {TextColumn("hour")}, {}, {}};
  Chart map{Chart::Kind::kHeatmap, "Calls by hour and weekday", "calls", {}, {}, {}, "", {}, {}};
  for (const char* w : kWeekdays) {
    heat.columns.push_back(IntColumn(w));
    map.labels.emplace_back(w);
  }
  for (int h = 0; h < 24; ++h) {
    char hour[8];
    std::snprintf(hour, sizeof hour, "%02d", h);
    std::vector<Cell> row{Cell::Text(hour)};
    for (int64_t n : grid[static_cast<size_t>(h)]) row.push_back(Cell::Number(n));
    heat.rows.push_back(std::move(row));
    map.row_labels.emplace_back(hour);
  }
  map.grid = grid;
  report.tables.push_back(std::move(heat));
  report.charts.push_back(std::move(line));
  report.charts.push_back(std::move(map));
}

}  // namespace velqua_reports
