// Part 3.3: file error reporting — messages, numbers, sources, descriptions.
#include <gtest/gtest.h>

#include <string>

#include "files/errores_archivo.h"
#include "support/velqua_test.h"
#include "test_part_3_support.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::TempDir;
using velqua_test::U;
using velqua_test::WriteFile;

std::string Message(int32_t code) { return AUtf8(archivos::MensajeErrorConfig(code)); }

TEST(Part3_3, EveryCodeHasItsMessage) {
  EXPECT_EQ(Message(1500),
            "No es posible acceder al archivo o el nombre del archivo no es válido.");
  EXPECT_EQ(Message(1501), "No es posible encontrar el archivo deseado.");
  EXPECT_EQ(Message(1502),
            "Los datos de la configuración no estan completos.\r\n"
            "Verifica la marca, modelo, el separador de llamadas o el caso establecido.");
  EXPECT_EQ(Message(1503), "Ocurrio un error en los datos al intentar exportar la configuración.");
  EXPECT_EQ(Message(1504), "Error de importación en la configuración.");
  EXPECT_EQ(Message(1505), "No es posible abrir al archivo de configuración, no se reconoce.");
}

TEST(Part3_3, AnyOtherCodeIsUnknown) {
  for (int32_t code : {0, 1506, 1499, 1507, -1, 1205, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(Message(code), "Error desconocido.") << code;
  }
}

TEST(Part3_3, NumbersAreTheObjectErrorBasePlusTheCode) {
  EXPECT_EQ(NumeroErrorObjeto(emNoErrorConfig), -2147221504);
  EXPECT_EQ(NumeroErrorObjeto(emErrorNoHayArchivo), static_cast<int32_t>(0x800405DDu));
  EXPECT_EQ(NumeroErrorObjeto(emErrorNoHayArchivo), -2147220003);
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigDatosIncompletos), -2147220002);
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigExportar), -2147220001);
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigImportar), -2147220000);
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigAbrir), -2147219999);
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigAbrir), static_cast<int32_t>(0x800405E1u));
}

TEST(Part3_3, DescriptionForms) {
  EXPECT_EQ(archivos::DescripcionConArchivo(u"M", u" f "), u"M\r\n Archivo : f ");
  EXPECT_EQ(archivos::DescripcionConDetalle(u"M", u"D", u"f"), u"M\r\nD\r\nf");
}

TEST(Part3_3, AbrirOfAMissingFileIsTheSpecExample) {
  TempDir dir;
  clsCfgConmut cfg;
  const std::u16string f = dir.Path16("nada.cfg");
  EXPECT_VELQUA_ERROR(cfg.Abrir(f), 0x800405DDu, u"clsConfigConmut.Abrir",
                      u"No es posible encontrar el archivo deseado.\r\n Archivo :" + f);
}

TEST(Part3_3, AbrirWithABlankNameRaisesCode0WithTheFileForm) {
  clsCfgConmut cfg;
  EXPECT_VELQUA_ERROR(cfg.Abrir(u"   "), 0x80040000u, u"clsConfigConmut.Abrir",
                      u"Error desconocido.\r\n Archivo :   ");
}

TEST(Part3_3, GuardarComoWithABlankNameRaises1501MessageAlone) {
  clsCfgConmut cfg;
  EXPECT_VELQUA_ERROR(cfg.GuardarComo(u"   "), 0x800405DDu, u"clsConfigConmut.GuardarComo",
                      u"No es posible encontrar el archivo deseado.");
}

TEST(Part3_3, GuardarComoWithAnEmptyBrandRaisesTheTwoLine1502Message) {
  TempDir dir;
  clsCfgConmut cfg;
  cfg.Modelo(u"N");
  cfg.Separador(u"|");
  EXPECT_VELQUA_ERROR(cfg.GuardarComo(dir.Path16("x.cfg")), 0x800405DEu,
                      u"clsConfigConmut.GuardarComo",
                      U("Los datos de la configuración no estan completos.\r\n"
                        "Verifica la marca, modelo, el separador de llamadas o el caso "
                        "establecido."));
}

TEST(Part3_3, ImportarWithoutVersionRaises1504WithDetailAndFile) {
  TempDir dir;
  WriteFile(dir.Path("s.ini"), "[Conmutador]\r\nMarca=M\r\n");
  clsCfgConmut cfg;
  const std::u16string f = dir.Path16("s.ini");
  EXPECT_VELQUA_ERROR(cfg.Importar(f), 0x800405E0u, u"clsConfigConmut.Importar",
                      U("Error de importación en la configuración.\r\n"
                        "La versión no es correcta.\r\n") +
                          f);
}

TEST(Part3_3, ExportarToAnUnwritablePlaceRaises1503MessageAlone) {
  TempDir dir;
  clsCfgConmut cfg;
  EXPECT_VELQUA_ERROR(cfg.Exportar(U(dir.dir() + "/missing/x.ini")), 0x800405DFu,
                      u"clsConfigConmut.Exportar",
                      U("Ocurrio un error en los datos al intentar exportar la configuración."));
}

TEST(Part3_3, TheDetailLineIsTheOneOfTheLastCheckStarted) {
  TempDir dir;
  clsCfgConmut cfg;
  WriteFile(dir.Path("a.ini"), "[Conmutador]\r\nVersion=3\r\nMarca=M\r\nModelo=N\r\nCaso=5\r\n");
  EXPECT_VELQUA_ERROR(cfg.Importar(dir.Path16("a.ini")), 0x800405E0u, u"clsConfigConmut.Importar",
                      U("Error de importación en la configuración.\r\n"
                        "El caso de la configuración no esta soportado.\r\n") +
                          dir.Path16("a.ini"));
}

TEST(Part3_3, ErrorsAreVelquaErrorsWithUtf8What) {
  clsCfgConmut cfg;
  try {
    cfg.GuardarComo(u"");
    FAIL() << "no error";
  } catch (const std::exception& e) {
    EXPECT_STREQ(e.what(), "No es posible encontrar el archivo deseado.");
  }
}

}  // namespace
