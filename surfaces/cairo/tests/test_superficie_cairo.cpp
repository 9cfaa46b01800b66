// velqua_cairo: smoke tests that render the drawings of Parts 5.2 and 5.3 to
// real PNG, SVG and PDF files, and checks of the surface's own rules.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "velqua/superficie_cairo.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;

std::string TmpPath(const std::string& name) {
  std::filesystem::create_directories(VELQUA_CAIRO_TEST_TMP);
  return std::string(VELQUA_CAIRO_TEST_TMP) + "/" + name;
}

std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

// A PNG read back with Cairo; pixels as 0xRRGGBB (the images are opaque).
class Png {
 public:
  explicit Png(const std::string& path) : s_(cairo_image_surface_create_from_png(path.c_str())) {}
  ~Png() { cairo_surface_destroy(s_); }
  Png(const Png&) = delete;
  Png& operator=(const Png&) = delete;
  bool ok() const { return cairo_surface_status(s_) == CAIRO_STATUS_SUCCESS; }
  int width() const { return cairo_image_surface_get_width(s_); }
  int height() const { return cairo_image_surface_get_height(s_); }
  uint32_t At(int x, int y) const {
    const unsigned char* row = cairo_image_surface_get_data(s_) +
                               static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(s_);
    uint32_t argb = 0;
    std::memcpy(&argb, row + 4 * x, 4);
    return argb & 0xFFFFFFu;
  }
  int Count(uint32_t rgb) const {
    int n = 0;
    for (int y = 0; y < height(); ++y) {
      for (int x = 0; x < width(); ++x) n += At(x, y) == rgb ? 1 : 0;
    }
    return n;
  }

 private:
  cairo_surface_t* s_;
};

constexpr uint32_t kNavy = 0x000080;  // 0x00BBGGRR 0x800000 as RGB
constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;

// Nearest pixel of a coordinate in twips, as the surface rounds it.
int Px(double twips) { return static_cast<int>(std::floor(twips / 15 + 0.5)); }

// The line heights the surface measures for the diagram's three fonts.
struct Heights {
  float sans10, sans8, serif8;
};
Heights Measure() {
  SuperficieCairo s;
  s.FontName(u"MS Sans Serif");
  s.FontSize(10);
  Heights h{};
  h.sans10 = s.TextHeight(u"M");
  s.FontSize(8);
  h.sans8 = s.TextHeight(u"M");
  s.FontName(u"MS Serif");
  h.serif8 = s.TextHeight(u"M");
  return h;
}

// Renders a port's diagram with `rows` rows to PNG and SVG and checks size,
// colours and that the first row's switch-to-DB9 wire lies on its row.
void CheckDiagram(const clsCfgConmut& cfg, emPuertoSerial port, int rows, const std::string& name) {
  SuperficieCairo s;
  cfg.DibujaConfiguracionSMDR(port, s);
  s.Guarda(TmpPath(name + ".png"));
  s.Guarda(TmpPath(name + ".svg"));
  const Heights h = Measure();
  const double top_of_rows = 2 * h.sans10 + h.sans8 + 30;  // Y + A + h8 + 2 py
  const double bottom = top_of_rows + rows * static_cast<double>(h.serif8);
  Png png(TmpPath(name + ".png"));
  ASSERT_TRUE(png.ok());
  EXPECT_EQ(png.width(), Px(3200) + 1);
  EXPECT_EQ(png.height(), Px(bottom) + 1);
  EXPECT_GT(png.Count(kNavy), 213 * 20);  // the title bar
  EXPECT_GT(png.Count(kBlack), 60 * rows);
  EXPECT_GT(png.Count(kWhite), 1000);
  // Wire from switch to DB9 of the first row: x 690 to 1740, at w = y + 6 py.
  const int wire_y = Px(top_of_rows + 90);
  for (int x = Px(690); x <= Px(1740); x += 10) EXPECT_EQ(png.At(x, wire_y), kBlack) << x;
  EXPECT_NE(png.At(Px(690) - 3, wire_y), kBlack);
  // The outline's corners.
  EXPECT_EQ(png.At(0, png.height() - 1), kBlack);
  EXPECT_EQ(png.At(png.width() - 1, png.height() - 1), kBlack);
  const std::string svg = ReadAll(TmpPath(name + ".svg"));
  EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
  EXPECT_NE(svg.find("<svg"), std::string::npos);
  EXPECT_NE(svg.find("width=\"" + std::to_string(png.width()) + "px\""), std::string::npos);
}

