// The clock, locale and timer seam: the system clock by default; tests
// install a fixed clock so that dates and times are certain.
#pragma once

#include <cstdint>
#include <string>

namespace velqua {
namespace plataforma {

// A local date and time of day.
struct FechaHora {
  int32_t intAnio = 0;     // e.g. 2026
  int32_t intMes = 0;      // 1 to 12
  int32_t intDia = 0;      // 1 to 31
  int32_t intHora = 0;     // 0 to 23
  int32_t intMinuto = 0;   // 0 to 59
  int32_t intSegundo = 0;  // 0 to 59
};

class Reloj {
 public:
  virtual ~Reloj() = default;
  // The current local date and time (field fallbacks, log timestamps).
  virtual FechaHora Ahora() const = 0;
  // A seed from the system timer for the random-extension generator.
  virtual uint32_t SemillaTemporizador() const = 0;
};

// The system clock: local time from the C library, seed from the
// high-resolution clock.
class RelojSistema : public Reloj {
 public:
  FechaHora Ahora() const override;
  uint32_t SemillaTemporizador() const override;
};

// A clock that always gives the same instant and seed (for tests and hosts
// that replay records at a known date).
class RelojFijo : public Reloj {
 public:
  explicit RelojFijo(FechaHora udtAhora, uint32_t lnSemilla = 1)
      : udtAhora_(udtAhora), lnSemilla_(lnSemilla) {}
  FechaHora Ahora() const override { return udtAhora_; }
  uint32_t SemillaTemporizador() const override { return lnSemilla_; }
  void Establece(FechaHora udtAhora) { udtAhora_ = udtAhora; }

 private:
  FechaHora udtAhora_;
  uint32_t lnSemilla_;
};

// The clock in use; the system clock until EstableceReloj installs another.
const Reloj& RelojActual();
// Installs a clock (not owned); nullptr restores the system clock.
void EstableceReloj(const Reloj* reloj);

// The C locale's English abbreviation of month 1-12 ("Jan" ... "Dec");
// "???" outside that range.
std::u16string NombreMesAbreviado(int32_t intMes);

}  // namespace plataforma
}  // namespace velqua
