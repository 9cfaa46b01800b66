#include "errors/errores_runtime.h"

#include <cstdint>

#include "velqua/error.h"

namespace velqua {

// Spanish descriptions of the standard runtime errors, in their usual
// wording, so a host shows them as it shows any other runtime error.
void LanzaDesbordamiento() { throw Error(kErrDesbordamiento, u"Velqua", u"Desbordamiento"); }

void LanzaIndiceFueraDeIntervalo() {
  throw Error(kErrIndiceFueraDeIntervalo, u"Velqua", u"El subíndice está fuera del intervalo");
}

void LanzaTiposNoCoinciden() {
  throw Error(kErrTiposNoCoinciden, u"Velqua", u"No coinciden los tipos");
}

void LanzaObjetoNoEstablecido() {
  throw Error(kErrObjetoNoEstablecido, u"Velqua",
              u"Variable de objeto o bloque With no establecido");
}

uint8_t SumaByte(uint8_t a, uint8_t b) {
  const int suma = a + b;
  if (suma > 255) LanzaDesbordamiento();
  return static_cast<uint8_t>(suma);
}

int16_t AEntero16(int64_t v) {
  if (v < INT16_MIN || v > INT16_MAX) LanzaDesbordamiento();
  return static_cast<int16_t>(v);
}

int32_t AEntero32(int64_t v) {
  if (v < INT32_MIN || v > INT32_MAX) LanzaDesbordamiento();
  return static_cast<int32_t>(v);
}

}  // namespace velqua