TEST(SuperficieCairo, RendersTheDiagramOfAWiredDb9) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB9, 2, 3);
  cfg.ActivaPin(emPuertoDB9, 3, 2);
  cfg.ActivaPin(emPuertoDB9, 5, 5);
  cfg.ActivaPin(emPuertoDB9, 7, 8);  // 7 -> 8 and 6 -> 8: a bridge
  cfg.ActivaPin(emPuertoDB9, 6, 8);
  cfg.ActivaPin(emPuertoDB9, 4, 1);  // 4 -> 1, 6: a fan-out
  cfg.ActivaPin(emPuertoDB9, 4, 6);
  CheckDiagram(cfg, emPuertoDB9, 7, "diagram_db9");
}

TEST(SuperficieCairo, RendersTheDiagramOfAWiredRj45) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoRJ45, 3, 2);
  cfg.ActivaPin(emPuertoRJ45, 4, 5);
  cfg.ActivaPin(emPuertoRJ45, 8, 9);
  CheckDiagram(cfg, emPuertoRJ45, 3, "diagram_rj45");
}

TEST(SuperficieCairo, RendersTheDiagramOfAWiredDb25WithItsGroundRow) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoDB25, 2, 2);
  cfg.ActivaPin(emPuertoDB25, 3, 3);
  cfg.ActivaPin(emPuertoDB25, 7, 5);
  cfg.ActivaPin(emPuertoDB25, 25, 9);
  CheckDiagram(cfg, emPuertoDB25, 5, "diagram_db25");
}

TEST(SuperficieCairo, RendersTheMessageOfAPortWithoutWiring) {
  clsCfgConmut cfg;
  SuperficieCairo s;
  cfg.DibujaConfiguracionSMDR(emPuertoDB9, s);
  s.Guarda(TmpPath("diagram_empty.png"));
  const Heights h = Measure();
  Png png(TmpPath("diagram_empty.png"));
  ASSERT_TRUE(png.ok());
  EXPECT_EQ(png.width(), 214);
  EXPECT_EQ(png.height(), Px(2 * h.sans10 + h.sans8) + 1);
  EXPECT_GT(png.Count(kBlack), 100);  // outline and message
}

TEST(SuperficieCairo, RendersTheConversionTableToPngSvgAndPdf) {
  clsCfgConmut cfg;
  SuperficieCairo s;
  cfg.DibujaTablaConversionDB9DB25(s);
  s.Guarda(TmpPath("table.png"));
  s.Guarda(TmpPath("table.SVG"));
  s.Guarda(TmpPath("table.pdf"));
  Png png(TmpPath("table.png"));
  ASSERT_TRUE(png.ok());
  EXPECT_EQ(png.width(), Px(1350) + 1);        // 91
  EXPECT_EQ(png.height(), Px(1900) + 1);       // 128
  EXPECT_GT(png.Count(kNavy), 1000);           // the title bar, less its text
  EXPECT_GT(png.Count(0xC8C8C8), 4 * 80 * 8);  // four grey bands
  // The column line at M = 675 (pixel 45), below the title bar.
  EXPECT_EQ(png.At(Px(675), 100), kBlack);
  EXPECT_EQ(ReadAll(TmpPath("table.SVG")).rfind("<?xml", 0), 0u);
  EXPECT_EQ(ReadAll(TmpPath("table.pdf")).rfind("%PDF-", 0), 0u);
}

