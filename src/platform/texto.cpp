// Windows-1252 and UTF-8 conversions. Windows-1252 is the single-byte code
// page of ListaCodigos, of the binary file's text fields and of the log and
// list files, as on the Windows hosts that write and read them.
#include "velqua/texto.h"

#include <array>
#include <cstdint>

namespace velqua {
namespace {

// 0x80-0x9F as Windows maps them; the five undefined bytes map to U+0081,
// U+008D, U+008F, U+0090, U+009D and back.
constexpr std::array<char16_t, 32> kAlto = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AgregaUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

void AgregaUtf16(std::u16string& out, char32_t cp) {
  if (cp < 0x10000) {
    out.push_back(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  }
}

// Length of a UTF-8 sequence from its lead byte, 0 when it is no lead byte.
int LargoSecuencia(unsigned char b) {
  if (b < 0x80) return 1;
  if (b >= 0xC2 && b <= 0xDF) return 2;
  if (b >= 0xE0 && b <= 0xEF) return 3;
  if (b >= 0xF0 && b <= 0xF4) return 4;
  return 0;
}

// Decodes one sequence at s[i]; returns the code point or U+FFFD and sets n
// to the bytes consumed (at least 1).
char32_t DecodificaUno(std::string_view s, size_t i, size_t& n) {
  const auto b0 = static_cast<unsigned char>(s[i]);
  const int largo = LargoSecuencia(b0);
  n = 1;
  if (largo == 1) return b0;
  if (largo == 0 || i + static_cast<size_t>(largo) > s.size()) return 0xFFFD;
  char32_t cp = b0 & (0x7F >> largo);
  for (int k = 1; k < largo; ++k) {
    const auto b = static_cast<unsigned char>(s[i + static_cast<size_t>(k)]);
    if ((b & 0xC0) != 0x80) return 0xFFFD;
    cp = (cp << 6) | (b & 0x3F);
  }
  const char32_t minimo = largo == 2 ? 0x80 : largo == 3 ? 0x800 : 0x10000;
  if (cp < minimo || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0xFFFD;
  n = static_cast<size_t>(largo);
  return cp;
}

}  // namespace

std::u16string DesdeUtf8(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  size_t i = 0;
  while (i < utf8.size()) {
    size_t n = 1;
    AgregaUtf16(out, DecodificaUno(utf8, i, n));
    i += n;
  }
  return out;
}

std::string AUtf8(std::u16string_view texto) {
  std::string out;
  out.reserve(texto.size());
  for (size_t i = 0; i < texto.size(); ++i) {
    char32_t cp = texto[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < texto.size() && texto[i + 1] >= 0xDC00 &&
        texto[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (texto[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;
    }
    AgregaUtf8(out, cp);
  }
  return out;
}

char16_t CaracterAnsi(unsigned char codigo) {
  if (codigo >= 0x80 && codigo <= 0x9F) return kAlto[codigo - 0x80];
  return codigo;
}

unsigned char CodigoAnsi(char16_t caracter) {
  if (caracter < 0x80 || (caracter >= 0xA0 && caracter <= 0xFF)) {
    return static_cast<unsigned char>(caracter);
  }
  for (size_t k = 0; k < kAlto.size(); ++k) {
    if (kAlto[k] == caracter) return static_cast<unsigned char>(0x80 + k);
  }
  return '?';
}

std::u16string DesdeAnsi(std::string_view ansi) {
  std::u16string out(ansi.size(), u'\0');
  for (size_t i = 0; i < ansi.size(); ++i)
    out[i] = CaracterAnsi(static_cast<unsigned char>(ansi[i]));
  return out;
}

std::string AAnsi(std::u16string_view texto) {
  std::string out(texto.size(), '\0');
  for (size_t i = 0; i < texto.size(); ++i) out[i] = static_cast<char>(CodigoAnsi(texto[i]));
  return out;
}

}  // namespace velqua
