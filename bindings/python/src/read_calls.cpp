// velqua._read_columns, under velqua.read_calls: a whole input translated
// into typed columns for a pandas DataFrame. The records are read and
// translated with the GIL released into plain C++ columns; only then are the
// NumPy arrays and the texts made, each text column through a cache, since
// extensions, trunks and account codes repeat.
#include <pybind11/numpy.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "python_support.h"
#include "road.h"
#include "velqua/records/common.h"
#include "velqua/records/names.h"

namespace velqua_python {
namespace {

using velqua_bindings::Road;
using velqua_bindings::Row;

constexpr int64_t kNaT = INT64_MIN;  // NumPy's "not a time"
constexpr int64_t kNanos = 1000000000;
constexpr size_t kBlock = 1 << 18;  // bytes of records translated at a time
// How many values a word names, from 0 on: the categories of a column.
int32_t Named(const char* (*word)(int32_t)) {
  int32_t n = 0;
  while (*word(n) != '\0') ++n;
  return n;
}

bool LeapYear(int32_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

bool ValidDate(int32_t y, int32_t m, int32_t d) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 1678 || y > 2261 || m < 1 || m > 12 || d < 1) return false;  // datetime64[ns]'s span
  return d <= kDays[m - 1] + (m == 2 && LeapYear(y) ? 1 : 0);
}

// Days from 1970-01-01 to a valid date of the proleptic Gregorian calendar.
int64_t DaysFromCivil(int32_t y, int32_t m, int32_t d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// One text column: every cell's characters in one buffer.
struct TextColumn {
  std::u16string chars;
  std::vector<size_t> ends;  // cell i is chars[ends[i - 1], ends[i])
  void Add(const std::u16string& text) {
    chars += text;
    ends.push_back(chars.size());
  }
  std::u16string_view Cell(size_t i) const {
    const size_t begin = i == 0 ? 0 : ends[i - 1];
    return std::u16string_view(chars).substr(begin, ends[i] - begin);
  }
};

// The call data of every row, column by column, as NumPy stores it.
struct Columns {
  std::vector<int64_t> record;
  std::vector<int8_t> type, attribute;              // category codes, -1 outside the categories
  std::vector<int64_t> date, time, duration, ring;  // nanoseconds, kNaT when none
  std::vector<bool> random_extension;
  TextColumn texts[6];  // dialled ... account_code
  std::vector<std::pair<size_t, std::string>> errors;

  size_t size() const { return record.size(); }

  // Room for `rows` rows, the texts as long on average as those held: no
  // column is moved while it grows.
  void Reserve(size_t rows) {
    const size_t held = std::max<size_t>(size(), 1);
    for (auto* v : {&record, &date, &time, &duration, &ring}) v->reserve(rows);
    type.reserve(rows);
    attribute.reserve(rows);
    random_extension.reserve(rows);
    for (TextColumn& t : texts) {
      t.ends.reserve(rows);
      t.chars.reserve(t.chars.size() / held * rows + rows);
    }
  }

  void Add(const Row& row) {
    const size_t i = size();
    record.push_back(row.number);
    type.push_back(Code(row.type, types_));
    attribute.push_back(Code(row.attribute, attributes_));
    const bool date_ok = row.has_fields && row.HasDate() && ValidDate(row.year, row.month, row.day);
    date.push_back(date_ok ? DaysFromCivil(row.year, row.month, row.day) * 86400 * kNanos : kNaT);
    // Without printed seconds the time is the minute, as velqua.translate gives it.
    const int32_t seconds = row.HasSeconds() ? row.time : row.time - row.time % 60;
    time.push_back(row.has_fields && row.HasTime() ? int64_t{seconds} * kNanos : kNaT);
    duration.push_back(row.has_fields && row.duration >= 0 ? row.duration * kNanos : kNaT);
    ring.push_back(row.has_fields && row.ring >= 0 ? row.ring * kNanos : kNaT);
    random_extension.push_back(row.random_extension);
    static const std::u16string kNone;
    const std::u16string* cells[6] = {&row.dialled,         &row.extension,
                                      &row.trunk,           &row.receiving_extension,
                                      &row.receiving_trunk, &row.account_code};
    for (int k = 0; k < 6; ++k) texts[k].Add(row.has_fields ? *cells[k] : kNone);
    if (!row.error.empty()) errors.emplace_back(i, row.error);
  }

  static int8_t Code(int32_t value, int32_t named) {
    return value >= 0 && value < named ? static_cast<int8_t>(value) : int8_t{-1};
  }
  int32_t types_ = Named(&velqua_records::CallTypeWord);
  int32_t attributes_ = Named(&velqua_records::AttributeWord);
};

// Reads the whole input and translates it; no Python object is touched.
class Reader {
 public:
  Reader(std::shared_ptr<velqua::clsCfgConmut> cfg, const Road::Settings& settings)
      : road_(std::move(cfg), settings) {}

  void Bytes(std::string_view bytes) {
    while (!bytes.empty()) {
      const size_t n = std::min(bytes.size(), kBlock);
      road_.Write(bytes.substr(0, n), &rows_);
      Take();
      bytes.remove_prefix(n);
    }
  }

  void File(const std::string& path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(
        velqua_records::OpenFile(path, "rb", "records"), &std::fclose);
    struct stat st {};
    const size_t total = ::fstat(fileno(f.get()), &st) == 0 && S_ISREG(st.st_mode)
                             ? static_cast<size_t>(st.st_size)
                             : 0;
    std::string block(kBlock, '\0');
    size_t read = 0;
    for (;;) {
      const size_t n = std::fread(&block[0], 1, block.size(), f.get());
      if (std::ferror(f.get())) throw velqua_records::Failure("cannot read the records: " + path);
      if (n == 0) break;
      road_.Write(std::string_view(block.data(), n), &rows_);
      // After the first block, room for the rows of the whole file at the
      // first block's bytes a row (and a tenth more).
      if (read == 0 && n < total && !rows_.empty()) {
        Take();
        columns_.Reserve(columns_.size() * (total / n + 1) * 11 / 10);
      }
      read += n;
      Take();
    }
  }

  Columns Finish() {
    road_.Finish(&rows_);
    Take();
    return std::move(columns_);
  }

 private:
  void Take() {
    for (const Row& row : rows_) columns_.Add(row);
    rows_.clear();
  }

  Road road_;
  std::vector<Row> rows_;
  Columns columns_;
};

// A Python str of a text, through a cache of the texts made so far.
class Texts {
 public:
  ~Texts() {
    for (auto& entry : cache_) Py_DECREF(entry.second);
  }
  PyObject* Make(std::u16string_view text) {
    if (text.empty()) return Py_NewRef(Py_None);
    const auto it = cache_.find(text);
    if (it != cache_.end()) return Py_NewRef(it->second);
    PyObject* s = New(text);
    if (s == nullptr) throw py::error_already_set();
    if (cache_.size() < kCached) {
      keys_.emplace_back(text);
      cache_.emplace(keys_.back(), Py_NewRef(s));
    }
    return s;
  }

 private:
  static constexpr size_t kCached = 1 << 16;
  static PyObject* New(std::u16string_view text) {
    for (char16_t c : text) {
      if (c >= 0xD800 && c <= 0xDFFF) {  // a surrogate pair: the UTF-16 decoder joins it
        int order = -1;
        return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()),
                                     static_cast<Py_ssize_t>(text.size() * 2), "replace", &order);
      }
    }
    return PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, text.data(),
                                     static_cast<Py_ssize_t>(text.size()));
  }
  std::deque<std::u16string> keys_;  // stable storage for the views the cache keys on
  std::unordered_map<std::u16string_view, PyObject*> cache_;
};

