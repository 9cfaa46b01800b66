#include "platform/mayusculas.h"

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
