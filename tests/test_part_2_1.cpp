// Part 2.1: the configuration object.
#include <gtest/gtest.h>

#include <string>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::RecordingListener;
using velqua_test::U;

class Part2_1 : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  clsCfgConmut cfg;
  RecordingListener listener;
};

TEST_F(Part2_1, NewObjectHoldsTheInitialValues) {
  EXPECT_EQ(cfg.Version(), emVersion3_0);
  EXPECT_EQ(cfg.NombreVersion(), U("3.0"));
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_EQ(cfg.NombreCaso(), U("Estandar"));
  EXPECT_EQ(cfg.IDCfg(), 0);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.Marca(), u"");
  EXPECT_EQ(cfg.Modelo(), u"");
  EXPECT_EQ(cfg.Comentarios(), u"");
  EXPECT_EQ(cfg.Separador(), u"");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
  EXPECT_EQ(cfg.ListaSeparador(), u"0,0,0,0,0,0,0,0,0,0,");
  EXPECT_EQ(cfg.TamMaxSeparador(), 10);
  EXPECT_EQ(cfg.TamMaxComentarios(), 250);
  for (emPuertoSerial p : {emPuertoRJ45, emPuertoDB9, emPuertoDB25}) {
    EXPECT_FALSE(cfg.HayConfiguracionSMDR(p));
  }
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, BrandAndModelMakeTheSwitchNameAndTheConfigurationReady) {
  cfg.Marca(u"Samsung");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
  cfg.Modelo(u"NX-820");
  EXPECT_EQ(cfg.NombreConmutador(), u"Samsung, NX-820");
  EXPECT_TRUE(cfg.HayConfig());
  EXPECT_TRUE(cfg.Modificado());
  const std::vector<std::string> expected = {"CambioNombreConmutador", "Cambios",
                                             "CambioNombreConmutador", "Cambios"};
  EXPECT_EQ(listener.events, expected);
}

TEST_F(Part2_1, ModelOnlyGivesUnknownSwitchName) {
  cfg.Modelo(u"NX-820");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
}

TEST_F(Part2_1, WritingTheSameBrandAgainSendsNothing) {
  cfg.Marca(u"Samsung");
  listener.events.clear();
  cfg.Modificado(false);
  cfg.Marca(u"Samsung");
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
  cfg.Modificado(true);
  cfg.Marca(u"Samsung");
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, BrandInCapitalsIsAChange) {
  cfg.Marca(u"Samsung");
  cfg.Modificado(false);
  listener.events.clear();
  cfg.Marca(u"SAMSUNG");
  EXPECT_EQ(cfg.Marca(), u"SAMSUNG");
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(listener.events, (std::vector<std::string>{"CambioNombreConmutador", "Cambios"}));
}

TEST_F(Part2_1, BrandOf60CharactersIsCutTo50) {
  std::u16string sixty;
  for (int i = 0; i < 60; ++i) sixty.push_back(static_cast<char16_t>(u'A' + i % 26));
  cfg.Marca(sixty);
  EXPECT_EQ(cfg.Marca(), sixty.substr(0, 50));
  listener.events.clear();
  cfg.Modificado(false);
  cfg.Marca(sixty);
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.Modificado());
  // The first 50 alone are the same stored text: no change either.
  cfg.Marca(sixty.substr(0, 50));
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, EveryNulIsRemovedOnReadingNotOnlyAtTheEnd) {
  cfg.Modelo(std::u16string{u'a', u'b', u'\0', u'c'});
  EXPECT_EQ(cfg.Modelo(), u"abc");
}

TEST_F(Part2_1, BlanksAroundAValueAreKept) {
  cfg.Modelo(u" x ");
  EXPECT_EQ(cfg.Modelo(), u" x ");
  cfg.Comentarios(u"  ");
  EXPECT_EQ(cfg.Comentarios(), u"  ");
}

TEST_F(Part2_1, CommentsAreCutTo250AndSeparatorTo10) {
  cfg.Comentarios(std::u16string(300, u'c'));
  EXPECT_EQ(cfg.Comentarios(), std::u16string(250, u'c'));
  cfg.Separador(u"0123456789ABC");
  EXPECT_EQ(cfg.Separador(), u"0123456789");
}

