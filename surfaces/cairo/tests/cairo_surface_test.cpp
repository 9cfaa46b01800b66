// The Cairo surface: the drawings written as PNG, SVG and PDF, and the
// surface's own rules. Text widths follow the installed fonts, so sizes and
// pixels are checked only where lines and rectangles put them.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "velqua/superficie_cairo.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;

std::string TmpPath(const std::string& name) {
  std::filesystem::create_directories(VELQUA_CAIRO_TEST_TMP);
  return std::string(VELQUA_CAIRO_TEST_TMP) + "/" + name;
}

std::string ReadAll(const std::string& name) {
  std::ostringstream out;
  out << std::ifstream(TmpPath(name), std::ios::binary).rdbuf();
  return out.str();
}

// A PNG read back with Cairo; pixels as 0xRRGGBB (the images are opaque).
struct Png {
  explicit Png(const std::string& name) {
    cairo_surface_t* s = cairo_image_surface_create_from_png(TmpPath(name).c_str());
    if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) {
      width = cairo_image_surface_get_width(s);
      height = cairo_image_surface_get_height(s);
      pixels.resize(static_cast<std::size_t>(width * height));
      for (int y = 0; y < height; ++y) {
        std::memcpy(&pixels[static_cast<std::size_t>(y * width)],
                    cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s),
                    4 * static_cast<std::size_t>(width));
      }
      for (uint32_t& p : pixels) p &= 0xFFFFFFu;
    }
    cairo_surface_destroy(s);
  }
  uint32_t At(int x, int y) const { return pixels.at(static_cast<std::size_t>(y * width + x)); }
  std::ptrdiff_t Count(uint32_t rgb) const { return std::count(pixels.begin(), pixels.end(), rgb); }
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
};

constexpr uint32_t kBlack = 0x000000;

// Nearest pixel of a coordinate in twips.
int Px(double twips) { return static_cast<int>(std::floor(twips / 15 + 0.5)); }

// The table is a 1350 x 1900 panel. The extension's letter case is ignored.
TEST(CairoSurface, WritesTheConversionTable) {
  SuperficieCairo t;
  clsCfgConmut().DibujaTablaConversionDB9DB25(t);
  t.Guarda(TmpPath("table.png"));
  t.Guarda(TmpPath("table.SVG"));
  t.Guarda(TmpPath("table.pdf"));
  Png table("table.png");
  EXPECT_GE(table.width, Px(1350) + 1);
  ASSERT_GE(table.height, Px(1900) + 1);
  EXPECT_GT(table.Count(0xC8C8C8), 4 * 80 * 8);  // four grey rows
  for (int x : {0, Px(675), Px(1350)}) EXPECT_EQ(table.At(x, Px(1900)), kBlack) << x;
  EXPECT_EQ(table.At(Px(675), 100), kBlack);  // the column line
  // The title ends inside its navy bar, which reaches pixel 89: its last
  // columns hold no text on the title's first line.
  for (int x = 85; x <= 89; ++x) EXPECT_EQ(table.At(x, 6), 0x000080u) << x;
  EXPECT_EQ(ReadAll("table.SVG").rfind("<?xml", 0), 0u);
  EXPECT_EQ(ReadAll("table.pdf").rfind("%PDF-", 0), 0u);
  // At scale 3 every length is three times as long; the drawing is unchanged.
  t.Escala(3);
  t.Guarda(TmpPath("table3.png"));
  t.Guarda(TmpPath("table3.svg"));
  Png big("table3.png");
  EXPECT_EQ(big.width, 3 * table.width);
  EXPECT_EQ(big.height, 3 * table.height);
  for (int dx : {0, 1, 2}) EXPECT_EQ(big.At(3 * Px(675) + dx, 300), kBlack) << dx;
  EXPECT_NE(ReadAll("table3.svg").find("width=\"" + std::to_string(big.width) + "px\""),
            std::string::npos);
  EXPECT_EQ(t.AnchoPx(), table.width);
}

// Lines in their own colour on whole pixels, text in ForeColor.
TEST(CairoSurface, DrawsOnAPixelGrid) {
  SuperficieCairo s(300, 200);
  s.ColorFondo(0xC8C8C8);
  s.ForeColor(0x00FF00);
  s.Line(38, 0, 0, 150, 150, 0x0000FF);          // red, 11 x 11 pixels
  s.Line(6, 300, 300, 300, 900, 0);              // pixel column 20, rows 20-60
  s.Line(2, 0, 0, 900, 900, 0);                  // then along row 60 to column 60
  s.Line(22, 1500, 1500, 2985, 2985, 0xFF0000);  // blue outline, 100 x 100 pixels
  s.FontName(u"Arial");
  s.FontSize(10);
  s.CurrentX(1500);
  s.CurrentY(150);
  s.Print(u"MMMM");
  s.Guarda(TmpPath("grid.png"));
  Png png("grid.png");
  EXPECT_EQ(s.TwipsPerPixelX(), 15.0f);
  EXPECT_EQ(s.TwipsPerPixelY(), 15.0f);
  ASSERT_EQ(png.width, 300);
  ASSERT_EQ(png.height, 200);
  EXPECT_EQ(png.Count(0xFF0000), 121);
  EXPECT_EQ(png.Count(kBlack), 41 + 40);
  for (int i = 20; i <= 60; ++i) EXPECT_TRUE(png.At(20, i) == kBlack && png.At(i, 60) == kBlack);
  EXPECT_EQ(png.Count(0x0000FF), 4 * 99);
  EXPECT_GT(png.Count(0x00FF00), 20);
  EXPECT_EQ(png.At(299, 199), 0xC8C8C8u);
}

TEST(CairoSurface, SaveErrors) {
  const SuperficieCairo s(10, 10);
  const std::pair<std::string, int32_t> rows[] = {
      {TmpPath("picture.bmp"), 5}, {"/nonexistent-dir/x.png", 75}, {"/nonexistent-dir/x.svg", 75}};
  for (const auto& [path, number] : rows) {
    SCOPED_TRACE(path);
    const std::string description =  // its beginning
        number == 5 ? "Formato de archivo no disponible: \"" + path + "\" (png, svg o pdf)."
                    : "No se pudo escribir el archivo \"" + path + "\": ";
    try {
      s.Guarda(path);
      ADD_FAILURE() << "no error";
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), number);
      EXPECT_EQ(e.Source(), u"SuperficieCairo.Guarda");
      EXPECT_EQ(AUtf8(e.Description()).substr(0, description.size()), description);
    }
  }
}

}  // namespace
