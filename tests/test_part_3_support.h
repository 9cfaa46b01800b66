// Shared helpers of the Part 3 tests (configuration files).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace part3 {

// The golden configuration of tests/data/files/v3_golden.cfg (see
// make_golden.py): 3 complete data fields, 2 complete constants, plus
// incomplete records that must not be saved.
inline void MakeGoldenConfig(velqua::clsCfgConmut& cfg) {
  using namespace velqua;
  cfg.Marca(u"Panasonic");
  cfg.Modelo(u"KX-TDA200");
  cfg.Comentarios(velqua_test::U("Línea 1"));
  cfg.Separador(u"\r\n");
  cfg.Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  cfg.ActivaPin(emPuertoRJ45, 0, 1);
  cfg.ActivaPin(emPuertoRJ45, 3, 2);
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  cfg.ActivaPin(emPuertoDB9, 9, 9);
  cfg.ActivaPin(emPuertoDB25, 25, 31);
  cfg.DATOActivo(emParamFechaDia);
  cfg.DATOPos(1);
  cfg.DATOTam(2);
  cfg.DATOActivo(emParamFechaMes);  // incomplete: no width
  cfg.DATOPos(4);
  cfg.DATOActivo(emParamFechaHoras);
  cfg.DATOPos(11);
  cfg.DATOTam(2);
  cfg.DATOActivo(emParamTelefonoSaliente);
  cfg.DATOPos(30);
  cfg.DATOTam(20);
  cfg.TipoDatoDATO(emValorCadena);
  cfg.DATOActivo(emUltimoParamDato);  // invalid key: never complete
  cfg.DATOPos(1);
  cfg.DATOTam(1);
  cfg.CTEActivo(emDatoCteIdentEntrante);
  cfg.Constante(u"E");
  cfg.CTEPos(30);
  cfg.CTEActivo(emDatoCteIdentSaliente);
  cfg.Constante(u"S");
  cfg.CTEPos(30);
  cfg.CTEActivo(emDatoCteIdentInterTroncal);  // incomplete: no position
  cfg.Constante(u"T");
}

// The wiring element of one switch pin as a bit set, through PinesConectados.
inline int64_t Wire(const velqua::clsCfgConmut& cfg, velqua::emPuertoSerial port, int16_t pin) {
  int64_t v = 0;
  for (int16_t pc = 1; pc <= 31; ++pc) {
    if (cfg.PinesConectados(port, pin, pc)) v |= int64_t{1} << (pc - 1);
  }
  return v;
}

struct Field {
  int pos;
  int tam;
  int tipo;
  bool complete;
};

inline Field DataField(velqua::clsCfgConmut& cfg, velqua::emParamDato key) {
  cfg.DATOActivo(key);
  return {cfg.DATOPos(), cfg.DATOTam(), cfg.TipoDatoDATO(), cfg.HayDATO()};
}

struct Cte {
  int pos;
  std::string text;
  bool complete;
};

inline Cte Constant(velqua::clsCfgConmut& cfg, velqua::emParamDatoConstante key) {
  cfg.CTEActivo(key);
  return {cfg.CTEPos(), velqua::AUtf8(cfg.Constante()), cfg.HayCTE()};
}

// A small, independent INI reader for comparing exported files: section ->
// key -> value, exact names, values after "=" up to the line end (CR LF).
using Ini = std::map<std::string, std::map<std::string, std::string>>;

inline Ini ParseIni(const std::string& text) {
  Ini ini;
  std::string section;
  size_t i = 0;
  while (i < text.size()) {
    size_t end = text.find('\n', i);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(i, end - i);
    i = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    if (line.front() == '[') {
      section = line.substr(1, line.find(']') - 1);
      ini[section];
      continue;
    }
    const size_t eq = line.find('=');
    if (eq != std::string::npos) ini[section][line.substr(0, eq)] = line.substr(eq + 1);
  }
  return ini;
}

// Little-endian readers for checking offsets in written files.
inline int32_t I32At(const std::string& b, size_t off) {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<unsigned char>(b[off])) |
                              static_cast<uint32_t>(static_cast<unsigned char>(b[off + 1])) << 8 |
                              static_cast<uint32_t>(static_cast<unsigned char>(b[off + 2])) << 16 |
                              static_cast<uint32_t>(static_cast<unsigned char>(b[off + 3])) << 24);
}

inline void PutI16(std::string& b, size_t off, int16_t v) {
  b[off] = static_cast<char>(static_cast<uint16_t>(v) & 0xFF);
  b[off + 1] = static_cast<char>(static_cast<uint16_t>(v) >> 8);
}

inline void PutI32(std::string& b, size_t off, int32_t v) {
  for (int k = 0; k < 4; ++k) {
    b[off + static_cast<size_t>(k)] =
        static_cast<char>((static_cast<uint32_t>(v) >> (8 * k)) & 0xFF);
  }
}

const char16_t* const kFuenteAbrir = u"clsConfigConmut.Abrir";
const char16_t* const kFuenteGuardarComo = u"clsConfigConmut.GuardarComo";
const char16_t* const kFuenteImportar = u"clsConfigConmut.Importar";
const char16_t* const kFuenteExportar = u"clsConfigConmut.Exportar";

}  // namespace part3
