// The constant test, call type detection by constant marks, and the default
// outgoing call. (Attributes: text_fields_test.cpp, with the keys they select.)
#include <initializer_list>
#include <string>
#include <utility>

#include "platform/mayusculas.h"
#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

// Defines each key's mark, one character of `marks`, from column `col` on.
void SetMarks(clsCfgConmut& cfg, int col, const std::string& marks,
              std::initializer_list<emParamDatoConstante> keys) {
  int i = 0;
  for (const emParamDatoConstante key : keys) {
    SetConstant(cfg, key, col + i, U(marks.substr(static_cast<size_t>(i), 1)));
    ++i;
  }
}

// Every record starts with its duration: minutes in columns 1-2, seconds 4-5.
class CallTypeDetection : public BoundTranslator {
 protected:
  CallTypeDetection() {
    SetField(*cfg_, emParamDuracionMinutos, 1, 2);
    SetField(*cfg_, emParamDuracionSegundos, 4, 2);
  }
};

TEST_F(CallTypeDetection, ConstantMatchesItsWholeWidthAtItsColumnIgnoringCase) {
  for (const auto& [mark, found] : ReadCases("translator/marks.txt")) {
    SCOPED_TRACE(mark);
    cfg_ = MakeConfig(emCasoEstandar);
    tr_.Conmutador(cfg_);
    SetConstant(*cfg_, emDatoCteIdentEntrante, std::stoi(mark), U(Quoted(mark)));
    const int size = std::stoi(mark.substr(mark.find(' ')));
    if (size != 0) cfg_->CTETam(static_cast<uint8_t>(size));
    tr_.LlamadaActual(U(Quoted(mark, 1)));
    EXPECT_EQ(tr_.HayConstanteLlamada(emDatoCteIdentEntrante), found == "1");
    EXPECT_EQ(cfg_->CTEActivo(), emDatoCteIdentEntrante);
    EXPECT_FALSE(tr_.HayConstanteLlamada(emDatoCteIdentSaliente));
  }
  SetConstant(*cfg_, emDatoCteIdentSaliente, 250, u"ABCDEF");  // ends at column 256
  EXPECT_OVERFLOW(tr_.HayConstanteLlamada(emDatoCteIdentSaliente));
  EXPECT_OVERFLOW(tr_.LlamadaActual(u"01:00 x"));
  tr_.Conmutador(nullptr);
  EXPECT_UNBOUND(tr_.HayConstanteLlamada(emDatoCteIdentEntrante));
}

TEST_F(CallTypeDetection, PlainAndOrMarksInRoleOrderThenTheAccountMark) {
  SetMarks(*cfg_, 7, "IOXTAioxt&&",
           {emDatoCteIdentEntrante, emDatoCteIdentSaliente, emDatoCteIdentInterExtension,
            emDatoCteIdentInterTroncal, emDatoCteIdentCodigoCuenta, emDatoCteIdentEntranteOR,
            emDatoCteIdentSalienteOR, emDatoCteIdentInterExtensionOR, emDatoCteIdentInterTroncalOR,
            emDatoCteIdentEntranteAND, emDatoCteIdentInterTroncalAND});
  for (const auto& [line, type] : ReadCases("translator/call_marks.txt")) {
    SCOPED_TRACE(line);
    tr_.LlamadaActual(U(Quoted(line)));
    EXPECT_EQ(std::to_string(tr_.TipoLlamadaDetectada()), type);
  }
}

// Number 7-9 (text), extension 11-12 and trunk 14-15 (numeric), account mark 17.
TEST_F(CallTypeDetection, DefaultOutgoingNeedsNumberExtensionAndTrunkInItsCases) {
  SetText(*cfg_, emParamTelefonoSaliente, 7, 3);
  SetField(*cfg_, emParamExtensionSaliente, 11, 2);
  SetField(*cfg_, emParamTroncalSaliente, 14, 2);
  SetConstant(*cfg_, emDatoCteIdentCodigoCuenta, 17, u"A");
  for (const emCasos caso :
       {emCasoEstandarConSalienteDefecto, emCasoEstandarRestaFechasDuracionConSalienteDefecto,
        emCasoEstandarDecimasMinutoConSalienteDefecto,
        emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto, emCasoEstandar,
        emCasoEstandarDecimasMinuto, emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100,
        emCasoAD_TES}) {
    SCOPED_TRACE(caso);
    cfg_->Caso(caso);
    tr_.LlamadaActual(u"59:59 555 20 01");
    const bool by_default = caso == 7 || caso == 8 || caso == 9 || caso == 11;
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), by_default ? emTradSaliente : emTradNoIdentificada);
  }
  cfg_->Caso(emCasoEstandarConSalienteDefecto);
  const struct {
    const char16_t* line;
    emTipoLlamadaTraductor type;
  } rows[] = {
      {u"59:59 555 20   ", emTradNoIdentificada}, {u"59:59 555    01", emTradNoIdentificada},
      {u"59:59     20 01", emTradSaliente},  // a text of blanks is there, a number is not
      {u"59:59 555 -- 01", emTradNoIdentificada}, {u"59:59 555 20 01 A", emTradCodigoCuenta},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.line));
    tr_.LlamadaActual(row.line);
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), row.type);
  }
}

// Every comparison of marks, keywords and codes ignores letter case.
TEST(LetterCase, SearchFindsTheFirstOccurrenceFromAPlace) {
  constexpr size_t npos = std::u16string_view::npos;
  const struct {
    const char* text;
    const char* sought;
    size_t from, found;
  } rows[] = {
      {"abcABC", "bc", 0, 1},   {"abcABC", "BC", 2, 4}, {"Año", "ÑO", 0, 1},
      {"abc", "abcd", 0, npos}, {"abc", "x", 0, npos},  {"abc", "", 3, 3},
      {"abc", "c", 4, npos},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " / " + row.sought);
    EXPECT_EQ(plataforma::BuscaSinMayusculas(U(row.text), U(row.sought), row.from), row.found);
  }
}

}  // namespace
}  // namespace velqua_test
