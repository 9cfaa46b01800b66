// Part 4.2: the constant test, the line search, call type and attribute
// detection; and the case-folding comparison the translator relies on.
#include <memory>
#include <string>

#include "platform/mayusculas.h"
#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// Every record here has a readable duration (minutes 21-22, seconds 24-25),
// so the intake keeps the detected type.
class Part4_2Detection : public ::testing::Test {
 protected:
  Part4_2Detection() : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoEstandar)) {
    SetField(*cfg_, velqua::emParamDuracionMinutos, 21, 2);
    SetField(*cfg_, velqua::emParamDuracionSegundos, 24, 2);
  }
  // Writes a record whose columns 1-19 are `marks` and whose duration is 01:00.
  void Write(const std::string& marks) {
    tr_.Conmutador(cfg_);
    std::u16string line = U(marks);
    line.resize(19, u' ');
    tr_.LlamadaActual(line + u" 01:00");
  }
  velqua::emTipoLlamadaTraductor Type() const { return tr_.TipoLlamadaDetectada(); }

  FixedClock clock_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

// ---- HayConstanteLlamada ----

TEST_F(Part4_2Detection, ConstantMatchesIgnoringLetterCase) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 10, u"E");
  Write("         e");
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  EXPECT_EQ(Type(), velqua::emTradEntrante);
}

TEST_F(Part4_2Detection, ConstantMatchesAccentedLettersIgnoringCase) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, U("AÑO É"));
  Write("año é");
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

TEST_F(Part4_2Detection, ConstantAtOtherColumnDoesNotMatch) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 10, u"E");
  Write("        E");
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_2Detection, ConstantBeyondEndOfShortLineIsNotFound) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 40, u"E");
  Write("E");
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

TEST_F(Part4_2Detection, ConstantCutOffByLineEndIsNotMatched) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 25, u"0X");
  Write("");  // the line ends at column 25 with "0"
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 25, u"0");
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

TEST_F(Part4_2Detection, BlanksCountInTheComparedSlice) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"AB ");
  Write("ABC");
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  Write("AB C");
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

TEST_F(Part4_2Detection, TextWhoseLengthDiffersFromSizeNeverMatches) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"AB");
  cfg_->CTETam(3);
  Write("ABC");
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  cfg_->CTETam(1);
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

TEST_F(Part4_2Detection, UndefinedConstantIsNotFound) {
  cfg_->CTEActivo(velqua::emDatoCteIdentEntrante);
  cfg_->Constante(u"E");  // no position: incomplete
  Write("E");
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentSaliente));
}

TEST_F(Part4_2Detection, HayConstanteLeavesTheActiveConstantKey) {
  Write("x");
  tr_.HayConstanteLlamada(velqua::emDatoCteIdentInterTroncalOR);
  EXPECT_EQ(cfg_->CTEActivo(), velqua::emDatoCteIdentInterTroncalOR);
}

TEST_F(Part4_2Detection, ConstantEndingAtColumn255IsTested) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 250, u"ABCDE");
  tr_.Conmutador(cfg_);
  std::u16string line(249, u' ');
  line.replace(20, 5, u"01:00");
  tr_.LlamadaActual(line + u"abcde");
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  EXPECT_EQ(Type(), velqua::emTradEntrante);
}

TEST_F(Part4_2Detection, ConstantPastColumn255OverflowsInTestAndIntake) {
  Write("1");
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 250, u"ABCDEF");  // 250 + 6 = 256
  EXPECT_VELQUA_ERROR_NUMBER(tr_.HayConstanteLlamada(velqua::emDatoCteIdentSaliente),
                             velqua::kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(Write("2"), velqua::kErrDesbordamiento);
}

TEST_F(Part4_2Detection, HayConstanteOnLineAfterUnbindingFailsWithObjectNotSet) {
  Write("1");
  tr_.Conmutador(nullptr);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante),
                             velqua::kErrObjetoNoEstablecido);
}

// ---- DetectaTipoLlamada ----

TEST_F(Part4_2Detection, LineOfLettersIsNeverClassifiedEvenWithAccountMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 1, u"A");
  tr_.Conmutador(cfg_);
  tr_.LlamadaActual(u"A CUENTA SIN NUMEROS");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  EXPECT_FALSE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
  EXPECT_TRUE(tr_.HayConstanteLlamada(velqua::emDatoCteIdentCodigoCuenta));
}

