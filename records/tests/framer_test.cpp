#include "velqua/records/framer.h"

#include <gtest/gtest.h>

#include <string>

#include "velqua/records/common.h"
#include "velqua/records/record_form.h"

namespace velqua_records {
namespace {

// The records framed from `input` as "position:bytes" joined by " | ", a
// heading marked "H"; the input is fed in pieces of `piece` bytes (0: whole),
// each piece's position following on, and flushed at the end when asked.
std::string Frame(const FramingSettings& settings, const std::string& input, size_t piece,
                  bool flush) {
  Framer framer(settings);
  std::string out;
  const Framer::Emit emit = [&out](const Framer::Record& r) {
    out += (out.empty() ? "" : " | ") + std::to_string(r.position) + (r.heading ? "H:" : ":");
    out.append(r.bytes.data(), r.bytes.size());
  };
  const size_t step = piece == 0 ? input.size() + 1 : piece;
  for (size_t at = 0; at < input.size(); at += step) {
    framer.Feed(std::string_view(input).substr(at, step), 100 + static_cast<int64_t>(at), emit);
  }
  if (flush) framer.Flush(emit);
  return out;
}

struct Case {
  const char* name;
  RecordEnd end;
  bool nul_too, strip_bit7, strip_controls;
  std::string input;
  const char* expected;  // without a flush at the end
  const char* flushed;   // what the flush adds, or ""
};

TEST(Framer, RecordEndsAndStrippingInPiecesOfEverySize) {
  const Case cases[] = {
      // clang-format off
      {"line ends of every kind", RecordEnd::kLine, false, false, false, "a\r\nb\nc\rd\r\n", "100:a | 103:b | 105:c | 107:d", ""},
      {"blank lines carry nothing", RecordEnd::kLine, false, false, false, "\r\n\r\na\n\n\rb", "104:a", "108:b"},
      {"CR only: an LF stays", RecordEnd::kCr, false, false, false, "a\r\nb\r", "100:a | 102:\nb", ""},
      {"LF only: the CR before it goes", RecordEnd::kLf, false, false, false, "a\r\nb\rc\n", "100:a | 103:b\rc", ""},
      {"CR LF only: lone CR and LF stay", RecordEnd::kCrLf, false, false, false, "a\rb\nc\r\nd\r", "100:a\rb\nc", "107:d"},
      {"NUL ends a Samsung record", RecordEnd::kNul, false, false, false, std::string("r1\r\n\0\0r2\0", 9), "100:r1\r\n | 106:r2", ""},
      {"STX...ETX frames, padding between", RecordEnd::kStxEtx, false, false, false, "\x02r1\x03\r\n\x02r2\x03", "101:r1 | 107:r2", ""},
      {"STX inside a frame closes the open record", RecordEnd::kStxEtx, false, false, false, "\x02r1\x02r2\x03junk\x02", "101:r1 | 104:r2 | 107:junk", ""},
      {"bit 7 cleared before ends are found", RecordEnd::kLine, false, true, false, "\xC1\xE2\x8D\x8A\xB1", "100:Ab", "104:1"},
      {"control bytes stripped from records", RecordEnd::kLine, false, false, true, "\x0c\x11hd\x7f\x13\r\n\x0c\r\nx\ty", "100:hd", "111:x\ty"},
      {"NUL ends a record as line ends do", RecordEnd::kLine, true, false, false, std::string("\x0cHEAD\r\n====\r\nr1\0r2\0\r\nr3", 23), "100:\x0cHEAD | 107:==== | 113:r1 | 116:r2", "121:r3"},
      {"bit 7 and controls together", RecordEnd::kNul, false, true, true, std::string("\x8C\xC8\x00\x93", 4), "100:H", ""},
      // clang-format on
  };
  for (const Case& c : cases) {
    for (size_t piece : {size_t{0}, size_t{1}, size_t{2}, size_t{3}}) {
      SCOPED_TRACE(std::string(c.name) + ", pieces of " + std::to_string(piece));
      FramingSettings settings;
      settings.end = c.end;
      settings.nul_ends_record = c.nul_too;
      settings.strip_bit7 = c.strip_bit7;
      settings.strip_controls = c.strip_controls;
      EXPECT_EQ(Frame(settings, c.input, piece, false), c.expected);
      const std::string all = std::string(c.expected) +
                              (*c.expected != '\0' && *c.flushed != '\0' ? " | " : "") + c.flushed;
      EXPECT_EQ(Frame(settings, c.input, piece, true), all);
    }
  }
}

TEST(Framer, OpenPositionIsTheFirstByteOfTheRecordNotYetGiven) {
  Framer framer({});
  const Framer::Emit none = [](const Framer::Record&) {};
  EXPECT_EQ(framer.OpenPosition(), -1);
  framer.Feed("ab\r\n", 10, none);
  EXPECT_EQ(framer.OpenPosition(), -1);
  framer.Feed("cd", 50, none);
  framer.Feed("e", 70, none);
  EXPECT_EQ(framer.OpenPosition(), 50);
  int given = 0;
  framer.Flush([&given](const Framer::Record& r) {
    EXPECT_EQ(r.bytes, "cde");
    ++given;
  });
  EXPECT_EQ(given, 1);
  EXPECT_EQ(framer.OpenPosition(), -1);
}

TEST(Framer, ALineThatNeverEndsIsCutAtTheLimit) {
  const std::string endless(Framer::kMaxRecord + 5, 'x');
  Framer framer({});
  std::vector<size_t> sizes;
  const Framer::Emit emit = [&sizes](const Framer::Record& r) { sizes.push_back(r.bytes.size()); };
  framer.Feed(endless, 0, emit);
  framer.Flush(emit);
  EXPECT_EQ(sizes, (std::vector<size_t>{Framer::kMaxRecord, 5}));
}

TEST(Framer, PageHeadingsAreMarkedNotDropped) {
  FramingSettings settings;
  settings.page_headings = {"*Date*Time*Ext*", "--------------------*", "*===="};
  const std::string input =
      "  Date     Time    Ext CO   Dial Number\r\n"
      "--------------------------------------------------------------------------------\r\n"
      "01/19/26 08:02AM   201 01 <I>0312345678\r\n"
      "-------- 03/14/26 10:00:00 LINE = 0003 STN = 7425\r\n"
      "\x0cSTN  CO  DATE  ====\r\n";
  EXPECT_EQ(
      Frame(settings, input, 7, false),
      "100H:  Date     Time    Ext CO   Dial Number | "
      "141H:-------------------------------------------------------------------------------- | "
      "223:01/19/26 08:02AM   201 01 <I>0312345678 | "
      "264:-------- 03/14/26 10:00:00 LINE = 0003 STN = 7425 | "
      "315H:\x0cSTN  CO  DATE  ====");
}

TEST(Framer, PatternsThatMatchNothingOrEverythingAreRefused) {
  for (const std::string& bad : {std::string(), std::string("***"), std::string(256, 'x')}) {
    SCOPED_TRACE(bad.substr(0, 10));
    FramingSettings settings;
    settings.page_headings = {"ok*", bad};
    EXPECT_THROW(Framer framer(settings), Failure);
  }
}

// What a switch's record form needs of the line is added to the service's
// framing, never taken from it: either side asking for a NUL record end or
// for bit 7 cleared is enough, and the rest is the service's.
TEST(Framer, TheRecordFormAddsItsNeedsToTheServicesFraming) {
  using namespace std::string_literals;
  const std::string input = "a\0b\x8D"s + "c\r";  // 0x8D: a CR with its parity bit set
  const struct {
    const char* name;
    bool form_nul, form_seven_bit, service_nul, service_bit7;
    std::string expected;
  } rows[] = {
      {"neither", false, false, false, false, "100:a\0b\x8D"s + "c"},
      {"the form's NUL", true, false, false, false, "100:a | 102:b\x8D"s + "c"},
      {"the form's 7 bits", false, true, false, false, "100:a\0b | 104:c"s},
      {"the service's own", false, false, true, true, "100:a | 102:b | 104:c"},
      {"both ask", true, true, true, true, "100:a | 102:b | 104:c"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    RecordForm form;
    form.nul_ends_record = row.form_nul;
    form.seven_bit = row.form_seven_bit;
    FramingSettings service;
    service.end = RecordEnd::kCr;
    service.page_headings = {"zzz*"};
    service.nul_ends_record = row.service_nul;
    service.strip_bit7 = row.service_bit7;
    const FramingSettings framing = FramingFor(form, service);
    EXPECT_EQ(framing.end, RecordEnd::kCr);
    EXPECT_EQ(framing.page_headings, service.page_headings);
    EXPECT_EQ(Frame(framing, input, 0, true), row.expected);
  }
}

}  // namespace
}  // namespace velqua_records
