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
  struct Row {
    emCasos caso;
    const char* buffer;
    const char* record;
    emTipoLlamadaTraductor type;
    emAtributoTraductor attr;
    bool logged;
  };
  const Row rows[] = {
      {emCasoEstandar, "", "O 01:05", emTradSaliente, emATRNoAtributo, false},
      {emCasoEstandar, "", "O --:-- 7", emTradNoIdentificada, emATRNoAtributo, true},
      {emCasoEstandar, "", "O 01:", emTradNoIdentificada, emATRNoAtributo, true},
      {emCasoEstandar, "", "O --:05", emTradNoIdentificada, emATRNoAtributo, true},
      {emCasoEstandar, "", "Z 01:05", emTradNoIdentificada, emATRNoAtributo, true},
      // an unreadable duration keeps the type in case 3 and for unanswered incoming calls
      {emCasoNortelMeridian01, "", "O --:-- 7", emTradSaliente, emATRNoAtributo, false},
      {emCasoEstandar, "", "I --:-- N 5", emTradEntrante, emATRNoContestada, false},
      {emCasoEstandar, "", "I --:-- S 5", emTradNoIdentificada, emATRIniTR, true},
      {emCasoEstandar, "", "O --:-- N 5", emTradNoIdentificada, emATRNoAtributo, true},
      {emCasoEstandar, "", "A --:-- 1", emTradCodigoCuenta, emATRNoAtributo, false},
      // an empty record is logged only when the buffer holds text
      {emCasoEstandar, "", "", emTradNoIdentificada, emATRNoAtributo, false},
      {emCasoEstandar, "algo", "", emTradNoIdentificada, emATRNoAtributo, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.buffer) + " / " + row.record);
    std::remove(dir_.Path("log.txt").c_str());
    cfg_->Caso(row.caso);
    tr_.BufferMultiplesLineas(U(row.buffer));
    tr_.LlamadaActual(U(row.record));
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), row.type);
    EXPECT_EQ(tr_.Atributo(), row.attr);
    EXPECT_EQ(tr_.LlamadaActual(), U(row.record));
    EXPECT_EQ(tr_.BufferMultiplesLineas(), U(row.buffer));  // the line, not the buffer
    EXPECT_EQ(tr_.HayLlamada(), *row.record != '\0');
    EXPECT_EQ(Log(), row.logged ? LogEntry(row.record) : "");
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
