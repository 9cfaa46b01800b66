// Part 4.3: field extraction, numeric components, time/duration/ring and the
// key tables of the text properties.
#include <memory>
#include <string>
#include <vector>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using velqua::clsCfgConmut;
using velqua::clsTraductor;

// ---- the key tables: every data key 2..68 has its own columns ----

// Key k lies at column 3k-2, three characters "Knn"; constant c at column
// 205 + c holds "X" when present. Keys 2 to 16 are numeric, so that "K05"
// reads 05; the others are text.
class Part4_3KeyTable : public ::testing::Test {
 protected:
  Part4_3KeyTable() : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoEstandar)) {
    for (int k = 2; k <= 68; ++k) {
      SetField(*cfg_, static_cast<velqua::emParamDato>(k), 3 * k - 2, 3,
               k <= 16 ? velqua::emValorNumerico : velqua::emValorCadena);
    }
    for (int c : {4, 7, 10, 13, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29}) {
      SetConstant(*cfg_, static_cast<velqua::emParamDatoConstante>(c), 205 + c, u"X");
    }
    tr_.Conmutador(cfg_);
  }
  void Write(const std::vector<int>& marks) {
    std::u16string line;
    for (int k = 1; k <= 68; ++k) {
      line += u'K';
      line += static_cast<char16_t>(u'0' + k / 10);
      line += static_cast<char16_t>(u'0' + k % 10);
    }
    line += std::u16string(30, u'.');
    for (int c : marks) line[static_cast<size_t>(204 + c)] = u'X';
    tr_.LlamadaActual(line);
  }

  FixedClock clock_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

struct KeyRow {
  std::vector<int> marks;
  velqua::emTipoLlamadaTraductor type;
  velqua::emAtributoTraductor attr;
  std::u16string marcacion, extension, troncal, ext_receptor, troncal_receptor, codigo;
};

TEST_F(Part4_3KeyTable, EveryTypeAndAttributeReadsTheKeysOfItsRow) {
  using namespace velqua;
  const KeyRow rows[] = {
      {{4}, emTradEntrante, emATRNoAtributo, u"K18", u"K31", u"K30", u"", u"", u""},
      {{4, 16}, emTradEntrante, emATRIniTR, u"K22", u"K39", u"K38", u"", u"", u""},
      {{4, 24}, emTradEntrante, emATREnTR, u"K54", u"K59", u"K58", u"", u"", u""},
      {{4, 17}, emTradEntrante, emATRFinTR, u"K23", u"K41", u"K40", u"", u"", u""},
      {{4, 29}, emTradEntrante, emATRNoContestada, u"K18", u"K31", u"K30", u"", u"", u""},
      {{7}, emTradSaliente, emATRNoAtributo, u"K19", u"K33", u"K32", u"", u"", u""},
      {{7, 18}, emTradSaliente, emATRIniTR, u"K24", u"K43", u"K42", u"", u"", u""},
      {{7, 25}, emTradSaliente, emATREnTR, u"K55", u"K61", u"K60", u"", u"", u""},
      {{7, 19}, emTradSaliente, emATRFinTR, u"K25", u"K45", u"K44", u"", u"", u""},
      {{10}, emTradInterExtension, emATRNoAtributo, u"K20", u"K34", u"", u"K35", u"", u""},
      {{10, 20}, emTradInterExtension, emATRIniTR, u"K26", u"K46", u"", u"K47", u"", u""},
      {{10, 26}, emTradInterExtension, emATREnTR, u"K56", u"K62", u"", u"K63", u"", u""},
      {{10, 21}, emTradInterExtension, emATRFinTR, u"K27", u"K48", u"", u"K49", u"", u""},
      {{13}, emTradInterTroncal, emATRNoAtributo, u"K21", u"", u"K36", u"", u"K37", u""},
      {{13, 22}, emTradInterTroncal, emATRIniTR, u"K28", u"", u"K50", u"", u"K51", u""},
      {{13, 27}, emTradInterTroncal, emATREnTR, u"K57", u"", u"K64", u"", u"K65", u""},
      {{13, 23}, emTradInterTroncal, emATRFinTR, u"K29", u"", u"K52", u"", u"K53", u""},
      {{28}, emTradCodigoCuenta, emATRNoAtributo, u"", u"", u"K66", u"", u"", u"K17"},
      {{28, 16}, emTradCodigoCuenta, emATRNoAtributo, u"", u"", u"K66", u"", u"", u"K17"},
      {{}, emTradNoIdentificada, emATRNoAtributo, u"", u"", u"", u"", u"", u""},
  };
  for (const KeyRow& row : rows) {
    SCOPED_TRACE(::testing::Message() << "type " << row.type << " attribute " << row.attr);
    tr_.LlamadaActual(u"");
    Write(row.marks);
    ASSERT_EQ(tr_.TipoLlamadaDetectada(), row.type);
    ASSERT_EQ(tr_.Atributo(), row.attr);
    EXPECT_EQ(AUtf8(tr_.Marcacion()), AUtf8(row.marcacion));
    EXPECT_EQ(AUtf8(tr_.Extension()), AUtf8(row.extension));
    EXPECT_EQ(AUtf8(tr_.Troncal()), AUtf8(row.troncal));
    EXPECT_EQ(AUtf8(tr_.ExtensionReceptor()), AUtf8(row.ext_receptor));
    EXPECT_EQ(AUtf8(tr_.TroncalReceptor()), AUtf8(row.troncal_receptor));
    EXPECT_EQ(AUtf8(tr_.CodigoCuenta()), AUtf8(row.codigo));
    EXPECT_EQ(tr_.Dia(), 2);
    EXPECT_EQ(tr_.Mes(), 3);
    EXPECT_EQ(tr_.Anio(), 2004);
    EXPECT_EQ(tr_.Hora(), Hms(5, 6, 7));
    EXPECT_EQ(tr_.Duracion(), Hms(11, 12, 13));
    EXPECT_EQ(tr_.Ring(), Hms(14, 15, 16));
  }
}

