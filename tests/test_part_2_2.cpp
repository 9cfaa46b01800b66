// Part 2.2: the data-field and constant tables.
#include <gtest/gtest.h>

#include <string>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::RecordingListener;

class Part2_2 : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  void Field(emParamDato key, uint8_t pos, uint8_t size) {
    cfg.DATOActivo(key);
    cfg.DATOPos(pos);
    cfg.DATOTam(size);
  }
  void Const(emParamDatoConstante key, uint8_t pos, const std::u16string& text) {
    cfg.CTEActivo(key);
    cfg.Constante(text);
    cfg.CTEPos(pos);
  }
  clsCfgConmut cfg;
  RecordingListener listener;
};

TEST_F(Part2_2, NewObjectHasNoRecordForAnyKey) {
  for (int32_t k = -2; k <= 71; ++k) {
    cfg.DATOActivo(static_cast<emParamDato>(k));
    EXPECT_FALSE(cfg.HayDATO());
    EXPECT_EQ(cfg.DATOPos(), 0);
    EXPECT_EQ(cfg.DATOTam(), 0);
    EXPECT_EQ(cfg.TipoDatoDATO(), emValorNoDefinido);
  }
  for (int32_t k = -2; k <= 32; ++k) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(k));
    EXPECT_FALSE(cfg.HayCTE());
    EXPECT_EQ(cfg.CTEPos(), 0);
    EXPECT_EQ(cfg.CTETam(), 0);
    EXPECT_EQ(cfg.TipoDatoCTE(), emValorNoDefinido);
    EXPECT_EQ(cfg.Constante(), u"");
  }
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_2, PositionAloneIsIncompleteThenWidthCompletesTheField) {
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  EXPECT_FALSE(cfg.HayDATO());
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorNumerico);
  EXPECT_EQ(listener.Count("Cambios"), 1);
  cfg.DATOTam(2);
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(listener.Count("Cambios"), 2);
  EXPECT_EQ(listener.events.size(), 2u);
  EXPECT_TRUE(cfg.Modificado());
}

TEST_F(Part2_2, TypeWriteOfNumericOnANewKeyTakesARecordSilently) {
  cfg.DATOActivo(emParamExtension1InterExtension);
  cfg.TipoDatoDATO(emValorNumerico);
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorNumerico);
  cfg.TipoDatoDATO(emValorCadena);
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorCadena);
}

TEST_F(Part2_2, WritingTheSamePositionTwiceNotifiesOnce) {
  cfg.DATOActivo(emParamFechaMes);
  cfg.DATOPos(4);
  cfg.DATOPos(4);
  EXPECT_EQ(listener.Count("Cambios"), 1);
  cfg.DATOTam(2);
  cfg.DATOTam(2);
  EXPECT_EQ(listener.Count("Cambios"), 2);
}

TEST_F(Part2_2, MarkerKeysNeverReadBack) {
  for (emParamDato key : {emNoParamDato, emPrimerParamDato, emUltimoParamDato}) {
    cfg.DATOActivo(key);
    cfg.DATOPos(5);
    cfg.DATOTam(3);
    EXPECT_EQ(cfg.DATOPos(), 0) << key;
    EXPECT_EQ(cfg.DATOTam(), 0) << key;
    EXPECT_FALSE(cfg.HayDATO()) << key;
    EXPECT_EQ(cfg.TipoDatoDATO(), emValorNoDefinido) << key;
  }
}

TEST_F(Part2_2, InvalidKeyRecordsAreNotTakenOverByOtherKeys) {
  cfg.DATOActivo(static_cast<emParamDato>(-4));
  cfg.DATOPos(9);  // takes record 1, type numeric: not free
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  cfg.DATOTam(2);
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(cfg.DATOPos(), 1);  // a record of its own, not the former 9
}

TEST_F(Part2_2, FreeingACompleteFieldKeepsItsPositionAndWidth) {
  Field(emParamFechaHoras, 11, 2);
  ASSERT_TRUE(cfg.HayDATO());
  cfg.TipoDatoDATO(emValorNoDefinido);
  EXPECT_FALSE(cfg.HayDATO());
  EXPECT_EQ(cfg.DATOPos(), 11);
  EXPECT_EQ(cfg.DATOTam(), 2);
  cfg.TipoDatoDATO(emValorNumerico);
  EXPECT_TRUE(cfg.HayDATO());
}

