// What counts as a number in a profile-file value, and how such a text
// becomes an integer; doc/formats/perfil.md gives the same rules to users:
//
//   numeric  :=  blanks? sign? digits ( "." digits? )? blanks?
//             |  blanks? sign? "." digits blanks?
//   blanks   :=  one or more of U+0020 and U+0009
//   sign     :=  "+" | "-"
//   digits   :=  one or more of "0" to "9" (ASCII only)
//
// Not accepted: the empty text, a sign alone, exponents ("1e3"), hexadecimal
// ("&H1F"), thousands separators, currency signs, parentheses.
#pragma once

#include <cstdint>
#include <string_view>

namespace velqua {
namespace archivos {

// True when texto has the numeric form above.
bool EsNumerico(std::u16string_view texto);

// The value of a numeric text as a 32-bit integer: a fractional part is
// rounded half to even (2.5 -> 2, 3.5 -> 4, -2.5 -> -2), so a hand-edited
// "3.5" reads as 4 and "2.5" as 2, whatever wrote the file. A value
// outside -2147483648 to 2147483647, however many digits it has, fails with
// the runtime error 6 (overflow).
// REQUIRES: EsNumerico(texto).
int32_t ValorEntero32(std::u16string_view texto);

}  // namespace archivos
}  // namespace velqua
