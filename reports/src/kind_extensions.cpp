// extensions: calls and talk time per extension; with --itemised, every
// call of one extension (the page an employee or a hotel guest is handed).
#include <algorithm>
#include <map>
#include <memory>

#include "costs.h"
#include "directory_view.h"
#include "kinds_internal.h"
#include "period.h"
#include "velqua/rating/money.h"
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
  const velqua_store::Span span = SpanFor(store, request);
  // One pass of the calls: counts and costs by extension.
  const auto rows = velqua_store::CostsBy(store, span, velqua_store::CostGroup::kExtension);
  const auto counts = CountsOf(rows);
  std::map<std::string, Totals> costs;
  Totals all;
  for (const auto& row : rows) {
    costs[row.key].Add(row);
    all.Add(row);
  }
  const Currencies currencies = CurrenciesOf({&all.cost});
  // Who an extension belongs to as the period ends.
  const DirectoryView directory(store.ListDirectory());
  const bool named = directory.HasExtensions();
  std::vector<Column> columns = CountColumns(TextColumn("extension"));
  if (named) columns.insert(columns.begin() + 1, {TextColumn("person"), TextColumn("department")});
  for (Column& c : CostColumns(currencies)) columns.push_back(std::move(c));
  Table t{"Extensions", std::move(columns), {}, {}};
  const auto row_of = [&](Cell key, const velqua_store::CallCounts& c, const Amounts& cost,
                          const velqua_rating::DirectoryEntry* entry) {
    std::vector<Cell> row = CountCells(std::move(key), c);
    if (named) {
      row.insert(row.begin() + 1, {Cell::Text(entry != nullptr ? entry->person : ""),
                                   Cell::Text(entry != nullptr ? entry->department : "")});
    }
    for (Cell& cell : CostCells(currencies, cost)) row.push_back(std::move(cell));
    return row;
  };
  for (const auto& c : counts) {
    t.rows.push_back(
        row_of(Cell::Text(c.key), c, costs[c.key].cost, directory.Extension(c.key, request.to)));
  }
  t.total = row_of(Cell::Text("total"), SumCounts(counts), all.cost, nullptr);
  report.tables.push_back(std::move(t));
  report.charts.push_back(BusiestExtensions(counts));
  const std::string note = UnpricedNote(all.unpriced);
  if (!note.empty()) report.notes.push_back(note);
}

void BuildItemised(velqua_store::Store& store, const Request& request, Report& report) {
  velqua_store::CallFilter filter;
  filter.from = request.from;
  filter.to = request.to;
  filter.switch_name = request.switch_name;
  filter.extension = request.itemised;
  // A year of a busy extension is many calls: each goes to disk as it is
  // read (start, type, number, destination, trunk, ring, duration, cost,
  // currency), and is made a row of the bill once the columns are known
  // (the destinations and currencies seen).
  const auto text = [](const std::optional<std::string>& s) { return Cell::Text(s.value_or("")); };
  const auto number = [](const std::optional<int64_t>& n) {
    return n ? Cell::Number(*n) : Cell::Empty();
  };
  RowFile read;
  Row call(9);
  Amounts sum;
  int64_t seconds = 0, unpriced = 0;
  bool destinations = false;  // the destination once calls are priced; before, always empty
  store.ListCalls(filter, [&](const velqua_store::StoredCall& c) {
    seconds += c.duration.value_or(0);
    const bool priced = c.cost && c.currency;
    if (priced) {
      const size_t point = c.cost->find('.');
      const int32_t decimals =
          point == std::string::npos ? 0 : static_cast<int32_t>(c.cost->size() - point - 1);
      AddMoney(sum, {*c.currency, decimals, UnitsOf(*c.cost, decimals)});
    }
    if (c.cost_reason && !c.cost) ++unpriced;
    destinations = destinations || c.destination.has_value();
    std::string type = velqua_records::CallTypeWord(c.type);
    if (c.attribute == 4) type += ", unanswered";
    call = {text(c.start),
            Cell::Text(type),
            text(c.dialled),
            text(c.destination),
            text(c.trunk),
            number(c.ring),
            number(c.duration),
            priced ? Cell::Text(*c.cost) : Cell::Empty(),
            priced ? Cell::Text(*c.currency) : Cell::Empty()};
    read.Append(call);
  });
  const Currencies currencies = CurrenciesOf({&sum});
  std::vector<Column> columns{{"start", ColumnType::kDateTime, ""},
                              TextColumn("type"),
                              TextColumn("number"),
                              TextColumn("destination"),
                              TextColumn("trunk"),
                              DurationColumn("ring"),
                              DurationColumn("duration")};
  if (!destinations) columns.erase(columns.begin() + 3);
  for (Column& c : CostColumns(currencies)) columns.push_back(std::move(c));
  Table t{"Calls", std::move(columns), {}, {}, std::make_shared<RowFile>()};
  Row row;
  read.ForEach([&](const Row& c) {
    row.assign(c.begin(), c.begin() + 7);
    if (!destinations) row.erase(row.begin() + 3);
    for (const auto& [currency, decimals] : currencies) {
      const bool priced = !c[8].empty && c[8].text == currency;
      row.push_back(
          priced ? Cell::Text(velqua_rating::FormatUnits(UnitsOf(c[7].text, decimals), decimals))
                 : Cell::Empty());
    }
    t.more->Append(row);
  });
  std::vector<Cell> total{Cell::Text("total"),  Cell::Text(std::to_string(read.size()) + " calls"),
                          Cell::Text(""),       Cell::Text(""),
                          Cell::Text(""),       Cell::Empty(),
                          Cell::Number(seconds)};
  if (!destinations) total.erase(total.begin() + 3);
  for (Cell& cell : CostCells(currencies, sum)) total.push_back(std::move(cell));
  t.total = std::move(total);
  report.tables.push_back(std::move(t));
  const DirectoryView directory(store.ListDirectory());
  if (const auto* e = directory.Extension(request.itemised, request.to)) {
    std::string who = e->person;
    for (const std::string* part : {&e->department, &e->cost_centre}) {
      if (!part->empty()) who += (who.empty() ? "" : ", ") + *part;
    }
    if (!who.empty()) report.notes.push_back("Extension " + request.itemised + ": " + who);
  }
  const std::string note = UnpricedNote(unpriced);
  if (!note.empty()) report.notes.push_back(note);
}

}  // namespace velqua_reports
