// The layout editor's live translation: 500 sample records translated and
// explained after every move of a mark. The page asks for it within 200 ms
// of the move, HTTP and drawing included; this is the road's share.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "velqua/records/common.h"
#include "velqua/records/config_editor.h"

namespace {

// The bundled sample's lines repeated to `count` lines.
std::vector<std::string> Samples(const std::string& name, size_t count) {
  const std::string text = velqua_records::ReadWholeFile(
      std::string(VELQUA_SOURCE_DIR) + "/examples/" + name + "/records.txt", "records");
  std::vector<std::string> lines;
  for (size_t start = 0; start < text.size();) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(line);
    start = end + 1;
  }
  std::vector<std::string> samples;
  while (samples.size() < count) samples.push_back(lines[samples.size() % lines.size()]);
  return samples;
}

void BM_Preview500(benchmark::State& state, const char* name) {
  const velqua_records::SwitchConfig config = velqua_records::LoadSwitchConfig(name);
  const std::vector<std::string> samples = Samples(name, 500);
  for (auto _ : state) {
    velqua_records::Preview preview =
        velqua_records::PreviewSamples(config, samples, velqua_records::RowFormat::kTable, 2026);
    benchmark::DoNotOptimize(preview);
  }
  state.SetItemsProcessed(state.iterations() * 500);
}

BENCHMARK_CAPTURE(BM_Preview500, kx_tda, "kx-tda")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Preview500, hicom, "hicom")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Preview500, ip_office, "ip-office")->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
