// Helpers shared by the translator tests: building a configuration, placing
// texts at columns, the bytes of a log entry, a bound translator fixture.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace velqua_test {

// A configuration of the given case and separator, every table empty.
inline std::shared_ptr<velqua::clsCfgConmut> MakeConfig(velqua::emCasos caso,
                                                        const std::u16string& sep = u"") {
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  cfg->Caso(caso);
  cfg->Separador(sep);
  return cfg;
}

// Defines data field `key` at 1-based column `pos`, `size` characters wide.
inline void SetField(velqua::clsCfgConmut& cfg, velqua::emParamDato key, int pos, int size,
                     velqua::emTipoDato type = velqua::emValorNumerico) {
  cfg.DATOActivo(key);
  cfg.DATOPos(static_cast<uint8_t>(pos));
  cfg.DATOTam(static_cast<uint8_t>(size));
  cfg.TipoDatoDATO(type);
}

inline void SetText(velqua::clsCfgConmut& cfg, velqua::emParamDato key, int pos, int size) {
  SetField(cfg, key, pos, size, velqua::emValorCadena);
}

// Defines identifying constant `key`: `text` at 1-based column `pos`.
inline void SetConstant(velqua::clsCfgConmut& cfg, velqua::emParamDatoConstante key, int pos,
                        const std::u16string& text) {
  cfg.CTEActivo(key);
  cfg.Constante(text);
  cfg.CTEPos(static_cast<uint8_t>(pos));
}

// A KX-TDA layout of case 10 (account code and extension): mark O or I in
// column 1, extension and account code 3-9, duration 11-12 and 14-15, number
// 17-21 and trunk 23-24 (for the default outgoing call of case 11).
inline void SetKxTdaFields(velqua::clsCfgConmut& cfg) {
  using namespace velqua;
  cfg.Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  SetConstant(cfg, emDatoCteIdentSaliente, 1, u"O");
  SetConstant(cfg, emDatoCteIdentEntrante, 1, u"I");
  for (emParamDato key :
       {emParamExtensionSaliente, emParamExtensionEntrante, emParamCodigoCuenta}) {
    SetText(cfg, key, 3, 7);
  }
  SetField(cfg, emParamDuracionMinutos, 11, 2);
  SetField(cfg, emParamDuracionSegundos, 14, 2);
  SetText(cfg, emParamTelefonoSaliente, 17, 5);
  SetText(cfg, emParamTroncalSaliente, 23, 2);
}

// A line with each text placed at its 1-based column, blanks in between.
inline std::u16string Cols(std::initializer_list<std::pair<int, std::string>> parts) {
  std::u16string line;
  for (const auto& part : parts) {
    const std::u16string text = U(part.second);
    const size_t start = static_cast<size_t>(part.first - 1);
    if (line.size() < start + text.size()) line.resize(start + text.size(), u' ');
    line.replace(start, text.size(), text);
  }
  return line;
}

// A file of the bundled switches (examples/), so that a test reads the
// layout users get rather than a copy of it.
inline std::u16string ExampleFile(const std::string& path) {
  return U(std::string(VELQUA_EXAMPLES) + "/" + path);
}

// The default instant of the translator tests: 2026 Nov 18 09:05:03.
inline velqua::FechaHora TestNow() { return At(2026, 11, 18, 9, 5, 3); }

// The bytes the unrecognised-record log gets for one record, at TestNow().
inline std::string LogEntry(const std::string& record,
                            const std::string& stamp = "2026 Nov 18 09:05:03") {
  return "\r\n\r\nLlamada no reconocida (" + stamp + "): \r\n" + record + "\r\n";
}

// The stand-in extension of an unlisted account code: 1 to 10000, at least
// four digits.
inline bool IsRandomExtension(const std::u16string& ext) {
  const std::string s = velqua::AUtf8(ext);
  const bool digits = s.find_first_not_of("0123456789") == std::string::npos;
  return (s.size() == 4 && digits && s != "0000") || s == "10000";
}

// The n-th text between double quotes of a data-file line (0: the first).
inline std::string Quoted(const std::string& line, int n = 0) {
  size_t open = line.find('"');
  for (; n > 0; --n) open = line.find('"', line.find('"', open + 1) + 1);
  return line.substr(open + 1, line.find('"', open + 1) - open - 1);
}

// Seconds of a time of day.
constexpr int32_t Hms(int h, int m, int s) { return h * 3600 + m * 60 + s; }

// The type and attribute numbers and the text fields of the current record:
// "type/attribute dialled|extension|trunk|receiving ext.|receiving trunk|code".
inline std::string Kind(const velqua::clsTraductor& tr) {
  return std::to_string(tr.TipoLlamadaDetectada()) + "/" + std::to_string(tr.Atributo());
}
inline std::string Summary(velqua::clsTraductor& tr) {
  using T = velqua::clsTraductor;
  std::string out = Kind(tr);
  char sep = ' ';
  for (auto read : {&T::Marcacion, &T::Extension, &T::Troncal, &T::ExtensionReceptor,
                    &T::TroncalReceptor, &T::CodigoCuenta}) {
    out += sep + velqua::AUtf8((tr.*read)());
    sep = '|';
  }
  return out;
}

// The translator's two errors, number, source and description.
#define EXPECT_OVERFLOW(stmt) EXPECT_VELQUA_ERROR(stmt, 6, u"Velqua", u"Desbordamiento")
#define EXPECT_UNBOUND(stmt) \
  EXPECT_VELQUA_ERROR(stmt, 91, u"Velqua", u"Variable de objeto o bloque With no establecido")

// A translator bound to cfg_ (the given case, separator "|", tables empty),
// at TestNow() (timer seed 1), logging to log.txt in a fresh folder.
class BoundTranslator : public ::testing::Test {
 protected:
  explicit BoundTranslator(velqua::emCasos caso = velqua::emCasoEstandar)
      : clock_(TestNow()), cfg_(MakeConfig(caso, u"|")), tr_(clock_.Env()) {
    tr_.Conmutador(cfg_);
    tr_.ArchivoLlamadasError(dir_.Path16("log.txt"));
  }
  std::string Log() const { return ReadFile(dir_.Path("log.txt")); }

  FixedClock clock_;
  TempDir dir_;
  std::shared_ptr<velqua::clsCfgConmut> cfg_;
  velqua::clsTraductor tr_;
};

}  // namespace velqua_test
