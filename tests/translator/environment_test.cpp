// The translator's environment: its clock, seed and files come from the
// Entorno it was given, never from anything shared by the process, so
// translators with different environments run side by side, on any threads.
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

TEST(TranslatorEnvironment, LogAndListAreTheEnvironmentsFiles) {
  auto env = std::make_shared<EntornoMemoria>(At(2026, 2, 3, 4, 5, 6));
  env->EscribeArchivo(u"lista", "77;301\r\n9;302");
  clsTraductor tr(env);
  auto cfg = MakeConfig(emCasoEstandar);
  SetKxTdaFields(*cfg);
  tr.Conmutador(cfg);
  tr.ArchivoListaExtensionesKXTDA(u"lista");
  tr.ArchivoLlamadasError(u"log");
  const struct {
    const char16_t* line;
    const char16_t* extension;
  } rows[] = {{u"O *77     01:00", u"301"}, {u"O *9      01:00", u"302"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.line));
    tr.LlamadaActual(row.line);
    EXPECT_EQ(tr.Extension(), row.extension);
  }
  tr.LlamadaActual(u"x");
  tr.LlamadaActual(u"y");
  EXPECT_EQ(env->Contenido(u"log"),
            LogEntry("x", "2026 Feb 03 04:05:06") + LogEntry("y", "2026 Feb 03 04:05:06"));
  EXPECT_EQ(env->LongitudArchivo(u"lista"), 13);
}

// A configuration is only read while translators share it: each thread reads
// its own fields in its own order, the other's choice of field meanwhile
// never changing which column a read cuts. The host then finds the keys a
// translator chose last.
TEST(TranslatorEnvironment, ThreadsShareOneConfiguration) {
  auto cfg = MakeConfig(emCasoEstandar);
  SetConstant(*cfg, emDatoCteIdentSaliente, 1, u"O");
  SetConstant(*cfg, emDatoCteIdentEntrante, 1, u"I");
  SetField(*cfg, emParamFechaDia, 3, 2);
  SetField(*cfg, emParamFechaMes, 6, 2);
  SetField(*cfg, emParamDuracionMinutos, 9, 2);
  SetField(*cfg, emParamDuracionSegundos, 12, 2);
  SetText(*cfg, emParamExtensionSaliente, 15, 3);
  SetText(*cfg, emParamExtensionEntrante, 15, 3);
  const struct {
    const char16_t* line;
    int day, month, duration;
    const char16_t* extension;
  } rows[] = {{u"O 21/03 02:05 301", 21, 3, 125, u"301"},
              {u"I 07/11 10:00 455", 7, 11, 600, u"455"}};
  std::vector<int> failures(2, 0);
  std::vector<std::thread> threads;
  for (size_t k = 0; k < 2; ++k) {
    threads.emplace_back([&, k] {
      clsTraductor tr(std::make_shared<EntornoFijo>(TestNow()));
      tr.Conmutador(cfg);
      const auto& row = rows[k];
      for (int i = 0; i < 20000; ++i) {
        tr.LlamadaActual(row.line);
        // The two threads read in opposite orders, so their keys cross.
        const bool ok = k == 0
                            ? tr.Dia() == row.day && tr.Mes() == row.month &&
                                  tr.Duracion() == row.duration && tr.Extension() == row.extension
                            : tr.Extension() == row.extension && tr.Duracion() == row.duration &&
                                  tr.Mes() == row.month && tr.Dia() == row.day;
        if (!ok) ++failures[k];
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(failures, std::vector<int>({0, 0}));
  clsTraductor tr(std::make_shared<EntornoFijo>(TestNow()));
  tr.Conmutador(cfg);
  tr.LlamadaActual(rows[0].line);
  EXPECT_EQ(tr.Mes(), 3);
  EXPECT_EQ(cfg->DATOActivo(), emParamFechaMes);
}

TEST(MemoryEnvironment, FilesBehaveAsNamed) {
  EntornoMemoria env;
  EXPECT_TRUE(env.AbreLectura(u"a") == nullptr);
  EXPECT_EQ(env.LongitudArchivo(u"a"), -1);
  EXPECT_FALSE(env.AnexaArchivo(u"", "x"));
  EXPECT_TRUE(env.AnexaArchivo(u"a", "12"));
  EXPECT_TRUE(env.AnexaArchivo(u"a", "3"));
  EXPECT_TRUE(env.RenombraArchivo(u"a", u"b"));
  EXPECT_FALSE(env.RenombraArchivo(u"a", u"c"));
  const std::unique_ptr<LectorArchivo> in = env.AbreLectura(u"b");
  ASSERT_TRUE(in != nullptr);
  env.EscribeArchivo(u"b", "changed");  // the reader keeps what was there
  char bytes[8] = {};
  EXPECT_EQ(in->Lee(bytes, 2), 2u);
  EXPECT_EQ(in->Lee(bytes + 2, 8), 1u);
  EXPECT_EQ(in->Lee(bytes, 8), 0u);
  EXPECT_EQ(std::string(bytes, 3), "123");
  EXPECT_EQ(env.LongitudArchivo(u"b"), 7);
}

}  // namespace
}  // namespace velqua_test
