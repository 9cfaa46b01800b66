// Per-record translation: one LlamadaActual write, then TipoLlamadaDetectada,
// Atributo and all twelve field properties, as a host reads them.
//
// Items are records, bytes are the input bytes of the records as the switch
// prints them (a character a byte, CR LF after every line).
#include <benchmark/benchmark.h>

#include <fstream>

#include "bench_configs.h"
#include "velqua/traductor.h"

namespace velqua_bench {
namespace {

using velqua::clsTraductor;

// Reads everything a host reads after writing a record.
inline void LeeTodo(clsTraductor& tr) {
  benchmark::DoNotOptimize(tr.TipoLlamadaDetectada());
  benchmark::DoNotOptimize(tr.Atributo());
  benchmark::DoNotOptimize(tr.Dia());
  benchmark::DoNotOptimize(tr.Mes());
  benchmark::DoNotOptimize(tr.Anio());
  benchmark::DoNotOptimize(tr.Hora());
  benchmark::DoNotOptimize(tr.Duracion());
  benchmark::DoNotOptimize(tr.Ring());
  benchmark::DoNotOptimize(tr.Marcacion());
  benchmark::DoNotOptimize(tr.Extension());
  benchmark::DoNotOptimize(tr.Troncal());
  benchmark::DoNotOptimize(tr.ExtensionReceptor());
  benchmark::DoNotOptimize(tr.TroncalReceptor());
  benchmark::DoNotOptimize(tr.CodigoCuenta());
}

// Translates the records round-robin, reading every property of each.
void Traduce(benchmark::State& state, clsTraductor& tr, const std::vector<std::u16string>& regs,
             const std::u16string& separador) {
  std::size_t bytes = 0;
  for (const auto& r : regs) bytes += BytesEntrada(r, separador);
  std::size_t i = 0;
  for (auto _ : state) {
    tr.LlamadaActual(regs[i]);
    LeeTodo(tr);
    if (++i == regs.size()) i = 0;
  }
  const auto n = static_cast<int64_t>(state.iterations());
  state.SetItemsProcessed(n);
  state.SetBytesProcessed(n * static_cast<int64_t>(bytes / regs.size()));
  state.counters["ns_por_registro"] = benchmark::Counter(
      static_cast<double>(n), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Caso1_RegistroCompleto(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso1());
  Traduce(state, tr, RegistrosCaso1(256), u"\r\n");
}
BENCHMARK(BM_Caso1_RegistroCompleto);

// Only the intake (classification and duration test), no property read.
void BM_Caso1_SoloLlamadaActual(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso1());
  const auto regs = RegistrosCaso1(256);
  std::size_t i = 0;
  for (auto _ : state) {
    tr.LlamadaActual(regs[i]);
    benchmark::DoNotOptimize(tr.TipoLlamadaDetectada());
    if (++i == regs.size()) i = 0;
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}
BENCHMARK(BM_Caso1_SoloLlamadaActual);

// Scaling with the line length: the same records padded with blanks.
void BM_Caso1_LargoLinea(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso1());
  Traduce(state, tr, RegistrosCaso1(256, static_cast<std::size_t>(state.range(0))), u"\r\n");
}
BENCHMARK(BM_Caso1_LargoLinea)->Arg(100)->Arg(255)->Arg(1000)->Arg(4000);

// Scaling with the number of configured fields (the first n of the priority
// list; the records use the first 24).
void BM_Caso1_CamposConfigurados(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso1(static_cast<int>(state.range(0))));
  Traduce(state, tr, RegistrosCaso1(256), u"\r\n");
}
BENCHMARK(BM_Caso1_CamposConfigurados)->Arg(8)->Arg(24)->Arg(48)->Arg(67);

// Dates without a readable field: every date and time read falls back to
// the clock (the costly path).
void BM_Caso1_RelojPorDefecto(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso1());
  auto regs = RegistrosCaso1(256);
  for (auto& r : regs) r.replace(0, 19, 19, u' ');  // no date, no time of day
  Traduce(state, tr, regs, u"\r\n");
}
BENCHMARK(BM_Caso1_RelojPorDefecto);

void BM_Caso4_Norstar(benchmark::State& state) {
  clsTraductor tr;
  tr.Conmutador(ConfigCaso4());
  Traduce(state, tr, RegistrosCaso4(), u"\r\n");
}
BENCHMARK(BM_Caso4_Norstar);

// Case 10: one record in eight has an account code, which Extension maps
// back through the extension list file (opened and read at each such read:
// the list is never cached, so an edited file counts at once).
void BM_Caso10_KXTDA(benchmark::State& state) {
  DirTemporal dir;
  {
    std::ofstream f(dir.Ruta("extensiones.txt"), std::ios::binary);
    f << ListaExtensionesCaso10();
  }
  clsTraductor tr;
  tr.Conmutador(ConfigCaso10());
  tr.ArchivoListaExtensionesKXTDA(dir.Ruta16("extensiones.txt"));
  Traduce(state, tr, RegistrosCaso10(256), u"\r\n");
}
BENCHMARK(BM_Caso10_KXTDA);

}  // namespace
}  // namespace velqua_bench

BENCHMARK_MAIN();
