// A recording drawing surface: the in-memory twin of the host's picture box,
// for tests of the cable diagram and the DB9-to-DB25 table, here and in hosts.
//
// Every call the library makes on it is kept, in order, with its arguments;
// Lineas() dumps the record as one text line per call, for comparisons:
//
//   FontName "MS Sans Serif"        FontSize 10          FontBold false
//   ForeColor 0xFFFFFF              CurrentX 150         CurrentY 15
//   TextHeight "M" -> 240           Print "Confguración del cable SMDR"
//   Line 38 (0, 0)-(3200, 480) 0x800000
//   TwipsPerPixelX -> 15            (only with GrabaConsultasPixel(true))
//
// Numbers are printed in the shortest form that reads back as the same float
// ("150", "97.5"); colours as 0x followed by six upper-case hex digits; texts
// in UTF-8 between double quotes, as they are (no escaping).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "velqua/export.h"
#include "velqua/superficie.h"

namespace velqua {

// One recorded call. Only the fields the operation has are meaningful; the
// others keep their defaults.
struct LlamadaGrabada {
  std::string cadOperacion;  // "FontName", "Line", "Print", ... as in Superficie
  std::u16string cadTexto;   // FontName, TextHeight, Print
  int32_t lnValor = 0;       // FontSize, FontBold (-1 / 0), ForeColor, Line flags
  float sglX1 = 0;           // CurrentX, CurrentY (the value), Line
  float sglY1 = 0;           // Line
  float sglX2 = 0;           // Line
  float sglY2 = 0;           // Line
  int32_t lnColor = 0;       // Line
  float sglResultado = 0;    // TextHeight, TwipsPerPixelX, TwipsPerPixelY
};

class VELQUA_EXPORT SuperficieGrabadora : public Superficie {
 public:
  // px and py in surface units; default 15 (a 96-dpi screen, in twips).
  explicit SuperficieGrabadora(float sglTwipsPorPixelX = 15, float sglTwipsPorPixelY = 15);

  // ---- Configuration (not recorded) ----
  // TextHeight's answer while the font is cadNombre at intPuntos points.
  // Looked up by exact name first, then ignoring ASCII letter case ("Ms Serif"
  // finds "MS Serif"), then the default height.
  void AltoTexto(const std::u16string& cadNombre, int16_t intPuntos, float sglAlto);
  // TextHeight's answer for a font without a configured height. Default 195
  // (13 pixels of 15 twips, the line height of "MS Sans Serif" 8 on Windows).
  void AltoTextoPredeterminado(float sglAlto);
  // The answers of TwipsPerPixelX and TwipsPerPixelY from now on.
  void TwipsPorPixel(float sglX, float sglY);
  // Also record the reads of TwipsPerPixelX and TwipsPerPixelY. Default false:
  // the drawings read them at every offset and would flood the record.
  void GrabaConsultasPixel(bool bolGrabar);

  // ---- The record ----
  // Every recorded call, oldest first.
  const std::vector<LlamadaGrabada>& Llamadas() const { return llamadas; }
  // One text line per call, in order (format above).
  std::vector<std::string> Lineas() const;
  // Lineas() joined, each line ended by "\n".
  std::string Texto() const;
  // Empties the record; the configuration and the font state stay.
  void Borra() { llamadas.clear(); }

  // ---- The state the calls left (starts: "", 0, false, 0) ----
  const std::u16string& FontNameActual() const { return cadFuente; }
  int16_t FontSizeActual() const { return intPuntos; }
  bool FontBoldActual() const { return bolNegrita; }
  int32_t ForeColorActual() const { return lnColorTexto; }

  // ---- Superficie: each call is recorded, then answered ----
  void FontName(const std::u16string& cadNombre) override;
  void FontSize(int16_t intPuntosNuevos) override;
  void FontBold(bool bolNegritaNueva) override;
  void ForeColor(int32_t lnColor) override;
  void CurrentX(float sglX) override;
  void CurrentY(float sglY) override;
  float TextHeight(const std::u16string& cadTexto) override;
  void Line(int16_t intFlags, float x1, float y1, float x2, float y2, int32_t lnColor) override;
  void Print(const std::u16string& cadTexto) override;
  float TwipsPerPixelX() const override;
  float TwipsPerPixelY() const override;

  // One call as its text line (the format of Lineas()).
  static std::string LineaDe(const LlamadaGrabada& udtLlamada);

 private:
  float AltoActual() const;

  float sglPx;
  float sglPy;
  bool bolGrabaPixel = false;
  float sglAltoPredeterminado = 195;
  std::map<std::pair<std::u16string, int16_t>, float> altos;
  std::u16string cadFuente;
  int16_t intPuntos = 0;
  bool bolNegrita = false;
  int32_t lnColorTexto = 0;
  // mutable: TwipsPerPixelX/Y are const in Superficie but may be recorded.
  mutable std::vector<LlamadaGrabada> llamadas;
};

}  // namespace velqua
