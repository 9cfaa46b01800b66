// Part 5.3: DibujaTablaConversionDB9DB25, the fixed DB9-to-DB25 table.
//
// Reads no state of the configuration. t8 and t7 are measured once each, with
// one TextHeight("M") at their first use; px and py are read afresh from the
// surface at every offset (doc/drawing.md).
#include <cstdint>
#include <string>

#include "velqua/cfg_conmut.h"
#include "velqua/superficie.h"

namespace velqua {
namespace {

constexpr int16_t kSegmento = 6;
constexpr int16_t kMarco = 22;
constexpr int16_t kRelleno = 38;
constexpr int32_t kAzulMarino = 0x800000;
constexpr int32_t kBlanco = 0xFFFFFF;
constexpr int32_t kNegro = 0;
constexpr int32_t kGrisClaro = 0xC8C8C8;
// The panel, in surface units, not scaled.
constexpr float kAncho = 1350;
constexpr float kAlto = 1900;

// The DB25 pin of DB9 pins 1 to 9 (emTablaConversionDB9DB25).
constexpr int32_t kDB25DeDB9[9] = {emDB9Pin1, emDB9Pin2, emDB9Pin3, emDB9Pin4, emDB9Pin5,
                                   emDB9Pin6, emDB9Pin7, emDB9Pin8, emDB9Pin9};

std::u16string Numero(int32_t lnValor) {
  const std::string ascii = std::to_string(lnValor);
  return std::u16string(ascii.begin(), ascii.end());
}

void Escribe(Superficie& pic, float x, float y, const std::u16string& cadTexto) {
  pic.CurrentX(x);
  pic.CurrentY(y);
  pic.Print(cadTexto);
}

float Px(const Superficie& pic, float n) { return n * pic.TwipsPerPixelX(); }
float Py(const Superficie& pic, float n) { return n * pic.TwipsPerPixelY(); }

// Steps 1-5: panel, title bar, outline and column heads; returns t8.
float DibujaPanel(Superficie& pic, float X, float Y, float M) {
  pic.FontName(u"Ms Serif");
  pic.FontSize(8);
  pic.Line(kRelleno, X, Y, X + kAncho, Y + kAlto, kBlanco);
  const float t8 = pic.TextHeight(u"M");
  pic.Line(kRelleno, X, Y + Py(pic, 1), X + kAncho, Y + 2 * t8, kAzulMarino);
  pic.Line(kMarco, X, Y, X + kAncho, Y + kAlto, kNegro);
  pic.ForeColor(kBlanco);
  Escribe(pic, X + Px(pic, 3), Y + Py(pic, 1), u"Tabla de conversión");
  Escribe(pic, X + Px(pic, 14), Y + t8, u"DB9");
  Escribe(pic, M + Px(pic, 8), Y + t8, u"DB25");
  return t8;
}

// Steps 7-8: the nine rows, a grey band on DB9 pins 2, 4, 6 and 8.
void DibujaFilas(Superficie& pic, float X, float M, float y) {
  pic.ForeColor(kNegro);
  pic.FontSize(7);
  const float t7 = pic.TextHeight(u"M");
  for (int32_t lnPin = 1; lnPin <= 9; ++lnPin) {
    if (lnPin % 2 == 0) {
      pic.Line(kRelleno, X + Px(pic, 1), y, X + kAncho - Px(pic, 2), y + t7, kGrisClaro);
    }
    Escribe(pic, X + Px(pic, 18), y, Numero(lnPin));
    Escribe(pic, M + Px(pic, 18), y, Numero(kDB25DeDB9[lnPin - 1]));
    y = y + t7;
  }
}

}  // namespace

void clsCfgConmut::DibujaTablaConversionDB9DB25(Superficie& picDib, float sglPosX,
                                                float sglPosY) const {
  const float X = sglPosX;
  const float Y = sglPosY;
  const float M = X + kAncho / 2;
  const float t8 = DibujaPanel(picDib, X, Y, M);
  DibujaFilas(picDib, X, M, Y + 2 * t8 + Py(picDib, 1));  // step 6: y
  picDib.FontSize(8);                                     // step 9
  picDib.Line(kSegmento, M, Y + 2 * t8, M, Y + kAlto, kNegro);
}

}  // namespace velqua
