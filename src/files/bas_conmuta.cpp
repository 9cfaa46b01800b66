// basConmuta — LeeValorINI, EscribeValorINI, CortaEnNulo.
#include "files/bas_conmuta.h"

#include "files/perfil_ini.h"
#include "files/recorte.h"
#include "velqua/texto.h"

namespace velqua {
namespace basConmuta {

std::u16string LeeValorINI(const std::u16string& cadArch, const std::u16string& cadSeccion,
                           const std::u16string& cadClave) {
  std::string buffer(kTamBufferINI, ' ');
  const uint32_t n =
      perfil::GetPrivateProfileStringA(AAnsi(cadSeccion).c_str(), AAnsi(cadClave).c_str(), nullptr,
                                       buffer.data(), kTamBufferINI, AAnsi(cadArch).c_str());
  if (n < 1) return std::u16string();
  return archivos::RecortaDerecha(CortaEnNulo(DesdeAnsi(buffer)));
}

bool EscribeValorINI(const std::u16string& cadArch, const std::u16string& cadSeccion,
                     const std::u16string& cadClave, const std::u16string& cadValor) {
  return perfil::WritePrivateProfileStringA(AAnsi(cadSeccion).c_str(), AAnsi(cadClave).c_str(),
                                            AAnsi(cadValor).c_str(), AAnsi(cadArch).c_str()) != 0;
}

std::u16string CortaEnNulo(const std::u16string& cadValor) {
  const size_t nulo = cadValor.find(u'\0');
  return nulo == std::u16string::npos ? cadValor : cadValor.substr(0, nulo);
}

}  // namespace basConmuta
}  // namespace velqua
