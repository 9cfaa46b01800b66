// Helpers of the C interface tests: handles that release themselves, texts
// taken from the library and released, the last error as one value.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "velqua/velqua_c.h"

namespace velqua_c_test {

struct CfgDeleter {
  void operator()(velqua_cfg* p) const { velqua_cfg_release(p); }
};
struct TradDeleter {
  void operator()(velqua_trad* p) const { velqua_trad_release(p); }
};
struct TranslationDeleter {
  void operator()(velqua_translation* p) const { velqua_translation_release(p); }
};
using Cfg = std::unique_ptr<velqua_cfg, CfgDeleter>;
using Trad = std::unique_ptr<velqua_trad, TradDeleter>;
using Translation = std::unique_ptr<velqua_translation, TranslationDeleter>;

inline std::string Example(const std::string& name) {
  return std::string(VELQUA_SOURCE_DIR) + "/examples/" + name;
}

inline std::string TempPath(const std::string& name) {
  const char* dir = std::getenv("VELQUA_TEST_TMP");
  return std::string(dir != nullptr ? dir : "/tmp") + "/" + name;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline Cfg NewCfg(const std::string& path = "") {
  velqua_cfg* p = nullptr;
  EXPECT_EQ(path.empty() ? velqua_cfg_create(&p) : velqua_cfg_load(path.c_str(), &p), 0);
  return Cfg(p);
}

inline Trad NewTrad() {
  velqua_trad* p = nullptr;
  EXPECT_EQ(velqua_trad_create(&p), 0);
  return Trad(p);
}

// A text the library gave out, released.
inline std::string Take(char* text) {
  std::string copy = text != nullptr ? text : "(null)";
  velqua_free(text);
  return copy;
}

struct LastError {
  int32_t number;
  std::string source;
  std::string description;
  bool operator==(const LastError& o) const {
    return number == o.number && source == o.source && description == o.description;
  }
};

inline std::ostream& operator<<(std::ostream& out, const LastError& e) {
  return out << e.number << " [" << e.source << "] [" << e.description << "]";
}

inline LastError ReadLastError() {
  char* source = nullptr;
  char* description = nullptr;
  EXPECT_EQ(velqua_error_source(&source), 0);
  EXPECT_EQ(velqua_error_description(&description), 0);
  return {velqua_error_number(), Take(source), Take(description)};
}

}  // namespace velqua_c_test