TEST(SuperficieCairo, FixedCanvasKeepsItsSizeAndBackground) {
  SuperficieCairo s(300, 200);
  s.ColorFondo(0xC8C8C8);
  s.Line(38, 0, 0, 15 * 10, 15 * 10, 0x0000FF);  // red 11 x 11 pixels
  s.Guarda(TmpPath("fixed.png"));
  Png png(TmpPath("fixed.png"));
  ASSERT_TRUE(png.ok());
  EXPECT_EQ(png.width(), 300);
  EXPECT_EQ(png.height(), 200);
  EXPECT_EQ(png.Count(0xFF0000), 121);
  EXPECT_EQ(png.At(299, 199), 0xC8C8C8u);
}

TEST(SuperficieCairo, LineFlag2ContinuesFromTheLastEndPoint) {
  SuperficieCairo s(60, 60);
  s.Line(6, 150, 150, 150, 600, 0);  // pixel column 10, rows 10-40
  s.Line(2, 0, 0, 600, 600, 0);      // then along row 40 to column 40
  s.Guarda(TmpPath("continue.png"));
  Png png(TmpPath("continue.png"));
  ASSERT_TRUE(png.ok());
  for (int y = 10; y <= 40; ++y) EXPECT_EQ(png.At(10, y), kBlack) << y;
  for (int x = 10; x <= 40; ++x) EXPECT_EQ(png.At(x, 40), kBlack) << x;
  EXPECT_EQ(png.At(0, 0), kWhite);  // nothing from (0, 0)
  EXPECT_EQ(png.At(25, 25), kWhite);
  EXPECT_EQ(png.Count(kBlack), 31 + 30);
}

TEST(SuperficieCairo, TextUsesForeColorAndLinesTheirOwnColour) {
  SuperficieCairo s(200, 60);
  s.ForeColor(0x0000FF);  // red text
  s.FontSize(10);
  s.CurrentX(15);
  s.CurrentY(15);
  s.Print(u"MMMM");
  s.Line(6, 0, 600, 2985, 600, 0x00FF00);  // a green line while ForeColor is red
  s.Guarda(TmpPath("colours.png"));
  Png png(TmpPath("colours.png"));
  ASSERT_TRUE(png.ok());
  EXPECT_GT(png.Count(0xFF0000), 20);
  EXPECT_EQ(png.Count(0x00FF00), 200);
}

TEST(SuperficieCairo, TextHeightComesFromTheRealFont) {
  SuperficieCairo s;
  EXPECT_EQ(s.TwipsPerPixelX(), 15.0f);
  EXPECT_EQ(s.TwipsPerPixelY(), 15.0f);
  const Heights h = Measure();
  // 8 pt is 10.67 px; a line is a little more: 11 to 16 px.
  EXPECT_GT(h.sans8, 11 * 15);
  EXPECT_LT(h.sans8, 16 * 15);
  EXPECT_GT(h.sans10, h.sans8);
  s.FontName(u"Ms Serif");  // Part 5.3's spelling: the same font
  s.FontSize(8);
  EXPECT_EQ(s.TextHeight(u"M"), h.serif8);
  s.FontBold(true);
  EXPECT_GT(s.TextHeight(u"M"), 0);
}

TEST(SuperficieCairo, UnknownExtensionAndUnwritableFileAreErrors) {
  SuperficieCairo s(10, 10);
  try {
    s.Guarda(TmpPath("picture.bmp"));
    ADD_FAILURE() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), 5);
    EXPECT_EQ(e.Source(), u"SuperficieCairo.Guarda");
  }
  for (const char* bad : {"/nonexistent-dir/x.png", "/nonexistent-dir/x.svg"}) {
    try {
      s.Guarda(bad);
      ADD_FAILURE() << "no error for " << bad;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), 75) << bad;
    }
  }
}

}  // namespace