TEST_F(Part2_1, CommentsAndSeparatorNotifyOnlyCambios) {
  cfg.Comentarios(u"hola");
  cfg.Separador(u"|");
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios", "Cambios"}));
  cfg.Separador(u"|");
  cfg.Comentarios(u"hola");
  EXPECT_EQ(listener.Count("Cambios"), 2);
}

TEST_F(Part2_1, SeparatorCrLfGivesCodes13And10ThenEightZeros) {
  cfg.Separador(u"\r\n");
  EXPECT_EQ(cfg.ListaSeparador(), u"13,10,0,0,0,0,0,0,0,0,");
}

TEST_F(Part2_1, SeparatorCodesAreWindows1252) {
  cfg.Separador(U("€ñ"));
  EXPECT_EQ(cfg.ListaSeparador(), u"128,241,0,0,0,0,0,0,0,0,");
}

TEST_F(Part2_1, CaseZeroMakesTheConfigurationNotReady) {
  cfg.Marca(u"Samsung");
  cfg.Modelo(u"NX-820");
  cfg.Caso(emNoCaso);
  EXPECT_FALSE(cfg.HayConfig());
  EXPECT_EQ(cfg.NombreCaso(), u"No definido");
}

TEST_F(Part2_1, Case99IsStoredWithoutNameAndCountsAsACase) {
  cfg.Marca(u"Samsung");
  cfg.Modelo(u"NX-820");
  listener.events.clear();
  cfg.Caso(static_cast<emCasos>(99));
  EXPECT_EQ(cfg.Caso(), 99);
  EXPECT_EQ(cfg.NombreCaso(), u"");
  EXPECT_TRUE(cfg.HayConfig());
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
}

TEST_F(Part2_1, WritingTheSameCaseIsNoChange) {
  cfg.Caso(emCasoEstandar);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, ObtNombreCasoChangesNothing) {
  EXPECT_EQ(cfg.ObtNombreCaso(emCasoSamsungNX_820), u"Caso de Samsung Nx-820");
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, EveryCaseHasItsName) {
  const char* const names[] = {
      "No definido",
      "Estandar",
      "Caso de Samsung Nx-820",
      "Caso del Nortel Meridian",
      "Caso norstar 0x32 SMDR6",
      "Estandar, duración con resta de fechas.",
      "Estandar, segundos de la duracion multiplicado por 6.",
      "Estandar, llamada saliente por defecto.",
      "Estandar, duración con resta de fechas, llamada saliente por defecto.",
      "Estandar, segundos de la duracion multiplicado por 6, llamada saliente por defecto.",
      "Especial, codigo de cuenta y extensión en conmutadores KX-TDA100 y KX-TDA200.",
  };
  for (int32_t c = 0; c <= 10; ++c) {
    EXPECT_EQ(cfg.ObtNombreCaso(static_cast<emCasos>(c)), U(names[c])) << "case " << c;
  }
  EXPECT_EQ(
      cfg.ObtNombreCaso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto),
      u"");
  EXPECT_EQ(cfg.ObtNombreCaso(emCasoAD_TES), u"");
  EXPECT_EQ(cfg.ObtNombreCaso(static_cast<emCasos>(-1)), u"");
  EXPECT_EQ(cfg.ObtNombreCaso(static_cast<emCasos>(INT32_MIN)), u"");
}

TEST_F(Part2_1, IdentifierIsStoredWithoutNotificationOrChange) {
  cfg.IDCfg(-123456);
  EXPECT_EQ(cfg.IDCfg(), -123456);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, ModificadoWriteStoresAnyValueSilently) {
  cfg.Modificado(true);
  EXPECT_TRUE(cfg.Modificado());
  cfg.Modificado(false);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part2_1, VersionOneSetByAFileOperationHasNoVersionName) {
  velqua_test::TempDir dir;
  velqua_test::WriteFile(dir.Path("v1.ini"), "[Conmutador]\r\nVersion=1\r\n");
  EXPECT_THROW(cfg.Importar(dir.Path16("v1.ini")), Error);  // refused at "Marca"
  EXPECT_EQ(cfg.Version(), emVersionActual);
  EXPECT_EQ(cfg.NombreVersion(), U("No hay versión"));
  cfg.Marca(u"Samsung");
  cfg.Modelo(u"NX-820");
  EXPECT_TRUE(cfg.HayConfig());  // only version 0 makes it false
}