TEST_F(Part2_2, AfterIniciarARecordIsFreeButKeepsItsValues) {
  Field(emParamFechaHoras, 11, 2);
  cfg.Iniciar();
  listener.events.clear();
  for (int32_t k = 2; k <= 68; ++k) {
    cfg.DATOActivo(static_cast<emParamDato>(k));
    EXPECT_FALSE(cfg.HayDATO());
  }
  cfg.DATOActivo(emParamFechaHoras);
  EXPECT_EQ(cfg.DATOPos(), 11);
  EXPECT_EQ(cfg.DATOTam(), 2);
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorNoDefinido);
  cfg.DATOPos(11);  // same position: stays free, nothing sent
  EXPECT_FALSE(cfg.HayDATO());
  EXPECT_TRUE(listener.events.empty());
  cfg.TipoDatoDATO(emValorNumerico);
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(cfg.DATOPos(), 11);
  EXPECT_EQ(cfg.DATOTam(), 2);
}

TEST_F(Part2_2, AfterIniciarANewKeyTakesTheFirstFreeRecord) {
  Field(emParamFechaDia, 1, 2);  // record 1
  Field(emParamFechaMes, 4, 2);  // record 2
  cfg.Iniciar();
  cfg.DATOActivo(emParamCodigoCuenta);
  cfg.TipoDatoDATO(emValorCadena);  // takes record 1
  EXPECT_EQ(cfg.DATOPos(), 1);      // former values of emParamFechaDia
  EXPECT_EQ(cfg.DATOTam(), 2);
  EXPECT_TRUE(cfg.HayDATO());
  cfg.DATOActivo(emParamFechaDia);  // no longer has a record
  EXPECT_EQ(cfg.DATOPos(), 0);
  EXPECT_EQ(cfg.DATOTam(), 0);
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorNoDefinido);
  cfg.DATOActivo(emParamFechaMes);  // record 2 untouched
  EXPECT_EQ(cfg.DATOPos(), 4);
}

TEST_F(Part2_2, TakenOverKeyGetsANewRecordOnItsNextWrite) {
  Field(emParamFechaDia, 1, 2);
  cfg.Iniciar();
  Field(emParamCodigoCuenta, 30, 5);  // takes record 1 over
  Field(emParamFechaDia, 7, 2);       // appended as record 2
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(cfg.DATOPos(), 7);
  cfg.DATOActivo(emParamCodigoCuenta);
  EXPECT_EQ(cfg.DATOPos(), 30);
  EXPECT_EQ(cfg.DATOTam(), 5);
}

TEST_F(Part2_2, ConstantTextAloneSetsWidthButStaysIncomplete) {
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"INCOMING CALL");
  EXPECT_EQ(cfg.CTETam(), 13);
  EXPECT_EQ(cfg.TipoDatoCTE(), emValorNoDefinido);
  EXPECT_FALSE(cfg.HayCTE());
  EXPECT_EQ(listener.Count("Cambios"), 1);
  cfg.CTEPos(1);
  EXPECT_EQ(cfg.TipoDatoCTE(), emValorConstante);
  EXPECT_TRUE(cfg.HayCTE());
  EXPECT_EQ(listener.Count("Cambios"), 2);
}

TEST_F(Part2_2, ConstantTextOf25CharactersIsCutTo20) {
  cfg.CTEActivo(emDatoCteIdentSaliente);
  cfg.Constante(u"ABCDEFGHIJKLMNOPQRSTUVWXY");
  EXPECT_EQ(cfg.Constante(), u"ABCDEFGHIJKLMNOPQRST");
  EXPECT_EQ(cfg.CTETam(), 20);
}

TEST_F(Part2_2, WidthWriteDoesNotAffectCompletenessAndTextWriteRestoresIt) {
  Const(emDatoCteIdentSaliente, 30, u"OUT");
  ASSERT_TRUE(cfg.HayCTE());
  cfg.CTETam(3);
  EXPECT_TRUE(cfg.HayCTE());
  cfg.CTETam(7);
  EXPECT_EQ(cfg.CTETam(), 7);
  EXPECT_TRUE(cfg.HayCTE());
  listener.events.clear();
  const bool before = cfg.Modificado();
  cfg.Constante(u"OUT");
  EXPECT_EQ(cfg.CTETam(), 3);
  EXPECT_TRUE(listener.events.empty());
  EXPECT_EQ(cfg.Modificado(), before);
}

TEST_F(Part2_2, EmptyTextMakesACompleteConstantIncomplete) {
  Const(emDatoCteIdentEntrante, 30, u"E");
  listener.events.clear();
  cfg.Constante(u"");
  EXPECT_EQ(cfg.CTETam(), 0);
  EXPECT_EQ(cfg.TipoDatoCTE(), emValorNoDefinido);
  EXPECT_FALSE(cfg.HayCTE());
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
}

