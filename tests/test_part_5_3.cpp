// Part 5.3: the DB9-to-DB25 conversion table, checked call by call on the
// recording surface.
//
// Worked out by hand from the spec with px = py = 15, "Ms Serif" 8 -> 225
// (t8) and "Ms Serif" 7 -> 180 (t7, the row height). With X = Y = 0: the
// title bar 15-450, M = 675, column heads at y = t8 = 225, first row at
// y = 2 t8 + 1 py = 465, rows every 180: 465, 645, 825, 1005, 1185, 1365,
// 1545, 1725, 1905; DB9 texts at 18 px = 270, DB25 texts at M + 18 px = 945;
// grey bands from 1 px = 15 to 1350 - 2 px = 1320.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/failing_surface.h"
#include "support/velqua_test.h"
#include "velqua/superficie_grabadora.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using Lines = std::vector<std::string>;

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

// The whole table at (X, Y), px = py = 15, t8 = 225, t7 = 180.
Lines Table(int X, int Y) {
  const int M = X + 675;
  Lines l = {"FontName \"Ms Serif\"",
             "FontSize 8",
             LineCall(38, X, Y, X + 1350, Y + 1900, "0xFFFFFF"),
             "TextHeight \"M\" -> 225",
             LineCall(38, X, Y + 15, X + 1350, Y + 450, "0x800000"),
             LineCall(22, X, Y, X + 1350, Y + 1900, "0x000000"),
             "ForeColor 0xFFFFFF"};
  l += Text(X + 45, Y + 15, "Tabla de conversión");
  l += Text(X + 210, Y + 225, "DB9");
  l += Text(M + 120, Y + 225, "DB25");
  l += {"ForeColor 0x000000", "FontSize 7", "TextHeight \"M\" -> 180"};
  const char* db25[9] = {"8", "3", "2", "20", "7", "6", "4", "5", "22"};
  const int tops[9] = {465, 645, 825, 1005, 1185, 1365, 1545, 1725, 1905};
  for (int pin = 1; pin <= 9; ++pin) {
    const int y = Y + tops[pin - 1];
    if (pin % 2 == 0) l.push_back(LineCall(38, X + 15, y, X + 1320, y + 180, "0xC8C8C8"));
    l += Text(X + 270, y, N(pin));
    l += Text(M + 270, y, db25[pin - 1]);
  }
  l += {"FontSize 8", LineCall(6, M, Y + 450, M, Y + 1900, "0x000000")};
  return l;
}

void SetHeights(SuperficieGrabadora& s, float t8 = 225, float t7 = 180) {
  s.AltoTexto(u"Ms Serif", 8, t8);
  s.AltoTexto(u"Ms Serif", 7, t7);
  // Part 5.2's fonts, so that a wrong font name shows as a wrong height.
  s.AltoTexto(u"MS Serif", 8, 210);
  s.AltoTexto(u"MS Sans Serif", 8, 195);
}

using velqua_test::FailingSurface;

class Part5_3 : public ::testing::Test {
 protected:
  void SetUp() override { SetHeights(surface); }
  clsCfgConmut cfg;
  SuperficieGrabadora surface;
};

TEST_F(Part5_3, DrawsTheWholeTableCallByCall) {
  cfg.DibujaTablaConversionDB9DB25(surface);
  EXPECT_EQ(surface.Lineas(), Table(0, 0));
}

