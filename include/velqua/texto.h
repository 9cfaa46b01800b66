// Text helpers: UTF-8 and the single-byte (ANSI) code page, Windows-1252.
// The library's files and separator codes go through that code page, one
// byte per character, as the files written on Windows hosts do.
#pragma once

#include <string>
#include <string_view>

#include "velqua/export.h"

namespace velqua {

// UTF-8 to UTF-16. Malformed sequences become U+FFFD; never throws.
VELQUA_EXPORT std::u16string DesdeUtf8(std::string_view utf8);

// UTF-16 to UTF-8. An unpaired surrogate becomes U+FFFD; never throws.
VELQUA_EXPORT std::string AUtf8(std::u16string_view texto);

// Windows-1252 bytes to UTF-16, one character per byte. The five undefined
// bytes 0x81, 0x8D, 0x8F, 0x90, 0x9D map to U+0081 ... U+009D.
VELQUA_EXPORT std::u16string DesdeAnsi(std::string_view ansi);

// UTF-16 to Windows-1252, one byte per 16-bit character. A character the code
// page cannot hold is written as "?".
VELQUA_EXPORT std::string AAnsi(std::u16string_view texto);

// The Windows-1252 code of one character, or '?' (63) when it has none.
VELQUA_EXPORT unsigned char CodigoAnsi(char16_t caracter);

// The character of one Windows-1252 code.
VELQUA_EXPORT char16_t CaracterAnsi(unsigned char codigo);

}  // namespace velqua
