// The line search, and the results the translator keeps while nothing changed
// (the lines found in the buffer, the duration the intake computed): each is
// forgotten as soon as the buffer, the record or the configuration changes.
#include <functional>
#include <memory>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

constexpr int32_t kOverflow = -6;
constexpr int32_t kUnbound = -91;

using LineSearch = BoundTranslator;

TEST_F(LineSearch, FirstLineHoldingTheTextIgnoringCase) {
  for (const auto& [search, found] : ReadCases("translator/line_search.txt")) {
    SCOPED_TRACE(search);
    cfg_->Separador(U(Quoted(search)));
    tr_.LlamadaActual(u"previous line 1");
    tr_.BufferMultiplesLineas(U(Quoted(search, 1)));
    EXPECT_EQ(std::to_string(tr_.BuscaLinea(U(Quoted(search, 2)))),
              found.substr(0, found.find(' ')));
    EXPECT_EQ(AUtf8(tr_.LlamadaActual()), Quoted(found));
    EXPECT_EQ(tr_.HayLlamada(), found[0] != '0');
  }
  // Places are 16-bit: a scan reaching past 32767 overflows.
  cfg_->Separador(u"|");
  const std::u16string a32764(32764, u'a');
  tr_.BufferMultiplesLineas(a32764 + u"X");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 32767);
  tr_.BufferMultiplesLineas(a32764 + u"XY");
  EXPECT_OVERFLOW(tr_.BuscaLinea(u"x"));
  tr_.BufferMultiplesLineas(u"first line|" + std::u16string(40000, u'a'));
  EXPECT_EQ(tr_.BuscaLinea(u"first"), 12);
  EXPECT_OVERFLOW(tr_.BuscaLinea(u"zzz"));
}

using KeptResults = BoundTranslator;

// Searches in order, each after a change (or none) to what the lines depend on.
TEST_F(KeptResults, LinesFoundAreForgottenWithTheBufferSeparatorOrConfiguration) {
  const auto other = MakeConfig(emCasoEstandar, u"1|");
  const auto none = [] {};
  const auto sep = [&](const char16_t* s) { return [this, s] { cfg_->Separador(s); }; };
  const auto buffer = [&](std::u16string b) { return [this, b] { tr_.BufferMultiplesLineas(b); }; };
  const struct {
    std::function<void()> change;
    const char16_t* text;
    int32_t place;
    const char16_t* line;
  } steps[] = {
      {none, u"x", 13, u"uno x"},
      {none, u"tres", 24, u"tres"},
      {none, u"x", 13, u"uno x"},
      {none, u"none", 0, u""},
      {none, u"DOS", 19, u"dos x"},
      {sep(u" x|"), u"uno", 13, u"hdr 1|uno"},
      {sep(u""), u"uno", 23, u"hdr 1|uno x|dos x|tres"},
      {sep(u"|"), u"hdr", 7, u"hdr 1"},
      {buffer(u"x|y"), u"x", 3, u"x"},
      {[&] {  // a multi-line record replaces the buffer
         cfg_->Caso(emCasoNortelNorstar0x32SMDR6);
         tr_.LlamadaActual(u"a|b|c x");
         cfg_->Caso(emCasoEstandar);
       },
       u"x", 9, u"c x"},
      {[&] { tr_.Conmutador(other); }, u"x", 10, u"a|b|c x"},
      {[&] {
         tr_.Conmutador(cfg_);
         tr_.BufferMultiplesLineas(u"a|b|" + std::u16string(40000, u'c') + u"|d");
       },
       u"b", 5, u"b"},
      {none, u"d", kOverflow, u""},  // a line whose cut fails is cut again
      {none, u"a", 3, u"a"},
      {none, u"none", kOverflow, u""},
      {buffer(std::u16string(40000, u'a') + u"|b"), u"b", kOverflow, u""},
      {[&] { tr_.Conmutador(nullptr); }, u"dos", 0, u""},
  };
  tr_.BufferMultiplesLineas(u"hdr 1|uno x|dos x|tres");
  for (const auto& step : steps) {
    SCOPED_TRACE(AUtf8(step.text) + " -> " + std::to_string(step.place));
    step.change();
    if (step.place == kOverflow) {
      EXPECT_OVERFLOW(tr_.BuscaLinea(step.text));
      continue;
    }
    EXPECT_EQ(tr_.BuscaLinea(step.text), step.place);
    EXPECT_EQ(tr_.HayLlamada(), step.place != 0);
    if (step.place != 0) {
      EXPECT_EQ(tr_.LlamadaActual(), step.line);
    }
  }
}

