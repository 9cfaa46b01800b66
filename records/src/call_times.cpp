#include "velqua/records/call_times.h"

#include <cstdint>

namespace velqua_records {
namespace {

constexpr int64_t kDay = 86400;

// Days since 1970-01-01 of a proleptic Gregorian date, and back (the
// era-based algorithms of the civil calendar: exact for every date).
int64_t DaysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, int32_t* year, int32_t* month, int32_t* day) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  const int64_t d = doy - (153 * mp + 2) / 5 + 1;
  const int64_t m = mp < 10 ? mp + 3 : mp - 9;
  *year = static_cast<int32_t>(yoe + era * 400 + (m <= 2));
  *month = static_cast<int32_t>(m);
  *day = static_cast<int32_t>(d);
}

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b != 0 && (a < 0) != (b < 0)); }

// Moves the date and time fields (*year ... *time) by `seconds`; without a
// date only the time of day moves.
void Shift(bool dated, int64_t seconds, int32_t* year, int32_t* month, int32_t* day,
           int32_t* time) {
  const int64_t days = dated ? DaysFromCivil(*year, *month, *day) : 0;
  const int64_t instant = days * kDay + *time + seconds;
  *time = static_cast<int32_t>(instant - FloorDiv(instant, kDay) * kDay);
  if (dated) CivilFromDays(FloorDiv(instant, kDay), year, month, day);
}

}  // namespace

void PlaceInTime(PrintedTime printed, Row* row) {
  if (!row->has_fields || !row->HasTime()) return;
  // Seconds not printed count from :00 (whatever the clock filled in), so the
  // same record gives the same start and end under any clock.
  if (!row->HasSeconds()) row->time -= row->time % 60;
  const bool dated = row->HasDate() && row->month >= 1 && row->month <= 12 && row->day >= 1;
  if (printed == PrintedTime::kEnd) {
    row->end_year = dated ? row->year : 0;
    row->end_month = dated ? row->month : 0;
    row->end_day = dated ? row->day : 0;
    row->end_time = row->time;
    if (row->duration > 0) {
      Shift(dated, -static_cast<int64_t>(row->duration), &row->year, &row->month, &row->day,
            &row->time);
    }
    return;
  }
  if (row->duration < 0) return;
  int32_t year = dated ? row->year : 0, month = dated ? row->month : 0, day = dated ? row->day : 0,
          time = row->time;
  Shift(dated, row->duration, &year, &month, &day, &time);
  row->end_year = year;
  row->end_month = month;
  row->end_day = day;
  row->end_time = time;
}

}  // namespace velqua_records
