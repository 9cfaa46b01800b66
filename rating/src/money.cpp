#include "velqua/rating/money.h"

#include <cstdlib>

namespace velqua_rating {
namespace {

// Decimal text with at most `places` decimals, scaled by 10^places, at most
// `limit`.
bool ParseScaled(std::string_view text, int places, int64_t limit, int64_t& out) {
  int64_t whole = 0;
  int64_t fraction = 0;
  int decimals = 0;
  bool digits = false;
  bool point = false;
  for (const char c : text) {
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (c < '0' || c > '9') return false;
    digits = true;
    if (point) {
      if (++decimals > places) return false;
      fraction = fraction * 10 + (c - '0');
    } else {
      whole = whole * 10 + (c - '0');
      if (whole > limit) return false;
    }
  }
  if (!digits) return false;
  int64_t scale = 1;
  for (int i = 0; i < places; ++i) scale *= 10;
  for (int i = decimals; i < places; ++i) fraction *= 10;
  const int64_t value = whole * scale + fraction;
  if (value > limit) return false;
  out = value;
  return true;
}

}  // namespace

bool ParseMicro(std::string_view text, int64_t& out) {
  return ParseScaled(text, 6, kMaxMicro, out);
}

bool ParsePercent(std::string_view text, int64_t& out) {
  return ParseScaled(text, 4, 1000 * 10000, out);
}

std::string FormatUnits(int64_t units, int32_t decimals) {
  const bool negative = units < 0;
  // The magnitude as unsigned, so that the lowest int64_t has one too.
  uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(units) : static_cast<uint64_t>(units);
  std::string digits = std::to_string(magnitude);
  const size_t places = static_cast<size_t>(decimals < 0 ? 0 : decimals);
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  if (places > 0) digits.insert(digits.size() - places, 1, '.');
  return negative ? "-" + digits : digits;
}

std::string FormatMicro(int64_t micro) {
  std::string text = FormatUnits(micro, 6);
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace velqua_rating
