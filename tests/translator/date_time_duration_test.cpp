// Date, time of day, duration and ring time: numbers cut from the record, the
// clock's values for what is missing, and the switch cases that change them.
#include <cstdio>
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

using DateTimeDuration = BoundTranslator;

// Today is 2026-11-18: a missing or out-of-range component is today's.
TEST_F(DateTimeDuration, DateComponentsInRangeOrToday) {
  constexpr emTipoDato N = emValorNumerico;
  constexpr emTipoDato C = emValorCadena;
  const struct {
    emParamDato key;
    int size;
    emTipoDato type;
    const char16_t* text;
    Read read;
    int32_t expected;
  } rows[] = {
      {emParamFechaAnio, 5, N, u"07", Year, 2007},    {emParamFechaAnio, 5, N, u"7", Year, 2007},
      {emParamFechaAnio, 5, N, u"99", Year, 2099},    {emParamFechaAnio, 5, N, u"2007", Year, 2007},
      {emParamFechaAnio, 5, N, u"20071", Year, 2007}, {emParamFechaAnio, 5, N, u"207", Year, 2026},
      {emParamFechaAnio, 3, C, u" 7 ", Year, 2026},  // three characters with the blanks
      {emParamFechaAnio, 2, C, u" 7", Year, 2007},    {emParamFechaDia, 2, N, u"00", Day, 18},
      {emParamFechaDia, 2, N, u"01", Day, 1},         {emParamFechaDia, 2, N, u"31", Day, 31},
      {emParamFechaDia, 2, N, u"32", Day, 18},        {emParamFechaMes, 2, N, u"00", Month, 11},
      {emParamFechaMes, 2, N, u"01", Month, 1},       {emParamFechaMes, 2, N, u"12", Month, 12},
      {emParamFechaMes, 2, N, u"13", Month, 11},      {emNoParamDato, 2, N, u"1", Day, 18},
      {emNoParamDato, 2, N, u"1", Month, 11},         {emNoParamDato, 2, N, u"1", Year, 2026},
      {emParamFechaDia, 3, C, u" 5 ", Day, 5},        {emParamFechaDia, 3, C, u"5a ", Day, 18},
      {emParamFechaDia, 3, C, u"1 2", Day, 18},       {emParamFechaDia, 3, C, u"+5 ", Day, 18},
      {emParamFechaDia, 6, C, u"  12  ", Day, 12},  // a text is cut to 4 characters...
      {emParamFechaDia, 6, C, u"     7", Day, 18},  // ...and blanks are no number
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::Message() << "key " << row.key << " '" << AUtf8(row.text) << "'");
    cfg_->Iniciar();
    if (row.key != emNoParamDato) SetField(*cfg_, row.key, 1, row.size, row.type);
    tr_.LlamadaActual(row.text);
    EXPECT_EQ(row.read(tr_), row.expected);
  }
  clock_.Set(At(1999, 1, 1, 0, 0, 0));
  SetField(*cfg_, emParamFechaAnio, 1, 2);
  tr_.LlamadaActual(u"07");
  EXPECT_EQ(tr_.Anio(), 1907);  // the clock's century
}

// Hours 1-2, minutes 4-5, seconds 7-8, no range check; the clock reads
// 09:05:03. From the first "PM" row on, a morning mark "AM" in column 9 makes
// a 12-hour clock: without it an hour below 12 (the clock's too) is afternoon.
TEST_F(DateTimeDuration, TimeOfDayTakesWhatIsMissingFromTheClock) {
  SetField(*cfg_, emParamFechaHoras, 1, 2);
  SetField(*cfg_, emParamFechaMinutos, 4, 2);
  SetField(*cfg_, emParamFechaSegundos, 7, 2);
  const struct {
    const char16_t* line;
    int32_t expected;
  } rows[] = {
      {u"14:03:27", Hms(14, 3, 27)},
      {u"25:75:99", Hms(25, 75, 99)},
      {u"14:03", Hms(14, 3, 3)},
      {u"xx:03", Hms(9, 3, 3)},
      {u"-", Hms(9, 5, 3)},
      {u"03", Hms(3, 5, 3)},
      {u"03:10:00PM", Hms(15, 10, 0)},
      {u"11:00:00PM", Hms(23, 0, 0)},
      {u"12:10:00PM", Hms(12, 10, 0)},
      {u"xx:10:00PM", Hms(21, 10, 0)},
      {u"12:10:00am", Hms(0, 10, 0)},
      {u"03:10:00AM", Hms(3, 10, 0)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.line));
    if (std::u16string(row.line) == u"03:10:00PM") {
      SetConstant(*cfg_, emDatoCteIdentificadorHorarioMatutinoFecha, 9, u"AM");
    }
    tr_.LlamadaActual(row.line);
    EXPECT_EQ(tr_.Hora(), row.expected);
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
  // Case 6 prints tenths of a minute in the duration's seconds column.
  const emCasos one = emCasoEstandar, tenths = emCasoEstandarDecimasMinuto,
                nine = emCasoEstandarDecimasMinutoConSalienteDefecto;
  const struct {
    emCasos caso;
    const char16_t* line;
    Read read;
    int32_t expected;
  } rows[] = {
      {one, u"   02:30", Length, 150},        {one, u"01:02:30", Length, 3750},
      {one, u"   75:00", Length, 4500},       {one, u"   --:30", Length, -1},
      {one, u"   02:", Length, -1},           {tenths, u"   01:5", Length, 90},
      {tenths, u"   00:5461", Length, 32766}, {nine, u"   01:5", Length, 65},
      {tenths, u"   01:5", RingTime, 65},     {tenths, u"   01:5", Time, Hms(9, 5, 5)},
      {one, u"01:00:12", RingTime, 3612},     {one, u"   00:12", RingTime, 12},
      {one, u"   00:", RingTime, -1},         {one, u"      12", RingTime, -1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::Message() << "case " << row.caso << " " << AUtf8(row.line));
    cfg_->Caso(row.caso);
    tr_.LlamadaActual(row.line);
    EXPECT_EQ(row.read(tr_), row.expected);
  }
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