TEST_F(Part4_2Detection, EachRoleIsDetectedByItsPlainMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"I");
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterExtension, 1, u"X");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncal, 1, u"T");
  SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 1, u"A");
  Write("I");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
  Write("O");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  Write("X");
  EXPECT_EQ(Type(), velqua::emTradInterExtension);
  Write("T");
  EXPECT_EQ(Type(), velqua::emTradInterTroncal);
  Write("A");
  EXPECT_EQ(Type(), velqua::emTradCodigoCuenta);
  Write("Z");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_2Detection, EachRoleIsDetectedByItsOrMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteOR, 2, u"i");
  SetConstant(*cfg_, velqua::emDatoCteIdentSalienteOR, 2, u"o");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterExtensionOR, 2, u"x");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncalOR, 2, u"t");
  Write(" I");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
  Write(" O");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  Write(" X");
  EXPECT_EQ(Type(), velqua::emTradInterExtension);
  Write(" T");
  EXPECT_EQ(Type(), velqua::emTradInterTroncal);
}

TEST_F(Part4_2Detection, AndMarkMustAccompanyThePlainMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncal, 1, u"T");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncalAND, 3, u"T");
  Write("T T");
  EXPECT_EQ(Type(), velqua::emTradInterTroncal);
  Write("T D");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_2Detection, IncomingWithDefinedButAbsentAndMarkFallsToOutgoing) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"T");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteAND, 3, u"D");
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 3, u"T");
  Write("T T");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  Write("T D");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
}

TEST_F(Part4_2Detection, PlainMarkWithAbsentAndMarkDoesNotTryTheOrMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"I");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteAND, 2, u"&");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteOR, 3, u"|");
  Write("I |");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  Write("  |");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
}

TEST_F(Part4_2Detection, IncomingOrMarkAloneGivesIncoming) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"I");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteOR, 3, u"R");
  Write("  R");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
}

TEST_F(Part4_2Detection, FirstRolePresentWinsInDetectionOrder) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 4, u"I");
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 3, u"O");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterExtension, 2, u"X");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncal, 1, u"T");
  Write("TXOI");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
  Write("TXO");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  Write("TX");
  EXPECT_EQ(Type(), velqua::emTradInterExtension);
}

TEST_F(Part4_2Detection, AccountCodeMarkBeatsOutgoingMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 2, u"A");
  Write("OA");
  EXPECT_EQ(Type(), velqua::emTradCodigoCuenta);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
}

// Outgoing number 1-3 (text), extension 5-6, trunk 8-9, no identifying mark.
class Part4_2DefaultOutgoing : public Part4_2Detection {
 protected:
  Part4_2DefaultOutgoing() {
    SetText(*cfg_, velqua::emParamTelefonoSaliente, 1, 3);
    SetField(*cfg_, velqua::emParamExtensionSaliente, 5, 2);
    SetField(*cfg_, velqua::emParamTroncalSaliente, 8, 2);
  }
};

TEST_F(Part4_2DefaultOutgoing, CasesWithDefaultGiveOutgoingWhenNumberExtensionAndTrunkPresent) {
  for (velqua::emCasos caso :
       {velqua::emCasoEstandarConSalienteDefecto,
        velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto,
        velqua::emCasoEstandarDecimasMinutoConSalienteDefecto,
        velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto}) {
    cfg_->Caso(caso);
    Write("555 20 01");
    // case 8 computes the duration from dates: give it no chance to reject.
    if (caso != velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto) {
      EXPECT_EQ(Type(), velqua::emTradSaliente) << "case " << caso;
    }
  }
}

TEST_F(Part4_2DefaultOutgoing, CaseWithoutDefaultStaysUnidentified) {
  for (velqua::emCasos caso :
       {velqua::emCasoEstandar, velqua::emCasoEstandarDecimasMinuto,
        velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100, velqua::emCasoAD_TES}) {
    cfg_->Caso(caso);
    Write("555 20 01");
    EXPECT_EQ(Type(), velqua::emTradNoIdentificada) << "case " << caso;
  }
}

TEST_F(Part4_2DefaultOutgoing, MissingTrunkOrExtensionGivesNoDefault) {
  cfg_->Caso(velqua::emCasoEstandarConSalienteDefecto);
  Write("555 20   ");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  Write("555    01");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_2DefaultOutgoing, TextFieldOfBlanksCountsAsPresentNumericDoesNot) {
  cfg_->Caso(velqua::emCasoEstandarConSalienteDefecto);
  Write("    20 01");  // the text-typed number is three blanks: not empty
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  Write("555 -- 01");  // the numeric extension keeps no digit: empty
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_2DefaultOutgoing, AccountMarkOverridesDefaultOutgoing) {
  cfg_->Caso(velqua::emCasoEstandarConSalienteDefecto);
  SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 11, u"A");
  Write("555 20 01 A");
  EXPECT_EQ(Type(), velqua::emTradCodigoCuenta);
}

