#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/framer.h"
#include "velqua/records/record_form.h"
#include "velqua/records/translation.h"

namespace velqua_records {
namespace {

// Fields of widths 3, 4, (not carried), 2.
DelimitedForm FourFields() { return {u',', u'"', {{"a", 3}, {"b", 4}, {"c", 0}, {"d", 2}}, {}}; }

TEST(ShapeDelimited, EachFieldCutOrPaddedToItsWidthThenOneBlank) {
  struct Case {
    const char16_t* record;
    const char16_t* shaped;
    size_t fields;
    bool fewer, more;
  } const cases[] = {
      {u"ab,cdef,x,gh", u"ab  cdef gh", 4, false, false},
      {u"abcdef,c,x,ghij", u"abc c    gh", 4, false, false},
      {u"\"a,b\",c,,d", u"a,b c    d ", 4, false, false},       // separator inside quotes
      {u"\"x\"\"y\",1,2,3", u"x\"y 1    3 ", 4, false, false},  // doubled quote
      {u"\"pn\" <53>,1,2,3", u"pn  1    3 ", 4, false, false},  // text after the quote kept
      {u",,,", u"           ", 4, false, false},                // empty fields are blank
      {u"a,b", u"a   b      ", 2, true, false},                 // missing fields blank
      {u"", u"           ", 1, true, false},
      {u"\"abc,def", u"abc        ", 1, true, false},            // unclosed quote runs on
      {u"a,b,c,d,e,\"f,g\",h", u"a   b    d ", 7, false, true},  // extra fields counted
      {u"a,b,c,d,", u"a   b    d ", 5, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.record));
    std::u16string shaped = u"left from before";
    const ShapeOutcome outcome = ShapeDelimited(FourFields(), c.record, &shaped);
    EXPECT_EQ(U8(shaped), U8(c.shaped));
    EXPECT_EQ(outcome.fields, c.fields);
    EXPECT_EQ(outcome.fewer, c.fewer);
    EXPECT_EQ(outcome.more, c.more);
  }
}

TEST(ShapeDelimited, CountsOfSecondsBecomeHoursMinutesSecondsOrBlank) {
  struct Case {
    int width;
    const char16_t* field;
    const char16_t* shaped;
  } const cases[] = {
      {9, u"125", u"  0:02:05"},  {9, u"0", u"  0:00:00"},          {9, u"3600", u"  1:00:00"},
      {9, u" 59 ", u"  0:00:59"}, {7, u"35999", u"9:59:59"},        {9, u"360000", u"100:00:00"},
      {7, u"36000", u"       "},  {9, u"1.5", u"         "},        {9, u"-5", u"         "},
      {9, u"", u"         "},     {9, u"9999999999", u"         "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.field));
    const DelimitedForm form{u';', u'\0', {{"seconds", c.width, true}}, {}};
    std::u16string shaped;
    ShapeDelimited(form, c.field, &shaped);
    EXPECT_EQ(U8(shaped), U8(c.shaped));
  }
}

TEST(ShapeDelimited, WithoutAQuoteCharacterQuotesAreText) {
  const DelimitedForm form{u';', u'\0', {{"a", 4}, {"b", 2}}, {}};
  std::u16string shaped;
  ShapeDelimited(form, u"\"a;b\"", &shaped);
  EXPECT_EQ(U8(shaped), "\"a   b\"");
}

TEST(ShapedColumns, FieldsFollowEachOtherWithOneBlank) {
  int width = 0;
  EXPECT_EQ(ShapedColumns(FourFields(), &width), (std::vector<int>{1, 5, 10, 10}));
  EXPECT_EQ(width, 11);
}

// One matcher for decoded text (a record form's patterns) and for bytes (the
// framer's page headings): the same answers from both.
TEST(MatchesPattern, StarAndQuestionMarkOverTheWholeLine) {
  struct Case {
    const char* pattern;
    std::string text;
    bool matches;
  } const cases[] = {
      {"*", "", true},
      {"a*", "abc", true},
      {"*c", "abc", true},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"abc", "ABC", false},  // letter case exact
      {"abc", "abcd", false},
      {"Date*", "  Date     Time", false},  // the whole record, not a part
      {"*====", "STN  CO ==== ", false},
      {"a*b*c", "axxbyyc", true},
      {"a*b*c", "axxbyy", false},
      {"**x", "x", true},
      {"*a*a*a*a*a*b", std::string(2000, 'a'), false},  // no runaway backtracking
      {"*N", "*xN", true},                              // a star printed in the line is no wildcard
      {"?*", "*", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.pattern) + " / " + c.text.substr(0, 30));
    EXPECT_EQ(MatchesPattern(U16(c.pattern), U16(c.text)), c.matches);
    EXPECT_EQ(MatchesHeading(c.pattern, c.text), c.matches);
  }
}

