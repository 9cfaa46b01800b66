// Part 3.2: the basConmuta functions, the profile-file reader and writer that
// stand in for the platform, and the numeric test of profile values.
#include <gtest/gtest.h>

#include <string>

#include "files/bas_conmuta.h"
#include "files/numerico.h"
#include "files/perfil_ini.h"
#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using basConmuta::CortaEnNulo;
using basConmuta::EscribeValorINI;
using basConmuta::LeeValorINI;
using velqua_test::ReadFile;
using velqua_test::TempDir;
using velqua_test::U;
using velqua_test::WriteFile;

class Part3_2Profile : public ::testing::Test {
 protected:
  std::u16string Put(const std::string& bytes) {
    WriteFile(dir.Path("p.ini"), bytes);
    return dir.Path16("p.ini");
  }
  std::string Read(const std::u16string& file, const char16_t* sec, const char16_t* key) {
    return AUtf8(LeeValorINI(file, sec, key));
  }
  TempDir dir;
};

// ---- CortaEnNulo ----

TEST(Part3_2CortaEnNulo, CutsAtTheFirstU0000) {
  EXPECT_EQ(CortaEnNulo(std::u16string(u"ab\0cd", 5)), u"ab");
  EXPECT_EQ(CortaEnNulo(u"abc"), u"abc");
  EXPECT_EQ(CortaEnNulo(std::u16string(1, u'\0')), u"");
  EXPECT_EQ(CortaEnNulo(u""), u"");
}

// ---- reading ----

TEST_F(Part3_2Profile, SectionsAndKeysAreFoundWithoutRegardToCase) {
  const auto f =
      Put("[CONMUTADOR]\r\nmarca=Nec\r\n[\xD1"
          "and\xFA]\r\n\xC1"
          "rbol=1\r\n");
  EXPECT_EQ(Read(f, u"Conmutador", u"Marca"), "Nec");
  EXPECT_EQ(AUtf8(LeeValorINI(f, U("ñANDÚ"), U("áRBOL"))), "1");
}

TEST_F(Part3_2Profile, BlanksAroundNamesAndValuesAreRemoved) {
  const auto f = Put("  [ Conmutador ]  \n \t Marca \t=   Nec  Corp \t \nModelo=\r\n");
  EXPECT_EQ(Read(f, u"Conmutador", u"Marca"), "Nec  Corp");
  EXPECT_EQ(Read(f, u"Conmutador", u"Modelo"), "");
}

TEST_F(Part3_2Profile, AMatchingPairOfQuotesIsDropped) {
  const auto f = Put("[S]\na=\"x y\"\nb='z'\nc='w\"\nd=\"\ne='' \n");
  EXPECT_EQ(Read(f, u"S", u"a"), "x y");
  EXPECT_EQ(Read(f, u"S", u"b"), "z");
  EXPECT_EQ(Read(f, u"S", u"c"), "'w\"");
  EXPECT_EQ(Read(f, u"S", u"d"), "\"");
  EXPECT_EQ(Read(f, u"S", u"e"), "");
}

TEST_F(Part3_2Profile, TheFirstSectionAndTheFirstKeyOfANameWin) {
  const auto f = Put("[S]\nk=1\nK=2\n[T]\nk=3\n[s]\nk=4\nonly=5\n");
  EXPECT_EQ(Read(f, u"S", u"k"), "1");
  EXPECT_EQ(Read(f, u"T", u"k"), "3");
  EXPECT_EQ(Read(f, u"S", u"only"), "");
}

TEST_F(Part3_2Profile, LinesWithoutEqualsAndKeysBeforeAnySectionAreIgnored) {
  const auto f = Put("orphan=1\n; comment=2\n[S]\nnoequals\n;k=3\nk=4\n");
  EXPECT_EQ(Read(f, u"S", u"noequals"), "");
  EXPECT_EQ(Read(f, u"S", u"k"), "4");
  EXPECT_EQ(Read(f, u"S", u";k"), "3");
}

