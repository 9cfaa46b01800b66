// The cable diagram and the DB9-to-DB25 table, call by call on the recording
// surface, and that surface's own record.
//
// Diagram: title bar A = 2 x 240 ("MS Sans Serif" 10), band h8 = 195 ("MS Sans
// Serif" 8), rows of 210 ("MS Serif" 8) from A + h8 + 2 py, wires 6 py below a
// row's top; switch pin at 26 px, DB9 at 126 px, DB25 at 182 px.
// Table: a 1350 x 1900 panel split at M = 675, title bar 2 t8 ("Ms Serif" 8),
// nine rows t7 high ("Ms Serif" 7), grey on even DB9 pins.
#include <gtest/gtest.h>

#include <sstream>
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

struct Geo {  // position and pixel size of one drawing
  int X = 0, Y = 0, px = 15, py = 15;
};

Lines& operator+=(Lines& a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
std::string N(int v) { return std::to_string(v); }
Lines Text(int x, int y, const std::string& text) {
  return {"CurrentX " + N(x), "CurrentY " + N(y), "Print \"" + text + "\""};
}
std::string Line(int flags, int x1, int y1, int x2, int y2, const char* colour = "0x000000") {
  return "Line " + N(flags) + " (" + N(x1) + ", " + N(y1) + ")-(" + N(x2) + ", " + N(y2) + ") " +
         colour;
}
const char* const kWhite = "0xFFFFFF";

void SetHeights(SuperficieGrabadora& s, float t8 = 225, float t7 = 180) {
  s.AltoTexto(u"MS Sans Serif", 10, 240);
  s.AltoTexto(u"MS Sans Serif", 8, 195);
  s.AltoTexto(u"MS Serif", 8, 210);
  s.AltoTexto(u"Ms Serif", 8, t8);
  s.AltoTexto(u"Ms Serif", 7, t7);
}

Lines Title(const Geo& g) {
  const int X = g.X, Y = g.Y;
  Lines l = {"FontName \"MS Sans Serif\"", "FontSize 10", "FontBold false",
             "TextHeight \"M\" -> 240", Line(38, X, Y, X + 3200, Y + 480, "0x800000")};
  l.push_back("ForeColor 0xFFFFFF");
  l += Text(X + 10 * g.px, Y + g.py, "Confguración del cable SMDR");
  l.push_back("FontSize 8");
  l += Text(X + 4 * g.px, Y + 18 * g.py, "Conmutador");
  l += Text(X + 115 * g.px, Y + 18 * g.py, "PC (Computadora)");
  l += {"ForeColor 0x000000", "TextHeight \"M\" -> 195",
        Line(38, X, Y + 480, X + 3200, Y + 675, kWhite)};
  return l;
}

// Rows as "switch DB9 DB25, ...", with "-" where the row writes nothing;
// nullptr: the message of a port without wiring.
Lines Diagram(const Geo& g, const std::string& port, const char* rows) {
  const int X = g.X, px = g.px, cS = X + 26 * px, c9 = X + 126 * px, c25 = X + 182 * px;
  Lines l = Title(g);
  if (!rows) {
    l += Text(X + 20 * px, g.Y + 480 - g.py, "-- No hay configuración realizada --");
    l.push_back(Line(22, X, g.Y, X + 3200, g.Y + 675));
    return l;
  }
  l += Text(X + 20 * px, g.Y + 480, port);
  l += Text(X + 120 * px, g.Y + 480, "DB9");
  l += Text(X + 170 * px, g.Y + 480, "DB25");
  int y = g.Y + 675 + 2 * g.py;
  l += {Line(38, X, g.Y + 675, X + 3200, y, kWhite), "FontName \"MS Serif\"", "FontSize 8",
        "TextHeight \"M\" -> 210"};
  std::istringstream in(rows);
  for (std::string row, sw, db9, db25; std::getline(in, row, ','); y += 210) {
    std::istringstream(row) >> sw >> db9 >> db25;
    const int w = y + 6 * g.py;
    l.push_back(Line(38, X, y, X + 3200, y + 210, kWhite));
    if (sw != "-") l += Text(cS, y, sw);
    if (db9 != "-") {
      l += Text(db9 == "Gnd" ? c9 - 6 * px : c9, y, db9);
      l += Text(c25, y, db25);
    }
    if (sw == "-") {  // a later row of a fan-out, joined to the one above at c9 - 20 px
      l += {Line(6, c9 - 20 * px, w - 210, c9 - 20 * px, w), Line(2, 0, 0, c9 - 10 * px, w)};
    } else if (db9 == "-") {  // a later row of a bridge, joined at cS + 30 px
      l += {Line(6, cS + 30 * px, w - 210, cS + 30 * px, w), Line(2, 0, 0, cS + 20 * px, w)};
    } else {
      l.push_back(Line(6, cS + 20 * px, w, c9 - 10 * px, w));
    }
    if (db9 != "-") l.push_back(Line(6, c9 + 17 * px, w, c25 - 10 * px, w));
  }
  l.push_back(Line(22, X, g.Y, X + 3200, y));
  return l;
}

Lines Table(const Geo& g, int t8 = 225, int t7 = 180) {
  const int X = g.X, Y = g.Y, M = X + 675;
  Lines l = {"FontName \"Ms Serif\"", "FontSize 8", Line(38, X, Y, X + 1350, Y + 1900, kWhite),
             "TextHeight \"M\" -> " + N(t8)};
  l += {Line(38, X, Y + g.py, X + 1350, Y + 2 * t8, "0x800000"), Line(22, X, Y, X + 1350, Y + 1900),
        "ForeColor 0xFFFFFF"};
  l += Text(X + 3 * g.px, Y + g.py, "Tabla de conversión");
  l += Text(X + 14 * g.px, Y + t8, "DB9");
  l += Text(M + 8 * g.px, Y + t8, "DB25");
  l += {"ForeColor 0x000000", "FontSize 7", "TextHeight \"M\" -> " + N(t7)};
  const char* db25[9] = {"8", "3", "2", "20", "7", "6", "4", "5", "22"};
  for (int pin = 1, y = Y + 2 * t8 + g.py; pin <= 9; ++pin, y += t7) {
    if (pin % 2 == 0) l.push_back(Line(38, X + g.px, y, X + 1350 - 2 * g.px, y + t7, "0xC8C8C8"));
    l += Text(X + 18 * g.px, y, N(pin));
    l += Text(M + 18 * g.px, y, db25[pin - 1]);
  }
  l += {"FontSize 8", Line(6, M, Y + 2 * t8, M, Y + 1900)};
  return l;
}

float F(int v) { return static_cast<float>(v); }

TEST(CableDrawing, OneRowPerConnectionGroupedBySharedPins) {
  const int32_t DB9 = emPuertoDB9, DB25 = emPuertoDB25, RJ45 = emPuertoRJ45;
  struct Case {
    const char* what;
    int32_t port;
    const char* wiring;  // "switch-computer ..."
    const char* rows;    // nullptr: the message of a port without wiring
    Geo geo = {};
  } cases[] = {
      {"one pin", DB9, "3-2", "3 2 3"},
      {"fan-out", DB9, "2-1 2-4", "2 1 8, - 4 20"},
      {"fan-out of three", DB9, "1-9 1-3 1-6", "1 3 2, - 6 6, - 9 22", {1000, 2000, 15, 15}},
      {"bridge to pin 9 with the last switch pin", DB9, "4-9 9-9", "4 9 22, 9 - -", {5, 7, 10, 20}},
      {"last RJ45 pin; pin 9 not drawn", RJ45, "8-9 9-2", "8 9 22"},
      {"DB25 ground row first", DB25, "2-3 3-2 7-5 25-8", "1 Gnd 1, 2 3 2, 3 2 3, 7 5 7, 25 8 5"},
      {"DB25 ground row alone", DB25, "4-12", "1 Gnd 1", {0, 0, 10, 20}},
      {"computer pins above 9 left out", DB9, "1-10 1-2 5-31", "1 2 3"},
      {"only pins above 9", DB9, "5-12", ""},
      // Switch pin 2 alone on computer pin 1 and sharing pin 5 with switch pin 3.
      {"fan-out then bridge", DB9, "2-1 2-5 3-5", "2 1 8, - 5 7, 2 5 7, 3 - -"},
      // After the bridge of computer pin 1 the pass starts again and finds 3.
      {"pass restarts after a bridge", DB9, "2-1 2-5 3-5 4-1", "2 1 8, 4 - -, 2 5 7, 3 - -"},
      // Switch pin 5 was drawn under computer pin 1: the bridge of 4 ends at once.
      {"bridge ends when no pin is shared", DB9, "2-1 4-3 5-1 5-3", "2 1 8, 5 - -, 4 3 2"},
      {"DB9 without wiring", DB9, "", nullptr},
      {"RJ45 pins 0 and 9 do not count", RJ45, "9-2 0-3", nullptr},
      {"DB9 pin 0 does not count", DB9, "0-3", nullptr, {40, 50, 10, 20}},
      {"no port", emNoPuerto, "3-2", nullptr},
      {"port 4", 4, "3-2", nullptr},
      {"port -1", -1, "3-2", nullptr, {20, 30, 15, 15}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    clsCfgConmut cfg;
    const auto port = static_cast<emPuertoSerial>(c.port);
    std::istringstream in(c.wiring);
    for (int sw = 0, pc = 0; in >> sw && in.ignore() >> pc;) {
      cfg.ActivaPin(port, static_cast<int16_t>(sw), static_cast<int16_t>(pc));
    }
    SuperficieGrabadora s(F(c.geo.px), F(c.geo.py));
    SetHeights(s);
    cfg.DibujaConfiguracionSMDR(port, s, F(c.geo.X), F(c.geo.Y));
    const char* name = c.port == DB9 ? "DB9" : c.port == DB25 ? "DB25" : "RJ45";
    EXPECT_EQ(s.Lineas(), Diagram(c.geo, name, c.rows));
  }
}

TEST(ConversionTable, SameTableWhateverTheWiring) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  struct Case {
    Geo geo;
    int t8, t7;
  } cases[] = {{{300, 600, 15, 15}, 225, 180},
               {{0, 0, 10, 20}, 225, 180},
               {{}, 400, 390}};  // rows past the panel: the panel keeps its size
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.geo.X << " px " << c.geo.px << " t8 " << c.t8);
    SuperficieGrabadora s(F(c.geo.px), F(c.geo.py));
    SetHeights(s, F(c.t8), F(c.t7));
    cfg.DibujaTablaConversionDB9DB25(s, F(c.geo.X), F(c.geo.Y));
    EXPECT_EQ(s.Lineas(), Table(c.geo, c.t8, c.t7));
  }
}

