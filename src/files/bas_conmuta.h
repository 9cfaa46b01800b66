// The module basConmuta, the library's wrappers of the profile-file
// functions (GetPrivateProfileStringA, WritePrivateProfileStringA, as
// files/perfil_ini.h implements them). Texts cross the platform functions as
// Windows-1252; a U+0000 inside a name ends it, as in a C string.
#pragma once

#include <string>

namespace velqua {
namespace basConmuta {

// Size of LeeValorINI's buffer: a value is cut to its first 254 characters.
// Intended: the rule of the profile form, so a longer value imports cut the
// same way wherever it comes from (every stored text is 250 characters or
// fewer, so no text the form writes is cut).
constexpr unsigned kTamBufferINI = 255;

// The value of cadClave in section cadSeccion of file cadArch: the platform
// reader fills a buffer of 255 blanks (null default, size 255); when it
// reports one character or more the value is CortaEnNulo of the buffer with
// trailing blanks removed, otherwise the empty text. A missing file, section
// or key, and an empty value, give the empty text. Never fails.
std::u16string LeeValorINI(const std::u16string& cadArch, const std::u16string& cadSeccion,
                           const std::u16string& cadClave);

// Writes cadClave=cadValor in section cadSeccion of cadArch (creating file
// and section as needed); true when the platform writer reported success.
bool EscribeValorINI(const std::u16string& cadArch, const std::u16string& cadSeccion,
                     const std::u16string& cadClave, const std::u16string& cadValor);

// cadValor up to, not including, its first U+0000; all of it when it has none.
std::u16string CortaEnNulo(const std::u16string& cadValor);

}  // namespace basConmuta
}  // namespace velqua
