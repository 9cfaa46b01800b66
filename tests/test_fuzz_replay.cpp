// Replays the fuzz corpora of the library's inputs (fuzz/corpus/abrir,
// importar, traductor) through the fuzz targets' entry functions, so that the
// normal test run, and the ASan + UBSan one, run every saved input. A target
// reports a finding by aborting, as it would under libFuzzer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#define VELQUA_FUZZ_SIN_ENTRADA
#include "../fuzz/fuzz_abrir.cpp"
#include "../fuzz/fuzz_importar.cpp"
#include "../fuzz/fuzz_traductor.cpp"
#include "support/velqua_test.h"

namespace {

// The corpus files of one target, in name order.
std::vector<std::filesystem::path> Corpus(const std::string& target) {
  const std::filesystem::path dir =
      std::filesystem::path(VELQUA_TEST_DATA) / ".." / ".." / "fuzz" / "corpus" / target;
  std::vector<std::filesystem::path> files;
  for (const auto& e : std::filesystem::directory_iterator(dir)) {
    if (e.is_regular_file()) files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

template <typename Target>
void Replay(const std::string& target, Target run) {
  const std::vector<std::filesystem::path> files = Corpus(target);
  ASSERT_FALSE(files.empty()) << "no corpus for " << target;
  for (const auto& file : files) {
    SCOPED_TRACE(file.string());
    const std::string bytes = velqua_test::ReadFile(file.string());
    EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
  }
}

TEST(FuzzReplay, AbrirCorpus) { Replay("abrir", velqua_fuzz_abrir::Ejecuta); }

TEST(FuzzReplay, ImportarCorpus) { Replay("importar", velqua_fuzz_importar::Ejecuta); }

TEST(FuzzReplay, TraductorCorpus) { Replay("traductor", velqua_fuzz_traductor::Ejecuta); }

}  // namespace
