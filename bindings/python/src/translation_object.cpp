// velqua.translate and velqua.Translation: the program's road for Python.
// Lines are taken from the host's iterable a block at a time; each block is
// translated with the GIL released, and its rows handed out one Call at a
// time. Without lines, the host writes the records itself (a live source).
#include <cctype>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "block_worker.h"
#include "call_maker.h"
#include "python_support.h"
#include "velqua/records/common.h"

namespace velqua_python {

void SetPythonError(std::exception_ptr error);

namespace {

using velqua_bindings::Road;
using velqua_bindings::Row;

// About this many bytes of records are translated at a time.
constexpr size_t kBlock = 1 << 16;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

class State {
 public:
  State(std::shared_ptr<velqua::clsCfgConmut> cfg, const Road::Settings& settings,
        py::object source, File file, bool utf8_bytes)
      : road_(std::move(cfg), settings),
        source_(std::move(source)),
        file_(std::move(file)),
        utf8_bytes_(utf8_bytes) {
    road_.Utf8(utf8_bytes);
  }

  // The next Call, or nullptr when no row is ready (the end, or a live
  // translation waiting for its next write).
  PyObject* Next() {
    while (next_ == rows_.size()) {
      if (!Refill()) return nullptr;
    }
    return maker_.Make(rows_[next_++]);
  }

  void Write(const py::handle& data) {
    if (file_ != nullptr || !source_.is_none()) {
      throw py::value_error("this translation reads its own lines");
    }
    if (finished_) throw py::value_error("the translation is finished");
    Take();
    Append(data, false);
    Translate(false);
  }

  void Finish() {
    if (finished_ || file_ != nullptr || !source_.is_none()) return;
    Take();
    Translate(true);
  }

  py::dict Counts() {
    {
      const py::gil_scoped_release release;
      worker_.WaitIdle();
    }
    const velqua_records::Counts c = road_.counts();
    py::dict counts;
    counts["read"] = c.read;
    counts["translated"] = c.read - c.unrecognised;
    counts["unrecognised"] = c.unrecognised;
    counts["failed"] = c.failed;
    counts["random_extensions"] = c.random_extensions;
    return counts;
  }

 private:
  // Forgets the rows handed out, once all are.
  void Take() {
    if (next_ < rows_.size()) return;
    rows_.clear();
    next_ = 0;
  }

  // Makes the next rows ready; false when none can come now. While Python
  // hands out one block's rows, the worker translates the next block.
  bool Refill() {
    Take();
    if (in_flight_) {
      in_flight_ = false;
      {
        const py::gil_scoped_release release;
        finished_ = worker_.Wait(&rows_);
      }
      if (!finished_ && !error_) Submit();
      return true;
    }
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
    if (finished_ || (file_ == nullptr && source_.is_none())) return false;
    Submit();
    return true;
  }

  // Gives the worker the next block: read from the file by the worker, or
  // made here of the host's items. An error while taking the items comes
  // after the rows of the items taken before it.
  void Submit() {
    if (file_ != nullptr) {
      worker_.Run([this](std::vector<Row>* rows) {
        read_.resize(4 * kBlock);  // once: one block is in flight at a time
        const size_t n = std::fread(&read_[0], 1, read_.size(), file_.get());
        if (std::ferror(file_.get())) throw velqua_records::Failure("cannot read the records");
        road_.Write(std::string_view(read_.data(), n), rows);
        if (n == 0) road_.Finish(rows);
        return n == 0;
      });
      in_flight_ = true;
      return;
    }
    bool end = false;
    try {
      while (!end && block_.size() < kBlock) {
        const py::object item = py::reinterpret_steal<py::object>(PyIter_Next(source_.ptr()));
        if (!item && PyErr_Occurred()) throw py::error_already_set();
        if (!item) end = true;
        if (item) Append(item, true);
      }
    } catch (...) {
      error_ = std::current_exception();
    }
    worker_.Run([this, block = std::move(block_), end](std::vector<Row>* rows) {
      road_.Write(block, rows);
      if (end) road_.Finish(rows);
      return end;
    });
    in_flight_ = true;
    block_ = std::string();
  }

  // One item: str (text) or bytes (Windows-1252 or UTF-8); a line end is
  // added when it has none, so that each item holds whole lines.
  void Append(const py::handle& item, bool whole_lines) {
    const char* data = nullptr;
    Py_ssize_t size = 0;
    bool text = false;
    if (PyUnicode_Check(item.ptr())) {
      data = PyUnicode_AsUTF8AndSize(item.ptr(), &size);
      if (data == nullptr) throw py::error_already_set();
      text = true;
    } else if (PyBytes_Check(item.ptr())) {
      data = PyBytes_AS_STRING(item.ptr());
      size = PyBytes_GET_SIZE(item.ptr());
    } else if (PyByteArray_Check(item.ptr())) {
      data = PyByteArray_AS_STRING(item.ptr());
      size = PyByteArray_GET_SIZE(item.ptr());
    } else {
      throw py::type_error(std::string("records must be str or bytes, not ") +
                           Py_TYPE(item.ptr())->tp_name);
    }
    Kind(text);
    block_.append(data, static_cast<size_t>(size));
    if (whole_lines && size > 0 && data[size - 1] != '\n' && data[size - 1] != '\r') {
      block_ += '\n';
    }
  }

