#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "velqua/records/clock.h"
#include "velqua/records/common.h"
#include "velqua/records/row_writer.h"

namespace velqua_records {
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
  EXPECT_EQ(
      csv,
      "record,type,type_name,attribute,attribute_name,date,time,duration,ring,dialled,"
      "extension,trunk,receiving_extension,receiving_trunk,account_code,extension_random,"
      "error,file,raw\r\n"
      "7,2,outgoing,2,in-transfer,2026-01-09,09:05:03,83,,\"0312,34\"\"5\",201,01,,,Müller,0,,,"
      "\r\n");
}

// What the switch did not print is left blank or shortened, never invented.
TEST(RowWriter, DateAndTimeShowOnlyWhatWasPrinted) {
  struct Case {
    uint8_t printed;
    bool random;
    const char* csv;    // date to extension_random
    const char* jsonl;  // "date" to "time"
  } const cases[] = {
      // clang-format off
      {kPrintedAll, false, "2026-01-09,09:05:03", "\"date\":\"2026-01-09\",\"time\":\"09:05:03\""},
      {kPrintedAll & ~kPrintedSecond, false, "2026-01-09,09:05", "\"date\":\"2026-01-09\",\"time\":\"09:05\""},
      {kPrintedAll & ~kPrintedDay, false, ",09:05:03", "\"date\":null,\"time\":\"09:05:03\""},
      {kPrintedAll & ~kPrintedMonth, true, ",09:05:03", "\"date\":null,\"time\":\"09:05:03\""},
      {kPrintedAll & ~kPrintedMinute, false, "2026-01-09,", "\"date\":\"2026-01-09\",\"time\":null"},
      {kPrintedDay | kPrintedMonth | kPrintedYear | kPrintedMinute, false, "2026-01-09,", "\"date\":\"2026-01-09\",\"time\":null"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.csv);
    Row row = Sample();
    row.printed = c.printed;
    row.random_extension = c.random;
    const std::string csv = Render(RowFormat::kCsv, {row});
    EXPECT_NE(csv.find(std::string("in-transfer,") + c.csv + ",83,"), std::string::npos) << csv;
    EXPECT_NE(csv.find(c.random ? "Müller,1,,,\r\n" : "Müller,0,,,\r\n"), std::string::npos);
    const std::string jsonl = Render(RowFormat::kJsonl, {row});
    EXPECT_NE(jsonl.find(c.jsonl), std::string::npos) << jsonl;
    EXPECT_NE(jsonl.find(c.random ? "\"extension_random\":true" : "\"extension_random\":false"),
              std::string::npos);
    const std::string table = Render(RowFormat::kTable, {row});
    EXPECT_EQ(table.find("random extension") != std::string::npos, c.random);
  }
}

// A switch that prints no year: the year the record was received in, or the
// year before for a month and day after the day of receipt.
TEST(RowWriter, YearReceivedRollsBackForLaterDays) {
  const FechaHora received{2027, 1, 5, 8, 0, 0};
  struct Case {
    int32_t month, day, year;
  } const cases[] = {{1, 5, 2027}, {1, 4, 2027}, {1, 6, 2026}, {12, 31, 2026}, {2, 1, 2026}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.month * 100 + c.day);
    EXPECT_EQ(YearReceived(c.month, c.day, received), c.year);
  }
}

TEST(RowWriter, FailedRecordKeepsItsErrorInEveryForm) {
  Row row;
  row.number = 4;
  row.error = "overflow: a column past 255, \"x\"";
  row.error_number = 6;
  row.error_source = "Velqua";
  row.error_description = "Desbordamiento";
  row.input = "calls.txt";
  const std::u16string text = u"12:00 x";
  row.text = text;
  const std::string csv = Render(RowFormat::kCsv, {row});
  EXPECT_EQ(csv.substr(csv.find("\r\n") + 2),
            "4,0,unrecognised,0,none,,,,,,,,,,,,\"overflow: a column past 255, \"\"x\"\"\","
            "calls.txt,12:00 x\r\n");
  // JSON keeps what the library said beside the English message.
  EXPECT_NE(Render(RowFormat::kJsonl, {row})
                .find("\"extension_random\":null,\"error\":{\"message\":\"overflow: a column past "
                      "255, \\\"x\\\"\",\"number\":6,\"source\":\"Velqua\",\"description\":"
                      "\"Desbordamiento\"},\"file\":\"calls.txt\",\"raw\":\"12:00 x\"}"),
            std::string::npos);
  EXPECT_NE(Render(RowFormat::kTable, {row})
                .find("overflow: a column past 255, \"x\"; calls.txt: 12:00 x"),
            std::string::npos);
  row.error_number = 0;  // an error of the road, not the library's: the message alone
  EXPECT_NE(Render(RowFormat::kJsonl, {row})
                .find("\"error\":{\"message\":\"overflow: a column "
                      "past 255, \\\"x\\\"\"},\"file\""),
            std::string::npos);
}

// Written to a terminal (a pseudo-terminal here), a record's escape sequence
// is shown, not acted on; line ends still end lines. To a file it is data.
TEST(Output, ATerminalGetsControlCharactersAsEscapes) {
  int controller = -1, terminal = -1;
  ASSERT_EQ(::openpty(&controller, &terminal, nullptr, nullptr, nullptr), 0);
  termios raw{};
  ::tcgetattr(terminal, &raw);
  ::cfmakeraw(&raw);  // no echo, no line-end translation: the bytes as written
  ::tcsetattr(terminal, TCSANOW, &raw);
  std::unique_ptr<std::FILE, FileCloser> f(::fdopen(terminal, "w"));
  {
    Output out(f.get());
    out.buffer() =
        "a\x1b]0;owned\x07,\xc2\x9b"
        "2J\tb\r\n";
    out.Flush();
  }
  char bytes[256];
  const ssize_t n = ::read(controller, bytes, sizeof bytes);
  ::close(controller);
  ASSERT_GT(n, 0);
  EXPECT_EQ(std::string(bytes, static_cast<size_t>(n)), "a\\x1B]0;owned\\x07,\\u009B2J\tb\r\n");
  Row row = Sample();
  row.dialled = u"\x1b[31m0891";
  const std::string csv = Render(RowFormat::kCsv, {row});
  EXPECT_NE(csv.find("\x1b[31m0891"), std::string::npos);
}