// A configuration read from JSON: the library's part, the record form and
// the delivery note.
struct Read {
  explicit Read(const std::string& json) { SwitchConfigFromJson(json, cfg, &form, &delivery); }
  // Written back and read again.
  Read Again() { return Read(SwitchConfigToJson(cfg, form, "")); }
  velqua::clsCfgConmut cfg;
  RecordForm form;
  std::string delivery;
};

TEST(RecordFormJson, EveryPartIsWrittenAsItIsRead) {
  const std::string text = ReadWholeFile(
      VELQUA_SOURCE_DIR "/records/tests/data/record_form_every_part.json", "configuration");
  Read read(text);
  EXPECT_EQ(read.delivery, "TCP 2300");
  EXPECT_EQ(read.form.Describe(),
            "delimited (3 fields) + 2 heading patterns + NUL record ends + 7-bit");
  EXPECT_EQ(SwitchConfigToJson(read.cfg, read.form, read.delivery), text);
}

TEST(RecordFormJson, ContinuationLinesAreWrittenAsTheyAreRead) {
  Read read(R"({"records": {"continuation": {"pattern": " &*", "column": 89}}})");
  EXPECT_TRUE(read.form.IsContinuation(u" & 0215550199"));
  EXPECT_FALSE(read.form.IsContinuation(u"N 001"));
  const RecordForm back = read.Again().form;
  EXPECT_EQ(back.continuation, u" &*");
  EXPECT_EQ(back.continuation_column, 89);
}

TEST(RecordFormJson, ErrorsNameTheMemberAtFault) {
  struct Case {
    const char* records;
    const char* error;
  } const cases[] = {
      {R"({"colour": 1})", "records.colour: unknown member"},
      {R"({"delimited": {"separator": "", "fields": [{"width": 1}]}})",
       "records.delimited.separator: must be one character"},
      {R"({"delimited": {"separator": ";", "quote": ";", "fields": [{"width": 1}]}})",
       "records.delimited.quote: must differ from the separator"},
      {R"({"delimited": {"fields": []}})",
       "records.delimited.fields: must be a list of fields ({\"name\", \"width\"})"},
      {R"({"delimited": {"fields": [{"width": 256}]}})",
       "records.delimited.fields[0].width: must be 0 to 255"},
      {R"({"delimited": {"fields": [{"name": 3, "width": 1}]}})",
       "records.delimited.fields[0].name: must be a string"},
      {R"({"delimited": {"fields": [{"width": 6, "seconds": true}]}})",
       "records.delimited.fields[0].width: a field of seconds needs at least 7 columns (H:MM:SS)"},
      {R"({"headings": ["**"]})", "records.headings[0]: matches every line"},
      {R"({"headings": "x"})", "records.headings: must be a list of patterns"},
      {R"({"record_end": "cr"})", "records.record_end: must be \"line\" or \"nul\""},
      {R"({"continuation": {"pattern": "&*"}})", "records.continuation.column: must be an integer"},
      {R"({"delimited": {"fields": [{"width": 1}]}, "continuation": {"pattern": "&*",
          "column": 9}})",
       "records.continuation: delimited records have no continuation lines"},
      {R"({"seven_bit": 1})", "records.seven_bit: must be true or false"},
      {R"({"extras": [1]})", "records.extras: must be an object of fields by name"},
      {R"({"extras": {"Charge": {"pos": 1, "size": 1}}})",
       "records.extras.Charge: a name is 1 to 32 lower-case letters, digits and '_', from a "
       "letter"},
      {R"({"extras": {"charge": {"pos": 0, "size": 1}}})",
       "records.extras.charge.pos: must be an integer from 1 to 255"},
      {R"({"extras": {"charge": {"pos": 1}}})",
       "records.extras.charge.size: must be an integer from 1 to 255"},
      {R"({"extras": {"charge": {"pos": 1, "size": 256}}})",
       "records.extras.charge.size: must be an integer from 1 to 255"},
      {R"({"extras": {"charge": {"pos": 1, "size": 2, "type": "money"}}})",
       "records.extras.charge.type: unknown member"},
      {R"({"seconds_counts": []})", "records.seconds_counts: must be a list of 1 to 16 columns"},
      {R"({"seconds_counts": [{"pos": 52, "size": 6, "mark": "S="}]})",
       "records.seconds_counts[0].size: must be an integer from 7 to 255"},
      {R"({"seconds_counts": [{"pos": 52, "size": 8, "mark": ""}]})",
       "records.seconds_counts[0].mark: must be the text printed before the count, 1 to 255 "
       "characters"},
      {R"({"delimited": {"fields": [{"width": 1}]}, "seconds_counts": [{"pos": 1, "size": 8,
          "mark": "S="}]})",
       "records.seconds_counts: delimited records mark their counts of seconds by field"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.records);
    try {
      Read(std::string(R"({"records": )") + c.records + "}");
      ADD_FAILURE() << "no error";
    } catch (const Failure& e) {
      EXPECT_STREQ(e.what(), c.error);
    }
  }
}

