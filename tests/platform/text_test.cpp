// Text at the library's edges: UTF-8 in and out (what a host passes and gets
// back), and the case-insensitive comparison the translator uses for marks.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/mayusculas.h"
#include "support/velqua_test.h"
#include "velqua/texto.h"

namespace {

// Code units written in hex, separated by blanks.
std::u16string Units(const std::string& hex) {
  std::istringstream in(hex);
  std::u16string text;
  for (unsigned unit = 0; in >> std::hex >> unit;) text.push_back(static_cast<char16_t>(unit));
  return text;
}

TEST(Utf8Text, DecodesEverySequenceLengthAndReplacesWhatIsMalformed) {
  for (const auto& [utf8, units] : velqua_test::ReadCases("platform/utf8_decode.txt")) {
    SCOPED_TRACE(units);
    EXPECT_EQ(velqua::DesdeUtf8(utf8), Units(units));
  }
}

TEST(Utf8Text, EncodesPairsAndReplacesLoneSurrogates) {
  for (const auto& [units, utf8] : velqua_test::ReadCases("platform/utf8_encode.txt")) {
    SCOPED_TRACE(units);
    EXPECT_EQ(velqua::AUtf8(Units(units)), utf8);
  }
}

TEST(CaseFolding, PairsOnlyTheTwoCasesOfOneLetter) {
  for (const auto& [texts, equal] : velqua_test::ReadCases("platform/case_folding.txt")) {
    SCOPED_TRACE(texts);
    const size_t bar = texts.find('|');
    const std::u16string a = Units(texts.substr(0, bar)), b = Units(texts.substr(bar + 1));
    EXPECT_EQ(velqua::plataforma::IgualesSinMayusculas(a, b), equal == "1");
    EXPECT_EQ(velqua::plataforma::IgualesSinMayusculas(b, a), equal == "1");
  }
}

}  // namespace
