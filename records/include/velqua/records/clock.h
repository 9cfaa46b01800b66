// The program's clock, and what it tells about a record: which date and time
// components the switch printed.
//
// The library fills a date or time component a record does not print (no
// seconds, no year, no date at all) from the current clock, by design: hosts
// rely on always getting a value. The program must not present those values as
// the switch's, so after reading a record it reads the date and the time again
// under two probe instants that differ in every component: a component that
// changes with the clock was not printed. The clock is frozen for the whole of
// a record, so that every read of it sees the same instant.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/reloj.h"
#include "velqua/traductor.h"

namespace velqua_records {

using velqua::plataforma::FechaHora;

// The date and time components a record printed (a bit each).
enum PrintedPart : uint8_t {
  kPrintedDay = 1,
  kPrintedMonth = 2,
  kPrintedYear = 4,
  kPrintedHour = 8,
  kPrintedMinute = 16,
  kPrintedSecond = 32,
  kPrintedAll = 63,
};

// The clock the library reads while the program runs: the system clock, or a
// fixed instant (the hidden --now option), or a probe instant while
// PrintedParts asks. Installed in the library by Install().
class ProgramClock : public velqua::plataforma::Reloj {
 public:
  // The clock of the program, installed in the library on first use.
  static ProgramClock& Instance();

  void Fix(const FechaHora& now) { fixed_ = now; }
  // The current date and time (fixed or system), never a probe instant.
  FechaHora Now() const;

  // The probe instant while probing, else the frozen instant, else Now().
  FechaHora Ahora() const override;
  // The random generator's seed: always the same (see the .cpp).
  uint32_t SemillaTemporizador() const override;

  // Holds the current instant until Thaw: one record's reads all see it.
  void Freeze();
  void Thaw();

  struct DateTime {
    int32_t day, month, year, time;  // Dia, Mes, Anio, Hora as read
  };
  // Which components of the translator's current record were printed, given
  // its date and time as read under the frozen clock: they are read once
  // more under an instant that differs in every component. The translator
  // must hold a recognised record. Leaves the clock as it was.
  uint8_t PrintedParts(velqua::clsTraductor& traductor, const DateTime& read);

 private:
  ProgramClock() = default;

  std::optional<FechaHora> fixed_;
  std::optional<FechaHora> probe_;
  std::optional<FechaHora> frozen_;
};

// The year of a record whose switch prints no year: the year it was received
// in, or the year before when its month and day lie after the day it was
// received (a December record read in January).
int32_t YearReceived(int32_t month, int32_t day, const FechaHora& received);

}  // namespace velqua_records