TEST_F(Part2_1, VersionTwoFromAProfileFileIsNamed2_0) {
  velqua_test::TempDir dir;
  velqua_test::WriteFile(dir.Path("v2.ini"), "[Conmutador]\r\nVersion=2\r\n");
  EXPECT_THROW(cfg.Importar(dir.Path16("v2.ini")), Error);
  EXPECT_EQ(cfg.NombreVersion(), u"2.0");
}

TEST_F(Part2_1, IniciarOnAFreshObjectSendsOnlyConfiguracionCargada) {
  cfg.IDCfg(7);
  cfg.Iniciar();
  EXPECT_EQ(listener.events, (std::vector<std::string>{"ConfiguracionCargada"}));
  EXPECT_EQ(cfg.IDCfg(), 7);
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part2_1, IniciarOnAFilledObjectNotifiesEachEmptiedTextInOrder) {
  cfg.Comentarios(u"c");
  cfg.Marca(u"m");
  cfg.Modelo(u"o");
  cfg.Separador(u"|");
  cfg.Caso(emCasoNortelNorstar0x32SMDR6);
  cfg.IDCfg(42);
  listener.events.clear();
  cfg.Iniciar();
  const std::vector<std::string> expected = {
      "Cambios", "CambioNombreConmutador", "Cambios", "CambioNombreConmutador", "Cambios",
      "Cambios", "ConfiguracionCargada"};
  EXPECT_EQ(listener.events, expected);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_EQ(cfg.Version(), emVersion3_0);
  EXPECT_EQ(cfg.IDCfg(), 42);
  EXPECT_EQ(cfg.Marca(), u"");
  EXPECT_EQ(cfg.Separador(), u"");
}

TEST_F(Part2_1, IniciarWithOnlyTheModelSetSendsOnePair) {
  cfg.Modelo(u"o");
  listener.events.clear();
  cfg.Iniciar();
  EXPECT_EQ(listener.events, (std::vector<std::string>{"CambioNombreConmutador", "Cambios",
                                                       "ConfiguracionCargada"}));
}

TEST_F(Part2_1, IniciarClearsWiringEntries1To9And1To25) {
  cfg.ActivaPin(emPuertoRJ45, 9, 2);
  cfg.ActivaPin(emPuertoDB9, 9, 2);
  cfg.ActivaPin(emPuertoDB25, 25, 2);
  cfg.Iniciar();
  EXPECT_FALSE(cfg.PinesConectados(emPuertoRJ45, 9, 2));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 9, 2));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB25, 25, 2));
}

TEST_F(Part2_1, IniciarNeverClearsWiringEntryZero) {
  cfg.ActivaPin(emPuertoRJ45, 0, 3);
  cfg.ActivaPin(emPuertoDB9, 0, 3);
  cfg.ActivaPin(emPuertoDB25, 0, 3);
  cfg.Iniciar();
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 0, 3));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 0, 3));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB25, 0, 3));
}

TEST_F(Part2_1, ListenersSeeTheNewValueAndAreCalledInRegistrationOrder) {
  struct Reader : EventosCfgConmut {
    Reader(clsCfgConmut* c, std::vector<std::string>* log, std::string tag)
        : cfg(c), out(log), name(std::move(tag)) {}
    void CambioNombreConmutador() override { out->push_back(name + ":" + AUtf8(cfg->Marca())); }
    clsCfgConmut* cfg;
    std::vector<std::string>* out;
    std::string name;
  };
  std::vector<std::string> log;
  Reader first(&cfg, &log, "1");
  Reader second(&cfg, &log, "2");
  cfg.AgregaOyente(&first);
  cfg.AgregaOyente(&second);
  cfg.Marca(u"Nortel");
  EXPECT_EQ(log, (std::vector<std::string>{"1:Nortel", "2:Nortel"}));
  cfg.QuitaOyente(&first);
  cfg.Marca(u"Avaya");
  EXPECT_EQ(log.back(), "2:Avaya");
  EXPECT_EQ(log.size(), 3u);
}

}  // namespace
