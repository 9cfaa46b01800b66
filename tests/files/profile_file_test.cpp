// The profile form of a configuration: Exportar writes it, Importar reads it
// back over the object without a reset.
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/files_support.h"

namespace {

using namespace files_test;
using velqua_test::DataPath;
using Events = std::vector<std::string>;

class ProfileExport : public FileTest {};
class ProfileImport : public FileTest {};

const std::string kVersion = "La versión no es correcta.";
const std::string kSeparator = "No hay un separador de llamadas definido.";

TEST_F(ProfileExport, WritesTheGoldenFileOverAnOldOneAndChangesNothing) {
  velqua_test::WriteFile(dir.Path("g.ini"), "[Otra]\r\nClave=1\r\n[Datos]\r\nDato9=2,1,1,1,\r\n");
  MakeGoldenConfig(cfg);
  listener.events.clear();
  cfg.Exportar(dir.Path16("g.ini"));
  EXPECT_EQ(Read("g.ini"), velqua_test::ReadFile(DataPath("files/export_golden.ini")));
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(ProfileExport, WritesAnyTextCaseAndWiringAsTheyAre) {
  cfg.Modelo(u"N");
  cfg.Comentarios(u"a\r\nb\rc\n");
  cfg.Caso(static_cast<emCasos>(-7));
  cfg.ActivaPin(emPuertoDB9, 1, 31);
  cfg.Exportar(dir.Path16("n.ini"));
  const std::string text = Read("n.ini");
  for (const char* line : {"\r\nMarca=\r\n", "\r\nCaso=-7\r\n", "\r\nComentarios=a  b c \r\n",
                           "\r\nDB9=1073741824,0,0,0,0,0,0,0,0,\r\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
  EXPECT_EQ(text.find("[Datos]"), std::string::npos);  // no complete record, no section
}

TEST_F(ProfileExport, BlankOrUnwritableNamesFail) {
  EXPECT_VELQUA_ERROR(cfg.Exportar(u"  "), NumeroErrorObjeto(emErrorNoHayArchivo),
                      u"clsConfigConmut.Exportar", kMsg1501);
  for (const std::u16string& name : {U(dir.dir()), dir.Path16("missing/x.ini")}) {
    EXPECT_VELQUA_ERROR(cfg.Exportar(name), NumeroErrorObjeto(emErrorConfigExportar),
                        u"clsConfigConmut.Exportar", kMsg1503);
  }
}

TEST_F(ProfileImport, ExportedConfigurationImportsBackIntoAFreshObject) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));  // version 2, many records
  cfg.ActivaPin(emPuertoRJ45, 9, 4);
  cfg.ActivaPin(emPuertoDB25, 25, 2);
  cfg.DATOActivo(emParamTelefonoSaliente);
  cfg.TipoDatoDATO(emValorCadena);
  cfg.Exportar(dir.Path16("r.ini"));
  clsCfgConmut other;
  other.Importar(dir.Path16("r.ini"));
  EXPECT_EQ(Summary(other), Summary(cfg));
  cfg.GuardarComo(dir.Path16("a.cfg"));
  other.GuardarComo(dir.Path16("b.cfg"));
  EXPECT_EQ(Read("b.cfg"), Read("a.cfg"));  // the records in the same order
}

TEST_F(ProfileImport, EachHeaderCheckFailsWithItsDetail) {
  for (const auto& [text, detail] : velqua_test::ReadCases("files/import_refused.txt")) {
    SCOPED_TRACE(text);
    ExpectImportFails(Put("h.ini", text), detail);
  }
  std::filesystem::create_directory(dir.Path("dir.ini"));
  for (const std::u16string& name :
       {dir.Path16("missing.ini"), dir.Path16("dir.ini"), std::u16string()}) {
    ExpectImportFails(name, kVersion);
  }
}

TEST_F(ProfileImport, AFailedCheckKeepsWhatWasReadBeforeIt) {
  cfg.Marca(u"Old");
  listener.events.clear();
  ExpectImportFails(
      Put("c2.ini", "[Conmutador]\r\nVersion=2\r\nMarca=New\r\nModelo=Model\r\nCaso=2\r\n"),
      "El caso de la configuración no esta soportado.");
  EXPECT_EQ(cfg.Version(), emVersion2_0);
  EXPECT_EQ(cfg.NombreConmutador(), u"New, Model");
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(ProfileImport, AFailingListenerMakesTheImportFailWithTheLastDetail) {
  struct Thrower : EventosCfgConmut {
    void Cambios() override { throw std::runtime_error("host"); }
  } thrower;
  cfg.AgregaOyente(&thrower);
  ExpectImportFails(Put("t.ini", Header() + "[Datos]\r\nDato1=2,1,5,2\r\n"), kSeparator);
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 0);
}

TEST_F(ProfileImport, ValuesOutOfRangeAreSkippedAndNumberedKeysStopAtTheFirstEmptyOne) {
  for (const auto& [text, summary] : velqua_test::ReadCases("files/import_values.txt")) {
    SCOPED_TRACE(text);
    clsCfgConmut c;
    c.Importar(Put("v.ini", text));
    EXPECT_EQ(Summary(c), summary);
  }
}

TEST_F(ProfileImport, SuccessMergesTheTablesNotifiesTheirChangesAndClearsTheFlag) {
  cfg.DATOActivo(emParamFechaMes);
  cfg.DATOPos(3);
  cfg.DATOTam(2);
  cfg.Marca(u"X");
  listener.events.clear();
  cfg.Importar(Put("ok.ini", Header() + "[Datos]\r\nDato1=2,1,5,2,\r\n"
                                        "[Constantes]\r\nConstante1=4,2,10,1,$(72,73,)\r\n"));
  EXPECT_FALSE(cfg.Modificado());
  // DATOPos, DATOTam, CTEPos, Constante; the header is stored without a notification.
  EXPECT_EQ(listener.events,
            (Events{"Cambios", "Cambios", "Cambios", "Cambios", "ConfiguracionCargada"}));
  EXPECT_EQ(Summary(cfg), "3.0;M, N;;|;1; D2:5,2,1 D3:3,2,1 C4:10,2,HI");
}

TEST_F(ProfileImport, WiringListsSetEntries1ToNAndZeroTheRest) {
  for (int16_t pin = 0; pin <= 9; ++pin) cfg.ActivaPin(emPuertoRJ45, pin, 1);
  std::string db25;
  for (int i = 0; i < 25; ++i) db25 += "1073741824,";  // cut by the 255-character buffer
  cfg.Importar(Put("w.ini", Header() +
                                "[Puertos]\r\nRJ45=-2147483648,2147483647,-123456789,5\r\n"
                                "DB9=x,7\r\nDB25=" +
                                db25 + "\r\n"));
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 0), 1);  // entry 0 is not read; 11 characters read as 0
  cfg.Exportar(dir.Path16("w.ini"));
  std::string db25Out;
  for (int i = 0; i < 23; ++i) db25Out += "1073741824,";
  const std::string lines[] = {"RJ45=0,2147483647,-123456789,5,0,0,0,0,0,",
                               "DB9=0,7,0,0,0,0,0,0,0,", "DB25=" + db25Out + "1,0,"};
  for (const std::string& line : lines) {
    EXPECT_NE(Read("w.ini").find("\r\n" + line + "\r\n"), std::string::npos) << line;
  }
}

}  // namespace
