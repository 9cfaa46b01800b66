// Part 5.2: the cable diagram, checked call by call on the recording surface.
//
// Every expected value below is worked out by hand from the spec with
// px = py = 15 and these line heights: "MS Sans Serif" 10 -> 240 (A = 480),
// "MS Sans Serif" 8 -> 195 (h8), "MS Serif" 8 -> 210 (h, the row height).
// With X = Y = 0 that gives: header texts at y = A = 480; the header band
// 675-705; columns cS = 26 px = 390, c9 = 126 px = 1890, c25 = 182 px = 2730;
// rows at y = 705, 915, 1125, 1335, 1545; wires at w = y + 6 py = y + 90;
// switch-DB9 wire 690-1740, DB9-DB25 wire 2145-2580, fan-out vertical at
// c9 - 20 px = 1590, bridge vertical at cS + 30 px = 840.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/failing_surface.h"
#include "support/velqua_test.h"
#include "velqua/superficie_grabadora.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using velqua_test::RecordingListener;
using velqua_test::U;
using Lines = std::vector<std::string>;

const std::string kWhite = "0xFFFFFF";
const std::string kBlack = "0x000000";
const std::string kNavy = "0x800000";

Lines& operator+=(Lines& a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

std::string N(int v) { return std::to_string(v); }

Lines Text(int x, int y, const std::string& text) {
  return {"CurrentX " + N(x), "CurrentY " + N(y), "Print \"" + text + "\""};
}

std::string LineCall(int flags, int x1, int y1, int x2, int y2, const std::string& colour) {
  return "Line " + N(flags) + " (" + N(x1) + ", " + N(y1) + ")-(" + N(x2) + ", " + N(y2) + ") " +
         colour;
}
std::string Fill(int x1, int y1, int x2, int y2, const std::string& c) {
  return LineCall(38, x1, y1, x2, y2, c);
}
std::string Outline(int x1, int y1, int x2, int y2) { return LineCall(22, x1, y1, x2, y2, kBlack); }
std::string Segment(int x1, int y1, int x2, int y2) { return LineCall(6, x1, y1, x2, y2, kBlack); }
std::string Continue(int x2, int y2) { return LineCall(2, 0, 0, x2, y2, kBlack); }

// Steps 1-5 at (X, Y), px = py = 15.
Lines Title(int X, int Y) {
  Lines l = {"FontName \"MS Sans Serif\"",
             "FontSize 10",
             "FontBold false",
             "TextHeight \"M\" -> 240",
             Fill(X, Y, X + 3200, Y + 480, kNavy),
             "ForeColor 0xFFFFFF"};
  l += Text(X + 150, Y + 15, "Confguración del cable SMDR");
  l.push_back("FontSize 8");
  l += Text(X + 60, Y + 270, "Conmutador");
  l += Text(X + 1725, Y + 270, "PC (Computadora)");
  l += {"ForeColor 0x000000", "TextHeight \"M\" -> 195",
        Fill(X, Y + 480, X + 3200, Y + 675, kWhite)};
  return l;
}

// Step 6 at (0, 0): message at (20 px, A - 1 py), outline of height A + h8.
Lines NoWiring() {
  Lines l = Title(0, 0);
  l += Text(300, 465, "-- No hay configuración realizada --");
  l.push_back(Outline(0, 0, 3200, 675));
  return l;
}

// Steps 7-10 at (0, 0).
Lines Header(const std::string& port) {
  Lines l = Title(0, 0);
  l += Text(300, 480, port);
  l += Text(1800, 480, "DB9");
  l += Text(2550, 480, "DB25");
  l += {Fill(0, 675, 3200, 705, kWhite), "FontName \"MS Serif\"", "FontSize 8",
        "TextHeight \"M\" -> 210"};
  return l;
}

// A row with all three texts and both wires (first row of a group), top y.
Lines FullRow(int y, const std::string& sw, const std::string& db9, const std::string& db25) {
  Lines l = {Fill(0, y, 3200, y + 210, kWhite)};
  l += Text(390, y, sw);
  l += Text(1890, y, db9);
  l += Text(2730, y, db25);
  l += {Segment(690, y + 90, 1740, y + 90), Segment(2145, y + 90, 2580, y + 90)};
  return l;
}

// A later row of a fan-out group: w - h = y + 90 - 210 = y - 120.
Lines FanRow(int y, const std::string& db9, const std::string& db25) {
  Lines l = {Fill(0, y, 3200, y + 210, kWhite)};
  l += Text(1890, y, db9);
  l += Text(2730, y, db25);
  l += {Segment(1590, y - 120, 1590, y + 90), Continue(1740, y + 90),
        Segment(2145, y + 90, 2580, y + 90)};
  return l;
}

// A later row of a bridged group.
Lines BridgeRow(int y, const std::string& sw) {
  Lines l = {Fill(0, y, 3200, y + 210, kWhite)};
  l += Text(390, y, sw);
  l += {Segment(840, y - 120, 840, y + 90), Continue(690, y + 90)};
  return l;
}

// The DB25 ground row: "Gnd" at c9 - 6 px = 1800.
Lines GroundRow(int y) {
  Lines l = {Fill(0, y, 3200, y + 210, kWhite)};
  l += Text(390, y, "1");
  l += Text(1800, y, "Gnd");
  l += Text(2730, y, "1");
  l += {Segment(690, y + 90, 1740, y + 90), Segment(2145, y + 90, 2580, y + 90)};
  return l;
}

using velqua_test::FailingSurface;

void SetHeights(SuperficieGrabadora& s) {
  s.AltoTexto(u"MS Sans Serif", 10, 240);
  s.AltoTexto(u"MS Sans Serif", 8, 195);
  s.AltoTexto(u"MS Serif", 8, 210);
}

class Part5_2 : public ::testing::Test {
 protected:
  void SetUp() override {
    SetHeights(surface);
    cfg.AgregaOyente(&listener);
  }
  // Wires and then forgets the change signal, so tests can check the drawing
  // changes nothing.
  void Wire(emPuertoSerial port, int16_t sw, int16_t pc) {
    cfg.ActivaPin(port, sw, pc);
    cfg.Modificado(false);
    listener.events.clear();
  }
  Lines Draw(emPuertoSerial port) {
    cfg.DibujaConfiguracionSMDR(port, surface);
    return surface.Lineas();
  }
  clsCfgConmut cfg;
  SuperficieGrabadora surface;
  RecordingListener listener;
};

TEST_F(Part5_2, PortWithoutWiringDrawsTitleMessageAndShortOutline) {
  EXPECT_EQ(Draw(emPuertoDB9), NoWiring());
}

TEST_F(Part5_2, NoPortAndValuesOutsideTheEnumerationDrawTheMessage) {
  Wire(emPuertoDB9, 3, 2);
  Wire(emPuertoRJ45, 3, 2);
  Wire(emPuertoDB25, 3, 2);
  for (int32_t port : {0, 4, -1, 1000}) {
    surface.Borra();
    EXPECT_EQ(Draw(static_cast<emPuertoSerial>(port)), NoWiring()) << port;
  }
}

TEST_F(Part5_2, Rj45WiredOnlyOnPin9OrPin0DrawsTheMessage) {
  Wire(emPuertoRJ45, 9, 2);
  Wire(emPuertoRJ45, 0, 3);
  EXPECT_EQ(Draw(emPuertoRJ45), NoWiring());
}

TEST_F(Part5_2, MessageLeavesMsSansSerif8Black) {
  Draw(emPuertoDB9);
  EXPECT_EQ(surface.FontNameActual(), u"MS Sans Serif");
  EXPECT_EQ(surface.FontSizeActual(), 8);
  EXPECT_FALSE(surface.FontBoldActual());
  EXPECT_EQ(surface.ForeColorActual(), 0);
}

TEST_F(Part5_2, SinglePinDrawsOneRowCallByCall) {
  Wire(emPuertoDB9, 3, 2);
  const Lines expected = {
      "FontName \"MS Sans Serif\"",
      "FontSize 10",
      "FontBold false",
      "TextHeight \"M\" -> 240",
      "Line 38 (0, 0)-(3200, 480) 0x800000",
      "ForeColor 0xFFFFFF",
      "CurrentX 150",
      "CurrentY 15",
      "Print \"Confguración del cable SMDR\"",
      "FontSize 8",
      "CurrentX 60",
      "CurrentY 270",
      "Print \"Conmutador\"",
      "CurrentX 1725",
      "CurrentY 270",
      "Print \"PC (Computadora)\"",
      "ForeColor 0x000000",
      "TextHeight \"M\" -> 195",
      "Line 38 (0, 480)-(3200, 675) 0xFFFFFF",
      "CurrentX 300",
      "CurrentY 480",
      "Print \"DB9\"",
      "CurrentX 1800",
      "CurrentY 480",
      "Print \"DB9\"",
      "CurrentX 2550",
      "CurrentY 480",
      "Print \"DB25\"",
      "Line 38 (0, 675)-(3200, 705) 0xFFFFFF",
      "FontName \"MS Serif\"",
      "FontSize 8",
      "TextHeight \"M\" -> 210",
      "Line 38 (0, 705)-(3200, 915) 0xFFFFFF",
      "CurrentX 390",
      "CurrentY 705",
      "Print \"3\"",
      "CurrentX 1890",
      "CurrentY 705",
      "Print \"2\"",
      "CurrentX 2730",
      "CurrentY 705",
      "Print \"3\"",
      "Line 6 (690, 795)-(1740, 795) 0x000000",
      "Line 6 (2145, 795)-(2580, 795) 0x000000",
      "Line 22 (0, 0)-(3200, 915) 0x000000",
  };
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, PixelOffsetsUseTwipsPerPixelXAndYSeparately) {
  // px = 10, py = 20: cS 20/26 px = 200/260, c9 120/126 px = 1200/1260,
  // c25 170/182 px = 1700/1820; band 675-715; y = 715, w = 835.
  surface.TwipsPorPixel(10, 20);
  Wire(emPuertoDB9, 3, 2);
  Lines expected = {"FontName \"MS Sans Serif\"",
                    "FontSize 10",
                    "FontBold false",
                    "TextHeight \"M\" -> 240",
                    Fill(0, 0, 3200, 480, kNavy),
                    "ForeColor 0xFFFFFF"};
  expected += Text(100, 20, "Confguración del cable SMDR");
  expected.push_back("FontSize 8");
  expected += Text(40, 360, "Conmutador");
  expected += Text(1150, 360, "PC (Computadora)");
  expected += {"ForeColor 0x000000", "TextHeight \"M\" -> 195", Fill(0, 480, 3200, 675, kWhite)};
  expected += Text(200, 480, "DB9");
  expected += Text(1200, 480, "DB9");
  expected += Text(1700, 480, "DB25");
  expected += {Fill(0, 675, 3200, 715, kWhite), "FontName \"MS Serif\"", "FontSize 8",
               "TextHeight \"M\" -> 210", Fill(0, 715, 3200, 925, kWhite)};
  expected += Text(260, 715, "3");
  expected += Text(1260, 715, "2");
  expected += Text(1820, 715, "3");
  expected +=
      {Segment(460, 835, 1160, 835), Segment(1430, 835, 1720, 835), Outline(0, 0, 3200, 925)};
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, MessageUsesPixelSizesToo) {
  surface.TwipsPorPixel(10, 20);
  cfg.DibujaConfiguracionSMDR(emPuertoRJ45, surface);
  const Lines l = surface.Lineas();
  ASSERT_GE(l.size(), 4u);
  const Lines tail(l.end() - 4, l.end());
  Lines expected = Text(200, 460, "-- No hay configuración realizada --");
  expected.push_back(Outline(0, 0, 3200, 675));
  EXPECT_EQ(tail, expected);
}

TEST_F(Part5_2, FanOutDrawsOneRowPerComputerPinJoinedByTheVerticalAtC9) {
  Wire(emPuertoDB9, 2, 1);
  Wire(emPuertoDB9, 2, 4);
  Lines expected = Header("DB9");
  expected += FullRow(705, "2", "1", "8");
  expected += FanRow(915, "4", "20");
  expected.push_back(Outline(0, 0, 3200, 1125));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, FanOutOfThreeChainsEachRowToThePreviousOne) {
  Wire(emPuertoDB9, 1, 9);
  Wire(emPuertoDB9, 1, 3);
  Wire(emPuertoDB9, 1, 6);
  Lines expected = Header("DB9");
  expected += FullRow(705, "1", "3", "2");
  expected += FanRow(915, "6", "6");
  expected += FanRow(1125, "9", "22");
  expected.push_back(Outline(0, 0, 3200, 1335));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, BridgeDrawsOneRowPerSwitchPinJoinedByTheVerticalAtCs) {
  Wire(emPuertoDB9, 4, 7);
  Wire(emPuertoDB9, 6, 7);
  Lines expected = Header("DB9");
  expected += FullRow(705, "4", "7", "4");
  expected += BridgeRow(915, "6");
  expected.push_back(Outline(0, 0, 3200, 1125));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, LastSwitchPinOfRj45IsDrawn) {
  Wire(emPuertoRJ45, 8, 9);
  Lines expected = Header("RJ45");
  expected += FullRow(705, "8", "9", "22");
  expected.push_back(Outline(0, 0, 3200, 915));
  EXPECT_EQ(Draw(emPuertoRJ45), expected);
}

TEST_F(Part5_2, LastSwitchPinOfDb9IsDrawn) {
  Wire(emPuertoDB9, 9, 5);
  Lines expected = Header("DB9");
  expected += FullRow(705, "9", "5", "7");
  expected.push_back(Outline(0, 0, 3200, 915));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, LastSwitchPinOfDb25IsDrawnAfterTheGroundRow) {
  Wire(emPuertoDB25, 25, 3);
  Lines expected = Header("DB25");
  expected += GroundRow(705);
  expected += FullRow(915, "25", "3", "2");
  expected.push_back(Outline(0, 0, 3200, 1125));
  EXPECT_EQ(Draw(emPuertoDB25), expected);
}

TEST_F(Part5_2, Rj45SwitchPin9IsNotDrawnBesideOtherWiring) {
  Wire(emPuertoRJ45, 1, 2);
  Wire(emPuertoRJ45, 9, 2);
  Lines expected = Header("RJ45");
  expected += FullRow(705, "1", "2", "3");
  expected.push_back(Outline(0, 0, 3200, 915));
  EXPECT_EQ(Draw(emPuertoRJ45), expected);
}

TEST_F(Part5_2, Db25StartsWithTheGroundRow) {
  Wire(emPuertoDB25, 2, 3);
  Wire(emPuertoDB25, 3, 2);
  Wire(emPuertoDB25, 7, 5);
  Lines expected = Header("DB25");
  expected += GroundRow(705);
  expected += FullRow(915, "2", "3", "2");
  expected += FullRow(1125, "3", "2", "3");
  expected += FullRow(1335, "7", "5", "7");
  expected.push_back(Outline(0, 0, 3200, 1545));
  EXPECT_EQ(Draw(emPuertoDB25), expected);
}

TEST_F(Part5_2, Db25GroundRowIsDrawnEvenWhenNoRowFollows) {
  Wire(emPuertoDB25, 4, 12);
  Lines expected = Header("DB25");
  expected += GroundRow(705);
  expected.push_back(Outline(0, 0, 3200, 915));
  EXPECT_EQ(Draw(emPuertoDB25), expected);
}

TEST_F(Part5_2, PinOnlyOfOneComputerPinAndSharingAnotherIsDrawnTwice) {
  // Switch pin 2: computer pins 1 (alone) and 5 (shared with switch pin 3).
  Wire(emPuertoDB9, 2, 1);
  Wire(emPuertoDB9, 2, 5);
  Wire(emPuertoDB9, 3, 5);
  Lines expected = Header("DB9");
  expected += FullRow(705, "2", "1", "8");  // fan-out group of 2, shared pin included
  expected += FanRow(915, "5", "7");
  expected += FullRow(1125, "2", "5", "7");  // bridged group of computer pin 5
  expected += BridgeRow(1335, "3");
  expected.push_back(Outline(0, 0, 3200, 1545));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, MainPassStartsAgainAfterEachBridgedGroup) {
  // Computer pin 1: switch pins 2 and 4; computer pin 5: switch pins 2 and 3.
  // Group of 2 (first computer pin 1) draws 2 and 4; the restarted pass finds
  // 3, whose group (computer pin 5) draws 2 again and 3.
  Wire(emPuertoDB9, 2, 1);
  Wire(emPuertoDB9, 2, 5);
  Wire(emPuertoDB9, 3, 5);
  Wire(emPuertoDB9, 4, 1);
  Lines expected = Header("DB9");
  expected += FullRow(705, "2", "1", "8");
  expected += BridgeRow(915, "4");
  expected += FullRow(1125, "2", "5", "7");
  expected += BridgeRow(1335, "3");
  expected.push_back(Outline(0, 0, 3200, 1545));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, BridgedGroupEndsAsSoonAsNoSharedPinIsLeft) {
  // Computer pin 1: switch pins 2 and 5; computer pin 3: switch pins 4 and 5.
  // The group of 2 removes 2 and 5; the group of 4 ends after 4, so switch
  // pin 5 is not drawn again under computer pin 3 (the spec's algorithm).
  Wire(emPuertoDB9, 2, 1);
  Wire(emPuertoDB9, 4, 3);
  Wire(emPuertoDB9, 5, 1);
  Wire(emPuertoDB9, 5, 3);
  Lines expected = Header("DB9");
  expected += FullRow(705, "2", "1", "8");
  expected += BridgeRow(915, "5");
  expected += FullRow(1125, "4", "3", "2");
  expected.push_back(Outline(0, 0, 3200, 1335));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, ComputerPinsAbove9AreNotDrawn) {
  Wire(emPuertoDB9, 1, 10);
  Wire(emPuertoDB9, 1, 2);
  Wire(emPuertoDB9, 5, 31);
  Lines expected = Header("DB9");
  expected += FullRow(705, "1", "2", "3");
  expected.push_back(Outline(0, 0, 3200, 915));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, WiringOnlyAbove9DrawsTheHeaderAndNoRow) {
  Wire(emPuertoDB9, 5, 12);
  Lines expected = Header("DB9");
  expected.push_back(Outline(0, 0, 3200, 705));
  EXPECT_EQ(Draw(emPuertoDB9), expected);
}

TEST_F(Part5_2, OmittedPositionIsTheOrigin) {
  Wire(emPuertoDB9, 3, 2);
  SuperficieGrabadora explicit_origin;
  SetHeights(explicit_origin);
  cfg.DibujaConfiguracionSMDR(emPuertoDB9, explicit_origin, 0, 0);
  EXPECT_EQ(Draw(emPuertoDB9), explicit_origin.Lineas());
  EXPECT_EQ(surface.Lineas()[4], "Line 38 (0, 0)-(3200, 480) 0x800000");
}

TEST_F(Part5_2, PositionMovesEveryCoordinateAndComesBackUnchanged) {
  Wire(emPuertoDB9, 3, 2);
  float x = 1000;
  float y = 2000;
  cfg.DibujaConfiguracionSMDR(emPuertoDB9, surface, x, y);
  EXPECT_EQ(x, 1000);
  EXPECT_EQ(y, 2000);
  Lines expected = Title(1000, 2000);
  expected += Text(1300, 2480, "DB9");
  expected += Text(2800, 2480, "DB9");
  expected += Text(3550, 2480, "DB25");
  expected += {Fill(1000, 2675, 4200, 2705, kWhite), "FontName \"MS Serif\"", "FontSize 8",
               "TextHeight \"M\" -> 210", Fill(1000, 2705, 4200, 2915, kWhite)};
  expected += Text(1390, 2705, "3");
  expected += Text(2890, 2705, "2");
  expected += Text(3730, 2705, "3");
  expected += {Segment(1690, 2795, 2740, 2795), Segment(3145, 2795, 3580, 2795),
               Outline(1000, 2000, 4200, 2915)};
  EXPECT_EQ(surface.Lineas(), expected);
}

TEST_F(Part5_2, WiredDrawingLeavesMsSerif8BlackAndTheConfigurationUnchanged) {
  Wire(emPuertoDB9, 2, 1);
  Wire(emPuertoDB9, 2, 5);
  Wire(emPuertoDB9, 3, 5);
  Draw(emPuertoDB9);
  EXPECT_EQ(surface.FontNameActual(), u"MS Serif");
  EXPECT_EQ(surface.FontSizeActual(), 8);
  EXPECT_EQ(surface.ForeColorActual(), 0);
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 2, 1));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 3, 5));
}

