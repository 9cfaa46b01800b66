#include "velqua/records/row_writer.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "velqua/records/common.h"
#include "velqua/records/names.h"
#include "velqua/records/text_table.h"
#include "velqua/texto.h"

namespace velqua_records {

Output::Output(std::FILE* stream) : stream_(stream), terminal_(::isatty(::fileno(stream)) != 0) {
  buffer_.reserve(kFlushSize * 2);
}

Output::~Output() {
  // Errors have been reported by the explicit Flush of the normal path.
  if (!buffer_.empty()) Write();
  std::fflush(stream_);
}

// On a terminal, control characters from switch data are shown as escapes
// rather than acted on; line ends and tabs lay out the output as usual.
bool Output::Write() {
  if (terminal_ && NeedsVisible(buffer_, true)) {
    std::string visible;
    AppendVisible(visible, buffer_, true);
    buffer_.swap(visible);
  }
  return std::fwrite(buffer_.data(), 1, buffer_.size(), stream_) == buffer_.size();
}

void Output::Flush() {
  if (!buffer_.empty() && !Write()) {
    buffer_.clear();
    throw Failure("cannot write the output");
  }
  buffer_.clear();
  if (std::fflush(stream_) != 0) throw Failure("cannot write the output");
}

namespace {

// std::to_chars rather than snprintf: it is a fifth of the cost of a row.
void AppendInt(std::string& out, int64_t value) {
  char digits[24];
  const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, r.ptr);
}

constexpr std::array<const char*, 17> kColumns = {"record",
                                                  "type",
                                                  "type_name",
                                                  "attribute",
                                                  "attribute_name",
                                                  "date",
                                                  "time",
                                                  "duration",
                                                  "ring",
                                                  "dialled",
                                                  "extension",
                                                  "trunk",
                                                  "receiving_extension",
                                                  "receiving_trunk",
                                                  "account_code",
                                                  "extension_random",
                                                  "error"};

// ---- CSV (RFC 4180: CR LF line ends, fields quoted when they hold a
// comma, a quote, CR or LF; quotes doubled) ----

void AppendCsvText(std::string& out, std::u16string_view text) {
  const size_t start = out.size();
  AppendUtf8(out, text);
  if (out.find_first_of(",\"\r\n", start) == std::string::npos) return;
  const std::string field = out.substr(start);
  out.resize(start);
  AppendCsvField(out, field);
}

// "00" to "99", for the two-digit parts of dates, times and small numbers.
constexpr char kPares[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// Writes a row through a raw pointer into a buffer sized for the row's
// bound: one append to the output a row instead of one per piece. Numbers
// below 10,000 (types, attributes, dates, times, most durations) are written
// from the pair table; larger ones by std::to_chars.
class Pen {
 public:
  explicit Pen(char* p) : p_(p) {}
  void Char(char c) { *p_++ = c; }
  void Text(std::string_view s) {
    std::memcpy(p_, s.data(), s.size());
    p_ += s.size();
  }
  void Int(int64_t value) {
    if (value >= 0 && value < 10000) {
      Small(static_cast<uint32_t>(value));
    } else {
      p_ = std::to_chars(p_, p_ + 24, value).ptr;
    }
  }
  // value in decimal, zero-padded on the left to width digits when not negative.
  void Padded(int32_t value, size_t width) {
    char digits[16];
    const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, value);
    const size_t n = static_cast<size_t>(r.ptr - digits);
    if (value >= 0 && n < width) {
      std::memset(p_, '0', width - n);
      p_ += width - n;
    }
    Text(std::string_view(digits, n));
  }
  // Padded(value, 2).
  void Two(int32_t value) {
    if (value >= 0 && value < 100) {
      Pair(static_cast<uint32_t>(value));
    } else {
      Padded(value, 2);
    }
  }
  // "2026-01-15" and "09:05:00" (hours may exceed 23 if the record says so).
  void Date(const Row& row) {
    if (row.year >= 1000 && row.year <= 9999) {
      Pair(static_cast<uint32_t>(row.year) / 100);
      Pair(static_cast<uint32_t>(row.year) % 100);
    } else {
      Padded(row.year, 4);
    }
    Char('-');
    Two(row.month);
    Char('-');
    Two(row.day);
  }
  void Time(const Row& row) {
    Two(row.time / 3600);
    Char(':');
    Two(row.time / 60 % 60);
    if (!row.HasSeconds()) return;
    Char(':');
    Two(row.time % 60);
  }
  char* cursor() const { return p_; }
  void Skip(size_t n) { p_ += n; }
  char* end() const { return p_; }

 private:
  void Pair(uint32_t v) {
    std::memcpy(p_, kPares + 2 * v, 2);
    p_ += 2;
  }
  // 0 to 9999 without leading zeros.
  void Small(uint32_t v) {
    if (v < 10) {
      Char(static_cast<char>('0' + v));
    } else if (v < 100) {
      Pair(v);
    } else if (v < 1000) {
      Char(static_cast<char>('0' + v / 100));
      Pair(v % 100);
    } else {
      Pair(v / 100);
      Pair(v % 100);
    }
  }

  char* p_;
};

// The decimal text of the record number. Rows come numbered 1, 2, 3 ...:
// the next text is the last one plus one, carried digit by digit, instead of
// a division a digit pair; any other number is written afresh.
class DecimalCounter {
 public:
  std::string_view Text(int64_t value) {
    if (value > 0 && value - 1 == value_) {  // no overflow: value - 1 >= 0
      Increment();
    } else {
      char digits[24];
      const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, value);
      const size_t n = static_cast<size_t>(r.ptr - digits);
      start_ = kSize - n;
      std::memcpy(digits_ + start_, digits, n);
    }
    value_ = value;
    return std::string_view(digits_ + start_, kSize - start_);
  }

