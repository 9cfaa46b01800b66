// Part 3.2: Exportar and Importar, the profile form of a configuration.
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/velqua_test.h"
#include "test_part_3_support.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using part3::Constant;
using part3::DataField;
using part3::Wire;
using velqua_test::DataPath;
using velqua_test::ReadFile;
using velqua_test::RecordingListener;
using velqua_test::TempDir;
using velqua_test::U;
using velqua_test::WriteFile;

const std::u16string kMsg1501 = u"No es posible encontrar el archivo deseado.";
const std::u16string kMsg1503 =
    U("Ocurrio un error en los datos al intentar exportar la configuración.");
const std::u16string kMsg1504 = U("Error de importación en la configuración.");
const std::string kDetVersion = "La versión no es correcta.";
const std::string kDetMarca = "No se encontro una marca para la configuración del conmutador.";
const std::string kDetModelo = "No se encontro un modelo para la configuración del conmutador.";
const std::string kDetCaso = "El caso de la configuración no esta soportado.";
const std::string kDetSeparador = "No hay un separador de llamadas definido.";

// A minimal importable header; `extra` is appended as more lines.
std::string Header(const std::string& caso = "1", const std::string& sep = "124,") {
  return "[Conmutador]\r\nVersion=3\r\nMarca=M\r\nModelo=N\r\nCaso=" + caso +
         "\r\nSeparador=" + sep + "\r\n";
}

class Part3_2 : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  std::u16string Put(const std::string& name, const std::string& bytes) {
    WriteFile(dir.Path(name), bytes);
    return dir.Path16(name);
  }
  void ExpectImportFails(const std::u16string& file, const std::string& detail) {
    EXPECT_VELQUA_ERROR(cfg.Importar(file), NumeroErrorObjeto(1504), part3::kFuenteImportar,
                        kMsg1504 + u"\r\n" + U(detail) + u"\r\n" + file);
  }
  TempDir dir;
  clsCfgConmut cfg;
  RecordingListener listener;
};

// ---- Exportar ----

TEST_F(Part3_2, ExportarWritesTheGoldenSectionsKeysAndValues) {
  part3::MakeGoldenConfig(cfg);
  cfg.Exportar(dir.Path16("g.ini"));
  const std::string written = ReadFile(dir.Path("g.ini"));
  const std::string golden = ReadFile(DataPath("files/export_golden.ini"));
  ASSERT_FALSE(golden.empty()) << "run tests/data/files/make_golden.py";
  EXPECT_EQ(part3::ParseIni(written), part3::ParseIni(golden));
  // Sections in the order of the spec's table.
  const size_t c = written.find("[Conmutador]");
  const size_t p = written.find("[Puertos]");
  const size_t d = written.find("[Datos]");
  const size_t k = written.find("[Constantes]");
  EXPECT_TRUE(c < p && p < d && d < k);
  EXPECT_EQ(written, golden);  // the writer's own layout (blank line between sections)
}

TEST_F(Part3_2, ExportarChangesNeitherModificadoNorNotifies) {
  part3::MakeGoldenConfig(cfg);
  listener.events.clear();
  cfg.Exportar(dir.Path16("g.ini"));
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part3_2, ExportarReplacesTheOldFile) {
  WriteFile(dir.Path("g.ini"), "[Otra]\r\nClave=1\r\n[Datos]\r\nDato9=2,1,1,1,\r\n");
  part3::MakeGoldenConfig(cfg);
  cfg.Exportar(dir.Path16("g.ini"));
  const part3::Ini ini = part3::ParseIni(ReadFile(dir.Path("g.ini")));
  EXPECT_EQ(ini.count("Otra"), 0u);
  EXPECT_EQ(ini.at("Datos").count("Dato9"), 0u);
}

