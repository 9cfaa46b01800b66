// compare: a kind's tables for the period beside the same for the period of
// as many days just before it, with the change. Rows are matched by their
// key (the leading text columns); a table keyed by day or time (calls per
// day) is compared by its totals only, since its rows name different days
// in each period, and one without totals (the busiest half hours) is left
// out.
#include <algorithm>
#include <map>

#include "kinds_internal.h"
#include "period.h"
#include "velqua/records/common.h"

namespace velqua_reports {
namespace {

bool IsNumber(ColumnType type) {
  return type == ColumnType::kInteger || type == ColumnType::kDuration ||
         type == ColumnType::kMoney;
}

// An exact decimal "-12.30" as an integer of 10^-decimals units.
int64_t Scaled(const std::string& text, int decimals) {
  const size_t point = text.find('.');
  std::string digits = text.substr(0, point);
  std::string fraction = point == std::string::npos ? "" : text.substr(point + 1);
  fraction.resize(static_cast<size_t>(decimals), '0');
  const bool negative = !digits.empty() && digits[0] == '-';
  const int64_t whole = std::stoll(digits.empty() || digits == "-" ? "0" : digits);
  int64_t value = whole;
  for (int i = 0; i < decimals; ++i) value *= 10;
  const int64_t part = fraction.empty() ? 0 : std::stoll(fraction);
  return negative ? value - part : value + part;
}

int Decimals(const std::string& text) {
  const size_t point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

std::string Unscaled(int64_t value, int decimals) {
  const bool negative = value < 0;
  std::string digits = std::to_string(negative ? -value : value);
  if (decimals == 0) return (negative ? "-" : "") + digits;
  if (digits.size() <= static_cast<size_t>(decimals)) {
    digits.insert(0, static_cast<size_t>(decimals) + 1 - digits.size(), '0');
  }
  digits.insert(digits.size() - static_cast<size_t>(decimals), ".");
  return (negative ? "-" : "") + digits;
}

Cell Change(ColumnType type, const Cell& now, const Cell& before) {
  if (type != ColumnType::kMoney) return Cell::Number(now.number - before.number);
  const std::string a = now.empty ? "0" : now.text, b = before.empty ? "0" : before.text;
  const int decimals = std::max(Decimals(a), Decimals(b));
  return Cell::Text(Unscaled(Scaled(a, decimals) - Scaled(b, decimals), decimals));
}

// Nothing, in the form of `other` (money with its decimals: "0.00").
Cell Zero(ColumnType type, const Cell& other) {
  if (type != ColumnType::kMoney) return Cell::Number(0);
  return Cell::Text(Unscaled(0, other.empty ? 0 : Decimals(other.text)));
}

struct Layout {
  size_t keys = 0;             // leading key columns
  std::vector<size_t> values;  // compared columns
};

Layout LayoutOf(const Table& t) {
  Layout l;
  while (l.keys < t.columns.size() && t.columns[l.keys].type == ColumnType::kText) ++l.keys;
  for (size_t i = l.keys; i < t.columns.size(); ++i) {
    if (IsNumber(t.columns[i].type)) l.values.push_back(i);
  }
  return l;
}

std::string KeyOf(const std::vector<Cell>& row, size_t keys) {
  std::string key;
  for (size_t i = 0; i < keys; ++i) key += row[i].text + '\x1f';
  return key;
}

std::vector<Cell> CompareRow(const Table& t, const Layout& l, const std::vector<Cell>* now,
                             const std::vector<Cell>* before) {
  const std::vector<Cell>& any = now != nullptr ? *now : *before;
  std::vector<Cell> row(any.begin(), any.begin() + static_cast<std::ptrdiff_t>(l.keys));
  for (size_t i : l.values) {
    const ColumnType type = t.columns[i].type;
    Cell a = now != nullptr ? (*now)[i] : Zero(type, (*before)[i]);
    Cell b = before != nullptr ? (*before)[i] : Zero(type, (*now)[i]);
    if (type == ColumnType::kMoney && !a.empty && !b.empty) {  // both with the more decimals
      const int decimals = std::max(Decimals(a.text), Decimals(b.text));
      a.text = Unscaled(Scaled(a.text, decimals), decimals);
      b.text = Unscaled(Scaled(b.text, decimals), decimals);
    }
    row.insert(row.end(), {a, b, Change(type, a, b)});
  }
  return row;
}

// A table keyed by day or time: its totals, one measure a row, in a table
// per column type (counts apart from times), so that every column stays
// of one type.
void CompareTotals(const Table& now, const Table& before, const Layout& l,
                   std::vector<Table>* out) {
  std::vector<ColumnType> types;
  for (size_t i : l.values) {
    if (std::find(types.begin(), types.end(), now.columns[i].type) == types.end()) {
      types.push_back(now.columns[i].type);
    }
  }
  for (ColumnType type : types) {
    Table t{now.name + (type == ColumnType::kDuration ? ", times" : ", totals"), {}, {}, {}};
    std::string currency;
    for (size_t i : l.values) {
      if (now.columns[i].type != type) continue;
      currency = now.columns[i].currency;
      const Cell& a = (*now.total)[i];
      const Cell& b = (*before.total)[i];
      t.rows.push_back({Cell::Text(now.columns[i].heading), a, b, Change(type, a, b)});
    }
    t.columns = {TextColumn("measure"),
                 {"this period", type, currency},
                 {"previous period", type, currency},
                 {"change", type, currency}};
    out->push_back(std::move(t));
  }
}

// A keyed table: rows matched by key; with more than two measures, one
// table a measure, so that a table stays readable on a page.
void CompareKeyed(const Table& now, const Table& before, const Layout& all,
                  std::vector<Table>* out) {
  std::vector<Layout> parts;
  if (all.values.size() <= 2) {
    parts.push_back(all);
  } else {
    for (size_t i : all.values) parts.push_back({all.keys, {i}});
  }
  for (const Layout& l : parts) {
    const bool single = l.values.size() == 1;
    Table t{parts.size() == 1 ? now.name : now.name + ": " + now.columns[l.values[0]].heading,
            {},
            {},
            {}};
    for (size_t i = 0; i < l.keys; ++i) t.columns.push_back(now.columns[i]);
    for (size_t i : l.values) {
      const Column& c = now.columns[i];
      t.columns.push_back({single ? "this period" : c.heading, c.type, c.currency});
      t.columns.push_back({single ? "previous period" : c.heading + " before", c.type, c.currency});
      t.columns.push_back({"change", c.type, c.currency});
    }
    std::map<std::string, const std::vector<Cell>*> earlier;
    for (const auto& row : before.rows) earlier[KeyOf(row, l.keys)] = &row;
    for (const auto& row : now.rows) {
      const auto it = earlier.find(KeyOf(row, l.keys));
      t.rows.push_back(CompareRow(now, l, &row, it == earlier.end() ? nullptr : it->second));
      if (it != earlier.end()) earlier.erase(it);
    }
    for (const auto& row : before.rows) {
      if (earlier.count(KeyOf(row, l.keys)) > 0) {
        t.rows.push_back(CompareRow(now, l, nullptr, &row));
      }
    }
    if (now.total && before.total) t.total = CompareRow(now, l, &*now.total, &*before.total);
    out->push_back(std::move(t));
  }
}

// The columns of either table, those of `now` first, matched by heading:
// one period may have a column the other has not (a cost in a currency,
// or none when nothing was priced).
std::vector<Column> UnionOf(const Table& now, const Table& before) {
  std::vector<Column> columns = now.columns;
  for (const Column& c : before.columns) {
    const bool found = std::any_of(columns.begin(), columns.end(),
                                   [&](const Column& o) { return o.heading == c.heading; });
    if (!found) columns.push_back(c);
  }
  return columns;
}

// `t` with `columns`, a column it lacks holding nothing (0) in every row.
Table Aligned(const Table& t, const std::vector<Column>& columns) {
  std::vector<int> from;
  for (const Column& c : columns) {
    int index = -1;
    for (size_t i = 0; i < t.columns.size(); ++i) {
      if (t.columns[i].heading == c.heading) index = static_cast<int>(i);
    }
    from.push_back(index);
  }
  const auto row_of = [&](const std::vector<Cell>& row) {
    std::vector<Cell> out;
    for (size_t i = 0; i < columns.size(); ++i) {
      const ColumnType type = columns[i].type;
      out.push_back(from[i] >= 0                ? row[static_cast<size_t>(from[i])]
                    : type == ColumnType::kText ? Cell::Text("")
                                                : Zero(type, Cell::Empty()));
    }
    return out;
  };
  Table a{t.name, columns, {}, {}};
  ForEachRow(t, [&](const Row& row) { a.rows.push_back(row_of(row)); });
  if (t.total) a.total = row_of(*t.total);
  return a;
}

}  // namespace

void BuildCompare(velqua_store::Store& store, const Request& request, Report& report) {
  Request base = request;
  base.kind = request.of.empty() ? "extensions" : request.of;
  const int64_t from = DayNumber(request.from, "--from");
  const int64_t days = DayNumber(request.to, "--to") - from + 1;
  Request earlier = base;
  earlier.from = DayText(from - days);
  earlier.to = DayText(from - 1);
  const Report now = BuildReport(store, base);
  const Report before = BuildReport(store, earlier);
  report.title = now.title + " against the previous period";
  report.notes.push_back("Previous period: " + earlier.from + " to " + earlier.to);
  for (size_t i = 0; i < now.tables.size() && i < before.tables.size(); ++i) {
    const std::vector<Column> columns = UnionOf(now.tables[i], before.tables[i]);
    const Table a = Aligned(now.tables[i], columns), b = Aligned(before.tables[i], columns);
    const Layout l = LayoutOf(a);
    if (l.values.empty()) continue;
    if (l.keys > 0) {
      CompareKeyed(a, b, l, &report.tables);
    } else if (a.total && b.total) {
      CompareTotals(a, b, l, &report.tables);
    }
  }
}

}  // namespace velqua_reports
