// The constant test, call type and attribute detection by constant marks, the
// default outgoing call, and the letter-case folding every comparison uses.
#include <string>
#include <vector>

#include "platform/mayusculas.h"
#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

struct Mark {
  emParamDatoConstante key;
  int pos;  // 0: no position, an incomplete constant
  std::u16string text;
  int size = 0;  // 0: the text's length
};

// Duration minutes in columns 1-2 and seconds in 4-5; marks from column 7.
class CallTypeDetection : public BoundTranslator {
 protected:
  CallTypeDetection() {
    SetField(*cfg_, emParamDuracionMinutos, 1, 2);
    SetField(*cfg_, emParamDuracionSegundos, 4, 2);
  }
  void Define(const std::vector<Mark>& marks) {
    for (const Mark& m : marks) {
      cfg_->CTEActivo(m.key);
      cfg_->Constante(m.text);
      if (m.pos != 0) cfg_->CTEPos(static_cast<uint8_t>(m.pos));
      if (m.size != 0) cfg_->CTETam(static_cast<uint8_t>(m.size));
    }
  }
  // A fresh configuration with these marks, then the record.
  void Take(const std::vector<Mark>& marks, const std::u16string& line) {
    cfg_ = MakeConfig(emCasoEstandar, u"|");
    tr_.Conmutador(cfg_);
    SetField(*cfg_, emParamDuracionMinutos, 1, 2);
    SetField(*cfg_, emParamDuracionSegundos, 4, 2);
    Define(marks);
    tr_.LlamadaActual(line);
  }
};

TEST_F(CallTypeDetection, ConstantMatchesItsWholeWidthAtItsColumnIgnoringCase) {
  const std::u16string at250 = std::u16string(249, u' ') + u"abcde";
  const struct {
    Mark mark;
    std::u16string line;
    bool found;
  } rows[] = {
      {{emDatoCteIdentEntrante, 10, u"E"}, u"         e", true},
      {{emDatoCteIdentEntrante, 1, U("AÑO É")}, U("año é"), true},
      {{emDatoCteIdentEntrante, 10, u"E"}, u"        E", false},
      {{emDatoCteIdentEntrante, 40, u"E"}, u"E", false},
      {{emDatoCteIdentEntrante, 5, u"0X"}, u"12340", false},  // cut off by the line's end
      {{emDatoCteIdentEntrante, 5, u"0"}, u"12340", true},
      {{emDatoCteIdentEntrante, 1, u"AB "}, u"ABC", false},
      {{emDatoCteIdentEntrante, 1, u"AB "}, u"AB C", true},
      {{emDatoCteIdentEntrante, 1, u"AB", 3}, u"ABC", false},  // text and width differ
      {{emDatoCteIdentEntrante, 1, u"AB", 1}, u"ABC", false},
      {{emDatoCteIdentEntrante, 0, u"E"}, u"E", false},
      {{emDatoCteIdentEntrante, 250, u"ABCDE"}, at250, true},  // ends at column 255
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.mark.text) + " at " + std::to_string(row.mark.pos));
    Take({row.mark}, row.line);
    EXPECT_EQ(tr_.HayConstanteLlamada(emDatoCteIdentEntrante), row.found);
    EXPECT_EQ(cfg_->CTEActivo(), emDatoCteIdentEntrante);
    EXPECT_FALSE(tr_.HayConstanteLlamada(emDatoCteIdentSaliente));
  }
  Define({{emDatoCteIdentSaliente, 250, u"ABCDEF"}});  // ends at column 256
  EXPECT_OVERFLOW(tr_.HayConstanteLlamada(emDatoCteIdentSaliente));
  EXPECT_OVERFLOW(tr_.LlamadaActual(u"01:00 x"));
  tr_.Conmutador(nullptr);
  EXPECT_UNBOUND(tr_.HayConstanteLlamada(emDatoCteIdentEntrante));
}

