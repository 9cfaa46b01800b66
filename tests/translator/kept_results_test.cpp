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

// The place returned is just past the found line's separator.
TEST_F(LineSearch, FirstLineHoldingTheTextIgnoringCase) {
  const struct {
    const char16_t* sep;
    const char16_t* buffer;
    const char16_t* text;
    int16_t place;
    const char16_t* line;
  } rows[] = {
      {u"|", u"A|B X|C", u"x", 7, u"B X"},
      {u"|", u"A|B|CX", u"cx", 8, u"CX"},  // the last line: length + 1 + separator
      {u"|", u"uno|dos 1|dos 2|", u"DOS", 11, u"dos 1"},
      {u"|", u"A|B|C", u"Z", 0, u""},
      {u"|", u"", u"x", 0, u""},
      {u"\r\n", u"A\r\n\r\nBQ\r\n", u"q", 10, u"BQ"},
      {u"", u"A|B X|C", u"x", 8, u"A|B X|C"},  // no separator: one line
      {u"", u"A|B X|C", u"z", 0, u""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.buffer) + " / " + AUtf8(row.text));
    cfg_->Separador(row.sep);
    tr_.LlamadaActual(u"previous line 1");
    tr_.BufferMultiplesLineas(row.buffer);
    EXPECT_EQ(tr_.BuscaLinea(row.text), row.place);
    EXPECT_EQ(tr_.LlamadaActual(), row.line);
    EXPECT_EQ(tr_.HayLlamada(), row.place != 0);
  }
  // Places are 16-bit: a scan reaching past 32767 overflows.
  cfg_->Separador(u"|");
  std::u16string buffer(32764, u'a');
  tr_.BufferMultiplesLineas(buffer + u"X");
  EXPECT_EQ(tr_.BuscaLinea(u"x"), 32767);
  tr_.BufferMultiplesLineas(buffer + u"XY");
  EXPECT_OVERFLOW(tr_.BuscaLinea(u"x"));
  tr_.BufferMultiplesLineas(u"first line|" + std::u16string(40000, u'a'));
  EXPECT_EQ(tr_.BuscaLinea(u"first"), 12);
  EXPECT_OVERFLOW(tr_.BuscaLinea(u"zzz"));
}

using KeptResults = BoundTranslator;

TEST_F(KeptResults, LinesFoundAreForgottenWithTheBufferSeparatorOrConfiguration) {
  const std::shared_ptr<clsCfgConmut> other = MakeConfig(emCasoEstandar, u"1|");
  const auto nothing = [] {};
  const auto sep = [&](const char16_t* s) { return [this, s] { cfg_->Separador(s); }; };
  const auto buffer = [&](std::u16string b) { return [this, b] { tr_.BufferMultiplesLineas(b); }; };
  const std::u16string c40000(40000, u'c');
  const struct {
    std::function<void()> change;
    const char16_t* text;
    int32_t place;
    const char16_t* line;
  } steps[] = {
      {nothing, u"x", 13, u"uno x"},
      {nothing, u"tres", 24, u"tres"},
      {nothing, u"x", 13, u"uno x"},
      {nothing, u"none", 0, u""},
      {nothing, u"none", 0, u""},
      {nothing, u"tres", 24, u"tres"},
      {nothing, u"DOS", 19, u"dos x"},
      {nothing, u"dos", 19, u"dos x"},
      {nothing, u"Dos X", 19, u"dos x"},
      {sep(u" x|"), u"uno", 13, u"hdr 1|uno"},
      {nothing, u"hdr", 13, u"hdr 1|uno"},
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
         tr_.BufferMultiplesLineas(u"a|b|" + c40000 + u"|d");
       },
       u"b", 5, u"b"},
      {nothing, u"d", kOverflow, u""},  // a line whose cut fails is cut again
      {nothing, u"a", 3, u"a"},
      {nothing, u"none", kOverflow, u""},
      {nothing, u"B", 5, u"b"},
      {buffer(std::u16string(40000, u'a') + u"|b"), u"b", kOverflow, u""},
      {nothing, u"b", kOverflow, u""},
      {[&] { tr_.Conmutador(nullptr); }, u"dos", 0, u""},
  };
  cfg_->Separador(u"|");
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

// Duration hours, minutes and seconds at columns 1, 4 and 7.
void PlaceDuration(clsCfgConmut& cfg) {
  SetField(cfg, emParamDuracionHoras, 1, 2);
  SetField(cfg, emParamDuracionMinutos, 4, 2);
  SetField(cfg, emParamDuracionSegundos, 7, 2);
}

// A configuration complete enough to be saved, with one duration column moved.
std::shared_ptr<clsCfgConmut> Saved(emParamDato key, int pos) {
  auto cfg = MakeConfig(emCasoEstandar, u"\r\n");
  cfg->Marca(u"Prueba");
  cfg->Modelo(u"Duracion");
  PlaceDuration(*cfg);
  cfg->DATOActivo(key);
  cfg->DATOPos(static_cast<uint8_t>(pos));
  return cfg;
}

