// The fixed-width text rule and its three helpers.
#include <cstdint>
#include <string>

#include "model/datos_cfg.h"
#include "velqua/texto.h"

namespace velqua {

void DatosCfgConmut::RellenaConNulos(std::u16string& cadDestino, const std::u16string& cadOrigen,
                                     int16_t intTam) {
  if (intTam <= 0) return;  // width 0 or less: destination unchanged
  const size_t tam = static_cast<size_t>(intTam);
  std::u16string p(tam, u'\0');
  p.replace(0, std::min(tam, cadOrigen.size()), cadOrigen, 0, tam);
  cadDestino.swap(p);
}

// Sized exactly (not to the stored width), so that a short text stays in the
// string's own small buffer and reading it allocates nothing.
std::u16string DatosCfgConmut::QuitaNulos(const std::u16string& cadOrigen) {
  std::size_t n = 0;
  for (char16_t c : cadOrigen) n += c != u'\0' ? 1 : 0;
  std::u16string out(n, u'\0');
  std::size_t i = 0;
  for (char16_t c : cadOrigen) {
    if (c != u'\0') out[i++] = c;
  }
  return out;
}

std::u16string DatosCfgConmut::ListaCodigos(const std::u16string& cadOrigen, int16_t intCuantos) {
  std::u16string out;
  for (int32_t i = 1; i <= intCuantos; ++i) {
    const size_t k = static_cast<size_t>(i);
    const unsigned codigo = k <= cadOrigen.size() ? CodigoAnsi(cadOrigen[k - 1]) : 0u;
    for (char c : std::to_string(codigo)) out.push_back(static_cast<char16_t>(c));
    out.push_back(u',');
  }
  return out;
}

bool DatosCfgConmut::EscribeTextoFijo(std::u16string& cadMiembro, const std::u16string& cadValor,
                                      int16_t intTam) {
  std::u16string p;
  RellenaConNulos(p, cadValor, intTam);
  if (p == cadMiembro) return false;  // exact, case-sensitive comparison
  cadMiembro.swap(p);
  bolModificado = true;
  return true;
}

}  // namespace velqua
