// The text forms of a report: aligned tables for a terminal, CSV, JSON.
#include <cstdio>

#include "velqua/records/common.h"
#include "velqua/records/text_table.h"
#include "velqua/reports/output.h"

namespace velqua_reports {
namespace {

bool IsNumeric(ColumnType type) {
  return type == ColumnType::kInteger || type == ColumnType::kDuration ||
         type == ColumnType::kMoney;
}

void Put(const std::string& text, std::FILE* out) {
  if (std::fwrite(text.data(), 1, text.size(), out) != text.size()) {
    throw velqua_records::Failure("cannot write the report");
  }
}

std::string Heading(const Report& r) {
  std::string switches;
  for (const std::string& s : r.switches) switches += (switches.empty() ? "" : ", ") + s;
  return r.title + "\n" + r.from + " to " + r.to +
         (switches.empty()
              ? ""
              : " - switch" + std::string(r.switches.size() > 1 ? "es " : " ") + switches) +
         "\n";
}

std::vector<std::string> Texts(const Table& t, const std::vector<Cell>& row, bool readable) {
  std::vector<std::string> cells;
  for (size_t i = 0; i < t.columns.size(); ++i) {
    cells.push_back(CellText(t.columns[i], row[i], readable));
  }
  return cells;
}

// A row's cells for CSV: money as its bare decimal (the currency is in the
// column's heading), so that a spreadsheet reads it as a number.
std::vector<std::string> CsvTexts(const Table& t, const std::vector<Cell>& row) {
  std::vector<std::string> cells = Texts(t, row, false);
  for (size_t i = 0; i < cells.size(); ++i) {
    if (t.columns[i].type == ColumnType::kMoney && !row[i].empty) cells[i] = row[i].text;
  }
  return cells;
}

void CsvRow(const std::vector<std::string>& cells, std::string& out) {
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) out += ',';
    velqua_records::AppendCsvField(out, cells[i]);
  }
  out += "\r\n";
}

void JsonString(const std::string& text, std::string& out) {
  out += '"';
  velqua_records::AppendJsonEscaped(out, text);
  out += '"';
}

const char* TypeName(ColumnType type) {
  switch (type) {
    case ColumnType::kText:
      return "text";
    case ColumnType::kInteger:
      return "integer";
    case ColumnType::kDuration:
      return "duration";
    case ColumnType::kMoney:
      return "money";
    case ColumnType::kDate:
      return "date";
    case ColumnType::kDateTime:
      return "datetime";
  }
  return "text";
}

void JsonCell(const Column& c, const Cell& cell, std::string& out) {
  if (cell.empty) {
    out += "null";
  } else if (c.type == ColumnType::kInteger || c.type == ColumnType::kDuration) {
    out += std::to_string(cell.number);
  } else {
    JsonString(cell.text, out);
  }
}

void JsonRow(const Table& t, const Row& row, std::string& out) {
  out += '[';
  for (size_t i = 0; i < t.columns.size(); ++i) {
    if (i > 0) out += ',';
    JsonCell(t.columns[i], row[i], out);
  }
  out += ']';
}

// What is written is held until it is a block's worth, then passed on: a
// long table goes out as it is read, never held whole.
void PutBlock(std::string& text, std::FILE* out) {
  if (text.size() < (1u << 16)) return;
  Put(text, out);
  text.clear();
}

void JsonTable(const Table& t, std::string& out, std::FILE* file) {
  out += "{\"name\":";
  JsonString(t.name, out);
  out += ",\"columns\":[";
  for (size_t i = 0; i < t.columns.size(); ++i) {
    out += i > 0 ? ",{\"name\":" : "{\"name\":";
    JsonString(t.columns[i].heading, out);
    out += ",\"type\":\"" + std::string(TypeName(t.columns[i].type)) + "\"";
    if (!t.columns[i].currency.empty()) {
      out += ",\"currency\":";
      JsonString(t.columns[i].currency, out);
    }
    out += '}';
  }
  out += "],\"rows\":[";
  bool first = true;
  ForEachRow(t, [&](const Row& row) {
    if (!first) out += ',';
    first = false;
    JsonRow(t, row, out);
    PutBlock(out, file);
  });
  out += "],\"total\":";
  if (t.total) {
    JsonRow(t, *t.total, out);
  } else {
    out += "null";
  }
  out += '}';
}

void JsonList(const std::vector<std::string>& items, std::string& out) {
  out += '[';
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) out += ',';
    JsonString(items[i], out);
  }
  out += ']';
}

}  // namespace

void WriteTable(const Report& report, std::FILE* out) {
  std::string text = Heading(report);
  for (const std::string& note : report.notes) text += note + "\n";
  for (const Table& t : report.tables) {
    text += "\n" + t.name + "\n";
    std::vector<std::string> heads;
    std::vector<bool> right;
    for (const Column& c : t.columns) {
      heads.push_back(c.heading);
      right.push_back(IsNumeric(c.type));
    }
    velqua_records::AlignedTable aligned(heads, right);
    ForEachRow(t, [&](const Row& row) {
      aligned.Add(Texts(t, row, true), &text);
      PutBlock(text, out);
    });
    if (t.total) aligned.Add(Texts(t, *t.total, true), &text);
    aligned.Finish(&text);
  }
  Put(text, out);
}

void WriteCsv(const Report& report, std::FILE* out) {
  std::string text;
  for (size_t n = 0; n < report.tables.size(); ++n) {
    const Table& t = report.tables[n];
    if (n > 0) text += "\r\n";
    CsvRow({t.name}, text);
    std::vector<std::string> heads;
    for (const Column& c : t.columns) {
      heads.push_back(c.currency.empty() ? c.heading : c.heading + " (" + c.currency + ")");
    }
    CsvRow(heads, text);
    ForEachRow(t, [&](const Row& row) {
      CsvRow(CsvTexts(t, row), text);
      PutBlock(text, out);
    });
    if (t.total) CsvRow(CsvTexts(t, *t.total), text);
  }
  Put(text, out);
}

void WriteJson(const Report& report, std::FILE* out) {
  std::string text = "{\"kind\":";
  JsonString(report.kind, text);
  text += ",\"title\":";
  JsonString(report.title, text);
  text += ",\"from\":\"" + report.from + "\",\"to\":\"" + report.to + "\",\"switches\":";
  JsonList(report.switches, text);
  text += ",\"notes\":";
  JsonList(report.notes, text);
  text += ",\"tables\":[";
  for (size_t i = 0; i < report.tables.size(); ++i) {
    if (i > 0) text += ',';
    JsonTable(report.tables[i], text, out);
  }
  text += "]}\n";
  Put(text, out);
}

}  // namespace velqua_reports