TEST_F(Part2_2, PositionZeroMakesACompleteConstantIncompleteButKeepsItsText) {
  Const(emDatoCteIdentEntrante, 30, u"E");
  cfg.CTEPos(0);
  EXPECT_FALSE(cfg.HayCTE());
  EXPECT_EQ(cfg.CTEPos(), 0);
  EXPECT_EQ(cfg.Constante(), u"E");
}

TEST_F(Part2_2, AfterIniciarTheSamePositionRestoresAConstantSilently) {
  Const(emDatoCteIdentEntrante, 30, u"E");
  cfg.Iniciar();
  cfg.CTEActivo(emDatoCteIdentEntrante);
  EXPECT_FALSE(cfg.HayCTE());
  listener.events.clear();
  cfg.CTEPos(30);
  EXPECT_TRUE(cfg.HayCTE());
  EXPECT_EQ(cfg.Constante(), u"E");
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part2_2, InvalidConstantKeysNeverReadBack) {
  for (int32_t k : {0, 1, 30, 31, -1}) {
    Const(static_cast<emParamDatoConstante>(k), 5, u"X");
    EXPECT_FALSE(cfg.HayCTE());
    EXPECT_EQ(cfg.CTEPos(), 0);
    EXPECT_EQ(cfg.Constante(), u"");
  }
}

TEST_F(Part2_2, ConstantNotificationComesBeforeTheTypeIsDerived) {
  struct Peek : EventosCfgConmut {
    explicit Peek(clsCfgConmut* c) : cfg(c) {}
    void Cambios() override { seen.push_back(cfg->HayCTE()); }
    clsCfgConmut* cfg;
    std::vector<bool> seen;
  } peek(&cfg);
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"E");
  cfg.AgregaOyente(&peek);
  cfg.CTEPos(10);
  ASSERT_EQ(peek.seen.size(), 1u);
  EXPECT_FALSE(peek.seen[0]);  // still the type from before the write
  EXPECT_TRUE(cfg.HayCTE());
}

TEST_F(Part2_2, ReadingNeverChangesTheTablesOrTheFlag) {
  Field(emParamFechaDia, 1, 2);
  cfg.Modificado(false);
  listener.events.clear();
  for (int32_t k = 0; k < 70; ++k) {
    cfg.DATOActivo(static_cast<emParamDato>(k));
    (void)cfg.HayDATO();
    (void)cfg.DATOPos();
    (void)cfg.TipoDatoDATO();
  }
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  cfg.DATOActivo(emParamFechaDia);
  EXPECT_TRUE(cfg.HayDATO());
}

TEST_F(Part2_2, PositionsAndWidthsFrom0To255AreStored) {
  Field(emParamTelefonoSaliente, 255, 255);
  EXPECT_EQ(cfg.DATOPos(), 255);
  EXPECT_EQ(cfg.DATOTam(), 255);
  EXPECT_TRUE(cfg.HayDATO());
  cfg.TipoDatoDATO(static_cast<emTipoDato>(1234));
  EXPECT_EQ(cfg.TipoDatoDATO(), 1234);
  EXPECT_TRUE(cfg.HayDATO());
}

TEST(Part2_2Overflow, Taking32768thRecordFailsWithOverflowBeforeAnyChange) {
  clsCfgConmut cfg;
  for (int32_t k = 0; k < 32767; ++k) {
    cfg.DATOActivo(static_cast<emParamDato>(100 + k));  // invalid keys: never free
    cfg.DATOPos(1);
  }
  cfg.Modificado(false);
  RecordingListener listener;
  cfg.AgregaOyente(&listener);
  cfg.DATOActivo(emParamFechaDia);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.DATOPos(1), kErrDesbordamiento);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_EQ(cfg.DATOPos(), 0);
  // A key that has a record can still be written.
  cfg.DATOActivo(static_cast<emParamDato>(100));
  cfg.DATOPos(2);
  EXPECT_TRUE(cfg.Modificado());
  // After a reset every record is free again and can be taken over.
  cfg.Iniciar();
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  cfg.DATOTam(2);
  EXPECT_TRUE(cfg.HayDATO());
}

TEST(Part2_2Overflow, InvalidConstantKeysEndFreeSoTheyNeverFillTheTable) {
  clsCfgConmut cfg;
  for (int32_t k = 0; k < 40000; ++k) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(100 + k));
    cfg.CTEPos(1);  // invalid key: the derived type is emValorNoDefinido
  }
  // Every write above reused the one free record: no overflow.
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"E");
  cfg.CTEPos(3);
  EXPECT_TRUE(cfg.HayCTE());
}

}  // namespace
