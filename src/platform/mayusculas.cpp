#include "platform/mayusculas.h"

#include <cstdint>

namespace velqua {
namespace plataforma {
namespace {

// Latin Extended-A (U+0100 to U+017F) pairs its letters upper/lower, with the
// upper letter on the even code in some runs and on the odd code in others.
// U+0130, U+0131 (Turkish dotted/dotless i), U+0138 (kra), U+0149 and U+017F
// have no simple partner here and stay as they are.
char16_t PliegaLatinExtendidoA(char16_t c) {
  if (c == u'\u0130' || c == u'\u0131' || c == u'\u0138' || c == u'\u0149' || c == u'\u017F') {
    return c;
  }
  if (c == u'\u0178') return c;  // Ÿ, the partner of ÿ (U+00FF)
  const bool imparEsMinuscula = (c < 0x0138) || (c >= 0x014A && c <= 0x0177);
  const bool esImpar = (c & 1) != 0;
  if (imparEsMinuscula == esImpar) return static_cast<char16_t>(c - 1);
  return c;
}

char16_t PliegaGriego(char16_t c) {
  if (c == u'\u03C2') return u'\u03A3';  // final sigma
  if (c >= 0x03B1 && c <= 0x03C9) return static_cast<char16_t>(c - 0x20);
  if (c == u'\u03AC') return u'\u0386';
  if (c >= 0x03AD && c <= 0x03AF) return static_cast<char16_t>(c - 0x25);
  if (c == u'\u03CC') return u'\u038C';
  if (c == u'\u03CD' || c == u'\u03CE') return static_cast<char16_t>(c - 0x3F);
  return c;
}

char16_t PliegaCirilico(char16_t c) {
  if (c >= 0x0430 && c <= 0x044F) return static_cast<char16_t>(c - 0x20);
  if (c >= 0x0450 && c <= 0x045F) return static_cast<char16_t>(c - 0x50);
  return c;
}

// True when one of the 16 characters at t, or-ed with m, is objetivo. No
// early exit, and not inlined (inlined, GCC unrolls it before it can
// vectorise it).
[[gnu::noinline]] bool HayEnBloque(const char16_t* t, char16_t m, char16_t objetivo) {
  uint16_t hay = 0;
  for (std::size_t k = 0; k < 16; ++k) {
    hay |= static_cast<uint16_t>(static_cast<uint16_t>(t[k] | m) == objetivo);
  }
  return hay != 0;
}

}  // namespace

char16_t PliegaMayuscula(char16_t c) {
  if (c < 0x80) return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 0x20) : c;
  if (c < 0x100) {
    if (c == u'\u00FF') return u'\u0178';
    if (c >= 0x00E0 && c != 0x00F7) return static_cast<char16_t>(c - 0x20);
    return c;
  }
  if (c < 0x180) return PliegaLatinExtendidoA(c);
  if (c == u'\u0192') return u'\u0191';  // ƒ, in Windows-1252
  if (c >= 0x0370 && c < 0x0400) return PliegaGriego(c);
  if (c >= 0x0400 && c < 0x0460) return PliegaCirilico(c);
  return c;
}

bool EmpiezaSinMayusculas(std::u16string_view texto, std::u16string_view prefijo) {
  return texto.size() >= prefijo.size() &&
         IgualesSinMayusculas(texto.substr(0, prefijo.size()), prefijo);
}

std::size_t BuscaSinMayusculas(std::u16string_view texto, std::u16string_view buscado,
                               std::size_t desde) {
  if (desde > texto.size() || buscado.size() > texto.size() - desde) {
    return std::u16string_view::npos;
  }
  if (buscado.empty()) return desde;
  const char16_t primero = PliegaMayuscula(buscado[0]);
  const std::size_t ultimo = texto.size() - buscado.size();
  if (primero < 0x80) {
    // No character outside ASCII folds into it, so a candidate is one of
    // the two cases of the letter (c | 0x20 is the small letter for both),
    // or the character itself: no fold per character of the text. Blocks
    // of 16 are tested without an early exit, so the compiler vectorises them.
    const bool bolLetra = primero >= u'A' && primero <= u'Z';
    const char16_t m = bolLetra ? char16_t{0x20} : char16_t{0};
    const char16_t objetivo = static_cast<char16_t>(primero | m);
    const char16_t* t = texto.data();
    std::size_t i = desde;
    for (;;) {
      while (i + 16 <= ultimo + 1) {
        if (HayEnBloque(t + i, m, objetivo)) break;
        i += 16;
      }
      for (; i <= ultimo; ++i) {
        if ((t[i] | m) == objetivo) break;
      }
      if (i > ultimo) return std::u16string_view::npos;
      if (IgualesSinMayusculas(texto.substr(i + 1, buscado.size() - 1), buscado.substr(1))) {
        return i;
      }
      ++i;
    }
  }
  for (std::size_t i = desde; i <= ultimo; ++i) {
    if (PliegaMayuscula(texto[i]) != primero) continue;
    if (IgualesSinMayusculas(texto.substr(i + 1, buscado.size() - 1), buscado.substr(1))) {
      return i;
    }
  }
  return std::u16string_view::npos;
}

}  // namespace plataforma
}  // namespace velqua