// A count of seconds after its mark becomes H:MM:SS in the same columns; a
// clock, a blank, a count that is not digits or whose hours do not fit are
// told apart. The form reads and writes the columns back as it read them.
TEST(RecordFormJson, CountsOfSecondsAreRewrittenWhereTheyAreMarked) {
  Read read(
      R"({"records": {"seconds_counts": [{"pos": 5, "size": 8, "mark": "S="}], "time": "start"}})");
  EXPECT_EQ(read.form.Describe(), "fixed columns + counts of seconds");
  EXPECT_FALSE(read.form.Plain());
  struct Case {
    const char16_t* record;
    const char16_t* rewritten;
  } const cases[] = {
      {u"IN     S=226 $", u"IN   0:03:46 $"},  // right-aligned, what follows kept
      {u"IN      S=5", u"IN   0:00:05"},       // a short count, the record ended by it
      {u"IN  S=359999", u"IN  99:59:59"},      // 99 hours fill the 8 columns
      {u"IN  S=360000", u"IN          "},      // 100 hours do not fit: no duration
      {u"IN  S=12x4", u"IN          "},        // not digits: no duration
      {u"IN", u"IN"},                          // the record ends before the columns
      {u"IN     S= ", u"IN     S= "},          // a mark with no count: left as printed
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.record));
    std::u16string record = c.record;
    read.form.RewriteCounts(&record);
    EXPECT_EQ(record, c.rewritten);
  }
  const RecordForm back = read.Again().form;
  ASSERT_EQ(back.seconds_counts.size(), 1U);
  EXPECT_EQ(back.seconds_counts[0].column, 5);
  EXPECT_EQ(back.seconds_counts[0].width, 8);
  EXPECT_EQ(back.seconds_counts[0].mark, u"S=");
}

// Extra fields are read, written back as read, and cut from each record
// (blanks trimmed; none past the record's end).
TEST(RecordFormJson, ExtraFieldsAreReadWrittenAndCut) {
  Read read(R"({"records": {"time": "end", "extras": {
    "pulses": {"pos": 5, "size": 3}, "charge": {"pos": 1, "size": 4}, "call_id": {"pos": 12, "size": 4}}}})");
  EXPECT_EQ(read.form.Describe(), "fixed columns + end times + 3 extra fields");
  const RecordForm back = read.Again().form;
  ASSERT_EQ(back.extras.size(), 3u);
  struct Case {
    const char16_t* record;
    const char* extras;  // name=text, in name order
  };
  const Case cases[] = {
      {u"0.12 3    xA17", "call_id=A17 charge=0.12 pulses=3"},
      {u"  12 03", "call_id= charge=12 pulses=03"},  // shorter than the call ID's columns
      {u"", "call_id= charge= pulses="},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.record));
    std::string got;
    for (const auto& [name, text] : CutExtras(back.extras, c.record)) {
      got += (got.empty() ? "" : " ") + name + "=" + U8(text);
    }
    EXPECT_EQ(got, c.extras);
  }
}

// Keeps the rows written, as one summary string each.
class Rows : public RowSink {
 public:
  void Write(const Row& row) override {
    rows.push_back(std::to_string(row.number) + " " + std::to_string(row.type) + " " +
                   U8(row.dialled) + " " + std::to_string(row.duration) + " " + U8(row.extension));
  }
  std::vector<std::string> rows;
};

// A switch printing "T dialled duration(seconds) extension": incoming I,
// outgoing O; the duration field is cut at the shaped columns of "seconds".
std::shared_ptr<velqua::clsCfgConmut> Config(const std::string& records, RecordForm* form) {
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  std::string delivery;
  SwitchConfigFromJson(R"({"case": 1, "separator": "\r\n", "records": )" + records + R"(,
    "fields": {
      "emParamTelefonoEntrante": {"pos": 3, "size": 10, "type": "string"},
      "emParamTelefonoSaliente": {"pos": 3, "size": 10, "type": "string"},
      "emParamDuracionHoras": {"pos": 14, "size": 1, "type": "numeric"},
      "emParamDuracionMinutos": {"pos": 16, "size": 2, "type": "numeric"},
      "emParamDuracionSegundos": {"pos": 19, "size": 2, "type": "numeric"},
      "emParamExtensionEntrante": {"pos": 22, "size": 4, "type": "string"},
      "emParamExtensionSaliente": {"pos": 22, "size": 4, "type": "string"}
    },
    "constants": {
      "emDatoCteIdentEntrante": {"pos": 1, "text": "I"},
      "emDatoCteIdentSaliente": {"pos": 1, "text": "O"}
    }})",
                       *cfg, form, &delivery);
  return cfg;
}

