// Part 4.4: switch-specific cases: the Nortel Norstar multi-line record
// (case 4) and the KX-TDA account-code extension (cases 10 and 11).
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// ---- case 4, Nortel Norstar SMDR6 ----

const std::string kHeader = "-------- 11/17/26 10:20:30 LINE = 0003 STN = 7425";

class Part4_4Norstar : public ::testing::Test {
 protected:
  Part4_4Norstar()
      : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoNortelNorstar0x32SMDR6, u"|")) {
    using namespace velqua;
    SetField(*cfg_, emParamFechaMes, 10, 2);
    SetField(*cfg_, emParamFechaDia, 13, 2);
    SetField(*cfg_, emParamFechaAnio, 16, 2);
    SetField(*cfg_, emParamFechaHoras, 19, 2);
    SetField(*cfg_, emParamFechaMinutos, 22, 2);
    SetField(*cfg_, emParamFechaSegundos, 25, 2);
    SetText(*cfg_, emParamTroncalEntrante, 35, 4);
    SetText(*cfg_, emParamExtensionEntrante, 46, 7);
    SetField(*cfg_, emParamDuracionHoras, 1, 2);
    SetField(*cfg_, emParamDuracionMinutos, 4, 2);
    SetField(*cfg_, emParamDuracionSegundos, 7, 2);
    SetText(*cfg_, emParamTelefonoEntrante, 24, 32);
    SetText(*cfg_, emParamCodigoCuenta, 31, 10);
    tr_.Conmutador(cfg_);
    tr_.ArchivoLlamadasError(dir_.Path16("log.txt"));
  }
  void Write(const std::string& record) { tr_.LlamadaActual(U(record)); }
  std::string Log() const { return ReadFile(dir_.Path("log.txt")); }
  velqua::emTipoLlamadaTraductor Type() const { return tr_.TipoLlamadaDetectada(); }

  FixedClock clock_;
  TempDir dir_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_4Norstar, HeaderOutgoingReleasedInOrderIsOutgoing) {
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoAtributo);
  EXPECT_EQ(tr_.Duracion(), 90);
  EXPECT_EQ(Log(), "");
}

TEST_F(Part4_4Norstar, OutgoingLineBeforeHeaderIsUnidentifiedEvenWithIncomingAfter) {
  const std::string record =
      "00:00:00 OUTGOING CALL|" + kHeader + "|00:00:01 INCOMING CALL|00:01:30 CALL RELEASED";
  Write(record);
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry(record));  // the whole buffer, separators included
}

TEST_F(Part4_4Norstar, HeaderAndReleasedWithoutDirectionIsUnidentifiedAndLogged) {
  const std::string record = kHeader + "|00:01:30 CALL RELEASED";
  Write(record);
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry(record));
}

TEST_F(Part4_4Norstar, HeaderAndNoAnswerOnlyIsIncomingWithZeroDuration) {
  Write(kHeader + "|00:00:20 NO ANSWER RINGING 0:20");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Duracion(), 0);
  EXPECT_EQ(Log(), "");
}

