// compare: a kind's tables for the period beside the same for the period of
// as many days just before it, with the change. Rows are matched by their
// key (the leading text columns); a table keyed by day or time (calls per
// day, the busiest half hours) is compared by its total only, since its
// rows name different days in each period.
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

Cell Zero(ColumnType type) {
  return type == ColumnType::kMoney ? Cell::Text("0") : Cell::Number(0);
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
    const Cell a = now != nullptr ? (*now)[i] : Zero(type);
    const Cell b = before != nullptr ? (*before)[i] : Zero(type);
    row.insert(row.end(), {a, b, Change(type, a, b)});
  }
  return row;
}

// The table compared; nothing when it has neither keys nor a total.
std::optional<Table> Compared(const Table& now, const Table& before) {
  const Layout l = LayoutOf(now);
  if (l.values.empty() || (l.keys == 0 && !now.total)) return std::nullopt;
  Table t{now.name, {}, {}, {}};
  for (size_t i = 0; i < l.keys; ++i) t.columns.push_back(now.columns[i]);
  if (l.keys == 0) t.columns.push_back(TextColumn(""));
  for (size_t i : l.values) {
    const Column& c = now.columns[i];
    t.columns.push_back(c);
    t.columns.push_back({c.heading + " before", c.type, c.currency});
    t.columns.push_back({"change", c.type, c.currency});
  }
  if (l.keys > 0) {
    std::map<std::string, const std::vector<Cell>*> earlier;
    for (const auto& row : before.rows) earlier[KeyOf(row, l.keys)] = &row;
    for (const auto& row : now.rows) {
      const auto it = earlier.find(KeyOf(row, l.keys));
      t.rows.push_back(CompareRow(now, l, &row, it == earlier.end() ? nullptr : it->second));
      if (it != earlier.end()) earlier.erase(it);
    }
    for (const auto& row : before.rows) {
      if (earlier.count(KeyOf(row, l.keys)) > 0)
        t.rows.push_back(CompareRow(now, l, nullptr, &row));
    }
  }
  if (now.total && before.total) {
    std::vector<Cell> row = CompareRow(now, l, &*now.total, &*before.total);
    if (l.keys > 0) {
      t.total = std::move(row);
    } else {
      row.insert(row.begin(), Cell::Text("total"));
      t.rows.push_back(std::move(row));
    }
  }
  return t;
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
  report.title = now.title + ": " + request.from + " to " + request.to + " against " +
                 earlier.from + " to " + earlier.to;
  report.notes.push_back("Previous period: " + earlier.from + " to " + earlier.to);
  for (size_t i = 0; i < now.tables.size() && i < before.tables.size(); ++i) {
    if (auto t = Compared(now.tables[i], before.tables[i])) report.tables.push_back(std::move(*t));
  }
}

}  // namespace velqua_reports