TEST_F(Part3_2, ExportarReplacesLineBreaksOfTheCommentsByBlanks) {
  cfg.Comentarios(u"a\r\nb\rc\n");
  cfg.Exportar(dir.Path16("c.ini"));
  EXPECT_EQ(part3::ParseIni(ReadFile(dir.Path("c.ini")))["Conmutador"]["Comentarios"], "a  b c ");
}

TEST_F(Part3_2, ExportarWithAnEmptyBrandSucceedsAndImportingItFailsAtMarca) {
  cfg.Modelo(u"N");
  cfg.Separador(u"|");
  cfg.Exportar(dir.Path16("e.ini"));
  const part3::Ini ini = part3::ParseIni(ReadFile(dir.Path("e.ini")));
  EXPECT_EQ(ini.at("Conmutador").at("Marca"), "");
  EXPECT_EQ(ini.at("Conmutador").at("Caso"), "1");
  clsCfgConmut other;
  EXPECT_VELQUA_ERROR(other.Importar(dir.Path16("e.ini")), NumeroErrorObjeto(1504),
                      part3::kFuenteImportar,
                      kMsg1504 + u"\r\n" + U(kDetMarca) + u"\r\n" + dir.Path16("e.ini"));
}

TEST_F(Part3_2, ExportarWritesAnyCaseNumberAndHighWiringBits) {
  cfg.Caso(static_cast<emCasos>(-7));
  cfg.ActivaPin(emPuertoDB9, 1, 32 - 1);
  cfg.Exportar(dir.Path16("n.ini"));
  part3::Ini ini = part3::ParseIni(ReadFile(dir.Path("n.ini")));
  EXPECT_EQ(ini["Conmutador"]["Caso"], "-7");
  EXPECT_EQ(ini["Puertos"]["DB9"], "1073741824,0,0,0,0,0,0,0,0,");
  EXPECT_EQ(ini.count("Datos"), 0u);  // no complete record: no section
}

TEST_F(Part3_2, ExportarWithABlankNameFailsWith1501MessageAlone) {
  EXPECT_VELQUA_ERROR(cfg.Exportar(u"  "), NumeroErrorObjeto(1501), part3::kFuenteExportar,
                      kMsg1501);
}

TEST_F(Part3_2, ExportarToAFileThatCannotBeCreatedFailsWith1503) {
  EXPECT_VELQUA_ERROR(cfg.Exportar(U(dir.dir() + "/no/such/dir/x.ini")), NumeroErrorObjeto(1503),
                      part3::kFuenteExportar, kMsg1503);
  EXPECT_VELQUA_ERROR(cfg.Exportar(U(dir.dir())), NumeroErrorObjeto(1503), part3::kFuenteExportar,
                      kMsg1503);
}

// ---- round trips ----

TEST_F(Part3_2, ExportThenImportIntoAFreshObjectGivesEverythingBack) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));  // case 1, version 2, many records
  cfg.Marca(u"  Siemens  ");
  cfg.Comentarios(u"uno\r\ndos   ");
  cfg.ActivaPin(emPuertoRJ45, 9, 4);
  cfg.ActivaPin(emPuertoDB25, 25, 2);
  cfg.Exportar(dir.Path16("r.ini"));
  clsCfgConmut other;
  other.Importar(dir.Path16("r.ini"));
  EXPECT_EQ(other.Version(), emVersion2_0);
  EXPECT_EQ(AUtf8(other.Marca()), "Siemens");
  EXPECT_EQ(other.Modelo(), cfg.Modelo());
  EXPECT_EQ(other.Separador(), cfg.Separador());
  EXPECT_EQ(AUtf8(other.Comentarios()), "uno  dos");
  EXPECT_EQ(other.Caso(), emCasoEstandar);
  for (int16_t pin = 1; pin <= 9; ++pin) {
    EXPECT_EQ(Wire(other, emPuertoRJ45, pin), Wire(cfg, emPuertoRJ45, pin));
  }
  EXPECT_EQ(Wire(other, emPuertoDB25, 25), 2);
  for (int key = 2; key <= 68; ++key) {
    const part3::Field a = DataField(cfg, static_cast<emParamDato>(key));
    const part3::Field b = DataField(other, static_cast<emParamDato>(key));
    EXPECT_EQ(a.complete, b.complete) << key;
    if (a.complete) {
      EXPECT_EQ(a.pos, b.pos) << key;
      EXPECT_EQ(a.tam, b.tam) << key;
      EXPECT_EQ(a.tipo, b.tipo) << key;
    }
  }
  for (int key = 2; key <= 29; ++key) {
    const part3::Cte a = Constant(cfg, static_cast<emParamDatoConstante>(key));
    const part3::Cte b = Constant(other, static_cast<emParamDatoConstante>(key));
    EXPECT_EQ(a.complete, b.complete) << key;
    if (a.complete) {
      EXPECT_EQ(a.pos, b.pos) << key;
      EXPECT_EQ(a.text, b.text) << key;
    }
  }
}

