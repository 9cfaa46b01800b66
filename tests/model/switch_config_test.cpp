// The configuration object: initial values, label texts, derived names, the
// change flag, the reset and the notifications.
#include <string>

#include "support/velqua_test.h"

namespace {

using namespace velqua;
using velqua_test::U;

class SwitchConfig : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

TEST_F(SwitchConfig, EachWriteSetsTheNamesReadinessFlagAndNotifications) {
  using C = clsCfgConmut&;
  // Version, case name, switch name, ready, modified, then the notifications:
  // N CambioNombreConmutador, C Cambios, L ConfiguracionCargada.
  const struct {
    void (*write)(C);
    const char* state;
  } steps[] = {
      {[](C) {}, "3.0|Estandar|Desconocido|-|-|"},
      {[](C c) { c.Marca(u"Samsung"); }, "3.0|Estandar|Desconocido|-|M|NC"},
      {[](C c) { c.Modificado(false), c.Marca(u"Samsung"); }, "3.0|Estandar|Desconocido|-|-|"},
      {[](C c) { c.Modelo(u"NX-820"); }, "3.0|Estandar|Samsung, NX-820|ready|M|NC"},
      {[](C c) { c.Marca(u"SAMSUNG"); }, "3.0|Estandar|SAMSUNG, NX-820|ready|M|NC"},
      {[](C c) { c.Marca(u""); }, "3.0|Estandar|Desconocido|-|M|NC"},
      {[](C c) { c.Marca(u"Samsung"); }, "3.0|Estandar|Samsung, NX-820|ready|M|NC"},
      {[](C c) { c.Caso(static_cast<emCasos>(99)); }, "3.0||Samsung, NX-820|ready|M|C"},
      {[](C c) { c.Caso(emNoCaso); }, "3.0|No definido|Samsung, NX-820|-|M|C"},
      {[](C c) { c.Modificado(false), c.Caso(emNoCaso); }, "3.0|No definido|Samsung, NX-820|-|-|"},
      {[](C c) { c.Comentarios(u"c"), c.Separador(u"|"); },
       "3.0|No definido|Samsung, NX-820|-|M|CC"},
      {[](C c) { c.IDCfg(7), c.Iniciar(); }, "3.0|Estandar|Desconocido|-|-|CNCNCCL"},
      {[](C c) { c.Iniciar(); }, "3.0|Estandar|Desconocido|-|-|L"},
      {[](C c) { c.Modelo(u"o"), c.Iniciar(); }, "3.0|Estandar|Desconocido|-|-|NCNCL"},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.state);
    step.write(cfg);
    std::string sent;
    for (const std::string& e : listener.events) {
      sent += e == "Cambios" ? 'C' : e[1] == 'a' ? 'N' : 'L';
    }
    listener.events.clear();
    EXPECT_EQ(AUtf8(cfg.NombreVersion() + u"|" + cfg.NombreCaso() + u"|" + cfg.NombreConmutador()) +
                  (cfg.HayConfig() ? "|ready" : "|-") + (cfg.Modificado() ? "|M|" : "|-|") + sent,
              step.state);
  }
  EXPECT_EQ(cfg.IDCfg(), 7);
  EXPECT_EQ(cfg.Marca() + cfg.Modelo() + cfg.Comentarios() + cfg.Separador(), u"");
}

TEST_F(SwitchConfig, LabelTextsAreCutToTheirWidthAndOnlyAChangedTextCounts) {
  struct Label {
    void (clsCfgConmut::*set)(const std::u16string&);
    std::u16string (clsCfgConmut::*get)() const;
  };
  const Label marca{&clsCfgConmut::Marca, &clsCfgConmut::Marca},
      modelo{&clsCfgConmut::Modelo, &clsCfgConmut::Modelo},
      comentarios{&clsCfgConmut::Comentarios, &clsCfgConmut::Comentarios},
      separador{&clsCfgConmut::Separador, &clsCfgConmut::Separador};
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
    (c.*row.label.set)(row.in);
    EXPECT_EQ((c.*row.label.get)(), row.out);
    EXPECT_TRUE(c.Modificado());
    c.Modificado(false);
    (c.*row.label.set)(row.same);
    EXPECT_FALSE(c.Modificado());
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

TEST_F(SwitchConfig, ListenersSeeTheNewValueInRegistrationOrderUntilRemoved) {
  struct Reader : EventosCfgConmut {
    Reader(clsCfgConmut* c, std::string* log, const char* tag) : cfg(c), out(log), name(tag) {}
    void CambioNombreConmutador() override { *out += name + AUtf8(cfg->Marca()) + " "; }
    clsCfgConmut* cfg;
    std::string* out;
    std::string name;
  };
  std::string log;
  Reader first(&cfg, &log, "1:"), second(&cfg, &log, "2:");
  cfg.AgregaOyente(&first);
  cfg.AgregaOyente(&second);
  cfg.Marca(u"Nortel");
  cfg.QuitaOyente(&first);
  cfg.Marca(u"Avaya");
  EXPECT_EQ(log, "1:Nortel 2:Nortel 2:Avaya ");
}

}  // namespace
