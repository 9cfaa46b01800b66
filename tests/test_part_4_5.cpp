// Part 4.5: the unrecognised-call log and the KX-TDA extension list.
#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// ---- the log ----

class Part4_5Log : public ::testing::Test {
 protected:
  Part4_5Log() : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoEstandar, u"|")) {
    tr_.Conmutador(cfg_);
    tr_.ArchivoLlamadasError(dir_.Path16("log.txt"));
  }
  std::string Log() const { return ReadFile(dir_.Path("log.txt")); }

  FixedClock clock_;
  TempDir dir_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_5Log, TwoEntriesInARowAreSeparatedByTwoEmptyLines) {
  tr_.LlamadaActual(u"registro 1");
  clock_.Set(At(2027, 1, 5, 7, 8, 9));
  tr_.LlamadaActual(u"registro 2");
  EXPECT_EQ(Log(),
            "\r\n\r\nLlamada no reconocida (2026 Nov 18 09:05:03): \r\nregistro 1\r\n"
            "\r\n\r\nLlamada no reconocida (2027 Jan 05 07:08:09): \r\nregistro 2\r\n");
}

TEST_F(Part4_5Log, HeadingEndsWithColonAndBlank) {
  tr_.LlamadaActual(u"x 1");
  const std::string log = Log();
  const size_t heading_end = log.find("\r\n", 4);
  ASSERT_NE(heading_end, std::string::npos);
  EXPECT_EQ(log.substr(heading_end - 2, 2), ": ");
}

TEST_F(Part4_5Log, EntriesAreAppendedToAnExistingFile) {
  WriteFile(dir_.Path("log.txt"), "antes");
  tr_.LlamadaActual(u"x 1");
  EXPECT_EQ(Log(), "antes" + LogEntry("x 1"));
}

TEST_F(Part4_5Log, RecordIsWrittenInWindows1252AsStored) {
  tr_.LlamadaActual(U("línea ñ € 1\r\nsigue ✓"));
  EXPECT_EQ(Log(), LogEntry("l\xEDnea \xF1 \x80 1\r\nsigue ?"));
}

TEST_F(Part4_5Log, MultiLineEntryIsTheWholeBufferWithSeparators) {
  cfg_->Caso(velqua::emCasoNortelNorstar0x32SMDR6);
  tr_.LlamadaActual(u"sin cabecera|00:00:00 OUTGOING CALL");
  EXPECT_EQ(Log(), LogEntry("sin cabecera|00:00:00 OUTGOING CALL"));
}

TEST_F(Part4_5Log, EmptyNameTurnsLoggingOff) {
  tr_.ArchivoLlamadasError(u"");
  tr_.LlamadaActual(u"x 1");
  EXPECT_TRUE(std::filesystem::is_empty(dir_.dir()));
}

TEST_F(Part4_5Log, UnopenableLogIsIgnored) {
  tr_.ArchivoLlamadasError(dir_.Path16("no/such/folder/log.txt"));
  EXPECT_NO_THROW(tr_.LlamadaActual(u"x 1"));
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  tr_.ArchivoLlamadasError(U(dir_.dir()));  // a directory
  EXPECT_NO_THROW(tr_.LlamadaActual(u"x 1"));
}

TEST_F(Part4_5Log, RecognisedRecordIsNotLogged) {
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetField(*cfg_, velqua::emParamDuracionMinutos, 3, 1);
  SetField(*cfg_, velqua::emParamDuracionSegundos, 5, 1);
  tr_.LlamadaActual(u"O 1 2");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_FALSE(std::filesystem::exists(dir_.Path("log.txt")));
}

// ---- the extension list, seen through Extension in case 10 ----

class Part4_5List : public ::testing::Test {
 protected:
  Part4_5List()
      : clock_(TestNow(), 99),
        cfg_(MakeConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100)) {
    SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 1, u"O");
    SetText(*cfg_, velqua::emParamExtensionSaliente, 3, 8);
    SetField(*cfg_, velqua::emParamDuracionMinutos, 12, 1);
    SetField(*cfg_, velqua::emParamDuracionSegundos, 14, 1);
    tr_.Conmutador(cfg_);
    tr_.ArchivoListaExtensionesKXTDA(dir_.Path16("lista.txt"));
  }
  // The extension of an outgoing call printed with the star code `code`.
  std::u16string Lookup(const std::string& code) {
    std::u16string line = U("O *" + code);
    line.resize(10, u' ');
    tr_.LlamadaActual(line + u" 1 2");
    return tr_.Extension();
  }
  void List(const std::string& bytes) { WriteFile(dir_.Path("lista.txt"), bytes); }

  FixedClock clock_;
  TempDir dir_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_5List, SemicolonLineWinsOverLaterCommaLine) {
  List("1234;201\r\n1234,305\r\n");
  EXPECT_EQ(Lookup("1234"), u"201");
}

TEST_F(Part4_5List, CommaSeparatesWhenLineHasNoSemicolon) {
  List("1234,305\r\n1234;201\r\n");
  EXPECT_EQ(Lookup("1234"), u"305");
}