std::vector<py::ssize_t> Shape(size_t n) { return {static_cast<py::ssize_t>(n)}; }

// The column as a NumPy array that takes over its storage: no copy.
template <typename T>
py::array Numeric(std::vector<T>&& values, const char* dtype) {
  auto* owned = new std::vector<T>(std::move(values));
  const py::capsule owner(owned, [](void* p) { delete static_cast<std::vector<T>*>(p); });
  return py::array(py::dtype(dtype), Shape(owned->size()),
                   std::vector<py::ssize_t>{static_cast<py::ssize_t>(sizeof(T))}, owned->data(),
                   owner);
}

py::array Objects(const TextColumn& column, size_t n) {
  py::array out(py::dtype("O"), Shape(n));
  auto** cells = static_cast<PyObject**>(out.mutable_data());
  Texts texts;
  for (size_t i = 0; i < n; ++i) {
    PyObject* value = texts.Make(column.Cell(i));
    Py_XDECREF(cells[i]);  // what the new array held (None or nothing)
    cells[i] = value;
  }
  return out;
}

py::list Words(const char* (*word)(int32_t)) {
  py::list words;
  for (int32_t v = 0, n = Named(word); v < n; ++v) words.append(word(v));
  return words;
}

py::dict ToPython(Columns&& c) {
  const size_t n = c.size();
  py::dict out;
  out["record"] = Numeric(std::move(c.record), "int64");
  out["type"] = Numeric(std::move(c.type), "int8");
  out["type_names"] = Words(&velqua_records::CallTypeWord);
  out["attribute"] = Numeric(std::move(c.attribute), "int8");
  out["attribute_names"] = Words(&velqua_records::AttributeWord);
  out["date"] = Numeric(std::move(c.date), "M8[ns]");
  out["time"] = Numeric(std::move(c.time), "m8[ns]");
  out["duration"] = Numeric(std::move(c.duration), "m8[ns]");
  out["ring"] = Numeric(std::move(c.ring), "m8[ns]");
  static const char* const kTextNames[6] = {
      "dialled", "extension", "trunk", "receiving_extension", "receiving_trunk", "account_code"};
  for (int k = 0; k < 6; ++k) out[kTextNames[k]] = Objects(c.texts[k], n);
  py::array random(py::dtype("bool"), Shape(n));
  auto* flags = static_cast<bool*>(random.mutable_data());
  for (size_t i = 0; i < n; ++i) flags[i] = c.random_extension[i];
  out["extension_random"] = random;
  py::list errors;
  for (const auto& e : c.errors) errors.append(py::make_tuple(e.first, e.second));
  out["errors"] = errors;
  return out;
}

