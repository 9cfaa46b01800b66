// Part 5.1: the cable pin model.
#include <gtest/gtest.h>

#include "support/velqua_test.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::RecordingListener;

class Part5_1 : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  clsCfgConmut cfg;
  RecordingListener listener;
};

TEST_F(Part5_1, ActivaPinStoresTheBitSignalsOnceAndRepeatsSilently) {
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 2, 3));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 2, 2));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 2, 4));
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(listener.events, (std::vector<std::string>{"Cambios"}));
  cfg.Modificado(false);
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_EQ(listener.events.size(), 1u);
}

TEST_F(Part5_1, DesactivaPinOfAMissingConnectionIsSilent) {
  cfg.DesactivaPin(emPuertoDB9, 4, 2);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part5_1, DesactivaPinRemovesOneConnectionAndSignals) {
  cfg.ActivaPin(emPuertoDB9, 4, 2);
  cfg.ActivaPin(emPuertoDB9, 4, 6);
  cfg.Modificado(false);
  cfg.DesactivaPin(emPuertoDB9, 4, 2);
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 4, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 4, 6));
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_EQ(listener.Count("Cambios"), 3);
}

TEST_F(Part5_1, TwoComputerPinsOnOneSwitchPinAreBothConnected) {
  cfg.ActivaPin(emPuertoRJ45, 3, 2);
  cfg.ActivaPin(emPuertoRJ45, 3, 5);  // element 2 + 16 = 18
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 3, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 3, 5));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoRJ45, 3, 1));
  for (int16_t pc = 1; pc <= 31; ++pc) {
    EXPECT_EQ(cfg.PinesConectados(emPuertoRJ45, 3, pc), pc == 2 || pc == 5) << pc;
  }
}

TEST_F(Part5_1, Db25SwitchPin1IsRefusedForBothOperations) {
  const int32_t number = static_cast<int32_t>(0x800404B5u);
  EXPECT_VELQUA_ERROR(cfg.ActivaPin(emPuertoDB25, 1, 2), number, u"clsConfig.EstableceEstadoPin",
                      u"No se permite conectar el PIN #1 del puerto DB25.");
  EXPECT_VELQUA_ERROR(cfg.DesactivaPin(emPuertoDB25, 1, 2), number, u"clsConfig.EstableceEstadoPin",
                      u"No se permite conectar el PIN #1 del puerto DB25.");
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB25, 1, 2));
}

TEST_F(Part5_1, Db25Pin0AndComputerPin1AreAccepted) {
  cfg.ActivaPin(emPuertoDB25, 0, 2);
  cfg.ActivaPin(emPuertoDB25, 2, 1);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB25, 0, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB25, 2, 1));
  EXPECT_EQ(listener.Count("Cambios"), 2);
}

TEST_F(Part5_1, ComputerPinZeroOrNegativeJoinsPin1) {
  cfg.ActivaPin(emPuertoDB9, 2, 0);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 2, 1));
  cfg.Modificado(false);
  cfg.ActivaPin(emPuertoDB9, 2, -5);  // the same bit: no change
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 2, -100));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 2, 2));
}

TEST_F(Part5_1, ComputerPin31IsTheHighestBitAnd32Overflows) {
  cfg.ActivaPin(emPuertoDB9, 2, 31);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 2, 31));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 2, 30));
  cfg.Modificado(false);
  listener.events.clear();
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, 3, 32), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, 3, -32768), kErrDesbordamiento);
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 3, 1));
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part5_1, OverflowIsCheckedBeforeThePin1AndIndexChecks) {
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB25, 1, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, 99, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(static_cast<emPuertoSerial>(7), 1, 40),
                             kErrDesbordamiento);
}

