// velqua_cairo: the drawing surface on Cairo (see superficie_cairo.h).
//
// Everything is drawn onto a Cairo recording surface in pixel units; Guarda
// replays it onto an image, SVG or PDF surface, so one drawing can be written
// in every format and vector formats stay vector.
#include "velqua/superficie_cairo.h"

#include <cairo.h>
#ifdef VELQUA_CAIRO_SVG
#include <cairo-svg.h>
#endif
#ifdef VELQUA_CAIRO_PDF
#include <cairo-pdf.h>
#endif

#include <algorithm>
#include <cmath>
#include <string>

#include "velqua/error.h"
#include "velqua/texto.h"

namespace velqua {
namespace {

constexpr double kTwipsPorPixel = 15;           // a 96-dpi screen
constexpr double kPixelesPorPunto = 96.0 / 72;  // font points at 96 dpi
constexpr double kPuntosPdfPorPixel = 72.0 / 96;
constexpr double kEscalaMaxima = 16;  // a PNG of the cable at 16 is 3424 pixels wide

// Pixel index of a coordinate in twips (nearest pixel).
double Pixel(float sglTwips) { return std::floor(sglTwips / kTwipsPorPixel + 0.5); }

char MinusculaAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Minusculas(std::string cad) {
  std::transform(cad.begin(), cad.end(), cad.begin(), MinusculaAscii);
  return cad;
}

// Every font name resolves to one of the Liberation families, which setup
// installs (fonts-liberation), so a drawing measures and looks the same on
// every machine, whatever other fonts it has: no name reaches fontconfig as
// given. "MS Sans Serif" and "MS Serif", the small screen faces drawings
// name, are narrower at 7 to 10 points than any outline face of their style:
// they resolve to Liberation Sans Narrow, so that a title sized for them
// stays inside its bar. Arial, Helvetica and other sans names resolve to
// Liberation Sans, Times, Roman and other serif names to Liberation Serif,
// Courier, fixed and mono names to Liberation Mono (each keeps the widths of
// the face it stands for).
std::string Familia(const std::u16string& cadNombre) {
  const std::string clave = Minusculas(AUtf8(cadNombre));
  const auto contiene = [&clave](const char* parte) {
    return clave.find(parte) != std::string::npos;
  };
  if (clave == "ms sans serif" || clave == "ms serif") return "Liberation Sans Narrow";
  if (contiene("mono") || contiene("courier") || contiene("fixed")) return "Liberation Mono";
  if ((contiene("serif") && !contiene("sans")) || contiene("times") || contiene("roman"))
    return "Liberation Serif";
  return "Liberation Sans";
}

void PonColor(cairo_t* cr, int32_t lnColor) {  // 0x00BBGGRR
  const auto canal = [lnColor](int desplazamiento) {
    return static_cast<double>((lnColor >> desplazamiento) & 0xFF) / 255.0;
  };
  cairo_set_source_rgb(cr, canal(0), canal(8), canal(16));
}

[[noreturn]] void Falla(int32_t lnNumero, const std::string& cadDescripcion) {
  throw Error(lnNumero, u"SuperficieCairo.Guarda", DesdeUtf8(cadDescripcion));
}

std::string Extension(const std::string& cadArchivo) {
  const std::size_t punto = cadArchivo.find_last_of('.');
  const std::size_t barra = cadArchivo.find_last_of('/');
  if (punto == std::string::npos || (barra != std::string::npos && punto < barra)) return "";
  return Minusculas(cadArchivo.substr(punto + 1));
}

}  // namespace

struct SuperficieCairo::Estado {
  int32_t lnAncho = 0;  // 0: follows the drawing
  int32_t lnAlto = 0;
  cairo_surface_t* grabacion = nullptr;
  cairo_t* cr = nullptr;
  std::u16string cadFuente = u"MS Sans Serif";
  int16_t intPuntos = 8;
  bool bolNegrita = false;
  int32_t lnColorTexto = 0;
  int32_t lnColorFondo = 0xFFFFFF;
  double dblEscala = 1;  // of the written image
  float sglX = 0;
  float sglY = 0;
  double dblPlumaX = 0;  // end point of the last Line, in pixels
  double dblPlumaY = 0;