// ---- DetectaAtributo ----

class Part4_2Attribute : public Part4_2Detection {
 protected:
  Part4_2Attribute() {
    SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"I");
    SetConstant(*cfg_, velqua::emDatoCteIdentSaliente, 1, u"O");
    SetConstant(*cfg_, velqua::emDatoCteIdentInterExtension, 1, u"X");
    SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncal, 1, u"T");
    SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 1, u"A");
  }
};

TEST_F(Part4_2Attribute, IncomingWithStartAndUnansweredMarksIsStartOfTransfer) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteInicioTransferida, 3, u"S");
  SetConstant(*cfg_, velqua::emDatoCteIdentNoContestada, 5, u"N");
  Write("I S N");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  Write("I   N");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoContestada);
}

TEST_F(Part4_2Attribute, ColumnsAreTestedStartEndInTransferUnanswered) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteInicioTransferida, 3, u"S");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteFinTransferida, 4, u"E");
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteEnTransferencia, 5, u"T");
  SetConstant(*cfg_, velqua::emDatoCteIdentNoContestada, 6, u"N");
  Write("I SETN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  Write("I  ETN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRFinTR);
  Write("I   TN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATREnTR);
  Write("I    N");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoContestada);
  Write("I");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
}

TEST_F(Part4_2Attribute, EachTypeTestsItsOwnRow) {
  SetConstant(*cfg_, velqua::emDatoCteIdentSalienteFinTransferida, 3, u"s");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterExtensionEnTransferencia, 4, u"x");
  SetConstant(*cfg_, velqua::emDatoCteIdentInterTroncalInicioTransferida, 5, u"t");
  SetConstant(*cfg_, velqua::emDatoCteIdentNoContestada, 6, u"N");
  Write("O sxtN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRFinTR);
  Write("X sxtN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATREnTR);
  Write("T sxtN");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  Write("O    N");  // the unanswered mark is tested for incoming calls only
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
}

TEST_F(Part4_2Attribute, UnidentifiedAndAccountCodeRecordsHaveNoAttribute) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntranteInicioTransferida, 3, u"S");
  Write("A S");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
  Write("Z S");
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
}

// ---- BuscaLinea ----

class Part4_2LineSearch : public ::testing::Test {
 protected:
  Part4_2LineSearch() : cfg_(MakeConfig(velqua::emCasoEstandar, u"|")) { tr_.Conmutador(cfg_); }
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_2LineSearch, EmptyBufferGivesZeroAndEmptyLine) {
  tr_.LlamadaActual(u"previous line 1");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 0);
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_EQ(tr_.LlamadaActual(), u"");
}

TEST_F(Part4_2LineSearch, SelectsLineContainingValueIgnoringCase) {
  tr_.BufferMultiplesLineas(u"A|B X|C");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 7);
  EXPECT_EQ(tr_.LlamadaActual(), u"B X");  // the line, in a single-line case
  EXPECT_TRUE(tr_.HayLlamada());
}

TEST_F(Part4_2LineSearch, LastLineWithoutSeparatorGivesLengthPlusOnePlusSeparator) {
  tr_.BufferMultiplesLineas(u"A|B|CX");
  EXPECT_EQ(tr_.BuscaLinea(u"cx"), 8);
  EXPECT_EQ(tr_.LlamadaActual(), u"CX");
}

TEST_F(Part4_2LineSearch, FirstMatchingLineWins) {
  tr_.BufferMultiplesLineas(u"uno|dos 1|dos 2|");
  EXPECT_EQ(tr_.BuscaLinea(u"DOS"), 11);
  EXPECT_EQ(tr_.LlamadaActual(), u"dos 1");
}

TEST_F(Part4_2LineSearch, LaterLineGivesGreaterPlace) {
  tr_.BufferMultiplesLineas(u"hdr|one|two");
  EXPECT_LT(tr_.BuscaLinea(u"hdr"), tr_.BuscaLinea(u"one"));
  EXPECT_LT(tr_.BuscaLinea(u"one"), tr_.BuscaLinea(u"two"));
}

TEST_F(Part4_2LineSearch, NoMatchingLineGivesZeroAndEmptyLine) {
  tr_.BufferMultiplesLineas(u"A|B|C");
  EXPECT_EQ(tr_.BuscaLinea(u"Z"), 0);
  EXPECT_FALSE(tr_.HayLlamada());
}

