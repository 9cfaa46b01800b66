// Fuzz target: the tariff reader (velqua/rating/tariff.h). Any text is
// either loaded or refused with a TariffError naming the file and a line; a
// tariff that loads prices a few calls (across midnight, a week long, with
// every number form) without a crash and at a cost never below zero.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/rating/pricing.h"

namespace velqua_fuzz_tariff {

inline void PriceSome(const velqua_rating::Tariff& tariff) {
  static const char* const kNumbers[] = {"+34912345678", "0", "+", "*99#", "112", "+4420794"};
  static const int32_t kDurations[] = {1, 59, 61, 3601, 7 * 86400};
  velqua_rating::CallToPrice call;
  call.type = 2;
  call.year = 2026;
  call.month = 1;
  call.day = 4;  // a Sunday: a week-long call sees every band
  call.time = 86399;
  for (const char* number : kNumbers) {
    for (const int32_t duration : kDurations) {
      call.duration = duration;
      const auto priced = velqua_rating::Price(tariff, call, number);
      if (priced.status == velqua_rating::Priced::Status::kPriced && priced.cost < 0) {
        velqua_fuzz::Hallazgo("a negative cost");
      }
    }
  }
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  const std::string text(reinterpret_cast<const char*>(datos), tam);
  try {
    PriceSome(velqua_rating::LoadTariff(text, "fuzz.toml"));
  } catch (const velqua_rating::TariffError& e) {
    if (std::string(e.what()).rfind("fuzz.toml:", 0) != 0) {
      velqua_fuzz::Hallazgo("a refusal that does not name the file");
    }
  }
  return 0;
}

}  // namespace velqua_fuzz_tariff