  void AplicaFuente() {
    const std::string familia = Familia(cadFuente);
    cairo_select_font_face(cr, familia.c_str(), CAIRO_FONT_SLANT_NORMAL,
                           bolNegrita ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, intPuntos * kPixelesPorPunto);
  }

  // Replays the drawing onto cr of a target of the current size.
  void Reproduce(cairo_t* destino, int32_t ancho, int32_t alto) const {
    PonColor(destino, lnColorFondo);
    cairo_rectangle(destino, 0, 0, ancho, alto);
    cairo_fill(destino);
    cairo_set_source_surface(destino, grabacion, 0, 0);
    cairo_rectangle(destino, 0, 0, ancho, alto);
    cairo_fill(destino);
  }
};

SuperficieCairo::SuperficieCairo(int32_t lnAnchoPx, int32_t lnAltoPx) : estado(new Estado) {
  estado->lnAncho = std::max(lnAnchoPx, 0);
  estado->lnAlto = std::max(lnAltoPx, 0);
  cairo_rectangle_t limites{0, 0, static_cast<double>(estado->lnAncho),
                            static_cast<double>(estado->lnAlto)};
  // Unbounded when a size follows the drawing; clipped to the canvas otherwise.
  const bool bolAcotada = estado->lnAncho > 0 && estado->lnAlto > 0;
  estado->grabacion =
      cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, bolAcotada ? &limites : nullptr);
  estado->cr = cairo_create(estado->grabacion);
  cairo_set_line_width(estado->cr, 1);
  cairo_set_line_cap(estado->cr, CAIRO_LINE_CAP_SQUARE);
  estado->AplicaFuente();
}

SuperficieCairo::~SuperficieCairo() {
  cairo_destroy(estado->cr);
  cairo_surface_destroy(estado->grabacion);
}

int32_t SuperficieCairo::AnchoPx() const {
  if (estado->lnAncho > 0) return estado->lnAncho;
  double x = 0, y = 0, ancho = 0, alto = 0;
  cairo_recording_surface_ink_extents(estado->grabacion, &x, &y, &ancho, &alto);
  return std::max(1, static_cast<int32_t>(std::ceil(x + ancho)));
}

int32_t SuperficieCairo::AltoPx() const {
  if (estado->lnAlto > 0) return estado->lnAlto;
  double x = 0, y = 0, ancho = 0, alto = 0;
  cairo_recording_surface_ink_extents(estado->grabacion, &x, &y, &ancho, &alto);
  return std::max(1, static_cast<int32_t>(std::ceil(y + alto)));
}

void SuperficieCairo::ColorFondo(int32_t lnColor) { estado->lnColorFondo = lnColor; }

void SuperficieCairo::Escala(double dblEscala) {
  estado->dblEscala = dblEscala > 0 && dblEscala <= kEscalaMaxima ? dblEscala : 1;
}

void SuperficieCairo::Guarda(const std::string& cadArchivo) const {
  const int32_t ancho = AnchoPx();
  const int32_t alto = AltoPx();
  const std::string ext = Extension(cadArchivo);
  cairo_surface_t* destino = nullptr;
  double dblEscala = estado->dblEscala;
  const auto Lado = [&dblEscala](int32_t px) { return std::ceil(px * dblEscala); };
  if (false) {
#ifdef VELQUA_CAIRO_PNG
  } else if (ext == "png") {
    destino = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(Lado(ancho)),
                                         static_cast<int>(Lado(alto)));
#endif
#ifdef VELQUA_CAIRO_SVG
  } else if (ext == "svg") {
    destino = cairo_svg_surface_create(cadArchivo.c_str(), Lado(ancho), Lado(alto));
    cairo_svg_surface_set_document_unit(destino, CAIRO_SVG_UNIT_PX);
#endif
#ifdef VELQUA_CAIRO_PDF
  } else if (ext == "pdf") {
    dblEscala *= kPuntosPdfPorPixel;
    destino = cairo_pdf_surface_create(cadArchivo.c_str(), Lado(ancho), Lado(alto));
#endif
  } else {
    Falla(5, "Formato de archivo no disponible: \"" + cadArchivo + "\" (png, svg o pdf).");
  }
  cairo_t* cr = cairo_create(destino);
  cairo_scale(cr, dblEscala, dblEscala);
  estado->Reproduce(cr, ancho, alto);
  cairo_destroy(cr);
  cairo_status_t estadoCairo = CAIRO_STATUS_SUCCESS;
