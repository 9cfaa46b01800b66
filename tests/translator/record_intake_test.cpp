// Binding a configuration and taking a record: what the intake stores, when it
// keeps the detected type, what it logs, and the random generator's seeding.
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

// Mark in column 1 (I incoming, O outgoing, A account code), duration minutes
// 3-4 and seconds 6-7, attribute mark in column 9 (S start of transfer, N
// unanswered).
class RecordIntake : public BoundTranslator {
 protected:
  RecordIntake() {
    SetConstant(*cfg_, emDatoCteIdentEntrante, 1, u"I");
    SetConstant(*cfg_, emDatoCteIdentSaliente, 1, u"O");
    SetConstant(*cfg_, emDatoCteIdentCodigoCuenta, 1, u"A");
    SetConstant(*cfg_, emDatoCteIdentEntranteInicioTransferida, 9, u"S");
    SetConstant(*cfg_, emDatoCteIdentNoContestada, 9, u"N");
    SetField(*cfg_, emParamDuracionMinutos, 3, 2);
    SetField(*cfg_, emParamDuracionSegundos, 6, 2);
  }
};

TEST_F(RecordIntake, KeepsTheTypeOnlyWithAReadableDurationAndLogsTheRest) {
  for (const auto& [taken, kept] : ReadCases("translator/intake.txt")) {
    SCOPED_TRACE(taken);
    const std::string buffer = Quoted(taken), record = Quoted(taken, 1);
    std::remove(dir_.Path("log.txt").c_str());
    cfg_->Caso(static_cast<emCasos>(std::stoi(taken)));
    tr_.BufferMultiplesLineas(U(buffer));
    tr_.LlamadaActual(U(record));
    EXPECT_EQ(Kind(tr_), std::string(1, kept[0]) + "/" + kept[2]);
    EXPECT_EQ(tr_.LlamadaActual(), U(record));
    EXPECT_EQ(tr_.BufferMultiplesLineas(), U(buffer));  // the line, not the buffer
    EXPECT_EQ(tr_.HayLlamada(), !record.empty());
    EXPECT_EQ(Log(), kept[4] == 'L' ? LogEntry(record) : "");
  }
}

TEST_F(RecordIntake, AccountCodeRecordSkipsTheDuration) {
  SetField(*cfg_, emParamDuracionHoras, 250, 10);  // 260 > 255
  tr_.LlamadaActual(u"A 01:00");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradCodigoCuenta);
  EXPECT_OVERFLOW(tr_.LlamadaActual(u"O 01:00"));
}

TEST_F(RecordIntake, BufferWriteTriggersNothingAndCaseIsReadAtEveryUse) {
  tr_.LlamadaActual(u"I 02:30");
  tr_.BufferMultiplesLineas(u"O 01:00");
  EXPECT_TRUE(tr_.HayBufferMultiplesLineas());
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradEntrante);
  cfg_->Caso(emCasoNortelNorstar0x32SMDR6);
  EXPECT_EQ(tr_.LlamadaActual(), u"O 01:00");
  cfg_->Caso(emCasoEstandar);
  EXPECT_EQ(tr_.LlamadaActual(), u"I 02:30");
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradNoIdentificada);
  cfg_->Caso(emCasoNortelMeridian01);
  tr_.LlamadaActual(u"O --:-- 7");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradSaliente);
}

TEST_F(RecordIntake, UnboundIntakeOnlyForgetsTheType) {
  clsTraductor fresh;
  fresh.LlamadaActual(u"I 02:30");
  EXPECT_EQ(fresh.TipoLlamadaDetectada(), emTradNoIdentificada);
  EXPECT_FALSE(fresh.HayLlamada());

  tr_.LlamadaActual(u"I 02:30 S");
  tr_.Conmutador(cfg_);  // rebinding keeps record, type and attribute
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradEntrante);
  tr_.Conmutador(nullptr);
  EXPECT_EQ(tr_.LlamadaActual(), u"");
  tr_.LlamadaActual(u"O 01:00");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradNoIdentificada);
  EXPECT_EQ(tr_.Atributo(), emATRIniTR);
  tr_.Conmutador(cfg_);
  EXPECT_EQ(tr_.LlamadaActual(), u"I 02:30 S");
  EXPECT_EQ(Log(), "");
}

TEST(TranslatorBinding, UnboundReadsFailAndSearchesFindNothing) {
  clsTraductor tr;
  const std::function<void()> reads[] = {[&] { tr.Dia(); },       [&] { tr.Mes(); },
                                         [&] { tr.Anio(); },      [&] { tr.Hora(); },
                                         [&] { tr.Duracion(); },  [&] { tr.Ring(); },
                                         [&] { tr.Marcacion(); }, [&] { tr.Extension(); },
                                         [&] { tr.Troncal(); },   [&] { tr.CodigoCuenta(); }};
  for (const auto& read : reads) EXPECT_UNBOUND(read());
  tr.BufferMultiplesLineas(u"abc");
  EXPECT_EQ(tr.BuscaLinea(u"b"), 0);
  EXPECT_FALSE(tr.HayLlamada());
  EXPECT_FALSE(tr.HayConstanteLlamada(emDatoCteIdentEntrante));  // empty line: no error
  EXPECT_EQ(tr.LlamadaActual(), u"");
}

}  // namespace
}  // namespace velqua_test