TEST_F(Part4_3KeyTable, ReadsLeaveActiveKeysAtTheKeysUsedLast) {
  Write({7});
  tr_.Extension();
  EXPECT_EQ(cfg_->DATOActivo(), velqua::emParamExtensionSaliente);
  tr_.Marcacion();
  EXPECT_EQ(cfg_->DATOActivo(), velqua::emParamTelefonoSaliente);
  EXPECT_EQ(cfg_->CTEActivo(), velqua::emDatoCteIdentInterExtensionEnTransferencia);
  tr_.CodigoCuenta();
  EXPECT_EQ(cfg_->CTEActivo(), velqua::emDatoCteIdentCodigoCuenta);
}

TEST_F(Part4_3KeyTable, ReadingTwiceGivesTheSameValueAndKeepsTypeAndAttribute) {
  Write({13, 27});
  EXPECT_EQ(tr_.TroncalReceptor(), u"K65");
  EXPECT_EQ(tr_.TroncalReceptor(), u"K65");
  EXPECT_EQ(tr_.Hora(), tr_.Hora());
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradInterTroncal);
  EXPECT_EQ(tr_.Atributo(), velqua::emATREnTR);
}

// ---- ExtraeDato, seen through CodigoCuenta (key 17, no account mark) ----

class Part4_3Field : public ::testing::Test {
 protected:
  Part4_3Field() : clock_(TestNow()), cfg_(MakeConfig(velqua::emCasoEstandar)) {
    tr_.Conmutador(cfg_);
  }
  void Write(const std::u16string& line) { tr_.LlamadaActual(line); }

  FixedClock clock_;
  std::shared_ptr<clsCfgConmut> cfg_;
  clsTraductor tr_;
};

TEST_F(Part4_3Field, NumericFieldRunningPastLineEndKeepsTheDigitsThere) {
  SetField(*cfg_, velqua::emParamCodigoCuenta, 20, 5);
  Write(
      u"1234567890123456789"
      u"4x2");  // 22 characters
  EXPECT_EQ(tr_.CodigoCuenta(), u"42");
}

TEST_F(Part4_3Field, TextFieldRunningPastLineEndIsCutAtTheEnd) {
  SetText(*cfg_, velqua::emParamCodigoCuenta, 20, 5);
  Write(
      u"1234567890123456789"
      u"4x2");
  EXPECT_EQ(tr_.CodigoCuenta(), u"4x2");
}

