// The data-field and constant tables behind the active key: which record a
// key writes to, when it is complete, what each write notifies.
#include <sstream>
#include <string>
#include <vector>

#include "support/velqua_test.h"

namespace {

using namespace velqua;

// One write to the table (or 'I' for Iniciar, 'R' to read only), then the
// active record as "position,width,type[,text]" ("?" when incomplete), the
// Cambios sent by the write and the change flag.
struct Step {
  char op;
  int32_t key, value;
  std::u16string text;
  std::string record;
  int sent;
  bool modified;
};

// The steps of a data file: "< op key value [text]", then "> sent M|- record".
std::vector<Step> Load(const std::string& name) {
  std::vector<Step> steps;
  for (const auto& [write, read] : velqua_test::ReadCases(name)) {
    std::istringstream in(write);
    Step s{};
    in >> s.op >> s.key >> s.value;
    std::string text;
    if (in.get() == ' ') std::getline(in, text);
    s.text = velqua_test::U(text);
    s.sent = read[0] - '0';
    s.modified = read[2] == 'M';
    s.record = read.substr(4);
    steps.push_back(s);
  }
  return steps;
}

class KeyTables : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  std::string Dato(int32_t key) {
    cfg.DATOActivo(static_cast<emParamDato>(key));
    return std::to_string(cfg.DATOPos()) + "," + std::to_string(cfg.DATOTam()) + "," +
           std::to_string(cfg.TipoDatoDATO()) + (cfg.HayDATO() ? "" : "?");
  }
  std::string Cte(int32_t key) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(key));
    return std::to_string(cfg.CTEPos()) + "," + std::to_string(cfg.CTETam()) + "," +
           std::to_string(cfg.TipoDatoCTE()) + "," + AUtf8(cfg.Constante()) +
           (cfg.HayCTE() ? "" : "?");
  }
  void Run(const std::vector<Step>& steps, bool constants) {
    for (const Step& s : steps) {
      SCOPED_TRACE(std::string(1, s.op) + " " + std::to_string(s.key) + " " + s.record);
      cfg.DATOActivo(static_cast<emParamDato>(s.key));
      cfg.CTEActivo(static_cast<emParamDatoConstante>(s.key));
      const auto v = static_cast<uint8_t>(s.value);
      if (s.op == 'P') constants ? cfg.CTEPos(v) : cfg.DATOPos(v);
      if (s.op == 'W') constants ? cfg.CTETam(v) : cfg.DATOTam(v);
      if (s.op == 'Y') cfg.TipoDatoDATO(static_cast<emTipoDato>(s.value));
      if (s.op == 'X') cfg.Constante(s.text);
      if (s.op == 'I') cfg.Iniciar();
      EXPECT_EQ(constants ? Cte(s.key) : Dato(s.key), s.record);
      EXPECT_EQ(listener.Count("Cambios"), s.sent);
      EXPECT_EQ(cfg.Modificado(), s.modified);
      listener.events.clear();
    }
  }
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

TEST_F(KeyTables, NoKeyHasARecordAtFirstAndInvalidKeysNeverReadBack) {
  for (int32_t k = -2; k <= 71; ++k) EXPECT_EQ(Dato(k), "0,0,0?") << k;
  for (int32_t k = -2; k <= 32; ++k) EXPECT_EQ(Cte(k), "0,0,0,?") << k;
  EXPECT_TRUE(listener.events.empty());
  for (int32_t k : {-4, 0, 1, 69, 70}) {
    Run({{'P', k, 5, u"", "0,0,0?", 1, true}, {'W', k, 3, u"", "0,0,0?", 1, true}}, false);
  }
  for (int32_t k : {-1, 0, 1, 30, 31}) {  // all reuse the first one's free record
    const int sent = k == -1 ? 1 : 0;
    Run({{'X', k, 0, u"X", "0,0,0,?", sent, true}, {'P', k, 5, u"", "0,0,0,?", sent, true}}, true);
  }
  // The records of invalid data-field keys are not free: a valid key gets its own.
  Run({{'Y', emParamFechaDia, emValorCadena, u"", "0,0,3?", 1, true}}, false);
}

TEST_F(KeyTables, FieldRecordsAreTakenFreedAndTakenOver) {
  Run(Load("model/field_records.txt"), false);
}

TEST_F(KeyTables, ConstantTextSetsTheWidthAndTextAndPositionDecideCompleteness) {
  Run(Load("model/constant_records.txt"), true);
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

// The listing gives exactly the records the active-key protocol calls
// complete, in key order whatever order they were taken in, and leaves the
// active keys and the listeners alone.
TEST_F(KeyTables, ListingGivesTheCompleteRecordsInKeyOrder) {
  const auto dato = [&](emParamDato key, int pos, int size) {
    cfg.DATOActivo(key);
    cfg.DATOPos(static_cast<uint8_t>(pos));
    cfg.DATOTam(static_cast<uint8_t>(size));
  };
  dato(emParamTelefonoSaliente, 20, 10);
  dato(emParamDuracionMinutos, 5, 2);
  dato(emParamFechaDia, 1, 0);  // no width: incomplete
  dato(emParamFechaMes, 3, 2);
  cfg.TipoDatoDATO(emValorNoDefinido);  // freed
  cfg.CTEActivo(emDatoCteIdentSaliente);
  cfg.CTEPos(9);
  cfg.Constante(std::u16string(u"O\0K", 3));
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"I");  // no position: incomplete
  cfg.DATOActivo(emParamFechaAnio);
  const size_t sent = listener.events.size();

  std::string listed;
  for (const CampoDATO& f : cfg.ListaDATO()) {
    listed += std::to_string(f.emParam) + ":" + std::to_string(f.btPos) + "," +
              std::to_string(f.btTam) + "," + std::to_string(f.emTipo) + " ";
  }
  for (const CampoCTE& c : cfg.ListaCTE()) {
    listed += std::to_string(c.emParam) + ":" + std::to_string(c.btPos) + "," +
              std::to_string(c.btTam) + "," + AUtf8(c.cadTexto) + " ";
  }
  EXPECT_EQ(listed, std::to_string(emParamDuracionMinutos) + ":5,2,1 " +
                        std::to_string(emParamTelefonoSaliente) + ":20,10,1 " +
                        std::to_string(emDatoCteIdentSaliente) + ":9,2,OK ");
  EXPECT_EQ(cfg.DATOActivo(), emParamFechaAnio);
  EXPECT_EQ(cfg.CTEActivo(), emDatoCteIdentEntrante);
  EXPECT_EQ(listener.events.size(), sent);
}

}  // namespace