TEST_F(KeptResults, DurationIsReadAfreshAfterEveryChangeOfRecordOrConfiguration) {
  using Change = std::function<void(clsCfgConmut&, clsTraductor&)>;
  const auto move = [](emParamDato key, int pos, int size) {
    return [=](clsCfgConmut& c, clsTraductor&) {
      c.DATOActivo(key);
      c.DATOPos(static_cast<uint8_t>(pos));
      c.DATOTam(static_cast<uint8_t>(size));
    };
  };
  const struct {
    const char* what;
    Change change;
    int32_t expected;
  } rows[] = {
      {"nothing", [](clsCfgConmut&, clsTraductor&) {}, Hms(1, 2, 3)},
      {"seconds moved", move(emParamDuracionSegundos, 10, 2), Hms(1, 2, 12)},  // "12" of 1234
      {"minutes widened", move(emParamDuracionMinutos, 10, 4), Hms(1, 1234, 3)},
      {"hours unset",
       [](clsCfgConmut& c, clsTraductor&) {
         c.DATOActivo(emParamDuracionHoras);
         c.TipoDatoDATO(emValorNoDefinido);
       },
       Hms(0, 2, 3)},
      {"hours unset, read, set again",
       [](clsCfgConmut& c, clsTraductor& t) {
         c.DATOActivo(emParamDuracionHoras);
         c.TipoDatoDATO(emValorNoDefinido);
         EXPECT_EQ(t.Duracion(), Hms(0, 2, 3));
         SetField(c, emParamDuracionHoras, 1, 2);
       },
       Hms(1, 2, 3)},
      {"seconds made text",
       [](clsCfgConmut& c, clsTraductor& t) {
         SetField(c, emParamDuracionSegundos, 6, 3);  // ":03"
         EXPECT_EQ(t.Duracion(), Hms(1, 2, 3));
         c.TipoDatoDATO(emValorCadena);
       },
       -1},
      {"tenths case", [](clsCfgConmut& c, clsTraductor&) { c.Caso(emCasoEstandarDecimasMinuto); },
       Hms(1, 2, 18)},
      {"subtraction case",  // the end 01:02:03 minus the start 12:34 and the clock's 03
       [](clsCfgConmut& c, clsTraductor&) {
         SetField(c, emParamFechaHoras, 10, 2);
         SetField(c, emParamFechaMinutos, 12, 2);
         c.Caso(emCasoEstandarRestaFechasDuracion);
       },
       Hms(1, 2, 3) - Hms(12, 34, 3)},
      {"reset", [](clsCfgConmut& c, clsTraductor&) { c.Iniciar(); }, -1},
      {"another configuration",
       [](clsCfgConmut&, clsTraductor& t) { t.Conmutador(Saved(emParamDuracionHoras, 12)); },
       Hms(34, 2, 3)},
      {"opened file",
       [&](clsCfgConmut& c, clsTraductor&) {
         Saved(emParamDuracionMinutos, 10)->GuardarComo(dir_.Path16("otra.cfg"));
         c.Abrir(dir_.Path16("otra.cfg"));
       },
       Hms(1, 12, 3)},
      {"imported profile",
       [&](clsCfgConmut& c, clsTraductor&) {
         Saved(emParamDuracionSegundos, 12)->Exportar(dir_.Path16("otra.ini"));
         c.Importar(dir_.Path16("otra.ini"));
       },
       Hms(1, 2, 34)},
      {"new record", [](clsCfgConmut&, clsTraductor& t) { t.LlamadaActual(u"00:00:07"); }, 7},
      {"new record whose intake failed",
       [](clsCfgConmut& c, clsTraductor& t) {
         SetConstant(c, emDatoCteIdentEntrante, 250, u"XXXXXXXXXX");  // ends at column 259
         EXPECT_OVERFLOW(t.LlamadaActual(u"00:00:07"));
         c.CTEPos(20);
       },
       7},
      {"unbound", [](clsCfgConmut&, clsTraductor& t) { t.Conmutador(nullptr); }, kUnbound},
      {"overflowing seconds", move(emParamDuracionSegundos, 250, 10), kOverflow},
      {"overflowing seconds, read, put back",
       [](clsCfgConmut& c, clsTraductor& t) {
         SetField(c, emParamDuracionSegundos, 250, 10);
         EXPECT_OVERFLOW(t.Duracion());
         SetField(c, emParamDuracionSegundos, 7, 2);
       },
       Hms(1, 2, 3)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    auto cfg = MakeConfig(emCasoEstandar);
    PlaceDuration(*cfg);
    clsTraductor tr;
    tr.Conmutador(cfg);
    tr.LlamadaActual(u"01:02:03 1234");
    cfg->DATOActivo(emParamTelefonoSaliente);
    EXPECT_EQ(tr.Duracion(), Hms(1, 2, 3));
    EXPECT_EQ(cfg->DATOActivo(), emParamDuracionSegundos);  // as the three cuts leave it
    row.change(*cfg, tr);
    if (row.expected == kOverflow) {
      EXPECT_OVERFLOW(tr.Duracion());
      EXPECT_OVERFLOW(tr.Duracion());
    } else if (row.expected == kUnbound) {
      EXPECT_UNBOUND(tr.Duracion());
    } else {
      EXPECT_EQ(tr.Duracion(), row.expected);
    }
  }
}

}  // namespace
}  // namespace velqua_test