TEST_F(Part3_2Profile, ValueContainsEverythingAfterTheFirstEquals) {
  const auto f = Put("[S]\nk=a=b;c\n");
  EXPECT_EQ(Read(f, u"S", u"k"), "a=b;c");
}

TEST_F(Part3_2Profile, MissingFileSectionKeyOrDirectoryGiveEmpty) {
  const auto f = Put("[S]\nk=1\n");
  EXPECT_EQ(Read(dir.Path16("none.ini"), u"S", u"k"), "");
  EXPECT_EQ(Read(f, u"X", u"k"), "");
  EXPECT_EQ(Read(f, u"S", u"x"), "");
  EXPECT_EQ(Read(U(dir.dir()), u"S", u"k"), "");
  EXPECT_EQ(Read(u"", u"S", u"k"), "");
}

TEST_F(Part3_2Profile, LeeValorINICutsTo254CharactersThenRemovesTrailingBlanks) {
  const std::string v = std::string(250, 'a') + "    bcdef";
  const auto f = Put("[S]\nk=" + v + "\nm=" + std::string(300, 'm') + "\n");
  EXPECT_EQ(Read(f, u"S", u"k"), std::string(250, 'a'));  // 254 = 250 a + 4 blanks
  EXPECT_EQ(Read(f, u"S", u"m"), std::string(254, 'm'));
}

TEST_F(Part3_2Profile, AZeroByteInAValueEndsIt) {
  const auto f = Put(std::string("[S]\nk=ab\0cd\n", 12));
  EXPECT_EQ(Read(f, u"S", u"k"), "ab");
}

TEST_F(Part3_2Profile, ValuesAreWindows1252) {
  const auto f = Put("[S]\nk=\xF1\x80\n");
  EXPECT_EQ(Read(f, u"S", u"k"), "ñ€");
}

TEST_F(Part3_2Profile, PlatformReaderHonoursBufferSizeAndDefault) {
  const auto f = Put("[S]\nk=abcdef\n");
  const std::string name = AAnsi(f);
  char buf[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "k", nullptr, buf, 4, name.c_str()), 3u);
  EXPECT_STREQ(buf, "abc");
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "z", "def", buf, 4, name.c_str()), 3u);
  EXPECT_STREQ(buf, "def");
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "z", nullptr, buf, 4, name.c_str()), 0u);
  EXPECT_STREQ(buf, "");
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "k", nullptr, buf, 0, name.c_str()), 0u);
}

TEST_F(Part3_2Profile, ASessionParsesOnceButSeesAChangedFile) {
  const auto f = Put("[S]\nk=1\n");
  perfil::SesionLecturaPerfil session;
  EXPECT_EQ(Read(f, u"S", u"k"), "1");
  Put("[S]\nk=22\n");  // another size: another identity
  EXPECT_EQ(Read(f, u"S", u"k"), "22");
  ASSERT_TRUE(EscribeValorINI(f, u"S", u"k", u"33"));  // a write drops the cache
  EXPECT_EQ(Read(f, u"S", u"k"), "33");
  EXPECT_EQ(Read(dir.Path16("other.ini"), u"S", u"k"), "");
  EXPECT_EQ(Read(f, u"S", u"k"), "33");
}

// ---- writing ----

TEST_F(Part3_2Profile, WritingCreatesTheFileAndTheSections) {
  const auto f = dir.Path16("new.ini");
  ASSERT_TRUE(EscribeValorINI(f, u"A", u"k", u"1"));
  ASSERT_TRUE(EscribeValorINI(f, u"B", u"k", u"2"));
  ASSERT_TRUE(EscribeValorINI(f, u"A", u"j", u"3"));
  EXPECT_EQ(ReadFile(dir.Path("new.ini")), "[A]\r\nk=1\r\nj=3\r\n\r\n[B]\r\nk=2\r\n");
}

