// The test runs (normal and sanitizer) replay every saved input of a fuzz
// corpus through its target, compiled without its libFuzzer entry point. A
// target reports a finding by aborting, as under libFuzzer.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace velqua_fuzz {

using Target = int (*)(const uint8_t*, size_t);

// Runs every file of `corpus` (a folder) through `run`; the corpus must hold
// at least `at_least` inputs, so that a moved folder is not a silent pass.
inline void ReplayCorpus(const std::filesystem::path& corpus, Target run, size_t at_least) {
  std::vector<std::filesystem::path> files;
  for (const auto& e : std::filesystem::directory_iterator(corpus)) {
    if (e.is_regular_file()) files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  EXPECT_GE(files.size(), at_least) << "corpus " << corpus.string();
  for (const auto& file : files) {
    SCOPED_TRACE(file.string());
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
  }
}

}  // namespace velqua_fuzz
