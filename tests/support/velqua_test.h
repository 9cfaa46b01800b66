// Helpers shared by every test program: error checks, a recording listener, a
// fixed clock and temporary files.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velqua/entorno.h"
#include "velqua/velqua.h"

namespace velqua_test {

// Success when `thrown` holds an error of this number, source and (when given)
// description.
::testing::AssertionResult IsError(const std::optional<velqua::Error>& thrown, int32_t number,
                                   const std::u16string& source,
                                   const std::optional<std::u16string>& description);

// Checks number, source and description of the velqua::Error thrown by `stmt`.
#define EXPECT_VELQUA_ERROR(stmt, number, source, description)                              \
  do {                                                                                      \
    std::optional<velqua::Error> thrown_;                                                   \
    try {                                                                                   \
      stmt;                                                                                 \
    } catch (const velqua::Error& e_) {                                                     \
      thrown_ = e_;                                                                         \
    }                                                                                       \
    EXPECT_TRUE(                                                                            \
        ::velqua_test::IsError(thrown_, static_cast<int32_t>(number), source, description)) \
        << #stmt;                                                                           \
  } while (0)

// Checks the number of an error the library raises itself (source "Velqua").
#define EXPECT_VELQUA_ERROR_NUMBER(stmt, number) \
  EXPECT_VELQUA_ERROR(stmt, number, u"Velqua", std::nullopt)

// Records every notification by name, in order.
class RecordingListener : public velqua::EventosCfgConmut {
 public:
  void CambioNombreConmutador() override { events.push_back("CambioNombreConmutador"); }
  void ConfiguracionCargada() override { events.push_back("ConfiguracionCargada"); }
  void Cambios() override { events.push_back("Cambios"); }
  int Count(const std::string& name) const {
    return static_cast<int>(std::count(events.begin(), events.end(), name));
  }
  std::vector<std::string> events;
};

// A fixed instant and seed with the real files: the environment of the
// translator tests, given to each translator they build (Env()).
class FixedClock {
 public:
  explicit FixedClock(velqua::FechaHora now, uint32_t seed = 1)
      : env_(std::make_shared<velqua::EntornoFijo>(now, seed)) {}
  void Set(velqua::FechaHora now) { env_->EstableceAhora(now); }
  std::shared_ptr<velqua::Entorno> Env() const { return env_; }

 private:
  std::shared_ptr<velqua::EntornoFijo> env_;
};

inline velqua::FechaHora At(int year, int month, int day, int hour, int minute, int second) {
  return {year, month, day, hour, minute, second};
}

inline std::u16string U(const std::string& utf8) { return velqua::DesdeUtf8(utf8); }

// A fresh empty directory under $VELQUA_TEST_TMP, removed with the object.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  std::u16string Path16(const std::string& name) const { return U(Path(name)); }
  const std::string& dir() const { return dir_; }

 private:
  std::string dir_;
};

std::string ReadFile(const std::string& path);  // empty when unreadable
void WriteFile(const std::string& path, const std::string& bytes);
inline std::string DataPath(const std::string& name) { return VELQUA_TEST_DATA "/" + name; }
// The cases of a data file under tests/data: a "< input" line, then its
// "> expected" line; "#" lines are comments. \r, \n, \t, \0, \\ and \xHH
// in a line stand for one byte.
std::vector<std::pair<std::string, std::string>> ReadCases(const std::string& name);

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kUnderAsan = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kUnderAsan = true;
#else
constexpr bool kUnderAsan = false;
#endif
#else
constexpr bool kUnderAsan = false;
#endif

// A limit against a hang, never a speed requirement: four times longer under
// AddressSanitizer.
inline std::chrono::seconds Budget(int seconds) {
  return std::chrono::seconds(kUnderAsan ? 4 * seconds : seconds);
}

}  // namespace velqua_test
