// missed: unanswered incoming calls per extension and per hour, their ring
// time, and those never called back.
#include <cstdio>
#include <map>
#include <memory>

#include "kinds_internal.h"
#include "period.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {
namespace {

std::vector<Column> MissedColumns(const char* key) {
  return {TextColumn(key), IntColumn("missed"), DurationColumn("average ring"),
          DurationColumn("ring 90th percentile"), IntColumn("not called back")};
}

// Missed calls not called back, by extension or by hour.
using NotCalledBack = std::map<std::string, int64_t>;

std::vector<Cell> MissedRow(const std::string& key, const velqua_store::MissedCounts& m,
                            int64_t not_called_back) {
  return {Cell::Text(key), Cell::Number(m.missed), AverageCell(m.ring_seconds, m.ring_calls),
          m.ring_calls == 0 ? Cell::Empty() : Cell::Number(m.ring_p90),
          Cell::Number(not_called_back)};
}

// The total row: sums, and the average over every call with a ring time
// (the percentile of the whole is not the sum of the groups': left empty).
std::vector<Cell> MissedTotal(const std::vector<velqua_store::MissedCounts>& rows,
                              int64_t not_called_back) {
  velqua_store::MissedCounts all;
  for (const velqua_store::MissedCounts& m : rows) {
    all.missed += m.missed;
    all.ring_calls += m.ring_calls;
    all.ring_seconds += m.ring_seconds;
  }
  std::vector<Cell> total = MissedRow("total", all, not_called_back);
  total[3] = Cell::Empty();
  return total;
}

std::string HourLabel(int hour) {
  char text[8];
  std::snprintf(text, sizeof text, "%02d", hour);
  return text;
}

// "24 h", "90 min", "45 s".
std::string WindowText(int64_t seconds) {
  if (seconds % 3600 == 0) return std::to_string(seconds / 3600) + " h";
  if (seconds % 60 == 0) return std::to_string(seconds / 60) + " min";
  return std::to_string(seconds) + " s";
}

}  // namespace

void BuildMissed(velqua_store::Store& store, const Request& request, Report& report) {
  using velqua_store::CallGroup;
  const velqua_store::Span span = SpanFor(store, request);
  const int64_t window = request.callback_seconds;
  report.notes.push_back("Called back: an outgoing call to the same number within " +
                         WindowText(window) + " of the missed call");
  // The list of calls never called back grows with the period: it goes
  // to disk as it is read, counted by extension and hour on the way.
  Table never{"Missed calls never called back",
              {{"start", ColumnType::kDateTime, ""},
               TextColumn("extension"),
               TextColumn("number"),
               DurationColumn("ring")},
              {},
              {},
              std::make_shared<RowFile>(),
              true};  // a list to search: a PDF shows its first rows
  NotCalledBack by_extension_never, by_hour_never;
  Row row(4);
  velqua_store::ForEachMissedNotCalledBack(
      store, span, window, [&](const velqua_store::MissedCall& m) {
        ++by_extension_never[m.extension];
        ++by_hour_never[m.start.substr(11, 2)];
        row[0] = Cell::Text(m.start);
        row[1] = Cell::Text(m.extension);
        row[2] = Cell::Text(m.number);
        row[3] = m.ring < 0 ? Cell::Empty() : Cell::Number(m.ring);
        never.more->Append(row);
      });
  const int64_t total_never = never.more->size();

  const auto by_extension = velqua_store::CountMissedBy(store, span, CallGroup::kExtension);
  Table extensions{"Missed calls by extension", MissedColumns("extension"), {}, {}};
  for (const auto& m : by_extension) {
    extensions.rows.push_back(MissedRow(m.key, m, by_extension_never[m.key]));
  }
  extensions.total = MissedTotal(by_extension, total_never);
  report.tables.push_back(std::move(extensions));

  const auto by_hour = velqua_store::CountMissedBy(store, span, CallGroup::kHour);
  std::map<std::string, velqua_store::MissedCounts> hours;
  for (const auto& m : by_hour) hours[m.key] = m;
  Table per_hour{"Missed calls by hour", MissedColumns("hour"), {}, {}};
  Chart chart{Chart::Kind::kBars,
              "Missed calls by hour of the day",
              "missed calls",
              {},
              {},
              {},
              "",
              {},
              {}};
  for (int h = 0; h < 24; ++h) {
    const velqua_store::MissedCounts& m = hours[HourLabel(h)];
    per_hour.rows.push_back(MissedRow(HourLabel(h), m, by_hour_never[HourLabel(h)]));
    chart.labels.push_back(HourLabel(h));
    chart.values.push_back(m.missed);
  }
  per_hour.total = MissedTotal(by_hour, total_never);
  report.tables.push_back(std::move(per_hour));

  report.tables.push_back(std::move(never));
  report.charts.push_back(std::move(chart));
}

}  // namespace velqua_reports