TEST_F(Part3_2, SavedOpenedExportedImportedComesBackFieldForField) {
  part3::MakeGoldenConfig(cfg);
  cfg.Caso(emCasoEstandar);
  cfg.GuardarComo(dir.Path16("a.cfg"));
  clsCfgConmut opened;
  opened.Abrir(dir.Path16("a.cfg"));
  opened.Exportar(dir.Path16("a.ini"));
  clsCfgConmut imported;
  imported.Importar(dir.Path16("a.ini"));
  imported.GuardarComo(dir.Path16("b.cfg"));
  std::string a = ReadFile(dir.Path("a.cfg"));
  std::string b = ReadFile(dir.Path("b.cfg"));
  ASSERT_EQ(a.size(), b.size());
  // Entry 0 of each wiring array is not part of the profile form.
  for (size_t off : {size_t{368}, size_t{408}, size_t{448}}) {
    a.replace(off, 4, 4, '\0');
    b.replace(off, 4, 4, '\0');
  }
  EXPECT_EQ(a, b);
}

// ---- Importar: header checks ----

TEST_F(Part3_2, ImportingAMissingFileFailsAtVersion) {
  ExpectImportFails(dir.Path16("missing.ini"), kDetVersion);
  ExpectImportFails(U(dir.dir()), kDetVersion);  // a directory reads as empty
}

TEST_F(Part3_2, ImportingAFileWithoutVersionFailsAtVersion) {
  ExpectImportFails(Put("v.ini", "[Conmutador]\r\nMarca=M\r\n"), kDetVersion);
}

TEST_F(Part3_2, VersionMustBeNumericFrom1To3) {
  for (const char* bad : {"0", "4", "abc", "-1", "3x", "1e0"}) {
    ExpectImportFails(Put("v.ini", "[Conmutador]\r\nVersion=" + std::string(bad) + "\r\n"),
                      kDetVersion);
  }
  cfg.Importar(Put("v1.ini",
                   "[Conmutador]\r\nVersion=1\r\nMarca=M\r\nModelo=N\r\nCaso=1\r\n"
                   "Separador=124,\r\n"));
  EXPECT_EQ(cfg.Version(), emVersionActual);
  cfg.Importar(Put("v2.ini",
                   "[Conmutador]\r\nVersion= +2 \r\nMarca=M\r\nModelo=N\r\nCaso=1\r\n"
                   "Separador=124,\r\n"));
  EXPECT_EQ(cfg.Version(), emVersion2_0);
}

TEST_F(Part3_2, ImportingCase2FailsAfterVersionBrandAndModelWereReplaced) {
  cfg.Marca(u"Old");
  listener.events.clear();
  const std::string text =
      "[Conmutador]\r\nVersion=2\r\nMarca=New\r\nModelo=Model\r\nCaso=2\r\nSeparador=124,\r\n";
  ExpectImportFails(Put("c2.ini", text), kDetCaso);
  EXPECT_EQ(cfg.Version(), emVersion2_0);
  EXPECT_EQ(cfg.Marca(), u"New");
  EXPECT_EQ(cfg.Modelo(), u"Model");
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_TRUE(cfg.Modificado());  // not cleared
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part3_2, BlankBrandOrModelFailsItsCheck) {
  ExpectImportFails(Put("m.ini", "[Conmutador]\r\nVersion=3\r\nMarca=   \r\n"), kDetMarca);
  ExpectImportFails(Put("n.ini", "[Conmutador]\r\nVersion=3\r\nMarca=M\r\n"), kDetModelo);
}

