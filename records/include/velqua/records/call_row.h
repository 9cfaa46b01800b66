// The call data of one record, as the program, the store and the capture
// service write it, and the sink that takes rows one by one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velqua_records {

// The call data of one record as the library gives it (doc/cli.md, "Rows"); what the
// switch did not print is marked, never invented.
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
  int32_t time = 0;       // seconds from midnight: the call's true start (call_times.h)
  int32_t duration = -1;  // seconds; negative = none (blank)
  int32_t ring = -1;      // seconds; negative = none (blank)
  std::u16string dialled, extension, trunk, receiving_extension, receiving_trunk, account_code;
  // The call's end (call_times.h): its date (0s when no date was printed)
  // and time of day; end_time < 0 when unknown (no duration, no time).
  int32_t end_day = 0, end_month = 0, end_year = 0;
  int32_t end_time = -1;
  bool HasEnd() const { return end_time >= 0; }
  bool HasEndDate() const { return HasEnd() && end_month > 0; }
  uint8_t printed = 63;           // all printed unless the translation says otherwise
  bool random_extension = false;  // the extension was drawn at random (unlisted code)
  std::string error;              // why the record could not be translated, or ""
  // For a library error, what the library said: its number, source and own
  // (Spanish) description, for support staff and the JSON form; `error` holds
  // its English line (error_text.h).
  int32_t error_number = 0;
  std::string error_source, error_description;
  // Where the record came from: the byte offset of its first byte in its
  // input (-1 when written directly, not read from a stream), and the record
  // exactly as the translator got it (a multi-line call joined with the
  // separator). `text` views the translation's buffer: it is valid only
  // while the sink's Write runs; a sink that keeps it copies it.
  int64_t offset = -1;
  std::u16string_view text;
  // The configuration's extra fields (record_form.h) of a recognised
  // record, by name, in the order of their names.
  std::vector<std::pair<std::string, std::u16string>> extras;
};

// Where translated rows go (an output form, a store batch). Flush is called
// when a live source has completed a record: everything written so far must
// reach its destination now.
class RowSink {
 public:
  virtual ~RowSink() = default;
  virtual void Write(const Row& row) = 0;
  virtual void Flush() {}
};

}  // namespace velqua_records
