// Money as Velqua computes it: exact integers, never binary floating point.
// Prices are read from decimal text into millionths of the currency unit; a
// call's cost is kept as an exact fraction until it is rounded half up, once,
// to the currency's decimals (pricing.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velqua_rating {

// One currency unit in millionths: the resolution of every price.
constexpr int64_t kMicro = 1000000;
// The largest price a tariff may hold (a million units): with it every sum of
// a call fits the 128-bit arithmetic of pricing with room to spare.
constexpr int64_t kMaxMicro = kMicro * kMicro;

// Reads decimal text ("0.0250", "12", ".5") into millionths. Returns false
// (and leaves `out` alone) for anything else: a sign, more than 6 decimals,
// no digits, a value above kMaxMicro. A negative price is told apart by the
// caller, which sees the leading '-'.
bool ParseMicro(std::string_view text, int64_t& out);

// Reads a percentage with up to 4 decimals ("12.5") into ten-thousandths of
// a percent (125000); false as ParseMicro. At most 1000 %.
bool ParsePercent(std::string_view text, int64_t& out);

// The exact decimal text of `units` hundredths (or 10^-decimals) of the
// currency: FormatUnits(1235, 2) = "12.35", FormatUnits(-5, 2) = "-0.05",
// FormatUnits(7, 0) = "7".
std::string FormatUnits(int64_t units, int32_t decimals);

// Millionths as the shortest exact decimal text: 25000 -> "0.025".
std::string FormatMicro(int64_t micro);

}  // namespace velqua_rating