TEST_F(Part3_2, SeparatorCodesDecode) {
  cfg.Importar(Put("s.ini", Header("1", "13,10,")));
  EXPECT_EQ(cfg.Separador(), u"\r\n");
  cfg.Importar(Put("s.ini", Header("1", "300,abc,65")));
  EXPECT_EQ(cfg.Separador(), u"A");
  cfg.Importar(Put("s.ini", Header("1", "255,1000, 66,128")));  // 255 refused, 4 chars refused
  EXPECT_EQ(cfg.Separador(), U("B€"));
  ExpectImportFails(Put("s0.ini", Header("1", "0,0")), kDetSeparador);
  ExpectImportFails(Put("s1.ini", Header("1", "")), kDetSeparador);
}

TEST_F(Part3_2, SeparatorWithAZeroInsideKeepsIt) {
  cfg.Importar(Put("s.ini", Header("1", "65,0,66,")));
  EXPECT_EQ(cfg.Separador(), u"AB");  // U+0000 removed on reading
  EXPECT_EQ(AUtf8(cfg.ListaSeparador()), "65,66,0,0,0,0,0,0,0,0,");
}

TEST_F(Part3_2, SuccessfulImportClearsModificadoAndNotifiesConfiguracionCargadaLast) {
  cfg.Marca(u"X");
  listener.events.clear();
  cfg.Importar(Put("ok.ini", Header() + "[Datos]\r\nDato1=2,1,5,2,\r\n[Constantes]\r\n"
                                        "Constante1=4,2,10,1,$(72,73,)\r\n"));
  EXPECT_FALSE(cfg.Modificado());
  // DATOPos, DATOTam; CTEPos, Constante (TipoDatoDATO is the taken type).
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios", "Cambios", "Cambios", "Cambios",
                                                       "ConfiguracionCargada"}));
  EXPECT_EQ(cfg.Marca(), u"M");  // stored directly, no CambioNombreConmutador
}

TEST_F(Part3_2, ImportDoesNotResetAndMergesTheTables) {
  cfg.DATOActivo(emParamFechaMes);
  cfg.DATOPos(3);
  cfg.DATOTam(2);
  cfg.Importar(Put("m.ini", Header() + "[Datos]\r\nDato1=2,1,5,2,\r\n"));
  EXPECT_TRUE(DataField(cfg, emParamFechaMes).complete);
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);
}

TEST_F(Part3_2, BrandAndModelAreStoredAsReadAndCut) {
  cfg.Importar(Put("b.ini", "[Conmutador]\r\nVersion=3\r\nMarca=" + std::string(60, 'b') +
                                "\r\nModelo='quoted'\r\nCaso=1\r\nSeparador=124,\r\n"));
  EXPECT_EQ(cfg.Marca(), std::u16string(50, u'b'));
  EXPECT_EQ(cfg.Modelo(), u"quoted");  // the profile reader drops a pair of quotes
  EXPECT_EQ(cfg.Comentarios(), u"");   // missing: empty
}

// ---- Importar: wiring ----

TEST_F(Part3_2, WiringListsSetEntries1ToNAndZeroTheRest) {
  for (int16_t pin = 1; pin <= 9; ++pin) cfg.ActivaPin(emPuertoRJ45, pin, 1);
  cfg.ActivaPin(emPuertoRJ45, 0, 3);
  cfg.Importar(Put("w.ini", Header() + "[Puertos]\r\nRJ45=3,5\r\nDB9=x,7\r\n"));
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 1), 3);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 2), 5);
  for (int16_t pin = 3; pin <= 9; ++pin) EXPECT_EQ(Wire(cfg, emPuertoRJ45, pin), 0) << pin;
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 0), 4);  // entry 0 is not read
  EXPECT_EQ(Wire(cfg, emPuertoDB9, 1), 0);
  EXPECT_EQ(Wire(cfg, emPuertoDB9, 2), 7);
}

