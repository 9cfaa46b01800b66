// Blank trimming as the file operations use it: a blank is the space
// character U+0020 only; tabs and other white space are content, kept in
// names and values.
#pragma once

#include <string>

namespace velqua {
namespace archivos {

inline std::u16string RecortaDerecha(const std::u16string& cad) {
  const size_t fin = cad.find_last_not_of(u' ');
  return fin == std::u16string::npos ? std::u16string() : cad.substr(0, fin + 1);
}

inline std::u16string Recorta(const std::u16string& cad) {
  const size_t ini = cad.find_first_not_of(u' ');
  if (ini == std::u16string::npos) return std::u16string();
  return cad.substr(ini, cad.find_last_not_of(u' ') - ini + 1);
}

}  // namespace archivos
}  // namespace velqua