TEST_F(Part4_5List, EmptyExtensionIsPassedOver) {
  List("1234;\r\n1234;202\r\n");
  EXPECT_EQ(Lookup("1234"), u"202");
}

TEST_F(Part4_5List, BlanksAndLetterCaseAreIgnored) {
  List("AB12 ; 207\r\n");
  EXPECT_EQ(Lookup("ab12"), u"207");
}

TEST_F(Part4_5List, AccentedCodesCompareIgnoringCase) {
  List(
      "\xD1\xC1"
      "1;209\r\n");  // "ÑÁ1" in Windows-1252
  EXPECT_EQ(Lookup("ñá1"), u"209");
}

TEST_F(Part4_5List, SemicolonAfterCommaMakesTheCommaPartOfTheCode) {
  List("1,234;208\r\n");
  EXPECT_EQ(Lookup("1,234"), u"208");
}

TEST_F(Part4_5List, LinesWithoutSeparatorOrStartingWithOneAreIgnored) {
  List("\r\n1234 201\r\n;1234\r\n,1234\r\n\r\n1234;210\r\n");
  EXPECT_EQ(Lookup("1234"), u"210");
}

TEST_F(Part4_5List, LoneLineFeedAndCarriageReturnEndLines) {
  List("1;211\n2;212\r3;213");
  EXPECT_EQ(Lookup("2"), u"212");
  EXPECT_EQ(Lookup("3"), u"213");
  EXPECT_EQ(Lookup("1"), u"211");
}

// The list is read in blocks of 4096 bytes: line ends split across a block
// boundary, and long lines, end lines as anywhere else.
TEST_F(Part4_5List, LineEndsAcrossReadBlocksEndLines) {
  const std::string filler = std::string(4095, 'x');  // a line up to byte 4095
  List(filler + "\r\n5;214\r\n");                     // CR the last byte of a block, LF the next
  EXPECT_EQ(Lookup("5"), u"214");
  List(filler + "\r6;215\n");  // a lone CR the last byte of a block
  EXPECT_EQ(Lookup("6"), u"215");
  List("9;" + std::string(10000, 'z') + "\n8;216");  // a line over three blocks
  EXPECT_EQ(Lookup("8"), u"216");
  EXPECT_EQ(Lookup("9"), std::u16string(10000, u'z'));
}

TEST_F(Part4_5List, ExtensionKeepsItsInnerCharacters) {
  List("77; 2 01 \r\n");
  EXPECT_EQ(Lookup("77"), u"2 01");
}

TEST_F(Part4_5List, ChangedListTakesEffectAtNextLookup) {
  List("1234;201\r\n");
  EXPECT_EQ(Lookup("1234"), u"201");
  List("1234;299\r\n");
  EXPECT_EQ(Lookup("1234"), u"299");
  WriteFile(dir_.Path("otra.txt"), "1234;288\r\n");
  tr_.ArchivoListaExtensionesKXTDA(dir_.Path16("otra.txt"));
  EXPECT_EQ(Lookup("1234"), u"288");
}

bool IsRandomExtension(const std::u16string& ext) {
  if (ext.size() < 4 || ext.size() > 5) return false;
  for (char16_t c : ext) {
    if (c < u'0' || c > u'9') return false;
  }
  const int n = std::stoi(velqua::AUtf8(ext));
  return n >= 1 && n <= 10000 && (ext.size() == 4 || n == 10000);
}

TEST_F(Part4_5List, MissingListGivesRandomFourDigitNumbers) {
  std::set<std::u16string> seen;
  for (int i = 0; i < 200; ++i) {
    const std::u16string ext = Lookup("1234");
    EXPECT_TRUE(IsRandomExtension(ext)) << velqua::AUtf8(ext);
    seen.insert(ext);
  }
  EXPECT_GT(seen.size(), 150u);
}

TEST_F(Part4_5List, EmptyListNameAndUnlistedCodeGiveRandomNumbers) {
  List("1234;201\r\n");
  EXPECT_TRUE(IsRandomExtension(Lookup("4321")));
  tr_.ArchivoListaExtensionesKXTDA(u"");
  EXPECT_TRUE(IsRandomExtension(Lookup("1234")));
}

TEST_F(Part4_5List, RandomNumbersDifferFromRunToRun) {
  // Two "runs": the timer gives another seed at binding.
  const std::u16string run1 = Lookup("1") + Lookup("1") + Lookup("1");
  FixedClock other(TestNow(), 100);
  tr_.Conmutador(cfg_);
  const std::u16string run2 = Lookup("1") + Lookup("1") + Lookup("1");
  EXPECT_NE(run1, run2);
}

TEST_F(Part4_5List, SameSeedRepeatsTheSequence) {
  const std::u16string run1 = Lookup("1") + Lookup("1") + Lookup("1");
  tr_.Conmutador(cfg_);  // seed 99 again
  EXPECT_EQ(Lookup("1") + Lookup("1") + Lookup("1"), run1);
}

}  // namespace
}  // namespace velqua_test
