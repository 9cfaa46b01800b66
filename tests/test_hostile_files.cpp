// Hostile input for the configuration files (Parts 3.1 to 3.3) and the
// other library errors of the configuration object (Parts 2.2, 5.1): every
// error path with its exact number, files of wrong sizes, truncated or
// over-promising record lists, garbage, directories, missing and unreadable
// files, huge profile files.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::TempDir;
using velqua_test::U;
using velqua_test::WriteFile;

using velqua_test::Budget;

const std::u16string kMsg1501 = u"No es posible encontrar el archivo deseado.";
const std::u16string kMsg1502 =
    U("Los datos de la configuración no estan completos.\r\nVerifica la marca, modelo, el "
      "separador de llamadas o el caso establecido.");
const std::u16string kMsg1503 =
    U("Ocurrio un error en los datos al intentar exportar la configuración.");
const std::u16string kMsg1504 = U("Error de importación en la configuración.");
const std::u16string kMsg1505 =
    U("No es posible abrir al archivo de configuración, no se reconoce.");
const std::u16string kDetVersion = U("La versión no es correcta.");

std::u16string WithFile(const std::u16string& msg, const std::u16string& name) {
  return msg + u"\r\n Archivo :" + name;
}

// A version-3 header (Part 3.1) with brand B, model M, separator |, case 1
// and the two record counts; records are appended by the caller.
std::string V3Header(int16_t datos, int16_t ctes) {
  std::string h(660, '\0');
  h[0] = 3;
  h[4] = 'B';
  h[54] = 'M';
  h[354] = '|';
  h[364] = 1;
  h[656] = static_cast<char>(datos & 0xff);
  h[657] = static_cast<char>((datos >> 8) & 0xff);
  h[658] = static_cast<char>(ctes & 0xff);
  h[659] = static_cast<char>((ctes >> 8) & 0xff);
  return h;
}

std::string DatoRecord(int key, int pos, int size) {
  std::string r(10, '\0');
  r[0] = static_cast<char>(key);
  r[4] = 1;  // emValorNumerico
  r[8] = static_cast<char>(pos);
  r[9] = static_cast<char>(size);
  return r;
}

class HostileFiles : public ::testing::Test {
 protected:
  std::u16string Put(const std::string& name, const std::string& bytes) {
    WriteFile(dir_.Path(name), bytes);
    return dir_.Path16(name);
  }
  void ExpectAbrirFails(const std::u16string& name, int32_t code) {
    const std::u16string msg = code == 1501 ? kMsg1501 : code == 1505 ? kMsg1505 : u"";
    EXPECT_VELQUA_ERROR(cfg_.Abrir(name), NumeroErrorObjeto(code), u"clsConfigConmut.Abrir",
                        WithFile(msg, name));
  }
  void ExpectImportarFails(const std::u16string& name, const std::u16string& detail) {
    EXPECT_VELQUA_ERROR(cfg_.Importar(name), NumeroErrorObjeto(1504), u"clsConfigConmut.Importar",
                        kMsg1504 + u"\r\n" + detail + u"\r\n" + name);
  }
  static bool IsRoot() { return geteuid() == 0; }

  TempDir dir_;
  clsCfgConmut cfg_;
};

// ---------------------------------------------------------------------------
// Abrir

TEST_F(HostileFiles, AbrirBlankNameFailsWithCode0) {
  EXPECT_VELQUA_ERROR(cfg_.Abrir(u"   "), NumeroErrorObjeto(0), u"clsConfigConmut.Abrir",
                      WithFile(u"Error desconocido.", u"   "));
}

TEST_F(HostileFiles, AbrirMissingFileOrDirectoryFailsWith1501) {
  ExpectAbrirFails(dir_.Path16("missing.cfg"), 1501);
  ExpectAbrirFails(dir_.Path16("missing/folder/x.cfg"), 1501);
  std::filesystem::create_directory(dir_.Path("folder.cfg"));
  ExpectAbrirFails(dir_.Path16("folder.cfg"), 1501);
  ExpectAbrirFails(dir_.Path16(""), 1501);
  EXPECT_EQ(cfg_.Marca(), u"");  // untouched
}

TEST_F(HostileFiles, AbrirWrongSizesFailWith1505) {
  for (size_t size : {0u, 1u, 659u, 660u, 785u, 786u, 787u, 4096u}) {
    SCOPED_TRACE(size);
    ExpectAbrirFails(Put("zeros.cfg", std::string(size, '\0')), 1505);
  }
  // Version-2 bytes in a file one byte too short or too long.
  std::string v2(786, ' ');
  v2[0] = 2;
  v2[1] = 0;
  v2[2] = 0;
  ExpectAbrirFails(Put("v2short.cfg", v2.substr(0, 785)), 1505);
  ExpectAbrirFails(Put("v2long.cfg", v2 + " "), 1505);
  cfg_.Abrir(Put("v2.cfg", v2));  // exactly 786: loads, brand and model blank
  EXPECT_EQ(cfg_.Version(), emVersion2_0);
}