TEST_F(Part3_2, WiringTokenOf11CharactersReadsAs0AndTenDigitsBeyond32BitsFail) {
  cfg.Importar(Put("w.ini", Header() + "[Puertos]\r\nRJ45=-2147483648,2147483647,12345678901\r\n"));
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 1), 0);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 2), 0x7FFFFFFF);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 3), 0);
  // A runtime failure after the separator check keeps that check's detail.
  ExpectImportFails(Put("o.ini", Header() + "[Puertos]\r\nDB25=1,9999999999\r\n"), kDetSeparador);
}

TEST_F(Part3_2, LongWiringListIsCutBy255CharacterBuffer) {
  std::string db25;
  for (int i = 0; i < 25; ++i) db25 += "1073741824,";  // 275 characters
  cfg.Importar(Put("l.ini", Header() + "[Puertos]\r\nDB25=" + db25 + "\r\n"));
  EXPECT_EQ(Wire(cfg, emPuertoDB25, 23), 1 << 30);
  EXPECT_EQ(Wire(cfg, emPuertoDB25, 24), 1);  // the 254th character is its first digit
  EXPECT_EQ(Wire(cfg, emPuertoDB25, 25), 0);
}

// ---- Importar: data fields and constants ----

TEST_F(Part3_2, DataFieldValueReadsTheSameWithOrWithoutFinalComma) {
  cfg.Importar(Put("d.ini", Header() + "[Datos]\r\nDato1=2,1,5,2\r\nDato2=3,3,7,4,\r\n"));
  const part3::Field dia = DataField(cfg, emParamFechaDia);
  EXPECT_EQ(dia.pos, 5);
  EXPECT_EQ(dia.tam, 2);
  EXPECT_EQ(dia.tipo, emValorNumerico);
  EXPECT_EQ(DataField(cfg, emParamFechaMes).tipo, emValorCadena);
}

TEST_F(Part3_2, RefusedDataFieldValuesAreSkipped) {
  cfg.Importar(Put("d.ini", Header() +
                                "[Datos]\r\nDato1=69,1,5,2\r\nDato2=2,0,5,2\r\nDato3=2,1,0,2\r\n"
                                "Dato4=2,1,5,256\r\nDato5=1,1,1,1\r\nDato6=x,1,1,1\r\n"
                                "Dato7=2,4,1,1\r\nDato8=3,1,256,1\r\nDato9=4,1,1\r\n"
                                "Dato10=68,2,255,255,junk\r\n"));
  for (int key = 2; key <= 67; ++key) {
    EXPECT_FALSE(DataField(cfg, static_cast<emParamDato>(key)).complete) << key;
  }
  EXPECT_EQ(DataField(cfg, emParamExtensionTransferida).pos, 255);
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part3_2, NumberedKeysStopAtTheFirstEmptyValue) {
  cfg.Importar(Put("d.ini", Header() + "[Datos]\r\nDato1=2,1,5,2\r\nDato2=\r\nDato3=3,1,5,2\r\n"
                                       "[Constantes]\r\nConstante2=4,2,10,1,$(72,73,)\r\n"));
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);
  EXPECT_FALSE(DataField(cfg, emParamFechaMes).complete);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntrante).complete);  // no Constante1
}

TEST_F(Part3_2, ConstantValueDecodesItsCodeList) {
  cfg.Importar(Put("c.ini", Header() + "[Constantes]\r\nConstante1=4,2,10,1,$(72,73,)\r\n"));
  const part3::Cte c = Constant(cfg, emDatoCteIdentEntrante);
  EXPECT_EQ(c.text, "HI");
  EXPECT_EQ(c.pos, 10);
  EXPECT_EQ(cfg.CTETam(), 2);  // derived, not the value's 1
  EXPECT_TRUE(c.complete);
}