// A surface error ends the drawing: nothing is drawn after the failing call.
TEST(CableDrawing, SurfaceErrorsReachTheCaller) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB9, 3, 2);
  const Lines header = Diagram({}, "DB9", ""), message = Diagram({}, "", nullptr),
              table = Table({});
  struct Case {
    const char* what;
    int fail_print, fail_line;
    emPuertoSerial port;  // emNoPuerto: the conversion table
    const Lines& drawing;
    int drawn;
  } cases[] = {{"port name of the header", 4, 0, emPuertoDB9, header, 21},
               {"first row's background", 0, 4, emPuertoDB9, header, 32},
               {"outline of the message", 0, 3, emPuertoRJ45, message, 22},
               {"title bar of the table", 0, 2, emNoPuerto, table, 4},
               {"DB25 head of the table", 3, 0, emNoPuerto, table, 15}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    velqua_test::FailingSurface s(velqua_test::U("Line falló"));
    SetHeights(s);
    s.fail_print = c.fail_print;
    s.fail_line = c.fail_line;
    const auto draw = [&] {
      c.port ? cfg.DibujaConfiguracionSMDR(c.port, s) : cfg.DibujaTablaConversionDB9DB25(s);
    };
    if (c.fail_line) {
      EXPECT_VELQUA_ERROR(draw(), 480, u"Host", velqua_test::U("Line falló"));
    } else {
      EXPECT_THROW(draw(), std::runtime_error);
    }
    EXPECT_EQ(s.Lineas(), Lines(c.drawing.begin(), c.drawing.begin() + c.drawn));
  }
}

