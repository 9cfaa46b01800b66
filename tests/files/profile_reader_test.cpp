// The profile-file reader and writer under Importar and Exportar, and what
// counts as a number in a profile value.
#include <cstring>
#include <string>
#include <tuple>

#include "files/bas_conmuta.h"
#include "files/files_support.h"
#include "files/numerico.h"
#include "files/perfil_ini.h"

namespace {

using namespace files_test;
using basConmuta::EscribeValorINI;
using basConmuta::LeeValorINI;

class ProfileReader : public FileTest {
 protected:
  std::string Value(const std::u16string& file, const std::string& section,
                    const std::string& key) {
    return AUtf8(LeeValorINI(file, U(section), U(key)));
  }
};

TEST_F(ProfileReader, ValuesAreFoundTrimmedUnquotedAndCutTo254Characters) {
  for (const auto& [text, read] : velqua_test::ReadCases("files/profile_values.txt")) {
    SCOPED_TRACE(text);
    const size_t bar = read.find('|'), bar2 = read.find('|', bar + 1);
    EXPECT_EQ(Value(Put("p.ini", text), read.substr(0, bar), read.substr(bar + 1, bar2 - bar - 1)),
              read.substr(bar2 + 1));
  }
  for (const std::u16string& name : {dir.Path16("none.ini"), U(dir.dir()), std::u16string()}) {
    EXPECT_EQ(Value(name, "S", "k"), "");
  }
  EXPECT_EQ(basConmuta::CortaEnNulo(std::u16string(u"ab\0cd", 5)), u"ab");
  EXPECT_EQ(basConmuta::CortaEnNulo(u"abc"), u"abc");
}

TEST_F(ProfileReader, PlatformReaderHonoursItsBufferSize) {
  const std::string name = AAnsi(Put("p.ini", "[S]\nk=abcdef\n"));
  char buf[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "k", nullptr, buf, 4, name.c_str()), 3u);
  EXPECT_STREQ(buf, "abc");
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "z", nullptr, buf, 4, name.c_str()), 0u);
  EXPECT_STREQ(buf, "");
  EXPECT_EQ(perfil::GetPrivateProfileStringA("S", "k", nullptr, buf, 0, name.c_str()), 0u);
  // A null section, key or file name copies nothing, not even the default.
  using Names = std::tuple<const char*, const char*, const char*>;
  for (const auto& [section, key, file] :
       {Names{nullptr, "k", name.c_str()}, Names{"S", nullptr, name.c_str()},
        Names{"S", "k", nullptr}}) {
    std::memcpy(buf, "xxx", 4);
    EXPECT_EQ(perfil::GetPrivateProfileStringA(section, key, "default", buf, 4, file), 0u);
    EXPECT_STREQ(buf, "");
  }
}

TEST_F(ProfileReader, AReadSessionSeesAFileChangedOrWrittenMeanwhile) {
  const auto f = Put("p.ini", "[S]\nk=1\n");
  perfil::SesionLecturaPerfil session;
  EXPECT_EQ(Value(f, "S", "k"), "1");
  Put("p.ini", "[S]\nk=22\n");
  EXPECT_EQ(Value(f, "S", "k"), "22");
  ASSERT_TRUE(EscribeValorINI(f, u"S", u"k", u"33"));
  EXPECT_EQ(Value(f, "S", "k"), "33");
  EXPECT_EQ(Value(dir.Path16("other.ini"), "S", "k"), "");
  EXPECT_EQ(Value(f, "S", "k"), "33");
}

TEST_F(ProfileReader, WritingAddsSectionsAndKeysOrReplacesAValueInPlace) {
  const auto f = dir.Path16("new.ini");
  ASSERT_TRUE(EscribeValorINI(f, u"A", u"k", u"  1  "));
  ASSERT_TRUE(EscribeValorINI(f, u"B", u"k", U("ñ")));
  ASSERT_TRUE(EscribeValorINI(f, u"A", u"j", u"3"));
  EXPECT_EQ(Read("new.ini"), "[A]\r\nk=  1  \r\nj=3\r\n\r\n[B]\r\nk=\xF1\r\n");
  EXPECT_EQ(Value(f, "A", "k"), "1");
  const auto g = Put("p.ini", "; head\n[a]\nKEY = old\nother=1\n\n[b]\nkey=x\n");
  ASSERT_TRUE(EscribeValorINI(g, u"A", u"key", u"new"));
  ASSERT_TRUE(EscribeValorINI(g, u"a", u"added", u"v"));
  EXPECT_EQ(Read("p.ini"),
            "; head\r\n[a]\r\nKEY=new\r\nother=1\r\nadded=v\r\n\r\n[b]\r\nkey=x\r\n");
  for (const std::u16string& name : {U(dir.dir()), dir.Path16("no/x.ini"), std::u16string()}) {
    EXPECT_FALSE(EscribeValorINI(name, u"S", u"k", u"v"));
  }
}

TEST(ProfileNumbers, NumericFormsAndTheirHalfToEvenIntegers) {
  for (const auto& [text, value] : velqua_test::ReadCases("files/profile_numbers.txt")) {
    SCOPED_TRACE(text);
    const std::u16string number = U(text.substr(1, text.size() - 2));
    EXPECT_EQ(archivos::EsNumerico(number), value != "no");
    if (value == "overflow") {
      EXPECT_VELQUA_ERROR_NUMBER(archivos::ValorEntero32(number), kErrDesbordamiento);
    } else if (value != "no") {
      EXPECT_EQ(std::to_string(archivos::ValorEntero32(number)), value);
    }
  }
}

}  // namespace