TEST(TranslationWithAForm, DelimitedRecordsAreShapedAndCounted) {
  RecordForm form;
  const auto cfg = Config(R"({"delimited": {"fields": [{"width": 1}, {"width": 10},
    {"width": 7, "seconds": true}, {"width": 4}]}, "headings": ["Type,*"]})",
                          &form);
  Rows rows;
  Translation translation(cfg, rows, {"", "", false, form});
  for (const char16_t* line : {u"Type,Number,Seconds,Ext", u"O,0312345678,125,201",
                               u"I,\"0215,550199\",61", u"O,555,3600,202,extra"}) {
    translation.Line(line);
  }
  translation.Finish();
  EXPECT_EQ(rows.rows, (std::vector<std::string>{"2 2 0312345678 125 201", "3 1 0215,550199 61 ",
                                                 "4 2 555 3600 202"}));
  EXPECT_EQ(translation.counts().headings, 1);
  EXPECT_EQ(translation.counts().fewer_fields, 1);
  EXPECT_EQ(translation.counts().more_fields, 1);
}

TEST(TranslationWithAForm, ContinuationNulEndsAndSevenBitBeforeTranslating) {
  RecordForm form;
  const auto cfg = Config(R"({"continuation": {"pattern": "&*", "column": 22},
    "record_end": "nul", "seven_bit": true})",
                          &form);
  Rows rows;
  Translation translation(cfg, rows, {"", "", false, form});
  // The second record's ASCII bytes carry bit 7; its extension follows on a
  // continuation line; the first two records share a line, NUL-ended.
  std::string bytes = "O 0312345678 0:02:05 201";
  bytes += '\0';
  for (char c : std::string("I 0215550199 0:01:01")) bytes += static_cast<char>(c | 0x80);
  bytes += "\r\n&209\r\nO 555        1:00:00 202\r\n";
  std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
  std::fwrite(bytes.data(), 1, bytes.size(), f.get());
  std::rewind(f.get());
  translation.Stream(f.get());
  translation.Finish();
  // Numbered by the line each starts on: two on the first, the third on the third.
  EXPECT_EQ(rows.rows, (std::vector<std::string>{"1 2 0312345678 125 201", "1 1 0215550199 61 &209",
                                                 "3 2 555 3600 202"}));
}

// A row's number is the line of the file its record starts on, as `config
// check` counts lines: empty lines, page headings and continuation lines
// count; CR, LF and CR LF each end a line; a resumed input counts on.
TEST(TranslationWithAForm, RowsAreNumberedByTheLineTheirRecordStartsOn) {
  const std::string o = "O 0312345678 0:02:05 201", i = "I 0215550199 0:01:01";
  struct Case {
    const char* what;
    std::string form, bytes;
    int64_t lines_before;
    std::vector<int64_t> numbers;
    int64_t lines;  // in the bytes
  } cases[] = {
      // clang-format off
      {"empty lines and every line end", "{}", o + "\r\n\r\n" + i + "\r" + o + "\n\n" + i, 0, {1, 3, 4, 6}, 6},
      {"headings and continuations", R"({"headings": ["Type*"], "continuation": {"pattern": "&*", "column": 22}})", "Type\r\n" + o + "\r\n&209\r\n&210\r\nType\r\n" + i + "\r\n", 0, {2, 6}, 6},
      {"resumed after 41 lines", "{}", o + "\r\n" + i + "\r\n", 41, {42, 43}, 2},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RecordForm form;
    const auto cfg = Config(c.form, &form);
    Rows rows;
    Translation translation(cfg, rows, {"", "", false, form});
    translation.Input("calls.txt", FechaHora{2026, 1, 1, 0, 0, 0}, 0, c.lines_before);
    std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
    std::fwrite(c.bytes.data(), 1, c.bytes.size(), f.get());
    std::rewind(f.get());
    translation.Stream(f.get());
    translation.Finish();
    std::vector<int64_t> numbers;
    for (const std::string& row : rows.rows) numbers.push_back(std::stoll(row));
    EXPECT_EQ(numbers, c.numbers);
    // What a resumed reading starts from: the lines before a byte.
    std::rewind(f.get());
    EXPECT_EQ(LinesBefore(f.get(), static_cast<int64_t>(c.bytes.size())), c.lines);
    if (c.bytes.rfind(o + "\r\n", 0) == 0) {
      EXPECT_EQ(LinesBefore(f.get(), static_cast<int64_t>(o.size()) + 2), 1);
    }
  }
}

}  // namespace
}  // namespace velqua_records
