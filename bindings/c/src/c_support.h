// What every function of the C interface shares: the handles behind the
// opaque types, the per-thread last error, and Guard, which turns whatever a
// call throws into its error number so that no exception leaves the library.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "listened_config.h"
#include "road.h"
#include "velqua/traductor.h"
#include "velqua/velqua_c.h"

// The first member of every handle says its kind, so that a handle given
// where another kind is due is recognised (error 13) rather than misread.
enum class HandleKind : uint32_t {
  kReleased = 0,
  kCfg = 0x43464731,          // "CFG1"
  kTrad = 0x54524431,         // "TRD1"
  kTranslation = 0x524f4431,  // "ROD1"
};

struct velqua_cfg {
  explicit velqua_cfg(std::shared_ptr<velqua::clsCfgConmut> cfg,
                      velqua_records::RecordForm form = {}, std::string delivery = {})
      : object(std::move(cfg), std::move(form), std::move(delivery)) {}
  HandleKind kind = HandleKind::kCfg;
  velqua_bindings::ListenedConfig object;
};

struct velqua_trad {
  HandleKind kind = HandleKind::kTrad;
  velqua::clsTraductor object;
};

struct velqua_translation {
  velqua_translation(std::shared_ptr<velqua::clsCfgConmut> cfg,
                     const velqua_bindings::Road::Settings& settings)
      : road(std::move(cfg), settings) {}
  HandleKind kind = HandleKind::kTranslation;
  velqua_bindings::Road road;
  std::vector<velqua_bindings::Row> rows;  // ready, from `taken` on
  size_t taken = 0;
};

namespace velqua_c {

// Records the outcome of a call on this thread: 0, or an error.
int32_t Succeed() noexcept;
int32_t Fail(int32_t number, const std::u16string& source,
             const std::u16string& description) noexcept;
// The error of whatever the current catch block caught.
int32_t FailWithCurrent() noexcept;

// Runs a call's work; 0, or the number of what it threw.
template <typename Work>
int32_t Guard(Work&& work) noexcept {
  try {
    work();
    return Succeed();
  } catch (...) {
    return FailWithCurrent();
  }
}

// The kind of any handle (its first bytes).
HandleKind KindOf(const void* handle);

// Error 5: a missing result pointer.
[[noreturn]] void ThrowArgument();

// The object behind a handle: error 91 for NULL, 13 for another kind.
velqua_bindings::ListenedConfig& Cfg(const velqua_cfg* cfg);
velqua::clsTraductor& Trad(const velqua_trad* trad);
velqua_translation& Translation(const velqua_translation* translation);

// A text in: UTF-8 (NULL is empty) to the library's UTF-16.
std::u16string In(const char* text);

// A result out, after the result pointer is checked: texts as new UTF-8
// strings the caller releases with velqua_free.
void Store(char** out, const std::u16string& text);
void Store(char** out, const std::string& text);
template <typename T, typename V>
void Store(T* out, V value) {
  *out = static_cast<T>(value);
}

// Reads one value into *out: error 5 when out is NULL, before the read.
template <typename T, typename Read>
int32_t Get(T* out, Read&& read) noexcept {
  return Guard([&] {
    if (out == nullptr) ThrowArgument();
    Store(out, read());
  });
}

// Runs an operation of a configuration that may notify its listeners.
template <typename Operation>
int32_t Change(velqua_cfg* cfg, Operation&& operation) noexcept {
  return Guard([&] { Cfg(cfg).Run(operation); });
}

}  // namespace velqua_c
