// The data-field and constant tables behind the active key: which record a
// key writes to, when it is complete, what each write notifies.
#include <string>
#include <vector>

#include "support/velqua_test.h"

namespace {

using namespace velqua;
using Events = std::vector<std::string>;

class KeyTables : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  void Field(int32_t key, uint8_t pos, uint8_t size) {
    cfg.DATOActivo(static_cast<emParamDato>(key));
    cfg.DATOPos(pos);
    cfg.DATOTam(size);
  }
  void Const(int32_t key, uint8_t pos, const std::u16string& text) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(key));
    cfg.Constante(text);
    cfg.CTEPos(pos);
  }
  // Position, width, type and completeness of the active data field.
  std::vector<int> Dato(int32_t key) {
    cfg.DATOActivo(static_cast<emParamDato>(key));
    return {cfg.DATOPos(), cfg.DATOTam(), cfg.TipoDatoDATO(), cfg.HayDATO()};
  }
  std::vector<int> Cte(int32_t key) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(key));
    return {cfg.CTEPos(), cfg.CTETam(), cfg.TipoDatoCTE(), cfg.HayCTE()};
  }
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

const std::vector<int> kNone = {0, 0, emValorNoDefinido, false};

TEST_F(KeyTables, NoKeyHasARecordAtFirstAndInvalidKeysNeverReadBack) {
  for (int32_t k = -2; k <= 71; ++k) EXPECT_EQ(Dato(k), kNone) << k;
  for (int32_t k = -2; k <= 32; ++k) EXPECT_EQ(Cte(k), kNone) << k;
  EXPECT_EQ(cfg.Constante(), u"");
  EXPECT_TRUE(listener.events.empty());
  for (int32_t k : {-4, 0, 1, 69, 70}) {
    Field(k, 5, 3);
    EXPECT_EQ(Dato(k), kNone) << k;
  }
  for (int32_t k : {-1, 0, 1, 30, 31}) {
    Const(k, 5, u"X");
    EXPECT_EQ(Cte(k), kNone) << k;
    EXPECT_EQ(cfg.Constante(), u"");
  }
  // The records the invalid keys took are not free: a valid key gets its own.
  cfg.DATOActivo(emParamFechaDia);
  cfg.TipoDatoDATO(emValorCadena);
  EXPECT_EQ(Dato(emParamFechaDia), (std::vector<int>{0, 0, emValorCadena, false}));
}

TEST_F(KeyTables, PositionThenWidthCompleteAFieldEachChangeNotifyingOnce) {
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  cfg.DATOPos(1);
  EXPECT_EQ(Dato(emParamFechaDia), (std::vector<int>{1, 0, emValorNumerico, false}));
  EXPECT_TRUE(cfg.Modificado());
  cfg.DATOTam(2);
  cfg.DATOTam(2);
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(listener.events, (Events{"Cambios", "Cambios"}));
  Field(emParamTelefonoSaliente, 255, 255);
  cfg.TipoDatoDATO(static_cast<emTipoDato>(1234));
  EXPECT_EQ(Dato(emParamTelefonoSaliente), (std::vector<int>{255, 255, 1234, true}));
}

TEST_F(KeyTables, NumericTypeOnANewKeyTakesARecordSilently) {
  cfg.DATOActivo(emParamExtension1InterExtension);
  cfg.TipoDatoDATO(emValorNumerico);
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorNumerico);
  cfg.TipoDatoDATO(emValorCadena);
  EXPECT_EQ(listener.events, Events{"Cambios"});
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(cfg.TipoDatoDATO(), emValorCadena);
}

TEST_F(KeyTables, AFreedFieldKeepsItsValuesUntilAnotherKeyTakesItsRecord) {
  Field(emParamFechaHoras, 11, 2);
  cfg.TipoDatoDATO(emValorNoDefinido);
  EXPECT_EQ(Dato(emParamFechaHoras), (std::vector<int>{11, 2, emValorNoDefinido, false}));
  cfg.TipoDatoDATO(emValorNumerico);
  EXPECT_TRUE(cfg.HayDATO());
  Field(emParamFechaDia, 1, 2);  // record 2
  cfg.Iniciar();
  for (int32_t k = 2; k <= 68; ++k) EXPECT_FALSE(Dato(k)[3]) << k;
  listener.events.clear();
  cfg.DATOActivo(emParamFechaHoras);
  cfg.DATOPos(11);  // the same position: stays free, nothing sent
  EXPECT_EQ(Dato(emParamFechaHoras), (std::vector<int>{11, 2, emValorNoDefinido, false}));
  EXPECT_TRUE(listener.events.empty());
  cfg.DATOActivo(emParamCodigoCuenta);
  cfg.TipoDatoDATO(emValorCadena);  // takes the first free record, values and all
  EXPECT_EQ(Dato(emParamCodigoCuenta), (std::vector<int>{11, 2, emValorCadena, true}));
  EXPECT_EQ(Dato(emParamFechaHoras), kNone);
  EXPECT_EQ(Dato(emParamFechaDia), (std::vector<int>{1, 2, emValorNoDefinido, false}));
  Field(emParamFechaHoras, 7, 2);  // record 2 is free: taken over
  EXPECT_EQ(Dato(emParamFechaHoras), (std::vector<int>{7, 2, emValorNumerico, true}));
  EXPECT_EQ(Dato(emParamFechaDia), kNone);
  EXPECT_EQ(Dato(emParamCodigoCuenta), (std::vector<int>{11, 2, emValorCadena, true}));
  Field(emParamFechaDia, 4, 3);  // appended as record 3
  EXPECT_EQ(Dato(emParamFechaDia), (std::vector<int>{4, 3, emValorNumerico, true}));
}

