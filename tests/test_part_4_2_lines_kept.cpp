// Part 4.2 BuscaLinea, searched again. The translator keeps the lines it
// found in the current buffer (doc/performance.md); these tests pin that a
// second search of a keyword gives what a fresh scan gives, and that a new
// buffer, a new separator or another configuration counts at once.
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

class Part4_2LinesKept : public ::testing::Test {
 protected:
  Part4_2LinesKept()
      : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoNortelNorstar0x32SMDR6, u"|")) {
    tr_.Conmutador(cfg_);
    tr_.BufferMultiplesLineas(u"hdr 1|uno x|dos x|tres");
  }

  FixedClock clock_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_2LinesKept, SecondSearchGivesTheSamePlaceAndLine) {
  // Places are just past the line's separator: 13 for "uno x", 24 for the
  // last line (the buffer's length + 1 + the separator's length).
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 13);
  EXPECT_EQ(tr_.BuscaLinea(u"tres"), 24);
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 13);
  EXPECT_TRUE(tr_.HayLlamada());
  EXPECT_EQ(tr_.BuscaLinea(u"none"), 0);
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_EQ(tr_.BuscaLinea(u"none"), 0);
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_EQ(tr_.BuscaLinea(u"tres"), 24);
  EXPECT_TRUE(tr_.HayLlamada());
}

TEST_F(Part4_2LinesKept, KeywordsDifferingInCaseFindTheSameLine) {
  EXPECT_EQ(tr_.BuscaLinea(u"DOS"), 19);
  EXPECT_EQ(tr_.BuscaLinea(u"dos"), 19);
  EXPECT_EQ(tr_.BuscaLinea(u"Dos X"), 19);
}

TEST_F(Part4_2LinesKept, NewBufferIsSearchedAfresh) {
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 13);
  tr_.BufferMultiplesLineas(u"x|y");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 3);
  tr_.LlamadaActual(u"a|b|c x");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 9);
}

TEST_F(Part4_2LinesKept, NewSeparatorCountsAtTheNextSearch) {
  EXPECT_EQ(tr_.BuscaLinea(u"uno"), 13);
  cfg_->Separador(u" x|");  // "hdr 1|uno" is now the first line
  EXPECT_EQ(tr_.BuscaLinea(u"uno"), 13);
  EXPECT_EQ(tr_.BuscaLinea(u"hdr"), 13);
  cfg_->Separador(u"");  // one line: the whole buffer
  EXPECT_EQ(tr_.BuscaLinea(u"uno"), 23);
  cfg_->Separador(u"|");
  EXPECT_EQ(tr_.BuscaLinea(u"hdr"), 7);
}

TEST_F(Part4_2LinesKept, AnotherConfigurationCountsAtTheNextSearch) {
  EXPECT_EQ(tr_.BuscaLinea(u"dos"), 19);
  tr_.Conmutador(MakeConfig(velqua::emCasoNortelNorstar0x32SMDR6, u"1|"));
  EXPECT_EQ(tr_.BuscaLinea(u"dos"), 25);  // lines "hdr " and "uno x|dos x|tres"
  tr_.Conmutador(nullptr);
  EXPECT_EQ(tr_.BuscaLinea(u"dos"), 0);  // unbound: no search
  EXPECT_FALSE(tr_.HayLlamada());
}

// The fields of a Norstar call read the lines of their keywords; reading
// them twice, around a change of the separator, gives the fresh result.
TEST_F(Part4_2LinesKept, FieldReadsFollowTheSeparator) {
  SetField(*cfg_, velqua::emParamDuracionMinutos, 4, 2);
  SetField(*cfg_, velqua::emParamDuracionSegundos, 7, 2);
  SetField(*cfg_, velqua::emParamExtensionEntrante, 10, 4, velqua::emValorCadena);
  tr_.LlamadaActual(u"---------7426|00:00:00 INCOMING CALL|00:01:00 CALL RELEASED");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Duracion(), 60);
  EXPECT_EQ(tr_.Extension(), u"7426");
  cfg_->Separador(u"-7");  // the header line is now "--------": no column 10
  EXPECT_EQ(tr_.Extension(), u"");
  cfg_->Separador(u"|");
  EXPECT_EQ(tr_.Extension(), u"7426");
}

TEST_F(Part4_2LinesKept, OverflowingScanFailsAtEverySearch) {
  // Lines past position 32767 fail with error 6 while the scan reaches them.
  std::u16string buffer(40000, u'a');
  buffer += u"|b";
  tr_.BufferMultiplesLineas(buffer);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"b"), velqua::kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"b"), velqua::kErrDesbordamiento);
  tr_.BufferMultiplesLineas(u"a|b");
  EXPECT_EQ(tr_.BuscaLinea(u"b"), 5);
}

// Lines cut by one search serve the next; a line whose cut overflows is
// cut again (and fails again) by every search that reaches it.
TEST_F(Part4_2LinesKept, LaterOverflowingLineFailsEverySearchThatReachesIt) {
  std::u16string buffer = u"a|b|";
  buffer += std::u16string(40000, u'c');
  buffer += u"|d";
  tr_.BufferMultiplesLineas(buffer);
  EXPECT_EQ(tr_.BuscaLinea(u"b"), 5);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"d"), velqua::kErrDesbordamiento);
  EXPECT_EQ(tr_.BuscaLinea(u"a"), 3);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"none"), velqua::kErrDesbordamiento);
  EXPECT_EQ(tr_.BuscaLinea(u"B"), 5);
  EXPECT_TRUE(tr_.HayLlamada());
}

}  // namespace
}  // namespace velqua_test