TEST_F(Part4_3Field, FieldStartingBeyondLineEndIsEmpty) {
  SetText(*cfg_, velqua::emParamCodigoCuenta, 23, 2);
  Write(
      u"1234567890123456789"
      u"4x2");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

TEST_F(Part4_3Field, FieldPastColumn255Overflows) {
  Write(u"1");
  SetText(*cfg_, velqua::emParamCodigoCuenta, 200, 56);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.CodigoCuenta(), velqua::kErrDesbordamiento);
  SetText(*cfg_, velqua::emParamCodigoCuenta, 200, 55);
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

TEST_F(Part4_3Field, NumericFieldKeepsOnlyItsDigits) {
  SetField(*cfg_, velqua::emParamCodigoCuenta, 1, 4);
  Write(u" 1:2");
  EXPECT_EQ(tr_.CodigoCuenta(), u"12");
  Write(u"-+a:");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

TEST_F(Part4_3Field, TextFieldKeepsItsCharactersAndMarcacionDropsOnlyLeadingBlank) {
  SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 6, u"I");
  SetText(*cfg_, velqua::emParamTelefonoEntrante, 1, 4);
  SetField(*cfg_, velqua::emParamDuracionMinutos, 8, 1);
  SetField(*cfg_, velqua::emParamDuracionSegundos, 9, 1);
  Write(u" 1:2 I 00");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  EXPECT_EQ(tr_.Marcacion(), u"1:2");
  SetField(*cfg_, velqua::emParamTelefonoEntrante, 1, 4);
  EXPECT_EQ(tr_.Marcacion(), u"12");
}

TEST_F(Part4_3Field, UndefinedFieldGivesEmptyText) {
  SetText(*cfg_, velqua::emParamCodigoCuenta, 1, 4);
  cfg_->TipoDatoDATO(velqua::emValorNoDefinido);  // free: not defined
  Write(u"1234");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

// ---- Dia, Mes, Anio ----

TEST_F(Part4_3Field, YearOfTwoDigitsTakesTheCurrentCentury) {
  SetField(*cfg_, velqua::emParamFechaAnio, 1, 5);
  Write(u"07");
  EXPECT_EQ(tr_.Anio(), 2007);
  Write(u"7");
  EXPECT_EQ(tr_.Anio(), 2007);
  Write(u"99");
  EXPECT_EQ(tr_.Anio(), 2099);
}

TEST_F(Part4_3Field, YearOfFourDigitsIsTakenAsIsAndFiveAreCutToFour) {
  SetField(*cfg_, velqua::emParamFechaAnio, 1, 5);
  Write(u"2007");
  EXPECT_EQ(tr_.Anio(), 2007);
  Write(u"20071");
  EXPECT_EQ(tr_.Anio(), 2007);
}

TEST_F(Part4_3Field, YearOfThreeDigitsGivesTheCurrentYear) {
  SetField(*cfg_, velqua::emParamFechaAnio, 1, 5);
  Write(u"207");
  EXPECT_EQ(tr_.Anio(), 2026);
}

TEST_F(Part4_3Field, YearCenturyFollowsTheClock) {
  clock_.Set(At(1999, 1, 1, 0, 0, 0));
  SetField(*cfg_, velqua::emParamFechaAnio, 1, 2);
  Write(u"07");
  EXPECT_EQ(tr_.Anio(), 1907);
}

TEST_F(Part4_3Field, TextYearCountsBlanksInItsLength) {
  SetText(*cfg_, velqua::emParamFechaAnio, 1, 3);
  Write(u" 7 ");
  EXPECT_EQ(tr_.Anio(), 2026);  // three characters
  SetText(*cfg_, velqua::emParamFechaAnio, 1, 2);
  EXPECT_EQ(tr_.Anio(), 2007);  // " 7"
}

TEST_F(Part4_3Field, DayOutOfRangeGivesToday) {
  SetField(*cfg_, velqua::emParamFechaDia, 1, 2);
  Write(u"00");
  EXPECT_EQ(tr_.Dia(), 18);
  Write(u"45");
  EXPECT_EQ(tr_.Dia(), 18);
  Write(u"31");
  EXPECT_EQ(tr_.Dia(), 31);
  Write(u"01");
  EXPECT_EQ(tr_.Dia(), 1);
}

TEST_F(Part4_3Field, MonthOutOfRangeGivesCurrentMonth) {
  SetField(*cfg_, velqua::emParamFechaMes, 1, 2);
  Write(u"13");
  EXPECT_EQ(tr_.Mes(), 11);
  Write(u"12");
  EXPECT_EQ(tr_.Mes(), 12);
  Write(u"00");
  EXPECT_EQ(tr_.Mes(), 11);
}

TEST_F(Part4_3Field, UndefinedDateFieldsGiveTheCurrentDate) {
  Write(u"1");
  EXPECT_EQ(tr_.Dia(), 18);
  EXPECT_EQ(tr_.Mes(), 11);
  EXPECT_EQ(tr_.Anio(), 2026);
}

TEST_F(Part4_3Field, TextDayWithBlanksAroundIsANumberOtherTextIsNot) {
  SetText(*cfg_, velqua::emParamFechaDia, 1, 3);
  Write(u" 5 ");
  EXPECT_EQ(tr_.Dia(), 5);
  Write(u"5a ");
  EXPECT_EQ(tr_.Dia(), 18);
  Write(u"1 2");
  EXPECT_EQ(tr_.Dia(), 18);
  Write(u"+5 ");
  EXPECT_EQ(tr_.Dia(), 18);
}

TEST_F(Part4_3Field, LongTextCutToFourCharactersOfBlanksIsNotANumber) {
  SetText(*cfg_, velqua::emParamFechaDia, 1, 6);
  Write(u"     7");
  EXPECT_EQ(tr_.Dia(), 18);
  Write(u"  12  ");
  EXPECT_EQ(tr_.Dia(), 12);
}

// ---- Hora ----

TEST_F(Part4_3Field, HoraComposesHoursMinutesSeconds) {
  SetField(*cfg_, velqua::emParamFechaHoras, 1, 2);
  SetField(*cfg_, velqua::emParamFechaMinutos, 4, 2);
  SetField(*cfg_, velqua::emParamFechaSegundos, 7, 2);
  Write(u"14:03:27");
  EXPECT_EQ(tr_.Hora(), Hms(14, 3, 27));
}

TEST_F(Part4_3Field, HoraTakesMissingComponentsFromTheClock) {
  SetField(*cfg_, velqua::emParamFechaHoras, 1, 2);
  SetField(*cfg_, velqua::emParamFechaMinutos, 4, 2);
  Write(u"14:03");
  EXPECT_EQ(tr_.Hora(), Hms(14, 3, 3));
  Write(u"xx:03");
  EXPECT_EQ(tr_.Hora(), Hms(9, 3, 3));
}

TEST_F(Part4_3Field, HoraWithoutFieldsIsTheCurrentTime) {
  Write(u"1");
  EXPECT_EQ(tr_.Hora(), Hms(9, 5, 3));
}

TEST_F(Part4_3Field, HoraDoesNotCheckRanges) {
  SetField(*cfg_, velqua::emParamFechaHoras, 1, 2);
  SetField(*cfg_, velqua::emParamFechaMinutos, 4, 2);
  SetField(*cfg_, velqua::emParamFechaSegundos, 7, 2);
  Write(u"25:75:99");
  EXPECT_EQ(tr_.Hora(), 25 * 3600 + 75 * 60 + 99);
}

class Part4_3MorningMark : public Part4_3Field {
 protected:
  Part4_3MorningMark() {
    SetField(*cfg_, velqua::emParamFechaHoras, 1, 2);
    SetField(*cfg_, velqua::emParamFechaMinutos, 4, 2);
    SetField(*cfg_, velqua::emParamFechaSegundos, 7, 2);
    SetConstant(*cfg_, velqua::emDatoCteIdentificadorHorarioMatutinoFecha, 9, u"AM");
  }
};

TEST_F(Part4_3MorningMark, MarkDefinedButAbsentMakesEarlyHoursAfternoon) {
  Write(u"03:10:00PM");
  EXPECT_EQ(tr_.Hora(), Hms(15, 10, 0));
  Write(u"12:10:00PM");
  EXPECT_EQ(tr_.Hora(), Hms(12, 10, 0));
}

TEST_F(Part4_3MorningMark, MarkPresentMakesTwelveMidnight) {
  Write(u"12:10:00am");
  EXPECT_EQ(tr_.Hora(), Hms(0, 10, 0));
  Write(u"03:10:00AM");
  EXPECT_EQ(tr_.Hora(), Hms(3, 10, 0));
}

TEST_F(Part4_3Field, NoMorningMarkMeansTwentyFourHourClock) {
  SetField(*cfg_, velqua::emParamFechaHoras, 1, 2);
  Write(u"03");
  EXPECT_EQ(tr_.Hora(), Hms(3, 5, 3));
}

// ---- Duracion and Ring ----

class Part4_3Duration : public Part4_3Field {
 protected:
  Part4_3Duration() {
    SetField(*cfg_, velqua::emParamDuracionMinutos, 4, 2);
    SetField(*cfg_, velqua::emParamDuracionSegundos, 7, 4);
  }
};

TEST_F(Part4_3Duration, MissingHoursCountAsZero) {
  Write(u"   02:30");
  EXPECT_EQ(tr_.Duracion(), 150);
  SetField(*cfg_, velqua::emParamDuracionHoras, 1, 2);
  EXPECT_EQ(tr_.Duracion(), 150);  // blanks: not a number
  Write(u"01:02:30");
  EXPECT_EQ(tr_.Duracion(), 3750);
}

TEST_F(Part4_3Duration, MissingMinutesOrSecondsGiveMinusOne) {
  Write(u"   --:30");
  EXPECT_EQ(tr_.Duracion(), -1);
  Write(u"   02:");
  EXPECT_EQ(tr_.Duracion(), -1);
  cfg_->DATOActivo(velqua::emParamDuracionMinutos);
  cfg_->TipoDatoDATO(velqua::emValorNoDefinido);
  Write(u"   02:30");
  EXPECT_EQ(tr_.Duracion(), -1);
}

TEST_F(Part4_3Duration, MinutesAreNotRangeChecked) {
  Write(u"   75:00");
  EXPECT_EQ(tr_.Duracion(), 4500);
}

TEST_F(Part4_3Duration, SignedTextIsNotANumber) {
  SetText(*cfg_, velqua::emParamDuracionMinutos, 3, 3);
  Write(u"  -5:00");
  EXPECT_EQ(tr_.Duracion(), -1);
}

TEST_F(Part4_3Duration, Case6MultipliesSecondsBySix) {
  cfg_->Caso(velqua::emCasoEstandarDecimasMinuto);
  Write(u"   01:5");
  EXPECT_EQ(tr_.Duracion(), 90);
}

TEST_F(Part4_3Duration, Case9TakesSecondsAsPrinted) {
  cfg_->Caso(velqua::emCasoEstandarDecimasMinutoConSalienteDefecto);
  Write(u"   01:5");
  EXPECT_EQ(tr_.Duracion(), 65);
}

TEST_F(Part4_3Duration, Case6SecondsAbove5461Overflow) {
  cfg_->Caso(velqua::emCasoEstandarDecimasMinuto);
  Write(u"   00:5461");
  EXPECT_EQ(tr_.Duracion(), 32766);
  EXPECT_VELQUA_ERROR_NUMBER(Write(u"   00:5462"), velqua::kErrDesbordamiento);  // intake step 6
  EXPECT_VELQUA_ERROR_NUMBER(tr_.Duracion(), velqua::kErrDesbordamiento);
}

TEST_F(Part4_3Duration, Case6LeavesRingAndTimeSecondsAlone) {
  cfg_->Caso(velqua::emCasoEstandarDecimasMinuto);
  SetField(*cfg_, velqua::emParamRingMinutos, 4, 2);
  SetField(*cfg_, velqua::emParamRingSegundos, 7, 1);
  SetField(*cfg_, velqua::emParamFechaSegundos, 7, 1);
  Write(u"   01:5");
  EXPECT_EQ(tr_.Ring(), 65);
  EXPECT_EQ(tr_.Hora(), Hms(9, 5, 5));
}

TEST_F(Part4_3Field, RingFollowsTheDurationRules) {
  SetField(*cfg_, velqua::emParamRingHoras, 1, 1);
  SetField(*cfg_, velqua::emParamRingMinutos, 3, 2);
  SetField(*cfg_, velqua::emParamRingSegundos, 6, 2);
  Write(u"1 00'12");
  EXPECT_EQ(tr_.Ring(), 3612);
  Write(u"  00'12");
  EXPECT_EQ(tr_.Ring(), 12);
  Write(u"  00'");
  EXPECT_EQ(tr_.Ring(), -1);
  Write(u"     12");
  EXPECT_EQ(tr_.Ring(), -1);
}

// ---- DuracionRestaFechas (cases 5 and 8) ----

class Part4_3DateSubtraction : public Part4_3Field {
 protected:
  Part4_3DateSubtraction() {
    using namespace velqua;
    cfg_->Caso(emCasoEstandarRestaFechasDuracion);
    const emParamDato keys[] = {
        emParamFechaDia,     emParamFechaMes,      emParamFechaAnio,       emParamFechaHoras,
        emParamFechaMinutos, emParamFechaSegundos, emParamDuracionDia,     emParamDuracionMes,
        emParamDuracionAnio, emParamDuracionHoras, emParamDuracionMinutos, emParamDuracionSegundos};
    const int cols[] = {1, 4, 7, 10, 13, 16, 19, 22, 25, 28, 31, 34};
    for (int i = 0; i < 12; ++i) SetField(*cfg_, keys[i], cols[i], 2);
    SetConstant(*cfg_, emDatoCteIdentSaliente, 43, u"O");
  }
  void Write(const std::string& start, const std::string& end, const std::string& am1 = "",
             const std::string& am2 = "") {
    tr_.LlamadaActual(Cols({{1, start}, {19, end}, {37, am1}, {40, am2}, {43, "O"}}));
  }
};

TEST_F(Part4_3DateSubtraction, DurationRunsAcrossMidnight) {
  Write("10/03/26 23:59:50", "11/03/26 00:00:10");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradSaliente);
  EXPECT_EQ(tr_.Duracion(), 20);
}

TEST_F(Part4_3DateSubtraction, Case8SubtractsDatesToo) {
  cfg_->Caso(velqua::emCasoEstandarRestaFechasDuracionConSalienteDefecto);
  Write("10/03/26 10:00:00", "10/03/26 10:01:05");
  EXPECT_EQ(tr_.Duracion(), 65);
}

TEST_F(Part4_3DateSubtraction, EndIsTakenInTheStartYearSoDecemberToJanuaryIsRejected) {
  TempDir dir;
  tr_.ArchivoLlamadasError(dir.Path16("log.txt"));
  Write("31/12/26 23:59:50", "01/01/27 00:00:10");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradNoIdentificada);
  EXPECT_EQ(tr_.Duracion(), -(364 * 86400 + 86380));
  EXPECT_EQ(ReadFile(dir.Path("log.txt")), LogEntry("31/12/26 23:59:50 01/01/27 00:00:10       O"));
}

