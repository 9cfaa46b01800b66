// The configuration object: initial values, label texts, derived names, the
// change flag, the reset and the notifications.
#include <string>
#include <vector>

#include "support/velqua_test.h"

namespace {

using namespace velqua;
using velqua_test::U;
using Events = std::vector<std::string>;

class SwitchConfig : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  void Reset() {
    cfg.Modificado(false);
    listener.events.clear();
  }
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

TEST_F(SwitchConfig, NewObjectHoldsTheInitialValuesAndSentNothing) {
  EXPECT_EQ(cfg.Version(), emVersion3_0);
  EXPECT_EQ(cfg.NombreVersion(), u"3.0");
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_EQ(cfg.NombreCaso(), u"Estandar");
  EXPECT_EQ(cfg.IDCfg(), 0);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.Marca() + cfg.Modelo() + cfg.Comentarios() + cfg.Separador(), u"");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
  EXPECT_EQ(cfg.TamMaxSeparador(), 10);
  EXPECT_EQ(cfg.TamMaxComentarios(), 250);
  for (emPuertoSerial p : {emPuertoRJ45, emPuertoDB9, emPuertoDB25}) {
    EXPECT_FALSE(cfg.HayConfiguracionSMDR(p));
  }
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(SwitchConfig, LabelTextsAreCutToTheirWidthAndNotifyOnlyARealChange) {
  struct Label {
    void (clsCfgConmut::*set)(const std::u16string&);
    std::u16string (clsCfgConmut::*get)() const;
    bool renames;
  };
  const Label marca{&clsCfgConmut::Marca, &clsCfgConmut::Marca, true},
      modelo{&clsCfgConmut::Modelo, &clsCfgConmut::Modelo, true},
      comentarios{&clsCfgConmut::Comentarios, &clsCfgConmut::Comentarios, false},
      separador{&clsCfgConmut::Separador, &clsCfgConmut::Separador, false};
  std::u16string sixty;
  for (int i = 0; i < 60; ++i) sixty.push_back(static_cast<char16_t>(u'A' + i % 26));
  const std::u16string nul{u'a', u'b', u'\0', u'c'};
  const struct {
    Label label;
    std::u16string in, out, same;  // `same` stores the same text again
  } rows[] = {
      {marca, sixty, sixty.substr(0, 50), sixty.substr(0, 50)},
      {modelo, sixty, sixty.substr(0, 50), sixty},
      {modelo, nul, u"abc", nul},
      {modelo, u" x ", u" x ", u" x "},
      {comentarios, std::u16string(300, u'c'), std::u16string(250, u'c'), std::u16string(251, 'c')},
      {comentarios, u"  ", u"  ", u"  "},
      {separador, u"0123456789ABC", u"0123456789", u"0123456789"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(velqua::AUtf8(row.in));
    clsCfgConmut c;
    velqua_test::RecordingListener l;
    c.AgregaOyente(&l);
    (c.*row.label.set)(row.in);
    EXPECT_EQ((c.*row.label.get)(), row.out);
    EXPECT_TRUE(c.Modificado());
    EXPECT_EQ(l.events, (row.label.renames ? Events{"CambioNombreConmutador", "Cambios"}
                                           : Events{"Cambios"}));
    c.Modificado(false);
    l.events.clear();
    (c.*row.label.set)(row.same);
    EXPECT_FALSE(c.Modificado());
    EXPECT_TRUE(l.events.empty());
  }
}

TEST_F(SwitchConfig, BrandModelAndCaseMakeTheSwitchNameAndTheConfigurationReady) {
  cfg.Marca(u"Samsung");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
  cfg.Marca(u"");
  cfg.Modelo(u"NX-820");
  EXPECT_EQ(cfg.NombreConmutador(), u"Desconocido");
  EXPECT_FALSE(cfg.HayConfig());
  cfg.Marca(u"Samsung");
  EXPECT_EQ(cfg.NombreConmutador(), u"Samsung, NX-820");
  EXPECT_TRUE(cfg.HayConfig());
  Reset();
  cfg.Marca(u"SAMSUNG");  // the comparison is case-sensitive
  EXPECT_EQ(listener.events, (Events{"CambioNombreConmutador", "Cambios"}));
  cfg.Caso(static_cast<emCasos>(99));  // stored as is, without a name
  EXPECT_EQ(cfg.Caso(), 99);
  EXPECT_EQ(cfg.NombreCaso(), u"");
  EXPECT_TRUE(cfg.HayConfig());
  EXPECT_EQ(listener.events.back(), "Cambios");
  cfg.Caso(emNoCaso);
  EXPECT_FALSE(cfg.HayConfig());
  EXPECT_EQ(cfg.NombreCaso(), u"No definido");
  Reset();
  cfg.Caso(emNoCaso);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(SwitchConfig, EachCaseFrom0To10HasItsNameAndOthersNone) {
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
  for (int32_t c : {11, 12, -1, INT32_MIN}) {
    EXPECT_EQ(cfg.ObtNombreCaso(static_cast<emCasos>(c)), u"") << "case " << c;
  }
}

TEST_F(SwitchConfig, SeparatorCodesAreItsTenWindows1252Bytes) {
  const struct {
    std::string separator, codes;
  } rows[] = {{"", "0,0,0,0,0,0,0,0,0,0,"},
              {"\r\n", "13,10,0,0,0,0,0,0,0,0,"},
              {"€ñ", "128,241,0,0,0,0,0,0,0,0,"},
              {"0123456789", "48,49,50,51,52,53,54,55,56,57,"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.separator);
    cfg.Separador(U(row.separator));
    EXPECT_EQ(AUtf8(cfg.ListaSeparador()), row.codes);
  }
}

TEST_F(SwitchConfig, IniciarEmptiesEachTextWithItsNotificationsAndKeepsTheIdentifier) {
  cfg.IDCfg(7);
  cfg.Iniciar();
  EXPECT_EQ(listener.events, Events{"ConfiguracionCargada"});
  cfg.Modelo(u"o");
  listener.events.clear();
  cfg.Iniciar();
  EXPECT_EQ(listener.events, (Events{"CambioNombreConmutador", "Cambios", "ConfiguracionCargada"}));
  cfg.Comentarios(u"c");
  cfg.Marca(u"m");
  cfg.Modelo(u"o");
  cfg.Separador(u"|");
  cfg.Caso(emCasoNortelNorstar0x32SMDR6);
  listener.events.clear();
  cfg.Iniciar();
  EXPECT_EQ(listener.events,
            (Events{"Cambios", "CambioNombreConmutador", "Cambios", "CambioNombreConmutador",
                    "Cambios", "Cambios", "ConfiguracionCargada"}));
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_EQ(cfg.Version(), emVersion3_0);
  EXPECT_EQ(cfg.IDCfg(), 7);
  EXPECT_EQ(cfg.Marca() + cfg.Modelo() + cfg.Comentarios() + cfg.Separador(), u"");
}

TEST_F(SwitchConfig, IniciarClearsEveryWiringEntryButEntryZero) {
  const struct {
    emPuertoSerial port;
    int16_t last;
  } ports[] = {{emPuertoRJ45, 9}, {emPuertoDB9, 9}, {emPuertoDB25, 25}};
  for (const auto& p : ports) {
    cfg.ActivaPin(p.port, 0, 3);
    cfg.ActivaPin(p.port, 2, 3);
    cfg.ActivaPin(p.port, p.last, 2);
  }
  cfg.Iniciar();
  for (const auto& p : ports) {
    SCOPED_TRACE(p.port);
    EXPECT_TRUE(cfg.PinesConectados(p.port, 0, 3));
    EXPECT_FALSE(cfg.PinesConectados(p.port, 2, 3));
    EXPECT_FALSE(cfg.PinesConectados(p.port, p.last, 2));
  }
}

TEST_F(SwitchConfig, ListenersSeeTheNewValueInRegistrationOrderUntilRemoved) {
  struct Reader : EventosCfgConmut {
    Reader(clsCfgConmut* c, Events* log, std::string tag) : cfg(c), out(log), name(tag) {}
    void CambioNombreConmutador() override { out->push_back(name + ":" + AUtf8(cfg->Marca())); }
    clsCfgConmut* cfg;
    Events* out;
    std::string name;
  };
  Events log;
  Reader first(&cfg, &log, "1");
  Reader second(&cfg, &log, "2");
  cfg.AgregaOyente(&first);
  cfg.AgregaOyente(&second);
  cfg.Marca(u"Nortel");
  cfg.QuitaOyente(&first);
  cfg.Marca(u"Avaya");
  EXPECT_EQ(log, (Events{"1:Nortel", "2:Nortel", "2:Avaya"}));
}

}  // namespace
