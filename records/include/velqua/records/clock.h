// The clock of one translation, and what it tells about a record: which
// date and time components the switch printed.
//
// The library fills a date or time component a record does not print (no
// seconds, no year, no date at all) from its environment's clock, by design:
// a host always gets a value. The program must not present those values as
// the switch's, so after reading a record it reads the date and the time again
// under two probe instants that differ in every component: a component that
// changes with the clock was not printed. The clock is frozen for the whole of
// a record, so that every read of it sees the same instant.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "velqua/entorno.h"
#include "velqua/traductor.h"

namespace velqua_records {

using velqua::FechaHora;

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

// The environment a Translation gives its translator: the files of a base
// environment, and its clock unless an instant is fixed; a seed that is
// always 1, so that the extensions drawn for unlisted account codes come out
// the same on every run; an instant frozen for each record; probe instants
// while PrintedParts asks. One per translation: translations on different
// threads never share one.
class ProgramClock : public velqua::Entorno {
 public:
  // base: nullptr is the real environment. fixed: the instant every read
  // gives (the hidden --now option, tests), or none for the base's clock.
  explicit ProgramClock(std::shared_ptr<velqua::Entorno> base = nullptr,
                        std::optional<FechaHora> fixed = std::nullopt);

  // The current date and time (fixed or the base's), never a probe instant.
  FechaHora Now() const;

  // The probe instant while probing, else the frozen instant, else Now().
  FechaHora Ahora() const override;
  uint32_t Semilla() const override { return 1; }
  // With the real files, a regular file of at most kKeptBytes is kept in
  // memory once read and read again only when its size, modification time
  // or identity changes: the library opens the extension list at every
  // account-code lookup, and an edited list must still count at once.
  std::unique_ptr<velqua::LectorArchivo> AbreLectura(const std::u16string& name) override;
  static constexpr int64_t kKeptBytes = 4 << 20;
  bool AnexaArchivo(const std::u16string& name, std::string_view bytes) override;
  bool RenombraArchivo(const std::u16string& from, const std::u16string& to) override;
  int64_t LongitudArchivo(const std::u16string& name) override;

  // Holds the current instant until Thaw: one record's reads all see it.
  void Freeze();
  void Thaw();

  // Between HoldFiles and ReleaseFiles a kept file is looked at once, at its
  // first read, and then given again without looking: the records of one
  // block of input are translated against the same extension list, and an
  // edit counts from the next block.
  void HoldFiles() {
    hold_files_ = true;
    looked_ = false;
  }
  void ReleaseFiles() { hold_files_ = false; }

  struct DateTime {
    int32_t day, month, year, time;  // Dia, Mes, Anio, Hora as read
  };
  // Which components of the translator's current record were printed, given
  // its date and time as read under the frozen clock: they are read once
  // more under an instant that differs in every component. The translator
  // must hold a recognised record and run in this environment. Leaves the
  // clock as it was.
  uint8_t PrintedParts(velqua::clsTraductor& traductor, const DateTime& read);

 private:
  struct Kept;  // the file kept by AbreLectura
  std::shared_ptr<velqua::Entorno> base_;
  bool real_files_;
  std::shared_ptr<Kept> kept_;
  bool hold_files_ = false;
  bool looked_ = false;  // the kept file was looked at since HoldFiles
  std::optional<FechaHora> fixed_;
  std::optional<FechaHora> probe_;
  std::optional<FechaHora> frozen_;
};

// The program's instant: what the hidden --now option fixed for the whole
// run (set once at start-up, before any translation), else none.
void FixProgramNow(const FechaHora& now);
std::optional<FechaHora> ProgramFixedNow();
// The program's current date and time: the fixed instant, else the system's.
FechaHora ProgramNow();

// The year of a record whose switch prints no year: the year it was received
// in, or the year before when its month and day lie after the day it was
// received (a December record read in January).
int32_t YearReceived(int32_t month, int32_t day, const FechaHora& received);

}  // namespace velqua_records
