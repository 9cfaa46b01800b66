// Part 4.1: translator state, binding and line intake.
#include <filesystem>
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// A small single-line layout: the mark in column 1 (I incoming, O outgoing,
// A account code), duration minutes in 3-4 and seconds in 6-7, the
// attribute mark in column 9 (S start of transfer, N unanswered).
std::shared_ptr<clsCfgConmut> SmallConfig(velqua::emCasos caso = velqua::emCasoEstandar) {
  auto cfg = MakeConfig(caso, u"|");
  SetConstant(*cfg, velqua::emDatoCteIdentEntrante, 1, u"I");
  SetConstant(*cfg, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetConstant(*cfg, velqua::emDatoCteIdentCodigoCuenta, 1, u"A");
  SetConstant(*cfg, velqua::emDatoCteIdentEntranteInicioTransferida, 9, u"S");
  SetConstant(*cfg, velqua::emDatoCteIdentNoContestada, 9, u"N");
  SetField(*cfg, velqua::emParamDuracionMinutos, 3, 2);
  SetField(*cfg, velqua::emParamDuracionSegundos, 6, 2);
  return cfg;
}

class Part4_1Intake : public ::testing::Test {
 protected:
  Part4_1Intake() : clock_(TestNow()) { tr_.ArchivoLlamadasError(dir_.Path16("log.txt")); }
  std::string Log() const { return ReadFile(dir_.Path("log.txt")); }
  bool LogExists() const { return std::filesystem::exists(dir_.Path("log.txt")); }

  FixedClock clock_;
  TempDir dir_;
  clsTraductor tr_;
};

TEST(Part4_1State, NewTranslatorIsUnboundWithEmptyTexts) {
  clsTraductor tr;
  EXPECT_EQ(tr.ArchivoListaExtensionesKXTDA(), u"");
  EXPECT_EQ(tr.ArchivoLlamadasError(), u"");
  EXPECT_EQ(tr.BufferMultiplesLineas(), u"");
  EXPECT_EQ(tr.LlamadaActual(), u"");
  EXPECT_FALSE(tr.HayLlamada());
  EXPECT_FALSE(tr.HayBufferMultiplesLineas());
  EXPECT_EQ(tr.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(tr.Atributo(), velqua::emATRNoAtributo);
}

TEST(Part4_1State, FileNamesAreStoredAsGivenWithoutTouchingFiles) {
  TempDir dir;
  clsTraductor tr;
  const std::u16string list = dir.Path16("no/such/lista.txt");
  const std::u16string log = dir.Path16("llamadas ñ.log");
  tr.ArchivoListaExtensionesKXTDA(list);
  tr.ArchivoLlamadasError(log);
  EXPECT_EQ(tr.ArchivoListaExtensionesKXTDA(), list);
  EXPECT_EQ(tr.ArchivoLlamadasError(), log);
  EXPECT_TRUE(std::filesystem::is_empty(dir.dir()));
}

TEST(Part4_1State, BufferWriteTriggersNothing) {
  auto cfg = SmallConfig();
  clsTraductor tr;
  tr.Conmutador(cfg);
  tr.LlamadaActual(u"I 02:30");
  tr.BufferMultiplesLineas(u"O 01:00");
  EXPECT_TRUE(tr.HayBufferMultiplesLineas());
  EXPECT_EQ(tr.BufferMultiplesLineas(), u"O 01:00");
  EXPECT_EQ(tr.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr.LlamadaActual(), u"I 02:30");
}

TEST(Part4_1State, BindingHoldsOneReferenceUntilUnbound) {
  auto cfg = SmallConfig();
  clsTraductor tr;
  tr.Conmutador(cfg);
  EXPECT_EQ(cfg.use_count(), 2);
  tr.Conmutador(SmallConfig());
  EXPECT_EQ(cfg.use_count(), 1);
  tr.Conmutador(cfg);
  tr.Conmutador(nullptr);
  EXPECT_EQ(cfg.use_count(), 1);
  EXPECT_EQ(tr.LlamadaActual(), u"");
}

TEST(Part4_1State, ReleasesReferenceOnDestruction) {
  auto cfg = SmallConfig();
  {
    clsTraductor tr;
    tr.Conmutador(cfg);
    EXPECT_EQ(cfg.use_count(), 2);
  }
  EXPECT_EQ(cfg.use_count(), 1);
}

TEST_F(Part4_1Intake, RecordBeforeAnyBindingOnlySetsTypeToUnidentified) {
  tr_.LlamadaActual(u"I 02:30");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(tr_.LlamadaActual(), u"");
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, RecordAfterUnbindingKeepsLineAndAttribute) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"I 02:30 S");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  ASSERT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  tr_.Conmutador(nullptr);
  tr_.LlamadaActual(u"O 01:00");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  EXPECT_TRUE(tr_.HayLlamada());
  EXPECT_EQ(tr_.LlamadaActual(), u"");  // unbound read
  tr_.Conmutador(SmallConfig());
  EXPECT_EQ(tr_.LlamadaActual(), u"I 02:30 S");  // the old line was not replaced
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, RebindingKeepsRecordTypeAndAttribute) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"I 02:30 S");
  tr_.Conmutador(SmallConfig(velqua::emCasoNortelMeridian01));
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  EXPECT_EQ(tr_.LlamadaActual(), u"I 02:30 S");
}