TEST_F(Part3_2, RefusedConstantValuesAreSkipped) {
  cfg.Importar(Put("c.ini", Header() + "[Constantes]\r\nConstante1=4,2,10,1,$(7)\r\n"
                                       "Constante2=30,2,10,1,$(72,73,)\r\n"
                                       "Constante3=5,2,10,1,)$(72,73,\r\n"
                                       "Constante4=6,2,10,1\r\n"
                                       "Constante5=7,0,10,1,$(72,73,)\r\n"));
  for (int key = 2; key <= 29; ++key) {
    EXPECT_FALSE(Constant(cfg, static_cast<emParamDatoConstante>(key)).complete) << key;
  }
}

TEST_F(Part3_2, ConstantWithoutOpeningMarkDecodesFromTheSecondCharacter) {
  // a = 2 when there is no "$(": the list starts at the rest's 2nd character.
  cfg.Importar(Put("c.ini", Header() + "[Constantes]\r\nConstante1=4,2,10,1,x65,66,)\r\n"));
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntrante).text, "AB");
}

TEST_F(Part3_2, ConstantTextIsCutTo20Characters) {
  std::string list;
  for (int i = 0; i < 25; ++i) list += "65,";
  cfg.Importar(Put("c.ini", Header() + "[Constantes]\r\nConstante1=4,2,10,1,$(" + list + ")\r\n"));
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntrante).text, std::string(20, 'A'));
}

// ---- Importar: runtime failures and big inputs ----

TEST_F(Part3_2, RuntimeFailureInATableWriteIsRaisedAs1504) {
  struct Thrower : EventosCfgConmut {
    void Cambios() override { throw std::runtime_error("host"); }
  } thrower;
  cfg.AgregaOyente(&thrower);
  ExpectImportFails(Put("t.ini", Header() + "[Datos]\r\nDato1=2,1,5,2\r\n"), kDetSeparador);
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 0);
}

TEST_F(Part3_2, MoreThan32767NumberedKeysIsARuntimeFailure) {
  std::string text = Header() + "[Datos]\r\n";
  for (int k = 1; k <= 32768; ++k) text += "Dato" + std::to_string(k) + "=2,1,5,2,\r\n";
  const auto start = std::chrono::steady_clock::now();
  ExpectImportFails(Put("many.ini", text), kDetSeparador);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);  // kept: no undo
}

TEST_F(Part3_2, HundredThousandKeysAndA10MegabyteLineImportQuickly) {
  std::string text = Header() + "Comentarios=" + std::string(10 * 1024 * 1024, 'c') + "\r\n" +
                     std::string(3 * 1024 * 1024, 'z') + "\r\n[Datos]\r\n";
  for (int k = 1; k <= 100000; ++k) text += "Otra" + std::to_string(k) + "=v\r\n";
  for (int k = 1; k <= 1000; ++k) text += "Dato" + std::to_string(k) + "=2,1,5,2,\r\n";
  const auto start = std::chrono::steady_clock::now();
  cfg.Importar(Put("big.ini", text));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_EQ(cfg.Comentarios(), std::u16string(250, u'c'));
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);
}

TEST_F(Part3_2, GarbageBytesImportWithoutCrashing) {
  std::string garbage;
  uint32_t x = 777;
  for (int i = 0; i < 200000; ++i) {
    x = x * 1103515245u + 12345u;
    garbage.push_back(static_cast<char>(x >> 24));
  }
  ExpectImportFails(Put("g.ini", garbage), kDetVersion);
  cfg.Importar(Put("h.ini", Header() + garbage + "\r\n[Datos]\r\nDato1=2,1,5,2\r\n"));
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);
}

}  // namespace