// The drawings pin the other lines of the record. A height is found by its
// name in any letter case and its exact size; anything else gets the default.
TEST(RecordingSurface, RecordAndTextHeights) {
  SuperficieGrabadora s(12, 13);
  s.FontBold(true);
  s.CurrentX(10000.0625f);  // needs nine digits to read back
  s.CurrentY(-2);
  EXPECT_EQ(s.TwipsPerPixelX(), 12);  // not recorded
  s.GrabaConsultasPixel(true);
  EXPECT_EQ(s.TwipsPerPixelY(), 13);
  EXPECT_EQ(s.Texto(), "FontBold true\nCurrentX 10000.0625\nCurrentY -2\nTwipsPerPixelY -> 13\n");
  SuperficieGrabadora h;
  h.AltoTexto(u"Zeta Arial", 8, 120);
  h.AltoTexto(u"zeta arial", 9, 140);
  struct Row {
    const char16_t* name;
    int16_t size;
    float height;
  } rows[] = {{u"Zeta Arial", 8, 120}, {u"zETA aRIAL", 8, 120}, {u"zeta arial", 9, 140},
              {u"ZETA ARIAL", 9, 140}, {u"Zeta Arial", 7, 195}, {u"Zeta Ariel", 8, 195},
              {u"Arial", 8, 195}};
  for (const Row& r : rows) {
    SCOPED_TRACE(AUtf8(r.name) + " " + std::to_string(r.size));
    h.FontName(r.name);
    h.FontSize(r.size);
    EXPECT_EQ(h.TextHeight(u"M"), r.height);
  }
  h.AltoTextoPredeterminado(180);
  EXPECT_EQ(h.TextHeight(u"M"), 180);
  EXPECT_EQ(h.TwipsPerPixelX(), 15);
}

}  // namespace
