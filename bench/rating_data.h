// The tariff and the calls the pricing benchmark uses, generated the same
// way by bench/rating_python.py: 50,000 prefixes over four rates (60/60,
// 30/6, 1/1, 60/30), three bands (peak weekdays 08-19, off-peak, weekend),
// split mode, and calls to those prefixes over January 2026 (5 % to numbers
// no prefix matches).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velqua_bench {

// The generator both sides share (64-bit linear congruential, upper bits).
class Lcg {
 public:
  uint32_t Next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<uint32_t>(state_ >> 33);
  }

 private:
  uint64_t state_ = 42;
};

constexpr int kPrefixes = 50000;

inline std::string PrefixNumber(int i) {
  if (i < 90) return "+" + std::to_string(10 + i);
  const int j = i - 90;
  return "+" + std::to_string(10 + j % 90) + std::to_string(j / 90);
}

inline std::string TariffText() {
  std::string t =
      "name = \"bench\"\ncurrency = \"EUR\"\nmode = \"split\"\n"
      "[[band]]\nname = \"peak\"\ndays = \"mon-fri\"\nfrom = \"08:00\"\nto = \"19:00\"\n"
      "[[band]]\nname = \"off\"\ndays = \"mon-fri\"\nto = \"08:00\"\n"
      "[[band]]\nname = \"off\"\ndays = \"mon-fri\"\nfrom = \"19:00\"\n"
      "[[band]]\nname = \"weekend\"\ndays = \"sat-sun\"\n"
      "[rate.r0]\npeak = { connect = \"0.06\", per_minute = \"0.02\" }\n"
      "off = { connect = \"0.06\", per_minute = \"0.01\" }\n"
      "weekend = { per_minute = \"0.005\" }\n"
      "[rate.r1]\nall = { connect = \"0.10\", per_minute = \"0.0615\", first = 30, increment = 6 "
      "}\n"
      "[rate.r2]\npeak = { per_minute = \"0.12\", first = 1, increment = 1, minimum = \"0.15\" }\n"
      "off = { per_minute = \"0.09\", first = 1, increment = 1, minimum = \"0.15\" }\n"
      "weekend = { per_minute = \"0.06\", first = 1, increment = 1 }\n"
      "[rate.r3]\nall = { connect = \"0.25\", per_minute = \"0.4525\", increment = 30 }\n";
  for (int i = 0; i < kPrefixes; ++i) {
    t += "[[destination]]\nname = \"d" + std::to_string(i) +
         "\"\nclass = \"national\"\nrate = \"r" + std::to_string(i % 4) + "\"\nprefixes = [\"" +
         PrefixNumber(i) + "\"]\n";
  }
  return t;
}

struct BenchCall {
  std::string number;
  int32_t day, time, duration;  // day of January 2026
};

inline std::vector<BenchCall> Calls(size_t count) {
  Lcg lcg;
  std::vector<BenchCall> calls(count);
  for (auto& c : calls) {
    const uint32_t pick = lcg.Next();
    c.number = pick % 20 == 0 ? "+0" : PrefixNumber(static_cast<int>(pick / 20 % kPrefixes));
    c.number += std::to_string(100000 + lcg.Next() % 900000);
    c.day = static_cast<int32_t>(1 + lcg.Next() % 31);
    c.time = static_cast<int32_t>(lcg.Next() % 86400);
    c.duration = static_cast<int32_t>(lcg.Next() % 1800);
  }
  return calls;
}

}  // namespace velqua_bench