TEST_F(Part5_3, FirstRowsAreExactAsWrittenOut) {
  // The first lines spelled out, independent of the Table() helper.
  cfg.DibujaTablaConversionDB9DB25(surface);
  const Lines l = surface.Lineas();
  const Lines head = {
      "FontName \"Ms Serif\"",
      "FontSize 8",
      "Line 38 (0, 0)-(1350, 1900) 0xFFFFFF",
      "TextHeight \"M\" -> 225",
      "Line 38 (0, 15)-(1350, 450) 0x800000",
      "Line 22 (0, 0)-(1350, 1900) 0x000000",
      "ForeColor 0xFFFFFF",
      "CurrentX 45",
      "CurrentY 15",
      "Print \"Tabla de conversión\"",
      "CurrentX 210",
      "CurrentY 225",
      "Print \"DB9\"",
      "CurrentX 795",
      "CurrentY 225",
      "Print \"DB25\"",
      "ForeColor 0x000000",
      "FontSize 7",
      "TextHeight \"M\" -> 180",
      "CurrentX 270",
      "CurrentY 465",
      "Print \"1\"",
      "CurrentX 945",
      "CurrentY 465",
      "Print \"8\"",
      "Line 38 (15, 645)-(1320, 825) 0xC8C8C8",
      "CurrentX 270",
      "CurrentY 645",
      "Print \"2\"",
      "CurrentX 945",
      "CurrentY 645",
      "Print \"3\"",
  };
  ASSERT_GE(l.size(), head.size());
  EXPECT_EQ(Lines(l.begin(), l.begin() + static_cast<long>(head.size())), head);
  const Lines tail = {"CurrentX 945", "CurrentY 1905", "Print \"22\"", "FontSize 8",
                      "Line 6 (675, 450)-(675, 1900) 0x000000"};
  EXPECT_EQ(Lines(l.end() - 5, l.end()), tail);
}

TEST_F(Part5_3, TableIsTheSameForEveryConfiguration) {
  cfg.DibujaTablaConversionDB9DB25(surface);
  clsCfgConmut wired;
  wired.ActivaPin(emPuertoDB9, 2, 3);
  wired.ActivaPin(emPuertoDB25, 7, 5);
  wired.Marca(u"Panasonic");
  wired.Modificado(false);
  SuperficieGrabadora other;
  SetHeights(other);
  wired.DibujaTablaConversionDB9DB25(other);
  EXPECT_EQ(other.Lineas(), surface.Lineas());
  EXPECT_EQ(other.Lineas(), Table(0, 0));
  EXPECT_FALSE(wired.Modificado());
}

TEST_F(Part5_3, OmittedPositionIsTheOrigin) {
  cfg.DibujaTablaConversionDB9DB25(surface);
  SuperficieGrabadora explicit_origin;
  SetHeights(explicit_origin);
  cfg.DibujaTablaConversionDB9DB25(explicit_origin, 0, 0);
  EXPECT_EQ(surface.Lineas(), explicit_origin.Lineas());
}

TEST_F(Part5_3, PositionMovesTheTableAndComesBackUnchanged) {
  float x = 300;
  float y = 600;
  cfg.DibujaTablaConversionDB9DB25(surface, x, y);
  EXPECT_EQ(x, 300.0f);
  EXPECT_EQ(y, 600.0f);
  EXPECT_EQ(surface.Lineas(), Table(300, 600));
}

TEST_F(Part5_3, GreyBandsAreOnDb9Pins2468OnlyInsideThePanel) {
  cfg.DibujaTablaConversionDB9DB25(surface, 300, 600);
  Lines bands;
  for (const LlamadaGrabada& call : surface.Llamadas()) {
    if (call.cadOperacion == "Line" && call.lnColor == 0xC8C8C8) {
      bands.push_back(SuperficieGrabadora::LineaDe(call));
    }
  }
  // Rows 2, 4, 6, 8 at 600 + 645, 1005, 1365, 1725; x from 300 + 15 to 300 + 1320.
  const Lines expected = {
      "Line 38 (315, 1245)-(1620, 1425) 0xC8C8C8", "Line 38 (315, 1605)-(1620, 1785) 0xC8C8C8",
      "Line 38 (315, 1965)-(1620, 2145) 0xC8C8C8", "Line 38 (315, 2325)-(1620, 2505) 0xC8C8C8"};
  EXPECT_EQ(bands, expected);
}

