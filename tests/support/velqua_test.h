// Shared test helpers: error checks, a recording listener, a fixed clock and
// temporary files.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/reloj.h"
#include "velqua/velqua.h"

namespace velqua_test {

// Checks all three parts of a velqua::Error thrown by `stmt` at once.
#define EXPECT_VELQUA_ERROR(stmt, number, source, description)                \
  do {                                                                        \
    bool thrown_ = false;                                                     \
    try {                                                                     \
      stmt;                                                                   \
    } catch (const velqua::Error& e_) {                                       \
      thrown_ = true;                                                         \
      EXPECT_EQ(e_.Number(), static_cast<int32_t>(number));                   \
      EXPECT_EQ(velqua::AUtf8(e_.Source()), velqua::AUtf8(source));           \
      EXPECT_EQ(velqua::AUtf8(e_.Description()), velqua::AUtf8(description)); \
    }                                                                         \
    EXPECT_TRUE(thrown_) << "expected velqua::Error from " #stmt;             \
  } while (0)

// Checks only the number of a thrown velqua::Error (runtime errors 6, 9, 13, 91).
#define EXPECT_VELQUA_ERROR_NUMBER(stmt, number)                  \
  do {                                                            \
    bool thrown_ = false;                                         \
    try {                                                         \
      stmt;                                                       \
    } catch (const velqua::Error& e_) {                           \
      thrown_ = true;                                             \
      EXPECT_EQ(e_.Number(), static_cast<int32_t>(number));       \
      EXPECT_EQ(velqua::AUtf8(e_.Source()), "Velqua");            \
    }                                                             \
    EXPECT_TRUE(thrown_) << "expected velqua::Error from " #stmt; \
  } while (0)

// Records every notification in order, as "Cambios", "CambioNombreConmutador"
// or "ConfiguracionCargada".
class RecordingListener : public velqua::EventosCfgConmut {
 public:
  void CambioNombreConmutador() override { events.push_back("CambioNombreConmutador"); }
  void ConfiguracionCargada() override { events.push_back("ConfiguracionCargada"); }
  void Cambios() override { events.push_back("Cambios"); }
  int Count(const std::string& name) const;
  std::vector<std::string> events;
};

// Installs a fixed clock for the lifetime of the object.
class FixedClock {
 public:
  explicit FixedClock(velqua::plataforma::FechaHora now, uint32_t seed = 1);
  ~FixedClock();
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;
  void Set(velqua::plataforma::FechaHora now) { clock_.Establece(now); }

 private:
  velqua::plataforma::RelojFijo clock_;
};

// A date-time from its six parts.
velqua::plataforma::FechaHora At(int year, int month, int day, int hour, int minute, int second);

// A fresh empty directory for one test, removed with the object.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  // Path of a file inside the directory (UTF-8).
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  // The same as UTF-16, for the library's file names.
  std::u16string Path16(const std::string& name) const;
  const std::string& dir() const { return dir_; }

 private:
  std::string dir_;
};

// Whole file as bytes; empty when it cannot be read.
std::string ReadFile(const std::string& path);
// Writes bytes to a file, replacing it.
void WriteFile(const std::string& path, const std::string& bytes);
// Bytes of a test data file under tests/data.
std::string DataPath(const std::string& name);

// True in a build under AddressSanitizer (the Debug build of scripts/test.sh).
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

// A time limit for a test that must finish quickly: four times longer under
// AddressSanitizer. Never an assertion on speed, only against a hang.
inline std::chrono::seconds Budget(int seconds) {
  return std::chrono::seconds(kUnderAsan ? 4 * seconds : seconds);
}

// Shorthand: UTF-16 from UTF-8 literal.
inline std::u16string U(const std::string& utf8) { return velqua::DesdeUtf8(utf8); }

}  // namespace velqua_test
