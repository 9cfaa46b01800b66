// Part 4.3 Duracion after intake (Part 4.1 step 6). The translator keeps the
// duration the intake computed (doc/performance.md); these tests pin that a
// change to the configuration between the intake and the host's read still
// counts at the read, by every path that can change it, and that the read
// leaves DATOActivo as the three cuts do.
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// Duration hh:mm:ss at columns 1, 4 and 7; the record "01:02:03 1234".
class Part4_3DurationKept : public ::testing::Test {
 protected:
  Part4_3DurationKept() : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoEstandar)) {
    Place(*cfg_);
    tr_.Conmutador(cfg_);
    tr_.LlamadaActual(kRecord);
  }
  // A configuration complete enough for the files: brand, model, separator.
  static std::shared_ptr<clsCfgConmut> Complete() {
    auto cfg = MakeConfig(velqua::emCasoEstandar, u"\r\n");
    cfg->Marca(u"Prueba");
    cfg->Modelo(u"Duracion");
    Place(*cfg);
    return cfg;
  }
  static void Place(clsCfgConmut& cfg) {
    SetField(cfg, velqua::emParamDuracionHoras, 1, 2);
    SetField(cfg, velqua::emParamDuracionMinutos, 4, 2);
    SetField(cfg, velqua::emParamDuracionSegundos, 7, 2);
  }

  static constexpr const char16_t* kRecord = u"01:02:03 1234";
  FixedClock clock_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_3DurationKept, ReadAgainGivesTheSameValue) {
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
}

TEST_F(Part4_3DurationKept, ReadLeavesDurationSecondsActive) {
  cfg_->DATOActivo(velqua::emParamTelefonoSaliente);
  tr_.Duracion();
  EXPECT_EQ(cfg_->DATOActivo(), velqua::emParamDuracionSegundos);
  cfg_->DATOActivo(velqua::emParamFechaDia);
  tr_.Duracion();
  EXPECT_EQ(cfg_->DATOActivo(), velqua::emParamDuracionSegundos);
}

TEST_F(Part4_3DurationKept, MovedSecondsColumnCountsAtTheNextRead) {
  cfg_->DATOActivo(velqua::emParamDuracionSegundos);
  cfg_->DATOPos(10);  // "12" of "1234"
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 12));
}

TEST_F(Part4_3DurationKept, WidenedMinutesCountAtTheNextRead) {
  cfg_->DATOActivo(velqua::emParamDuracionMinutos);
  cfg_->DATOPos(10);
  cfg_->DATOTam(4);  // 1234 minutes
  EXPECT_EQ(tr_.Duracion(), Hms(1, 1234, 3));
}

TEST_F(Part4_3DurationKept, HoursFieldAddedOrUnsetCountsAtTheNextRead) {
  cfg_->DATOActivo(velqua::emParamDuracionHoras);
  cfg_->TipoDatoDATO(velqua::emValorNoDefinido);  // hours missing: zero
  EXPECT_EQ(tr_.Duracion(), Hms(0, 2, 3));
  SetField(*cfg_, velqua::emParamDuracionHoras, 1, 2);  // a new record
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
}

TEST_F(Part4_3DurationKept, SecondsAsTextCountAtTheNextRead) {
  cfg_->DATOActivo(velqua::emParamDuracionSegundos);
  cfg_->DATOPos(6);
  cfg_->DATOTam(3);  // ":03": numeric keeps the digits, text is not a number
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  cfg_->TipoDatoDATO(velqua::emValorCadena);
  EXPECT_EQ(tr_.Duracion(), -1);
}

TEST_F(Part4_3DurationKept, CaseChangeCountsAtTheNextRead) {
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  cfg_->Caso(velqua::emCasoEstandarDecimasMinuto);  // case 6: tenths of a minute
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 18));
  cfg_->Caso(velqua::emCasoEstandar);
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
}

TEST_F(Part4_3DurationKept, SubtractionCaseCountsAtTheNextRead) {
  // Case 5: the end time (duration columns) minus the start time (date
  // columns): 01:02:03 minus 12:34 and the clock's seconds (03), same day.
  SetField(*cfg_, velqua::emParamFechaHoras, 10, 2);    // "12"
  SetField(*cfg_, velqua::emParamFechaMinutos, 12, 2);  // "34"
  cfg_->Caso(velqua::emCasoEstandarRestaFechasDuracion);
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3) - Hms(12, 34, 3));
}

