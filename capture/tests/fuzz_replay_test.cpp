// Every saved input of the framer's, the login script's and the capture
// configuration's fuzz corpora runs through its target, so the normal and
// the sanitizer test runs replay them. A target reports a finding by aborting.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#define VELQUA_FUZZ_SIN_ENTRADA
#include "../../fuzz/fuzz_capture_config.cpp"
#include "../../fuzz/fuzz_framer.cpp"
#include "../../fuzz/fuzz_login.cpp"

namespace {

TEST(FuzzCorpusReplay, CaptureTargetsAcceptEverySavedInput) {
  const std::pair<const char*, int (*)(const uint8_t*, size_t)> targets[] = {
      {"framer", velqua_fuzz_framer::Ejecuta},
      {"login", velqua_fuzz_login::Ejecuta},
      {"capture_config", velqua_fuzz_capture_config::Ejecuta},
  };
  for (const auto& [name, run] : targets) {
    std::vector<std::filesystem::path> files;
    for (const auto& e : std::filesystem::directory_iterator(std::string(VELQUA_SOURCE_DIR) +
                                                             "/fuzz/corpus/" + name)) {
      files.push_back(e.path());
    }
    std::sort(files.begin(), files.end());
    EXPECT_GE(files.size(), 5u) << name;
    for (const auto& file : files) {
      SCOPED_TRACE(file.string());
      std::ifstream in(file, std::ios::binary);
      std::ostringstream bytes;
      bytes << in.rdbuf();
      const std::string data = bytes.str();
      EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(data.data()), data.size()), 0);
    }
  }
}

}  // namespace
