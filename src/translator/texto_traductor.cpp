#include "translator/texto_traductor.h"

#include "errors/errores_runtime.h"

namespace velqua {
namespace traductor {

std::u16string_view SinBlancos(std::u16string_view cad) {
  const std::size_t ini = cad.find_first_not_of(u' ');
  if (ini == std::u16string_view::npos) return {};
  const std::size_t fin = cad.find_last_not_of(u' ');
  return cad.substr(ini, fin - ini + 1);
}

void QuitaBlancos(std::u16string& cad) {
  const std::size_t fin = cad.find_last_not_of(u' ');
  if (fin == std::u16string::npos) {
    cad.clear();
    return;
  }
  cad.erase(fin + 1);
  cad.erase(0, cad.find_first_not_of(u' '));
}

bool EsNumeroTexto(std::u16string_view cad) {
  const std::u16string_view nucleo = SinBlancos(cad);
  if (nucleo.empty()) return false;
  for (char16_t c : nucleo) {
    if (!EsDigito(c)) return false;
  }
  return true;
}

int32_t ValorNumeroTexto(std::u16string_view cad) {
  const std::u16string_view nucleo = SinBlancos(cad.substr(0, 4));
  if (nucleo.empty()) return -1;
  int64_t v = 0;
  for (char16_t c : nucleo) v = v * 10 + (c - u'0');
  return AEntero16(v);
}

std::u16string FormatoCuatroCifras(int32_t n) {
  std::u16string cifras;
  do {
    cifras.insert(cifras.begin(), static_cast<char16_t>(u'0' + n % 10));
    n /= 10;
  } while (n > 0);
  if (cifras.size() < 4) cifras.insert(0, 4 - cifras.size(), u'0');
  return cifras;
}

}  // namespace traductor
}  // namespace velqua