TEST_F(CallTypeDetection, PlainAndOrMarksInRoleOrderThenTheAccountMark) {
  using M = std::vector<Mark>;
  const M plain = {{emDatoCteIdentEntrante, 7, u"I"},
                   {emDatoCteIdentSaliente, 7, u"O"},
                   {emDatoCteIdentInterExtension, 7, u"X"},
                   {emDatoCteIdentInterTroncal, 7, u"T"},
                   {emDatoCteIdentCodigoCuenta, 7, u"A"}};
  const M either = {{emDatoCteIdentEntranteOR, 8, u"i"},
                    {emDatoCteIdentSalienteOR, 8, u"o"},
                    {emDatoCteIdentInterExtensionOR, 8, u"x"},
                    {emDatoCteIdentInterTroncalOR, 8, u"t"}};
  const M both = {{emDatoCteIdentInterTroncal, 7, u"T"}, {emDatoCteIdentInterTroncalAND, 9, u"T"}};
  const M and_absent = {{emDatoCteIdentEntrante, 7, u"T"},
                        {emDatoCteIdentEntranteAND, 9, u"D"},
                        {emDatoCteIdentSaliente, 9, u"T"}};
  const M and_or = {{emDatoCteIdentEntrante, 7, u"I"},
                    {emDatoCteIdentEntranteAND, 8, u"&"},
                    {emDatoCteIdentEntranteOR, 9, u"|"}};
  const M order = {{emDatoCteIdentEntrante, 10, u"I"},
                   {emDatoCteIdentSaliente, 9, u"O"},
                   {emDatoCteIdentInterExtension, 8, u"X"},
                   {emDatoCteIdentInterTroncal, 7, u"T"}};
  const M account = {{emDatoCteIdentSaliente, 7, u"O"}, {emDatoCteIdentCodigoCuenta, 8, u"A"}};
  const struct {
    const M& marks;
    const char16_t* line;
    emTipoLlamadaTraductor type;
  } rows[] = {
      {plain, u"00:00 I", emTradEntrante},  // the only digits are 0, then 9
      {plain, u"99:99 O", emTradSaliente},
      {plain, u"01:00 X", emTradInterExtension},
      {plain, u"01:00 T", emTradInterTroncal},
      {plain, u"01:00 A", emTradCodigoCuenta},
      {plain, u"01:00 Z", emTradNoIdentificada},
      {plain, u"--:-- A", emTradNoIdentificada},  // a line without digits
      {either, u"01:00  I", emTradEntrante},
      {either, u"01:00  O", emTradSaliente},
      {either, u"01:00  X", emTradInterExtension},
      {either, u"01:00  T", emTradInterTroncal},
      {both, u"01:00 T T", emTradInterTroncal},
      {both, u"01:00 T D", emTradNoIdentificada},
      {and_absent, u"01:00 T T", emTradSaliente},
      {and_absent, u"01:00 T D", emTradEntrante},
      {and_or, u"01:00 I |", emTradNoIdentificada},  // the OR mark only stands in for the plain one
      {and_or, u"01:00   |", emTradEntrante},
      {order, u"01:00 TXOI", emTradEntrante},
      {order, u"01:00 TXO", emTradSaliente},
      {order, u"01:00 TX", emTradInterExtension},
      {account, u"01:00 OA", emTradCodigoCuenta},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.line));
    Take(row.marks, row.line);
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), row.type);
  }
}

