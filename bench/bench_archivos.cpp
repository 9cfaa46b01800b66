// The configuration files: Abrir / GuardarComo (binary) and
// Importar / Exportar (profile form) of a full configuration (all
// 67 fields and all 28 constants), and their scaling with the number of
// configured fields.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "bench_configs.h"

namespace velqua_bench {
namespace {

using velqua::clsCfgConmut;

void PorArchivo(benchmark::State& state, const std::string& ruta) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(std::filesystem::file_size(ruta)));
}

void BM_GuardarComo(benchmark::State& state) {
  DirTemporal dir;
  auto cfg = ConfigCaso1(static_cast<int>(state.range(0)));
  const std::u16string ruta = dir.Ruta16("c.cfg");
  for (auto _ : state) cfg->GuardarComo(ruta);
  PorArchivo(state, dir.Ruta("c.cfg"));
}
BENCHMARK(BM_GuardarComo)->Arg(8)->Arg(24)->Arg(67);

void BM_Abrir(benchmark::State& state) {
  DirTemporal dir;
  const std::u16string ruta = dir.Ruta16("c.cfg");
  ConfigCaso1(static_cast<int>(state.range(0)))->GuardarComo(ruta);
  clsCfgConmut cfg;
  for (auto _ : state) cfg.Abrir(ruta);
  PorArchivo(state, dir.Ruta("c.cfg"));
}
BENCHMARK(BM_Abrir)->Arg(8)->Arg(24)->Arg(67);

void BM_Exportar(benchmark::State& state) {
  DirTemporal dir;
  auto cfg = ConfigCaso1(static_cast<int>(state.range(0)));
  const std::u16string ruta = dir.Ruta16("c.ini");
  for (auto _ : state) cfg->Exportar(ruta);
  PorArchivo(state, dir.Ruta("c.ini"));
}
BENCHMARK(BM_Exportar)->Arg(8)->Arg(24)->Arg(67);

void BM_Importar(benchmark::State& state) {
  DirTemporal dir;
  const std::u16string ruta = dir.Ruta16("c.ini");
  ConfigCaso1(static_cast<int>(state.range(0)))->Exportar(ruta);
  clsCfgConmut cfg;
  for (auto _ : state) cfg.Importar(ruta);
  PorArchivo(state, dir.Ruta("c.ini"));
}
BENCHMARK(BM_Importar)->Arg(8)->Arg(24)->Arg(67);

// The full configuration: 67 fields, 28 constants, comments, separator, wiring.
void BM_Completa_GuardarComoAbrir(benchmark::State& state) {
  DirTemporal dir;
  auto cfg = ConfigCompleta();
  const std::u16string ruta = dir.Ruta16("c.cfg");
  clsCfgConmut leida;
  for (auto _ : state) {
    cfg->GuardarComo(ruta);
    leida.Abrir(ruta);
  }
  PorArchivo(state, dir.Ruta("c.cfg"));
}
BENCHMARK(BM_Completa_GuardarComoAbrir);

void BM_Completa_ExportarImportar(benchmark::State& state) {
  DirTemporal dir;
  auto cfg = ConfigCompleta();
  const std::u16string ruta = dir.Ruta16("c.ini");
  clsCfgConmut leida;
  for (auto _ : state) {
    cfg->Exportar(ruta);
    leida.Importar(ruta);
  }
  PorArchivo(state, dir.Ruta("c.ini"));
}
BENCHMARK(BM_Completa_ExportarImportar);

}  // namespace
}  // namespace velqua_bench

BENCHMARK_MAIN();
