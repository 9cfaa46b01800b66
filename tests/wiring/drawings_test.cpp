// The cable diagram and the DB9-to-DB25 table, call by call on the recording
// surface, and that surface's own record. Each drawing is compared with its
// record in tests/data/wiring/ (VELQUA_UPDATE_GOLDEN=1 writes them anew, to be
// read over before they are committed).
//
// Diagram: title bar A = 2 x 240 ("MS Sans Serif" 10), band h8 = 195 ("MS Sans
// Serif" 8), rows of 210 ("MS Serif" 8) from A + h8 + 2 py, wires 6 py below a
// row's top; switch pin at 26 px, DB9 at 126 px, DB25 at 182 px. A row is
// "switch DB9 DB25": a later row of a fan-out is joined to the one above 20 px
// left of the DB9 column, a later row of a bridge 30 px right of the switch's.
// Table: a 1350 x 1900 panel split at M = 675, title bar 2 t8 ("Ms Serif" 8),
// nine rows t7 high ("Ms Serif" 7), grey on even DB9 pins.
#include <gtest/gtest.h>

#include <cstdlib>
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

float F(int v) { return static_cast<float>(v); }

void SetHeights(SuperficieGrabadora& s, float t8 = 225, float t7 = 180) {
  s.AltoTexto(u"MS Sans Serif", 10, 240);
  s.AltoTexto(u"MS Sans Serif", 8, 195);
  s.AltoTexto(u"MS Serif", 8, 210);
  s.AltoTexto(u"Ms Serif", 8, t8);
  s.AltoTexto(u"Ms Serif", 7, t7);
}

// The drawing recorded in tests/data/wiring/`name`.txt.
std::string Golden(const std::string& name, const std::string& drawn) {
  const std::string path = velqua_test::DataPath("wiring/" + name + ".txt");
  if (std::getenv("VELQUA_UPDATE_GOLDEN") != nullptr) velqua_test::WriteFile(path, drawn);
  return velqua_test::ReadFile(path);
}

TEST(CableDrawing, OneRowPerConnectionGroupedBySharedPins) {
  for (const auto& [cable, geometry] : velqua_test::ReadCases("wiring/cables.txt")) {
    SCOPED_TRACE(cable);
    std::istringstream in(cable.substr(0, cable.find('"')));
    std::string golden;
    int port = 0;
    in >> golden >> port;
    clsCfgConmut cfg;
    std::istringstream wiring(cable.substr(cable.find('"') + 1));
    for (int sw = 0, pc = 0; wiring >> sw && wiring.ignore() >> pc;) {
      cfg.ActivaPin(static_cast<emPuertoSerial>(port), static_cast<int16_t>(sw),
                    static_cast<int16_t>(pc));
    }
    Geo geo;
    std::istringstream(geometry) >> geo.X >> geo.Y >> geo.px >> geo.py;
    SuperficieGrabadora s(F(geo.px), F(geo.py));
    SetHeights(s);
    cfg.DibujaConfiguracionSMDR(static_cast<emPuertoSerial>(port), s, F(geo.X), F(geo.Y));
    EXPECT_EQ(s.Texto(), Golden(golden, s.Texto()));
  }
}

TEST(ConversionTable, SameTableWhateverTheWiring) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  struct Case {
    const char* golden;
    Geo geo;
    int t8, t7;
  } cases[] = {{"table", {300, 600, 15, 15}, 225, 180},
               {"table-small-pixels", {0, 0, 10, 20}, 225, 180},
               {"table-tall-rows", {}, 400, 390}};  // rows past the panel: it keeps its size
  for (const Case& c : cases) {
    SCOPED_TRACE(c.golden);
    SuperficieGrabadora s(F(c.geo.px), F(c.geo.py));
    SetHeights(s, F(c.t8), F(c.t7));
    cfg.DibujaTablaConversionDB9DB25(s, F(c.geo.X), F(c.geo.Y));
    EXPECT_EQ(s.Texto(), Golden(c.golden, s.Texto()));
  }
}

// A surface error ends the drawing: nothing is drawn after the failing call.
TEST(CableDrawing, SurfaceErrorsReachTheCaller) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB9, 3, 2);
  struct Case {
    const char* what;
    int fail_print, fail_line;
    emPuertoSerial port;  // emNoPuerto: the conversion table
    size_t drawn;
  } cases[] = {{"port name of the header", 4, 0, emPuertoDB9, 21},
               {"first row's background", 0, 4, emPuertoDB9, 32},
               {"outline of the message", 0, 3, emPuertoRJ45, 22},
               {"title bar of the table", 0, 2, emNoPuerto, 4},
               {"DB25 head of the table", 3, 0, emNoPuerto, 15}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SuperficieGrabadora whole;
    velqua_test::FailingSurface s(velqua_test::U("Line falló"));
    SetHeights(whole);
    SetHeights(s);
    s.fail_print = c.fail_print;
    s.fail_line = c.fail_line;
    const auto draw = [&](Superficie& on) {
      c.port ? cfg.DibujaConfiguracionSMDR(c.port, on) : cfg.DibujaTablaConversionDB9DB25(on);
    };
    draw(whole);
    if (c.fail_line) {
      EXPECT_VELQUA_ERROR(draw(s), 480, u"Host", velqua_test::U("Line falló"));
    } else {
      EXPECT_THROW(draw(s), std::runtime_error);
    }
    const Lines all = whole.Lineas();
    ASSERT_GT(all.size(), c.drawn);
    EXPECT_EQ(s.Lineas(), Lines(all.begin(), all.begin() + static_cast<long>(c.drawn)));
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
