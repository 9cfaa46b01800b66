#include "call_maker.h"

// datetime.h before anything that could include it without its C API.
#include <datetime.h>

#include <cstdio>
#include <string>

#include "velqua/records/names.h"

namespace velqua_python {
namespace {

PyTypeObject* gCall = nullptr;

// The datetime.time of each second of a day, made once (records repeat them).
std::vector<PyObject*>& Times() {
  static auto* times = new std::vector<PyObject*>(86400, nullptr);
  return *times;
}

// Interned words of the first call types and attributes.
PyObject* Word(const char* (*word)(int32_t), int32_t value, PyObject** cache, int32_t size) {
  if (value < 0 || value >= size) return PyUnicode_FromString(word(value));
  if (cache[value] == nullptr) cache[value] = PyUnicode_InternFromString(word(value));
  Py_XINCREF(cache[value]);
  return cache[value];
}

// A text of the row, None when empty. Surrogate pairs (characters beyond
// U+FFFF) are joined by the UTF-16 decoder; other texts are taken directly.
PyObject* Text(const std::u16string& text) {
  if (text.empty()) Py_RETURN_NONE;
  for (char16_t c : text) {
    if (c >= 0xD800 && c <= 0xDFFF) {
      int order = -1;  // little-endian, as char16_t is stored here
      return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()),
                                   static_cast<Py_ssize_t>(text.size() * 2), "replace", &order);
    }
  }
  return PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, text.data(),
                                   static_cast<Py_ssize_t>(text.size()));
}

PyObject* Number(int32_t value) {
  if (value < 0) Py_RETURN_NONE;
  return PyLong_FromLong(value);
}

PyObject* Bool(bool value) { return PyBool_FromLong(value); }

bool LeapYear(int32_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

bool ValidDate(int32_t y, int32_t m, int32_t d) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 1 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
  return d <= kDays[m - 1] + (m == 2 && LeapYear(y) ? 1 : 0);
}

}  // namespace

void CallMaker::Register(py::object call) {
  if (!PyType_Check(call.ptr()) ||
      !PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(call.ptr()), &PyTuple_Type) ||
      py::len(call.attr("_fields")) != static_cast<size_t>(kFields)) {
    throw py::type_error("Call must be a named tuple of " + std::to_string(kFields) + " fields");
  }
  gCall = reinterpret_cast<PyTypeObject*>(call.release().ptr());
}

CallMaker::CallMaker() {
  if (PyDateTimeAPI == nullptr) PyDateTime_IMPORT;
  if (PyDateTimeAPI == nullptr) throw py::error_already_set();
}

// A date the calendar has is a datetime.date; one it has not (a switch can
// print 31 February) is kept as the program prints it, "2026-02-31".
PyObject* CallMaker::Date(int32_t year, int32_t month, int32_t day) {
  if (!ValidDate(year, month, day)) {
    char text[48];
    std::snprintf(text, sizeof text, year >= 0 ? "%04d-%02d-%02d" : "%d-%02d-%02d", year, month,
                  day);
    return PyUnicode_FromString(text);
  }
  const int32_t key = (year * 100 + month) * 100 + day;
  if (key != last_date_) {
    date_ = py::reinterpret_steal<py::object>(PyDate_FromDate(year, month, day));
    if (!date_) return nullptr;
    last_date_ = key;
  }
  return date_.inc_ref().ptr();
}

// A time of day is a datetime.time; past 23:59:59 (a switch can print hour
// 25) it is kept as the program prints it.
PyObject* CallMaker::Time(int32_t seconds, bool with_seconds) {
  if (!with_seconds) seconds -= seconds % 60;
  if (seconds < 0 || seconds >= 86400) {
    char text[48];
    if (with_seconds) {
      std::snprintf(text, sizeof text, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                    seconds % 60);
    } else {
      std::snprintf(text, sizeof text, "%02d:%02d", seconds / 3600, seconds / 60 % 60);
    }
    return PyUnicode_FromString(text);
  }
  PyObject*& time = Times()[static_cast<size_t>(seconds)];
  if (time == nullptr) {
    time = PyTime_FromTime(seconds / 3600, seconds / 60 % 60, seconds % 60, 0);
    if (time == nullptr) return nullptr;
  }
  Py_INCREF(time);
  return time;
}

PyObject* CallMaker::Make(const velqua_bindings::Row& row) {
  static PyObject* types[8] = {};
  static PyObject* attributes[8] = {};
  PyObject* call = gCall->tp_alloc(gCall, kFields);
  if (call == nullptr) throw py::error_already_set();
  const auto set = [call](Py_ssize_t i, PyObject* value) {
    if (value == nullptr) {
      Py_DECREF(call);
      throw py::error_already_set();
    }
    PyTuple_SET_ITEM(call, i, value);
  };
  set(0, PyLong_FromLongLong(row.number));
  set(1, PyLong_FromLong(row.type));
  set(2, Word(&velqua_records::CallTypeWord, row.type, types, 8));
  set(3, PyLong_FromLong(row.attribute));
  set(4, Word(&velqua_records::AttributeWord, row.attribute, attributes, 8));
  if (!row.has_fields) {
    for (Py_ssize_t i = 5; i < kFields; ++i) {
      if (i == 16 && !row.error.empty()) {
        set(i, PyUnicode_DecodeUTF8(row.error.data(), static_cast<Py_ssize_t>(row.error.size()),
                                    "replace"));
      } else {
        set(i, Py_NewRef(Py_None));
      }
    }
    return call;
  }
  set(5, row.HasDate() ? Date(row.year, row.month, row.day) : Py_NewRef(Py_None));
  set(6, row.HasTime() ? Time(row.time, row.HasSeconds()) : Py_NewRef(Py_None));
  set(7, Number(row.duration));
  set(8, Number(row.ring));
  set(9, Text(row.dialled));
  set(10, Text(row.extension));
  set(11, Text(row.trunk));
  set(12, Text(row.receiving_extension));
  set(13, Text(row.receiving_trunk));
  set(14, Text(row.account_code));
  set(15, Bool(row.random_extension));
  set(16, Py_NewRef(Py_None));
  set(17, row.HasTime() ? Bool(row.HasSeconds()) : Py_NewRef(Py_None));
  const bool end = row.HasTime() && row.HasEnd();
  set(18, end && row.HasDate() && row.HasEndDate() ? Date(row.end_year, row.end_month, row.end_day)
                                                   : Py_NewRef(Py_None));
  set(19, end ? Time(row.end_time, row.HasSeconds()) : Py_NewRef(Py_None));
  return call;
}

}  // namespace velqua_python
