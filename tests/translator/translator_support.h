// Helpers shared by the translator tests: building a configuration, placing
// texts at columns, the bytes of a log entry.
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

// The default instant of the translator tests: 2026 Nov 18 09:05:03.
inline velqua::plataforma::FechaHora TestNow() { return At(2026, 11, 18, 9, 5, 3); }

// The bytes the unrecognised-record log gets for one record, at TestNow().
inline std::string LogEntry(const std::string& record,
                            const std::string& stamp = "2026 Nov 18 09:05:03") {
  return "\r\n\r\nLlamada no reconocida (" + stamp + "): \r\n" + record + "\r\n";
}

// Seconds of a time of day.
constexpr int32_t Hms(int h, int m, int s) { return h * 3600 + m * 60 + s; }

}  // namespace velqua_test
