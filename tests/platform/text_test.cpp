// Text at the library's edges: UTF-8 in and out (what a host passes and gets
// back), and the case-insensitive comparison the translator uses for marks.
#include <gtest/gtest.h>

#include <string>

#include "platform/mayusculas.h"
#include "velqua/texto.h"

namespace {

// Malformed UTF-8 becomes U+FFFD, one per bad byte; the boundaries of every
// sequence length are exact.
TEST(Utf8Text, DecodesEverySequenceLengthAndReplacesWhatIsMalformed) {
  struct Case {
    const char* utf8;
    std::u16string text;
  } const cases[] = {
      {"\x7F", u"\x7F"},
      {"\x80", u"\uFFFD"},
      {"\xC1\xBF", u"\uFFFD\uFFFD"},  // overlong
      {"\xC2\x80", u"\u0080"},
      {"\xDF\xBF", u"\u07FF"},
      {"\xE0\xA0\x80", u"\u0800"},
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},  // a surrogate's code
      {"\xEF\xBF\xBD", u"\uFFFD"},
      {"\xF0\x90\x80\x80", u"\U00010000"},
      {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past U+10FFFF
      {"\xF5\x80", u"\uFFFD\uFFFD"},
      {"\xF8\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // no lead byte, though its bits fit
      {"\xE2\x82", u"\uFFFD\uFFFD"},                      // cut short
      {"a\xC3\xB1z", u"a\u00F1z"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(velqua::DesdeUtf8(c.utf8), c.text);
  }
}

// A lone surrogate cannot be written in UTF-8: it becomes U+FFFD; a pair is
// one code point.
TEST(Utf8Text, EncodesPairsAndReplacesLoneSurrogates) {
  struct Case {
    std::u16string text;
    const char* utf8;
  } const cases[] = {
      {u"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},
      {u"\U00010000", "\xF0\x90\x80\x80"},
      {u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
      {std::u16string(1, char16_t{0xD800}), "\xEF\xBF\xBD"},
      {std::u16string(1, char16_t{0xDFFF}), "\xEF\xBF\xBD"},
      {std::u16string{char16_t{0xD7FF}}, "\xED\x9F\xBF"},
      {std::u16string{char16_t{0xDBFF}, char16_t{0xDC00}}, "\xF4\x8F\xB0\x80"},
      {std::u16string{char16_t{0xD800}, u'a'},
       "\xEF\xBF\xBD"
       "a"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(velqua::AUtf8(c.text), c.utf8);
  }
}

// Marks are compared without regard to case in every alphabet a switch may
// print, and only the two cases of one letter are equal.
TEST(CaseFolding, PairsOnlyTheTwoCasesOfOneLetter) {
  struct Case {
    std::u16string a, b;
    bool equal;
  } const cases[] = {
      {u"SALIENTE", u"saliente", true},
      {u"@", u"`", false},
      {u"\u00C9", u"\u00E9", true},
      {u"\u0100", u"\u0101", true},
      {u"\u0136", u"\u0137", true},
      {u"\u0139", u"\u013A", true},
      {u"\u0147", u"\u0148", true},
      {u"\u014A", u"\u014B", true},
      {u"\u0176", u"\u0177", true},
      {u"\u0179", u"\u017A", true},
      {u"\u0177", u"\u0178", false},
      {u"\u0178", u"\u00FF", true},
      {u"\u0130", u"i", false},
      {u"\u03A3", u"\u03C2", true},
      {u"\u0410", u"\u0430", true},
      {u"\u0400", u"\u0450", true},
      {u"\u040F", u"\u045F", true},
      {u"\u042F", u"\u044F", true},
      {u"ab", u"ab ", false},
      {u"\u00F7", u"\u00D7", false},
      {u"a", u"\u00E1", false},
      {u"\u00FF\u0153\u0161\u017E\u0142\u0144\u017A \u03B1\u03B2\u03B3 \u0436\u044F",
       u"\u0178\u0152\u0160\u017D\u0141\u0143\u0179 \u0391\u0392\u0393 \u0416\u042F", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(velqua::AUtf8(c.a) + " / " + velqua::AUtf8(c.b));
    EXPECT_EQ(velqua::plataforma::IgualesSinMayusculas(c.a, c.b), c.equal);
    EXPECT_EQ(velqua::plataforma::IgualesSinMayusculas(c.b, c.a), c.equal);
  }
}

}  // namespace