TEST_F(HostileFiles, AbrirTruncatedRecordListLoadsTheWholeRecordsOnly) {
  std::string file = V3Header(3, 0) + DatoRecord(emParamFechaDia, 1, 2) +
                     DatoRecord(emParamFechaMes, 4, 2) + DatoRecord(emParamFechaAnio, 7, 2);
  cfg_.Abrir(Put("cut.cfg", file.substr(0, file.size() - 1)));
  cfg_.DATOActivo(emParamFechaMes);
  EXPECT_TRUE(cfg_.HayDATO());
  cfg_.DATOActivo(emParamFechaAnio);
  EXPECT_FALSE(cfg_.HayDATO());
}

TEST_F(HostileFiles, AbrirHeaderPromising32767RecordsLoadsWhatIsThereQuickly) {
  const auto start = std::chrono::steady_clock::now();
  cfg_.Abrir(Put("promise.cfg", V3Header(32767, 32767) + DatoRecord(emParamFechaDia, 1, 2)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, Budget(2));
  cfg_.DATOActivo(emParamFechaDia);
  EXPECT_TRUE(cfg_.HayDATO());
  EXPECT_FALSE(cfg_.Modificado());
  // Negative counts (-1 = 0xFFFF) read no record at all.
  clsCfgConmut other;
  other.Abrir(Put("negative.cfg", V3Header(-1, -32768) + DatoRecord(emParamFechaDia, 1, 2)));
  other.DATOActivo(emParamFechaDia);
  EXPECT_FALSE(other.HayDATO());
}

TEST_F(HostileFiles, AbrirGarbageIsRefusedWith1505OrLoadedNeverAnythingElse) {
  uint32_t x = 2026;
  auto next = [&x] {
    x = x * 1664525u + 1013904223u;
    return x >> 24;
  };
  int loaded = 0;
  for (int i = 0; i < 300; ++i) {
    const size_t size = i % 3 == 0 ? 786 : 660 + next() * 4;
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(next());
    if (i % 2 == 0) bytes.replace(0, 4, std::string("\x03\x00\x00\x00", 4));  // version 3
    if (i % 3 == 0) bytes.replace(0, 2, std::string("\x02\x00", 2));          // version 2.0
    clsCfgConmut cfg;
    try {
      cfg.Abrir(Put("garbage.cfg", bytes));
      ++loaded;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), NumeroErrorObjeto(1505));
    }
  }
  EXPECT_GT(loaded, 0);
}

TEST_F(HostileFiles, AbrirUnreadableFileFailsWith1505) {
  if (IsRoot()) GTEST_SKIP() << "root reads a file of mode 000";
  const std::u16string name = Put("locked.cfg", V3Header(0, 0));
  chmod(dir_.Path("locked.cfg").c_str(), 0);
  ExpectAbrirFails(name, 1505);
}

// ---------------------------------------------------------------------------
// GuardarComo

TEST_F(HostileFiles, GuardarComoErrorsAndSilentFailures) {
  EXPECT_VELQUA_ERROR(cfg_.GuardarComo(u" "), NumeroErrorObjeto(1501),
                      u"clsConfigConmut.GuardarComo", kMsg1501);
  EXPECT_VELQUA_ERROR(cfg_.GuardarComo(dir_.Path16("x.cfg")), NumeroErrorObjeto(1502),
                      u"clsConfigConmut.GuardarComo", kMsg1502);
  cfg_.Marca(u"B");
  cfg_.Modelo(u"M");
  cfg_.Separador(u"|");
  cfg_.Modificado(true);
  cfg_.GuardarComo(dir_.Path16("missing/x.cfg"));  // cannot be created: not reported
  EXPECT_FALSE(std::filesystem::exists(dir_.Path("missing")));
  EXPECT_FALSE(cfg_.Modificado());
  std::filesystem::create_directory(dir_.Path("dir.cfg"));
  cfg_.GuardarComo(dir_.Path16("dir.cfg"));  // a directory: not reported either
  EXPECT_TRUE(std::filesystem::is_directory(dir_.Path("dir.cfg")));
}

// ---------------------------------------------------------------------------
// Importar and Exportar

const std::string kHeader =
    "[Conmutador]\r\nVersion=3\r\nMarca=B\r\nModelo=M\r\nCaso=1\r\nSeparador=124,\r\n";

