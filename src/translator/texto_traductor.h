// Small text helpers shared by the translator's files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velqua {
namespace traductor {

// The text without its blanks (U+0020) at both ends; other white space is
// content (a tab inside a field stays).
std::u16string_view SinBlancos(std::u16string_view cad);

// Removes the blanks at both ends of cad, in place.
void QuitaBlancos(std::u16string& cad);

// True for the decimal digits 0 to 9.
inline bool EsDigito(char16_t c) { return c >= u'0' && c <= u'9'; }

// A number text of a record field: digits, with optional blanks around them.
// No sign, no decimal separator, no exponent (doc/translator.md).
bool EsNumeroTexto(std::u16string_view cad);

// The value of a number text cut to its first 4 characters, or -1 when the
// cut text is no longer a number text (only blanks are left). A value outside
// the 16-bit range fails with error 6 (it cannot arise from 4 characters).
int32_t ValorNumeroTexto(std::u16string_view cad);

// EsNumeroTexto and ValorNumeroTexto in one pass, for the hot field reads:
// the value of the first 4 characters of a number text, or -1 when cad is
// not a number text or its first 4 characters are only blanks.
inline int32_t ValorSiNumero(std::u16string_view cad) {
  const std::size_t n = cad.size();
  std::size_t i = 0;
  while (i < n && cad[i] == u' ') ++i;
  const std::size_t ini = i;
  while (i < n && EsDigito(cad[i])) ++i;
  const std::size_t fin = i;
  while (i < n && cad[i] == u' ') ++i;
  if (i != n || fin == ini || ini >= 4) return -1;
  int32_t v = 0;  // at most 4 digits: never outside 16 bits
  for (std::size_t k = ini; k < fin && k < 4; ++k) v = v * 10 + (cad[k] - u'0');
  return v;
}

// n written in decimal with at least four digits (format "0000").
std::u16string FormatoCuatroCifras(int32_t n);

}  // namespace traductor
}  // namespace velqua
