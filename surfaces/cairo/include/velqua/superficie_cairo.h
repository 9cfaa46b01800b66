// velqua_cairo: a drawing surface on Cairo for the cable diagram and the
// DB9-to-DB25 table, written out as PNG, SVG or PDF.
//
// It stands for a picture box on a 96-dpi screen: surface units are twips,
// 15 to the pixel in both directions (TwipsPerPixelX/Y), 1,440 to the inch.
// Every font name resolves to a Liberation family (fonts-liberation), so a
// drawing measures the same on every machine: "MS Sans Serif" and "MS Serif"
// (small screen faces, narrow) to Liberation Sans Narrow; names with "mono",
// "courier" or "fixed" to Liberation Mono; serif, Times and Roman names to
// Liberation Serif; all others to Liberation Sans. Points are converted at
// 96 dpi (8 pt = 10.67 px).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velqua/superficie.h"

namespace velqua {

class SuperficieCairo : public Superficie {
 public:
  // A canvas of lnAnchoPx by lnAltoPx pixels. A size of 0 (the default)
  // follows the drawing: the written image reaches from pixel 0 to the last
  // pixel drawn on, in that direction. Drawing outside the canvas is clipped.
  explicit SuperficieCairo(int32_t lnAnchoPx = 0, int32_t lnAltoPx = 0);
  ~SuperficieCairo() override;
  // Not copyable: the surface owns its Cairo recording.
  SuperficieCairo(const SuperficieCairo&) = delete;
  SuperficieCairo& operator=(const SuperficieCairo&) = delete;

  // Writes everything drawn so far; the format follows the extension of
  // cadArchivo (UTF-8 path), ignoring letter case: ".png", ".svg", ".pdf".
  // At scale 1, PNG is 1 image pixel per pixel; SVG is in px; PDF at 72
  // points per inch (1 pixel = 0.75 pt). Can be called several times; the drawing is kept.
  // Throws velqua::Error 5 (source "SuperficieCairo.Guarda") for another
  // extension or a format this Cairo lacks, and 75 when the file cannot be
  // written.
  void Guarda(const std::string& cadArchivo) const;
  // The scale of the written image: every length is multiplied by dblEscala,
  // as vectors (a PNG is rendered at that size, not enlarged pixel by pixel;
  // SVG and PDF keep their vectors at the larger size). Default 1; a value
  // outside (0, 16] sets 1. The drawing and its size in pixels (AnchoPx,
  // AltoPx) do not change.
  void Escala(double dblEscala);
  // The size, in pixels, of the drawing (before the scale).
  int32_t AnchoPx() const;
  int32_t AltoPx() const;
  // The background of the written image, 0x00BBGGRR. Default white.
  void ColorFondo(int32_t lnColor);

  // The current font: family as above, size in points, weight.
  void FontName(const std::u16string& cadNombre) override;
  void FontSize(int16_t intPuntos) override;
  void FontBold(bool bolNegrita) override;
  // The text colour only; Line always draws in its own colour argument.
  void ForeColor(int32_t lnColor) override;
  // Where the next Print puts its top-left corner, in twips.
  void CurrentX(float sglX) override;
  void CurrentY(float sglY) override;
  // Line height of the current font from its real metrics (ascent + descent
  // + line gap), in twips; the text argument is not used.
  float TextHeight(const std::u16string& cadTexto) override;
  // Flags: 6 segment, 2 segment from the end point of the previous Line
  // ((0, 0) before any), 22 rectangle outline, 38 filled rectangle; any other
  // value draws a segment, and every Line leaves (x2, y2) as the end point.
  // Strokes are 1 pixel wide on whole pixels, end pixels and corners covered.
  void Line(int16_t intFlags, float x1, float y1, float x2, float y2, int32_t lnColor) override;
  // Draws the text at (CurrentX, CurrentY) in ForeColor and the current font;
  // CurrentX and CurrentY are left as they were.
  void Print(const std::u16string& cadTexto) override;
  float TwipsPerPixelX() const override;  // 15
  float TwipsPerPixelY() const override;  // 15

 private:
  struct Estado;
  std::unique_ptr<Estado> estado;
};

}  // namespace velqua