// Duration hours, minutes and seconds at columns 1, 4 and 7 of "01:02:03 1234";
// the start time 12:34 at 10 and 12 for the subtraction case.
std::shared_ptr<clsCfgConmut> DurationConfig(emParamDato moved = emNoParamDato, int pos = 0) {
  auto cfg = MakeConfig(emCasoEstandar, u"\r\n");
  cfg->Marca(u"Prueba");
  cfg->Modelo(u"Duracion");
  SetField(*cfg, emParamDuracionHoras, 1, 2);
  SetField(*cfg, emParamDuracionMinutos, 4, 2);
  SetField(*cfg, emParamDuracionSegundos, 7, 2);
  SetField(*cfg, emParamFechaHoras, 10, 2);
  SetField(*cfg, emParamFechaMinutos, 12, 2);
  if (moved != emNoParamDato) SetField(*cfg, moved, pos, 2);
  return cfg;
}

// Reads in order on one translator, each after a change (or none) of the
// record or the configuration, by every path a host has.
TEST_F(KeptResults, DurationIsReadAfreshAfterEveryChangeOfRecordOrConfiguration) {
  cfg_ = DurationConfig();
  tr_.Conmutador(cfg_);
  tr_.LlamadaActual(u"01:02:03 1234");
  clsCfgConmut& c = *cfg_;
  const auto none = [] {};
  const auto field = [&](emParamDato key, int pos, int size, emTipoDato type = emValorNumerico) {
    return [&c, key, pos, size, type] { SetField(c, key, pos, size, type); };
  };
  const auto caso = [&](emCasos k) { return [&c, k] { c.Caso(k); }; };
  const auto bind = [&](std::shared_ptr<clsCfgConmut> k) {
    return [this, k] { tr_.Conmutador(k); };
  };
  const auto file = [&](bool profile, emParamDato moved, int pos) {  // opened or imported
    return [&c, path = dir_.Path16("saved"), profile, moved, pos] {
      auto saved = DurationConfig(moved, pos);
      profile ? saved->Exportar(path) : saved->GuardarComo(path);
      profile ? c.Importar(path) : c.Abrir(path);
    };
  };
  const emParamDato H = emParamDuracionHoras, M = emParamDuracionMinutos,
                    S = emParamDuracionSegundos;
  const struct {
    std::function<void()> change;
    int32_t expected;
  } steps[] = {
      {none, Hms(1, 2, 3)},
      {none, Hms(1, 2, 3)},
      {[&] { c.DATOActivo(S), c.DATOPos(10); }, Hms(1, 2, 12)},  // "12" of "1234"
      {[&] { c.DATOPos(7); }, Hms(1, 2, 3)},
      {[&] { c.DATOActivo(M), c.DATOPos(10), c.DATOTam(4); }, Hms(1, 1234, 3)},
      {field(M, 4, 2), Hms(1, 2, 3)},
      {[&] { c.DATOActivo(H), c.TipoDatoDATO(emValorNoDefinido); }, Hms(0, 2, 3)},
      {field(H, 1, 2), Hms(1, 2, 3)},
      {field(S, 6, 3, emValorCadena), -1},
      {field(S, 7, 2), Hms(1, 2, 3)},
      {caso(emCasoEstandarDecimasMinuto), Hms(1, 2, 18)},
      {caso(emCasoEstandar), Hms(1, 2, 3)},
      {caso(emCasoEstandarRestaFechasDuracion), Hms(1, 2, 3) - Hms(12, 34, 3)},
      {caso(emCasoEstandar), Hms(1, 2, 3)},
      {bind(DurationConfig(H, 12)), Hms(34, 2, 3)},
      {bind(cfg_), Hms(1, 2, 3)},
      {file(false, M, 10), Hms(1, 12, 3)},
      {file(true, S, 12), Hms(1, 2, 34)},
      {field(S, 7, 2), Hms(1, 2, 3)},
      {[&] { tr_.LlamadaActual(u"00:00:07"); }, 7},
      {[&] {
         SetConstant(c, emDatoCteIdentEntrante, 250, u"XXXXXXXXXX");  // ends at column 259
         EXPECT_OVERFLOW(tr_.LlamadaActual(u"01:02:03"));
         c.CTEPos(20);
       },
       Hms(1, 2, 3)},
      {field(S, 250, 10), kOverflow},
      {none, kOverflow},
      {field(S, 7, 2), Hms(1, 2, 3)},
      {bind(nullptr), kUnbound},
      {bind(cfg_), Hms(1, 2, 3)},
      {[&] { c.Iniciar(); }, -1},
  };
  c.DATOActivo(emParamTelefonoSaliente);
  EXPECT_EQ(tr_.Duracion(), Hms(1, 2, 3));
  EXPECT_EQ(c.DATOActivo(), emParamDuracionSegundos);  // as the three cuts leave it
  for (const auto& step : steps) {
    SCOPED_TRACE(::testing::Message() << "step " << (&step - steps));
    step.change();
    if (step.expected == kOverflow) {
      EXPECT_OVERFLOW(tr_.Duracion());
    } else if (step.expected == kUnbound) {
      EXPECT_UNBOUND(tr_.Duracion());
    } else {
      EXPECT_EQ(tr_.Duracion(), step.expected);
    }
  }
}

}  // namespace
}  // namespace velqua_test