 private:
  void Increment() {
    size_t i = kSize;
    while (i > start_ && digits_[i - 1] == '9') digits_[--i] = '0';
    if (i > start_) {
      ++digits_[i - 1];
    } else {
      digits_[--start_] = '1';  // 99 -> 100
    }
  }

  static constexpr size_t kSize = 24;
  char digits_[kSize] = {};
  size_t start_ = kSize;
  int64_t value_ = -1;  // none yet
};

// The most bytes a text can take in CSV: 3 UTF-8 bytes a 16-bit unit, every
// byte a doubled quote at worst, and the two enclosing quotes.
size_t CsvBound(std::u16string_view text) { return 6 * text.size() + 2; }

class CsvWriter : public RowWriter {
 public:
  explicit CsvWriter(Output& out) : out_(out) {
    std::string& b = out_.buffer();
    for (size_t i = 0; i < kColumns.size(); ++i) {
      if (i > 0) b += ',';
      b += kColumns[i];
    }
    b += "\r\n";
    for (size_t i = 0; i < kNamed; ++i) {
      type_names_[i] = ShortTypeName(static_cast<int32_t>(i));
      attribute_names_[i] = ShortAttributeName(static_cast<int32_t>(i));
    }
  }
  void Write(const Row& row) override {
    const std::string_view type = Name(type_names_, row.type, &ShortTypeName, type_other_);
    const std::string_view attribute =
        Name(attribute_names_, row.attribute, &ShortAttributeName, attribute_other_);
    const std::u16string* texts[] = {&row.dialled,         &row.extension,
                                     &row.trunk,           &row.receiving_extension,
                                     &row.receiving_trunk, &row.account_code};
    size_t bound = 256 + type.size() + attribute.size() + 2 * row.error.size();
    if (row.has_fields) {
      for (const std::u16string* text : texts) bound += CsvBound(*text);
    }
    if (row_.size() < bound) row_.resize(bound);
    Pen pen(&row_[0]);
    pen.Text(number_.Text(row.number));
    pen.Char(',');
    pen.Int(row.type);
    pen.Char(',');
    pen.Text(type);
    pen.Char(',');
    pen.Int(row.attribute);
    pen.Char(',');
    pen.Text(attribute);
    pen.Char(',');
    if (row.has_fields) {
      if (row.HasDate()) pen.Date(row);
      pen.Char(',');
      if (row.HasTime()) pen.Time(row);
      pen.Char(',');
      if (row.duration >= 0) pen.Int(row.duration);
      pen.Char(',');
      if (row.ring >= 0) pen.Int(row.ring);
      for (const std::u16string* text : texts) {
        pen.Char(',');
        CsvText(pen, *text);
      }
      pen.Text(row.random_extension ? ",1," : ",0,");
    } else {
      pen.Text(",,,,,,,,,,,");
    }
    if (!row.error.empty()) {
      scratch_.clear();
      AppendCsvText(scratch_, velqua::DesdeUtf8(row.error));
      pen.Text(scratch_);
    }
    pen.Text("\r\n");
    out_.buffer().append(row_.data(), static_cast<size_t>(pen.end() - row_.data()));
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  static constexpr size_t kNamed = 8;  // the short names of values 0 to 7, made once
  using Names = std::array<std::string, kNamed>;

  static std::string_view Name(const Names& names, int32_t value, std::string (*make)(int32_t),
                               std::string& other) {
    if (value >= 0 && static_cast<size_t>(value) < kNamed) {
      return names[static_cast<size_t>(value)];
    }
    other = make(value);
    return other;
  }

  // As AppendCsvText. Plain ASCII without a comma, quote, CR or LF (nearly
  // every field) is narrowed in one pass with no branch a character;
  // anything else is written again the long way.
  void CsvText(Pen& pen, std::u16string_view text) {
    char* p = pen.cursor();
    const size_t n = text.size();
    unsigned especial = 0;
    for (size_t i = 0; i < n; ++i) {
      const char16_t c = text[i];
      p[i] = static_cast<char>(c);
      especial |= static_cast<unsigned>(c >= 0x80) | static_cast<unsigned>(c == u',') |
                  static_cast<unsigned>(c == u'"') | static_cast<unsigned>(c == u'\r') |
                  static_cast<unsigned>(c == u'\n');
    }
    if (especial == 0) {
      pen.Skip(n);
      return;
    }
    scratch_.clear();
    AppendCsvText(scratch_, text);
    pen.Text(scratch_);
  }

  Output& out_;
  Names type_names_;
  Names attribute_names_;
  std::string type_other_;
  std::string attribute_other_;
  std::string row_;
  std::string scratch_;
  DecimalCounter number_;
};

// ---- JSON Lines: one object a line; absent values are null ----

void AppendJsonString(std::string& out, std::u16string_view text) {
  out += '"';
  const size_t start = out.size();
  AppendUtf8(out, text);
  // Escape only when needed (rare in call records).
  if (NeedsJsonEscape(std::string_view(out).substr(start))) {
    const std::string raw = out.substr(start);
    out.resize(start);
    AppendJsonEscaped(out, raw);
  }
  out += '"';
}

// A record's error: its English message and, for a library error, the
// library's number, source and own description.
void AppendError(std::string& b, const Row& row) {
  b += "{\"message\":";
  AppendJsonString(b, velqua::DesdeUtf8(row.error));
  if (row.error_number != 0) {
    b += ",\"number\":";
    AppendInt(b, row.error_number);
    b += ",\"source\":";
    AppendJsonString(b, velqua::DesdeUtf8(row.error_source));
    b += ",\"description\":";
    AppendJsonString(b, velqua::DesdeUtf8(row.error_description));
  }
  b += '}';
}

class JsonlWriter : public RowWriter {
 public:
  explicit JsonlWriter(Output& out) : out_(out) {}
  void Write(const Row& row) override {
    std::string& b = out_.buffer();
    b += "{\"record\":";
    AppendInt(b, row.number);
    b += ",\"type\":";
    AppendInt(b, row.type);
    b += ",\"type_name\":\"" + ShortTypeName(row.type) + "\",\"attribute\":";
    AppendInt(b, row.attribute);
    b += ",\"attribute_name\":\"" + ShortAttributeName(row.attribute) + "\"";
    if (row.has_fields) {
      b += ",\"date\":";
      if (row.HasDate()) {
        b += '"';
        AppendDate(b, row);
        b += '"';
      } else {
        b += "null";
      }
      b += ",\"time\":";
      if (row.HasTime()) {
        b += '"';
        AppendTime(b, row);
        b += '"';
      } else {
        b += "null";
      }
      b += ",\"duration\":";
      if (row.duration >= 0)
        AppendInt(b, row.duration);
      else
        b += "null";
      b += ",\"ring\":";
      if (row.ring >= 0)
        AppendInt(b, row.ring);
      else
        b += "null";
      const std::u16string* texts[] = {&row.dialled,         &row.extension,
                                       &row.trunk,           &row.receiving_extension,
                                       &row.receiving_trunk, &row.account_code};
      for (size_t i = 0; i < 6; ++i) {
        b += ",\"";
        b += kColumns[9 + i];
        b += "\":";
        if (texts[i]->empty()) {
          b += "null";
        } else {
          AppendJsonString(b, *texts[i]);
        }
      }
      b += row.random_extension ? ",\"extension_random\":true" : ",\"extension_random\":false";
    } else {
      for (size_t i = 5; i + 1 < kColumns.size(); ++i) {
        b += ",\"";
        b += kColumns[i];
        b += "\":null";
      }
    }
    b += ",\"error\":";
    if (row.error.empty()) {
      b += "null";
    } else {
      AppendError(b, row);
    }
    b += "}\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Output& out_;
};

// ---- Table: aligned columns (velqua/records/text_table.h) ----

class TableWriter : public RowWriter {
 public:
  TableWriter(Output& out, bool live)
      : out_(out),
        live_(live),
        table_({"#", "type", "attribute", "date", "time", "dur", "ring", "dialled", "ext", "trunk",
                "rx ext", "rx trunk", "account", "note"},
               {true, false, false, false, false, true, true}) {  // numbers right-aligned
    // What the columns usually hold, for a live table that cannot wait for
    // 200 rows: a record number of 6 digits, the longest type and attribute
    // names, a date, a time, a duration of 5 digits, an international number.
    if (live_) table_.LiveWidths({6, 16, 16, 10, 8, 5, 4, 20, 6, 6, 6, 8, 10});
  }

