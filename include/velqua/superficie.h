// The drawing surface a host passes to DibujaConfiguracionSMDR and
// DibujaTablaConversionDB9DB25: the library's view of the host's picture box.
#pragma once

#include <cstdint>
#include <string>

#include "velqua/export.h"

namespace velqua {

// Operations the library calls by name on the host's surface. Coordinates are
// in the surface's own units (twips); colours are 0x00BBGGRR. An exception
// thrown by any operation ends the drawing and propagates to the caller.
class VELQUA_EXPORT Superficie {
 public:
  virtual ~Superficie() = default;
  // The font of the next Print and TextHeight: name, size in points, weight.
  virtual void FontName(const std::u16string& cadNombre) = 0;
  virtual void FontSize(int16_t intPuntos) = 0;
  virtual void FontBold(bool bolNegrita) = 0;
  // The colour of the next Print.
  virtual void ForeColor(int32_t lnColor) = 0;  // 0x00BBGGRR
  // Where the next Print puts its top-left corner.
  virtual void CurrentX(float sglX) = 0;
  virtual void CurrentY(float sglY) = 0;
  // Line height of the current font; the library always passes "M".
  virtual float TextHeight(const std::u16string& cadTexto) = 0;
  // Flags: 6 segment, 2 segment from the last end point (x1, y1 passed as 0),
  // 22 rectangle outline, 38 filled rectangle.
  virtual void Line(int16_t intFlags, float x1, float y1, float x2, float y2, int32_t lnColor) = 0;
  // Draws the text with its top-left corner at (CurrentX, CurrentY).
  virtual void Print(const std::u16string& cadTexto) = 0;
  // Width and height of one screen pixel in surface units; the drawings read
  // them afresh for every offset they give in pixels.
  virtual float TwipsPerPixelX() const = 0;  // px
  virtual float TwipsPerPixelY() const = 0;  // py
};

}  // namespace velqua