TEST_F(Part4_3DateSubtraction, DayPastMonthEndCarriesIntoNextMonth) {
  Write("30/04/26 23:00:00", "31/04/26 00:00:00");  // 31 April is 1 May
  EXPECT_EQ(tr_.Duracion(), 3600);
}

TEST_F(Part4_3DateSubtraction, HoursOf24OrMoreCarryIntoNextDay) {
  Write("10/03/26 23:00:00", "10/03/26 25:00:00");
  EXPECT_EQ(tr_.Duracion(), 7200);
}

TEST_F(Part4_3DateSubtraction, EachEndUsesItsOwnMorningMark) {
  SetConstant(*cfg_, velqua::emDatoCteIdentificadorHorarioMatutinoFecha, 37, u"AM");
  SetConstant(*cfg_, velqua::emDatoCteIdentificadorHorarioMatutinoDuracion, 40, u"AM");
  Write("10/03/26 11:59:50", "10/03/26 12:00:10", "AM", "PM");
  EXPECT_EQ(tr_.Duracion(), 20);
  Write("10/03/26 12:30:00", "10/03/26 01:00:00", "AM", "PM");
  EXPECT_EQ(tr_.Duracion(), 45000);  // 00:30 to 13:00
}

TEST_F(Part4_3DateSubtraction, MissingDateFieldsComeFromTheClock) {
  Write("", "");
  EXPECT_EQ(tr_.Duracion(), 0);  // both ends are the current instant
}