#ifdef VELQUA_CAIRO_PNG
  if (ext == "png") estadoCairo = cairo_surface_write_to_png(destino, cadArchivo.c_str());
#endif
  cairo_surface_finish(destino);
  if (estadoCairo == CAIRO_STATUS_SUCCESS) estadoCairo = cairo_surface_status(destino);
  cairo_surface_destroy(destino);
  if (estadoCairo != CAIRO_STATUS_SUCCESS) {
    Falla(75, "No se pudo escribir el archivo \"" + cadArchivo +
                  "\": " + cairo_status_to_string(estadoCairo));
  }
}

void SuperficieCairo::FontName(const std::u16string& cadNombre) {
  estado->cadFuente = cadNombre;
  estado->AplicaFuente();
}

void SuperficieCairo::FontSize(int16_t intPuntos) {
  estado->intPuntos = intPuntos;
  estado->AplicaFuente();
}

void SuperficieCairo::FontBold(bool bolNegrita) {
  estado->bolNegrita = bolNegrita;
  estado->AplicaFuente();
}

void SuperficieCairo::ForeColor(int32_t lnColor) { estado->lnColorTexto = lnColor; }
void SuperficieCairo::CurrentX(float sglX) { estado->sglX = sglX; }
void SuperficieCairo::CurrentY(float sglY) { estado->sglY = sglY; }

float SuperficieCairo::TextHeight(const std::u16string&) {
  cairo_font_extents_t medidas;
  cairo_font_extents(estado->cr, &medidas);
  return static_cast<float>(medidas.height * kTwipsPorPixel);
}

void SuperficieCairo::Line(int16_t intFlags, float x1, float y1, float x2, float y2,
                           int32_t lnColor) {
  cairo_t* cr = estado->cr;
  const double px2 = Pixel(x2);
  const double py2 = Pixel(y2);
  double px1 = Pixel(x1);
  double py1 = Pixel(y1);
  if (intFlags == 2) {
    px1 = estado->dblPlumaX;
    py1 = estado->dblPlumaY;
  }
  PonColor(cr, lnColor);
  if (intFlags == 38) {
    // Both corner pixels included, as a filled box on a picture box.
    cairo_rectangle(cr, std::min(px1, px2), std::min(py1, py2), std::fabs(px2 - px1) + 1,
                    std::fabs(py2 - py1) + 1);
    cairo_fill(cr);
  } else if (intFlags == 22) {
    cairo_rectangle(cr, std::min(px1, px2) + 0.5, std::min(py1, py2) + 0.5, std::fabs(px2 - px1),
                    std::fabs(py2 - py1));
    cairo_stroke(cr);
  } else {
    // Through pixel centres, so a 1-pixel line lands on whole pixels.
    cairo_move_to(cr, px1 + 0.5, py1 + 0.5);
    cairo_line_to(cr, px2 + 0.5, py2 + 0.5);
    cairo_stroke(cr);
  }
  estado->dblPlumaX = px2;
  estado->dblPlumaY = py2;
}

void SuperficieCairo::Print(const std::u16string& cadTexto) {
  cairo_t* cr = estado->cr;
  cairo_font_extents_t medidas;
  cairo_font_extents(cr, &medidas);
  PonColor(cr, estado->lnColorTexto);
  // Top-left corner on a whole pixel; the baseline one ascent below it.
  cairo_move_to(cr, Pixel(estado->sglX), Pixel(estado->sglY) + medidas.ascent);
  const std::string utf8 = AUtf8(cadTexto);
  cairo_show_text(cr, utf8.c_str());
  cairo_new_path(cr);
}

float SuperficieCairo::TwipsPerPixelX() const { return static_cast<float>(kTwipsPorPixel); }
float SuperficieCairo::TwipsPerPixelY() const { return static_cast<float>(kTwipsPorPixel); }

}  // namespace velqua
