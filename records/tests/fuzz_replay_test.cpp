// Every saved input of fuzz/corpus/record_form and fuzz/corpus/guess runs
// through its fuzz target, so that the normal and the sanitizer test runs
// replay those corpora. A target reports a finding by aborting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#define VELQUA_FUZZ_SIN_ENTRADA
#include "../../fuzz/fuzz_guess.cpp"
#include "../../fuzz/fuzz_record_form.cpp"

namespace {

TEST(FuzzCorpusReplay, RecordFormAndGuessAcceptEverySavedInput) {
  const std::pair<const char*, int (*)(const uint8_t*, size_t)> targets[] = {
      {"record_form", velqua_fuzz_record_form::Run},
      {"guess", velqua_fuzz_guess::Run},
  };
  for (const auto& [name, run] : targets) {
    std::vector<std::filesystem::path> files;
    for (const auto& e :
         std::filesystem::directory_iterator(std::filesystem::path(VELQUA_FUZZ_CORPUS) / name)) {
      if (e.is_regular_file()) files.push_back(e.path());
    }
    std::sort(files.begin(), files.end());
    EXPECT_GE(files.size(), 10u) << "corpus " << name;
    for (const auto& file : files) {
      SCOPED_TRACE(file.string());
      std::ifstream in(file, std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
      EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
    }
  }
}

}  // namespace