// ---- Marcacion prefix, text properties ----

class Part4_3TextProperty : public Part4_3Field {
 protected:
  Part4_3TextProperty() {
    SetConstant(*cfg_, velqua::emDatoCteIdentEntrante, 1, u"I");
    SetConstant(*cfg_, velqua::emDatoCteIdentInterExtension, 1, u"X");
    SetField(*cfg_, velqua::emParamDuracionMinutos, 3, 1);
    SetField(*cfg_, velqua::emParamDuracionSegundos, 4, 1);
    SetText(*cfg_, velqua::emParamTelefonoEntrante, 6, 6);
    SetText(*cfg_, velqua::emParamExtensionEntrante, 13, 6);
    SetText(*cfg_, velqua::emParamTroncalEntrante, 20, 4);
  }
};

TEST_F(Part4_3TextProperty, PrefixIsRemovedAfterTrimmingLeavingTheBlank) {
  cfg_->CTEActivo(velqua::emDatoCteIdentInterExtensionEnTransferencia);
  cfg_->Constante(u"9");  // no position: still the prefix
  Write(u"I 00 9 555");
  EXPECT_EQ(tr_.Marcacion(), u" 555");
  SetField(*cfg_, velqua::emParamTelefonoEntrante, 6, 6);
  EXPECT_EQ(tr_.Marcacion(), u"555");
}

