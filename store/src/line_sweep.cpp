#include "line_sweep.h"

#include <date/date.h>

#include <algorithm>
#include <cstdio>

namespace velqua_store {

void LineSweep::Add(int64_t second, int64_t length) {
  while (!ends_.empty() && ends_.top() <= second) {
    Change(ends_.top(), -1);
    ends_.pop();
  }
  Change(second, 1);
  ends_.push(second + length);
}

void LineSweep::Change(int64_t second, int64_t by) {
  if (open_ && second != second_) Settle();
  if (!open_) {
    open_ = true;
    second_ = second;
  }
  change_ += by;
}

void LineSweep::Settle() {
  level_ += change_;
  const int64_t slot = second_ / 1800;
  if (slots_.empty() || slots_.back().slot != slot) {
    slots_.push_back({slot, level_, change_, second_});
  } else {
    slots_.back().peak = std::max(slots_.back().peak, level_);
    slots_.back().change += change_;
  }
  open_ = false;
  change_ = 0;
}

std::vector<ChannelSlot> LineSweep::Finish() {
  while (!ends_.empty()) {
    Change(ends_.top(), -1);
    ends_.pop();
  }
  if (open_) Settle();
  std::vector<ChannelSlot> out;
  int64_t level = 0;  // calls in progress at the start of the slot at hand
  for (const Slot& s : slots_) {
    // The level carried in holds at the slot's start unless a call starts
    // or ends at that very second.
    const bool carried = s.first > s.slot * 1800;
    out.push_back({s.slot, std::max(carried ? level : 0, s.peak), s.change});
    level += s.change;
  }
  slots_.clear();
  level_ = 0;
  return out;
}

namespace {

// The number of the `n` digits at `at`; -1 if any is not a digit.
int Digits(const std::string& text, size_t at, size_t n) {
  int value = 0;
  for (size_t i = at; i < at + n; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

int64_t Seconds(int y, unsigned mo, unsigned d, int64_t seconds) {
  const date::year_month_day day{date::year{y}, date::month{mo}, date::day{d}};
  if (!day.ok()) return -1;
  return date::sys_days{day}.time_since_epoch().count() * 86400 + seconds;
}

}  // namespace

int64_t SecondsOf(const std::string& local) {
  // The store's own form, "YYYY-MM-DDTHH:MM[:SS]", read by hand: a year's
  // calls are millions of texts, and a scanf of each was a third of the
  // report.
  const size_t size = local.size();
  if ((size == 16 || (size == 19 && local[16] == ':')) && local[4] == '-' && local[7] == '-' &&
      local[13] == ':') {
    const int y = Digits(local, 0, 4), mo = Digits(local, 5, 2), d = Digits(local, 8, 2);
    const int h = Digits(local, 11, 2), mi = Digits(local, 14, 2);
    const int s = size == 19 ? Digits(local, 17, 2) : 0;
    if (y >= 0 && mo >= 0 && d >= 0 && h >= 0 && mi >= 0 && s >= 0) {
      return Seconds(y, static_cast<unsigned>(mo), static_cast<unsigned>(d),
                     h * 3600 + mi * 60 + s);
    }
  }
  int y = 0;
  unsigned mo = 0, d = 0, h = 0, mi = 0, s = 0;
  char t = 0;
  const int n = std::sscanf(local.c_str(), "%d-%u-%u%c%u:%u:%u", &y, &mo, &d, &t, &h, &mi, &s);
  if (n < 6) return -1;
  return Seconds(y, mo, d, static_cast<int64_t>(h * 3600 + mi * 60 + (n == 7 ? s : 0)));
}

}  // namespace velqua_store
