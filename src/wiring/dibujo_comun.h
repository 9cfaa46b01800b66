// Shared pieces of the two drawings: the Line flags, the
// colours, the DB9-to-DB25 pin table and text placement on the surface.
#pragma once

#include <cstdint>
#include <string>

#include "velqua/enums.h"
#include "velqua/superficie.h"

namespace velqua {
namespace dibujo {

// Line flags, as the host surface understands them.
constexpr int16_t kSegmento = 6;
constexpr int16_t kContinuacion = 2;
constexpr int16_t kMarco = 22;
constexpr int16_t kRelleno = 38;
// Colours, 0x00BBGGRR.
constexpr int32_t kAzulMarino = 0x800000;
constexpr int32_t kBlanco = 0xFFFFFF;
constexpr int32_t kNegro = 0;
constexpr int32_t kGrisClaro = 0xC8C8C8;

// The DB25 pin of DB9 pin i, for i from 1 to 9 (emTablaConversionDB9DB25).
inline int32_t DB25DeDB9(int32_t i) {
  constexpr int32_t kTabla[9] = {emDB9Pin1, emDB9Pin2, emDB9Pin3, emDB9Pin4, emDB9Pin5,
                                 emDB9Pin6, emDB9Pin7, emDB9Pin8, emDB9Pin9};
  return kTabla[i - 1];
}

// The texts of the drawings, the library's or English (emTextosDibujo).
struct Textos {
  const char16_t* cadTitulo;
  const char16_t* cadConmutador;
  const char16_t* cadPC;
  const char16_t* cadSinConfiguracion;
  const char16_t* cadTituloTabla;
  bool bolSenales;  // the signal name beside each computer DB9 pin
};

inline const Textos& TextosDe(int32_t emTextos) {
  static const Textos kBiblioteca{
      u"Confguración del cable SMDR",          u"Conmutador",          u"PC (Computadora)",
      u"-- No hay configuración realizada --", u"Tabla de conversión", false};
  static const Textos kIngles{u"SMDR cable wiring",   u"Switch",           u"PC (computer)",
                              u"-- No wiring set --", u"Conversion table", true};
  return emTextos == 1 ? kIngles : kBiblioteca;
}

// The RS-232 signal of DB9 pin i (1 to 9), as a computer's serial port names it.
inline const char16_t* SenalDB9(int32_t i) {
  constexpr const char16_t* kSenales[9] = {u"DCD", u"RxD", u"TxD", u"DTR", u"GND",
                                           u"DSR", u"RTS", u"CTS", u"RI"};
  return kSenales[i - 1];
}

// A number as decimal text without blanks.
inline std::u16string Numero(int32_t lnValor) {
  const std::string ascii = std::to_string(lnValor);
  return std::u16string(ascii.begin(), ascii.end());
}

// Prints a text with its top-left corner at (x, y).
inline void Escribe(Superficie& pic, float x, float y, const std::u16string& cadTexto) {
  pic.CurrentX(x);
  pic.CurrentY(y);
  pic.Print(cadTexto);
}

}  // namespace dibujo
}  // namespace velqua