TEST_F(Part5_1, SwitchPinOutsideTheArrayIsIndexError) {
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoRJ45, 10, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.ActivaPin(emPuertoDB9, -1, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.DesactivaPin(emPuertoDB25, 26, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 10, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB25, -3, 2), kErrIndiceFueraDeIntervalo);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  // Pin 25 of DB25 and pin 0 of every port are inside the arrays.
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB25, 25, 2));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoRJ45, 0, 2));
}

TEST_F(Part5_1, PinesConectadosOnAnEmptyElementIgnoresAnOverflowingComputerPin) {
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 4, 40));
  cfg.ActivaPin(emPuertoDB9, 4, 1);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 4, 40), kErrDesbordamiento);
  EXPECT_VELQUA_ERROR_NUMBER(cfg.PinesConectados(emPuertoDB9, 4, -32768), kErrDesbordamiento);
}

TEST_F(Part5_1, OtherPortValuesAreNeverConnectedNorConfigured) {
  for (int32_t p : {0, 4, -1, 1000}) {
    const auto port = static_cast<emPuertoSerial>(p);
    EXPECT_FALSE(cfg.PinesConectados(port, 3, 2));
    EXPECT_FALSE(cfg.PinesConectados(port, 300, 2));
    EXPECT_FALSE(cfg.HayConfiguracionSMDR(port));
    cfg.ActivaPin(port, 3, 2);  // no array touched, no change signal
    cfg.LimpiaConfiguracionSMDR(port);
  }
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoDB9));
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoDB25));
}

TEST_F(Part5_1, Rj45Pins0And9DoNotCountAsConfigurationAndSurviveClearing) {
  cfg.ActivaPin(emPuertoRJ45, 9, 2);
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  cfg.ActivaPin(emPuertoRJ45, 0, 3);
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  cfg.ActivaPin(emPuertoRJ45, 8, 4);
  EXPECT_TRUE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  cfg.LimpiaConfiguracionSMDR(emPuertoRJ45);
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoRJ45, 8, 4));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 9, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 0, 3));
}

TEST_F(Part5_1, LastPinOfEachPortCountsAsConfiguration) {
  cfg.ActivaPin(emPuertoDB9, 9, 1);
  EXPECT_TRUE(cfg.HayConfiguracionSMDR(emPuertoDB9));
  cfg.ActivaPin(emPuertoDB25, 25, 1);
  EXPECT_TRUE(cfg.HayConfiguracionSMDR(emPuertoDB25));
  cfg.LimpiaConfiguracionSMDR(emPuertoDB9);
  cfg.LimpiaConfiguracionSMDR(emPuertoDB25);
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoDB9));
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoDB25));
}

TEST_F(Part5_1, ClearingAWiredPortIsSilent) {
  cfg.ActivaPin(emPuertoDB9, 3, 2);
  cfg.Modificado(false);
  listener.events.clear();
  cfg.LimpiaConfiguracionSMDR(emPuertoDB9);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoDB9));
}

TEST_F(Part5_1, ThePortsAreIndependent) {
  cfg.ActivaPin(emPuertoRJ45, 3, 2);
  cfg.ActivaPin(emPuertoDB9, 3, 2);
  cfg.ActivaPin(emPuertoDB25, 3, 2);
  cfg.LimpiaConfiguracionSMDR(emPuertoDB9);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoRJ45, 3, 2));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 3, 2));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB25, 3, 2));
  cfg.DesactivaPin(emPuertoRJ45, 3, 2);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB25, 3, 2));
  EXPECT_FALSE(cfg.HayConfiguracionSMDR(emPuertoRJ45));
  EXPECT_TRUE(cfg.HayConfiguracionSMDR(emPuertoDB25));
}

TEST_F(Part5_1, ManySwitchPinsMayShareOneComputerPin) {
  cfg.ActivaPin(emPuertoDB9, 4, 7);
  cfg.ActivaPin(emPuertoDB9, 6, 7);
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 4, 7));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 6, 7));
  EXPECT_FALSE(cfg.PinesConectados(emPuertoDB9, 5, 7));
}

}  // namespace
