// Tables whose rows are kept on disk (a list as long as its period): every
// form writes them as it writes rows held in memory, the spreadsheet holds
// them all, and the PDF shows the first of a long list and says how many
// more there are.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "pg_test_server.h"
#include "test_support.h"
#include "velqua/reports/output.h"

namespace velqua_reports_testing {
namespace {

using velqua_reports::Cell;
using velqua_reports::Report;
using velqua_reports::Row;
using velqua_reports::RowFile;

// The sample report with all but its first `kept` rows moved to disk.
Report OnDisk(int rows, size_t kept, bool cut_in_print = false) {
  Report r = SampleReport(rows);
  velqua_reports::Table& t = r.tables.at(0);
  t.cut_in_print = cut_in_print;
  t.more = std::make_shared<RowFile>();
  for (size_t i = kept; i < t.rows.size(); ++i) t.more->Append(t.rows[i]);
  t.rows.resize(kept);
  return r;
}

TEST(RowFile, CellsComeBackAsWrittenInOrderAndLaterRowsFollow) {
  const std::vector<Row> rows = {
      {Cell::Text(""), Cell::Empty(), Cell::Number(-1)},
      {Cell::Text(std::string("a\0b\n", 4)), Cell::Number(INT64_MIN), Cell::Number(INT64_MAX)},
      {Cell::Text(std::string(100000, 'x'))},
      {},
  };
  RowFile file;
  for (const Row& row : rows) file.Append(row);
  std::vector<Row> back;
  for (int pass = 0; pass < 2; ++pass) {
    back.clear();
    file.ForEach([&](const Row& row) { back.push_back(row); });
  }
  file.Append({Cell::Text("last")});  // after a read: still at the end
  file.ForEach([&](const Row& row) { back.push_back(row); });
  ASSERT_EQ(back.size(), rows.size() * 2 + 1);
  EXPECT_EQ(file.size(), static_cast<int64_t>(rows.size() + 1));
  for (size_t r = 0; r < rows.size(); ++r) {
    SCOPED_TRACE(r);
    ASSERT_EQ(back[r].size(), rows[r].size());
    for (size_t c = 0; c < rows[r].size(); ++c) {
      EXPECT_EQ(back[r][c].text, rows[r][c].text);
      EXPECT_EQ(back[r][c].number, rows[r][c].number);
      EXPECT_EQ(back[r][c].empty, rows[r][c].empty);
    }
  }
  EXPECT_EQ(back.back().at(0).text, "last");
}

TEST(LongLists, TextFormsAreTheSameWhetherRowsAreHeldOrOnDisk) {
  const struct {
    const char* form;
    void (*write)(const Report&, std::FILE*);
  } forms[] = {{"csv", velqua_reports::WriteCsv},
               {"json", velqua_reports::WriteJson},
               {"table", velqua_reports::WriteTable}};
  // More rows than a text form holds before passing them on, some held
  // and the rest on disk, or all on disk.
  const Report held = SampleReport(3000);
  for (const auto& f : forms) {
    for (size_t kept : {size_t{0}, size_t{1}, size_t{250}}) {
      SCOPED_TRACE(std::string(f.form) + ", held " + std::to_string(kept));
      EXPECT_EQ(Text(f.write, OnDisk(3000, kept)), Text(f.write, held));
    }
  }
}

std::string Dir() {
  const ::testing::TestInfo* t = ::testing::UnitTest::GetInstance()->current_test_info();
  return velqua_store_testing::TempDir(std::string("reports-") + t->name());
}

TEST(LongLists, TheSpreadsheetHoldsEveryRowOnDisk) {
  const std::string dir = Dir();
  velqua_reports::WriteReport(OnDisk(1500, 10), velqua_reports::Form::kXlsx, dir + "/r.xlsx");
  const std::string out = RunCommand(
      "/usr/bin/python3 -c \"import openpyxl,sys\nws=openpyxl.load_workbook(sys.argv[1])['Calls']"
      "\nprint(ws.max_row)\nprint([c.value for c in ws[1001]][:2])\nprint(ws.cell(ws.max_row, "
      "1).value)\" '" +
      dir + "/r.xlsx'");
  // The heading, 1,500 rows, the total; row 1,001 is the 1,000th.
  EXPECT_EQ(out, "1502\n['ext, 1199', 999]\ntotal\n");
}

TEST(LongLists, ThePdfShowsTheFirstRowsOfALongListAndHowManyMore) {
  const struct {
    int rows;
    bool cut;
    const char* shown_last;
    const char* hidden_first;  // "" = every row shown
    const char* more;
  } cases[] = {
      {2000, true, "ext, 2199", "", ""},
      {2150, true, "ext, 2199", "ext, 2200", "150 more rows not shown here"},
      {2150, false, "ext, 2349", "", ""},  // a bill: every row
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.rows) + (c.cut ? " cut" : ""));
    const std::string dir = Dir() + "/" + std::to_string(c.rows) + (c.cut ? "cut" : "");
    std::filesystem::create_directories(dir);
    velqua_reports::WriteReport(OnDisk(c.rows, 0, c.cut), velqua_reports::Form::kPdf,
                                dir + "/r.pdf");
    const std::string text = RunCommand("pdftotext -layout '" + dir + "/r.pdf' -");
    EXPECT_NE(text.find(c.shown_last), std::string::npos);
    EXPECT_NE(text.find("12345.67"), std::string::npos) << "the total";
    if (*c.hidden_first != '\0') {
      EXPECT_EQ(text.find(c.hidden_first), std::string::npos);
      EXPECT_NE(text.find(c.more), std::string::npos);
    } else {
      EXPECT_EQ(text.find("more rows not shown"), std::string::npos);
    }
  }
}

}  // namespace
}  // namespace velqua_reports_testing
