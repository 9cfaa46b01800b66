// The cable pin model: which switch pin of a port is joined to which computer pin.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;

class CablePins : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  // True when nothing was marked modified nor notified since the last Forget.
  bool Quiet() const { return !cfg.Modificado() && listener.events.empty(); }
  void Forget() {
    cfg.Modificado(false);
    listener.events.clear();
  }
  clsCfgConmut cfg;
  velqua_test::RecordingListener listener;
};

TEST_F(CablePins, OnlyRealChangesSignal) {
  cfg.ActivaPin(emPuertoDB9, 4, 2);
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
  cfg.ActivaPin(emPuertoDB9, 4, 6);
  Forget();
  cfg.ActivaPin(emPuertoDB9, 4, 2);     // already connected
  cfg.DesactivaPin(emPuertoDB9, 4, 3);  // never connected
  EXPECT_TRUE(Quiet());
  cfg.DesactivaPin(emPuertoDB9, 4, 2);
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 4, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 4, 6));
  cfg.ActivaPin(emPuertoDB25, 4, 6);
  cfg.LimpiaConfiguracionSMDR(emPuertoRJ45);  // each port has its own pins
  cfg.DesactivaPin(emPuertoDB25, 4, 6);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 4, 6));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoRJ45, 4, 6));
}

// One pair on a fresh configuration, then computer pins -3 to 31 of that
// switch pin asked: only the pair reads back, computer pins below 1 as pin 1.
TEST_F(CablePins, ConnectsExactlyOneComputerPin) {
  for (const auto& [pair, joined] : velqua_test::ReadCases("wiring/pin_pairs.txt")) {
    SCOPED_TRACE(pair);
    std::istringstream in(pair);
    int port = 0, sw = 0, pc = 0;
    in >> port >> sw >> pc;
    clsCfgConmut c;
    c.ActivaPin(static_cast<emPuertoSerial>(port), static_cast<int16_t>(sw),
                static_cast<int16_t>(pc));
    for (int16_t asked = -3; asked <= 31; ++asked) {
      EXPECT_EQ(
          c.PinesConectados(static_cast<emPuertoSerial>(port), static_cast<int16_t>(sw), asked),
          std::max(asked, int16_t{1}) == std::stoi(joined))
          << asked;
    }
  }
}

TEST_F(CablePins, Db25SwitchPin1IsRefused) {
  for (bool on : {true, false}) {
    EXPECT_VELQUA_ERROR(
        on ? cfg.ActivaPin(emPuertoDB25, 1, 2) : cfg.DesactivaPin(emPuertoDB25, 1, 2), 0x800404B5u,
        u"clsConfig.EstableceEstadoPin", u"No se permite conectar el PIN #1 del puerto DB25.");
  }
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB25, 1, 2));
  EXPECT_TRUE(Quiet());
}

// The computer pin overflows before the port and switch pin are looked at.
TEST_F(CablePins, BadPinNumbersAreRuntimeErrors) {
  cfg.ActivaPin(emPuertoDB9, 4, 1);
  Forget();
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, 3, 32), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.DesactivaPin(emPuertoDB9, 3, -32768), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB25, 1, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, 99, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(static_cast<emPuertoSerial>(7), 1, 40),
                             kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 4, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 4, -32768), kErrDesbordamiento);
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 5, 40));  // an empty switch pin asks nothing
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoRJ45, 10, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, -1, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.DesactivaPin(emPuertoDB25, 26, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 10, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB25, -1, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_TRUE(Quiet());
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 3, 1));
}

// A port counts as wired from switch pin 1 to its last pin (8 for RJ45);
// clearing empties those pins silently and keeps the others. Other port
// values have no pins: connecting there neither connects nor changes anything.
TEST_F(CablePins, WiredPortsAndClearing) {
  for (const auto& [pin, state] : velqua_test::ReadCases("wiring/wired_ports.txt")) {
    SCOPED_TRACE(pin);
    const auto port = static_cast<emPuertoSerial>(std::stoi(pin));
    const auto sw = static_cast<int16_t>(std::stoi(pin.substr(pin.find(' '))));
    const bool counts = state[0] == 'C', kept = state[1] == 'K';
    clsCfgConmut c;
    c.ActivaPin(port, sw, 3);
    EXPECT_EQ(c.Modificado(), counts || kept);
    EXPECT_EQ(c.PinesConectados(port, sw, 3), counts || kept);
    EXPECT_EQ(c.HayConfiguracionSMDR(port), counts);
    c.Modificado(false);
    c.LimpiaConfiguracionSMDR(port);
    EXPECT_FALSE(c.HayConfiguracionSMDR(port));
    EXPECT_EQ(c.PinesConectados(port, sw, 3), kept);
    EXPECT_FALSE(c.Modificado());
  }
}

}  // namespace
