#include "period.h"

#include <date/date.h>

#include <cstdio>

#include "velqua/records/common.h"

namespace velqua_reports {

int64_t DayNumber(const std::string& text, const char* option) {
  bool digits = text.size() == 10 && text[4] == '-' && text[7] == '-';
  for (size_t i = 0; digits && i < text.size(); ++i) {
    digits = i == 4 || i == 7 || (text[i] >= '0' && text[i] <= '9');
  }
  if (digits) {
    const date::year_month_day day{date::year{std::stoi(text.substr(0, 4))},
                                   date::month{static_cast<unsigned>(std::stoi(text.substr(5, 2)))},
                                   date::day{static_cast<unsigned>(std::stoi(text.substr(8, 2)))}};
    if (day.ok()) return date::sys_days{day}.time_since_epoch().count();
  }
  throw velqua_records::Failure(std::string(option) + ": expected a date YYYY-MM-DD, got '" + text +
                                "'");
}

std::string DayText(int64_t day) {
  const date::year_month_day ymd{date::sys_days{date::days{day}}};
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(ymd.year()),
                static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()));
  return text;
}

int WeekdayOf(int64_t day) {
  // 1970-01-01 was a Thursday (3, counting from Monday 0).
  return static_cast<int>(((day % 7) + 7 + 3) % 7);
}

velqua_store::Span SpanOf(const std::string& from, const std::string& to,
                          const std::string& switch_name) {
  return {DayText(DayNumber(from, "--from")), DayText(DayNumber(to, "--to") + 1), switch_name};
}

std::string SlotText(int64_t slot) {
  const int64_t seconds = slot * 1800;
  const int64_t day = seconds >= 0 ? seconds / 86400 : (seconds - 86399) / 86400;
  const int64_t in_day = seconds - day * 86400;
  char text[8];
  std::snprintf(text, sizeof text, "%02d:%02d", static_cast<int>(in_day / 3600),
                static_cast<int>(in_day / 60 % 60));
  return DayText(day) + " " + text;
}

}  // namespace velqua_reports
