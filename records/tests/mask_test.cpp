// --mask-digits: which characters of a dialled number are hidden, and the
// raw record hiding what the field hides.
#include "velqua/records/mask.h"

#include <gtest/gtest.h>

#include "velqua/texto.h"

namespace velqua_records {
namespace {

TEST(MaskDigits, HidesTheLastDigitsOnly) {
  const struct {
    const char* number;
    int digits;
    const char* masked;
  } cases[] = {
      {"0301234567", 4, "030123XXXX"},
      {"+34 91 555 12 34", 4, "+34 91 555 XX XX"},  // spaces and signs stay
      {"0301234567#", 3, "0301234XXX#"},            // a trailing non-digit stays
      {"21", 4, "XX"},                              // shorter than N: every digit
      {"0301234567", 0, "0301234567"},
      {"", 4, ""},
      {"*72", 4, "*XX"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.number);
    EXPECT_EQ(MaskDigits(std::string_view(c.number), c.digits), c.masked);
    EXPECT_EQ(velqua::AUtf8(MaskDigits(std::u16string_view(velqua::DesdeUtf8(c.number)), c.digits)),
              c.masked);
  }
}

TEST(MaskDigits, RawRecordHidesEveryOccurrence) {
  const struct {
    const char* raw;
    const char* number;
    const char* masked;
  } cases[] = {
      {"09.03.26 08:10  23  00:00:52 0301234567   0.12", "0301234567",
       "09.03.26 08:10  23  00:00:52 030123XXXX   0.12"},
      {"0301234567,0301234567,23", "0301234567", "030123XXXX,030123XXXX,23"},
      {"09.03.26 08:10  23  0301234567", "", "09.03.26 08:10  23  0301234567"},
      {"09.03.26 08:10  23  ----", "----", "09.03.26 08:10  23  ----"},  // no digit to hide
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.raw);
    EXPECT_EQ(MaskNumberIn(c.raw, c.number, 4), c.masked);
  }
}

// The sink masks the copy it passes on: the row the translation holds (its
// text views the translation's buffer) is left as it is.
TEST(MaskDigits, SinkPassesMaskedRows) {
  struct Keep : RowSink {
    void Write(const Row& row) override {
      dialled.push_back(velqua::AUtf8(row.dialled));
      texts.push_back(velqua::AUtf8(std::u16string(row.text)));
    }
    std::vector<std::string> dialled, texts;
  } kept;
  MaskingSink sink(kept, 4);
  const std::u16string text = u"23 0301234567 00:52";
  Row call;
  call.has_fields = true;
  call.dialled = u"0301234567";
  call.text = text;
  Row unrecognised;
  unrecognised.text = u"garbage 0301234567";
  sink.Write(call);
  sink.Write(unrecognised);
  EXPECT_EQ(kept.dialled, (std::vector<std::string>{"030123XXXX", ""}));
  EXPECT_EQ(kept.texts, (std::vector<std::string>{"23 030123XXXX 00:52", "garbage 0301234567"}));
  EXPECT_EQ(call.dialled, u"0301234567");
}

}  // namespace
}  // namespace velqua_records
