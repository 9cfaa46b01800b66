// The forms a report is written in. Every form reads the same Report; the
// image forms (png, svg) draw its charts one above the other and refuse a
// report without one.
#pragma once

#include <cstdio>
#include <string>

#include "velqua/reports/report.h"

namespace velqua_reports {

enum class Form { kTable, kCsv, kJson, kPdf, kXlsx, kPng, kSvg };

// The form named "table", "csv", "json", "pdf", "xlsx", "png" or "svg";
// throws velqua_records::Failure naming the choices.
Form FormNamed(const std::string& name);
const char* FormName(Form form);
// Whether the form is bytes for a file (pdf, xlsx, png), not text for a
// terminal.
bool IsBinary(Form form);

// The text forms, to `out`:
// table: each table aligned under its name, numbers right-aligned.
// csv: RFC 4180, CRLF line ends; each table a section: a row with its name,
//   its header row, its rows, its total; sections separated by an empty line.
// json: one object (kind, title, from, to, switches, notes, tables with
//   typed columns; integers and durations as numbers of seconds, money as
//   decimal strings, empty cells null).
void WriteTable(const Report& report, std::FILE* out);
void WriteCsv(const Report& report, std::FILE* out);
void WriteJson(const Report& report, std::FILE* out);

// The file forms, to `path` (overwritten): an A4 PDF (title, period and
// switches, the chart, tables across pages with their headings repeated,
// page numbers); a spreadsheet with one sheet per table and typed cells;
// the charts alone as PNG or SVG. Throw velqua_records::Failure.
void WritePdf(const Report& report, const std::string& path);
void WriteXlsx(const Report& report, const std::string& path);
void WriteChartImage(const Report& report, Form form, const std::string& path);

// Writes the report in `form` to `path`, all or nothing: into a temporary
// file beside it, renamed over `path` once complete; on failure the
// temporary file is removed and `path` is left as it was. An empty path:
// standard output (binary forms refuse a terminal).
void WriteReport(const Report& report, Form form, const std::string& path);

// Checks before any work that a file can be made beside `path` (its folder
// exists and is writable); throws velqua_records::Failure naming it.
void CheckWritable(const std::string& path);

}  // namespace velqua_reports