TEST_F(Part5_3, PixelOffsetsUseTwipsPerPixelXAndYSeparately) {
  // px = 10, py = 20: title bar from 20; texts at 3, 14 and M + 8 px = 30,
  // 140, 755; first row at 450 + 20 = 470, texts at 180 and 855; band of
  // row 2 at 650-830 from 10 to 1330.
  surface.TwipsPorPixel(10, 20);
  cfg.DibujaTablaConversionDB9DB25(surface);
  const Lines l = surface.Lineas();
  for (const char* line :
       {"Line 38 (0, 20)-(1350, 450) 0x800000", "Line 38 (10, 650)-(1330, 830) 0xC8C8C8"}) {
    EXPECT_NE(std::find(l.begin(), l.end(), line), l.end()) << line;
  }
  EXPECT_EQ(
      Lines(l.begin() + 7, l.begin() + 16),
      (Lines{"CurrentX 30", "CurrentY 20", "Print \"Tabla de conversión\"", "CurrentX 140",
             "CurrentY 225", "Print \"DB9\"", "CurrentX 755", "CurrentY 225", "Print \"DB25\""}));
  EXPECT_EQ(Lines(l.begin() + 19, l.begin() + 25),
            (Lines{"CurrentX 180", "CurrentY 470", "Print \"1\"", "CurrentX 855", "CurrentY 470",
                   "Print \"8\""}));
}

TEST_F(Part5_3, OutlineIsAlways1350By1900WhateverTheFontHeights) {
  SuperficieGrabadora tall;
  SetHeights(tall, 400, 390);
  cfg.DibujaTablaConversionDB9DB25(tall);
  Lines frame;
  for (const LlamadaGrabada& call : tall.Llamadas()) {
    if (call.cadOperacion == "Line" && call.lnValor != 38) {
      frame.push_back(SuperficieGrabadora::LineaDe(call));
    }
  }
  // The outline, then the column line from the foot of the title bar (2 t8 = 800).
  EXPECT_EQ(frame, (Lines{"Line 22 (0, 0)-(1350, 1900) 0x000000",
                          "Line 6 (675, 800)-(675, 1900) 0x000000"}));
  EXPECT_EQ(tall.Lineas()[2], "Line 38 (0, 0)-(1350, 1900) 0xFFFFFF");
}

TEST_F(Part5_3, LeavesMsSerif8BlackAndNeverSetsBold) {
  surface.FontBold(true);
  surface.Borra();
  cfg.DibujaTablaConversionDB9DB25(surface);
  EXPECT_EQ(surface.FontNameActual(), u"Ms Serif");
  EXPECT_EQ(surface.FontSizeActual(), 8);
  EXPECT_EQ(surface.ForeColorActual(), 0);
  EXPECT_TRUE(surface.FontBoldActual());
  for (const std::string& line : surface.Lineas()) EXPECT_NE(line.rfind("FontBold", 0), 0u);
}

TEST_F(Part5_3, SurfaceFailingInLineEndsTheDrawingWithItsError) {
  FailingSurface failing;
  SetHeights(failing);
  failing.fail_line = 2;  // the title bar
  EXPECT_VELQUA_ERROR(cfg.DibujaTablaConversionDB9DB25(failing), 480, u"Host", u"Line failed");
  const Lines full = Table(0, 0);
  EXPECT_EQ(failing.Lineas(), Lines(full.begin(), full.begin() + 4));
}

TEST_F(Part5_3, SurfaceFailingInPrintEndsTheDrawingWithItsError) {
  FailingSurface failing;
  SetHeights(failing);
  failing.fail_print = 3;  // "DB25"
  EXPECT_THROW(cfg.DibujaTablaConversionDB9DB25(failing), std::runtime_error);
  const Lines full = Table(0, 0);
  EXPECT_EQ(failing.Lineas(), Lines(full.begin(), full.begin() + 15));
}

}  // namespace
