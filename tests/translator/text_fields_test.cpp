// The text fields: which key each call type and attribute reads, how a field is
// cut from the record, the dialled number's prefix and the account code mark.
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

// Data key k lies at column 3k-2 as "Knn" (keys 2-16 numeric, so "K05" reads
// 5); constant c at column 205 + c holds "X" when present.
class FieldKeys : public BoundTranslator {
 protected:
  FieldKeys() {
    for (int k = 2; k <= 68; ++k) {
      SetField(*cfg_, static_cast<emParamDato>(k), 3 * k - 2, 3,
               k <= 16 ? emValorNumerico : emValorCadena);
    }
    for (int c : {4, 7, 10, 13, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29}) {
      SetConstant(*cfg_, static_cast<emParamDatoConstante>(c), 205 + c, u"X");
    }
  }
  void Write(const std::vector<int>& marks) {
    std::u16string line;
    for (int k = 1; k <= 68; ++k) line += U((k < 10 ? "K0" : "K") + std::to_string(k));
    line += std::u16string(30, u'.');
    for (int c : marks) line[static_cast<size_t>(204 + c)] = u'X';
    tr_.LlamadaActual(line);
  }
};

TEST_F(FieldKeys, EveryTypeAndAttributeReadsTheKeysOfItsRow) {
  for (const auto& [marks, fields] : ReadCases("translator/field_keys.txt")) {
    SCOPED_TRACE(marks + " -> " + fields);
    tr_.LlamadaActual(u"");
    std::istringstream in(marks);
    Write(std::vector<int>(std::istream_iterator<int>(in), {}));
    EXPECT_EQ(Summary(tr_), fields);
    EXPECT_EQ(tr_.Dia(), 2);
    EXPECT_EQ(tr_.Mes(), 3);
    EXPECT_EQ(tr_.Anio(), 2004);
    EXPECT_EQ(tr_.Hora(), Hms(5, 6, 7));
    EXPECT_EQ(tr_.Duracion(), Hms(11, 12, 13));
    EXPECT_EQ(tr_.Ring(), Hms(14, 15, 16));
  }
}

using TextFields = BoundTranslator;

TEST_F(TextFields, FieldIsCutAtItsColumnsANumericOneKeepsOnlyDigits) {
  for (const auto& [field, cut] : ReadCases("translator/field_cuts.txt")) {
    SCOPED_TRACE(field);
    std::istringstream in(field);
    int pos = 0, size = 0, type = 0;
    in >> pos >> size >> type;
    SetField(*cfg_, emParamCodigoCuenta, pos, size, static_cast<emTipoDato>(type));
    tr_.LlamadaActual(U(Quoted(field)));
    EXPECT_EQ(AUtf8(tr_.CodigoCuenta()), Quoted(cut));
  }
  SetText(*cfg_, emParamCodigoCuenta, 200, 56);
  EXPECT_OVERFLOW(tr_.CodigoCuenta());
}

// Incoming mark I or extension-to-extension mark X in column 1, duration
// 3 and 4, number 6-11, extension 13-18, trunk 20-23.
TEST_F(TextFields, DialledNumberLosesThePrefixAfterTrimming) {
  SetConstant(*cfg_, emDatoCteIdentEntrante, 1, u"I");
  SetConstant(*cfg_, emDatoCteIdentInterExtension, 1, u"X");
  SetField(*cfg_, emParamDuracionMinutos, 3, 1);
  SetField(*cfg_, emParamDuracionSegundos, 4, 1);
  SetText(*cfg_, emParamExtensionEntrante, 13, 6);
  SetText(*cfg_, emParamTroncalEntrante, 20, 4);
  for (const auto& [record, number] : ReadCases("translator/dialled.txt")) {
    SCOPED_TRACE(record);
    const int type = std::stoi(record.substr(record.find('"', 1) + 1));
    SetField(*cfg_, emParamTelefonoEntrante, 6, 6, static_cast<emTipoDato>(type));
    cfg_->CTEActivo(emDatoCteIdentInterExtensionEnTransferencia);
    cfg_->Constante(U(Quoted(record)));
    tr_.LlamadaActual(U(Quoted(record, 1)));
    ASSERT_EQ(tr_.TipoLlamadaDetectada(), emTradEntrante);
    EXPECT_EQ(AUtf8(tr_.Marcacion()), Quoted(number));
  }
  tr_.LlamadaActual(Cols({{1, "I 00"}, {13, "  201 "}, {20, " T1 "}}));
  EXPECT_EQ(tr_.Extension(), u"201");
  EXPECT_EQ(tr_.Troncal(), u"T1");

  SetText(*cfg_, emParamCodigoCuenta, 6, 6);
  tr_.LlamadaActual(u"I 00  1234 ");
  EXPECT_EQ(tr_.CodigoCuenta(), u"1234");
  cfg_->CTEActivo(emDatoCteIdentCodigoCuenta);
  cfg_->Constante(u"A");  // a switch with an account mark: codes of marked records only
  EXPECT_EQ(tr_.CodigoCuenta(), u"");

  tr_.Conmutador(nullptr);  // no key for an incoming call: no configuration read
  EXPECT_EQ(tr_.TroncalReceptor(), u"");
  EXPECT_EQ(tr_.ExtensionReceptor(), u"");
  EXPECT_UNBOUND(tr_.Marcacion());
  tr_.Conmutador(cfg_);
  SetText(*cfg_, emParamExtension2InterExtension, 6, 4);
  tr_.LlamadaActual(u"X 00 202");
  EXPECT_EQ(tr_.ExtensionReceptor(), u"202");
  tr_.Conmutador(nullptr);
  EXPECT_UNBOUND(tr_.ExtensionReceptor());
}

}  // namespace
}  // namespace velqua_test
