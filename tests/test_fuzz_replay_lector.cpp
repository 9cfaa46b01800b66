// Replays fuzz/corpus/lector through the record-reader fuzz target. The
// reader belongs to the velqua program (tools/velqua/record_reader.cpp), which
// the test programs do not link; until it moves into a library of its own,
// its source is compiled into this test directly.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#define VELQUA_FUZZ_SIN_ENTRADA
#include "../fuzz/fuzz_lector.cpp"
#include "../tools/velqua/record_reader.cpp"
#include "support/velqua_test.h"

namespace {

TEST(FuzzReplay, LectorCorpus) {
  const std::filesystem::path dir =
      std::filesystem::path(VELQUA_TEST_DATA) / ".." / ".." / "fuzz" / "corpus" / "lector";
  std::vector<std::filesystem::path> files;
  for (const auto& e : std::filesystem::directory_iterator(dir)) {
    if (e.is_regular_file()) files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  ASSERT_FALSE(files.empty());
  for (const auto& file : files) {
    SCOPED_TRACE(file.string());
    const std::string bytes = velqua_test::ReadFile(file.string());
    EXPECT_EQ(
        velqua_fuzz_lector::Ejecuta(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()),
        0);
  }
}

}  // namespace
