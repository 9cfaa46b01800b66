// Date, time of day, duration and ring time: numbers cut from the record, the
// clock's values for what is missing, and the switch cases that change them.
#include <cstdio>
#include <sstream>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

using Read = int32_t (*)(clsTraductor&);
int32_t Day(clsTraductor& t) { return t.Dia(); }
int32_t Month(clsTraductor& t) { return t.Mes(); }
int32_t Year(clsTraductor& t) { return t.Anio(); }
int32_t Time(clsTraductor& t) { return t.Hora(); }
int32_t Length(clsTraductor& t) { return t.Duracion(); }
int32_t RingTime(clsTraductor& t) { return t.Ring(); }

// The read named at the start of an expected line.
Read Reader(const std::string& expected) {
  const std::string name = expected.substr(0, expected.find(' '));
  return name == "Day"      ? Day
         : name == "Month"  ? Month
         : name == "Year"   ? Year
         : name == "Time"   ? Time
         : name == "Length" ? Length
                            : RingTime;
}

using DateTimeDuration = BoundTranslator;

// Today is 2026-11-18: a missing or out-of-range component is today's.
TEST_F(DateTimeDuration, DateComponentsInRangeOrToday) {
  for (const auto& [field, read] : ReadCases("translator/date_components.txt")) {
    SCOPED_TRACE(field + " -> " + read);
    std::istringstream in(field);
    int key = 0, size = 0;
    char type = 0;
    in >> key >> size >> type;
    cfg_->Iniciar();
    if (key != emNoParamDato) {
      SetField(*cfg_, static_cast<emParamDato>(key), 1, size,
               type == 'N' ? emValorNumerico : emValorCadena);
    }
    tr_.LlamadaActual(U(Quoted(field)));
    EXPECT_EQ(std::to_string(Reader(read)(tr_)), read.substr(read.find(' ') + 1));
  }
  clock_.Set(At(1999, 1, 1, 0, 0, 0));
  SetField(*cfg_, emParamFechaAnio, 1, 2);
  tr_.LlamadaActual(u"07");
  EXPECT_EQ(tr_.Anio(), 1907);  // the clock's century
}

TEST_F(DateTimeDuration, TimeOfDayTakesWhatIsMissingFromTheClock) {
  SetField(*cfg_, emParamFechaHoras, 1, 2);
  SetField(*cfg_, emParamFechaMinutos, 4, 2);
  SetField(*cfg_, emParamFechaSegundos, 7, 2);
  for (const auto& [line, expected] : ReadCases("translator/times_of_day.txt")) {
    SCOPED_TRACE(line);
    if (line == "03:10:00PM") {
      SetConstant(*cfg_, emDatoCteIdentificadorHorarioMatutinoFecha, 9, u"AM");
    }
    tr_.LlamadaActual(U(line));
    int h = 0, m = 0, sec = 0;
    ASSERT_EQ(std::sscanf(expected.c_str(), "%d:%d:%d", &h, &m, &sec), 3);
    EXPECT_EQ(tr_.Hora(), Hms(h, m, sec));
  }
}

// Hours 1-2, minutes 4-5, seconds 7-10, for the duration and the ring time.
TEST_F(DateTimeDuration, DurationAndRingNeedMinutesAndSeconds) {
  for (const auto& key : {emParamDuracionHoras, emParamRingHoras}) SetField(*cfg_, key, 1, 2);
  for (const auto& key : {emParamDuracionMinutos, emParamRingMinutos}) SetField(*cfg_, key, 4, 2);
  for (const auto& key : {emParamDuracionSegundos, emParamRingSegundos}) {
    SetField(*cfg_, key, 7, 4);
  }
  SetField(*cfg_, emParamFechaSegundos, 7, 1);
  for (const auto& [record, read] : ReadCases("translator/durations.txt")) {
    SCOPED_TRACE(record + " -> " + read);
    cfg_->Caso(static_cast<emCasos>(std::stoi(record)));
    tr_.LlamadaActual(U(Quoted(record)));
    EXPECT_EQ(std::to_string(Reader(read)(tr_)), read.substr(read.find(' ') + 1));
  }
  const emCasos tenths = emCasoEstandarDecimasMinuto;
  cfg_->Caso(tenths);
  EXPECT_OVERFLOW(tr_.LlamadaActual(u"   00:5462"));
  EXPECT_OVERFLOW(tr_.Duracion());
}

// Start day/month/year hh:mm:ss at columns 1-17, end at 19-35, their morning
// marks at 37 and 40, the outgoing mark at 43 (and a digit: a line without
// one is never a call).
TEST_F(DateTimeDuration, SubtractionCasesTakeEndMinusStart) {
  const emParamDato keys[] = {
      emParamFechaDia,     emParamFechaMes,      emParamFechaAnio,       emParamFechaHoras,
      emParamFechaMinutos, emParamFechaSegundos, emParamDuracionDia,     emParamDuracionMes,
      emParamDuracionAnio, emParamDuracionHoras, emParamDuracionMinutos, emParamDuracionSegundos};
  for (int i = 0; i < 12; ++i) SetField(*cfg_, keys[i], 1 + 3 * i, 2);
  SetConstant(*cfg_, emDatoCteIdentSaliente, 43, u"O");
  const emCasos five = emCasoEstandarRestaFechasDuracion;
  const struct {
    emCasos caso;
    const char* start;
    const char* end;
    const char* marks;
    int32_t expected;
  } rows[] = {
      {five, "10/03/26 23:59:50", "11/03/26 00:00:10", "", 20},
      {emCasoEstandarRestaFechasDuracionConSalienteDefecto, "10/03/26 10:00:00",
       "10/03/26 10:01:05", "", 65},
      {five, "30/04/26 23:00:00", "31/04/26 00:00:00", "", 3600},  // 31 April is 1 May
      {five, "10/03/26 23:00:00", "10/03/26 25:00:00", "", 7200},
      {five, "", "", "", 0},  // both ends are the clock's instant
      // the end is taken in the start's year: the record is rejected and logged
      {five, "31/12/26 23:59:50", "01/01/27 00:00:10", "", -(364 * 86400 + 86380)},
      // with morning marks from here on, each end reads its own
      {five, "10/03/26 11:59:50", "10/03/26 12:00:10", "AM PM", 20},
      {five, "10/03/26 12:30:00", "10/03/26 01:00:00", "AM PM", Hms(12, 30, 0)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.start) + " - " + row.end + " " + row.marks);
    if (*row.marks != '\0') {
      SetConstant(*cfg_, emDatoCteIdentificadorHorarioMatutinoFecha, 37, u"AM");
      SetConstant(*cfg_, emDatoCteIdentificadorHorarioMatutinoDuracion, 40, u"AM");
    }
    std::remove(dir_.Path("log.txt").c_str());
    cfg_->Caso(row.caso);
    const std::u16string line = Cols({{1, row.start}, {19, row.end}, {37, row.marks}, {43, "O 1"}});
    tr_.LlamadaActual(line);
    EXPECT_EQ(tr_.Duracion(), row.expected);
    const bool kept = row.expected >= 0;
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), kept ? emTradSaliente : emTradNoIdentificada);
    EXPECT_EQ(Log(), kept ? "" : LogEntry(AUtf8(line)));
  }
}

}  // namespace
}  // namespace velqua_test
