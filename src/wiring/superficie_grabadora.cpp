// The recording drawing surface: keeps every call in order.
#include "velqua/superficie_grabadora.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "velqua/texto.h"

namespace velqua {
namespace {

// Shortest text that reads back as the same float: "150", "97.5", "-1".
std::string Numero(float sglValor) {
  char buf[32];
  for (int precision = 6; precision <= 9; ++precision) {
    std::snprintf(buf, sizeof buf, "%.*g", precision, static_cast<double>(sglValor));
    if (std::strtof(buf, nullptr) == sglValor) break;
  }
  return buf;
}

std::string Color(int32_t lnColor) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%06X", static_cast<unsigned>(lnColor));
  return buf;
}

std::string Citado(const std::u16string& cadTexto) { return "\"" + AUtf8(cadTexto) + "\""; }

char16_t MinusculaAscii(char16_t c) {
  return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

bool IgualesSinMayusculas(const std::u16string& a, const std::u16string& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (MinusculaAscii(a[i]) != MinusculaAscii(b[i])) return false;
  }
  return true;
}

LlamadaGrabada Llamada(const char* cadOperacion) {
  LlamadaGrabada udt;
  udt.cadOperacion = cadOperacion;
  return udt;
}

}  // namespace

SuperficieGrabadora::SuperficieGrabadora(float sglTwipsPorPixelX, float sglTwipsPorPixelY)
    : sglPx(sglTwipsPorPixelX), sglPy(sglTwipsPorPixelY) {}

void SuperficieGrabadora::AltoTexto(const std::u16string& cadNombre, int16_t intPuntosFuente,
                                    float sglAlto) {
  altos[{cadNombre, intPuntosFuente}] = sglAlto;
}

void SuperficieGrabadora::AltoTextoPredeterminado(float sglAlto) {
  sglAltoPredeterminado = sglAlto;
}

void SuperficieGrabadora::TwipsPorPixel(float sglX, float sglY) {
  sglPx = sglX;
  sglPy = sglY;
}

void SuperficieGrabadora::GrabaConsultasPixel(bool bolGrabar) { bolGrabaPixel = bolGrabar; }

std::vector<std::string> SuperficieGrabadora::Lineas() const {
  std::vector<std::string> lineas;
  lineas.reserve(llamadas.size());
  for (const LlamadaGrabada& udt : llamadas) lineas.push_back(LineaDe(udt));
  return lineas;
}

std::string SuperficieGrabadora::Texto() const {
  std::string texto;
  for (const LlamadaGrabada& udt : llamadas) texto += LineaDe(udt) + "\n";
  return texto;
}

std::string SuperficieGrabadora::LineaDe(const LlamadaGrabada& udt) {
  const std::string& op = udt.cadOperacion;
  if (op == "FontName" || op == "Print") return op + " " + Citado(udt.cadTexto);
  if (op == "FontSize") return op + " " + std::to_string(udt.lnValor);
  if (op == "FontBold") return op + (udt.lnValor != 0 ? " true" : " false");
  if (op == "ForeColor") return op + " " + Color(udt.lnValor);
  if (op == "CurrentX" || op == "CurrentY") return op + " " + Numero(udt.sglX1);
  if (op == "TextHeight")
    return op + " " + Citado(udt.cadTexto) + " -> " + Numero(udt.sglResultado);
  if (op == "Line") {
    return op + " " + std::to_string(udt.lnValor) + " (" + Numero(udt.sglX1) + ", " +
           Numero(udt.sglY1) + ")-(" + Numero(udt.sglX2) + ", " + Numero(udt.sglY2) + ") " +
           Color(udt.lnColor);
  }
  return op + " -> " + Numero(udt.sglResultado);  // TwipsPerPixelX, TwipsPerPixelY
}

float SuperficieGrabadora::AltoActual() const {
  const auto exacto = altos.find({cadFuente, intPuntos});
  if (exacto != altos.end()) return exacto->second;
  for (const auto& [clave, sglAlto] : altos) {
    if (clave.second == intPuntos && IgualesSinMayusculas(clave.first, cadFuente)) return sglAlto;
  }
  return sglAltoPredeterminado;
}

void SuperficieGrabadora::FontName(const std::u16string& cadNombre) {
  LlamadaGrabada udt = Llamada("FontName");
  udt.cadTexto = cadNombre;
  llamadas.push_back(udt);
  cadFuente = cadNombre;
}

void SuperficieGrabadora::FontSize(int16_t intPuntosNuevos) {
  LlamadaGrabada udt = Llamada("FontSize");
  udt.lnValor = intPuntosNuevos;
  llamadas.push_back(udt);
  intPuntos = intPuntosNuevos;
}

void SuperficieGrabadora::FontBold(bool bolNegritaNueva) {
  LlamadaGrabada udt = Llamada("FontBold");
  udt.lnValor = bolNegritaNueva ? -1 : 0;
  llamadas.push_back(udt);
  bolNegrita = bolNegritaNueva;
}

void SuperficieGrabadora::ForeColor(int32_t lnColor) {
  LlamadaGrabada udt = Llamada("ForeColor");
  udt.lnValor = lnColor;
  llamadas.push_back(udt);
  lnColorTexto = lnColor;
}

void SuperficieGrabadora::CurrentX(float sglX) {
  LlamadaGrabada udt = Llamada("CurrentX");
  udt.sglX1 = sglX;
  llamadas.push_back(udt);
}

void SuperficieGrabadora::CurrentY(float sglY) {
  LlamadaGrabada udt = Llamada("CurrentY");
  udt.sglX1 = sglY;
  llamadas.push_back(udt);
}

float SuperficieGrabadora::TextHeight(const std::u16string& cadTexto) {
  LlamadaGrabada udt = Llamada("TextHeight");
  udt.cadTexto = cadTexto;
  udt.sglResultado = AltoActual();
  llamadas.push_back(udt);
  return udt.sglResultado;
}

void SuperficieGrabadora::Line(int16_t intFlags, float x1, float y1, float x2, float y2,
                               int32_t lnColor) {
  LlamadaGrabada udt = Llamada("Line");
  udt.lnValor = intFlags;
  udt.sglX1 = x1;
  udt.sglY1 = y1;
  udt.sglX2 = x2;
  udt.sglY2 = y2;
  udt.lnColor = lnColor;
  llamadas.push_back(udt);
}

void SuperficieGrabadora::Print(const std::u16string& cadTexto) {
  LlamadaGrabada udt = Llamada("Print");
  udt.cadTexto = cadTexto;
  llamadas.push_back(udt);
}

float SuperficieGrabadora::TwipsPerPixelX() const {
  if (bolGrabaPixel) {
    LlamadaGrabada udt = Llamada("TwipsPerPixelX");
    udt.sglResultado = sglPx;
    llamadas.push_back(udt);
  }
  return sglPx;
}

float SuperficieGrabadora::TwipsPerPixelY() const {
  if (bolGrabaPixel) {
    LlamadaGrabada udt = Llamada("TwipsPerPixelY");
    udt.sglResultado = sglPy;
    llamadas.push_back(udt);
  }
  return sglPy;
}

}  // namespace velqua