  // The first item decides how bytes are read: text is given to the road as
  // UTF-8; str and bytes are not mixed.
  void Kind(bool text) {
    if (kind_ == 0) {
      kind_ = text ? 1 : 2;
      road_.Utf8(text || utf8_bytes_);
    } else if ((kind_ == 1) != text) {
      throw py::type_error("records mix str and bytes");
    }
  }

  // A live write: translated here, the GIL released.
  void Translate(bool end) {
    {
      const py::gil_scoped_release release;
      road_.Write(block_, &rows_);
      if (end) road_.Finish(&rows_);
    }
    block_.clear();
    finished_ = end;
  }

  Road road_;
  py::object source_;  // an iterator of items, or None
  File file_;
  bool utf8_bytes_;
  int kind_ = 0;  // 0 none yet, 1 str, 2 bytes
  std::string block_;
  std::string read_;  // the worker's buffer for a file's blocks
  std::vector<Row> rows_;
  size_t next_ = 0;
  bool finished_ = false;
  bool in_flight_ = false;    // a block is with the worker
  std::exception_ptr error_;  // raised once the rows before it are handed out
  CallMaker maker_;
  BlockWorker worker_;  // last: ends before the road it uses
};

struct TranslationObject {
  PyObject_HEAD State* state;
};

PyTypeObject* gTranslationType = nullptr;

State& StateOf(PyObject* self) { return *reinterpret_cast<TranslationObject*>(self)->state; }

// Runs work for a function of the raw type, turning C++ exceptions into
// Python ones (the bindings' own translation).
template <typename Work>
PyObject* Guard(Work&& work) {
  try {
    return work();
  } catch (py::error_already_set& e) {
    e.restore();
  } catch (...) {
    SetPythonError(std::current_exception());
  }
  return nullptr;
}

PyObject* IterNext(PyObject* self) {
  return Guard([&] { return StateOf(self).Next(); });
}

PyObject* WriteMethod(PyObject* self, PyObject* data) {
  return Guard([&] {
    StateOf(self).Write(data);
    Py_RETURN_NONE;
  });
}

PyObject* FinishMethod(PyObject* self, PyObject*) {
  return Guard([&] {
    StateOf(self).Finish();
    Py_RETURN_NONE;
  });
}

PyObject* CountsGetter(PyObject* self, void*) {
  return Guard([&] { return StateOf(self).Counts().release().ptr(); });
}

void Dealloc(PyObject* self) {
  PyTypeObject* type = Py_TYPE(self);
  delete reinterpret_cast<TranslationObject*>(self)->state;
  type->tp_free(self);
  Py_DECREF(type);
}

PyMethodDef kMethods[] = {
    {"write", WriteMethod, METH_O,
     "write(data): the next records (str or bytes, cut anywhere); the rows of the lines they "
     "complete are ready at once."},
    {"finish", FinishMethod, METH_NOARGS,
     "finish(): the end of the input: a last line without a line end and an open multi-line "
     "call are translated."},
    {nullptr, nullptr, 0, nullptr}};

PyGetSetDef kGetSet[] = {
    {"counts", CountsGetter, nullptr,
     "Records read, translated, unrecognised (failed included), failed, and extensions drawn "
     "at random, so far.",
     nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

PyType_Slot kSlots[] = {
    {Py_tp_dealloc, reinterpret_cast<void*>(Dealloc)},
    {Py_tp_iter, reinterpret_cast<void*>(PyObject_SelfIter)},
    {Py_tp_iternext, reinterpret_cast<void*>(IterNext)},
    {Py_tp_methods, kMethods},
    {Py_tp_getset, kGetSet},
    {Py_tp_doc,
     const_cast<char*>("The rows of a translation as velqua.Call records (velqua.translate).")},
    {0, nullptr}};

PyType_Spec kSpec = {"velqua.Translation", sizeof(TranslationObject), 0, Py_TPFLAGS_DEFAULT,
                     kSlots};

bool IsPath(const py::object& value) {
  static const py::object* const path_like =
      new py::object(py::module_::import("os").attr("PathLike"));  // kept for the process
  return PyUnicode_Check(value.ptr()) || py::isinstance(value, *path_like);
}

// What a caller gave for an argument, in a TypeError that names the argument.
[[noreturn]] void WrongType(const char* argument, const char* expected, const py::object& value) {
  throw py::type_error(std::string(argument) + ": expected " + expected + ", not " +
                       Py_TYPE(value.ptr())->tp_name);
}

// A file name argument (str or os.PathLike), as UTF-8.
std::string PathArgument(const char* argument, const py::object& value) {
  if (!IsPath(value)) WrongType(argument, "a path (str or os.PathLike)", value);
  return velqua_records::U8(FileName(value));
}

// The configuration given, or the one a path or a bundled switch's name
// names, with its record form.
std::shared_ptr<PyConfig> ConfigOf(const py::object& config) {
  if (py::isinstance<PyConfig>(config)) return config.cast<std::shared_ptr<PyConfig>>();
  if (!IsPath(config)) {
    WrongType("config", "a velqua.Config, a path or a bundled switch's name", config);
  }
  return Load(config);
}

// The encodings the program's --encoding takes, by the same names.
bool Utf8Named(const py::object& encoding) {
  if (encoding.is_none()) return false;
  if (!PyUnicode_Check(encoding.ptr())) WrongType("encoding", "str", encoding);
  std::string how = encoding.cast<std::string>();
  for (char& c : how) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (how == "utf-8" || how == "utf8") return true;
  if (how == "windows-1252" || how == "cp1252" || how == "latin1" || how == "latin-1" ||
      how == "iso-8859-1") {
    return false;
  }
  throw py::value_error("encoding must be 'windows-1252' (or 'latin1') or 'utf-8', not '" + how +
                        "'");
}

py::object Translate(const py::object& lines, const py::object& config,
                     const py::object& extensions, const py::object& encoding,
                     const py::object& year, const py::object& errors) {
  const std::shared_ptr<PyConfig> held = ConfigOf(config);
  std::shared_ptr<velqua::clsCfgConmut> cfg = held->shared();
  Road::Settings settings;
  settings.form = held->form();
  if (!extensions.is_none()) settings.extensions = PathArgument("extensions", extensions);
  if (!errors.is_none()) settings.errors_log = PathArgument("errors", errors);
  if (!year.is_none()) {
    if (!PyLong_Check(year.ptr()) || PyBool_Check(year.ptr())) WrongType("year", "int", year);
    settings.year = Narrow<int32_t>(year.cast<int64_t>());
  }
  const bool utf8 = Utf8Named(encoding);
  py::object source = py::none();
  File file;
  if (IsPath(lines)) {  // a path, as open() takes it; text goes through io.StringIO
    settings.input = PathArgument("lines", lines);  // its time: when received
    file.reset(std::fopen(settings.input.c_str(), "rb"));
    if (!file) {  // FileNotFoundError, PermissionError, ... as open() raises them
      PyErr_SetFromErrnoWithFilename(PyExc_OSError, settings.input.c_str());
      throw py::error_already_set();
    }
  } else if (PyBytes_Check(lines.ptr()) || PyByteArray_Check(lines.ptr())) {
    source = py::iter(py::make_tuple(lines));  // the records as one block of bytes
  } else if (!lines.is_none()) {
    if (!py::isinstance<py::iterable>(lines)) {
      WrongType("lines", "a path, bytes, an iterable of str or bytes (a file object), or None",
                lines);
    }
    source = py::iter(lines);
  }
  auto state =
      std::make_unique<State>(std::move(cfg), settings, std::move(source), std::move(file), utf8);
  auto* self =
      reinterpret_cast<TranslationObject*>(gTranslationType->tp_alloc(gTranslationType, 0));
  if (self == nullptr) throw py::error_already_set();
  self->state = state.release();
  return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(self));
}

}  // namespace

void BindCalls(py::module_& m) {
  gTranslationType = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&kSpec));
  if (gTranslationType == nullptr) throw py::error_already_set();
  m.attr("Translation") =
      py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(gTranslationType));
  m.def("translate", &Translate, py::arg("lines"), py::arg("config"),
        py::arg("extensions") = py::none(), py::kw_only(), py::arg("encoding") = py::none(),
        py::arg("year") = py::none(), py::arg("errors") = py::none(),
        R"(The rows of `velqua translate`: one velqua.Call per record.

lines: a path (str or os.PathLike) naming a record file, as open() takes
it; an iterable of str or bytes items, each one or more lines (a file object
is one; record text held in a str goes through io.StringIO); bytes holding
the records; or None, when the records are given with write() and finish().
config: a configuration, or a path or bundled switch's name ("hicom") that
Config.load reads. extensions: the KX-TDA account code to extension list.
str items are text; bytes are Windows-1252 unless encoding="utf-8" (the
program's names: "windows-1252" or "latin1", "utf-8"). year: the year
received, for switches that print none. errors: the unrecognised-record log,
in English. An argument of the wrong type raises TypeError naming it. Records are read and translated a block
at a time, the GIL released.)");
  m.def("_register_call", &CallMaker::Register);
}

}  // namespace velqua_python
