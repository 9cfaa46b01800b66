// Rows of the program's road as velqua.Call records: the program's columns,
// dates and times as datetime objects, None wherever the program's JSON
// Lines form has null.
#pragma once

#include <pybind11/pybind11.h>

#include <vector>

#include "road.h"

namespace velqua_python {

namespace py = pybind11;

class CallMaker {
 public:
  // Call: velqua.Call, a named tuple of kFields fields (velqua/__init__.py).
  static void Register(py::object call);
  static constexpr Py_ssize_t kFields = 20;

  CallMaker();
  // A new reference to the Call of `row` (error_already_set on failure).
  PyObject* Make(const velqua_bindings::Row& row);

 private:
  // New references, or nullptr with the Python error set.
  PyObject* Date(int32_t year, int32_t month, int32_t day);
  PyObject* Time(int32_t seconds, bool with_seconds);

  // The last date made: a switch prints one day's records together.
  int32_t last_date_ = -1;
  py::object date_;
};

}  // namespace velqua_python