  void Write(const Row& row) override {
    table_.Add(Format(row), &out_.buffer());
    out_.MaybeFlush();
  }

  // A live source's rows come out as they complete; a file's end is Finish's.
  void Flush() override {
    if (!live_) return Finish();
    table_.Flush(&out_.buffer());
    out_.Flush();
  }

  void Finish() override {
    table_.Finish(&out_.buffer());
    out_.Flush();
  }

 private:
  static std::vector<std::string> Format(const Row& row) {
    std::vector<std::string> c(14);
    AppendInt(c[0], row.number);
    AppendInt(c[1], row.type);
    c[1] += ' ' + ShortTypeName(row.type);
    AppendInt(c[2], row.attribute);
    c[2] += ' ' + ShortAttributeName(row.attribute);
    c[13] = row.error;
    if (!row.has_fields) return c;
    if (row.random_extension) {
      c[13] = row.extension.empty() ? "account code not in the extension list" : "random extension";
    }
    if (row.HasDate()) AppendDate(c[3], row);
    if (row.HasTime()) AppendTime(c[4], row);
    if (row.duration >= 0) AppendInt(c[5], row.duration);
    if (row.ring >= 0) AppendInt(c[6], row.ring);
    AppendUtf8(c[7], row.dialled);
    AppendUtf8(c[8], row.extension);
    AppendUtf8(c[9], row.trunk);
    AppendUtf8(c[10], row.receiving_extension);
    AppendUtf8(c[11], row.receiving_trunk);
    AppendUtf8(c[12], row.account_code);
    return c;
  }

  Output& out_;
  bool live_;
  velqua_records::AlignedTable table_;
};

}  // namespace

std::string ShortTypeName(int32_t type) { return CallTypeWord(type); }

std::string ShortAttributeName(int32_t attribute) { return AttributeWord(attribute); }

// Through Pen, the CSV writer's formatting: at most 3 numbers of 11
// characters and 2 marks.
void AppendDate(std::string& out, const Row& row) {
  char text[48];
  Pen pen(text);
  pen.Date(row);
  out.append(text, pen.end());
}

void AppendTime(std::string& out, const Row& row) {
  char text[48];
  Pen pen(text);
  pen.Time(row);
  out.append(text, pen.end());
}

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& out, bool live) {
  switch (format) {
    case RowFormat::kCsv:
      return std::make_unique<CsvWriter>(out);
    case RowFormat::kJsonl:
      return std::make_unique<JsonlWriter>(out);
    case RowFormat::kTable:
      break;
  }
  return std::make_unique<TableWriter>(out, live);
}

}  // namespace velqua_records