py::dict ReadColumns(const py::object& source, const py::object& config,
                     const py::object& extensions, const py::object& encoding,
                     const py::object& year, const py::object& errors) {
  const std::shared_ptr<PyConfig> held =
      py::isinstance<PyConfig>(config) ? config.cast<std::shared_ptr<PyConfig>>() : Load(config);
  Road::Settings settings;
  settings.form = held->form();
  if (!extensions.is_none()) settings.extensions = velqua_records::U8(FileName(extensions));
  if (!errors.is_none()) settings.errors_log = velqua_records::U8(FileName(errors));
  if (!year.is_none()) settings.year = Narrow<int32_t>(year.cast<int64_t>());
  const std::string how = encoding.is_none() ? "windows-1252" : encoding.cast<std::string>();
  if (how != "windows-1252" && how != "utf-8") {
    throw py::value_error("encoding must be 'windows-1252' or 'utf-8', not '" + how + "'");
  }
  settings.utf8 = how == "utf-8";
  // Bytes are the records; anything else names their file, whose time is
  // when they were received.
  std::string bytes;
  const bool is_bytes = PyBytes_Check(source.ptr()) || PyByteArray_Check(source.ptr());
  if (is_bytes) {
    bytes = source.cast<std::string>();
  } else {
    settings.input = velqua_records::U8(FileName(source));
  }
  Reader reader(held->shared(), settings);
  Columns columns;
  {
    const py::gil_scoped_release release;
    if (is_bytes) {
      reader.Bytes(bytes);
    } else {
      reader.File(settings.input);
    }
    columns = reader.Finish();
  }
  return ToPython(std::move(columns));
}

}  // namespace

void BindReadCalls(py::module_& m) {
  m.def("_read_columns", &ReadColumns, py::arg("source"), py::arg("config"),
        py::arg("extensions") = py::none(), py::kw_only(), py::arg("encoding") = py::none(),
        py::arg("year") = py::none(), py::arg("errors") = py::none(),
        "The columns of velqua.read_calls, as NumPy arrays.");
}

}  // namespace velqua_python
