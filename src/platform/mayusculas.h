// Case-insensitive comparison and search: every comparison of the
// translator (constants, keywords, separators, prefixes, list codes) ignores
// letter case, as a Windows host's locale comparison does.
//
// Letters are folded one 16-bit character to one (the simple upper-case
// mapping), so a folded text keeps its length: ASCII, Latin-1 (á/Á, ñ/Ñ,
// ü/Ü, ÿ/Ÿ), Latin Extended-A (œ/Œ, š/Š, ž/Ž, ...), basic Greek and
// Cyrillic. Other characters compare exactly.
#pragma once

#include <cstddef>
#include <string_view>

namespace velqua {
namespace plataforma {

// The upper-case form of one character, or the character itself.
char16_t PliegaMayuscula(char16_t c);

// True when a and b have the same length and match letter for letter,
// letter case ignored. Inline, with the equal and the ASCII characters
// decided without a call: the translator compares a constant per decision.
inline bool IgualesSinMayusculas(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const char16_t x = a[i];
    const char16_t y = b[i];
    if (x == y) continue;
    if (x < 0x80 && y < 0x80) {
      // ASCII: equal only as the two cases of one letter.
      if ((x ^ y) != 0x20) return false;
      const char16_t m = static_cast<char16_t>(x | 0x20);
      if (m < u'a' || m > u'z') return false;
      continue;
    }
    if (PliegaMayuscula(x) != PliegaMayuscula(y)) return false;
  }
  return true;
}

// True when texto begins with prefijo, letter case ignored.
bool EmpiezaSinMayusculas(std::u16string_view texto, std::u16string_view prefijo);

// Index (0-based) of the first occurrence of buscado in texto at or after
// desde, letter case ignored; npos when there is none. An empty buscado is
// found at desde when desde is not past the end.
std::size_t BuscaSinMayusculas(std::u16string_view texto, std::u16string_view buscado,
                               std::size_t desde = 0);

}  // namespace plataforma
}  // namespace velqua
