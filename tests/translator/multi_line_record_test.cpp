// The Nortel Norstar multi-line record (case 4): the type from the order of its
// keyword lines, the attribute from its transfer lines, each field from its line.
#include <cstdio>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

const std::string kHeader = "-------- 11/17/26 10:20:30 LINE = 0003 STN = 7425";

class MultiLineRecord : public BoundTranslator {
 protected:
  // The bundled Norstar layout, its lines joined with "|" here.
  MultiLineRecord() : BoundTranslator(emCasoNortelNorstar0x32SMDR6) {
    cfg_->Abrir(ExampleFile("norstar/norstar.cfg"));
    cfg_->Separador(u"|");
  }
  void Write(const std::string& record) { tr_.LlamadaActual(U(record)); }
};

TEST_F(MultiLineRecord, KeywordLinesAfterTheHeaderGiveTypeAttributeAndDuration) {
  for (const auto& [record, read] : ReadCases("translator/norstar_keywords.txt")) {
    SCOPED_TRACE(record);
    std::remove(dir_.Path("log.txt").c_str());
    Write(record);
    EXPECT_EQ(Kind(tr_), read.substr(0, 3));
    const bool kept = read[0] != '0';
    if (kept) {
      EXPECT_EQ(std::to_string(tr_.Duracion()), read.substr(4));
    }
    EXPECT_EQ(Log(), kept ? "" : LogEntry(record));  // the whole buffer
    EXPECT_EQ(tr_.LlamadaActual(), U(record));
  }
}

TEST_F(MultiLineRecord, FieldsComeFromTheLinesOfTheirKeywords) {
  SetText(*cfg_, emParamExtensionSaliente, 1, 8);  // the incoming keys are read for any type
  SetText(*cfg_, emParamTroncalSaliente, 1, 8);
  SetField(*cfg_, emParamRingMinutos, 4, 2);
  SetField(*cfg_, emParamRingSegundos, 7, 2);
  Write(kHeader +
        "|00:00:00 OUTGOING CALL|00:00:02 DIGITS DIALED 95551212|"
        "00:00:05 RESTRICTION PASSWORD 4321|00:01:30 CALL RELEASED");
  EXPECT_TRUE(tr_.HayLlamada());  // the duration's search left CALL RELEASED
  EXPECT_EQ(tr_.Ring(), 90);      // the ring time reads the line the last search left
  EXPECT_EQ(tr_.Dia(), 17);
  EXPECT_EQ(tr_.Ring(), -1);  // the header's columns 4-5 and 7-8 hold no digits
  EXPECT_EQ(tr_.Mes(), 11);
  EXPECT_EQ(tr_.Anio(), 2026);
  EXPECT_EQ(tr_.Hora(), Hms(10, 20, 30));
  EXPECT_EQ(Summary(tr_), "2/0 95551212|7425|0003|||4321");
  cfg_->CTEActivo(emDatoCteIdentInterExtensionEnTransferencia);
  cfg_->Constante(u"9");
  EXPECT_EQ(tr_.Marcacion(), u"5551212");
  cfg_->DATOActivo(emParamTelefonoEntrante);
  cfg_->TipoDatoDATO(emValorNoDefinido);
  EXPECT_EQ(tr_.Marcacion(), u"");
  SetText(*cfg_, emParamTelefonoSaliente, 24, 5);  // the outgoing key stands in
  EXPECT_EQ(tr_.Marcacion(), u"5551");
}

TEST_F(MultiLineRecord, MissingLinesGiveTheClocksValuesAndEmptyTexts) {
  Write("00:00:00 OUTGOING CALL|00:01:30 CALL RELEASED");
  EXPECT_EQ(tr_.Dia(), 18);
  EXPECT_EQ(tr_.Hora(), Hms(9, 5, 3));
  EXPECT_EQ(Summary(tr_), "0/0 |||||");
  EXPECT_FALSE(tr_.HayLlamada());
}

}  // namespace
}  // namespace velqua_test