TEST_F(Part4_3DurationKept, AnotherConfigurationCountsAtTheNextRead) {
  auto other = MakeConfig(velqua::emCasoEstandar);
  Place(*other);
  other->DATOActivo(velqua::emParamDuracionHoras);
  other->DATOPos(12);  // "34"
  tr_.Conmutador(other);
  EXPECT_EQ(tr_.Duracion(), Hms(34, 2, 3));
}

TEST_F(Part4_3DurationKept, OpenedFileCountsAtTheNextRead) {
  TempDir dir;
  auto other = Complete();
  other->DATOActivo(velqua::emParamDuracionMinutos);
  other->DATOPos(10);  // "12"
  other->GuardarComo(dir.Path16("otra.cfg"));
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  cfg_->Abrir(dir.Path16("otra.cfg"));
  EXPECT_EQ(tr_.Duracion(), Hms(1, 12, 3));
}

TEST_F(Part4_3DurationKept, ImportedProfileCountsAtTheNextRead) {
  TempDir dir;
  auto other = Complete();
  other->DATOActivo(velqua::emParamDuracionSegundos);
  other->DATOPos(12);  // "34"
  other->Exportar(dir.Path16("otra.ini"));
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  cfg_->Importar(dir.Path16("otra.ini"));
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 34));
}

TEST_F(Part4_3DurationKept, NewRecordIsReadAfresh) {
  tr_.LlamadaActual(u"00:00:07");
  EXPECT_EQ(tr_.Duracion(), 7);
}

TEST_F(Part4_3DurationKept, RecordWhoseIntakeFailedIsReadAfresh) {
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  // The incoming mark reaches column 259: detection fails with error 6
  // after the new record is in place, before intake computes a duration.
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 250, u"XXXXXXXXXX");
  EXPECT_VELQUA_ERROR_NUMBER(tr_.LlamadaActual(u"00:00:07"), velqua::kErrDesbordamiento);
  cfg_->CTEActivo(velqua::emDatoCteIdentEntrante);
  cfg_->CTEPos(20);
  EXPECT_EQ(tr_.Duracion(), 7);
}

TEST_F(Part4_3DurationKept, NewRecordWithoutConfigurationForgetsTheValue) {
  tr_.Conmutador(nullptr);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.Duracion(), velqua::kErrObjetoNoEstablecido);
  tr_.Conmutador(cfg_);
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
}

TEST_F(Part4_3DurationKept, OverflowingColumnFailsAtEveryRead) {
  cfg_->DATOActivo(velqua::emParamDuracionSegundos);
  cfg_->DATOPos(250);
  cfg_->DATOTam(10);  // 250 + 10 > 255: error 6
  EXPECT_VELQUA_ERROR_NUMBER(tr_.Duracion(), velqua::kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.Duracion(), velqua::kErrDesbordamiento);
  cfg_->DATOPos(7);
  cfg_->DATOTam(2);
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
}

// The Norstar case moves cadLinea with every search: its duration is never
// kept. The call of examples/norstar, read twice around a change.
TEST(Part4_3DurationKeptNorstar, Case4ReadsTheBufferAtEveryRead) {
  FixedClock clock(TestNow());
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Abrir(U(std::string(VELQUA_TEST_DATA) + "/../../examples/norstar/norstar.cfg"));
  clsTraductor tr;
  tr.Conmutador(cfg);
  tr.ArchivoLlamadasError(u"");
  const std::string records =
      ReadFile(std::string(VELQUA_TEST_DATA) + "/../../examples/norstar/records.txt");
  ASSERT_FALSE(records.empty());
  // The first call: its lines up to the first empty line, joined by the
  // configured separator.
  const std::u16string sep = cfg->Separador();
  std::u16string call;
  size_t start = 0;
  while (start < records.size()) {
    size_t end = records.find('\n', start);
    if (end == std::string::npos) end = records.size();
    std::string line = records.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    start = end + 1;
    if (line.empty()) break;
    call += U(line) + sep;
  }
  tr.LlamadaActual(call);
  const int32_t first = tr.Duracion();
  EXPECT_EQ(tr.Duracion(), first);
  cfg->DATOActivo(velqua::emParamDuracionSegundos);
  const uint8_t pos = cfg->DATOPos();
  cfg->DATOPos(static_cast<uint8_t>(pos - 3));  // onto the minutes
  EXPECT_NE(tr.Duracion(), first);
  cfg->DATOPos(pos);
  EXPECT_EQ(tr.Duracion(), first);
}

}  // namespace
}  // namespace velqua_test