TEST_F(Part5_2, ColoursAreOnlyNavyWhiteAndBlack) {
  Wire(emPuertoDB25, 2, 3);
  Wire(emPuertoDB25, 4, 3);
  Draw(emPuertoDB25);
  for (const LlamadaGrabada& call : surface.Llamadas()) {
    if (call.cadOperacion == "Line") {
      EXPECT_TRUE(call.lnColor == 0x800000 || call.lnColor == 0xFFFFFF || call.lnColor == 0)
          << SuperficieGrabadora::LineaDe(call);
    }
  }
}

TEST_F(Part5_2, SurfaceFailingInPrintEndsTheDrawingWithItsError) {
  Wire(emPuertoDB9, 3, 2);
  FailingSurface failing;
  SetHeights(failing);
  failing.fail_print = 4;  // the header's port name
  EXPECT_THROW(cfg.DibujaConfiguracionSMDR(emPuertoDB9, failing), std::runtime_error);
  const Lines header = Header("DB9");
  // Everything before the failing Print stays drawn; nothing comes after it.
  const Lines drawn(header.begin(), header.begin() + 21);
  EXPECT_EQ(failing.Lineas(), drawn);
  EXPECT_EQ(failing.Lineas().back(), "CurrentY 480");
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part5_2, SurfaceFailingInLineEndsTheDrawingWithItsError) {
  Wire(emPuertoDB9, 3, 2);
  FailingSurface failing(U("Line falló"));
  SetHeights(failing);
  failing.fail_line = 4;  // the first row's background
  EXPECT_VELQUA_ERROR(cfg.DibujaConfiguracionSMDR(emPuertoDB9, failing), 480, u"Host",
                      U("Line falló"));
  EXPECT_EQ(failing.Lineas(), Header("DB9"));
  EXPECT_TRUE(cfg.PinesConectados(emPuertoDB9, 3, 2));
}

