// trunks: calls and talk time per trunk, and the lines in use per half hour
// against the lines the user has.
#include <algorithm>
#include <map>

#include "costs.h"
#include "kinds_internal.h"
#include "period.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {
namespace {

constexpr size_t kBusiest = 10;

Table TrunkTable(const std::vector<velqua_store::CallCounts>& counts,
                 const std::vector<velqua_store::CostCounts>& costs, std::string* note) {
  std::map<std::string, Totals> by_trunk;
  Totals all;
  for (const velqua_store::CostCounts& c : costs) {
    by_trunk[c.key].Add(c);
    all.Add(c);
  }
  const Currencies currencies = CurrenciesOf({&all.cost});
  std::vector<Column> columns{TextColumn("trunk"), IntColumn("calls"), DurationColumn("talk time")};
  for (Column& c : CostColumns(currencies)) columns.push_back(std::move(c));
  Table t{"Trunks", std::move(columns), {}, {}};
  const auto row_of = [&](const std::string& key, int64_t calls, int64_t seconds,
                          const Amounts& cost) {
    std::vector<Cell> row{Cell::Text(key), Cell::Number(calls), Cell::Number(seconds)};
    for (Cell& cell : CostCells(currencies, cost)) row.push_back(std::move(cell));
    return row;
  };
  int64_t calls = 0, seconds = 0;
  for (const velqua_store::CallCounts& c : counts) {
    t.rows.push_back(row_of(c.key, c.calls, c.seconds, by_trunk[c.key].cost));
    calls += c.calls;
    seconds += c.seconds;
  }
  t.total = row_of("total", calls, seconds, all.cost);
  *note = UnpricedNote(all.unpriced);
  return t;
}

// The lines in use in every half hour of the period [first, end), slots
// without a start or an end of a call at the level their predecessors left.
std::vector<int64_t> PeakPerSlot(const std::vector<velqua_store::ChannelSlot>& slots, int64_t first,
                                 int64_t end) {
  std::vector<int64_t> peaks(static_cast<size_t>(end - first), 0);
  int64_t level = 0;
  size_t i = 0;
  for (int64_t s = first; s < end; ++s) {
    int64_t peak = level;
    for (; i < slots.size() && slots[i].slot <= s; ++i) {
      if (slots[i].slot == s) peak = slots[i].peak;
      level += slots[i].change;
    }
    peaks[static_cast<size_t>(s - first)] = peak;
  }
  return peaks;
}

Table BusiestTable(const std::vector<int64_t>& peaks, int64_t first) {
  std::vector<size_t> order(peaks.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return peaks[a] > peaks[b]; });
  Table t{"Busiest half hours",
          {{"half hour", ColumnType::kDateTime, ""}, IntColumn("lines in use")},
          {},
          {}};
  for (size_t i = 0; i < order.size() && i < kBusiest && peaks[order[i]] > 0; ++i) {
    std::string slot = SlotText(first + static_cast<int64_t>(order[i]));
    slot[10] = 'T';
    t.rows.push_back({Cell::Text(slot), Cell::Number(peaks[order[i]])});
  }
  return t;
}

Table LevelsTable(const std::vector<int64_t>& peaks) {
  std::map<int64_t, int64_t> count;
  for (int64_t p : peaks) ++count[p];
  Table t{
      "Half hours by lines in use", {TextColumn("lines in use"), IntColumn("half hours")}, {}, {}};
  for (const auto& [level, n] : count)
    t.rows.push_back({Cell::Text(std::to_string(level)), Cell::Number(n)});
  t.total = {Cell::Text("total"), Cell::Number(static_cast<int64_t>(peaks.size()))};
  return t;
}

// Lines in use per half hour; per day (the day's most) over a period
// longer than a month, where half hours would be too thin to see.
Chart LinesChart(const std::vector<int64_t>& peaks, int64_t first, int64_t lines) {
  Chart c;
  c.kind = Chart::Kind::kArea;
  c.title = "Trunk lines in use";
  c.value_label = "lines in use";
  const bool by_day = peaks.size() > 31 * 48;
  for (size_t i = 0; i < peaks.size(); ++i) {
    const std::string slot = SlotText(first + static_cast<int64_t>(i));
    if (!by_day) {
      c.labels.push_back(slot);
      c.values.push_back(peaks[i]);
    } else if (i % 48 == 0) {
      c.labels.push_back(slot.substr(0, 10));
      c.values.push_back(peaks[i]);
    } else {
      c.values.back() = std::max(c.values.back(), peaks[i]);
    }
  }
  if (lines > 0) {
    c.limit = lines;
    c.limit_label = std::to_string(lines) + " lines";
  }
  return c;
}

}  // namespace

void BuildTrunks(velqua_store::Store& store, const Request& request, Report& report) {
  const velqua_store::Span span = SpanFor(store, request);
  std::string unpriced;
  const auto costs = velqua_store::CostsBy(store, span, velqua_store::CostGroup::kTrunk);
  report.tables.push_back(TrunkTable(CountsOf(costs), costs, &unpriced));
  if (!unpriced.empty()) report.notes.push_back(unpriced);
  const int64_t first = DayNumber(span.from, "--from") * 48;
  const int64_t end = DayNumber(span.to_next, "--to") * 48;
  const std::vector<int64_t> peaks =
      PeakPerSlot(velqua_store::ChannelsInUse(store, span), first, end);
  const int64_t most = peaks.empty() ? 0 : *std::max_element(peaks.begin(), peaks.end());
  report.notes.push_back("Most trunk lines in use at once: " + std::to_string(most));
  if (request.lines > 0) {
    const auto full =
        std::count_if(peaks.begin(), peaks.end(), [&](int64_t p) { return p >= request.lines; });
    report.notes.push_back("Half hours with all " + std::to_string(request.lines) +
                           " lines in use: " + std::to_string(full));
  }
  report.tables.push_back(BusiestTable(peaks, first));
  report.tables.push_back(LevelsTable(peaks));
  report.charts.push_back(LinesChart(peaks, first, request.lines));
}

}  // namespace velqua_reports
