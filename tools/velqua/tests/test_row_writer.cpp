#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "cli_common.h"
#include "row_writer.h"

namespace velqua_cli {
namespace {

std::string Render(RowFormat format, const std::vector<Row>& rows) {
  std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
  {
    Output out(f.get());
    std::unique_ptr<RowWriter> writer = MakeRowWriter(format, out);
    for (const Row& row : rows) writer->Write(row);
    writer->Finish();
  }
  std::rewind(f.get());
  std::string text;
  char buffer[4096];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0) text.append(buffer, n);
  return text;
}

Row Sample() {
  Row row;
  row.number = 7;
  row.type = 2;
  row.attribute = 2;
  row.has_fields = true;
  row.year = 2026;
  row.month = 1;
  row.day = 9;
  row.time = 9 * 3600 + 5 * 60 + 3;
  row.duration = 83;
  row.ring = -1;
  row.dialled = u"0312,34\"5";
  row.extension = u"201";
  row.trunk = u"01";
  row.account_code = u"Müller";
  return row;
}

TEST(RowWriter, CsvQuotesPerRfc4180) {
  const std::string csv = Render(RowFormat::kCsv, {Sample()});
  EXPECT_EQ(csv,
            "record,type,type_name,attribute,attribute_name,date,time,duration,ring,dialled,"
            "extension,trunk,receiving_extension,receiving_trunk,account_code\r\n"
            "7,2,Saliente,2,EnTR,2026-01-09,09:05:03,83,,\"0312,34\"\"5\",201,01,,,Müller\r\n");
}

TEST(RowWriter, CsvUnrecognisedRowHasBlankFields) {
  Row row;
  row.number = 1;
  const std::string csv = Render(RowFormat::kCsv, {row});
  EXPECT_EQ(csv.substr(csv.find("\r\n") + 2), "1,0,NoIdentificada,0,NoAtributo,,,,,,,,,,\r\n");
}

TEST(RowWriter, JsonlEscapesAndUsesNullForAbsentValues) {
  Row row = Sample();
  row.dialled = u"a\"b\\c\x01";
  EXPECT_EQ(Render(RowFormat::kJsonl, {row}),
            "{\"record\":7,\"type\":2,\"type_name\":\"Saliente\",\"attribute\":2,"
            "\"attribute_name\":\"EnTR\",\"date\":\"2026-01-09\",\"time\":\"09:05:03\","
            "\"duration\":83,\"ring\":null,\"dialled\":\"a\\\"b\\\\c\\u0001\","
            "\"extension\":\"201\",\"trunk\":\"01\",\"receiving_extension\":\"\","
            "\"receiving_trunk\":\"\",\"account_code\":\"Müller\"}\n");
}

TEST(RowWriter, JsonlUnrecognisedRowHasNullFields) {
  Row row;
  row.number = 3;
  const std::string line = Render(RowFormat::kJsonl, {row});
  EXPECT_NE(line.find("\"date\":null"), std::string::npos);
  EXPECT_NE(line.find("\"account_code\":null}"), std::string::npos);
}

TEST(RowWriter, TableAlignsColumnsAndEndsNoLineWithBlanks) {
  Row second = Sample();
  second.number = 12;
  second.extension = u"20145";
  const std::string table = Render(RowFormat::kTable, {Sample(), second});
  EXPECT_EQ(table.find(" \n"), std::string::npos);
  const size_t line2 = table.find('\n', table.find('\n') + 1) + 1;
  EXPECT_EQ(table.substr(line2, 3), " 7 ");
  EXPECT_NE(table.find("\n12  2 Saliente"), std::string::npos);
}

TEST(RowWriter, EmptyTableStillHasItsHeading) {
  EXPECT_EQ(Render(RowFormat::kTable, {}).substr(0, 3), "#  ");
}

TEST(RowWriter, ShortNamesDropThePrefix) {
  EXPECT_EQ(ShortTypeName(3), "InterExtension");
  EXPECT_EQ(ShortAttributeName(1), "IniTR");
  EXPECT_EQ(ShortTypeName(99), "");
}

}  // namespace
}  // namespace velqua_cli
