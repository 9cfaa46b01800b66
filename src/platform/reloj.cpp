#include "platform/reloj.h"

#include <chrono>
#include <ctime>

namespace velqua {
namespace plataforma {
namespace {

const Reloj* gRelojInstalado = nullptr;

}  // namespace

// The local time of the last second read, per thread: the translator reads
// the clock for every record whose switch prints a two-digit year or no date
// or time, and localtime_r was about 7% of such a record. The same second
// gives the same local time (glibc reads the time zone once), so the result
// is unchanged. Thread-local, since two translators may run on two threads.
FechaHora RelojSistema::Ahora() const {
  thread_local std::time_t segundo = -1;
  thread_local FechaHora f;
  const std::time_t ahora = std::time(nullptr);
  if (ahora == segundo) return f;
  std::tm local{};
  localtime_r(&ahora, &local);
  f.intAnio = local.tm_year + 1900;
  f.intMes = local.tm_mon + 1;
  f.intDia = local.tm_mday;
  f.intHora = local.tm_hour;
  f.intMinuto = local.tm_min;
  f.intSegundo = local.tm_sec;
  segundo = ahora;
  return f;
}

uint32_t RelojSistema::SemillaTemporizador() const {
  const auto ticks = std::chrono::high_resolution_clock::now().time_since_epoch().count();
  return static_cast<uint32_t>(ticks) ^ static_cast<uint32_t>(ticks >> 32);
}

const Reloj& RelojActual() {
  static const RelojSistema kSistema;
  return gRelojInstalado != nullptr ? *gRelojInstalado : kSistema;
}

void EstableceReloj(const Reloj* reloj) { gRelojInstalado = reloj; }

std::u16string NombreMesAbreviado(int32_t intMes) {
  static const char16_t* const kMeses[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                           u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
  if (intMes < 1 || intMes > 12) return u"???";
  return kMeses[intMes - 1];
}

}  // namespace plataforma
}  // namespace velqua