TEST_F(Part4_4Norstar, NoAnswerBeforeHeaderIsUnidentified) {
  Write("00:00:20 NO ANSWER|" + kHeader);
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_4Norstar, ReleasedBeforeHeaderIsUnidentifiedEvenWithTransferredAfter) {
  Write("00:01:30 CALL RELEASED|" + kHeader + "|00:00:00 OUTGOING CALL|00:00:40 TRANSFERRED");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_4Norstar, RecordWithoutHeaderIsUnidentified) {
  Write("00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
}

TEST_F(Part4_4Norstar, IncomingLineGivesIncoming) {
  Write(kHeader + "|00:00:00 INCOMING CALL RINGING 0:05|00:02:00 CALL RELEASED");
  EXPECT_EQ(Type(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Duracion(), 120);
}

TEST_F(Part4_4Norstar, FromTransferAndTransferredGiveInTransfer) {
  Write(kHeader + "|00:00:00 FROM TRANSFER|00:00:30 TRANSFERRED");
  EXPECT_EQ(Type(), velqua::emTradTransferida);
  EXPECT_EQ(tr_.Atributo(), velqua::emATREnTR);
  EXPECT_EQ(tr_.Duracion(), 30);  // from the TRANSFERRED line
}

TEST_F(Part4_4Norstar, FromTransferAloneGivesEndOfTransfer) {
  Write(kHeader + "|00:00:00 FROM TRANSFER|00:03:05 CALL RELEASED");
  EXPECT_EQ(Type(), velqua::emTradTransferida);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRFinTR);
  EXPECT_EQ(tr_.Duracion(), 185);
}

TEST_F(Part4_4Norstar, TransferredAloneGivesStartOfTransfer) {
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:00:40 TRANSFERRED");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  EXPECT_EQ(tr_.Duracion(), 40);
}

TEST_F(Part4_4Norstar, ReleasedLineIsPreferredToTransferredForDuration) {
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:00:40 TRANSFERRED|00:02:00 CALL RELEASED");
  EXPECT_EQ(tr_.Duracion(), 120);
}

TEST_F(Part4_4Norstar, KeywordsInLowerCaseAreFound) {
  Write(kHeader + "|00:00:00 outgoing call|00:01:30 call released");
  EXPECT_EQ(Type(), velqua::emTradSaliente);
}

TEST_F(Part4_4Norstar, AnsweredCallWithoutReadableDurationIsRejected) {
  const std::string record = kHeader + "|00:00:00 OUTGOING CALL|xx:xx:xx CALL RELEASED";
  Write(record);
  EXPECT_EQ(Type(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry(record));
}

TEST_F(Part4_4Norstar, DateTimeExtensionAndTrunkComeFromTheHeaderLine) {
  Write(kHeader + "|00:00:00 INCOMING CALL|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.Dia(), 17);
  EXPECT_EQ(tr_.Mes(), 11);
  EXPECT_EQ(tr_.Anio(), 2026);
  EXPECT_EQ(tr_.Hora(), Hms(10, 20, 30));
  EXPECT_EQ(tr_.Extension(), u"7425");
  EXPECT_EQ(tr_.Troncal(), u"0003");
  EXPECT_TRUE(tr_.HayLlamada());
  EXPECT_EQ(tr_.LlamadaActual(), U(kHeader + "|00:00:00 INCOMING CALL|00:01:30 CALL RELEASED"));
}

TEST_F(Part4_4Norstar, ExtensionAndTrunkUseIncomingKeysWhateverTheType) {
  SetText(*cfg_, velqua::emParamExtensionSaliente, 1, 8);
  SetText(*cfg_, velqua::emParamTroncalSaliente, 1, 8);
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  ASSERT_EQ(Type(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Extension(), u"7425");
  EXPECT_EQ(tr_.Troncal(), u"0003");
  EXPECT_EQ(tr_.ExtensionReceptor(), u"");
  EXPECT_EQ(tr_.TroncalReceptor(), u"");
}

TEST_F(Part4_4Norstar, MarcacionComesFromDigitsDialedWithOutgoingKeyAsFallback) {
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:00:02 DIGITS DIALED 5551212|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.Marcacion(), u"5551212");
  cfg_->DATOActivo(velqua::emParamTelefonoEntrante);
  cfg_->TipoDatoDATO(velqua::emValorNoDefinido);
  EXPECT_EQ(tr_.Marcacion(), u"");
  SetText(*cfg_, velqua::emParamTelefonoSaliente, 24, 4);
  EXPECT_EQ(tr_.Marcacion(), u"5551");
}

TEST_F(Part4_4Norstar, MarcacionAppliesThePrefixRule) {
  cfg_->CTEActivo(velqua::emDatoCteIdentInterExtensionEnTransferencia);
  cfg_->Constante(u"9");
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:00:02 DIGITS DIALED 95551212|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.Marcacion(), u"5551212");
}

TEST_F(Part4_4Norstar, CodigoCuentaComesFromRestrictionPasswordLine) {
  Write(kHeader +
        "|00:00:00 OUTGOING CALL|00:00:05 RESTRICTION PASSWORD 4321|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.CodigoCuenta(), u"4321");
}

TEST_F(Part4_4Norstar, MissingFieldLinesGiveUndefinedValues) {
  Write("00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.Dia(), 18);
  EXPECT_EQ(tr_.Hora(), Hms(9, 5, 3));
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_EQ(tr_.Extension(), u"");
  EXPECT_EQ(tr_.Marcacion(), u"");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
  EXPECT_FALSE(tr_.HayLlamada());
}

TEST_F(Part4_4Norstar, RingReadsTheLineLeftByThePreviousSearch) {
  SetField(*cfg_, velqua::emParamRingMinutos, 4, 2);
  SetField(*cfg_, velqua::emParamRingSegundos, 7, 2);
  Write(kHeader + "|00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  tr_.Duracion();  // leaves the CALL RELEASED line
  EXPECT_EQ(tr_.Ring(), 90);
  tr_.Dia();  // leaves the header line: columns 4-5 and 7-8 hold "--"
  EXPECT_EQ(tr_.Ring(), -1);
}

TEST_F(Part4_4Norstar, RecordIsTheWholeBufferAndLineOnlyTheLastSearch) {
  tr_.BufferMultiplesLineas(u"old");
  Write(kHeader + "|00:00:20 NO ANSWER");
  EXPECT_EQ(tr_.BufferMultiplesLineas(), U(kHeader + "|00:00:20 NO ANSWER"));
  tr_.BuscaLinea(u"NO ANSWER");
  EXPECT_EQ(tr_.HayLlamada(), true);
}

// ---- cases 10 and 11, KX-TDA account codes ----

class Part4_4KxTda : public ::testing::Test {
 protected:
  Part4_4KxTda()
      : clock_(TestNow(), 4242),
        cfg_(MakeConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100)) {
    using namespace velqua;
    SetConstant(*cfg_, emDatoCteIdentSaliente, 1, u"O");
    SetConstant(*cfg_, emDatoCteIdentEntrante, 1, u"I");
    SetText(*cfg_, emParamExtensionSaliente, 3, 5);
    SetText(*cfg_, emParamExtensionEntrante, 3, 5);
    SetText(*cfg_, emParamCodigoCuenta, 3, 5);
    SetField(*cfg_, emParamDuracionMinutos, 9, 2);
    SetField(*cfg_, emParamDuracionSegundos, 12, 2);
    WriteFile(dir_.Path("lista.txt"), "1234;201\r\n12;203\r\n");
    tr_.ArchivoListaExtensionesKXTDA(dir_.Path16("lista.txt"));
    tr_.Conmutador(cfg_);
  }
  void Write(const std::string& line) { tr_.LlamadaActual(U(line)); }

  FixedClock clock_;
  TempDir dir_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_4KxTda, StarCodeOfOutgoingCallMapsToListedExtension) {
  Write("O *1234 01:00");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Extension(), u"201");
  EXPECT_EQ(tr_.CodigoCuenta(), u"1234");
}

TEST_F(Part4_4KxTda, ExtensionWithoutStarIsTheExtensionAndHasNoCode) {
  Write("O   205 01:00");
  EXPECT_EQ(tr_.Extension(), u"205");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

TEST_F(Part4_4KxTda, BlanksBeforeTheStarAreTrimmedFirst) {
  Write("O  *12  01:00");  // the field holds " *12 "
  EXPECT_EQ(tr_.Extension(), u"203");
}

TEST_F(Part4_4KxTda, CodeAfterStarIsNotTrimmedAgain) {
  Write("O * 77 01:00");
  EXPECT_EQ(tr_.CodigoCuenta(), u" 77");
}

TEST_F(Part4_4KxTda, IncomingCallKeepsTheStarInItsExtension) {
  Write("I *1234 01:00");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Extension(), u"*1234");
  EXPECT_EQ(tr_.CodigoCuenta(), u"1234");  // the code rule holds for any type
}

TEST_F(Part4_4KxTda, UnlistedCodeGivesARandomFourDigitExtension) {
  Write("O *9999 01:00");
  const std::u16string ext = tr_.Extension();
  ASSERT_GE(ext.size(), 4u);
  ASSERT_LE(ext.size(), 5u);
  EXPECT_TRUE(
      std::all_of(ext.begin(), ext.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; }));
  const int n = std::stoi(velqua::AUtf8(ext));
  EXPECT_GE(n, 1);
  EXPECT_LE(n, 10000);
}

TEST_F(Part4_4KxTda, AccountMarkDefinedEmptiesCodeOfOutgoingCalls) {
  SetConstant(*cfg_, velqua::emDatoCteIdentCodigoCuenta, 20, u"A");
  Write("O *1234 01:00");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
  EXPECT_EQ(tr_.Extension(), u"201");
}

TEST_F(Part4_4KxTda, Case11GivesDefaultOutgoingThenMapsTheCode) {
  cfg_->Caso(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto);
  SetText(*cfg_, velqua::emParamTelefonoSaliente, 15, 5);
  SetText(*cfg_, velqua::emParamTroncalSaliente, 21, 2);
  Write("  *1234 01:00 55512 07");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Extension(), u"201");
  EXPECT_EQ(tr_.CodigoCuenta(), u"1234");
  EXPECT_EQ(tr_.Marcacion(), u"55512");
  EXPECT_EQ(tr_.Troncal(), u"07");
}

TEST_F(Part4_4KxTda, OtherCasesKeepTheStar) {
  cfg_->Caso(velqua::emCasoEstandar);
  Write("O *1234 01:00");
  EXPECT_EQ(tr_.Extension(), u"*1234");
  EXPECT_EQ(tr_.CodigoCuenta(), u"*1234");
}

TEST(Part4_4CaseTable, Case9DurationSecondsAreNotMultiplied) {
  auto cfg = MakeConfig(velqua::emCasoEstandarDecimasMinutoConSalienteDefecto);
  SetConstant(*cfg, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetField(*cfg, velqua::emParamDuracionMinutos, 3, 2);
  SetField(*cfg, velqua::emParamDuracionSegundos, 6, 1);
  clsTraductor tr;
  tr.Conmutador(cfg);
  tr.LlamadaActual(u"O 00:5");
  EXPECT_EQ(tr.Duracion(), 5);
  cfg->Caso(velqua::emCasoEstandarDecimasMinuto);
  EXPECT_EQ(tr.Duracion(), 30);
}

}  // namespace
}  // namespace velqua_test
