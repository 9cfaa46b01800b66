// What the parts of the Python module share: the configuration as Python
// holds it (with its Python listeners), the conversions of the automation
// surface's arguments, and the registration of each part.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

#include "listened_config.h"
#include "velqua/error.h"

namespace velqua_python {

namespace py = pybind11;

// A configuration of the Python module. A listener's exception cannot stop
// the library's operation that notified it: the first one is kept and
// raised once the operation has ended (every listener is still notified).
class PyConfig : public velqua_bindings::ListenedConfig {
 public:
  using ListenedConfig::ListenedConfig;

  void KeepListenerError(py::error_already_set&& error);
  // Raises the kept listener error, if any (error_already_set).
  void RaiseListenerError();
  // Drops the kept error when the operation itself failed: its own error wins.
  void DropListenerError();

  // Runs an operation of the configuration that may notify.
  template <typename Operation>
  decltype(auto) Op(Operation&& operation) {
    try {
      if constexpr (std::is_void_v<decltype(Run(operation))>) {
        Run(operation);
        RaiseListenerError();
      } else {
        auto result = Run(operation);
        RaiseListenerError();
        return result;
      }
    } catch (const py::error_already_set&) {
      throw;
    } catch (...) {
      DropListenerError();
      throw;
    }
  }

 private:
  std::unique_ptr<py::error_already_set> listener_error_;
};

// An integer argument of the automation surface: a value outside its type
// is an overflow (error 6), as the automation runtime reports it.
template <typename T>
T Narrow(int64_t value) {
  using Int = std::conditional_t<std::is_enum_v<T>, int32_t, T>;
  if (value < std::numeric_limits<Int>::min() || value > std::numeric_limits<Int>::max()) {
    velqua::LanzaDesbordamiento();
  }
  return static_cast<T>(value);
}

// A file name: str or os.PathLike.
std::u16string FileName(const py::object& name);

// The configuration a .cfg, .ini or .json file holds (by its extension), with
// its record form and delivery: velqua.Config.load.
std::shared_ptr<PyConfig> Load(const py::object& path);

void BindConfig(py::module_& m);
void BindTranslator(py::module_& m);
void BindCalls(py::module_& m);
void BindReadCalls(py::module_& m);

}  // namespace velqua_python
