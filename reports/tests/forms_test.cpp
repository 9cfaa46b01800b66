// The forms of a report read back as a user's programs read them: the PDF
// rendered page by page (pdftoppm) and its text (pdftotext), the spreadsheet
// with openpyxl, the text forms byte for byte; and a report written all or
// nothing.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

#include "store_test_support.h"
#include "test_support.h"
#include "velqua/records/common.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/output.h"

namespace velqua_reports_testing {

using velqua_reports::Cell;
using velqua_reports::Column;
using velqua_reports::ColumnType;
using velqua_reports::Report;

Report SampleReport(int rows) {
  Report r;
  r.kind = "sample";
  r.title = "Sample";
  r.from = "2026-03-01";
  r.to = "2026-03-31";
  r.switches = {"hq", "lima"};
  r.notes = {"A note"};
  velqua_reports::Table t{"Calls",
                          {{"extension", ColumnType::kText, ""},
                           {"calls", ColumnType::kInteger, ""},
                           {"talk time", ColumnType::kDuration, ""},
                           {"cost", ColumnType::kMoney, "EUR"},
                           {"day", ColumnType::kDate, ""},
                           {"last call", ColumnType::kDateTime, ""}},
                          {},
                          {}};
  int64_t calls = 0;
  for (int i = 0; i < rows; ++i) {
    const std::string day =
        "2026-03-" + std::string(i % 31 < 9 ? "0" : "") + std::to_string(i % 31 + 1);
    t.rows.push_back({Cell::Text("ext, " + std::to_string(200 + i)), Cell::Number(i),
                      Cell::Number(i * 61), Cell::Text(std::to_string(i) + ".05"), Cell::Text(day),
                      i == 1 ? Cell::Empty() : Cell::Text(day + "T08:03:12")});
    calls += i;
  }
  t.total = {Cell::Text("total"),    Cell::Number(calls), Cell::Number(calls * 61),
             Cell::Text("12345.67"), Cell::Empty(),       Cell::Empty()};
  r.tables.push_back(t);
  velqua_reports::Chart c;
  c.kind = velqua_reports::Chart::Kind::kArea;
  c.title = "Lines";
  c.value_label = "lines";
  for (int i = 0; i < 48 * 3; ++i) {
    c.labels.push_back("2026-03-0" + std::to_string(i / 48 + 1) + " 00:00");
    c.values.push_back(i % 48 / 6);
  }
  c.limit = 6;
  c.limit_label = "6 lines";
  r.charts.push_back(c);
  return r;
}

std::string RunCommand(const std::string& command) {
  std::string out;
  std::FILE* p = ::popen(command.c_str(), "r");
  if (p == nullptr) {
    ADD_FAILURE() << "cannot run " << command;
    return out;
  }
  std::array<char, 4096> buffer;
  size_t n = 0;
  while ((n = std::fread(buffer.data(), 1, buffer.size(), p)) > 0) out.append(buffer.data(), n);
  EXPECT_EQ(::pclose(p), 0) << command;
  return out;
}

std::string Text(void (*write)(const Report&, std::FILE*), const Report& r) {
  char* data = nullptr;
  size_t size = 0;
  std::FILE* out = open_memstream(&data, &size);
  write(r, out);
  std::fclose(out);
  std::string text(data, size);
  std::free(data);
  return text;
}

namespace {

std::string Dir() {
  const ::testing::TestInfo* t = ::testing::UnitTest::GetInstance()->current_test_info();
  return velqua_store_testing::TempDir(std::string("reports-") + t->name());
}

// The share of pixels darker than white in a PGM page (P5, 8 bits).
double InkShare(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string magic;
  int width = 0, height = 0, max = 0;
  in >> magic >> width >> height >> max;
  in.get();
  std::string pixels((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  size_t ink = 0;
  for (char p : pixels) ink += static_cast<unsigned char>(p) < 200 ? 1 : 0;
  return static_cast<double>(ink) / static_cast<double>(width * height);
}

TEST(ReportForms, PdfPagesAreNumberedNoneBlankAndCarryTheTotals) {
  const std::string dir = Dir();
  velqua_reports::WriteReport(SampleReport(150), velqua_reports::Form::kPdf, dir + "/r.pdf");
  RunCommand("pdftoppm -r 20 -gray '" + dir + "/r.pdf' '" + dir + "/page'");
  std::vector<std::string> pages;
  for (const auto& f : std::filesystem::directory_iterator(dir)) {
    if (f.path().extension() == ".pgm") pages.push_back(f.path());
  }
  ASSERT_GE(pages.size(), 3u);
  for (const std::string& page : pages) {
    SCOPED_TRACE(page);
    EXPECT_GT(InkShare(page), 0.01);
  }
  const std::string text = RunCommand("pdftotext -layout '" + dir + "/r.pdf' -");
  const std::string n = std::to_string(pages.size());
  for (const std::string& expected :
       {std::string("Sample"), std::string("Switches: hq, lima"), "page 1 of " + n,
        "page " + n + " of " + n, std::string("Calls (continued)"), std::string("12345.67 EUR"),
        std::string("11175"), std::string("189:21:15"), std::string("2026-03-01 08:03:12")}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected;
  }
}

TEST(ReportForms, SpreadsheetCellsAreTyped) {
  const std::string dir = Dir();
  velqua_reports::WriteReport(SampleReport(3), velqua_reports::Form::kXlsx, dir + "/r.xlsx");
  const std::string out = RunCommand(
      "/usr/bin/python3 -c \"import openpyxl,sys\nwb=openpyxl.load_workbook(sys.argv[1])\n"
      "print(wb.sheetnames)\nws=wb['Calls']\nfor c in ws[3]: print(type(c.value).__name__, "
      "c.value, c.number_format)\nprint([c.value for c in ws[5]][:4])\" '" +
      dir + "/r.xlsx'");
  EXPECT_EQ(out,
            "['Calls']\n"
            "str ext, 201 General\n"
            "int 1 General\n"
            "timedelta 0:01:01 [h]:mm:ss\n"
            "float 1.05 #,##0.00 \"EUR\"\n"
            "datetime 2026-03-02 00:00:00 yyyy-mm-dd\n"
            "NoneType None General\n"
            "['total', 3, datetime.timedelta(seconds=183), 12345.67]\n");
}

// The text forms of a two-row sample, byte for byte as data/forms/ holds them.
TEST(ReportForms, TextFormsByteForByte) {
  const Report r = SampleReport(2);
  const std::string data = VELQUA_SOURCE_DIR "/reports/tests/data/forms/sample.";
  EXPECT_EQ(Text(velqua_reports::WriteCsv, r), velqua_store_testing::ReadFile(data + "csv"));
  EXPECT_EQ(Text(velqua_reports::WriteJson, r), velqua_store_testing::ReadFile(data + "json"));
  EXPECT_EQ(Text(velqua_reports::WriteTable, r), velqua_store_testing::ReadFile(data + "txt"));
}

TEST(ReportForms, ChartImagesAreWritten) {
  const std::string dir = Dir();
  velqua_reports::WriteReport(SampleReport(2), velqua_reports::Form::kPng, dir + "/c.png");
  EXPECT_EQ(RunCommand("head -c 8 '" + dir + "/c.png' | od -An -tx1"),
            " 89 50 4e 47 0d 0a 1a 0a\n");
  velqua_reports::WriteReport(SampleReport(2), velqua_reports::Form::kSvg, dir + "/c.svg");
  EXPECT_NE(RunCommand("cat '" + dir + "/c.svg'").find("<svg"), std::string::npos);
}

TEST(ReportForms, AReportWithoutAChartIsRefusedAndTheTargetLeftAsItWas) {
  const std::string dir = Dir();
  { std::ofstream(dir + "/old.png") << "before"; }
  Report none = SampleReport(2);
  none.charts.clear();
  EXPECT_THROW(velqua_reports::WriteReport(none, velqua_reports::Form::kPng, dir + "/old.png"),
               velqua_records::Failure);
  EXPECT_EQ(RunCommand("cat '" + dir + "/old.png'"), "before");
  EXPECT_EQ(RunCommand("ls -A '" + dir + "'"), "old.png\n");
  for (const std::string& bad : {dir + "/missing/r.csv", dir + "/", std::string("/proc/r.csv")}) {
    SCOPED_TRACE(bad);
    EXPECT_THROW(velqua_reports::CheckWritable(bad), velqua_records::Failure);
  }
}

TEST(ReportCells, TextOfEachColumnType) {
  const struct {
    Column column;
    Cell cell;
    bool readable;
    const char* text;
  } rows[] = {
      {{"", ColumnType::kDuration, ""}, Cell::Number(3723), false, "1:02:03"},
      {{"", ColumnType::kDuration, ""}, Cell::Number(-5), false, "-0:00:05"},
      {{"", ColumnType::kDuration, ""}, Cell::Number(360000), false, "100:00:00"},
      {{"", ColumnType::kMoney, "EUR"}, Cell::Text("-0.30"), false, "-0.30 EUR"},
      {{"", ColumnType::kDateTime, ""}, Cell::Text("2026-03-09T08:03"), true, "2026-03-09 08:03"},
      {{"", ColumnType::kDateTime, ""}, Cell::Text("2026-03-09T08:03"), false, "2026-03-09T08:03"},
      {{"", ColumnType::kInteger, ""}, Cell::Empty(), false, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(velqua_reports::CellText(row.column, row.cell, row.readable), row.text);
  }
}

TEST(ReportRequests, BadRequestsAreRefusedInOneLineNamingTheFault) {
  const struct {
    const char* kind;
    const char* from;
    const char* to;
    const char* of;
    const char* itemised;
    const char* message;
  } rows[] = {
      // clang-format off
      {"costs", "2026-03-01", "2026-03-31", "", "", "unknown report 'costs': expected extensions, departments, accounts, trunks, destinations, " "missed, traffic, compare"},
      {"trunks", "2026-03-31", "2026-03-01", "", "",
       "the period starts (--from 2026-03-31) after it ends (--to 2026-03-01)"},
      {"trunks", "2026-02-30", "2026-03-01", "", "", "--from: expected a date YYYY-MM-DD, got '2026-02-30'"},
      {"trunks", "2026-03-01", "31/03/2026", "", "", "--to: expected a date YYYY-MM-DD, got '31/03/2026'"},
      {"compare", "2026-03-01", "2026-03-31", "compare", "", "--of: cannot compare 'compare': expected one of extensions, departments, accounts, " "trunks, destinations, missed, traffic, compare but compare"},
      {"trunks", "2026-03-01", "2026-03-31", "", "201", "--itemised: only for the extensions report"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.message);
    velqua_reports::Request r;
    r.kind = row.kind;
    r.from = row.from;
    r.to = row.to;
    r.of = row.of;
    r.itemised = row.itemised;
    try {
      velqua_reports::CheckRequest(r);
      ADD_FAILURE() << "accepted";
    } catch (const velqua_records::Failure& e) {
      EXPECT_STREQ(e.what(), row.message);
    }
  }
}

TEST(ReportRequests, TimesAndTheDefaultPeriod) {
  EXPECT_EQ(velqua_reports::SecondsOf("24h", "w"), 86400);
  EXPECT_EQ(velqua_reports::SecondsOf("90m", "w"), 5400);
  EXPECT_EQ(velqua_reports::SecondsOf("2d", "w"), 172800);
  EXPECT_EQ(velqua_reports::SecondsOf("45", "w"), 45);
  for (const char* bad : {"", "h", "1.5h", "-3h", "3w", "9999999999"}) {
    EXPECT_THROW(velqua_reports::SecondsOf(bad, "w"), velqua_records::Failure) << bad;
  }
  using Days = std::pair<std::string, std::string>;
  EXPECT_EQ(velqua_reports::PreviousMonth("2026-03-15"), Days("2026-02-01", "2026-02-28"));
  EXPECT_EQ(velqua_reports::PreviousMonth("2026-01-01"), Days("2025-12-01", "2025-12-31"));
  EXPECT_EQ(velqua_reports::PreviousMonth("2024-03-31"), Days("2024-02-01", "2024-02-29"));
}

}  // namespace
}  // namespace velqua_reports_testing
