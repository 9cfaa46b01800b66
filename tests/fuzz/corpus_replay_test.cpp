// Every saved input of fuzz/corpus/<target> runs through that fuzz target, so
// the normal and the sanitizer test runs replay the corpora. A target reports a
// finding by aborting, as under libFuzzer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// The targets are header-like sources: compiled here without their libFuzzer
// entry point; the record reader's target links velqua_records.
#define VELQUA_FUZZ_SIN_ENTRADA
#include "../../fuzz/fuzz_abrir.cpp"
#include "../../fuzz/fuzz_importar.cpp"
#include "../../fuzz/fuzz_lector.cpp"
#include "../../fuzz/fuzz_traductor.cpp"
#include "support/velqua_test.h"

namespace {

TEST(FuzzCorpusReplay, EveryTargetAcceptsEverySavedInput) {
  const std::pair<const char*, int (*)(const uint8_t*, size_t)> targets[] = {
      {"abrir", velqua_fuzz_abrir::Ejecuta},
      {"importar", velqua_fuzz_importar::Ejecuta},
      {"lector", velqua_fuzz_lector::Ejecuta},
      {"traductor", velqua_fuzz_traductor::Ejecuta},
  };
  for (const auto& [name, run] : targets) {
    const auto dir =
        std::filesystem::path(VELQUA_TEST_DATA) / ".." / ".." / "fuzz" / "corpus" / name;
    std::vector<std::filesystem::path> files;
    for (const auto& e : std::filesystem::directory_iterator(dir)) {
      if (e.is_regular_file()) files.push_back(e.path());
    }
    std::sort(files.begin(), files.end());
    EXPECT_GT(files.size(), 10u) << "corpus " << name;
    for (const auto& file : files) {
      SCOPED_TRACE(file.string());
      const std::string bytes = velqua_test::ReadFile(file.string());
      EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
    }
  }
}

}  // namespace