TEST_F(HostileFiles, ImportarMissingFileOrDirectoryFailsAtVersion) {
  ExpectImportarFails(dir_.Path16("missing.ini"), kDetVersion);
  std::filesystem::create_directory(dir_.Path("folder.ini"));
  ExpectImportarFails(dir_.Path16("folder.ini"), kDetVersion);
  ExpectImportarFails(u"", kDetVersion);
}

TEST_F(HostileFiles, ImportarUnreadableFileFailsAtVersion) {
  if (IsRoot()) GTEST_SKIP() << "root reads a file of mode 000";
  const std::u16string name = Put("locked.ini", kHeader);
  chmod(dir_.Path("locked.ini").c_str(), 0);
  ExpectImportarFails(name, kDetVersion);
}

TEST_F(HostileFiles, ImportarTenMegabyteLinesFinishQuickly) {
  const std::string big(10 * 1024 * 1024, 'q');
  const auto start = std::chrono::steady_clock::now();
  // A line without "=", a 10 MB key, a 10 MB section name and a 10 MB value.
  cfg_.Importar(Put("big.ini", big + "\r\n" + kHeader + big + "=1\r\nComentarios=" + big + "\r\n[" +
                                   big + "]\r\nMarca=X\r\n"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, Budget(20));
  EXPECT_EQ(cfg_.Marca(), u"B");
  EXPECT_EQ(cfg_.Comentarios(), std::u16string(250, u'q'));  // cut by the 255-byte buffer, then 250
  // One line of 10 MB and nothing else: no version.
  ExpectImportarFails(Put("one.ini", big), kDetVersion);
}

TEST_F(HostileFiles, ImportarHundredThousandKeysFinishesQuickly) {
  std::string text = kHeader;
  for (int k = 1; k <= 100000; ++k) text += "Clave" + std::to_string(k) + "=" + "v\r\n";
  text += "[Datos]\r\nDato1=2,1,5,2,\r\n";
  auto start = std::chrono::steady_clock::now();
  cfg_.Importar(Put("keys.ini", text));
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_LT(elapsed, Budget(10));
  cfg_.DATOActivo(emParamFechaDia);
  EXPECT_TRUE(cfg_.HayDATO());
  // 100,000 numbered keys: past 32767 the 16-bit key number overflows (1504).
  text = kHeader + "[Datos]\r\n";
  for (int k = 1; k <= 100000; ++k) text += "Dato" + std::to_string(k) + "=2,1,5,2,\r\n";
  start = std::chrono::steady_clock::now();
  clsCfgConmut other;
  try {
    other.Importar(Put("dato.ini", text));
    ADD_FAILURE() << "100,000 numbered keys imported";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), NumeroErrorObjeto(1504));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, Budget(30));
}

TEST_F(HostileFiles, ExportarErrors) {
  EXPECT_VELQUA_ERROR(cfg_.Exportar(u"  "), NumeroErrorObjeto(1501), u"clsConfigConmut.Exportar",
                      kMsg1501);
  EXPECT_VELQUA_ERROR(cfg_.Exportar(dir_.Path16("missing/x.ini")), NumeroErrorObjeto(1503),
                      u"clsConfigConmut.Exportar", kMsg1503);
  std::filesystem::create_directory(dir_.Path("dir.ini"));
  EXPECT_VELQUA_ERROR(cfg_.Exportar(dir_.Path16("dir.ini")), NumeroErrorObjeto(1503),
                      u"clsConfigConmut.Exportar", kMsg1503);
}

// ---------------------------------------------------------------------------
// The other library and runtime errors of the configuration (Part 5.1).

TEST_F(HostileFiles, WiringErrorsCarryTheirNumbers) {
  EXPECT_VELQUA_ERROR(cfg_.ActivaPin(emPuertoDB25, 1, 2), NumeroErrorObjeto(1205),
                      u"clsConfig.EstableceEstadoPin",
                      u"No se permite conectar el PIN #1 del puerto DB25.");
  EXPECT_VELQUA_ERROR_NUMBER(cfg_.ActivaPin(emPuertoRJ45, 10, 2), 9);
  EXPECT_VELQUA_ERROR_NUMBER(cfg_.DesactivaPin(emPuertoDB9, -1, 2), 9);
  EXPECT_VELQUA_ERROR_NUMBER(cfg_.ActivaPin(emPuertoDB25, 26, 2), 9);
  EXPECT_VELQUA_ERROR_NUMBER(cfg_.ActivaPin(emPuertoRJ45, 2, 32), 6);
  EXPECT_VELQUA_ERROR_NUMBER(cfg_.ActivaPin(emPuertoRJ45, 2, -32768), 6);
  EXPECT_VELQUA_ERROR_NUMBER(static_cast<void>(cfg_.PinesConectados(emPuertoDB9, 10, 1)), 9);
  EXPECT_FALSE(cfg_.Modificado());
}

}  // namespace
