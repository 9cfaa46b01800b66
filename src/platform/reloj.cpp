#include "platform/reloj.h"

namespace velqua {
namespace plataforma {

std::u16string NombreMesAbreviado(int32_t intMes) {
  static const char16_t* const kMeses[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                           u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
  if (intMes < 1 || intMes > 12) return u"???";
  return kMeses[intMes - 1];
}

}  // namespace plataforma
}  // namespace velqua