TEST_F(Part3_2Profile, WritingReplacesAnExistingValueInPlaceKeepingOtherLines) {
  const auto f = Put("; head\n[a]\nKEY = old\nother=1\n\n[b]\nkey=x\n");
  ASSERT_TRUE(EscribeValorINI(f, u"A", u"key", u"new"));
  ASSERT_TRUE(EscribeValorINI(f, u"a", u"added", u"v"));
  EXPECT_EQ(ReadFile(dir.Path("p.ini")),
            "; head\r\n[a]\r\nKEY=new\r\nother=1\r\nadded=v\r\n\r\n[b]\r\nkey=x\r\n");
  EXPECT_EQ(Read(f, u"b", u"key"), "x");
}

TEST_F(Part3_2Profile, WritingToADirectoryOrAMissingFolderFails) {
  EXPECT_FALSE(EscribeValorINI(U(dir.dir()), u"S", u"k", u"v"));
  EXPECT_FALSE(EscribeValorINI(U(dir.dir() + "/no/x.ini"), u"S", u"k", u"v"));
  EXPECT_FALSE(EscribeValorINI(u"", u"S", u"k", u"v"));
}

TEST_F(Part3_2Profile, WrittenValuesReadBackTrimmed) {
  const auto f = dir.Path16("t.ini");
  ASSERT_TRUE(EscribeValorINI(f, u"S", u"k", u"  spaced  "));
  EXPECT_EQ(Read(f, u"S", u"k"), "spaced");
  ASSERT_TRUE(EscribeValorINI(f, u"S", u"e", U("ñ")));
  EXPECT_EQ(ReadFile(dir.Path("t.ini")), "[S]\r\nk=  spaced  \r\ne=\xF1\r\n");
}

// ---- numeric ----

TEST(Part3_2Numeric, AcceptedForms) {
  for (const char16_t* t : {u"0", u"12", u" 12 ", u"\t7", u"+3", u"-3", u"1.5", u"1.", u".5",
                            u"-.5", u"007", u"99999999999999999999"}) {
    EXPECT_TRUE(archivos::EsNumerico(t)) << AUtf8(t);
  }
}

TEST(Part3_2Numeric, RefusedForms) {
  for (const char16_t* t : {u"", u" ", u"+", u"-", u".", u"1e3", u"&H1F", u"1,000", u"$1", u"(1)",
                            u"1 2", u"+ 1", u"abc", u"12a", u"--1", u"1..2", u"٣"}) {
    EXPECT_FALSE(archivos::EsNumerico(t)) << AUtf8(t);
  }
}

TEST(Part3_2Numeric, IntegerConversionRoundsHalfToEven) {
  EXPECT_EQ(archivos::ValorEntero32(u" 42 "), 42);
  EXPECT_EQ(archivos::ValorEntero32(u"2.5"), 2);
  EXPECT_EQ(archivos::ValorEntero32(u"3.5"), 4);
  EXPECT_EQ(archivos::ValorEntero32(u"2.51"), 3);
  EXPECT_EQ(archivos::ValorEntero32(u"-2.5"), -2);
  EXPECT_EQ(archivos::ValorEntero32(u"-2.6"), -3);
  EXPECT_EQ(archivos::ValorEntero32(u".4"), 0);
  EXPECT_EQ(archivos::ValorEntero32(u"-2147483648"), INT32_MIN);
  EXPECT_EQ(archivos::ValorEntero32(u"2147483647"), INT32_MAX);
  EXPECT_EQ(archivos::ValorEntero32(u"0000000000000000000000000000005"), 5);
}

TEST(Part3_2Numeric, ValuesBeyond32BitsOverflow) {
  EXPECT_VELQUA_ERROR_NUMBER(archivos::ValorEntero32(u"2147483648"), 6);
  EXPECT_VELQUA_ERROR_NUMBER(archivos::ValorEntero32(u"-2147483649"), 6);
  EXPECT_VELQUA_ERROR_NUMBER(archivos::ValorEntero32(u"2147483647.5"), 6);
  EXPECT_VELQUA_ERROR_NUMBER(archivos::ValorEntero32(u"99999999999999999999999999"), 6);
}

}  // namespace