TEST_F(Part4_1Intake, EmptyRecordIsUnidentifiedAndNotLoggedWithEmptyBuffer) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"I 02:30");
  tr_.LlamadaActual(u"");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, EmptyRecordIsLoggedWhenBufferHoldsText) {
  tr_.Conmutador(SmallConfig());
  tr_.BufferMultiplesLineas(u"algo");
  tr_.LlamadaActual(u"");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry(""));  // the line, not the buffer, in a single-line case
}

TEST_F(Part4_1Intake, SingleLineRecordGoesToLineAndLeavesBuffer) {
  tr_.Conmutador(SmallConfig());
  tr_.BufferMultiplesLineas(u"buffer");
  tr_.LlamadaActual(u"O 01:00");
  EXPECT_EQ(tr_.LlamadaActual(), u"O 01:00");
  EXPECT_EQ(tr_.BufferMultiplesLineas(), u"buffer");
  EXPECT_TRUE(tr_.HayLlamada());
}

TEST_F(Part4_1Intake, NorstarRecordGoesToBufferAndReadsBackWhole) {
  auto cfg = MakeConfig(velqua::emCasoNortelNorstar0x32SMDR6, u"|");
  SetField(*cfg, velqua::emParamDuracionMinutos, 4, 2);
  SetField(*cfg, velqua::emParamDuracionSegundos, 7, 2);
  tr_.Conmutador(cfg);
  const std::u16string record = u"-------- 11/18/26|00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED";
  tr_.LlamadaActual(record);
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.LlamadaActual(), record);
  EXPECT_EQ(tr_.BufferMultiplesLineas(), record);
  EXPECT_TRUE(tr_.HayLlamada());  // the duration search found CALL RELEASED
  tr_.BuscaLinea(u"DIGITS DIALED");
  EXPECT_FALSE(tr_.HayLlamada());
  EXPECT_EQ(tr_.LlamadaActual(), record);
}

TEST_F(Part4_1Intake, LlamadaActualReadFollowsTheCurrentCase) {
  auto cfg = SmallConfig();
  tr_.Conmutador(cfg);
  tr_.BufferMultiplesLineas(u"buffer");
  tr_.LlamadaActual(u"O 01:00");
  cfg->Caso(velqua::emCasoNortelNorstar0x32SMDR6);
  EXPECT_EQ(tr_.LlamadaActual(), u"buffer");
  cfg->Caso(velqua::emCasoEstandar);
  EXPECT_EQ(tr_.LlamadaActual(), u"O 01:00");
}

TEST_F(Part4_1Intake, TypedRecordWithoutReadableDurationIsUnidentifiedAndLogged) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry("O --:-- 7"));
}

TEST_F(Part4_1Intake, MissingSecondsFieldAloneMakesRecordUnidentified) {
  auto cfg = SmallConfig();
  tr_.Conmutador(cfg);
  tr_.LlamadaActual(u"O 01:");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(Log(), LogEntry("O 01:"));
}

TEST_F(Part4_1Intake, MeridianCaseKeepsTypeOfRecordWithUnreadableDuration) {
  tr_.Conmutador(SmallConfig(velqua::emCasoNortelMeridian01));
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Duracion(), -1);
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, UnansweredIncomingCallKeepsTypeWithUnreadableDuration) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"I --:-- N 5");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRNoContestada);
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, RejectedRecordKeepsItsAttribute) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"I --:-- S 5");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(tr_.Atributo(), velqua::emATRIniTR);
  EXPECT_EQ(Log(), LogEntry("I --:-- S 5"));
}

TEST_F(Part4_1Intake, AccountCodeRecordIsNeverLogged) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"A --:-- 1");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradCodigoCuenta);
  EXPECT_EQ(tr_.Duracion(), -1);
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, AccountCodeRecordSkipsTheDurationOverflow) {
  auto cfg = SmallConfig();
  SetField(*cfg, velqua::emParamDuracionHoras, 250, 10);  // 260 > 255
  tr_.Conmutador(cfg);
  tr_.LlamadaActual(u"A 01:00");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradCodigoCuenta);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.LlamadaActual(u"O 01:00"), velqua::kErrDesbordamiento);
}

