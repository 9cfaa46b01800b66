// The rows of `velqua translate` and their three output forms: CSV (RFC
// 4180), JSON Lines, and an aligned table. Output goes through one buffer
// flushed in large blocks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace velqua_cli {

// The call data of one record as the library gives it (doc/cli.md, "Rows").
struct Row {
  Row() = default;
  // A recognised record: reads the call data from `source` (a translator)
  // in the order of the members, each text built in its place. The order
  // is fixed: in case 4 the ring time reads the line of the previous
  // line search of the call.
  template <typename Source>
  Row(int64_t number_, int32_t type_, int32_t attribute_, Source& source)
      : number(number_),
        type(type_),
        attribute(attribute_),
        has_fields(true),
        day(source.Dia()),
        month(source.Mes()),
        year(source.Anio()),
        time(source.Hora()),
        duration(source.Duracion()),
        ring(source.Ring()),
        dialled(source.Marcacion()),
        extension(source.Extension()),
        trunk(source.Troncal()),
        receiving_extension(source.ExtensionReceptor()),
        receiving_trunk(source.TroncalReceptor()),
        account_code(source.CodigoCuenta()) {}

  // Whether the date, the time and its seconds were printed by the switch;
  // `printed` holds the PrintedPart bits (program_clock.h).
  bool HasDate() const { return (printed & 3) == 3; }
  bool HasTime() const { return (printed & 24) == 24; }
  bool HasSeconds() const { return (printed & 32) != 0; }

  int64_t number = 0;       // 1-based ordinal of the record in the input
  int32_t type = 0;         // emTipoLlamadaTraductor
  int32_t attribute = 0;    // emAtributoTraductor
  bool has_fields = false;  // false for an unrecognised record: fields blank
  int32_t day = 0, month = 0, year = 0;
  int32_t time = 0;       // seconds from midnight
  int32_t duration = -1;  // seconds; negative = none (blank)
  int32_t ring = -1;      // seconds; negative = none (blank)
  std::u16string dialled, extension, trunk, receiving_extension, receiving_trunk, account_code;
  uint8_t printed = 63;           // all printed unless the translation says otherwise
  bool random_extension = false;  // the extension was drawn at random (unlisted code)
  std::string error;              // why the record could not be translated, or ""
};

// Buffered writer of bytes to a FILE* (not owned). Throws CliError when the
// stream refuses the bytes.
class Output {
 public:
  explicit Output(std::FILE* stream) : stream_(stream) { buffer_.reserve(kFlushSize * 2); }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();

  std::string& buffer() { return buffer_; }
  // Flushes when the buffer has grown past the block size.
  void MaybeFlush() {
    if (buffer_.size() >= kFlushSize) Flush();
  }
  void Flush();

 private:
  static constexpr size_t kFlushSize = 1 << 16;
  std::FILE* stream_;
  std::string buffer_;
};

enum class RowFormat { kTable, kCsv, kJsonl };

class RowWriter {
 public:
  virtual ~RowWriter() = default;
  virtual void Write(const Row& row) = 0;
  // Writes what is still held back (the table's first rows) and flushes.
  virtual void Finish() = 0;
};

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& out);

// The short name of a call type or attribute: the enumeration member
// without its prefix ("Entrante" for emTradEntrante, "EnTR" for emATREnTR),
// or "" for a value without a member.
std::string ShortTypeName(int32_t type);
std::string ShortAttributeName(int32_t attribute);

// "2026-01-15", and "09:05:00" or "09:05" when the switch printed no seconds
// (hours may exceed 23 if the record says so).
void AppendDate(std::string& out, const Row& row);
void AppendTime(std::string& out, const Row& row);

}  // namespace velqua_cli