TEST_F(Part5_2, FailureInTheOutlineOfTheMessageReachesTheCaller) {
  FailingSurface failing;
  failing.fail_line = 3;
  EXPECT_THROW(cfg.DibujaConfiguracionSMDR(emPuertoDB9, failing), Error);
}

// The recording surface itself, as hosts use it.
TEST(Part5_2RecordingSurface, RecordsEveryCallAsOneLine) {
  SuperficieGrabadora s(12, 13);
  s.AltoTexto(u"MS Serif", 8, 97.5f);
  s.FontName(u"Ms serif");
  s.FontSize(8);
  s.FontBold(true);
  s.ForeColor(0xC8C8C8);
  s.CurrentX(1.5f);
  s.CurrentY(-2);
  EXPECT_EQ(s.TextHeight(u"M"), 97.5f);  // found ignoring letter case
  s.Line(2, 0, 0, 10, 20, 0x800000);
  s.Print(U("ñ"));
  EXPECT_EQ(s.TwipsPerPixelX(), 12);
  s.GrabaConsultasPixel(true);
  EXPECT_EQ(s.TwipsPerPixelY(), 13);
  const Lines expected = {"FontName \"Ms serif\"",
                          "FontSize 8",
                          "FontBold true",
                          "ForeColor 0xC8C8C8",
                          "CurrentX 1.5",
                          "CurrentY -2",
                          "TextHeight \"M\" -> 97.5",
                          "Line 2 (0, 0)-(10, 20) 0x800000",
                          "Print \"ñ\"",
                          "TwipsPerPixelY -> 13"};
  EXPECT_EQ(s.Lineas(), expected);
  EXPECT_EQ(s.Texto().substr(0, 21), "FontName \"Ms serif\"\nF");
  EXPECT_TRUE(s.FontBoldActual());
  EXPECT_EQ(s.ForeColorActual(), 0xC8C8C8);
}

TEST(Part5_2RecordingSurface, UnknownFontGetsTheDefaultHeight) {
  SuperficieGrabadora s;
  EXPECT_EQ(s.TwipsPerPixelX(), 15);
  EXPECT_EQ(s.TextHeight(u"M"), 195);
  s.AltoTextoPredeterminado(180);
  s.FontName(u"Arial");
  EXPECT_EQ(s.TextHeight(u"M"), 180);
}

}  // namespace