TEST_F(Part4_2LineSearch, MultiCharacterSeparatorAndEmptyLines) {
  cfg_->Separador(u"\r\n");
  tr_.BufferMultiplesLineas(u"A\r\n\r\nBQ\r\n");
  EXPECT_EQ(tr_.BuscaLinea(u"q"), 10);
  EXPECT_EQ(tr_.LlamadaActual(), u"BQ");
}

TEST_F(Part4_2LineSearch, EmptySeparatorTreatsBufferAsOneLine) {
  cfg_->Separador(u"");
  tr_.BufferMultiplesLineas(u"A|B X|C");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 8);
  EXPECT_EQ(tr_.LlamadaActual(), u"A|B X|C");
  EXPECT_EQ(tr_.BuscaLinea(u"z"), 0);
}

TEST_F(Part4_2LineSearch, SeparatorIsReadAtEverySearch) {
  tr_.BufferMultiplesLineas(u"A;B X|C");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 7);
  cfg_->Separador(u";");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 9);
  EXPECT_EQ(tr_.LlamadaActual(), u"B X|C");
}

TEST_F(Part4_2LineSearch, PositionBeyond32767Overflows) {
  std::u16string buffer = u"first line|";
  buffer += std::u16string(40000, u'a');
  tr_.BufferMultiplesLineas(buffer);
  EXPECT_EQ(tr_.BuscaLinea(u"first"), 12);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"zzz"), velqua::kErrDesbordamiento);
}

TEST_F(Part4_2LineSearch, LastLineEndingAt32765IsFound) {
  std::u16string buffer(32764, u'a');
  buffer += u"X";  // length 32765: result 32765 + 1 + 1
  tr_.BufferMultiplesLineas(buffer);
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 32767);
  buffer += u"Y";
  tr_.BufferMultiplesLineas(buffer);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"x"), velqua::kErrDesbordamiento);
}

TEST(Part4_2LineSearchUnbound, UnboundGivesZeroAndEmptiesLine) {
  auto cfg = MakeConfig(velqua::emCasoEstandar, u"|");
  SetConstant(*cfg, velqua::emDatoCteIdentEntrante, 1, u"I");
  clsTraductor tr;
  tr.Conmutador(cfg);
  tr.LlamadaActual(u"I 1");
  tr.Conmutador(nullptr);
  tr.BufferMultiplesLineas(u"I 1|x");
  EXPECT_EQ(tr.BuscaLinea(u"I"), 0);
  EXPECT_FALSE(tr.HayLlamada());
}

// ---- the case-folding comparison (src/platform/mayusculas.h) ----

TEST(Part4_2CaseFolding, FoldsAsciiLatin1AndLatinExtendedLetters) {
  using velqua::plataforma::IgualesSinMayusculas;
  EXPECT_TRUE(IgualesSinMayusculas(u"incoming call", u"INCOMING CALL"));
  EXPECT_TRUE(IgualesSinMayusculas(U("áéíóúñüç"), U("ÁÉÍÓÚÑÜÇ")));
  EXPECT_TRUE(IgualesSinMayusculas(U("ÿœšž"), U("ŸŒŠŽ")));
  EXPECT_TRUE(IgualesSinMayusculas(U("łńź"), U("ŁŃŹ")));
  EXPECT_TRUE(IgualesSinMayusculas(U("αβγ жя"), U("ΑΒΓ ЖЯ")));
  EXPECT_FALSE(IgualesSinMayusculas(u"a", u"b"));
  EXPECT_FALSE(IgualesSinMayusculas(U("a"), U("á")));
  EXPECT_FALSE(IgualesSinMayusculas(u"ab", u"ab "));
  EXPECT_FALSE(IgualesSinMayusculas(U("÷"), U("×")));
  EXPECT_FALSE(IgualesSinMayusculas(u"@", u"`"));
}

TEST(Part4_2CaseFolding, SearchFindsFirstOccurrenceFromStart) {
  using velqua::plataforma::BuscaSinMayusculas;
  EXPECT_EQ(BuscaSinMayusculas(u"abcABC", u"bc"), 1u);
  EXPECT_EQ(BuscaSinMayusculas(u"abcABC", u"BC", 2), 4u);
  EXPECT_EQ(BuscaSinMayusculas(U("Año"), U("ÑO")), 1u);
  EXPECT_EQ(BuscaSinMayusculas(u"abc", u"abcd"), std::u16string_view::npos);
  EXPECT_EQ(BuscaSinMayusculas(u"abc", u"x"), std::u16string_view::npos);
  EXPECT_EQ(BuscaSinMayusculas(u"abc", u"", 3), 3u);
  EXPECT_EQ(BuscaSinMayusculas(u"abc", u"c", 4), std::u16string_view::npos);
}

}  // namespace
}  // namespace velqua_test
