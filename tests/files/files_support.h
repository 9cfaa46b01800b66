// Helpers of the configuration-file tests: the golden configuration, compact
// views of its tables, byte access and the messages of the file errors.
#pragma once

#include <cstdint>
#include <string>

#include "support/velqua_test.h"

namespace files_test {

using namespace velqua;
using velqua_test::U;

// The configuration of tests/data/files/v3_golden.cfg and export_golden.ini:
// three complete data fields and two complete constants, plus incomplete
// records (no width, no position, key 69) that are never saved.
inline void MakeGoldenConfig(clsCfgConmut& cfg) {
  cfg.Marca(u"Panasonic");
  cfg.Modelo(u"KX-TDA200");
  cfg.Comentarios(U("Línea 1"));
  cfg.Separador(u"\r\n");
  cfg.Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  const int16_t pins[][3] = {{1, 0, 1}, {1, 3, 2}, {2, 2, 3}, {2, 9, 9}, {3, 25, 31}};
  for (const auto& p : pins) cfg.ActivaPin(static_cast<emPuertoSerial>(p[0]), p[1], p[2]);
  const uint8_t fields[][4] = {
      {2, 1, 2, 1}, {3, 4, 0, 1}, {5, 11, 2, 1}, {19, 30, 20, 3}, {69, 1, 1, 1}};
  for (const auto& f : fields) {
    cfg.DATOActivo(static_cast<emParamDato>(f[0]));
    cfg.DATOPos(f[1]);
    if (f[2] != 0) cfg.DATOTam(f[2]);
    cfg.TipoDatoDATO(static_cast<emTipoDato>(f[3]));
  }
  const struct {
    int32_t key;
    uint8_t pos;
    const char16_t* text;
  } constants[] = {{emDatoCteIdentEntrante, 30, u"E"},
                   {emDatoCteIdentSaliente, 30, u"S"},
                   {emDatoCteIdentInterTroncal, 0, u"T"}};
  for (const auto& c : constants) {
    cfg.CTEActivo(static_cast<emParamDatoConstante>(c.key));
    cfg.Constante(c.text);
    if (c.pos != 0) cfg.CTEPos(c.pos);
  }
}

// The wiring entry of one switch pin as a bit set (bit k for computer pin k+1).
inline int64_t Wire(const clsCfgConmut& cfg, emPuertoSerial port, int16_t pin) {
  int64_t v = 0;
  for (int16_t pc = 1; pc <= 31; ++pc) {
    if (cfg.PinesConectados(port, pin, pc)) v |= int64_t{1} << (pc - 1);
  }
  return v;
}

// "position,width,type", with "?" after it when the field is incomplete.
inline std::string Dato(clsCfgConmut& cfg, int32_t key) {
  cfg.DATOActivo(static_cast<emParamDato>(key));
  return std::to_string(cfg.DATOPos()) + "," + std::to_string(cfg.DATOTam()) + "," +
         std::to_string(cfg.TipoDatoDATO()) + (cfg.HayDATO() ? "" : "?");
}

// "position,width,text", with "?" after it when the constant is incomplete.
inline std::string Cte(clsCfgConmut& cfg, int32_t key) {
  cfg.CTEActivo(static_cast<emParamDatoConstante>(key));
  return std::to_string(cfg.CTEPos()) + "," + std::to_string(cfg.CTETam()) + "," +
         AUtf8(cfg.Constante()) + (cfg.HayCTE() ? "" : "?");
}

// The complete records, as " D<key>:<Dato>" and " C<key>:<Cte>".
inline std::string Records(clsCfgConmut& cfg) {
  std::string s;
  for (int k = 0; k <= 70; ++k) {
    if (Dato(cfg, k).back() != '?') s += " D" + std::to_string(k) + ":" + Dato(cfg, k);
  }
  for (int k = 0; k <= 31; ++k) {
    if (Cte(cfg, k).back() != '?') s += " C" + std::to_string(k) + ":" + Cte(cfg, k);
  }
  return s;
}

// Everything a configuration holds: version; switch name; comments;
// separator; case; the wiring entries that are not 0 (P<port><pin>); the records.
inline std::string Summary(clsCfgConmut& cfg) {
  std::string s = AUtf8(cfg.NombreVersion() + u";" + cfg.NombreConmutador() + u";" +
                        cfg.Comentarios() + u";" + cfg.Separador()) +
                  ";" + std::to_string(cfg.Caso()) + ";";
  for (int port = 1; port <= 3; ++port) {
    for (int16_t pin = 0; pin <= (port == 3 ? 25 : 9); ++pin) {
      const int64_t w = Wire(cfg, static_cast<emPuertoSerial>(port), pin);
      if (w != 0) s += " P" + std::to_string(port * 100 + pin) + "=" + std::to_string(w);
    }
  }
  return s + Records(cfg);
}

inline int32_t I32At(const std::string& b, size_t off) {
  uint32_t v = 0;
  for (size_t k = 0; k < 4; ++k) v |= uint32_t{static_cast<unsigned char>(b[off + k])} << (8 * k);
  return static_cast<int32_t>(v);
}

inline std::string PutLE(std::string b, size_t off, int32_t v, size_t bytes = 4) {
  for (size_t k = 0; k < bytes; ++k) {
    b[off + k] = static_cast<char>((static_cast<uint32_t>(v) >> (8 * k)) & 0xFF);
  }
  return b;
}

// Pseudo-random bytes, the same for the same seed.
inline std::string Garbage(size_t size, uint32_t seed) {
  std::string bytes;
  while (bytes.size() < size) {
    seed = seed * 1664525u + 1013904223u;
    bytes.push_back(static_cast<char>(seed >> 24));
  }
  return bytes;
}

// An importable profile header with this separator; more lines may follow.
inline std::string Header(const std::string& separator = "124,") {
  return "[Conmutador]\r\nVersion=3\r\nMarca=M\r\nModelo=N\r\nCaso=1\r\nSeparador=" + separator +
         "\r\n";
}

inline std::string Golden() {
  return velqua_test::ReadFile(velqua_test::DataPath("files/v3_golden.cfg"));
}
inline std::string V2() {
  return velqua_test::ReadFile(velqua_test::DataPath("files/v2_estandar.cfg"));
}

const std::u16string kMsg1501 = u"No es posible encontrar el archivo deseado.";
const std::u16string kMsg1502 =
    U("Los datos de la configuración no estan completos.\r\n"
      "Verifica la marca, modelo, el separador de llamadas o el caso establecido.");
const std::u16string kMsg1503 =
    U("Ocurrio un error en los datos al intentar exportar la configuración.");
const std::u16string kMsg1504 = U("Error de importación en la configuración.");
const std::u16string kMsg1505 =
    U("No es posible abrir al archivo de configuración, no se reconoce.");

// A configuration object with a recording listener and a private folder.
class FileTest : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  std::u16string Put(const std::string& name, const std::string& bytes) {
    velqua_test::WriteFile(dir.Path(name), bytes);
    return dir.Path16(name);
  }
  std::string Read(const std::string& name) { return velqua_test::ReadFile(dir.Path(name)); }
  // Importar fails on `file` with error 1504 and this detail.
  void ExpectImportFails(const std::u16string& file, const std::string& detail) {
    EXPECT_VELQUA_ERROR(cfg.Importar(file), NumeroErrorObjeto(emErrorConfigImportar),
                        u"clsConfigConmut.Importar",
                        kMsg1504 + u"\r\n" + U(detail) + u"\r\n" + file);
  }
  velqua_test::TempDir dir;
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

}  // namespace files_test
