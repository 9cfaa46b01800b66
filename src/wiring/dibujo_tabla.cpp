// DibujaTablaConversionDB9DB25, the fixed DB9-to-DB25 table.
//
// Reads no state of the configuration. t8 and t7 are measured once each, with
// one TextHeight("M") at their first use; px and py are read afresh from the
// surface at every offset (doc/drawing.md).
#include <cstdint>
#include <string>

#include "velqua/superficie.h"
#include "velqua/textos_dibujo.h"
#include "wiring/dibujo_comun.h"

namespace velqua {
namespace {

using dibujo::DB25DeDB9;
using dibujo::Escribe;
using dibujo::kAzulMarino;
using dibujo::kBlanco;
using dibujo::kGrisClaro;
using dibujo::kMarco;
using dibujo::kNegro;
using dibujo::kRelleno;
using dibujo::kSegmento;
using dibujo::Numero;

// The panel, in surface units, not scaled.
constexpr float kAncho = 1350;
constexpr float kAlto = 1900;

float Px(const Superficie& pic, float n) { return n * pic.TwipsPerPixelX(); }
float Py(const Superficie& pic, float n) { return n * pic.TwipsPerPixelY(); }

// Panel, title bar, outline and column heads; returns t8.
float DibujaPanel(Superficie& pic, float X, float Y, float M, const dibujo::Textos& t) {
  pic.FontName(u"Ms Serif");
  pic.FontSize(8);
  pic.Line(kRelleno, X, Y, X + kAncho, Y + kAlto, kBlanco);
  const float t8 = pic.TextHeight(u"M");
  pic.Line(kRelleno, X, Y + Py(pic, 1), X + kAncho, Y + 2 * t8, kAzulMarino);
  pic.Line(kMarco, X, Y, X + kAncho, Y + kAlto, kNegro);
  pic.ForeColor(kBlanco);
  Escribe(pic, X + Px(pic, 3), Y + Py(pic, 1), t.cadTituloTabla);
  Escribe(pic, X + Px(pic, 14), Y + t8, u"DB9");
  Escribe(pic, M + Px(pic, 8), Y + t8, u"DB25");
  return t8;
}

// The nine rows, a grey band on DB9 pins 2, 4, 6 and 8.
void DibujaFilas(Superficie& pic, float X, float M, float y, const dibujo::Textos& t) {
  pic.ForeColor(kNegro);
  pic.FontSize(7);
  const float t7 = pic.TextHeight(u"M");
  for (int32_t lnPin = 1; lnPin <= 9; ++lnPin) {
    if (lnPin % 2 == 0) {
      pic.Line(kRelleno, X + Px(pic, 1), y, X + kAncho - Px(pic, 2), y + t7, kGrisClaro);
    }
    if (t.bolSenales) {  // the pin and its signal fill the column from further left
      Escribe(pic, X + Px(pic, 6), y, Numero(lnPin) + u" " + dibujo::SenalDB9(lnPin));
    } else {
      Escribe(pic, X + Px(pic, 18), y, Numero(lnPin));
    }
    Escribe(pic, M + Px(pic, 18), y, Numero(DB25DeDB9(lnPin)));
    y = y + t7;
  }
}

}  // namespace

void DibujaTablaConversionDB9DB25(Superficie& picDib, emTextosDibujo emTextos, float sglPosX,
                                  float sglPosY) {
  const dibujo::Textos& t = dibujo::TextosDe(emTextos);
  const float X = sglPosX;
  const float Y = sglPosY;
  const float M = X + kAncho / 2;
  const float t8 = DibujaPanel(picDib, X, Y, M, t);
  DibujaFilas(picDib, X, M, Y + 2 * t8 + Py(picDib, 1), t);  // rows start below the size-8 heads
  picDib.FontSize(8);                                        // then the middle line
  picDib.Line(kSegmento, M, Y + 2 * t8, M, Y + kAlto, kNegro);
}

}  // namespace velqua