TEST_F(Part4_1Intake, RecordWithReadableDurationIsNotLogged) {
  tr_.Conmutador(SmallConfig());
  tr_.LlamadaActual(u"O 01:05");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Duracion(), 65);
  EXPECT_FALSE(LogExists());
}

TEST_F(Part4_1Intake, CaseChangeOnBoundConfigurationTakesEffectAtNextRecord) {
  auto cfg = SmallConfig();
  tr_.Conmutador(cfg);
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  cfg->Caso(velqua::emCasoNortelMeridian01);
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
}

TEST_F(Part4_1Intake, FieldChangeOnBoundConfigurationTakesEffectAtNextRead) {
  auto cfg = SmallConfig();
  tr_.Conmutador(cfg);
  tr_.LlamadaActual(u"O 01:05");
  cfg->DATOActivo(velqua::emParamDuracionSegundos);
  cfg->DATOPos(3);
  EXPECT_EQ(tr_.Duracion(), 61);
}

TEST(Part4_1Unbound, FieldPropertiesFailWithObjectNotSet) {
  clsTraductor tr;
  EXPECT_VELQUA_ERROR_NUMBER(tr.Dia(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Mes(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Anio(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Hora(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Duracion(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Ring(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Marcacion(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Extension(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.Troncal(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR_NUMBER(tr.CodigoCuenta(), velqua::kErrObjetoNoEstablecido);
  EXPECT_VELQUA_ERROR(tr.Dia(), 91, u"Velqua", u"Variable de objeto o bloque With no establecido");
}

TEST(Part4_1Unbound, BuscaLineaGivesZeroAndHayConstanteFalseOnEmptyLine) {
  clsTraductor tr;
  tr.BufferMultiplesLineas(u"abc");
  EXPECT_EQ(tr.BuscaLinea(u"b"), 0);
  EXPECT_FALSE(tr.HayConstanteLlamada(velqua::emDatoCteIdentEntrante));
}

// The generator's draws show through the random extension of Part 4.5: a
// star code with no list in case 10.
std::shared_ptr<clsCfgConmut> RandomConfig(velqua::emCasos caso) {
  auto cfg = MakeConfig(caso);
  SetConstant(*cfg, velqua::emDatoCteIdentSaliente, 1, u"O");
  SetText(*cfg, velqua::emParamExtensionSaliente, 3, 5);
  SetField(*cfg, velqua::emParamDuracionMinutos, 9, 2);
  SetField(*cfg, velqua::emParamDuracionSegundos, 12, 2);
  return cfg;
}

std::u16string Draw(clsTraductor& tr) {
  tr.LlamadaActual(u"O *9999 01:00");
  return tr.Extension();
}

TEST(Part4_1Seed, BindingInCase10SeedsFromTheTimer) {
  std::u16string first_seed1;
  std::u16string first_seed2;
  {
    FixedClock clock(TestNow(), 1);
    clsTraductor tr;
    tr.Conmutador(RandomConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100));
    first_seed1 = Draw(tr);
  }
  {
    FixedClock clock(TestNow(), 12345);
    clsTraductor tr;
    tr.Conmutador(RandomConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100));
    first_seed2 = Draw(tr);
  }
  EXPECT_NE(first_seed1, first_seed2);
}

TEST(Part4_1Seed, RebindingInCase10OrCase11RestartsTheSequence) {
  FixedClock clock(TestNow(), 77);
  clsTraductor tr;
  tr.Conmutador(RandomConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100));
  const std::u16string a1 = Draw(tr);
  const std::u16string a2 = Draw(tr);
  tr.Conmutador(RandomConfig(
      velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto));
  EXPECT_EQ(Draw(tr), a1);
  EXPECT_EQ(Draw(tr), a2);
}

TEST(Part4_1Seed, RebindingInAnotherCaseDoesNotReseed) {
  FixedClock clock(TestNow(), 77);
  clsTraductor reference;
  reference.Conmutador(RandomConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100));
  Draw(reference);
  const std::u16string second = Draw(reference);

  clsTraductor tr;
  tr.Conmutador(RandomConfig(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100));
  Draw(tr);
  auto other = RandomConfig(velqua::emCasoEstandar);
  tr.Conmutador(other);  // case 1: the generator is left as it is
  other->Caso(velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  EXPECT_EQ(Draw(tr), second);
}

}  // namespace
}  // namespace velqua_test