TEST_F(KeyTables, ConstantTextSetsTheWidthAndAPositionCompletesIt) {
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"INCOMING CALL");
  EXPECT_EQ(Cte(emDatoCteIdentEntrante), (std::vector<int>{0, 13, emValorNoDefinido, false}));
  EXPECT_EQ(listener.events, Events{"Cambios"});
  cfg.CTEPos(1);
  EXPECT_EQ(Cte(emDatoCteIdentEntrante), (std::vector<int>{1, 13, emValorConstante, true}));
  EXPECT_EQ(listener.events.size(), 2u);
  Const(emDatoCteIdentSaliente, 30, u"ABCDEFGHIJKLMNOPQRSTUVWXY");
  EXPECT_EQ(cfg.Constante(), u"ABCDEFGHIJKLMNOPQRST");
  EXPECT_EQ(cfg.CTETam(), 20);
}

TEST_F(KeyTables, ConstantWidthIsFreeTextAndPositionDecideCompleteness) {
  Const(emDatoCteIdentSaliente, 30, u"OUT");
  cfg.CTETam(7);
  EXPECT_EQ(Cte(emDatoCteIdentSaliente), (std::vector<int>{30, 7, emValorConstante, true}));
  cfg.Modificado(false);
  listener.events.clear();
  cfg.Constante(u"OUT");  // the same text: width back to 3, silently
  EXPECT_EQ(cfg.CTETam(), 3);
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
  cfg.CTEPos(0);
  EXPECT_EQ(Cte(emDatoCteIdentSaliente), (std::vector<int>{0, 3, emValorNoDefinido, false}));
  EXPECT_EQ(cfg.Constante(), u"OUT");
  Const(emDatoCteIdentEntrante, 30, u"E");
  listener.events.clear();
  cfg.Constante(u"");
  EXPECT_EQ(Cte(emDatoCteIdentEntrante), (std::vector<int>{30, 0, emValorNoDefinido, false}));
  EXPECT_EQ(listener.events, Events{"Cambios"});
}

TEST_F(KeyTables, AfterIniciarTheSamePositionRestoresAConstantSilently) {
  Const(emDatoCteIdentEntrante, 30, u"E");
  cfg.Iniciar();
  EXPECT_FALSE(Cte(emDatoCteIdentEntrante)[3]);
  listener.events.clear();
  cfg.CTEPos(30);
  EXPECT_EQ(Cte(emDatoCteIdentEntrante), (std::vector<int>{30, 1, emValorConstante, true}));
  EXPECT_EQ(cfg.Constante(), u"E");
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(KeyTables, ConstantNotificationComesBeforeTheTypeIsDerived) {
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
  EXPECT_EQ(peek.seen, std::vector<bool>{false});
  EXPECT_TRUE(cfg.HayCTE());
}

TEST(KeyTableLimits, The32768thDataRecordOverflowsBeforeAnyChange) {
  clsCfgConmut cfg;
  for (int32_t k = 0; k < 32767; ++k) {
    cfg.DATOActivo(static_cast<emParamDato>(100 + k));  // invalid keys: never free
    cfg.DATOPos(1);
  }
  cfg.Modificado(false);
  velqua_test::RecordingListener listener;
  cfg.AgregaOyente(&listener);
  cfg.DATOActivo(emParamFechaDia);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.DATOPos(1), kErrDesbordamiento);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_EQ(cfg.DATOPos(), 0);
  cfg.DATOActivo(static_cast<emParamDato>(100));  // a key with a record still writes
  cfg.DATOPos(2);
  EXPECT_TRUE(cfg.Modificado());
  cfg.Iniciar();  // every record free again
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  cfg.DATOTam(2);
  EXPECT_TRUE(cfg.HayDATO());
}

TEST(KeyTableLimits, InvalidConstantKeysEndFreeSoTheyNeverFillTheTable) {
  clsCfgConmut cfg;
  for (int32_t k = 0; k < 40000; ++k) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(100 + k));
    cfg.CTEPos(1);
  }
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"E");
  cfg.CTEPos(3);
  EXPECT_TRUE(cfg.HayCTE());
}

}  // namespace
