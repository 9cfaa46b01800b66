#include "velqua/records/row_check.h"

#include <algorithm>
#include <cstdio>

#include "velqua/records/clock.h"
#include "velqua/records/common.h"

namespace velqua_records {
namespace {

using velqua::emParamDato;

struct Numeric {
  emParamDato key;
  const char* name;
  // The field above it in the same quantity (hours above minutes): when the
  // configuration defines it, this one counts up to `limit` only.
  emParamDato above;
  int32_t low, limit;
};

// The numeric fields every call reads. A day of the month up to 31 and a
// month up to 12 are checked as a date below, with the year.
constexpr Numeric kNumeric[] = {
    {velqua::emParamFechaDia, "day", velqua::emNoParamDato, 1, 31},
    {velqua::emParamFechaMes, "month", velqua::emNoParamDato, 1, 12},
    {velqua::emParamFechaAnio, "year", velqua::emNoParamDato, 0, -1},
    {velqua::emParamFechaHoras, "hour", velqua::emNoParamDato, 0, 23},
    {velqua::emParamFechaMinutos, "minute", velqua::emNoParamDato, 0, 59},
    {velqua::emParamFechaSegundos, "second", velqua::emNoParamDato, 0, 59},
    {velqua::emParamDuracionHoras, "duration hours", velqua::emNoParamDato, 0, -1},
    {velqua::emParamDuracionMinutos, "duration minutes", velqua::emParamDuracionHoras, 0, 59},
    {velqua::emParamDuracionSegundos, "duration seconds", velqua::emParamDuracionMinutos, 0, 59},
    {velqua::emParamRingHoras, "ring hours", velqua::emNoParamDato, 0, -1},
    {velqua::emParamRingMinutos, "ring minutes", velqua::emParamRingHoras, 0, 59},
    {velqua::emParamRingSegundos, "ring seconds", velqua::emParamRingMinutos, 0, 59},
};

constexpr int64_t kBeyondAnyLimit = 1000000000;

bool Defined(velqua::clsCfgConmut& cfg, emParamDato key) {
  if (key == velqua::emNoParamDato) return false;
  cfg.DATOActivo(key);
  return cfg.HayDATO();
}

std::string ColumnsOf(size_t start, size_t size) {
  return "columns " + std::to_string(start + 1) + "-" + std::to_string(start + size);
}

int32_t DaysIn(int32_t month, int32_t year, bool year_printed) {
  static constexpr int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month != 2) return kDays[month - 1];
  // A year the switch did not print is the year received, which may be the
  // wrong one for 29 February: that day is then taken as it comes.
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return leap || !year_printed ? 29 : 28;
}

std::string TwoDigits(int32_t n) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", n);
  return text;
}

}  // namespace

RowCheck::RowCheck(velqua::clsCfgConmut& cfg) {
  const emParamDato active = cfg.DATOActivo();
  if (cfg.Caso() != velqua::emCasoNortelNorstar0x32SMDR6) {
    for (const Numeric& n : kNumeric) {
      if (!Defined(cfg, n.key) || cfg.TipoDatoDATO() != velqua::emValorNumerico) continue;
      Field field{n.name, static_cast<size_t>(cfg.DATOPos() - 1),
                  static_cast<size_t>(cfg.DATOTam()), n.low, n.limit};
      if (n.above != velqua::emNoParamDato && !Defined(cfg, n.above)) field.limit = -1;
      fields_.push_back(field);
    }
  }
  cfg.DATOActivo(active);
}

std::string RowCheck::CheckColumns(std::u16string_view record) const {
  for (const Field& f : fields_) {
    if (f.start >= record.size()) continue;
    std::u16string_view text = record.substr(f.start, f.size);
    const size_t first = text.find_first_not_of(u' ');
    if (first == std::u16string_view::npos) continue;  // blank: not printed
    text = text.substr(first, text.find_last_not_of(u' ') + 1 - first);
    int64_t value = 0;
    for (const char16_t c : text) {
      if (c < u'0' || c > u'9') {
        return f.name + std::string(" \"") + U8(record.substr(f.start, f.size)) + "\" (" +
               ColumnsOf(f.start, f.size) + ") is not a number";
      }
      // A field may be 255 digits wide: the value stops growing past any limit.
      value = std::min<int64_t>(value * 10 + (c - u'0'), kBeyondAnyLimit);
    }
    if (f.limit >= 0 && (value < f.low || value > f.limit)) {
      return f.name + std::string(" ") + std::to_string(value) + " (" + ColumnsOf(f.start, f.size) +
             ") is out of range " + std::to_string(f.low) + "-" + std::to_string(f.limit);
    }
  }
  return "";
}

std::string RowCheck::Check(const Row& row, std::u16string_view record) const {
  if (!row.has_fields) return "";
  std::string reason = CheckColumns(record);
  if (!reason.empty()) return reason;
  if (row.HasDate()) {
    const bool year_printed = (row.printed & kPrintedYear) != 0;
    if (row.month < 1 || row.month > 12 || row.day < 1 ||
        row.day > DaysIn(row.month, row.year, year_printed)) {
      return "date " + std::to_string(row.year) + "-" + TwoDigits(row.month) + "-" +
             TwoDigits(row.day) + " does not exist";
    }
  }
  if (row.HasTime() && (row.time < 0 || row.time >= 24 * 3600)) {
    return "time of day " + TwoDigits(row.time / 3600) + ":" + TwoDigits(row.time / 60 % 60) + ":" +
           TwoDigits(row.time % 60) + " is out of range";
  }
  if (row.duration < -1) return "duration " + std::to_string(row.duration) + " s is negative";
  if (row.ring < -1) return "ring " + std::to_string(row.ring) + " s is negative";
  return "";
}

}  // namespace velqua_records
