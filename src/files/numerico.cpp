// The numeric test and integer conversion of profile values.
#include "files/numerico.h"

#include "errors/errores_runtime.h"

namespace velqua {
namespace archivos {
namespace {

bool EsBlanco(char16_t c) { return c == u' ' || c == u'\t'; }
bool EsDigito(char16_t c) { return c >= u'0' && c <= u'9'; }

// The parts of a numeric text; false when it is not numeric.
struct Numero {
  bool bolNegativo = false;
  std::u16string_view cadEntera;    // digits before the point
  std::u16string_view cadFraccion;  // digits after the point
};

bool Analiza(std::u16string_view t, Numero& n) {
  size_t i = 0;
  while (i < t.size() && EsBlanco(t[i])) ++i;
  if (i < t.size() && (t[i] == u'+' || t[i] == u'-')) n.bolNegativo = t[i++] == u'-';
  size_t ini = i;
  while (i < t.size() && EsDigito(t[i])) ++i;
  n.cadEntera = t.substr(ini, i - ini);
  if (i < t.size() && t[i] == u'.') {
    ini = ++i;
    while (i < t.size() && EsDigito(t[i])) ++i;
    n.cadFraccion = t.substr(ini, i - ini);
  }
  if (n.cadEntera.empty() && n.cadFraccion.empty()) return false;
  while (i < t.size() && EsBlanco(t[i])) ++i;
  return i == t.size();
}

}  // namespace

bool EsNumerico(std::u16string_view texto) {
  Numero n;
  return Analiza(texto, n);
}

int32_t ValorEntero32(std::u16string_view texto) {
  Numero n;
  if (!Analiza(texto, n)) return 0;
  // Magnitude with a ceiling just above the 32-bit range, so that any number
  // of digits is handled without overflow of the accumulator.
  constexpr int64_t kTope = int64_t{1} << 32;
  int64_t v = 0;
  for (char16_t c : n.cadEntera) {
    v = v * 10 + (c - u'0');
    if (v > kTope) v = kTope;
  }
  // Half to even: only the first fractional digit and whether any later one
  // is non-zero matter.
  if (!n.cadFraccion.empty()) {
    const int primero = n.cadFraccion[0] - u'0';
    bool bolResto = false;
    for (size_t k = 1; k < n.cadFraccion.size(); ++k)
      bolResto = bolResto || n.cadFraccion[k] != u'0';
    if (primero > 5 || (primero == 5 && (bolResto || v % 2 == 1))) ++v;
  }
  return AEntero32(n.bolNegativo ? -v : v);
}

}  // namespace archivos
}  // namespace velqua
