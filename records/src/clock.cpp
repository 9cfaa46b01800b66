#include "velqua/records/clock.h"

namespace velqua_records {
namespace {

// Two instants of the same century (a printed two-digit year reads the same
// under both) that differ in every component. Their hours are 0 and 1: both
// morning hours, so a 12-hour record's afternoon correction moves both alike.
constexpr FechaHora kProbeA{2000, 1, 1, 0, 0, 0};
constexpr FechaHora kProbeB{2001, 2, 2, 1, 1, 1};

struct DateTime {
  int32_t day, month, year, time;
};

DateTime Read(velqua::clsTraductor& t) { return {t.Dia(), t.Mes(), t.Anio(), t.Hora()}; }

}  // namespace

ProgramClock& ProgramClock::Instance() {
  static ProgramClock clock;
  static const bool installed = (velqua::plataforma::EstableceReloj(&clock), true);
  (void)installed;
  return clock;
}

FechaHora ProgramClock::Now() const {
  if (fixed_) return *fixed_;
  static const velqua::plataforma::RelojSistema kSystem;
  return kSystem.Ahora();
}

// One seed always: the extensions drawn at random for unlisted account codes
// come out the same on every run, so the same input gives the same output.
uint32_t ProgramClock::SemillaTemporizador() const { return 1; }

uint8_t ProgramClock::PrintedParts(velqua::clsTraductor& traductor) {
  struct Restore {
    std::optional<FechaHora>& probe;
    ~Restore() { probe.reset(); }
  } restore{probe_};
  probe_ = kProbeA;
  const DateTime a = Read(traductor);
  probe_ = kProbeB;
  const DateTime b = Read(traductor);
  // The time is hours * 3600 + minutes * 60 + seconds; between the probes each
  // fallen-back component grows by exactly 1.
  const int64_t grown = int64_t{b.time} - a.time;
  uint8_t printed = 0;
  if (a.day == b.day) printed |= kPrintedDay;
  if (a.month == b.month) printed |= kPrintedMonth;
  if (a.year == b.year) printed |= kPrintedYear;
  if (grown / 3600 == 0) printed |= kPrintedHour;
  if (grown % 3600 / 60 == 0) printed |= kPrintedMinute;
  if (grown % 60 == 0) printed |= kPrintedSecond;
  return printed;
}

int32_t YearReceived(int32_t month, int32_t day, const FechaHora& received) {
  const bool later = month > received.intMes || (month == received.intMes && day > received.intDia);
  return later ? received.intAnio - 1 : received.intAnio;
}

}  // namespace velqua_records
