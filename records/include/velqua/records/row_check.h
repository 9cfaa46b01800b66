// The check a translated record passes before its row is trusted as a call.
//
// The library reads each field as its columns say and computes with what it
// finds: a duration "00:7x:52" reads as 472 s, an hour 27 or a 31 February
// are kept as printed. Such a record is damaged (a line garbled on the wire,
// the wrong configuration), and a biller must never price it. The row road
// therefore checks every recognised record against what the switch can print
// and keeps a damaged one as unrecognised, with the reason.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/call_row.h"

namespace velqua_records {

class RowCheck {
 public:
  // Reads the columns of the configuration's date, time of day, duration and
  // ring fields once (the active field key is left as it was). A multi-line
  // configuration (case 4) addresses fields by line, not by column: only the
  // values are checked then.
  explicit RowCheck(velqua::clsCfgConmut& cfg);

  // "" when the row may be a call, else why not, e.g. `date 2026-02-31 does
  // not exist`, `time of day 27:05:00 is out of range`, `duration minutes
  // "7x" (columns 39-40) is not a number`, `duration seconds 75 (columns
  // 42-43) is out of range 0-59`. `record` is the text the library read (a
  // delimited record as shaped). A field left blank, or beyond the end of
  // the line, was not printed and is not checked. Reads the row's values
  // only when the row has fields.
  std::string Check(const Row& row, std::u16string_view record) const;

 private:
  struct Field {
    const char* name;  // "duration minutes"
    size_t start;      // 0-based first column
    size_t size;
    int32_t low, limit;  // the values it may print; limit -1: any
  };
  std::string CheckColumns(std::u16string_view record) const;

  std::vector<Field> fields_;
};

}  // namespace velqua_records
