// DibujaConfiguracionSMDR, the cable diagram of one switch port.
//
// The calls on the surface, their order and every offset are part of the
// contract (doc/drawing.md), so a diagram looks the same on every host.
// Every offset written
// "n px" / "n py" reads TwipsPerPixelX / TwipsPerPixelY afresh from the
// surface; the working values A, h8 and h are measured once each, with one
// TextHeight("M") at their first use (doc/drawing.md).
#include <cstdint>
#include <string>

#include "model/datos_cfg.h"
#include "velqua/superficie.h"
#include "velqua/textos_dibujo.h"
#include "wiring/dibujo_comun.h"

namespace velqua {
namespace {

using dibujo::DB25DeDB9;
using dibujo::Escribe;
using dibujo::kAzulMarino;
using dibujo::kBlanco;
using dibujo::kContinuacion;
using dibujo::kMarco;
using dibujo::kNegro;
using dibujo::kRelleno;
using dibujo::kSegmento;
using dibujo::Numero;

// The diagram width, in surface units, not scaled.
constexpr float kAncho = 3200;

// The working values of one drawing: corner X, Y; title bar height A; header
// and row heights h8, h; the three column edges; the next row's top y and
// wire level w; the port's last switch pin N; the two pin classes.
struct Diagrama {
  const DatosCfgConmut& cfg;
  Superficie& pic;
  emPuertoSerial puerto;
  float X, Y;
  const dibujo::Textos& t;
  float A = 0, h8 = 0, h = 0;
  float cS = 0, c9 = 0, c25 = 0;
  float y = 0, w = 0;
  int16_t N = 0;
  int32_t lnUnicos = 0, lnMultiples = 0;

