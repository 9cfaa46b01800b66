// extensions: calls and talk time per extension; with --itemised, every
// call of one extension (the page an employee or a hotel guest is handed).
#include <algorithm>

#include "kinds_internal.h"
#include "period.h"
#include "velqua/records/names.h"

namespace velqua_reports {
namespace {

constexpr size_t kChartedExtensions = 20;

Chart BusiestExtensions(const std::vector<velqua_store::CallCounts>& counts) {
  std::vector<const velqua_store::CallCounts*> order;
  for (const auto& c : counts) order.push_back(&c);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto* a, const auto* b) { return a->calls > b->calls; });
  Chart c{Chart::Kind::kBars, "Calls per extension (busiest 20)", "calls", {}, {}, {}, "", {}, {}};
  for (size_t i = 0; i < order.size() && i < kChartedExtensions; ++i) {
    c.labels.push_back(order[i]->key.empty() ? "(none)" : order[i]->key);
    c.values.push_back(order[i]->calls);
  }
  return c;
}

}  // namespace

void BuildExtensions(velqua_store::Store& store, const Request& request, Report& report) {
  const velqua_store::Span span = SpanOf(request.from, request.to, request.switch_name);
  const auto counts = velqua_store::CountCallsBy(store, span, velqua_store::CallGroup::kExtension);
  Table t{"Extensions", CountColumns(TextColumn("extension")), {}, {}};
  for (const auto& c : counts) t.rows.push_back(CountCells(Cell::Text(c.key), c));
  t.total = CountCells(Cell::Text("total"), SumCounts(counts));
  report.tables.push_back(std::move(t));
  report.charts.push_back(BusiestExtensions(counts));
}

void BuildItemised(velqua_store::Store& store, const Request& request, Report& report) {
  velqua_store::CallFilter filter;
  filter.from = request.from;
  filter.to = request.to;
  filter.switch_name = request.switch_name;
  filter.extension = request.itemised;
  Table t{"Calls",
          {{"start", ColumnType::kDateTime, ""},
           TextColumn("type"),
           TextColumn("number"),
           TextColumn("trunk"),
           DurationColumn("ring"),
           DurationColumn("duration")},
          {},
          {}};
  int64_t seconds = 0;
  const auto text = [](const std::optional<std::string>& s) { return Cell::Text(s.value_or("")); };
  const auto number = [](const std::optional<int64_t>& n) {
    return n ? Cell::Number(*n) : Cell::Empty();
  };
  store.ListCalls(filter, [&](const velqua_store::StoredCall& c) {
    std::string type = velqua_records::CallTypeWord(c.type);
    if (c.attribute == 4) type += ", unanswered";
    t.rows.push_back({text(c.start), Cell::Text(type), text(c.dialled), text(c.trunk),
                      number(c.ring), number(c.duration)});
    seconds += c.duration.value_or(0);
  });
  t.total = {Cell::Text("total"), Cell::Text(std::to_string(t.rows.size()) + " calls"),
             Cell::Text(""),      Cell::Text(""),
             Cell::Empty(),       Cell::Number(seconds)};
  report.tables.push_back(std::move(t));
}

}  // namespace velqua_reports