// Number 7-9 (text), extension 11-12 and trunk 14-15 (numeric), account mark 17.
TEST_F(CallTypeDetection, DefaultOutgoingNeedsNumberExtensionAndTrunkInItsCases) {
  SetText(*cfg_, emParamTelefonoSaliente, 7, 3);
  SetField(*cfg_, emParamExtensionSaliente, 11, 2);
  SetField(*cfg_, emParamTroncalSaliente, 14, 2);
  SetConstant(*cfg_, emDatoCteIdentCodigoCuenta, 17, u"A");
  const struct {
    emCasos caso;
    const char16_t* line;
    emTipoLlamadaTraductor type;
  } rows[] = {
      {emCasoEstandarConSalienteDefecto, u"59:59 555 20 01", emTradSaliente},
      {emCasoEstandarRestaFechasDuracionConSalienteDefecto, u"59:59 555 20 01", emTradSaliente},
      {emCasoEstandarDecimasMinutoConSalienteDefecto, u"59:59 555 20 01", emTradSaliente},
      {emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto, u"59:59 555 20 01",
       emTradSaliente},
      {emCasoEstandar, u"59:59 555 20 01", emTradNoIdentificada},
      {emCasoEstandarDecimasMinuto, u"59:59 555 20 01", emTradNoIdentificada},
      {emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100, u"59:59 555 20 01",
       emTradNoIdentificada},
      {emCasoAD_TES, u"59:59 555 20 01", emTradNoIdentificada},
      {emCasoEstandarConSalienteDefecto, u"59:59 555 20   ", emTradNoIdentificada},
      {emCasoEstandarConSalienteDefecto, u"59:59 555    01", emTradNoIdentificada},
      {emCasoEstandarConSalienteDefecto, u"59:59     20 01", emTradSaliente},  // text of blanks
      {emCasoEstandarConSalienteDefecto, u"59:59 555 -- 01", emTradNoIdentificada},
      {emCasoEstandarConSalienteDefecto, u"59:59 555 20 01 A", emTradCodigoCuenta},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::Message() << "case " << row.caso << " " << AUtf8(row.line));
    cfg_->Caso(row.caso);
    tr_.LlamadaActual(row.line);
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), row.type);
  }
}

TEST_F(CallTypeDetection, AttributeMarksOfTheTypesOwnRowInOrder) {
  Define({{emDatoCteIdentEntrante, 7, u"I"},
          {emDatoCteIdentSaliente, 7, u"O"},
          {emDatoCteIdentInterExtension, 7, u"X"},
          {emDatoCteIdentInterTroncal, 7, u"T"},
          {emDatoCteIdentCodigoCuenta, 7, u"A"},
          {emDatoCteIdentEntranteInicioTransferida, 9, u"S"},
          {emDatoCteIdentEntranteFinTransferida, 10, u"E"},
          {emDatoCteIdentEntranteEnTransferencia, 11, u"T"},
          {emDatoCteIdentNoContestada, 12, u"N"},
          {emDatoCteIdentSalienteFinTransferida, 13, u"s"},
          {emDatoCteIdentInterExtensionEnTransferencia, 14, u"x"},
          {emDatoCteIdentInterTroncalInicioTransferida, 15, u"t"}});
  const struct {
    const char16_t* line;
    emAtributoTraductor attr;
  } rows[] = {
      {u"01:00 I SETN", emATRIniTR},         {u"01:00 I  ETN", emATRFinTR},
      {u"01:00 I   TN", emATREnTR},          {u"01:00 I    N", emATRNoContestada},
      {u"01:00 I", emATRNoAtributo},         {u"01:00 O     sxt", emATRFinTR},
      {u"01:00 X     sxt", emATREnTR},       {u"01:00 T     sxt", emATRIniTR},
      {u"01:00 O    N", emATRNoAtributo},  // unanswered: incoming calls only
      {u"01:00 A SETNsxt", emATRNoAtributo}, {u"01:00 Z SETNsxt", emATRNoAtributo},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.line));
    tr_.LlamadaActual(row.line);
    EXPECT_EQ(tr_.Atributo(), row.attr);
  }
}

TEST(LetterCase, FoldsLatinGreekAndCyrillicLetters) {
  const struct {
    const char* a;
    const char* b;
    bool equal;
  } rows[] = {
      {"incoming call", "INCOMING CALL", true},
      {"áéíóúñüç", "ÁÉÍÓÚÑÜÇ", true},
      {"ÿœšž", "ŸŒŠŽ", true},
      {"łńź", "ŁŃŹ", true},
      {"αβγ жя", "ΑΒΓ ЖЯ", true},
      {"a", "b", false},
      {"a", "á", false},
      {"ab", "ab ", false},
      {"÷", "×", false},
      {"@", "`", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.a) + " / " + row.b);
    EXPECT_EQ(plataforma::IgualesSinMayusculas(U(row.a), U(row.b)), row.equal);
  }
}

TEST(LetterCase, SearchFindsTheFirstOccurrenceFromAPlace) {
  constexpr size_t npos = std::u16string_view::npos;
  const struct {
    const char* text;
    const char* sought;
    size_t from;
    size_t found;
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