// The first column of every CSV row after the heading.
std::vector<std::string> CsvNumbers(const std::vector<Row>& rows) {
  const std::string csv = Render(RowFormat::kCsv, rows);
  std::vector<std::string> numbers;
  size_t at = csv.find("\r\n") + 2;
  while (at < csv.size()) {
    numbers.push_back(csv.substr(at, csv.find(',', at) - at));
    at = csv.find("\r\n", at) + 2;
  }
  return numbers;
}

TEST(RowWriter, CsvRecordNumbersCarryAndRestart) {
  std::vector<Row> rows;
  std::vector<std::string> expected;
  for (int64_t n : {int64_t{8}, int64_t{9}, int64_t{10}, int64_t{99}, int64_t{100}, int64_t{101},
                    int64_t{5}, int64_t{6}, int64_t{999999}, int64_t{1000000}, int64_t{1000000},
                    int64_t{9223372036854775807}, int64_t{0}, int64_t{1}}) {
    rows.emplace_back().number = n;
    expected.push_back(std::to_string(n));
  }
  EXPECT_EQ(CsvNumbers(rows), expected);
}

TEST(RowWriter, CsvNumbersOutsideTheShortFormsAreWrittenInFull) {
  Row row = Sample();
  row.year = 26;  // padded to four digits
  row.month = 123;
  row.day = -4;
  row.time = 100 * 3600 + 7;  // 100 hours
  row.duration = 123456;
  row.ring = 10000;
  const std::string csv = Render(RowFormat::kCsv, {row});
  const std::string line = csv.substr(csv.find("\r\n") + 2);
  EXPECT_EQ(line.substr(0, line.find(",\"")),
            "7,2,outgoing,2,in-transfer,0026-123--4,100:00:07,123456,10000");
  row.year = 10000;
  row.time = 9;
  row.duration = 9999;
  row.ring = 0;
  const std::string csv2 = Render(RowFormat::kCsv, {row});
  const std::string line2 = csv2.substr(csv2.find("\r\n") + 2);
  EXPECT_EQ(line2.substr(0, line2.find(",\"")),
            "7,2,outgoing,2,in-transfer,10000-123--4,00:00:09,9999,0");
}

// Numbers below 10,000 are written from a table of digit pairs, larger
// ones in full: each length's edges read as the plain number.
TEST(RowWriter, CsvDurationsAndRingsAtEveryLengthsEdges) {
  for (int32_t v : {0, 9, 10, 99, 100, 101, 999, 1000, 9999, 10000}) {
    SCOPED_TRACE(v);
    Row row = Sample();
    row.duration = row.ring = v;
    const std::string n = std::to_string(v);
    EXPECT_NE(Render(RowFormat::kCsv, {row}).find("09:05:03," + n + "," + n + ",\"0312"),
              std::string::npos);
  }
}

TEST(RowWriter, JsonlEscapesAndUsesNullForAbsentValues) {
  Row row = Sample();
  row.dialled = u"a\"b\\c\x01";
  EXPECT_EQ(Render(RowFormat::kJsonl, {row}),
            "{\"record\":7,\"type\":2,\"type_name\":\"outgoing\",\"attribute\":2,"
            "\"attribute_name\":\"in-transfer\",\"date\":\"2026-01-09\",\"time\":\"09:05:03\","
            "\"duration\":83,\"ring\":null,\"dialled\":\"a\\\"b\\\\c\\u0001\","
            "\"extension\":\"201\",\"trunk\":\"01\",\"receiving_extension\":null,"
            "\"receiving_trunk\":null,\"account_code\":\"Müller\",\"extension_random\":false,"
            "\"error\":null}\n");
}

TEST(RowWriter, AnUnrecognisedRowHasBlankCsvAndNullJsonFields) {
  Row row;
  row.number = 3;
  const std::string csv = Render(RowFormat::kCsv, {row});
  EXPECT_EQ(csv.substr(csv.find("\r\n") + 2), "3,0,unrecognised,0,none,,,,,,,,,,,,,,\r\n");
  const std::string line = Render(RowFormat::kJsonl, {row});
  EXPECT_NE(line.find("\"date\":null"), std::string::npos);
  EXPECT_NE(line.find("\"account_code\":null,\"extension_random\":null,\"error\":null,"
                      "\"file\":\"\",\"raw\":\"\"}"),
            std::string::npos);
}

TEST(RowWriter, TableAlignsColumnsAndEndsNoLineWithBlanks) {
  Row second = Sample();
  second.number = 12;
  second.extension = u"20145";
  const std::string table = Render(RowFormat::kTable, {Sample(), second});
  EXPECT_EQ(table.find(" \n"), std::string::npos);
  const size_t line2 = table.find('\n', table.find('\n') + 1) + 1;
  EXPECT_EQ(table.substr(line2, 3), " 7 ");
  EXPECT_NE(table.find("\n12  2 outgoing"), std::string::npos);
}

TEST(RowWriter, EmptyTableStillHasItsHeading) {
  EXPECT_EQ(Render(RowFormat::kTable, {}).substr(0, 3), "#  ");
}

}  // namespace
}  // namespace velqua_records