TEST_F(Part4_3TextProperty, PrefixIgnoresLetterCaseAndNeedsTheWholePrefix) {
  cfg_->CTEActivo(velqua::emDatoCteIdentInterExtensionEnTransferencia);
  cfg_->Constante(u"<i>");
  Write(u"I 00 <I>555");
  EXPECT_EQ(tr_.Marcacion(), u"555");
  Write(u"I 00 <I");
  EXPECT_EQ(tr_.Marcacion(), u"<I");
  Write(u"I 00 5<I>");
  EXPECT_EQ(tr_.Marcacion(), u"5<I>");
}

TEST_F(Part4_3TextProperty, ExtensionAndTroncalAreTrimmed) {
  Write(Cols({{1, "I 00"}, {6, "555"}, {13, "  201 "}, {20, " T1 "}}));
  EXPECT_EQ(tr_.Extension(), u"201");
  EXPECT_EQ(tr_.Troncal(), u"T1");
}

TEST_F(Part4_3TextProperty, AccountCodeMarkEmptiesCodeOfOtherTypes) {
  SetText(*cfg_, velqua::emParamCodigoCuenta, 6, 6);
  Write(u"I 00  1234 ");
  EXPECT_EQ(tr_.CodigoCuenta(), u"1234");
  cfg_->CTEActivo(velqua::emDatoCteIdentCodigoCuenta);
  cfg_->Constante(u"A");  // incomplete mark: its text alone counts
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
}

TEST_F(Part4_3TextProperty, TroncalReceptorOfIncomingCallNeedsNoConfiguration) {
  Write(u"I 00 555");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradEntrante);
  tr_.Conmutador(nullptr);
  EXPECT_EQ(tr_.TroncalReceptor(), u"");
  EXPECT_EQ(tr_.ExtensionReceptor(), u"");
  EXPECT_VELQUA_ERROR_NUMBER(tr_.Marcacion(), velqua::kErrObjetoNoEstablecido);
}

TEST_F(Part4_3TextProperty, ExtensionReceptorOfInterExtensionCallNeedsConfiguration) {
  SetText(*cfg_, velqua::emParamExtension2InterExtension, 6, 4);
  Write(u"X 00 202");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), velqua::emTradInterExtension);
  EXPECT_EQ(tr_.ExtensionReceptor(), u"202");
  tr_.Conmutador(nullptr);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.ExtensionReceptor(), velqua::kErrObjetoNoEstablecido);
}

}  // namespace
}  // namespace velqua_test
