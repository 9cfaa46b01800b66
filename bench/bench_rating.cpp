// Pricing in memory: a 50,000-prefix tariff in split mode, a million calls
// (doc/performance.md, "Pricing"). The counter `cents` is the sum of every
// priced call, which bench/rating_python.py must print too.
#include <benchmark/benchmark.h>

#include "rating_data.h"
#include "velqua/rating/pricing.h"

namespace {

void BM_PriceCalls(benchmark::State& state) {
  const auto tariff = velqua_rating::LoadTariff(velqua_bench::TariffText(), "bench.toml");
  const auto calls = velqua_bench::Calls(1000000);
  int64_t cents = 0;
  int64_t unpriced = 0;
  for (auto _ : state) {
    cents = 0;
    unpriced = 0;
    velqua_rating::CallToPrice call;
    call.type = 2;
    call.year = 2026;
    call.month = 1;
    for (const auto& c : calls) {
      call.day = c.day;
      call.time = c.time;
      call.duration = c.duration;
      const auto priced = velqua_rating::Price(tariff, call, c.number);
      if (priced.status == velqua_rating::Priced::Status::kUnpriced) {
        ++unpriced;
      } else {
        cents += priced.cost;
      }
    }
    benchmark::DoNotOptimize(cents);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(calls.size()));
  state.counters["cents"] = static_cast<double>(cents);
  state.counters["unpriced"] = static_cast<double>(unpriced);
}
BENCHMARK(BM_PriceCalls)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_LoadTariff(benchmark::State& state) {
  const std::string text = velqua_bench::TariffText();
  for (auto _ : state) {
    benchmark::DoNotOptimize(velqua_rating::LoadTariff(text, "bench.toml"));
  }
}
BENCHMARK(BM_LoadTariff)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