  float Px(float n) const { return n * pic.TwipsPerPixelX(); }
  float Py(float n) const { return n * pic.TwipsPerPixelY(); }
  bool Conectados(int16_t intPinConmut, int16_t intPinPC) const {
    return cfg.PinesConectados(puerto, intPinConmut, intPinPC);
  }
};

int16_t UltimoPin(emPuertoSerial iemPuerto) {
  switch (iemPuerto) {
    case emPuertoRJ45:
      return 8;
    case emPuertoDB9:
      return 9;
    default:
      return 25;  // only emPuertoDB25 has wiring to draw here
  }
}

// The title bar and the header band, drawn in every case.
void DibujaTitulo(Diagrama& d) {
  Superficie& pic = d.pic;
  pic.FontName(u"MS Sans Serif");
  pic.FontSize(10);
  pic.FontBold(false);
  d.A = 2 * pic.TextHeight(u"M");
  pic.Line(kRelleno, d.X, d.Y, d.X + kAncho, d.Y + d.A, kAzulMarino);
  pic.ForeColor(kBlanco);
  Escribe(pic, d.X + d.Px(10), d.Y + d.Py(1), d.t.cadTitulo);
  pic.FontSize(8);
  Escribe(pic, d.X + d.Px(4), d.Y + d.Py(18), d.t.cadConmutador);
  Escribe(pic, d.X + d.Px(115), d.Y + d.Py(18), d.t.cadPC);
  pic.ForeColor(kNegro);
  d.h8 = pic.TextHeight(u"M");
  pic.Line(kRelleno, d.X, d.Y + d.A, d.X + kAncho, d.Y + d.A + d.h8, kBlanco);
}

// A port without wiring: a one-line message inside the outline.
void DibujaSinConfiguracion(Diagrama& d) {
  Escribe(d.pic, d.X + d.Px(20), d.Y + d.A - d.Py(1), d.t.cadSinConfiguracion);
  d.pic.Line(kMarco, d.X, d.Y, d.X + kAncho, d.Y + d.A + d.h8, kNegro);
}

// The column heads, then the columns moved to the pin numbers and the row font.
void DibujaEncabezado(Diagrama& d) {
  Superficie& pic = d.pic;
  d.cS = d.X + d.Px(20);
  d.c9 = d.X + d.Px(120);
  d.c25 = d.X + d.Px(170);
  const char16_t* cadPuerto =
      d.puerto == emPuertoDB25 ? u"DB25" : (d.puerto == emPuertoDB9 ? u"DB9" : u"RJ45");
  Escribe(pic, d.cS, d.Y + d.A, cadPuerto);
  Escribe(pic, d.c9, d.Y + d.A, u"DB9");
  Escribe(pic, d.c25, d.Y + d.A, u"DB25");
  pic.Line(kRelleno, d.X, d.Y + d.A + d.h8, d.X + kAncho, d.Y + d.A + d.h8 + d.Py(2), kBlanco);
  d.cS = d.X + d.Px(26);
  d.c9 = d.X + d.Px(126);
  d.c25 = d.X + d.Px(182);
  d.y = d.Y + d.A + d.h8 + d.Py(2);
  d.w = d.y + d.Py(6);
  pic.FontName(u"MS Serif");
  pic.FontSize(8);
  d.h = pic.TextHeight(u"M");
}

// ---- Row pieces ----

void FondoFila(Diagrama& d) { d.pic.Line(kRelleno, d.X, d.y, d.X + kAncho, d.y + d.h, kBlanco); }

void CableConmutadorDB9(Diagrama& d) {
  d.pic.Line(kSegmento, d.cS + d.Px(20), d.w, d.c9 - d.Px(10), d.w, kNegro);
}

void CableDB9DB25(Diagrama& d) {
  d.pic.Line(kSegmento, d.c9 + d.Px(17), d.w, d.c25 - d.Px(10), d.w, kNegro);
}

// Computer pin i at c9 and its DB25 number at c25.
void EscribePinPC(Diagrama& d, int16_t i) {
  Escribe(d.pic, d.c9, d.y, d.t.bolSenales ? Numero(i) + u" " + dibujo::SenalDB9(i) : Numero(i));
  Escribe(d.pic, d.c25, d.y, Numero(DB25DeDB9(i)));
}

// A vertical segment at x joining the previous row, then on to (xFin, w).
void UneConFilaAnterior(Diagrama& d, float x, float xFin) {
  d.pic.Line(kSegmento, x, d.w - d.h, x, d.w, kNegro);
  d.pic.Line(kContinuacion, 0, 0, xFin, d.w, kNegro);
}

void Avanza(Diagrama& d) {
  d.w = d.w + d.h;
  d.y = d.y + d.h;
}

// The DB25 ground row (pin 1 on both sides), drawn though pin 1 cannot be wired.
void DibujaFilaTierra(Diagrama& d) {
  FondoFila(d);
  Escribe(d.pic, d.cS, d.y, u"1");
  Escribe(d.pic, d.c9 - d.Px(6), d.y, u"Gnd");
  Escribe(d.pic, d.c25, d.y, u"1");
  CableConmutadorDB9(d);
  CableDB9DB25(d);
  Avanza(d);
}

// lnUnicos: switch pins that are the only one wired to some computer pin;
// lnMultiples: switch pins that share a computer pin. Computer pins 1 to 9.
void Clasifica(Diagrama& d) {
  for (int16_t i = 1; i <= 9; ++i) {
    int32_t lnPines = 0;
    int cuenta = 0;
    for (int16_t k = 1; k <= d.N; ++k) {
      if (!d.Conectados(k, i)) continue;
      lnPines |= int32_t{1} << (k - 1);
      ++cuenta;
    }
    if (cuenta == 1) d.lnUnicos |= lnPines;
    if (cuenta >= 2) d.lnMultiples |= lnPines;
  }
}

// The fan-out group of switch pin j: one row per computer pin of j.
void DibujaAbanico(Diagrama& d, int16_t j) {
  int filas = 0;
  for (int16_t i = 1; i <= 9; ++i) {
    if (!d.Conectados(j, i)) continue;
    FondoFila(d);
    if (filas == 0) Escribe(d.pic, d.cS, d.y, Numero(j));
    EscribePinPC(d, i);
    if (filas == 0) {
      CableConmutadorDB9(d);
    } else {
      UneConFilaAnterior(d, d.c9 - d.Px(20), d.c9 - d.Px(10));
    }
    CableDB9DB25(d);
    Avanza(d);
    ++filas;
  }
}

// The bridged group of switch pin j: one row per switch pin wired to the
// first computer pin of j; ends as soon as lnMultiples is empty.
void DibujaPuente(Diagrama& d, int16_t j) {
  int16_t i = 1;
  while (i <= 9 && !d.Conectados(j, i)) ++i;
  if (i > 9) return;
  int filas = 0;
  int32_t b = 1;
  for (int16_t k = 1; k <= d.N; ++k, b <<= 1) {
    if (d.Conectados(k, i)) {
      FondoFila(d);
      Escribe(d.pic, d.cS, d.y, Numero(k));
      if (filas == 0) {
        EscribePinPC(d, i);
        CableConmutadorDB9(d);
        CableDB9DB25(d);
      } else {
        UneConFilaAnterior(d, d.cS + d.Px(30), d.cS + d.Px(20));
      }
      Avanza(d);
      d.lnMultiples &= ~b;
      ++filas;
    }
    if (d.lnMultiples == 0) return;
  }
}

// The main pass over the switch pins, started again after every bridged group.
void PasadaPrincipal(Diagrama& d) {
  int16_t j = 1;
  int32_t m = 1;
  while (j <= d.N) {
    if ((d.lnUnicos & m) != 0) {
      DibujaAbanico(d, j);
      d.lnUnicos &= ~m;
    } else if ((d.lnMultiples & m) != 0) {
      DibujaPuente(d, j);
      // The group has removed pin j already, unless the wiring changed under
      // the drawing (a host reacting to a surface call): never loop forever.
      d.lnMultiples &= ~m;
      j = 1;
      m = 1;
      continue;
    }
    ++j;
    m <<= 1;
  }
}

}  // namespace

void DatosCfgConmut::DibujaConfiguracionSMDR(emPuertoSerial iemPuerto, Superficie& picDib,
                                             int32_t emTextos, float sglPosX, float sglPosY) const {
  Diagrama d{*this, picDib, iemPuerto, sglPosX, sglPosY, dibujo::TextosDe(emTextos)};
  DibujaTitulo(d);
  if (!HayConfiguracionSMDR(iemPuerto)) {
    DibujaSinConfiguracion(d);
    return;
  }
  DibujaEncabezado(d);
  d.N = UltimoPin(iemPuerto);
  if (iemPuerto == emPuertoDB25) DibujaFilaTierra(d);
  Clasifica(d);
  PasadaPrincipal(d);
  picDib.Line(kMarco, d.X, d.Y, d.X + kAncho, d.y, kNegro);  // the outline
}

void DibujaConfiguracionSMDR(const clsCfgConmut& cfgConmut, emPuertoSerial iemPuerto,
                             Superficie& picDib, emTextosDibujo emTextos, float sglPosX,
                             float sglPosY) {
  cfgConmut.Representacion().DibujaConfiguracionSMDR(iemPuerto, picDib, emTextos, sglPosX, sglPosY);
}

}  // namespace velqua
